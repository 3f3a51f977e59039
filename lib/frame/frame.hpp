// frame.hpp - the shapes of the library's public routines, written once.
//
// A keyword routine is a thin extern "C" function that opens its variable
// argument list and hands a body to keyword_routine(), which pushes the name,
// clears the static result, runs the body inside the trap bracket and pops:
//
//     namespace {
//     template <class T> T *lv_example = nullptr;          // static result
//     template <class T> void l_example(int n, va_list *list) {
//         zorvs::OutputPair<T> result(lv_example<T>);
//         zorvs::KeywordReader kw(list, 1);                  // 1 fixed argument
//         for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
//             switch (k) {
//             case ZORVS_RETURN_USER: result.take_user(kw.pointer<T>()); break;
//             default: kw.unknown(k); return;                 // (5, 11001)
//             }
//         }
//         ... checks ...
//         if (!result.obtain(n, "n")) return;               // unless the caller's array
//         T *work = zorvs::workspace<T>(n, "n");
//         if (!work) return;
//         ... work ...
//     }
//     }
//     extern "C" float *zorvs_f_example(int n, ...) {
//         ZORVS_KEYWORD_ENTRY(n, "zorvs_f_example", lv_example<float>, l_example<float>(n, &list));
//     }
//
// The pop of the routine's frame frees the work array and, if the call
// failed, the result, whichever way the body left.  The trap bracket leaves
// by longjmp: no object with a non-trivial destructor may live in a body, or
// in anything a body calls, while trapping is on.
#ifndef ZORVS_FRAME_HPP
#define ZORVS_FRAME_HPP

#include <cmath>
#include <csetjmp>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>
#include <type_traits>

#include "frame/error_stack.hpp"
#include "frame/services.h"
#include "frame/twin.hpp"
#include "zorvstat.h"

namespace zorvs {

// Trapping switch, kept with the signal handler.
void set_trapping(int on);

// Number of trap brackets that may be open at once; a deeper call runs
// without a bracket rather than write past the tables.
constexpr int max_brackets = ZORVS_MAX_SIGNAL_LEVELS;

// Reads a keyword list in order and keeps the position of each item,
// counted from 1 over the whole call, fixed arguments included.
class KeywordReader {
public:
    KeywordReader(va_list *list, int fixed_arguments) : list_(list), position_(fixed_arguments) {}

    // A keyword passed as a fixed argument (zorvs_error_options) counts as one item.
    int take_fixed_keyword(int keyword) {
        ++position_;
        return keyword;
    }
    int keyword() { return next<int>(); }
    int integer() { return next<int>(); }
    // A real always travels as double; the float twin narrows it at once.
    template <class T = double>
    T real() {
        return static_cast<T>(next<double>());
    }
    template <class T>
    T *pointer() {
        return next<T *>();
    }
    template <class F>
    F function() {
        return next<F>();
    }
    // Position of the item read last.
    int position() const { return position_; }

    // Report an unknown keyword: i1 = the keyword, i2 = its position.
    void unknown(int keyword, int code = 11001) const {
        zorvs_e1sti(1, keyword);
        zorvs_e1sti(2, position_);
        zorvs_ermes(5, code);
    }

private:
    template <class T>
    T next() {
        ++position_;
        return va_arg(*list_, T);
    }
    va_list *list_;
    int position_;
};

// The trap bracket around a body: one environment slot, one handler level.
template <class Body>
void bracketed(Body &&body) {
    if (!zorvs_trap_status() || zorvs_got_environ >= max_brackets) {
        body();
        return;
    }
    int slot = zorvs_got_environ;
    ++zorvs_got_environ;
    if (setjmp(zorvs_error_param.environ[slot]) == 0) {
        zorvs_set_signal(1);
        body();
        --zorvs_got_environ;
    } else {
        // The handler has already given the slot back.
        zorvs_ermes(5, 102);
    }
    zorvs_set_signal(0);
}

// Keyword routine with a static result: push, clear, bracket, pop, return.
template <class Result, class Body>
Result keyword_routine(const char *name, Result &result, Body &&body) {
    zorvs_e1psh(name);
    result = Result{};
    bracketed(body);
    zorvs_e1pop(name);
    return result;
}

// Keyword routine that returns nothing.
template <class Body>
void keyword_routine(const char *name, Body &&body) {
    zorvs_e1psh(name);
    bracketed(body);
    zorvs_e1pop(name);
}

// Value routine: push, compute, pop; no bracket.  The plain push and pop
// are done in line (error_stack.hpp).
template <class Body>
auto value_routine(const char *name, Body &&body) {
    push_value_frame(name);
    auto value = body();
    pop_value_frame(name);
    return value;
}

// Short routine: push, run, pop; no bracket and no result.  The short
// routines that take their numbers by pointer (zorvs_chfac, zorvs_e2csf, ...)
// have this shape.
template <class Body>
void framed(const char *name, Body &&body) {
    zorvs_e1psh(name);
    body();
    zorvs_e1pop(name);
}

// Call a user's function from a body.  For the length of the call the
// routine's frame is marked as user level, so that a library routine the
// user's function calls reports and stops as if called from the top.
template <class F, class... Args>
auto call_user_function(F function, Args... args) {
    zorvs_e1usr("ON");
    if constexpr (std::is_void_v<decltype(function(args...))>) {
        function(args...);
        zorvs_e1usr("OFF");
    } else {
        auto value = function(args...);
        zorvs_e1usr("OFF");
        return value;
    }
}

// Exit test of a body: on FATAL or worse, a result the body allocated is
// freed and the static result becomes null; caller storage stays.
template <class T>
void exit_test(T *&result, bool user_storage, int highest_allowed = 3) {
    if (zorvs_error_n1rty[0] > highest_allowed) {
        if (!user_storage) {
            std::free(result);
            result = nullptr;
        }
    }
}

// Allocation.  Every block the library obtains comes through here, so that
// tests can make the n-th allocation fail (allocation_failure_countdown).
extern constinit thread_local int allocation_failure_countdown;
void *raw_allocate(std::size_t bytes);

// The workspace (workspace.cpp): blocks owned by the frame on top of the error
// stack when they are taken, ended by that frame's pop on every path.
void *tracked_block(std::size_t bytes, BlockUse use, Failure failure, void *slot,
                    void (*store)(void *slot, void *block));
void *workspace_block(std::size_t bytes);
// Free one block before its frame's pop; a block not in the workspace is left alone.
void workspace_free(void *block);

// A block of `count` elements from `take`, which takes a size in bytes and
// gives a block or null; failure raises (5, 200).
template <class T, class Take>
T *allocate_from(Take &&take, std::size_t count) {
    T *p = static_cast<T *>(take((count ? count : 1) * sizeof(T)));
    if (!p) zorvs_ermes(5, 200);
    return p;
}

// A block of one counted size; failure raises (5, 201) with the count and the
// argument that set it.
template <class T, class Take>
T *allocate_from(Take &&take, int count, const char *name) {
    T *p = count >= 0 ? static_cast<T *>(take((count ? count : 1) * sizeof(T))) : nullptr;
    if (!p) {
        zorvs_e1sti(1, count);
        zorvs_e1stl(1, name);
        zorvs_ermes(5, 201);
    }
    return p;
}

// A block of two counted sizes; failure raises (5, 202).
template <class T, class Take>
T *allocate_from(Take &&take, int count1, const char *name1, int count2, const char *name2) {
    std::size_t n = (count1 >= 0 && count2 >= 0)
                        ? static_cast<std::size_t>(count1) * static_cast<std::size_t>(count2)
                        : 0;
    T *p = (count1 >= 0 && count2 >= 0) ? static_cast<T *>(take((n ? n : 1) * sizeof(T))) : nullptr;
    if (!p) {
        zorvs_e1sti(1, count1);
        zorvs_e1stl(1, name1);
        zorvs_e1sti(2, count2);
        zorvs_e1stl(2, name2);
        zorvs_ermes(5, 202);
    }
    return p;
}

// A block the caller of the routine will own and free, with the sizes as
// allocate_from takes them: (count), (count, name) or (count, name, count, name).
template <class T, class... Sizes>
T *allocate(Sizes... sizes) {
    return allocate_from<T>(raw_allocate, sizes...);
}

// A work array, with the same sizes: freed at the pop of the routine's frame,
// on every path, a trap's included.  No hand-written free is needed.
template <class T, class... Sizes>
T *workspace(Sizes... sizes) {
    return allocate_from<T>(workspace_block, sizes...);
}

// Free a block obtained with allocate and null the pointer.
template <class T>
void release(T *&p) {
    std::free(p);
    p = nullptr;
}

// One output of a routine, given by a pair of keywords: ZORVS_X passes the
// address of a pointer that receives a block the routine allocates, and
// ZORVS_X_USER the caller's own array.  The block is taken from the
// workspace; the pop of the routine's frame hands it over through the
// address if the call succeeded, and otherwise frees it and leaves the
// address unwritten, a trap included.
//
// The static result is a pair of the same kind, its own block by default and
// the caller's storage with ZORVS_RETURN_USER.  Built on the static result,
// the pair keeps that variable in step at once, since a trap's return hands
// it back as it stands; its block belongs to the caller from the start, and
// the pop frees it and nulls the result if the call failed.
//
// Failure is told by `failure`: by default a type above 3 at the routine's
// level, as exit_test.  The object has no destructor and may be abandoned by
// a trap; it keeps nothing that the pop needs.
template <class T>
class OutputPair {
public:
    explicit OutputPair(Failure failure = Failure::above_warning) : failure_(failure) {}
    explicit OutputPair(T *&static_result, Failure failure = Failure::above_warning)
        : result_(&static_result), failure_(failure) {}

    // ZORVS_X_USER, or ZORVS_RETURN_USER for the result: the caller's array.
    void take_user(T *storage) {
        user_ = true;
        address_ = nullptr;
        set(storage);
    }
    // ZORVS_X: where the block goes on success.  A null address asks for nothing.
    void take_address(T **address) {
        user_ = false;
        address_ = address;
        set(nullptr);
    }
    // The result is always wanted; an optional output once a keyword asked for it.
    bool wanted() const { return result_ || user_ || address_; }
    bool user() const { return user_; }
    T *data() const { return storage_; }

    // Make the storage ready: the caller's array as it was given, or a block
    // of the sizes given, as allocate takes them, for data() to return.
    // False, with the message raised, only when the block cannot be had; an
    // optional output that nobody asked for needs nothing and is ready.
    template <class... Sizes>
    bool obtain(Sizes... sizes) {
        if (user_ || storage_ || !wanted()) return true;
        void *slot = result_ ? static_cast<void *>(result_) : static_cast<void *>(address_);
        BlockUse use = result_ ? BlockUse::result : BlockUse::output;
        auto take = [&](std::size_t bytes) { return tracked_block(bytes, use, failure_, slot, &store); };
        set(allocate_from<T>(take, sizes...));
        return storage_ != nullptr;
    }

    // Give the output up before the pop: the block freed, the static result
    // null even with the caller's storage, no address written.
    void drop() {
        if (!user_) workspace_free(storage_);
        user_ = false;
        address_ = nullptr;
        set(nullptr);
    }

private:
    static void store(void *slot, void *block) { *static_cast<T **>(slot) = static_cast<T *>(block); }
    void set(T *p) {
        storage_ = p;
        if (result_) *result_ = p;
    }
    T **result_ = nullptr;   // the static result, for the routine's result
    T **address_ = nullptr;  // ZORVS_X
    T *storage_ = nullptr;
    bool user_ = false;
    Failure failure_;
};

// The keyword list of a routine whose one keyword is ZORVS_RETURN_USER.
// False after an unknown keyword, which is raised and ends the list.
template <class T>
bool read_return_user(KeywordReader &kw, OutputPair<T> &result) {
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        if (k != ZORVS_RETURN_USER) {
            kw.unknown(k);
            return false;
        }
        result.take_user(kw.pointer<T>());
    }
    return true;
}

}  // namespace zorvs

// The whole body of a keyword routine's extern "C" entry point: the list is
// opened after `last_fixed`, the body expression sees it as `list`.
#define ZORVS_KEYWORD_ENTRY(last_fixed, name, static_result, body_call)                  \
    va_list list;                                                                         \
    va_start(list, last_fixed);                                                           \
    auto zorvs_result_ = zorvs::keyword_routine(name, static_result, [&] { body_call; }); \
    va_end(list);                                                                         \
    return zorvs_result_

// The same for a keyword routine that returns nothing.
#define ZORVS_KEYWORD_ENTRY_VOID(last_fixed, name, body_call) \
    va_list list;                                            \
    va_start(list, last_fixed);                              \
    zorvs::keyword_routine(name, [&] { body_call; });        \
    va_end(list)

// The whole body of a value routine's extern "C" entry point: the body
// expression computed in a value frame that bears the entry point's own name.
#define ZORVS_VALUE_ENTRY(body_call) return zorvs::value_routine(__func__, [&] { return body_call; })

#endif  // ZORVS_FRAME_HPP
