// error_stack.hpp - the frames of the error stack and the part of its state
// that a push and a pop touch, shared by error.cpp (which owns it) and the
// in-line push and pop of a value routine (frame.hpp).
//
// A value routine (gamma, erfc, normal_cdf, ...) is called millions of times
// in a row and mostly raises nothing.  For it the push and the pop are done in
// line when they are plain: a push below the stack's last frame once the
// error system is initialised, and a pop of the routine's own frame with no
// event in it, no trap pending and no observer waiting at user level.
// zorvs_e1psh and zorvs_e1pop begin with the same steps (push_plain,
// pop_plain) and leave every other case to their out-of-line rest.
//
// The stack also owns the workspace: the blocks that routines take for work
// arrays and outputs (frame.hpp), each recorded with the frame that was on top
// when it was taken.  The pop of that frame frees the block, or hands an
// output over to the caller, on every path, the unwinding after a trap
// included; a frame that owns no block pops as before.
#ifndef ZORVS_FRAME_ERROR_STACK_HPP
#define ZORVS_FRAME_ERROR_STACK_HPP

#include <cstddef>

#include "frame/services.h"

namespace zorvs {

struct ErrorFrame {
    unsigned char type;    // type of the last message here, or the highest passed up
    unsigned char user;    // 1 if routines called from this frame are called from user code
    unsigned short spare;  // named padding, so that a push writes the first eight bytes in one
                           // store: the pop reads type and code in one load, which stalls when
                           // it spans several narrower stores
    int code;              // code that goes with type
    const char *name;      // routine name, kept by pointer
};

// What becomes of a workspace block at the pop of its frame.
enum class BlockUse : unsigned char {
    work,    // a work array: freed
    result,  // the routine's static result, the caller's from the start:
             // freed and the result nulled if the call failed
    output,  // an optional output: handed over through the caller's address
             // if the call succeeded, else freed and the address not written
};

// When the pop counts a routine's call as failed, for its outputs.
enum class Failure : unsigned char {
    above_warning,         // the latest type at this level above 3
    above_warning_but_immediate,  // the frame's own type above 3, other than 6
};

struct WorkBlock {
    void *block;
    const ErrorFrame *frame;         // the owner: the block ends at its pop
    void *slot;                      // result or output: where the pointer goes
    void (*store)(void *slot, void *block);  // writes the pointer as its own type
    BlockUse use;
    Failure failure;
};

// The error stack of one thread, with the rest of the thread's error state
// that the push, the pop and the trap bracket touch: the parameters
// (zorvs_error_param), the latest types (zorvs_error_n1rty) and the count of
// open brackets (zorvs_got_environ) are its members, so that a routine takes
// the thread's address once.  The frame array has one spare frame above the
// ZORVS_STACK_FRAMES so that the overflow raise writes inside the array.
// frames[0] is the user's level.  The innermost frame is kept as a depth, not
// a pointer into `frames`, so that the record is constant-initialised: a
// thread's first access needs no constructor and no guard.
struct ErrorStack {
    int depth = 0;                 // innermost frame: frames[depth]
    int n1rty[2] = {};             // zorvs_error_n1rty
    int n1rcd[2] = {};             // codes that go with zorvs_error_n1rty
    int got_environ = 0;           // zorvs_got_environ
    int work_count = 0;            // blocks in the workspace, oldest first
    int work_capacity = 0;         // room in `work`
    char *message = nullptr;       // deferred message buffer; null until initialised
    std::size_t end_message = 0;   // length of the text in it
    void (*at_checksum)(int type, int code, const char *message) = nullptr;  // observer of releases
    WorkBlock *work = nullptr;     // the workspace's records; grows, never shrinks
    ErrorFrame frames[ZORVS_STACK_FRAMES + 1] = {{0, 1, 0, 0, "USER"}};
    zorvs_error_param_t param = {};  // zorvs_error_param

    ErrorFrame *top() { return frames + depth; }
};

extern constinit thread_local ErrorStack error_stack;

// The calling thread's record, its address taken once.  In position-
// independent code the address comes from a TLS descriptor, which the
// compiler would otherwise work out again after each store; the empty asm
// hides where the pointer came from, so it stays in a register.
inline ErrorStack &thread_stack() {
    ErrorStack *s = &error_stack;
    asm("" : "+r"(s));
    return *s;
}

// Does the frame `t` own a block?  Blocks are recorded in the order of their
// frames, since a frame's blocks end before the frame below takes more.
inline bool owns_work(const ErrorStack &s, const ErrorFrame *t) {
    return s.work_count != 0 && s.work[s.work_count - 1].frame >= t;
}

// The pop's end of the workspace for the frame `t` and those above it: work
// arrays freed, outputs handed over or freed by their exit test.  `latest` is
// zorvs_error_n1rty[0] as the routine left it; after a trap every output is
// freed and a result is left as it stands.
void close_work(const ErrorFrame *t, int latest, bool trapped);

// The plain push, as zorvs_e1psh does it below the stack's last frames once
// the thread's error system is initialised: clear the message buffer when
// called from user level, open a clean frame, clear the latest-event records.
// Any other case returns false having changed nothing.
inline bool push_plain(ErrorStack &s, const char *name) {
    int depth = s.depth;
    if (!s.message || depth >= ZORVS_STACK_FRAMES - 1) [[unlikely]] return false;
    if (depth == 0) {
        s.end_message = 0;
        s.message[0] = '\0';
    }
    ErrorFrame *t = s.frames + depth + 1;
    *t = ErrorFrame{0, 0, 0, 0, name};
    s.depth = depth + 1;
    s.n1rty[0] = s.n1rty[1] = 0;
    s.n1rcd[0] = s.n1rcd[1] = 0;
    return true;
}

// The plain pop, as zorvs_e1pop does it for a routine's own frame with no
// event in it, no trap pending, no block owned and no observer waiting at
// user level: the release has nothing to print or stop for (type 0 never
// prints or stops), and type 0 and code 0 pass down.  Any other case returns
// false having changed nothing.
inline bool pop_plain(ErrorStack &s, const char *name) {
    int depth = s.depth;
    ErrorFrame *t = s.frames + depth;
    if (depth == 0 || t->name != name || t->type != 0 || t->code != 0 || s.param.trapped ||
        ((t - 1)->user && s.at_checksum) || owns_work(s, t)) [[unlikely]]
        return false;
    if ((t - 1)->type == 0) (t - 1)->code = 0;
    s.n1rty[0] = s.n1rty[1] = 0;
    s.n1rcd[0] = s.n1rcd[1] = 0;
    s.depth = depth - 1;
    return true;
}

// The push and pop of a value routine, in line for the plain case.
inline void push_value_frame(const char *name) {
    if (!push_plain(thread_stack(), name)) [[unlikely]] zorvs_e1psh(name);
}

inline void pop_value_frame(const char *name) {
    if (!pop_plain(thread_stack(), name)) [[unlikely]] zorvs_e1pop(name);
}

}  // namespace zorvs

#endif  // ZORVS_FRAME_ERROR_STACK_HPP
