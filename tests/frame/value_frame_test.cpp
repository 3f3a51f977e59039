// The push and pop of a value routine, which are done in line when they are
// plain.  Each case runs once through zorvs::value_routine and once through
// zorvs_e1psh / zorvs_e1pop, and all that the error system shows afterwards
// (types and codes at both levels, the enclosing frame, the release seen by
// an observer, the printed text) must agree.
#include <gtest/gtest.h>

#include <string>

#include "frame/frame.hpp"
#include "frame/services.h"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

using zorvs_test::Quiet;

constexpr int code_a = 99901;
constexpr int code_b = 99902;

// What a body does inside the value routine's frame.
enum class Body { clean, note, warning, code_only, raise_and_clear, nested_clean, nested_note, nested_note_cleared };
// Where the value routine is called from.
enum class Caller { user, clean_outer, alerted_outer, coded_outer };

struct Seen {
    int n1rty0, n1rty1, n1rcd0, n1rcd1, type;
    bool operator==(const Seen &) const = default;
};
Seen seen_now() {
    return {zorvs_n1rty(0), zorvs_n1rty(1), zorvs_n1rcd(0), zorvs_n1rcd(1), zorvs_error_type()};
}

struct Outcome {
    double value;
    Seen after_call;   // right after the value routine returns
    Seen after_outer;  // after the enclosing frame's pop (user caller: the same)
    int releases;      // releases the observer saw
    std::string release_texts;
    std::string printed;
    bool operator==(const Outcome &) const = default;
};

int lv_releases;
std::string lv_release_texts;
void observe(int type, int code, const char *text) {
    ++lv_releases;
    lv_release_texts += std::to_string(type) + "/" + std::to_string(code) + ":" + text + ";";
}

const char *const value_name = "test_value_routine";
const char *const inner_name = "test_inner_value";

template <bool InLine>
double framed(const char *name, double (*body)()) {
    if constexpr (InLine) {
        return zorvs::value_routine(name, body);
    } else {
        zorvs_e1psh(name);
        const double v = body();
        zorvs_e1pop(name);
        return v;
    }
}

Body lv_body;
template <bool InLine>
double run_body() {
    switch (lv_body) {
        case Body::clean: break;
        case Body::note: zorvs_e1mes(1, code_a, "a note"); break;
        case Body::warning: zorvs_e1mes(3, code_a, "a warning"); break;
        case Body::code_only: zorvs_e1mes(-1, code_a, nullptr); break;
        case Body::raise_and_clear:
            zorvs_e1mes(2, code_a, "an alert");
            zorvs_e1mes(0, 0, " ");
            break;
        case Body::nested_clean: framed<InLine>(inner_name, [] { return 2.0; }); break;
        case Body::nested_note:
        case Body::nested_note_cleared:
            framed<InLine>(inner_name, [] {
                zorvs_e1mes(1, code_b, "inner note");
                return 2.0;
            });
            // The caller drops a note it does not care about, as log_beta
            // does with the Stirling correction's.
            if (lv_body == Body::nested_note_cleared) zorvs_e1mes(0, 0, " ");
            break;
    }
    return 1.5;
}

template <bool InLine>
Outcome run_case(Body body, Caller caller, bool observed) {
    Quiet q;
    // A note left at user level by an earlier call: its text stays in the
    // buffer until the next push from user level empties it.
    zorvs_e1psh("earlier_routine");
    zorvs_e1mes(1, code_b, "left over");
    zorvs_e1pop("earlier_routine");
    lv_releases = 0;
    lv_release_texts.clear();
    if (observed) zorvs_set_at_checksum(&observe);
    lv_body = body;
    Outcome out{};
    if (caller != Caller::user) {
        zorvs_e1psh("test_outer");
        if (caller == Caller::alerted_outer) zorvs_e1mes(2, code_b, "outer alert");
        if (caller == Caller::coded_outer) zorvs_e1mes(-1, code_b, nullptr);
    }
    out.value = framed<InLine>(value_name, &run_body<InLine>);
    out.after_call = seen_now();
    if (caller != Caller::user) zorvs_e1pop("test_outer");
    out.after_outer = seen_now();
    zorvs_set_at_checksum(nullptr);
    out.releases = lv_releases;
    out.release_texts = lv_release_texts;
    out.printed = q.errors.take();
    zorvs_e1mes(0, 0, nullptr);
    return out;
}

class ValueFrame : public ::testing::Test {
protected:
    void SetUp() override { zorvs_e1mes(0, 0, nullptr); }
};

TEST_F(ValueFrame, InLinePushAndPopActAsTheCalls) {
    const Body bodies[] = {Body::clean,        Body::note,        Body::warning,
                           Body::code_only,    Body::raise_and_clear, Body::nested_clean,
                           Body::nested_note,  Body::nested_note_cleared};
    const Caller callers[] = {Caller::user, Caller::clean_outer, Caller::alerted_outer, Caller::coded_outer};
    for (Body body : bodies) {
        for (Caller caller : callers) {
            for (bool observed : {false, true}) {
                SCOPED_TRACE(testing::Message() << "body " << static_cast<int>(body) << ", caller "
                                                << static_cast<int>(caller) << ", observed " << observed);
                const Outcome by_calls = run_case<false>(body, caller, observed);
                const Outcome in_line = run_case<true>(body, caller, observed);
                EXPECT_EQ(in_line.value, by_calls.value);
                EXPECT_EQ(in_line.after_call, by_calls.after_call);
                EXPECT_EQ(in_line.after_outer, by_calls.after_outer);
                EXPECT_EQ(in_line.releases, by_calls.releases);
                EXPECT_EQ(in_line.release_texts, by_calls.release_texts);
                EXPECT_EQ(in_line.printed, by_calls.printed);
            }
        }
    }
}

TEST_F(ValueFrame, PlainCallFromUserLevelEmptiesTheLeftOverText) {
    // The observer sees the release of the clean value routine with an empty
    // text, not the note of the call before.
    const Outcome out = run_case<true>(Body::clean, Caller::user, true);
    EXPECT_EQ(out.release_texts, "0/0:;");
}

TEST_F(ValueFrame, CodeOnlyFrameIsNotLostByTheInLinePop) {
    // A frame that got a code without a type pops through the full path: the
    // code reaches the records of the level below.
    const Outcome out = run_case<true>(Body::code_only, Caller::clean_outer, false);
    EXPECT_EQ(out.after_call.n1rcd1, code_a);
}

TEST_F(ValueFrame, PendingTrapMarkIsTakenByThePop) {
    // The trap handler's mark, left for the next pop, which unwinds to its
    // own name: here the value routine's, over a frame left open.
    const double v = zorvs::value_routine(value_name, [] {
        zorvs_e1psh("skipped_by_a_jump");
        zorvs_error_param.trapped = 1;
        return 1.0;
    });
    EXPECT_EQ(v, 1.0);
    EXPECT_EQ(zorvs_error_param.trapped, 0);
    EXPECT_EQ(zorvs_error_type(), 0);
    zorvs::value_routine(value_name, [] {
        zorvs_error_param.trapped = 1;
        return 1.0;
    });
    EXPECT_EQ(zorvs_error_param.trapped, 0);
}

TEST_F(ValueFrame, PushAtTheStackLimitStops) {
    EXPECT_EXIT(
        {
            for (int k = 0; k < ZORVS_STACK_FRAMES - 1; ++k) zorvs_e1psh("deep");
            zorvs::value_routine(value_name, [] { return 1.0; });
        },
        ::testing::ExitedWithCode(8), "INTERNAL Error from deep\\.  ");
    // One frame less is fine.
    for (int k = 0; k < ZORVS_STACK_FRAMES - 2; ++k) zorvs_e1psh("deep");
    EXPECT_EQ(zorvs::value_routine(value_name, [] { return 1.0; }), 1.0);
    for (int k = 0; k < ZORVS_STACK_FRAMES - 2; ++k) zorvs_e1pop("deep");
    EXPECT_EQ(zorvs_error_type(), 0);
}

TEST_F(ValueFrame, PopOfAnotherFramesNameStops) {
    // A body that leaves a frame of its own open: the pop finds another name.
    EXPECT_EXIT(zorvs::value_routine(value_name,
                                     [] {
                                         zorvs_e1psh("left_open");
                                         return 1.0;
                                     }),
                ::testing::ExitedWithCode(8), "INTERNAL Error from test_value_routine\\.  ");
}

}  // namespace
