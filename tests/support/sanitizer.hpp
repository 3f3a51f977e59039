// sanitizer.hpp - ZORVS_UNDER_ASAN is defined when the tests are built with
// the address sanitizer, which takes SIGSEGV for itself: the tests that trap
// a fault skip then.
#ifndef ZORVS_TEST_SANITIZER_HPP
#define ZORVS_TEST_SANITIZER_HPP

#if defined(__SANITIZE_ADDRESS__)
#define ZORVS_UNDER_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZORVS_UNDER_ASAN 1
#endif
#endif

#endif  // ZORVS_TEST_SANITIZER_HPP
