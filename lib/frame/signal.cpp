// signal.cpp - trapping of SIGILL, SIGSEGV and SIGBUS inside a library call.
//
// Each trap bracket (frame.hpp) saves an environment in the next slot of its
// thread's zorvs_error_param.environ and counts one level with
// zorvs_set_signal(1).  The handler raises the message of the signal and
// jumps to the innermost bracket of the thread that faulted: a fault is
// delivered to that thread, and the environments, the level count and
// zorvs_got_environ are all per thread.  The handler is installed with
// sigaction and SA_NODEFER, so the signal is not blocked when the handler
// leaves by longjmp, and a second fault after a first is caught too.
//
// Dispositions belong to the process, not to a thread.  So the handler is
// installed when the first level opens in any thread, keeping the user's
// dispositions, and those are put back when the last level closes in every
// thread; one lock keeps the count and the installs in step.  A thread that
// faults outside a bracket while another thread holds the handler gets the
// default disposition, as with no handler.

#include <csetjmp>
#include <csignal>
#include <mutex>

#include "frame/frame.hpp"
#include "frame/services.h"

namespace {

constexpr int lv_catch[3] = {SIGILL, SIGSEGV, SIGBUS};

// Per thread: the trapping switch and the thread's open levels.
struct SignalState {
    int signal_trapping = 1;
    int sp = 0;      // levels open in this thread
    int beyond = 0;  // levels asked for past ZORVS_MAX_SIGNAL_LEVELS, counted only
};
constinit thread_local SignalState lv_signal;

// Per process: the levels open in all threads and the user's dispositions.
struct Dispositions {
    std::mutex lock;
    int levels = 0;
    struct sigaction users[3] = {};
};
constinit Dispositions lv_dispositions;

int message_of(int sig) {
    switch (sig) {
        case SIGINT: return 502;
        case SIGILL: return 504;
        case SIGABRT: return 506;
        case SIGFPE: return 508;
        case SIGBUS: return 510;
        case SIGSEGV: return 511;
        default: return 0;
    }
}

void l_handle_signal(int sig) {
    zorvs_error_param.trapped = 1;
    zorvs_error_param.i[1] = sig;
    int code = message_of(sig);
    if (code) zorvs_ermes(5, code);
    if (lv_signal.sp >= 1 && zorvs_got_environ >= 1) {
        --zorvs_got_environ;
        longjmp(zorvs_error_param.environ[zorvs_got_environ], 1);
    }
    // No bracket to return to (the handler was installed without one): put
    // the default disposition back, so that the faulting instruction, run
    // again on return, ends the process as the platform does instead of
    // looping through this handler.
    std::signal(sig, SIG_DFL);
}

}  // namespace

namespace zorvs {
void set_trapping(int on) { lv_signal.signal_trapping = on ? 1 : 0; }
}  // namespace zorvs

extern "C" {

int zorvs_trap_status(void) { return lv_signal.signal_trapping; }

void zorvs_set_signal(int on) {
    if (on) {
        if (lv_signal.sp >= ZORVS_MAX_SIGNAL_LEVELS) {
            // The thread's table is full: the handler is in force already;
            // count the level so that its removal stays in step.
            ++lv_signal.beyond;
            zorvs_error_param.trapped = 0;
            return;
        }
        {
            std::lock_guard<std::mutex> hold(lv_dispositions.lock);
            if (lv_dispositions.levels++ == 0) {
                struct sigaction action = {};
                action.sa_handler = l_handle_signal;
                sigemptyset(&action.sa_mask);
                action.sa_flags = SA_NODEFER;
                for (int k = 0; k < 3; ++k) sigaction(lv_catch[k], &action, &lv_dispositions.users[k]);
            }
        }
        ++lv_signal.sp;
        zorvs_error_param.trapped = 0;
    } else {
        if (lv_signal.beyond > 0) {
            --lv_signal.beyond;
            return;
        }
        if (lv_signal.sp <= 0) return;
        --lv_signal.sp;
        std::lock_guard<std::mutex> hold(lv_dispositions.lock);
        if (--lv_dispositions.levels == 0)
            for (int k = 0; k < 3; ++k) sigaction(lv_catch[k], &lv_dispositions.users[k], nullptr);
    }
}

void zorvs_signal(void) {}

}  // extern "C"
