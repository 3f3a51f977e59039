// output_pair.hpp - an optional output given by a keyword pair: X receives a
// malloc'ed array through a pointer to a pointer, X_USER names the caller's
// storage.  When neither was given the array is still needed as work space
// and is freed at the end.  Plain data, no destructor: it may live in a body
// that a trap leaves by longjmp.
#ifndef ZORVS_OPTIONAL_OUTPUT_HPP
#define ZORVS_OPTIONAL_OUTPUT_HPP

#include "frame/frame.hpp"

namespace zorvs {

template <class T>
struct OptionalOutput {
    T **give = nullptr;  // X: receives the allocated array
    T *user = nullptr;   // X_USER: the caller's storage
    T *data = nullptr;   // where the routine writes

    void set_give(T **p) {
        give = p;
        user = nullptr;
    }
    void set_user(T *p) {
        user = p;
        give = nullptr;
    }
    // Point data at the caller's storage or a new block; false after a
    // failed allocation (reported).
    bool acquire(int count1, const char *name1, int count2 = 1, const char *name2 = nullptr) {
        if (user)
            data = user;
        else if (name2)
            data = allocate<T>(count1, name1, count2, name2);
        else
            data = allocate<T>(count1, name1);
        return data != nullptr;
    }
    // Hand the block to the caller, or free it: it was only work space, or
    // the routine failed (then the caller's pointer is set null).
    void finish(bool failed) {
        if (user) return;
        if (give) *give = failed ? nullptr : data;
        if (!give || failed) std::free(data);
        data = nullptr;
    }
};

}  // namespace zorvs

#endif  // ZORVS_OPTIONAL_OUTPUT_HPP
