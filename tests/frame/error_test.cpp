// The error stack: when messages print, what stops the process, how types
// and codes pass down, the template grammar, the printer's wrapping, the
// traceback and the settings.  Each case is a script of pushes, raises and
// pops run by `play`, with what the error unit shows and the type and code
// the user sees afterwards.
#include "support/tables.hpp"

#include <deque>

namespace {

// Text on the error unit, among what the library prints there.
void mark(const std::string &s) {
    FILE *f = nullptr;
    zorvs_umach(3, &f);
    std::fputs(s.c_str(), f);
}
std::string str(int k) { return std::to_string(k); }

// A script of steps separated by ';':  +name push (+name*N: N pushes),
// -name pop, "T C text" raise (no text: a null pointer; "@": the catalogue's
// text), iK=N integer slot K set to N, usr ON|OFF, '.' a mark, '?' the four
// latest-event records, o/O observer on/off, p print procedure, T traceback
// of warnings, F full traceback, P alerts printed, V a plain value routine,
// Vopen one that leaves a frame of its own open, Vtrap one that also leaves a
// trap mark for its pop.  The names live on, as the stack keeps them by
// pointer.
void play(const std::string &script) {
    static std::deque<std::string> names;  // elements stay where they are
    for (const std::string &s : zorvs_test::split(script, ';')) {
        const bool number = std::isdigit(static_cast<unsigned char>(s[s[0] == '-']));
        const std::size_t star = s.find('*'), a = s.find(' '), b = s.find(' ', a + 1);
        static bool trap;
        if (s[0] == '+') {
            names.push_back(s.substr(1, star == std::string::npos ? star : star - 1));
            for (int k = star == std::string::npos ? 1 : std::stoi(s.substr(star + 1)); k > 0; --k)
                zorvs_e1psh(names.back().c_str());
        } else if (s[0] == '-' && !number) {
            zorvs_e1pop(s.c_str() + 1);
        } else if (number) {
            const char *text = b == std::string::npos ? nullptr : s.c_str() + b + 1;
            if (text && std::string(text) == "@") zorvs_ermes(std::stoi(s), std::stoi(s.substr(a + 1)));
            else zorvs_e1mes(std::stoi(s), std::stoi(s.substr(a + 1)), text);
        } else if (s[0] == 'i' && s[2] == '=') {
            zorvs_e1sti(s[1] - '0', std::stoi(s.substr(3)));
        } else if (s.rfind("usr ", 0) == 0) {
            zorvs_e1usr(s.c_str() + 4);
        } else if (s == "." || s == "?") {
            mark(s == "." ? "|" : "[" + str(zorvs_n1rty(0)) + " " + str(zorvs_n1rcd(0)) + " " + str(zorvs_n1rty(1)) +
                                      " " + str(zorvs_n1rcd(1)) + "]");
        } else if (s == "o" || s == "O") {
            zorvs_set_at_checksum(s == "O" ? nullptr : +[](int t, int c, const char *m) {
                mark("{" + str(t) + " " + str(c) + " " + m + "}");
            });
        } else if (s == "p") {
            zorvs_error_options(ZORVS_ERROR_PRINT_PROC, +[](int t, int c, const char *r, const char *m) {
                mark("<" + str(t) + " " + str(c) + " " + r + " " + m + ">");
            }, 0);
        } else if (s == "P") {
            zorvs_error_options(ZORVS_SET_PRINT, 2, 1, 0);
        } else if (s == "T" || s == "F") {
            zorvs_error_options(ZORVS_SET_TRACE, 3, 1, ZORVS_FULL_TRACEBACK, s == "F", 0);
        } else if (s[0] == 'V') {
            trap = s == "Vtrap";
            zorvs::value_routine("value", s == "V" ? +[] { return 1.0; } : +[] {
                zorvs_e1psh("left_open");
                zorvs_error_param.trapped = trap;
                return 1.0;
            });
        }
    }
}

// The settings a script may change, back at their defaults.
void reset_settings() {
    zorvs_set_at_checksum(nullptr);
    zorvs_error_options(ZORVS_FULL_TRACEBACK, 0, ZORVS_SET_TRACE, 3, 0, ZORVS_SET_PRINT, 2, 0, ZORVS_ERROR_PRINT_PROC,
                        nullptr, 0);
}

// The head of a traceback, and its last line.
#define TRACEBACK                                                                  \
    "Here is a traceback of the calls in reverse order.\n  Error Type        Error " \
    "Code              Routine\n  ----------        ----------              -------\n"
#define USER "                                            USER\n"
// Words of 43 and 70 letters.
#define A43 "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"
#define N70 "nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn"

// Each script with the type and code the user sees afterwards
// (zorvs_error_type() and zorvs_error_code()) and what the error unit shows.
const struct {
    const char *script;
    int type, code;
    const char *printed;
} scenarios[] = {
    // Types 1 to 4 wait for the pop to user level; the next call starts empty.
    {"+w;3 99901 odd;.;-w;+c;-c", 3, 0, "|\n*** WARNING  Error 99901 from w.  odd\n\n"},
    {"+f;4 99901 bad;-f", 4, 99901, "\n*** FATAL    Error 99901 from f.  bad\n\n"},
    // A clean call clears the code of the last routine, not the highest type.
    {"+f;4 99901 bad;-f;+c;-c", 4, 0, "\n*** FATAL    Error 99901 from f.  bad\n\n"},
    // Types 5 to 7 print at the raise and not again.
    {"+t;5 99901 broken;.;-t", 5, 99901, "\n*** TERMINAL Error from t.  broken\n\n|"},
    {"+r;6 99901 w;7 99902 f;.;-r", 7, 99902, "\n*** WARNING_IMMEDIATE Error from r.  w\n\n\n*** FATAL_IMMEDIATE Error from r.  f\n\n|"},
    // Notes and alerts are silent, but their text replaces the one waiting.
    {"+n;1 99901 a note;-n;+a;2 99901 an alert;-a", 2, 99901, ""},
    {"+o;+w;3 99901 warning;-w;+n;1 99902 note;-n;-o", 3, 99901, "\n*** WARNING  Error 99901 from o.  note\n\n"},
    // A nested type passes down only if not lower; equal types: the later code.
    {"+o;4 99902 outer;+i;3 99901 inner;-i;-o", 4, 99902, "\n*** FATAL    Error 99902 from o.  inner\n\n"},
    {"+o;+a;3 99901 first;-a;+b;3 99902 second;-b;-o", 3, 99902, "\n*** WARNING  Error 99902 from o.  second\n\n"},
    // The latest-event records of the level in hand and of the last pop.
    {"+o;+i;3 99901 inner;-i;?;-o", 3, 99901, "[3 99901 3 99901]\n*** WARNING  Error 99901 from o.  inner\n\n"},
    {"+o;4 99902 outer;+i;3 99901 inner;-i;?;-o", 4, 99902, "[0 0 3 99901]\n*** FATAL    Error 99902 from o.  inner\n\n"},
    {"+o;3 99901 x;?;+i;?;-i;-o", 3, 99901, "[3 99901 0 0][0 0 0 0]\n*** WARNING  Error 99901 from o.  x\n\n"},
    // (-1, -1) gives a new text to the same message; (-1, code) only a code.
    {"+r;6 99901 one;-1 -1 two;-1 12345 ignored;?;-r", 6, 12345,
     "\n*** WARNING_IMMEDIATE Error from r.  one\n\n\n*** WARNING_IMMEDIATE Error from r.  two\n\n[6 12345 0 0]"},
    {"+r;3 99901 dropped;0 0;?;-r", 0, 0, "[0 0 0 0]"},
    // The default printer names the routine the user called.
    {"+zorvs_public;+zorvs_worker;6 99901 hello;-zorvs_worker;-zorvs_public", 6, 99901, "\n*** WARNING_IMMEDIATE Error from zorvs_public.  hello\n\n"},
    // A routine that calls user code makes library calls from it user level.
    {"+u;usr ON;+p;3 99901 inside;-p;usr OFF;+q;3 99902 nested;-q;.;-u", 3, 99902,
     "\n*** WARNING  Error 99901 from p.  inside\n\n|\n*** WARNING  Error 99902 from u.  nested\n\n"},
    // The observer sees each release and each raise of an immediate type.
    {"o;+c;-c;+n;1 99901 note;-n;+t;5 99902 loud;-t;V;O", 5, 0,
     "{0 0 }{1 99901 note}{5 99902 loud}\n*** TERMINAL Error from t.  loud\n\n{5 99902 }{0 0 }"},
    {"P;+a;2 99901 now visible;-a", 2, 99901, "\n*** ALERT    Error 99901 from a.  now visible\n\n"},
    // Value routines: a plain one leaves nothing; a trap mark unwinds to it.
    {"+o;3 99901 kept;V;?;-o", 3, 99901, "[0 0 0 0]\n*** WARNING  Error 99901 from o.  kept\n\n"},
    {"Vtrap;?", 0, 0, "[0 0 0 0]"},
    // The print procedure gets the top frame's name.
    {"p;+zorvs_public;+zorvs_worker;6 99901 hello;-zorvs_worker;-zorvs_public", 6, 99901, "<6 99901 zorvs_worker hello>"},
    // A catalogue message: its symbolic name in the head, its text wrapped.
    {"+zorvs_f_table_oneway;i1=0;4 11002 @;-zorvs_f_table_oneway", 4, 11002, "\n*** FATAL    Error TOO_FEW_OBSERVATIONS from "
     "zorvs_f_table_oneway.  The\n***          number of observations, 0, must be at least 1.\n\n"},
    // The printer wraps at the last blank before column 78, continuation lines
    // under the filler: with its head of 29 characters (line end included), a
    // text of 48 is the longest that stays on one line.
    {"+r;5 99901 " A43 " bbbb;-r", 5, 99901, "\n*** TERMINAL Error from r.  " A43 " bbbb\n\n"},
    {"+r;5 99901 " A43 " bbbbc;-r", 5, 99901, "\n*** TERMINAL Error from r.  " A43 "\n***          bbbbc\n\n"},
    {"+" N70 ";5 99901 short text;-" N70, 5, 99901, "\n*** TERMINAL Error from " N70 ".  \n***          short text\n\n"},
    {"+zorvs_d_something;5 99901 The first sentence is long enough to need a second line, and the second one goes on "
     "for a while too.%/After a line end.;-zorvs_d_something", 5, 99901, "\n*** TERMINAL Error from zorvs_d_something.  "
     "The first sentence is long\n***          enough to need a second line, and the second one goes on for a\n"
     "***          while too.\n***          After a line end.\n\n"},
    // Tracebacks at the release list the routines called from user level.
    {"T;+zorvs_public;+zorvs_worker;+zorvs_kernel;3 99901 deep;-zorvs_kernel;-zorvs_worker;-zorvs_public", 3, 99901,
     "\n*** WARNING  Error 99901 from zorvs_public.  deep\n\n" TRACEBACK " ZORVS_WARNING     99901                     zorvs_public\n" USER},
    {"F;+zorvs_public;+zorvs_worker;3 99902 deeper;-zorvs_worker;-zorvs_public", 3, 99902,
     "\n*** WARNING  Error 99902 from zorvs_public.  deeper\n\n" TRACEBACK " ZORVS_WARNING     99902                     zorvs_public\n" USER},
};

TEST(ErrorStack, Scenarios) {
    for (const auto &c : scenarios) {
        zorvs_e1mes(0, 0, nullptr);
        zorvs_test::Quiet q;
        play(c.script);
        EXPECT_EQ(zorvs_error_type() * 1000000 + zorvs_error_code(), c.type * 1000000 + c.code) << c.script;
        reset_settings();
        EXPECT_EQ(q.errors.take(), c.printed) << c.script;
    }
}

// Every way the error stack ends the process, with its exit status and text.
TEST(ErrorStack, Stops) {
    const struct { const char *script; int status; const char *text; } cases[] = {
        {"+f;4 99901 bad;-f", 4, "FATAL    Error 99901 from f\\.  bad"},
        {"+t;5 99901 broken;.;-t;.", 5, "TERMINAL Error from t\\.  broken\n\n\\|$"},
        {"+o;+i;8 99901 impossible;.", 8, "from o\\.  impossible\n\nHere is a traceback.*\n.*\n.*\n ZORVS_INTERNAL    99901 {21}o\n {44}USER\n$"},
        {"F;+zorvs_public;+zorvs_worker;3 99902 first;+zorvs_kernel;8 99901 deep", 8,
         " ZORVS_INTERNAL    99901 {21}zorvs_kernel\n ZORVS_WARNING     99902 {21}zorvs_worker\n {44}zorvs_public\n {44}USER\n$"},
        // A type out of range: reported, and the exit status is the frame's type.
        {"+routine;9 99901 what", 0, "from routine\\.  Error type must be -1,\\.\\.\\.,8, but type = 9\\.\n\\*\\*\\*           Message = \"what\"\n"},
        {"+routine;6 99901 earlier;-2 99901 what", 6, "type =\n\\*\\*\\*          -2\\.  Message = \"what\""},
        {"+pushed_name;-other_name", 8, "INTERNAL Error from pushed_name\\.  "},
        {"+deep*200", 8, "INTERNAL Error from deep\\.  "},
        {"+deep*199;V", 8, "INTERNAL Error from deep\\.  "},
        {"Vopen", 8, "INTERNAL Error from value\\.  "},
    };
    for (const auto &c : cases)
        EXPECT_EXIT(play(c.script), ::testing::ExitedWithCode(c.status), c.text) << c.script;
    EXPECT_EXIT(zorvs_n1rty(2), ::testing::ExitedWithCode(8), "INTERNAL Error from USER\\.  ");
    EXPECT_EXIT(zorvs_n1rcd(-1), ::testing::ExitedWithCode(8), "INTERNAL Error from USER\\.  ");
    int on = 1;
    EXPECT_EXIT(zorvs_e1pos(9, &on, &on), ::testing::ExitedWithCode(5), "TERMINAL Error from zorvs_e1pos\\.  ");
    // 199 frames above the user's level are fine.
    play("+deep*198;V;+deep");
    for (int k = 0; k < 199; ++k) zorvs_e1pop("deep");
    EXPECT_EQ(zorvs_error_type(), 0);
}

// ---------------------------------------------------------------------------
// Templates, as the print procedure receives them.

std::string expand(const std::string &templ) {
    zorvs_test::UnitCapture errors;
    play("p;+r;6 99901 " + templ + ";-r");
    reset_settings();
    const std::string got = errors.take();
    return got.substr(got.find(" r ") + 3, got.size() - got.find(" r ") - 4);
}

TEST(ErrorStack, Templates) {
    zorvs_e1sti(1, 7);
    zorvs_e1str(1, 1.5);
    zorvs_e1str(2, 2.5);
    zorvs_e1stl(1, nullptr);
    zorvs_e1stl(3, "x_col_dim");
    zorvs_e1std(4, -0.125);
    const char *cases[][2] = {
        {"%(i1%5d)", "    7"},
        {"n = %(i1), r = %(r2), d = %(d4%8.3f)", "n = 7, r = 2.500000e+00, d =   -0.125"},
        {"%(l3) and %(L3%-12s)|", "x_col_dim and x_col_dim   |"},
        {"%(I1)%(R2%g)%(F2%.1f)%(S3)", "72.52.5x_col_dim"},
        {"line one%/line two", "line one\nline two"},
        // What is not a placeholder stays.
        {"%(x1)", "%(x1)"}, {"%(x1%5d)", "%(x1)"}, {"100% sure", "100% sure"}, {"%(ix)", "%(ix)"},
        {"%(i1", "%(i1"}, {"%(i1%5d", "%(i1%5d"}, {"%%(i1)", "%7"}, {"end %", "end %"},
        // A format of the wrong kind must not read the wrong argument.
        {"%(i1%s)", "7"}, {"%(r1%d)", "1.500000e+00"}, {"%(i1%*d)", "7"}, {"%(i1%ld)", "7"}, {"%(l1)", "(null)"},
    };
    for (const auto &c : cases) EXPECT_EQ(expand(c[0]), c[1]) << c[0];
    // Long texts grow the buffer.
    EXPECT_EQ(expand(std::string(5000, 'a') + "%(i1)"), std::string(5000, 'a') + "7");
    std::string many;
    for (int k = 0; k < 400; ++k) many += "%(l3%-300s)";
    EXPECT_EQ(expand(many).size(), 400u * 300u);
}

// A word longer than a line: every character printed, no line past 78.
TEST(ErrorStack, PrinterCutsLongWords) {
    zorvs_test::Quiet q;
    play("+r;5 99901 " + std::string(150, 'w') + ";-r");
    const std::string out = q.errors.take();
    EXPECT_EQ(out.substr(0, 30), "\n*** TERMINAL Error from r.  \n");
    EXPECT_EQ(std::count(out.begin(), out.end(), 'w'), 150);
    for (const std::string &line : zorvs_test::split(out)) EXPECT_LE(line.size(), 78u);
}

// ---------------------------------------------------------------------------
// Settings: the tables through the options and the older form, and the
// messages of a bad type or an unknown keyword.

TEST(ErrorStack, Settings) {
    int print = -1, stop = -1, trace = -1;
    zorvs_error_options(ZORVS_GET_PRINT, 2, &print, ZORVS_GET_STOP, 4, &stop, ZORVS_GET_TRACE, 5, &trace, 0);
    EXPECT_EQ(print * 100 + stop * 10 + trace, 10);
    // The older form: negative types read, positive ones only switch on,
    // type 0 sets every type from values of 0 or more.
    int p = 0, s = 1;
    zorvs_e1pos(3, &p, &s);
    zorvs_e1pos(-3, &p, &s);
    EXPECT_EQ(p * 10 + s, 11);
    p = -1, s = 0;
    zorvs_e1pos(0, &p, &s);
    for (int t = 1; t <= 8; ++t) EXPECT_EQ((zorvs_e1pos(-t, &p, &s), s), 0) << t;
    p = 0, s = 1;
    for (int t : {4, 5, 8}) zorvs_e1pos(t, &p, &s);  // the default stops again
    // A bad type skips its keyword only; an unknown keyword ends the list.
    static int after_bad = -1, after_unknown = -1;
    zorvs_test::expect_calls({
        {"bad type", [] { zorvs_error_options(ZORVS_SET_STOP, 6, 1, ZORVS_GET_STOP, 4, &after_bad, 0); }, 5, 132,
         "i1=1 i2=5 i3=6 l1=type", "TERMINAL Error from zorvs_error_options."},
        {"unknown keyword", [] { zorvs_error_options(4242, 0, ZORVS_GET_STOP, 4, &after_unknown, 0); }, 5, 103, "i1=4242 i2=1"},
        {"read on after a bad type only", [] { EXPECT_TRUE(after_bad == 0 && after_unknown == -1); }, 0, 0},
    });
}

}  // namespace
