// memory.cpp - the one place where the library obtains memory, so that a
// test can make a chosen allocation fail and see the routine's clean-up.

#include <cstdlib>

#include "frame/frame.hpp"

namespace zorvs {

// 0: allocations succeed.  n > 0: the n-th allocation from now fails, once.
// Per thread: a test sets it for the calls of its own thread only.
constinit thread_local int allocation_failure_countdown = 0;

void *raw_allocate(std::size_t bytes) {
    if (allocation_failure_countdown > 0 && --allocation_failure_countdown == 0) return nullptr;
    return std::malloc(bytes);
}

}  // namespace zorvs
