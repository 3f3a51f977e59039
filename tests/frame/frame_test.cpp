// The public call frame: keyword lists and their positions, the static result
// and an optional output (handed over only when the call succeeds, the
// address left as it was otherwise), the workspace ended by the pop of its
// frame, allocation failures, nesting of public routines and user functions,
// and signal trapping: a fault inside a bracket becomes the messages (5, code
// of the signal) and (5, 102) and a return to the innermost bracket, with the
// user's own handlers back after the outermost.
#include "support/tables.hpp"

#include <csignal>

#include "frame/error_stack.hpp"

namespace {

int blocks() { return zorvs::error_stack.work_count; }

// Read through a volatile, so that the compiler cannot see the bad address.
double *volatile invalid_pointer = reinterpret_cast<double *>(static_cast<std::uintptr_t>(16));

// A keyword routine of the library's shape in both twins: the values 1 to n
// in the result, their squares in the optional output, both through a work
// array.
//   ZORVS_MEDIAN, flag            first: if 1, a WARNING_IMMEDIATE does not fail the call
//   ZORVS_RETURN_USER, array      the result in the caller's array
//   ZORVS_RESIDUAL, T **          the squares in a block of their own (null: not asked)
//   ZORVS_RESIDUAL_USER, array    the squares in the caller's array
//   ZORVS_DATA_BOUNDS, a, b       two reals, b noted;  ZORVS_X_COL_DIM, k  a count
//   ZORVS_MAX_ITERATIONS, type    raise (type, 99960) once the outputs are written
//   ZORVS_LEVERAGE, signal        once the blocks are taken, a write through an
//                                 invalid pointer (SIGSEGV) or the signal raised
// n below 1 raises (5, 99961) and gives the result up, caller storage too.
struct Seen { int blocks = -1; double upper = 0; } seen;

template <class T>
T *lv_result = nullptr;

template <class T>
void l_fill(int n, va_list *list) {
    seen = Seen{};
    zorvs::KeywordReader kw(list, 1);
    int raise_type = 0, fault = 0;
    using Pair = zorvs::OutputPair<T>;
    Pair result(lv_result<T>), squares;
    const auto keep = zorvs::Failure::above_warning_but_immediate;
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        switch (k) {
            // First in the list where it is given: the rule of failure is the
            // routine's, the same for all its outputs.
            case ZORVS_MEDIAN:
                if (kw.integer()) result = Pair(lv_result<T>, keep), squares = Pair(keep);
                break;
            case ZORVS_RETURN_USER: result.take_user(kw.pointer<T>()); break;
            case ZORVS_RESIDUAL: squares.take_address(kw.pointer<T *>()); break;
            case ZORVS_RESIDUAL_USER: squares.take_user(kw.pointer<T>()); break;
            case ZORVS_DATA_BOUNDS: kw.real<T>(), seen.upper = kw.real<T>(); break;
            case ZORVS_X_COL_DIM: kw.integer(); break;
            case ZORVS_MAX_ITERATIONS: raise_type = kw.integer(); break;
            case ZORVS_LEVERAGE: fault = kw.integer(); break;
            default: kw.unknown(k); return;
        }
    }
    if (n < 1) {
        zorvs_e1mes(5, 99961, "no values");
        return result.drop();
    }
    if (!result.obtain(n, "n") || !squares.obtain(n, "n")) return;
    T *work = zorvs::workspace<T>(n, "n");
    if (!work) return;
    seen.blocks = blocks();
    if (fault == SIGSEGV) *invalid_pointer = 1;
    if (fault && fault != SIGSEGV) std::raise(fault);
    for (int i = 0; i < n; ++i) work[i] = static_cast<T>(i + 1);
    for (int i = 0; i < n; ++i) result.data()[i] = work[i];
    if (T *s = squares.data())
        for (int i = 0; i < n; ++i) s[i] = work[i] * work[i];
    if (raise_type) zorvs_e1mes(raise_type, 99960, "raised on request");
}

float *test_f_fill(int n, ...) { ZORVS_KEYWORD_ENTRY(n, "test_f_fill", lv_result<float>, l_fill<float>(n, &list)); }
double *test_d_fill(int n, ...) { ZORVS_KEYWORD_ENTRY(n, "test_d_fill", lv_result<double>, l_fill<double>(n, &list)); }

// A public routine with a work array of its own that calls the one above
// (n = 3, the squares to `address`, the raise and the fault given), and notes
// the blocks left after the call.
struct Outer { double *inner = nullptr, own = 0; int after = -1; } outer;
const Outer &test_outer(double **address, int type, int fault) {
    outer = Outer{};
    zorvs::keyword_routine("test_outer", [=] {
        double *own = zorvs::workspace<double>(2, "own");
        own[0] = 42;
        outer.inner = test_d_fill(3, ZORVS_RESIDUAL, address, ZORVS_MAX_ITERATIONS, type, ZORVS_LEVERAGE, fault, 0);
        outer.after = blocks();
        outer.own = own[0];
    });
    return outer;
}

// A user function that calls a library routine which warns.
double user_function(double x) { return std::free(test_d_fill(1, ZORVS_MAX_ITERATIONS, 3, 0)), x + 1; }

double mine[4] = {7};

TEST(Frame, Calls) {
    zorvs_test::expect_calls({
        {"result given up", [] { EXPECT_TRUE(!test_d_fill(0, ZORVS_RETURN_USER, mine, 0) && mine[0] == 7); }, 5, 99961},
        // Positions count the fixed arguments, and each real as one.
        {"unknown first", [] { test_f_fill(2, 777, 0); }, 5, 11001, "i1=777 i2=2", "TERMINAL Error from test_f_fill."},
        {"after a count", [] { test_f_fill(2, ZORVS_X_COL_DIM, 3, 888, 0); }, 5, 11001, "i2=4"},
        // Float reals travel as double.
        {"two reals", [] { EXPECT_TRUE((test_f_fill(2, ZORVS_DATA_BOUNDS, 0.1f, 1e30f, 999, 0), seen.upper == 1e30f)); },
         5, 11001, "i1=999 i2=5"},
        // Blocks the caller frees: the plain and the two-count failures; the
        // exit test of a body that keeps its own block.
        {"allocations",
         [] {
             zorvs::keyword_routine("routine", [] {
                 zorvs::allocation_failure_countdown = 1;
                 EXPECT_TRUE(!zorvs::allocate<int>(10) && zorvs_n1rcd(0) == 200);
                 zorvs::allocation_failure_countdown = 1;
                 EXPECT_EQ(zorvs::allocate<double>(3, "n_rows", 4, "n_columns"), nullptr);
                 double *own = zorvs::allocate<double>(2, "n");
                 zorvs::exit_test(own, false);  // after a failure: freed, and null
                 EXPECT_EQ(own, nullptr);
             });
         },
         5, 202, "i1=3 i2=4 l2=n_columns"},
        // Nested public routines: the inner pop is not the user's level.
        {"nested warning", [] { std::free(test_outer(nullptr, 3, 0).inner); }, 3, 99960, "",
         "WARNING  Error 99960 from test_outer.  raised on request"},
        // A user function calls the library as from the top: released inside.
        {"user function",
         [] { zorvs::framed("calls_user", [] { EXPECT_EQ(zorvs::call_user_function(user_function, 1.0), 2.0); }); },
         3, 99960, "", "WARNING  Error 99960 from test_d_fill."},
    });
    zorvs::allocation_failure_countdown = 0;
    // The stop comes at the pop of the routine the user called, not inside.
    EXPECT_EXIT((test_outer(nullptr, 4, 0), std::fputs("[returned]", stderr)), ::testing::ExitedWithCode(4),
                "FATAL    Error 99960 from test_outer\\.  raised on request\n\n$");
}

// Each row: the storage of the result and of the optional output ('o' a
// block of the routine's, 'u' the caller's array, '-' not asked for), the type
// raised once they are written, the rule that keeps a WARNING_IMMEDIATE, and
// what comes back of each: 'o' the block handed over, 'u' the caller's array
// with the values, '0' a null result, '-' an address left unwritten.
const struct { const char *name, *storage; int raise_type, keep_immediate; const char *back; } contract_cases[] = {
    {"clean call hands both over", "oo", 0, 0, "oo"},
    {"a warning fails nothing", "oo", 3, 0, "oo"},
    {"fatal frees both", "oo", 4, 0, "0-"},  // and so does any type above 3
    {"immediate warning fails by default", "oo", 6, 0, "0-"},
    {"immediate warning kept by its rule", "oo", 6, 1, "oo"},
    {"fatal immediate fails under that rule too", "oo", 7, 1, "0-"},
    {"caller storage on a clean call", "uu", 0, 0, "uu"},
    {"caller storage stays after fatal", "uu", 4, 0, "uu"},
    {"caller's result, own output, fatal", "uo", 4, 0, "u-"},
    {"own result, caller's output, fatal", "ou", 4, 0, "0u"},
    {"output not asked for", "o-", 0, 0, "o-"},
};

TEST(Workspace, OutputPairsAreHandedOverOnlyWhenTheCallSucceeds) {
    zorvs_test::Quiet q;
    for (const auto &c : contract_cases) {
        SCOPED_TRACE(c.name);
        double user_result[3] = {0, 0, 0}, user_output[3] = {0, 0, 0}, sentinel = -1;
        double *address = &sentinel;
        const bool caller_result = c.storage[0] == 'u', caller_output = c.storage[1] == 'u';
        void *output = caller_output ? static_cast<void *>(user_output) : c.storage[1] == 'o' ? &address : nullptr;
        // A result in a block of its own: ZORVS_RESIDUAL with a null address,
        // which asks for nothing, in the place of ZORVS_RETURN_USER.
        double *r = test_d_fill(3, ZORVS_MEDIAN, c.keep_immediate, caller_result ? ZORVS_RETURN_USER : ZORVS_RESIDUAL,
                                caller_result ? user_result : nullptr,
                                caller_output ? ZORVS_RESIDUAL_USER : ZORVS_RESIDUAL, output, ZORVS_MAX_ITERATIONS,
                                c.raise_type, 0);
        // The work array and each block taken for an output; none left after the pop.
        EXPECT_EQ(seen.blocks, 1 + std::count(c.storage, c.storage + 2, 'o'));
        EXPECT_EQ(blocks(), 0);
        // The optional output is told by the value the body left in its third
        // element (9, or the sentinel's -1).
        const char back[] = {!r ? '0' : r == user_result ? 'u' : 'o',
                             address != &sentinel ? 'o' : user_output[2] == 9.0 ? 'u' : '-', 0};
        EXPECT_STREQ(back, c.back);
        EXPECT_TRUE(!r || r[2] == 3.0);
        EXPECT_TRUE(address == &sentinel ? sentinel == -1.0 : address[2] == 9.0);
        if (back[0] == 'o') std::free(r);
        if (back[1] == 'o') std::free(address);
    }
    // The n-th allocation fails: the result, the output, the work array.  The
    // message names the count; nothing is handed over, nothing stays taken.
    for (int nth = 1; nth <= 3; ++nth) {
        SCOPED_TRACE(nth);
        double sentinel = -1, *address = &sentinel;
        zorvs::allocation_failure_countdown = nth;
        EXPECT_EQ(test_d_fill(4, ZORVS_RESIDUAL, &address, 0), nullptr);
        zorvs::allocation_failure_countdown = 0;
        EXPECT_EQ(zorvs_test::slots("i1=4 l1=n"), "i1=4 l1=n");
        EXPECT_EQ(zorvs_error_code(), 201);
        EXPECT_TRUE(address == &sentinel && blocks() == 0);
    }
}

TEST(Workspace, ValueFramesAndEarlyFrees) {
    // A value routine's in-line pop ends the blocks of its frame as well.
    zorvs::push_value_frame("value_routine");
    double *a = zorvs::workspace<double>(std::size_t{8});
    int *b = zorvs::workspace<int>(3, "n");
    ASSERT_TRUE(a && b && blocks() == 2);
    zorvs::workspace_free(a);  // before the pop; the other block stays
    EXPECT_EQ(blocks(), 1);
    b[2] = 1;
    zorvs::pop_value_frame("value_routine");
    EXPECT_EQ(blocks(), 0);
    // Many blocks in one frame: the record table grows.
    zorvs_e1psh("many_blocks");
    for (int k = 0; k < 100; ++k) ASSERT_NE(zorvs::workspace<char>(k + 1, "k"), nullptr);
    EXPECT_EQ(blocks(), 100);
    zorvs_e1pop("many_blocks");
    EXPECT_EQ(blocks(), 0);
}

void user_handler(int) {}
const int trapped_signals[] = {SIGILL, SIGSEGV, SIGBUS};
bool users_handlers_in_force() {
    return std::all_of(std::begin(trapped_signals), std::end(trapped_signals), [](int sig) {
        struct sigaction now;
        return sigaction(sig, nullptr, &now) == 0 && now.sa_handler == user_handler;
    });
}

// The user's own handlers are in force around every test of traps.
class Trap : public ::testing::Test {
protected:
    void SetUp() override {
        struct sigaction users = {};
        users.sa_handler = user_handler;
        for (int k = 0; k < 3; ++k) sigaction(trapped_signals[k], &users, &before_[k]);
    }
    void TearDown() override {
        for (int k = 0; k < 3; ++k) sigaction(trapped_signals[k], &before_[k], nullptr);
    }
    struct sigaction before_[3];
};

// A trap leaves the bracket by longjmp: the pop that follows frees the work
// array and the output, leaves the address unwritten and returns the result
// as it stands.  The library's handler is in force inside the bracket, so the
// test runs under the address sanitizer too, whose leak check then covers the
// unwinding.  In a nested call the inner bracket ends only the inner blocks,
// and the outer routine goes on.
TEST_F(Trap, EachFaultBecomesMessagesAndAReturn) {
    const struct { const char *what; int signal, code; bool nested; } cases[] = {
        {"invalid pointer", SIGSEGV, 511, false},
        {"again", SIGSEGV, 511, false},
        {"raised SIGILL", SIGILL, 504, false},
        {"raised SIGBUS", SIGBUS, 510, false},
        {"nested", SIGSEGV, 511, true},
    };
    zorvs_test::Quiet q;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        zorvs_test::CodeLog codes;
        double sentinel = -1, *address = &sentinel;
        if (c.nested) test_outer(&address, 0, c.signal);
        else outer.inner = test_d_fill(3, ZORVS_RESIDUAL, &address, ZORVS_LEVERAGE, c.signal, 0);
        ASSERT_GE(codes.entries().size(), 2u);
        EXPECT_EQ(codes.entries()[0], std::make_pair(5, c.code));
        EXPECT_EQ(codes.entries()[1], std::make_pair(5, 102));
        EXPECT_EQ(zorvs_error_param.i[1], c.signal);
        EXPECT_TRUE(seen.blocks == 3 + c.nested && blocks() == 0 && address == &sentinel);
        EXPECT_NE(outer.inner, nullptr);  // the caller's, as the bracket returns it
        EXPECT_TRUE(!c.nested || (outer.after == 1 && outer.own == 42));
        EXPECT_TRUE(zorvs_got_environ == 0 && zorvs_error_param.trapped == 0 && users_handlers_in_force());
        std::free(outer.inner);
    }
    // A good call works afterwards, and a stale trap mark is cleared by it.
    zorvs_error_param.trapped = 1;
    std::free(test_d_fill(2, 0));
    EXPECT_EQ(zorvs_error_param.trapped, 0);
}

// One bracket per level of nested public routines while they last; deeper
// calls run on without one rather than overflow.  The library's handlers are
// in force inside, the user's after the outermost; trapping off, no bracket.
TEST_F(Trap, BracketsAndHandlersPerLevel) {
    static int deepest;
    static bool library_inside = true;
    struct Nest {
        static void go(int n) {
            zorvs::keyword_routine("nest", [n] {
                deepest = std::max(deepest, zorvs_got_environ);
                library_inside = library_inside && !users_handlers_in_force();
                if (n > 0) go(n - 1);
            });
        }
    };
    Nest::go(30);
    EXPECT_TRUE(deepest == zorvs::max_brackets && library_inside && users_handlers_in_force());
    // Direct installs past the handler table: removals match installs one
    // for one, and one removal too many is ignored.
    const int levels = ZORVS_MAX_SIGNAL_LEVELS + 3;
    for (int k = 0; k < levels; ++k) zorvs_set_signal(1);
    for (int k = 0; k < levels - 1; ++k) zorvs_set_signal(0);
    EXPECT_FALSE(users_handlers_in_force());
    zorvs_set_signal(0);
    EXPECT_TRUE(users_handlers_in_force());
    zorvs_set_signal(0);
    EXPECT_TRUE(users_handlers_in_force());
    zorvs_error_options(ZORVS_SIGNAL_TRAPPING_OFF, 0);
    deepest = 0;
    Nest::go(2);
    EXPECT_TRUE(zorvs_trap_status() == 0 && deepest == 0);
    zorvs_error_options(ZORVS_SIGNAL_TRAPPING_ON, 0);
    EXPECT_TRUE(zorvs_trap_status() == 1 && zorvs_got_environ == 0);
}

// With the default stops a fault ends the process at the pop of the routine
// the user called; with trapping off (and no handler of the user's) the
// signal kills it.
TEST(TrapStops, DefaultStopsAndTrappingOff) {
    EXPECT_EXIT(test_d_fill(1, ZORVS_LEVERAGE, SIGSEGV, 0), ::testing::ExitedWithCode(5),
                "TERMINAL Error from test_d_fill\\..*TERMINAL Error from test_d_fill\\.");
#if !defined(__SANITIZE_ADDRESS__)  // the address sanitizer takes an untrapped SIGSEGV for itself
    EXPECT_EXIT((zorvs_error_options(ZORVS_SIGNAL_TRAPPING_OFF, 0), test_d_fill(1, ZORVS_LEVERAGE, SIGSEGV, 0)),
                ::testing::KilledBySignal(SIGSEGV), "");
#endif
}

}  // namespace
