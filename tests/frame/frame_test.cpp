// The public call frame: keyword lists and their positions, the static
// result with caller storage, the exit test, allocation failures, nesting of
// public routines and user functions, and the trap bracket's bookkeeping.
#include "support/tables.hpp"

namespace {

// A keyword routine of the library's shape, in both twins: n copies of a
// value (1, or ZORVS_CONFIDENCE's) in a new array or the caller's storage
// (ZORVS_RETURN_USER); ZORVS_X_COL_DIM a count not below -1, ZORVS_DATA_BOUNDS
// two reals; ZORVS_MAX_ITERATIONS the type of a message (code 99950) to raise.
struct Seen { int x_col_dim = -1, bracket_slots = -1; double lower = 0, upper = 0; } seen;

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
            case ZORVS_RETURN_USER: lv_filled<T> = kw.pointer<T>(), user = true; break;
            case ZORVS_CONFIDENCE: value = kw.real<T>(); break;
            case ZORVS_X_COL_DIM: seen.x_col_dim = kw.integer(); break;
            case ZORVS_DATA_BOUNDS: seen.lower = kw.real<T>(), seen.upper = kw.real<T>(); break;
            case ZORVS_MAX_ITERATIONS: raise_type = kw.integer(); break;
            default: kw.unknown(k); return;
        }
    }
    if (n < 1) zorvs_e1sti(1, n), zorvs_ermes(5, 99951);
    if (seen.x_col_dim < -1) zorvs_ermes(4, 99952);
    if (zorvs_error_n1rty[0] >= 4) return zorvs::exit_test(lv_filled<T>, user);
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

// A public routine whose body calls the one above with a message of the given type.
double *lv_outer = nullptr;
int inner_type_seen = -1;
double *test_outer(int inner_raise, ...) {
    ZORVS_KEYWORD_ENTRY(inner_raise, "test_outer", lv_outer, {
        lv_outer = test_d_filled(2, ZORVS_MAX_ITERATIONS, inner_raise, 0);
        inner_type_seen = zorvs_error_n1rty[0];
    });
}

// A user function that calls a library routine which warns.
double user_function(double x) {
    double *r = test_d_filled(1, ZORVS_MAX_ITERATIONS, 3, 0);
    double v = r ? r[0] : -1;
    std::free(r);
    return x + v;
}

double mine[4];

TEST(Frame, Calls) {
    zorvs_test::expect_calls({
        {"defaults in a new array each call",
         [] {
             double *a = test_d_filled(3, 0), *b = test_d_filled(3, 0);
             EXPECT_TRUE(a && b && a != b && a[0] == 1.0 && a[2] == 1.0);
             std::free(a), std::free(b);
         },
         0, 0},
        {"caller storage comes back as is",
         [] {
             mine[3] = 9;
             EXPECT_EQ(test_d_filled(3, ZORVS_RETURN_USER, mine, ZORVS_CONFIDENCE, 2.5, 0), mine);
             EXPECT_TRUE(mine[2] == 2.5 && mine[3] == 9.0);
         },
         0, 0},
        {"float reals in the list arrive as double",
         [] {
             float *r = test_f_filled(1, ZORVS_DATA_BOUNDS, 0.1f, 1e30f, ZORVS_CONFIDENCE, 3.0f, 0);
             EXPECT_TRUE(r && r[0] == 3.0f && seen.lower == double(0.1f) && seen.upper == double(1e30f));
             std::free(r);
         },
         0, 0},
        {"failed check after caller storage",
         [] { mine[0] = 7; EXPECT_EQ(test_d_filled(0, ZORVS_RETURN_USER, mine, 0), mine); EXPECT_EQ(mine[0], 7); }, 5,
         99951},
        {"WARNING_IMMEDIATE fails the exit test",
         [] { EXPECT_EQ(test_d_filled(4, ZORVS_MAX_ITERATIONS, 6, 0), nullptr); }, 6, 99950},
        // Positions count the fixed arguments, and each real as one.
        {"unknown keyword first", [] { EXPECT_EQ(test_f_filled(2, 777, ZORVS_X_COL_DIM, 3, 0), nullptr); }, 5, 11001,
         "i1=777 i2=2", "TERMINAL Error from test_f_filled."},
        {"unknown keyword behind a count",
         [] { test_f_filled(2, ZORVS_X_COL_DIM, 3, 888, 0); EXPECT_EQ(seen.x_col_dim, 3); }, 5, 11001, "i2=4"},
        {"unknown keyword behind two reals", [] { test_d_filled(2, ZORVS_DATA_BOUNDS, 1.0, 2.0, 999, 0); }, 5, 11001,
         "i1=999 i2=5"},
        {"two-count and plain allocation failures",
         [] {
             zorvs::keyword_routine("routine", [] {
                 zorvs::allocation_failure_countdown = 1;
                 EXPECT_EQ(zorvs::allocate<int>(10), nullptr);
                 EXPECT_EQ(zorvs_n1rcd(0), 200);
                 zorvs::allocation_failure_countdown = 1;
                 EXPECT_EQ(zorvs::allocate<double>(3, "n_rows", 4, "n_columns"), nullptr);
             });
         },
         5, 202, "i1=3 i2=4 l2=n_columns"},
        // Nested public routines: the inner pop is not the user's level.
        {"nested warning", [] { std::free(test_outer(3, 0)); EXPECT_EQ(inner_type_seen, 3); }, 3, 99950, "",
         "WARNING  Error 99950 from test_outer.  raised on request"},
        {"nested fatal", [] { EXPECT_EQ(test_outer(4, 0), nullptr); EXPECT_EQ(inner_type_seen, 4); }, 4, 99950},
        // A user function calls the library as from the top: released inside.
        {"user function",
         [] {
             zorvs_test::UnitCapture inner;
             zorvs::keyword_routine("zorvs_with_user_function", [] {
                 EXPECT_EQ(zorvs::call_user_function(user_function, 1.0), 2.0);
             });
             EXPECT_NE(inner.take().find("WARNING  Error 99950 from test_d_filled."), std::string::npos);
         },
         3, 99950},
    });
    zorvs::allocation_failure_countdown = 0;
    // The stop comes at the pop of the routine the user called, not inside.
    EXPECT_EXIT((test_outer(4, 0), std::fputs("[returned]", stderr)), ::testing::ExitedWithCode(4),
                "FATAL    Error 99950 from test_outer\\.  raised on request\n\n$");
}

TEST(Frame, BracketsOnePerLevelWhileTheyLast) {
    ASSERT_EQ(zorvs_trap_status(), 1);
    std::free(test_d_filled(1, 0));
    EXPECT_EQ(seen.bracket_slots, 1);
    std::free(test_outer(0, 0));
    EXPECT_EQ(seen.bracket_slots, 2);
    EXPECT_EQ(zorvs_got_environ, 0);
    // Deep nesting runs on without brackets rather than overflow.
    static int deepest;
    struct Nest {
        static void go(int n) {
            zorvs::keyword_routine("nest", [n] { deepest = zorvs_got_environ, n > 0 ? go(n - 1) : void(); });
        }
    };
    Nest::go(30);
    EXPECT_EQ(deepest, zorvs::max_brackets);
    zorvs_error_options(ZORVS_SIGNAL_TRAPPING_OFF, 0);
    EXPECT_EQ(zorvs_trap_status(), 0);
    std::free(test_outer(0, 0));
    EXPECT_EQ(seen.bracket_slots, 0);
    zorvs_error_options(ZORVS_SIGNAL_TRAPPING_ON, 0);
    EXPECT_EQ(zorvs_trap_status(), 1);
    EXPECT_EQ(zorvs_got_environ, 0);
}

}  // namespace
