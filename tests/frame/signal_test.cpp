// Signal trapping: a fault inside a bracketed routine becomes messages
// (5, code of the signal) and (5, 102) and a return; nesting returns to the
// innermost bracket; the user's own handlers are back after the outermost.
#include "support/tables.hpp"

#include <csignal>

namespace {

using zorvs_test::CodeLog;

double *const invalid_pointer = reinterpret_cast<double *>(static_cast<std::uintptr_t>(16));
int written, went_on;

// A routine that writes `count` values through `p`; one that calls it with
// an invalid pointer and then goes on.
void write_through(int count, double *p) {
    zorvs::keyword_routine("test_writer", [=] {
        written = 0;
        for (int i = 0; i < count; ++i) p[i] = i, written = i + 1;
    });
}
void outer_writer() {
    zorvs::keyword_routine("test_outer_writer", [] {
        went_on = 0;
        write_through(2, invalid_pointer);
        went_on = 1;
    });
}

void user_handler(int) {}
const int trapped_signals[] = {SIGILL, SIGSEGV, SIGBUS};
bool users_handlers_in_force() {
    bool all = true;
    for (int sig : trapped_signals) {
        struct sigaction now;
        sigaction(sig, nullptr, &now);
        all = all && now.sa_handler == user_handler;
    }
    return all;
}

class Trap : public zorvs_test::Fresh {
protected:
    void SetUp() override {
        Fresh::SetUp();
        struct sigaction mine = {};
        mine.sa_handler = user_handler;
        for (int k = 0; k < 3; ++k) sigaction(trapped_signals[k], &mine, &before_[k]);
    }
    void TearDown() override {
        for (int k = 0; k < 3; ++k) sigaction(trapped_signals[k], &before_[k], nullptr);
    }
    struct sigaction before_[3];
};

TEST_F(Trap, EachFaultBecomesMessagesAndAReturn) {
    static int sig;
    const struct { const char *what; void (*fault)(); int signal, code; bool outer_goes_on; } cases[] = {
        {"invalid pointer", [] { write_through(3, invalid_pointer); }, SIGSEGV, 511, false},
        {"again", [] { write_through(1, invalid_pointer); }, SIGSEGV, 511, false},
        {"raised SIGILL", [] { zorvs::keyword_routine("test_raiser", [] { std::raise(sig = SIGILL); }); }, SIGILL, 504,
         false},
        {"raised SIGBUS", [] { zorvs::keyword_routine("test_raiser", [] { std::raise(sig = SIGBUS); }); }, SIGBUS, 510,
         false},
        {"nested", outer_writer, SIGSEGV, 511, true},
    };
    zorvs_test::Quiet q;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        CodeLog codes;
        went_on = 0;
        c.fault();
        ASSERT_GE(codes.entries().size(), 2u);
        EXPECT_EQ(codes.entries()[0], std::make_pair(5, c.code));
        EXPECT_EQ(codes.entries()[1], std::make_pair(5, 102));
        EXPECT_EQ(zorvs_error_param.i[1], c.signal);
        EXPECT_EQ(written, 0);
        EXPECT_EQ(went_on, c.outer_goes_on);
        EXPECT_EQ(zorvs_got_environ, 0);
        EXPECT_EQ(zorvs_error_param.trapped, 0);
        EXPECT_TRUE(users_handlers_in_force());
    }
    // A good call works afterwards, and a stale trap mark is cleared by it.
    zorvs_error_param.trapped = 1;
    double good[2];
    write_through(2, good);
    EXPECT_EQ(good[1], 1.0);
    EXPECT_EQ(zorvs_error_param.trapped, 0);
}

TEST_F(Trap, HandlersPerLevel) {
    static bool inside_is_library;
    zorvs::keyword_routine("level_1", [] {
        zorvs::keyword_routine("level_2", [] {
            zorvs::keyword_routine("level_3", [] {
                inside_is_library = !users_handlers_in_force() && zorvs_got_environ == 3;
            });
        });
    });
    EXPECT_TRUE(inside_is_library);
    EXPECT_TRUE(users_handlers_in_force());
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
}

// With the default stops a fault ends the process at the pop of the routine
// the user called; with trapping off (and no handler of the
// user's) the signal kills it.
TEST(TrapStops, DefaultStopsAndTrappingOff) {
    EXPECT_EXIT(write_through(1, invalid_pointer), ::testing::ExitedWithCode(5),
                "TERMINAL Error from test_writer\\..*TERMINAL Error from test_writer\\.");
#if !defined(__SANITIZE_ADDRESS__)  // the address sanitizer takes an untrapped SIGSEGV for itself
    EXPECT_EXIT((zorvs_error_options(ZORVS_SIGNAL_TRAPPING_OFF, 0), write_through(1, invalid_pointer)),
                ::testing::KilledBySignal(SIGSEGV), "");
#endif
}

}  // namespace
