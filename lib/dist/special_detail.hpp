// special_detail.hpp - shared pieces of the special functions: the machine
// constants of each twin, message raising, Clenshaw's sum and the series
// length rule of Fullerton's FNLIB (initds), and the internal cores that
// one family calls in another without a push of its own.
#ifndef ZORVS_DIST_SPECIAL_DETAIL_HPP
#define ZORVS_DIST_SPECIAL_DETAIL_HPP

#include <cmath>
#include <type_traits>

#include "dist/special.h"
#include "dist/special_tables.hpp"
#include "frame/frame.hpp"
#include "frame/services.h"
#include "zorvstat.h"

namespace zorvs::special {

// s = smallest normal, b = largest, u = 2^-digits (half the epsilon),
// e = spacing above 1.
template <class T>
T smallest() {
    if constexpr (std::is_same_v<T, float>) return zorvs_f_machine(1); else return zorvs_d_machine(1);
}
template <class T>
T largest() {
    if constexpr (std::is_same_v<T, float>) return zorvs_f_machine(2); else return zorvs_d_machine(2);
}
template <class T>
T half_epsilon() {
    if constexpr (std::is_same_v<T, float>) return zorvs_f_machine(3); else return zorvs_d_machine(3);
}
template <class T>
T epsilon() {
    if constexpr (std::is_same_v<T, float>) return zorvs_f_machine(4); else return zorvs_d_machine(4);
}

// Raise (type, code) with up to two real parameters r1, r2.
inline void raise(int type, int code) { zorvs_ermes(type, code); }
inline void raise(int type, int code, double r1) {
    zorvs_e1str(1, r1);
    zorvs_ermes(type, code);
}
inline void raise(int type, int code, double r1, double r2) {
    zorvs_e1str(1, r1);
    zorvs_e1str(2, r2);
    zorvs_ermes(type, code);
}

// Clenshaw's recurrence for sum' cs[i] T_i(x), the first term halved.
// Callers inside the library pass a valid length and |x| <= 1.
template <class T>
inline T clenshaw(T x, const T *cs, int n) {
    T b0 = 0, b1 = 0, b2 = 0;
    const T twox = 2 * x;
    for (int i = n - 1; i >= 0; --i) {
        b2 = b1;
        b1 = b0;
        b0 = twox * b1 - b2 + cs[i];
    }
    return T(0.5) * (b0 - b2);
}

// Checked sum, raising (5, 9001), (5, 9002) and (3, 9003) in the caller's frame.
template <class T>
T csevl_checked(T x, const T *cs, int n) {
    if (n < 1) {
        zorvs_e1sti(1, n);
        raise(5, 9001);
        return zorvs::missing<T>();
    }
    if (n > 1000) {
        zorvs_e1sti(1, n);
        raise(5, 9002);
        return zorvs::missing<T>();
    }
    if (x < T(-1.1) || x > T(1.1)) raise(3, 9003, x);
    return clenshaw(x, cs, n);
}

// Terms to keep so that the dropped tail sums to no more than eta.  The
// running error is held in single precision in both twins, as in FNLIB.
template <class T>
int initds_checked(const T *cs, int nos, float eta) {
    if (nos < 1) {
        zorvs_e1sti(1, nos);
        raise(5, 9004);
        return 0;
    }
    float err = 0;
    int i = nos;
    for (; i >= 1; --i) {
        err += std::fabs(static_cast<float>(cs[i - 1]));
        if (err > eta) break;
    }
    if (i == nos) {
        raise(5, 9005);
        return 0;
    }
    return i < 1 ? 1 : i;
}

// Cores shared across files, no push of their own (errors land in the
// caller's frame).  Defined in gamma.cpp and erf.cpp.
template <class T>
T gamma_core(T x);
template <class T>
T r9lgmc_core(T x);
template <class T>
void gamma_limits(T *xmin, T *xmax);
// erfc; *underflow is set when the result underflowed to 0 (x > xmax),
// and nothing is raised then: the caller decides.
template <class T>
T erfc_core(T x, bool *underflow);

// The standard normal distribution function, no push, no message.
template <class T>
inline T normal_cdf_core(T x) {
    bool underflow = false;
    T v = erfc_core<T>(-x * T(0.70710678118654757), &underflow);
    return underflow ? T(0) : T(0.5) * v;
}

}  // namespace zorvs::special

#endif
