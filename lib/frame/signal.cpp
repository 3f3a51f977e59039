// signal.cpp - trapping of SIGILL, SIGSEGV and SIGBUS inside a library call.
//
// Each trap bracket (frame.hpp) saves an environment in the next slot of
// zorvs_error_param.environ and installs the handler for one level with
// zorvs_set_signal(1), keeping the dispositions it replaced.  The handler
// raises the message of the signal and jumps to the innermost bracket.  The
// handler is installed with sigaction and SA_NODEFER, so the signal is not
// blocked when the handler leaves by longjmp, and a second fault after a
// first is caught too.  After the outermost bracket the user's own
// dispositions are back in force.

#include <csetjmp>
#include <csignal>

#include "frame/frame.hpp"
#include "frame/services.h"

extern "C" {
int zorvs_got_environ = 0;
}

namespace {

constexpr int lv_catch[3] = {SIGILL, SIGSEGV, SIGBUS};

struct SignalState {
    int signal_trapping = 1;
    int sp = 0;  // current nesting level of installed handlers
    int beyond = 0;  // levels asked for past the table, installed no further
    struct sigaction signal_stack[ZORVS_MAX_SIGNAL_LEVELS][3];
};

SignalState lv_signal;

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
            // The table is full: the handler is in force already; count the
            // level so that its removal stays in step with the installs.
            ++lv_signal.beyond;
            zorvs_error_param.trapped = 0;
            return;
        }
        struct sigaction action = {};
        action.sa_handler = l_handle_signal;
        sigemptyset(&action.sa_mask);
        action.sa_flags = SA_NODEFER;
        for (int k = 0; k < 3; ++k) sigaction(lv_catch[k], &action, &lv_signal.signal_stack[lv_signal.sp][k]);
        ++lv_signal.sp;
        zorvs_error_param.trapped = 0;
    } else {
        if (lv_signal.beyond > 0) {
            --lv_signal.beyond;
            return;
        }
        if (lv_signal.sp <= 0) return;
        --lv_signal.sp;
        for (int k = 0; k < 3; ++k) sigaction(lv_catch[k], &lv_signal.signal_stack[lv_signal.sp][k], nullptr);
    }
}

void zorvs_signal(void) {}

}  // extern "C"
