// continuous_support.hpp - what the continuous distribution files share:
// the constants of a twin, the special functions they build on, the raising
// of a message with real parameters, and the handling of a called
// function's alert.
#ifndef ZORVS_DIST_CONTINUOUS_SUPPORT_HPP
#define ZORVS_DIST_CONTINUOUS_SUPPORT_HPP

#include <cmath>

#include "dist/dist.hpp"
#include "frame/frame.hpp"
#include "frame/raise.hpp"
#include "frame/twin.hpp"

namespace zorvs::continuous {

// An argument check: unless ok, raise (5, code) with the value as r1.
// True when the argument is refused, so that a routine runs all its checks
// in order and then tests once.
template <class T>
bool refused(bool ok, int code, T value) {
    if (!ok) zorvs::raise(5, code, value);
    return !ok;
}

// Severity of the latest event at this level.
inline int current_type() { return zorvs_error_n1rty[0]; }

// An alert (type 2) that a called special function left at this level,
// such as the underflow of erfc far in a tail, is cleared: the caller's
// result (0 or 1) is the right one and nothing went wrong.
inline void clear_alert() {
    if (zorvs_error_n1rty[0] == 2) zorvs_e1mes(0, 0, " ");
}

}  // namespace zorvs::continuous

#endif  // ZORVS_DIST_CONTINUOUS_SUPPORT_HPP
