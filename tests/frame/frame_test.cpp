// The public call frame: keyword lists and their positions, the static
// result with caller storage, the exit test, nesting of public routines, the
// trap bracket's bookkeeping, and the units.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdarg>
#include <cstdlib>
#include <string>

#include "frame/frame.hpp"
#include "frame/services.h"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

using zorvs_test::Quiet;

// A keyword routine of the library's shape, in both twins: it returns n
// copies of a value (default 1, or ZORVS_CONFIDENCE's), takes caller storage
// with ZORVS_RETURN_USER, a count with ZORVS_X_COL_DIM that must not be
// negative, two reals with ZORVS_DATA_BOUNDS, and raises on request a message
// of a type given with ZORVS_MAX_ITERATIONS (the type) and code 99950.
struct Seen {
    int x_col_dim = -1;
    double lower = 0, upper = 0;
    int bracket_slots = -1;
};
Seen seen;

template <class T>
T *lv_filled = nullptr;

template <class T>
void l_filled(int n, va_list *list) {
    zorvs::KeywordReader kw(list, 1);
    bool user = false;
    double value = 1;
    int raise_type = 0;
    seen = Seen{};
    seen.bracket_slots = zorvs_got_environ;
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        switch (k) {
            case ZORVS_RETURN_USER:
                lv_filled<T> = kw.pointer<T>();
                user = true;
                break;
            case ZORVS_CONFIDENCE: value = kw.real<T>(); break;
            case ZORVS_X_COL_DIM: seen.x_col_dim = kw.integer(); break;
            case ZORVS_DATA_BOUNDS:
                seen.lower = kw.real<T>();
                seen.upper = kw.real<T>();
                break;
            case ZORVS_MAX_ITERATIONS: raise_type = kw.integer(); break;
            default: kw.unknown(k); return;
        }
    }
    if (n < 1) {
        zorvs_e1sti(1, n);
        zorvs_ermes(5, 99951);
    }
    if (seen.x_col_dim < -1) {
        zorvs_e1sti(1, seen.x_col_dim);
        zorvs_ermes(4, 99952);
    }
    if (zorvs_error_n1rty[0] >= 4) {
        zorvs::exit_test(lv_filled<T>, user);
        return;
    }
    if (!user) lv_filled<T> = zorvs::allocate<T>(n, "n");
    if (!lv_filled<T>) return;
    for (int i = 0; i < n; ++i) lv_filled<T>[i] = static_cast<T>(value);
    if (raise_type) zorvs_e1mes(raise_type, 99950, "raised on request");
    zorvs::exit_test(lv_filled<T>, user);
}

float *test_f_filled(int n, ...) {
    ZORVS_KEYWORD_ENTRY(n, "test_f_filled", lv_filled<float>, l_filled<float>(n, &list));
}
double *test_d_filled(int n, ...) {
    ZORVS_KEYWORD_ENTRY(n, "test_d_filled", lv_filled<double>, l_filled<double>(n, &list));
}

class Frame : public ::testing::Test {
protected:
    void SetUp() override { zorvs_e1mes(0, 0, nullptr); }
    void TearDown() override { zorvs::allocation_failure_countdown = 0; }
};

TEST_F(Frame, OnlyTheEndOfListGivesDefaultsInANewArray) {
    double *r = test_d_filled(3, 0);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r[0], 1.0);
    EXPECT_EQ(r[2], 1.0);
    std::free(r);
    EXPECT_EQ(zorvs_error_type(), 0);
    // Each call returns a new block.
    float *a = test_f_filled(2, 0);
    float *b = test_f_filled(2, 0);
    EXPECT_NE(a, b);
    std::free(a);
    std::free(b);
}

TEST_F(Frame, CallerStorageComesBackAsIs) {
    double mine[4] = {0, 0, 0, 9};
    double *r = test_d_filled(3, ZORVS_RETURN_USER, mine, ZORVS_CONFIDENCE, 2.5, 0);
    EXPECT_EQ(r, mine);
    EXPECT_EQ(mine[2], 2.5);
    EXPECT_EQ(mine[3], 9.0);
}

TEST_F(Frame, FailedCheckAfterCallerStorageReturnsTheCallersPointer) {
    Quiet q;
    double mine[2] = {7, 7};
    double *r = test_d_filled(0, ZORVS_RETURN_USER, mine, 0);
    EXPECT_EQ(r, mine);
    EXPECT_EQ(mine[0], 7.0);
    EXPECT_EQ(zorvs_error_code(), 99951);
}

TEST_F(Frame, FatalWithStopOffFreesTheResultAndReturnsNull) {
    Quiet q;
    EXPECT_EQ(test_d_filled(4, ZORVS_MAX_ITERATIONS, 4, 0), nullptr);
    EXPECT_EQ(zorvs_error_type(), 4);
    EXPECT_EQ(zorvs_error_code(), 99950);
    // A warning keeps the result.
    double *r = test_d_filled(4, ZORVS_MAX_ITERATIONS, 3, 0);
    ASSERT_NE(r, nullptr);
    std::free(r);
    // The plain exit test counts a WARNING_IMMEDIATE (6) as above 3.
    EXPECT_EQ(test_d_filled(4, ZORVS_MAX_ITERATIONS, 6, 0), nullptr);
}

TEST_F(Frame, FatalStopsTheProcessByDefault) {
    EXPECT_EXIT(test_d_filled(2, ZORVS_X_COL_DIM, -5, 0), ::testing::ExitedWithCode(4),
                "FATAL    Error [A-Z0-9_]+ from test_d_filled\\.  ");
}

TEST_F(Frame, UnknownKeywordPositionCountsFixedArgumentsAndRealsAsOne) {
    Quiet q;
    EXPECT_EQ(test_f_filled(2, 777, 0), nullptr);
    EXPECT_EQ(zorvs_error_code(), 11001);
    EXPECT_EQ(zorvs_error_param.i[1], 777);
    EXPECT_EQ(zorvs_error_param.i[2], 2);
    test_f_filled(2, ZORVS_X_COL_DIM, 3, 888, 0);
    EXPECT_EQ(zorvs_error_param.i[2], 4);
    // A keyword with two reals adds 3 in all: itself and two arguments.
    test_d_filled(2, ZORVS_DATA_BOUNDS, 1.0, 2.0, 999, 0);
    EXPECT_EQ(zorvs_error_param.i[1], 999);
    EXPECT_EQ(zorvs_error_param.i[2], 5);
    // The message is terminal and prints at once with the routine's name.
    EXPECT_NE(q.errors.take().find("TERMINAL Error from test_d_filled."), std::string::npos);
}

TEST_F(Frame, UnknownKeywordStopsReadingAtOnce) {
    Quiet q;
    seen.x_col_dim = 12345;
    test_d_filled(2, 777, ZORVS_X_COL_DIM, 3, 0);
    EXPECT_EQ(seen.x_col_dim, -1);  // the keyword behind the unknown one was not read
}

TEST_F(Frame, FloatKeywordArgumentsArriveAsDouble) {
    float lower = 0.1f, upper = 1e30f;
    float *r = test_f_filled(1, ZORVS_DATA_BOUNDS, lower, upper, ZORVS_CONFIDENCE, 3.0f, 0);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(static_cast<float>(seen.lower), 0.1f);
    EXPECT_EQ(static_cast<float>(seen.upper), 1e30f);
    EXPECT_EQ(r[0], 3.0f);
    std::free(r);
    // The same list read by the double twin.
    double *d = test_d_filled(1, ZORVS_DATA_BOUNDS, lower, 2.5, 0);
    EXPECT_EQ(seen.lower, static_cast<double>(0.1f));
    EXPECT_EQ(seen.upper, 2.5);
    std::free(d);
}

TEST_F(Frame, AllocationFailureRaisesWithTheCountAndName) {
    Quiet q;
    zorvs::allocation_failure_countdown = 1;
    EXPECT_EQ(test_d_filled(5, 0), nullptr);
    EXPECT_EQ(zorvs_error_code(), 201);
    EXPECT_EQ(zorvs_error_type(), 5);
    EXPECT_EQ(zorvs_error_param.i[1], 5);
    EXPECT_STREQ(zorvs_error_param.l[1], "n");
}

TEST_F(Frame, TwoCountAllocationFailure) {
    Quiet q;
    zorvs_e1psh("routine");
    zorvs::allocation_failure_countdown = 1;
    double *p = zorvs::allocate<double>(3, "n_rows", 4, "n_columns");
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(zorvs_n1rcd(0), 202);
    EXPECT_EQ(zorvs_error_param.i[1], 3);
    EXPECT_EQ(zorvs_error_param.i[2], 4);
    EXPECT_STREQ(zorvs_error_param.l[2], "n_columns");
    zorvs::allocation_failure_countdown = 1;
    EXPECT_EQ(zorvs::allocate<int>(10), nullptr);
    EXPECT_EQ(zorvs_n1rcd(0), 200);
    zorvs_e1pop("routine");
}

// A public routine whose body calls other public routines.
template <class T>
T *lv_outer = nullptr;
int inner_type_seen = -1;
template <class T>
void l_outer(int inner_raise, va_list *) {
    T *inner = test_d_filled(2, ZORVS_MAX_ITERATIONS, inner_raise, 0);
    inner_type_seen = zorvs_error_n1rty[0];
    lv_outer<T> = inner;
}
double *test_outer(int inner_raise, ...) {
    ZORVS_KEYWORD_ENTRY(inner_raise, "test_outer", lv_outer<double>, l_outer<double>(inner_raise, &list));
}

TEST_F(Frame, NestedWarningPrintsAtTheOutermostPopWithItsName) {
    zorvs_test::UnitCapture errors;
    double *r = test_outer(3, 0);
    ASSERT_NE(r, nullptr);
    std::free(r);
    EXPECT_EQ(inner_type_seen, 3);
    std::string text = errors.take();
    EXPECT_NE(text.find("WARNING  Error 99950 from test_outer.  raised on request"), std::string::npos) << text;
    EXPECT_EQ(text.find("test_d_filled"), std::string::npos);
}

TEST_F(Frame, NestedFatalDoesNotStopInsideAndReturnsNullToTheOuterBody) {
    EXPECT_EXIT(
        {
            double *r = test_outer(4, 0);
            std::fprintf(stderr, "[returned %p]", static_cast<void *>(r));
        },
        ::testing::ExitedWithCode(4), "FATAL    Error 99950 from test_outer\\.  raised on request");
    Quiet q;
    EXPECT_EQ(test_outer(4, 0), nullptr);
    EXPECT_EQ(inner_type_seen, 4);
}

TEST_F(Frame, BracketTakesAndGivesBackOneSlotPerLevel) {
    ASSERT_EQ(zorvs_trap_status(), 1);
    double *r = test_d_filled(1, 0);
    std::free(r);
    EXPECT_EQ(seen.bracket_slots, 1);
    r = test_outer(0, 0);
    std::free(r);
    EXPECT_EQ(seen.bracket_slots, 2);  // the inner call of the nested pair
    EXPECT_EQ(zorvs_got_environ, 0);
}

TEST_F(Frame, TrappingOffMeansNoBracket) {
    zorvs_error_options(ZORVS_SIGNAL_TRAPPING_OFF, 0);
    EXPECT_EQ(zorvs_trap_status(), 0);
    double *r = test_outer(0, 0);
    std::free(r);
    EXPECT_EQ(seen.bracket_slots, 0);
    EXPECT_EQ(zorvs_got_environ, 0);
    zorvs_error_options(ZORVS_SIGNAL_TRAPPING_ON, 0);
    EXPECT_EQ(zorvs_trap_status(), 1);
}

TEST_F(Frame, DeepNestingRunsWithoutBracketRatherThanOverflow) {
    // 30 nested library frames, each opening a bracket if it can.
    static int depth;
    static int deepest_slots;
    struct Nest {
        static void go(int n) {
            zorvs::keyword_routine("nest", [n] {
                deepest_slots = zorvs_got_environ;
                if (n > 0) go(n - 1);
            });
        }
    };
    depth = 30;
    Nest::go(depth);
    EXPECT_EQ(deepest_slots, zorvs::max_brackets);
    EXPECT_EQ(zorvs_got_environ, 0);
}

TEST_F(Frame, UnitsRedirectAndReadBack) {
    FILE *mine = std::tmpfile();
    FILE *before = nullptr, *got = nullptr;
    zorvs_output_file(ZORVS_GET_OUTPUT_FILE, &before, 0);
    EXPECT_EQ(before, stdout);
    zorvs_umach(-2, &mine);
    zorvs_output_file(ZORVS_GET_OUTPUT_FILE, &got, 0);
    EXPECT_EQ(got, mine);
    zorvs_output_file(ZORVS_SET_OUTPUT_FILE, before, ZORVS_GET_ERROR_FILE, &got, 0);
    EXPECT_EQ(got, stderr);
    zorvs_umach(2, &got);
    EXPECT_EQ(got, stdout);
    std::fclose(mine);
}

TEST_F(Frame, UnitsRejectBadNumbersAndKeywords) {
    Quiet q;
    FILE *f = nullptr;
    zorvs_e1psh("routine");
    zorvs_umach(4, &f);
    EXPECT_EQ(zorvs_n1rcd(0), 12010);
    EXPECT_EQ(zorvs_error_param.i[1], 4);
    zorvs_e1pop("routine");
    zorvs_output_file(ZORVS_GET_OUTPUT_FILE, &f, 31337, 0);
    EXPECT_EQ(zorvs_error_code(), 103);
    EXPECT_EQ(zorvs_error_param.i[1], 31337);
    EXPECT_EQ(zorvs_error_param.i[2], 3);
}

}  // namespace

namespace {

// A user function that calls a library routine which warns: the warning is
// released at that routine's return, inside the user function.
double user_function(double x) {
    double *r = test_d_filled(1, ZORVS_MAX_ITERATIONS, 3, 0);
    double v = r ? r[0] : -1;
    std::free(r);
    return x + v;
}

TEST_F(Frame, UserFunctionsCallTheLibraryAsFromTheTop) {
    zorvs_test::UnitCapture errors;
    zorvs_e1psh("zorvs_routine_with_user_function");
    double v = zorvs::call_user_function(user_function, 1.0);
    EXPECT_EQ(v, 2.0);
    EXPECT_NE(errors.take().find("WARNING  Error 99950 from test_d_filled."), std::string::npos);
    // Outside the bracket the same call is nested again and waits.
    user_function(0.0);
    EXPECT_EQ(errors.take(), "");
    zorvs_e1pop("zorvs_routine_with_user_function");
    EXPECT_NE(errors.take().find("from zorvs_routine_with_user_function."), std::string::npos);
}

}  // namespace
