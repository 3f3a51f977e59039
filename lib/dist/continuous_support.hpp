// continuous_support.hpp - what the continuous distribution files share:
// machine constants by type, the special functions they build on chosen by
// type, and the raising of a message with real parameters.
#ifndef ZORVS_DIST_CONTINUOUS_SUPPORT_HPP
#define ZORVS_DIST_CONTINUOUS_SUPPORT_HPP

#include <cmath>
#include <limits>
#include <type_traits>

#include "frame/frame.hpp"
#include "zorvstat.h"

namespace zorvs::continuous {

template <class T>
constexpr T epsilon() {  // 2^-23, 2^-52
    return std::numeric_limits<T>::epsilon();
}
template <class T>
constexpr T smallest() {  // smallest positive normal number
    return std::numeric_limits<T>::min();
}
template <class T>
constexpr T largest() {
    return std::numeric_limits<T>::max();
}
template <class T>
constexpr T infinity() {
    return std::numeric_limits<T>::infinity();
}
template <class T>
constexpr T nan() {
    return zorvs::missing<T>();
}

template <class T>
T gamma(T x) {
    if constexpr (std::is_same_v<T, float>) return zorvs_f_gamma(x);
    else return zorvs_d_gamma(x);
}
template <class T>
T log_gamma(T x) {
    if constexpr (std::is_same_v<T, float>) return zorvs_f_log_gamma(x);
    else return zorvs_d_log_gamma(x);
}
template <class T>
T log_beta(T a, T b) {
    if constexpr (std::is_same_v<T, float>) return zorvs_f_log_beta(a, b);
    else return zorvs_d_log_beta(a, b);
}
template <class T>
T erfc(T x) {
    if constexpr (std::is_same_v<T, float>) return zorvs_f_erfc(x);
    else return zorvs_d_erfc(x);
}
template <class T>
T normal_cdf(T x) {
    if constexpr (std::is_same_v<T, float>) return zorvs_f_normal_cdf(x);
    else return zorvs_d_normal_cdf(x);
}
template <class T>
T normal_inverse_cdf(T p) {
    if constexpr (std::is_same_v<T, float>) return zorvs_f_normal_inverse_cdf(p);
    else return zorvs_d_normal_inverse_cdf(p);
}

// Raise (type, code) with up to three real parameters r1.. in order.
inline void raise_reals(int type, int code, double r1) {
    zorvs_e1str(1, r1);
    zorvs_ermes(type, code);
}
inline void raise_reals(int type, int code, double r1, double r2) {
    zorvs_e1str(1, r1);
    zorvs_e1str(2, r2);
    zorvs_ermes(type, code);
}
inline void raise_reals(int type, int code, double r1, double r2, double r3) {
    zorvs_e1str(1, r1);
    zorvs_e1str(2, r2);
    zorvs_e1str(3, r3);
    zorvs_ermes(type, code);
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
