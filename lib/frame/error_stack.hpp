// error_stack.hpp - the frames of the error stack and the part of its state
// that a push and a pop touch, shared by error.cpp (which owns it) and the
// in-line push and pop of a value routine (frame.hpp).
//
// A value routine (gamma, erfc, normal_cdf, ...) is called millions of times
// in a row and mostly raises nothing.  For it the push and the pop are done in
// line when they are plain: a push below the stack's last frame once the
// error system is initialised, and a pop of the routine's own frame with no
// event in it, no trap pending and no observer waiting at user level.  These
// steps do exactly what zorvs_e1psh and zorvs_e1pop do in that case; every
// other case goes to those two routines.
#ifndef ZORVS_FRAME_ERROR_STACK_HPP
#define ZORVS_FRAME_ERROR_STACK_HPP

#include <cstddef>

#include "frame/services.h"

namespace zorvs {

struct ErrorFrame {
    unsigned char type;  // type of the last message here, or the highest passed up
    unsigned char user;  // 1 if routines called from this frame are called from user code
    int code;            // code that goes with type
    const char *name;    // routine name, kept by pointer
};

// The frame array has one spare frame above the ZORVS_STACK_FRAMES so that
// the overflow raise writes inside the array.  frames[0] is the user's level.
struct ErrorStack {
    ErrorFrame frames[ZORVS_STACK_FRAMES + 1];
    ErrorFrame *top;          // innermost frame
    int n1rcd[2];             // codes that go with zorvs_error_n1rty
    char *message;            // deferred message buffer; null until initialised
    std::size_t end_message;  // length of the text in it
    void (*at_checksum)(int type, int code, const char *message);  // observer of releases
};

extern ErrorStack error_stack;

// zorvs_e1psh in line: clear the message buffer when called from user level,
// open a clean frame, clear the latest-event records.
inline void push_value_frame(const char *name) {
    ErrorStack &s = error_stack;
    ErrorFrame *t = s.top;
    if (!s.message || t - s.frames >= ZORVS_STACK_FRAMES - 1) [[unlikely]] {
        zorvs_e1psh(name);
        return;
    }
    if (t == s.frames) {
        s.end_message = 0;
        s.message[0] = '\0';
    }
    ++t;
    *t = ErrorFrame{0, 0, 0, name};
    s.top = t;
    zorvs_error_n1rty[0] = zorvs_error_n1rty[1] = 0;
    s.n1rcd[0] = s.n1rcd[1] = 0;
}

// zorvs_e1pop in line for a frame that saw no event: the release at user
// level has nothing to print or stop for, type 0 and code 0 pass down.
inline void pop_value_frame(const char *name) {
    ErrorStack &s = error_stack;
    ErrorFrame *t = s.top;
    if (t == s.frames || t->name != name || t->type != 0 || t->code != 0 ||
        zorvs_error_param.trapped || ((t - 1)->user && s.at_checksum)) [[unlikely]] {
        zorvs_e1pop(name);
        return;
    }
    ErrorFrame *below = t - 1;
    if (below->type == 0) below->code = 0;
    zorvs_error_n1rty[0] = zorvs_error_n1rty[1] = 0;
    s.n1rcd[0] = s.n1rcd[1] = 0;
    s.top = below;
}

}  // namespace zorvs

#endif  // ZORVS_FRAME_ERROR_STACK_HPP
