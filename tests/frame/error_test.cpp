// The error stack: when messages print, what stops the process, how types
// and codes pass down, the template grammar, the printer's wrapping and the
// traceback.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "frame/services.h"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

using zorvs_test::NoStop;
using zorvs_test::Quiet;
using zorvs_test::UnitCapture;

// Codes above the catalogue's range: their name prints as the decimal code.
constexpr int code_a = 99901;
constexpr int code_b = 99902;

// A library-shaped routine that raises one message and returns.
void raise_in(const char *name, int type, int code, const char *text) {
    zorvs_e1psh(name);
    zorvs_e1mes(type, code, text);
    zorvs_e1pop(name);
}

// An outer routine that calls `raise_in` nested, then raises its own message
// (if `own_type` is not 0) before or after.
void outer_with_inner(int own_type, int own_code, bool own_first, int inner_type, int inner_code,
                      const char *inner_text) {
    zorvs_e1psh("outer_routine");
    if (own_type && own_first) zorvs_e1mes(own_type, own_code, "outer text");
    raise_in("inner_routine", inner_type, inner_code, inner_text);
    if (own_type && !own_first) zorvs_e1mes(own_type, own_code, "outer text");
    zorvs_e1pop("outer_routine");
}

class ErrorStack : public ::testing::Test {
protected:
    void SetUp() override { zorvs_e1mes(0, 0, nullptr); }  // clear the base frame
    void TearDown() override { zorvs_e1mes(0, 0, nullptr); }
};

TEST_F(ErrorStack, WarningPrintsOnceAtThePop) {
    Quiet q;
    zorvs_e1psh("warning_routine");
    zorvs_e1mes(3, code_a, "something odd");
    EXPECT_EQ(q.errors.text(), "");
    zorvs_e1pop("warning_routine");
    EXPECT_EQ(q.errors.take(),
              "\n*** WARNING  Error 99901 from warning_routine.  something odd\n\n");
    EXPECT_EQ(zorvs_error_type(), 3);
    EXPECT_EQ(zorvs_error_code(), code_a);
    // The next call from user level starts with an empty buffer.
    raise_in("clean_routine", 0, 0, nullptr);
    EXPECT_EQ(q.errors.take(), "");
}

TEST_F(ErrorStack, FatalStopsAtThePopWithItsType) {
    EXPECT_EXIT(raise_in("fatal_routine", 4, code_a, "bad"), ::testing::ExitedWithCode(4),
                "FATAL    Error 99901 from fatal_routine.  bad");
}

TEST_F(ErrorStack, FatalWithStopOffReturnsAndKeepsTheType) {
    Quiet q;
    raise_in("fatal_routine", 4, code_a, "bad");
    EXPECT_EQ(zorvs_error_type(), 4);
    EXPECT_EQ(zorvs_error_code(), code_a);
    EXPECT_NE(q.errors.text().find("FATAL"), std::string::npos);
    // A clean call clears the code of the last routine, not the highest type.
    raise_in("clean_routine", 0, 0, nullptr);
    EXPECT_EQ(zorvs_error_code(), 0);
    EXPECT_EQ(zorvs_error_type(), 4);
}

TEST_F(ErrorStack, TerminalPrintsAtTheRaiseAndStopsAtThePop) {
    EXPECT_EXIT(
        {
            zorvs_e1psh("terminal_routine");
            zorvs_e1mes(5, code_a, "broken");
            std::fputs("[body goes on]", stderr);
            zorvs_e1pop("terminal_routine");
            std::fputs("[not reached]", stderr);
        },
        ::testing::ExitedWithCode(5), "TERMINAL Error from terminal_routine.  broken\n\n\\[body goes on\\]$");
}

TEST_F(ErrorStack, TerminalIsNotPrintedAgainAtThePop) {
    Quiet q;
    zorvs_e1psh("terminal_routine");
    zorvs_e1mes(5, code_a, "broken");
    EXPECT_EQ(q.errors.take(), "\n*** TERMINAL Error from terminal_routine.  broken\n\n");
    zorvs_e1pop("terminal_routine");
    EXPECT_EQ(q.errors.take(), "");
    EXPECT_EQ(zorvs_error_type(), 5);
}

TEST_F(ErrorStack, ImmediateTypesPrintAtOnceAndDoNotStop) {
    UnitCapture errors;
    zorvs_e1psh("immediate_routine");
    zorvs_e1mes(6, code_a, "warned now");
    EXPECT_EQ(errors.take(), "\n*** WARNING_IMMEDIATE Error from immediate_routine.  warned now\n\n");
    zorvs_e1mes(7, code_b, "fatal now");
    EXPECT_EQ(errors.take(), "\n*** FATAL_IMMEDIATE Error from immediate_routine.  fatal now\n\n");
    zorvs_e1pop("immediate_routine");
    EXPECT_EQ(errors.take(), "");
    EXPECT_EQ(zorvs_error_type(), 7);
}

TEST_F(ErrorStack, InternalPrintsTracebackAndStopsAtOnce) {
    EXPECT_EXIT(
        {
            zorvs_e1psh("outer_routine");
            zorvs_e1psh("internal_routine");
            zorvs_e1mes(8, code_a, "impossible");
            std::fputs("[not reached]", stderr);
        },
        ::testing::ExitedWithCode(8),
        "INTERNAL Error from outer_routine.  impossible\n\n"
        "Here is a traceback of the calls in reverse order.\n"
        "  Error Type        Error Code              Routine\n"
        "  ----------        ----------              -------\n"
        " ZORVS_INTERNAL    99901                     outer_routine\n"
        "                                            USER\n$");
}

TEST_F(ErrorStack, NotesAndAlertsAreSilentButOverwriteTheText) {
    Quiet q;
    raise_in("note_routine", 1, code_a, "a note");
    raise_in("alert_routine", 2, code_a, "an alert");
    EXPECT_EQ(q.errors.take(), "");
    EXPECT_EQ(zorvs_error_type(), 2);
    // A note after a warning in another nested routine: the outer frame keeps
    // the warning's type, but the buffer holds the note's text.
    zorvs_e1psh("outer_routine");
    raise_in("inner_warning", 3, code_a, "the warning");
    raise_in("inner_note", 1, code_b, "the note");
    zorvs_e1pop("outer_routine");
    EXPECT_EQ(q.errors.take(), "\n*** WARNING  Error 99901 from outer_routine.  the note\n\n");
}

TEST_F(ErrorStack, NestedTypesPassDownOnlyIfNotLower) {
    Quiet q;
    // The outer frame holds (4, code_b); the nested warning does not replace it.
    outer_with_inner(4, code_b, true, 3, code_a, "inner warning");
    EXPECT_EQ(zorvs_error_type(), 4);
    EXPECT_EQ(zorvs_error_code(), code_b);
    // The text printed at the outer pop is the last one stored: the inner one.
    EXPECT_EQ(q.errors.take(), "\n*** FATAL    Error 99902 from outer_routine.  inner warning\n\n");

    zorvs_e1mes(0, 0, nullptr);
    // Equal types: the later code wins.
    zorvs_e1psh("outer_routine");
    raise_in("first_inner", 3, code_a, "first");
    raise_in("second_inner", 3, code_b, "second");
    zorvs_e1pop("outer_routine");
    EXPECT_EQ(zorvs_error_code(), code_b);
    EXPECT_EQ(q.errors.take(), "\n*** WARNING  Error 99902 from outer_routine.  second\n\n");
}

TEST_F(ErrorStack, NestedWarningPrintsOnlyAtTheOutermostPop) {
    Quiet q;
    zorvs_e1psh("zorvs_outer_public");
    raise_in("zorvs_inner_public", 3, code_a, "inner trouble");
    EXPECT_EQ(q.errors.text(), "");
    // The inner pop left its type for the outer body to see at once.
    EXPECT_EQ(zorvs_n1rty(0), 3);
    EXPECT_EQ(zorvs_n1rcd(0), code_a);
    EXPECT_EQ(zorvs_n1rty(1), 3);
    zorvs_e1pop("zorvs_outer_public");
    EXPECT_EQ(q.errors.take(), "\n*** WARNING  Error 99901 from zorvs_outer_public.  inner trouble\n\n");
}

TEST_F(ErrorStack, InnerPopOverHigherOuterTypeLeavesZeroForTheOuterTest) {
    Quiet q;
    zorvs_e1psh("outer_routine");
    zorvs_e1mes(4, code_b, "outer fatal");
    raise_in("inner_routine", 3, code_a, "inner");
    EXPECT_EQ(zorvs_n1rty(0), 0);
    EXPECT_EQ(zorvs_n1rty(1), 3);
    EXPECT_EQ(zorvs_n1rcd(1), code_a);
    zorvs_e1pop("outer_routine");
}

TEST_F(ErrorStack, PushClearsTheTypeAndCodePairs) {
    Quiet q;
    zorvs_e1psh("outer_routine");
    zorvs_e1mes(3, code_a, "x");
    EXPECT_EQ(zorvs_n1rty(0), 3);
    EXPECT_EQ(zorvs_n1rcd(0), code_a);
    zorvs_e1psh("inner_routine");
    EXPECT_EQ(zorvs_n1rty(0), 0);
    EXPECT_EQ(zorvs_n1rty(1), 0);
    EXPECT_EQ(zorvs_n1rcd(0), 0);
    EXPECT_EQ(zorvs_n1rcd(1), 0);
    zorvs_e1pop("inner_routine");
    zorvs_e1pop("outer_routine");
}

TEST_F(ErrorStack, ReraiseChangesTextOrCode) {
    UnitCapture errors;
    zorvs_e1psh("routine");
    zorvs_e1mes(6, code_a, "first text");
    errors.take();
    // (-1, -1) keeps type and code and gives a new text; immediate types print again.
    zorvs_e1mes(-1, -1, "second text");
    EXPECT_EQ(errors.take(), "\n*** WARNING_IMMEDIATE Error from routine.  second text\n\n");
    EXPECT_EQ(zorvs_n1rcd(0), code_a);
    // (-1, code) changes only the code and ignores the text.
    zorvs_e1mes(-1, 12345, "ignored");
    EXPECT_EQ(errors.take(), "");
    EXPECT_EQ(zorvs_n1rty(0), 6);
    EXPECT_EQ(zorvs_n1rcd(0), 12345);
    zorvs_e1pop("routine");
    EXPECT_EQ(zorvs_error_code(), 12345);
}

TEST_F(ErrorStack, ZeroZeroClearsTheFrame) {
    Quiet q;
    zorvs_e1psh("routine");
    zorvs_e1mes(3, code_a, "dropped");
    zorvs_e1mes(0, 0, nullptr);
    EXPECT_EQ(zorvs_n1rty(0), 0);
    zorvs_e1pop("routine");
    EXPECT_EQ(q.errors.text(), "");
    EXPECT_EQ(zorvs_error_type(), 0);
}

TEST_F(ErrorStack, TypeOutOfRangeIsReportedAndStops) {
    EXPECT_EXIT(
        {
            zorvs_e1psh("routine");
            zorvs_e1mes(9, code_a, "what");
        },
        ::testing::ExitedWithCode(0),
        "INTERNAL Error from routine\\.  Error type must be -1,\\.\\.\\.,8, but type = 9\\.\n"
        "\\*\\*\\*           Message = \"what\"\n");
    EXPECT_EXIT(
        {
            zorvs_e1psh("routine");
            zorvs_e1mes(6, code_a, "earlier");
            zorvs_e1mes(-2, code_a, "what");
        },
        ::testing::ExitedWithCode(6), "type =\n\\*\\*\\*          -2\\.  Message = \"what\"");
}

TEST_F(ErrorStack, PopOfTheWrongNameStops) {
    EXPECT_EXIT(
        {
            zorvs_e1psh("pushed_name");
            zorvs_e1pop("other_name");
        },
        ::testing::ExitedWithCode(8), "INTERNAL Error from pushed_name\\.  ");
}

TEST_F(ErrorStack, PopComparesByTextWhenPointersDiffer) {
    char copy[] = "some_routine";
    zorvs_e1psh("some_routine");
    zorvs_e1pop(copy);
    EXPECT_EQ(zorvs_error_type(), 0);
}

TEST_F(ErrorStack, StackOverflowStops) {
    EXPECT_EXIT(
        {
            for (int k = 0; k < 200; ++k) zorvs_e1psh("deep");
        },
        ::testing::ExitedWithCode(8), "INTERNAL Error from deep\\.  ");
    // 199 frames above the base are fine.
    for (int k = 0; k < 199; ++k) zorvs_e1psh("deep");
    for (int k = 0; k < 199; ++k) zorvs_e1pop("deep");
    EXPECT_EQ(zorvs_error_type(), 0);
}

TEST_F(ErrorStack, LevelOutOfRangeStops) {
    EXPECT_EXIT(zorvs_n1rty(2), ::testing::ExitedWithCode(8), "INTERNAL Error from USER\\.  ");
    EXPECT_EXIT(zorvs_n1rcd(-1), ::testing::ExitedWithCode(8), "INTERNAL Error from USER\\.  ");
}

TEST_F(ErrorStack, ObserverSeesEveryRelease) {
    static int calls;
    static int seen_type, seen_code;
    static std::string seen_text;
    Quiet q;  // its own option calls are releases too: set it up first
    calls = 0;
    zorvs_set_at_checksum([](int type, int code, const char *text) {
        ++calls;
        seen_type = type;
        seen_code = code;
        seen_text = text;
    });
    raise_in("clean_routine", 0, 0, nullptr);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(seen_text, "");
    raise_in("noting_routine", 1, code_a, "quiet note");
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(seen_type, 1);
    EXPECT_EQ(seen_code, code_a);
    EXPECT_EQ(seen_text, "quiet note");
    zorvs_e1psh("terminal_routine");
    zorvs_e1mes(5, code_b, "loud");
    EXPECT_EQ(calls, 3);  // at the raise of an immediate type
    zorvs_e1pop("terminal_routine");
    EXPECT_EQ(calls, 4);  // and again at the release, with the emptied text
    EXPECT_EQ(seen_text, "");
    zorvs_set_at_checksum(nullptr);
}

TEST_F(ErrorStack, UserBracketMakesCalleesUserLevel) {
    Quiet q;
    zorvs_e1psh("calls_user_function");
    zorvs_e1usr("ON");
    // A library routine called from the user function releases at its pop.
    raise_in("zorvs_called_by_user", 3, code_a, "from inside");
    EXPECT_EQ(q.errors.take(), "\n*** WARNING  Error 99901 from zorvs_called_by_user.  from inside\n\n");
    zorvs_e1usr("OFF");
    raise_in("zorvs_called_by_library", 3, code_b, "nested");
    EXPECT_EQ(q.errors.take(), "");
    zorvs_e1pop("calls_user_function");
    EXPECT_NE(q.errors.take().find("nested"), std::string::npos);
}

// ---------------------------------------------------------------------------
// Templates.

class MessageTemplate : public ErrorStack {
protected:
    // The expanded text of a template, as the print procedure receives it.
    std::string expand(const char *templ) {
        static std::string got;
        got.clear();
        zorvs_error_options(ZORVS_ERROR_PRINT_PROC,
                            +[](int, int, const char *, const char *m) { got = m; }, 0);
        zorvs_e1psh("routine");
        zorvs_e1mes(6, code_a, templ);
        zorvs_e1pop("routine");
        zorvs_error_options(ZORVS_ERROR_PRINT_PROC, nullptr, 0);
        return got;
    }
};

TEST_F(MessageTemplate, SlotsAndFormats) {
    zorvs_e1sti(1, 7);
    zorvs_e1str(2, 2.5);
    zorvs_e1stl(3, "x_col_dim");
    zorvs_e1std(4, -0.125);
    EXPECT_EQ(expand("%(i1%5d)"), "    7");
    EXPECT_EQ(expand("n = %(i1), r = %(r2), d = %(d4%8.3f)"), "n = 7, r = 2.500000e+00, d =   -0.125");
    EXPECT_EQ(expand("%(l3) and %(L3%-12s)|"), "x_col_dim and x_col_dim   |");
    EXPECT_EQ(expand("%(I1)%(R2%g)%(F2%.1f)%(S3)"), "72.52.5x_col_dim");
    EXPECT_EQ(expand("line one%/line two"), "line one\nline two");
}

TEST_F(MessageTemplate, WhatIsNotAPlaceholderStays) {
    zorvs_e1sti(1, 7);
    EXPECT_EQ(expand("%(x1)"), "%(x1)");
    EXPECT_EQ(expand("%(x1%5d)"), "%(x1)");
    EXPECT_EQ(expand("100% sure"), "100% sure");
    EXPECT_EQ(expand("%(ix)"), "%(ix)");
    EXPECT_EQ(expand("%(i1"), "%(i1");
    EXPECT_EQ(expand("%(i1%5d"), "%(i1%5d");
    EXPECT_EQ(expand("%%(i1)"), "%7");
    EXPECT_EQ(expand("end %"), "end %");
}

TEST_F(MessageTemplate, BadFormatsFallBackToTheSlotDefault) {
    zorvs_e1sti(1, 42);
    zorvs_e1str(1, 1.5);
    zorvs_e1stl(1, nullptr);
    // A conversion of the wrong kind must not read the wrong argument.
    EXPECT_EQ(expand("%(i1%s)"), "42");
    EXPECT_EQ(expand("%(r1%d)"), "1.500000e+00");
    EXPECT_EQ(expand("%(i1%*d)"), "42");
    EXPECT_EQ(expand("%(i1%ld)"), "42");
    EXPECT_EQ(expand("%(l1)"), "(null)");
}

TEST_F(MessageTemplate, LongTextsGrowTheBuffer) {
    std::string big(5000, 'a');
    big += "%(i1)";
    zorvs_e1sti(1, 9);
    std::string got = expand(big.c_str());
    EXPECT_EQ(got.size(), 5001u);
    EXPECT_EQ(got.back(), '9');
    std::string many;
    for (int k = 0; k < 400; ++k) many += "%(l1%-300s)";
    zorvs_e1stl(1, "w");
    EXPECT_EQ(expand(many.c_str()).size(), 400u * 300u);
}

// ---------------------------------------------------------------------------
// The printer.

// Print (6, code) from `routine` with `text`, and return what the unit got.
std::string printed(const char *routine, int type, const char *text) {
    UnitCapture errors;
    zorvs_e1psh(routine);
    zorvs_e1mes(type, code_a, text);
    zorvs_e1pop(routine);
    return errors.take();
}

TEST_F(ErrorStack, WrapsAtTheLastBlankBeforeColumn78) {
    NoStop no_stop;
    // The head "\n*** TERMINAL Error from r.  " counts 29 characters with its
    // line end, so a text of 48 characters is the longest that stays on one line.
    std::string fits = std::string(43, 'a') + " bbbb";
    EXPECT_EQ(printed("r", 5, fits.c_str()), "\n*** TERMINAL Error from r.  " + fits + "\n\n");
    std::string longer = fits + "c";
    EXPECT_EQ(printed("r", 5, longer.c_str()),
              "\n*** TERMINAL Error from r.  " + std::string(43, 'a') + "\n***          bbbbc\n\n");
}

TEST_F(ErrorStack, ContinuationLinesOpenWithTheFiller) {
    NoStop no_stop;
    std::string text =
        "The first sentence is long enough to need a second line, and the second one "
        "goes on for a while too.%/After a line end.";
    zorvs_e1sti(1, 0);
    EXPECT_EQ(printed("zorvs_d_something", 5, text.c_str()),
              "\n*** TERMINAL Error from zorvs_d_something.  The first sentence is long\n"
              "***          enough to need a second line, and the second one goes on for a\n"
              "***          while too.\n"
              "***          After a line end.\n\n");
}

TEST_F(ErrorStack, WordsLongerThanALineDoNotHangThePrinter) {
    NoStop no_stop;
    std::string word(150, 'w');
    std::string out = printed("r", 5, word.c_str());
    // Every character of the word is printed, and no line passes column 78.
    std::size_t count = 0, line = 0;
    for (char c : out) {
        if (c == 'w') ++count;
        line = c == '\n' ? 0 : line + 1;
        EXPECT_LE(line, 78u);
    }
    EXPECT_EQ(count, 150u);
    EXPECT_EQ(out.substr(0, 30), "\n*** TERMINAL Error from r.  \n");
}

TEST_F(ErrorStack, LongHeadMovesTheTextToTheNextLine) {
    NoStop no_stop;
    std::string name(70, 'n');
    std::string out = printed(name.c_str(), 5, "short text");
    EXPECT_EQ(out, "\n*** TERMINAL Error from " + name + ".  \n***          short text\n\n");
}

TEST_F(ErrorStack, PrintProcedureGetsTheTopFramesName) {
    static std::string routine, message;
    static int type, code;
    zorvs_error_options(ZORVS_ERROR_PRINT_PROC, +[](int t, int c, const char *r, const char *m) {
        type = t;
        code = c;
        routine = r;
        message = m;
    }, 0);
    zorvs_e1psh("zorvs_public");
    zorvs_e1psh("zorvs_worker");
    zorvs_e1mes(6, code_a, "hello %(i1)");
    zorvs_e1pop("zorvs_worker");
    zorvs_e1pop("zorvs_public");
    zorvs_error_options(ZORVS_ERROR_PRINT_PROC, nullptr, 0);
    EXPECT_EQ(routine, "zorvs_worker");
    EXPECT_EQ(type, 6);
    EXPECT_EQ(code, code_a);
    EXPECT_EQ(message.substr(0, 6), "hello ");
}

TEST_F(ErrorStack, DefaultPrinterNamesTheRoutineTheUserCalled) {
    UnitCapture errors;
    zorvs_e1psh("zorvs_public");
    zorvs_e1psh("zorvs_worker");
    zorvs_e1mes(6, code_a, "from the worker");
    zorvs_e1pop("zorvs_worker");
    zorvs_e1pop("zorvs_public");
    EXPECT_EQ(errors.take(), "\n*** WARNING_IMMEDIATE Error from zorvs_public.  from the worker\n\n");
}

TEST_F(ErrorStack, TracebackDefaultAndFull) {
    UnitCapture errors;
    zorvs_error_options(ZORVS_SET_TRACE, 3, 1, 0);
    zorvs_e1psh("zorvs_public");
    zorvs_e1psh("zorvs_worker");
    zorvs_e1psh("zorvs_kernel");
    zorvs_e1mes(3, code_a, "deep");
    zorvs_e1pop("zorvs_kernel");
    zorvs_e1pop("zorvs_worker");
    zorvs_e1pop("zorvs_public");
    const std::string head =
        "Here is a traceback of the calls in reverse order.\n"
        "  Error Type        Error Code              Routine\n"
        "  ----------        ----------              -------\n";
    EXPECT_EQ(errors.take(), "\n*** WARNING  Error 99901 from zorvs_public.  deep\n\n" + head +
                                 " ZORVS_WARNING     99901                     zorvs_public\n"
                                 "                                            USER\n");

    zorvs_error_options(ZORVS_FULL_TRACEBACK, 1, 0);
    zorvs_e1psh("zorvs_public");
    zorvs_e1psh("zorvs_worker");
    zorvs_e1psh("zorvs_kernel");
    zorvs_e1mes(3, code_b, "deeper");
    zorvs_e1pop("zorvs_kernel");
    zorvs_e1pop("zorvs_worker");
    zorvs_e1pop("zorvs_public");
    EXPECT_EQ(errors.take(), "\n*** WARNING  Error 99902 from zorvs_public.  deeper\n\n" + head +
                                 " ZORVS_WARNING     99902                     zorvs_public\n"
                                 "                                            USER\n");
    zorvs_error_options(ZORVS_FULL_TRACEBACK, 0, ZORVS_SET_TRACE, 3, 0, 0);
}

TEST_F(ErrorStack, FullTracebackAtTheRaiseListsEveryFrame) {
    EXPECT_EXIT(
        {
            zorvs_error_options(ZORVS_FULL_TRACEBACK, 1, 0);
            zorvs_e1psh("zorvs_public");
            zorvs_e1psh("zorvs_worker");
            zorvs_e1mes(3, code_b, "first");
            zorvs_e1psh("zorvs_kernel");
            zorvs_e1mes(8, code_a, "deep");
        },
        ::testing::ExitedWithCode(8),
        " ZORVS_INTERNAL    99901                     zorvs_kernel\n"
        " ZORVS_WARNING     99902                     zorvs_worker\n"
        "                                            zorvs_public\n"
        "                                            USER\n$");
}

// ---------------------------------------------------------------------------
// Settings.

TEST_F(ErrorStack, OptionsReadAndSetTheTables) {
    int print = -1, stop = -1, trace = -1;
    zorvs_error_options(ZORVS_GET_PRINT, 2, &print, ZORVS_GET_STOP, 4, &stop, ZORVS_GET_TRACE, 5, &trace, 0);
    EXPECT_EQ(print, 0);
    EXPECT_EQ(stop, 1);
    EXPECT_EQ(trace, 0);
    zorvs_error_options(ZORVS_SET_PRINT, 2, 1, 0);
    zorvs_error_options(ZORVS_GET_PRINT, 2, &print, 0);
    EXPECT_EQ(print, 1);
    UnitCapture errors;
    raise_in("alert_routine", 2, code_a, "now visible");
    EXPECT_NE(errors.take().find("ALERT    Error 99901 from alert_routine.  now visible"), std::string::npos);
    zorvs_error_options(ZORVS_SET_PRINT, 2, 0, 0);
}

TEST_F(ErrorStack, OptionsBadTypeSkipsOnlyThatKeyword) {
    Quiet q;
    int stop = -1;
    zorvs_error_options(ZORVS_SET_STOP, 6, 1, ZORVS_GET_STOP, 4, &stop, 0);
    EXPECT_EQ(stop, 0);  // the keyword after the bad one was read
    EXPECT_EQ(zorvs_error_code(), 132);
    EXPECT_EQ(zorvs_error_param.i[1], 1);
    EXPECT_EQ(zorvs_error_param.i[2], 5);
    EXPECT_EQ(zorvs_error_param.i[3], 6);
    EXPECT_STREQ(zorvs_error_param.l[1], "type");
    EXPECT_NE(q.errors.take().find("TERMINAL Error from zorvs_error_options."), std::string::npos);
}

TEST_F(ErrorStack, OptionsUnknownKeywordEndsTheList) {
    Quiet q;
    int stop = -1;
    zorvs_error_options(ZORVS_FULL_TRACEBACK, 0, 4242, ZORVS_GET_STOP, 4, &stop, 0);
    EXPECT_EQ(zorvs_error_code(), 103);
    EXPECT_EQ(zorvs_error_param.i[1], 4242);
    EXPECT_EQ(zorvs_error_param.i[2], 3);
    EXPECT_EQ(stop, -1);
    zorvs_error_options(4243, 0);
    EXPECT_EQ(zorvs_error_param.i[2], 1);
}

TEST_F(ErrorStack, OlderSettingForm) {
    int print = 0, stop = 0;
    zorvs_e1pos(-3, &print, &stop);
    EXPECT_EQ(print, 1);
    EXPECT_EQ(stop, 0);
    // A positive type can only switch a table on.
    print = 0;
    stop = 1;
    zorvs_e1pos(3, &print, &stop);
    zorvs_e1pos(-3, &print, &stop);
    EXPECT_EQ(print, 1);
    EXPECT_EQ(stop, 1);
    // Type 0 sets all types, taking only values of 0 or more.
    print = -1;
    stop = 0;
    zorvs_e1pos(0, &print, &stop);
    for (int t = 1; t <= 8; ++t) {
        int p = -1, s = -1;
        zorvs_e1pos(-t, &p, &s);
        EXPECT_EQ(s, 0) << t;
    }
    int defaults_print = 1, defaults_stop = 1;
    zorvs_e1pos(4, &defaults_print, &defaults_stop);
    zorvs_e1pos(5, &defaults_print, &defaults_stop);
    zorvs_e1pos(8, &defaults_print, &defaults_stop);
    EXPECT_EXIT(zorvs_e1pos(9, &print, &stop), ::testing::ExitedWithCode(5), "TERMINAL Error from zorvs_e1pos\\.  ");
}

}  // namespace
