// version.cpp - zorvs_version: the library's version and the compiler and
// system this copy was built with.
//
// The system string is the build host's name and release, passed in by the
// build (ZORVS_BUILD_SYSTEM); the compiler string comes from the compiler's
// own predefined macros.

#include <cstdlib>
#include <cstring>

#include "frame/frame.hpp"
#include "frame/services.h"
#include "zorvstat.h"

#ifndef ZORVS_BUILD_SYSTEM
#if defined(__linux__)
#define ZORVS_BUILD_SYSTEM "Linux"
#elif defined(__APPLE__)
#define ZORVS_BUILD_SYSTEM "Darwin"
#else
#define ZORVS_BUILD_SYSTEM "unknown system"
#endif
#endif

#if defined(__clang__)
#define ZORVS_COMPILER_STRING "clang " __clang_version__
#elif defined(__GNUC__)
#define ZORVS_COMPILER_STRING "GNU C++ " __VERSION__
#else
#define ZORVS_COMPILER_STRING "unknown C++ compiler"
#endif

namespace {

constexpr const char lv_library_version[] = "ZORV Vostat Version 1.0";
constexpr const char lv_compiler_version[] = ZORVS_COMPILER_STRING;
constexpr const char lv_os_version[] = ZORVS_BUILD_SYSTEM;

char *copy_of(const char *s) {
    std::size_t n = std::strlen(s) + 1;
    char *p = static_cast<char *>(zorvs::raw_allocate(n));  // the caller frees it
    if (!p) {
        zorvs_ermes(5, 200);
        return nullptr;
    }
    std::memcpy(p, s, n);
    return p;
}

}  // namespace

extern "C" char *zorvs_version(int keyword) {
    zorvs_e1psh("zorvs_version");
    char *result = nullptr;
    switch (keyword) {
        case ZORVS_COMPILER_VERSION: result = copy_of(lv_compiler_version); break;
        case ZORVS_LIBRARY_VERSION: result = copy_of(lv_library_version); break;
        case ZORVS_OS_VERSION: result = copy_of(lv_os_version); break;
        default:
            zorvs_e1sti(1, keyword);
            zorvs_e1sti(2, 1);
            zorvs_ermes(5, 103);
    }
    zorvs_e1pop("zorvs_version");
    return result;
}
