// checks.hpp - the real argument checks and the safe arithmetic of checks.h
// as one overloaded name for both twins, so that a template body calls
// zorvs::check::c1div(a, b, &r) and the argument type picks zorvs_c1div or
// zorvs_dc1div.  Each name calls the C routine itself, frame and messages
// included; the integer checks have one C name and need none.
#ifndef ZORVS_FRAME_CHECKS_HPP
#define ZORVS_FRAME_CHECKS_HPP

#include "frame/checks.h"
#include "frame/twin.hpp"

namespace zorvs::check {

inline constexpr Twins<zorvs_c1ge0, zorvs_dc1ge0> c1ge0{};

// a / b with NaN, infinities and 0 where a plain division would trap or
// mislead; divide gives the quotient as a value.
inline constexpr Twins<zorvs_c1div, zorvs_dc1div> c1div{};
template <class T>
T divide(T a, T b) {
    T result;
    c1div(a, b, &result);
    return result;
}

inline constexpr Twins<zorvs_c1cip, zorvs_dc1cip> c1cip{};
inline constexpr Twins<zorvs_c1r, zorvs_dc1r> c1r{};
inline constexpr Twins<zorvs_c1wfr, zorvs_dc1wfr> c1wfr{};

}  // namespace zorvs::check

#endif  // ZORVS_FRAME_CHECKS_HPP
