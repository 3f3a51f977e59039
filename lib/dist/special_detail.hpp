// special_detail.hpp - shared pieces of the special functions: Clenshaw's
// sum and the series length rule of Fullerton's FNLIB (initds), and the
// internal cores that one family calls in another without a push of its own.
#ifndef ZORVS_DIST_SPECIAL_DETAIL_HPP
#define ZORVS_DIST_SPECIAL_DETAIL_HPP

#include <cmath>
#include <cstddef>

#include "dist/special.h"
#include "dist/special_tables.hpp"
#include "frame/frame.hpp"
#include "frame/raise.hpp"
#include "frame/services.h"
#include "zorvstat.h"

namespace zorvs::special {

// The twin's constants (s = smallest normal, b = largest, u = 2^-digits,
// e = spacing above 1) and the raising of a message with real parameters,
// under the names the FNLIB ports use.
using zorvs::epsilon;
using zorvs::half_epsilon;
using zorvs::largest;
using zorvs::raise;
using zorvs::smallest;

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

// The series length that the first-use rule (initds_checked below) finds
// over the first nos terms for eta = scale * u in the twin's IEEE format,
// worked out at compile time.
// The first use still works the length out from the machine constants; the
// hot path compares it with this one and takes the split sum below when
// they agree, Clenshaw's loop otherwise.
template <class T, std::size_t N>
constexpr int expected_terms(const SeriesTable<T, N> &table, double scale, int nos = static_cast<int>(N)) {
    const float eta = static_cast<float>(T(scale) * zorvs::half_epsilon<T>());
    float err = 0;
    int i = nos;
    for (; i >= 1; --i) {
        const float a = static_cast<float>(table.c[i - 1]);
        err += a < 0 ? -a : a;
        if (err > eta) break;
    }
    return i < 1 ? 1 : i;
}

// The same series as two half-length sums that run side by side.  With
// w = 2x^2 - 1, T_2k(x) = T_k(w) and T_2k+1(x) = x V_k(w), where V_k are the
// Chebyshev polynomials of the third kind (V_0 = 1, V_1 = 2w - 1, the
// recurrence of T), so
//   sum' c_i T_i(x) = sum' c_2k T_k(w) + x sum c_2k+1 V_k(w).
// Each half is a Clenshaw recurrence in w: the even one ends as
// (b0 - b2)/2, the odd one as b0 - b1.  The two recurrences are independent,
// so the sum takes about half the latency of one N-step recurrence; its
// rounding differs from Clenshaw's in the last bit or so (the bound is of
// the same order: a few units of the largest partial sum).  Callers pass
// |x| <= 1 and a length N known at compile time.
template <int N, class T>
[[gnu::always_inline]] inline T clenshaw_split(T x, const T *cs) {
    static_assert(N >= 2);
    constexpr int even = (N + 1) / 2, odd = N / 2;
    const T w = 2 * x * x - 1;
    const T twow = 2 * w;
    T e0 = 0, e1 = 0, e2 = 0, o0 = 0, o1 = 0, o2 = 0;
#pragma GCC unroll 64
    for (int k = even - 1; k >= 0; --k) {
        e2 = e1;
        e1 = e0;
        e0 = twow * e1 - e2 + cs[2 * k];
        if (k < odd) {
            o2 = o1;
            o1 = o0;
            o0 = twow * o1 - o2 + cs[2 * k + 1];
        }
    }
    return T(0.5) * (e0 - e2) + x * (o0 - o1);
}

// The split sum where the first use found the expected length, Clenshaw's
// loop otherwise.
template <int Expected, class T>
inline T clenshaw_split_expecting(T x, const T *cs, int n) {
    if (n == Expected) [[likely]] return clenshaw_split<Expected>(x, cs);
    return clenshaw(x, cs, n);
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
// caller's frame).  Defined in gamma.cpp.
template <class T>
T gamma_core(T x);
template <class T>
T r9lgmc_core(T x);
template <class T>
void gamma_limits(T *xmin, T *xmax);
// The Newton iteration behind gamma_limits for given smallest and largest
// numbers; raises (4, 9022) or (4, 9023) when it does not settle.
template <class T>
void r9gaml_core(T s, T b, T *xmin, T *xmax);

// The complementary error function (FNLIB erfc), in line here because the
// normal distribution function is built on it; erf.cpp holds the rest.
// |x| <= 1: 1 - x (1 + c(2x^2 - 1)) with the series erfcs.  |x| > 1:
// exp(-x^2)/|x| (0.5 + c(t)) with erc2cs on 1 < x^2 <= 4, t = (8/x^2 - 5)/3,
// and erfccs on x^2 > 4, t = 8/x^2 - 1; for x < 0, 2 minus that.
template <class T>
constexpr auto lv_erfcs = rounded<T>(erfcs_data);
template <class T>
constexpr auto lv_erc2cs = rounded<T>(erc2cs_data);
template <class T>
constexpr auto lv_erfccs = rounded<T>(erfccs_data);

// Series lengths for eta = 0.1 u in each twin's format.
template <class T>
constexpr int erfcs_terms = expected_terms(lv_erfcs<T>, 0.1);
template <class T>
constexpr int erc2cs_terms = expected_terms(lv_erc2cs<T>, 0.1);
template <class T>
constexpr int erfccs_terms = expected_terms(lv_erfccs<T>, 0.1);

inline constexpr double sqrtpi = 1.7724538509055161;

// First-use bounds of erfc; nterf = 0 means not yet worked out.
template <class T>
struct ErfcBounds {
    int nterf, nterfc, nterc2;
    T xsml;   // below it erfc is 2
    T xmax;   // above it erfc underflows
    T sqeps;
};
template <class T>
inline constinit thread_local ErfcBounds<T> lv_erfc_bounds{};

// Fills lv_erfc_bounds<T>; in erf.cpp.
template <class T>
void erfc_first_use();

// erfc; *underflow is set when the result underflowed to 0 (x > xmax),
// and nothing is raised then: the caller decides.
template <class T>
inline T erfc_core(T x, bool *underflow) {
    if (lv_erfc_bounds<T>.nterf == 0) [[unlikely]] erfc_first_use<T>();
    const ErfcBounds<T> &c = lv_erfc_bounds<T>;
    *underflow = false;
    if (x <= c.xsml) return 2;
    if (x > c.xmax) {
        *underflow = true;
        return 0;
    }
    const T y = std::fabs(x);
    if (y <= 1) {
        if (y < c.sqeps) return 1 - 2 * x / T(sqrtpi);
        return 1 - x * (1 + clenshaw_split_expecting<erfcs_terms<T>>(2 * x * x - 1, lv_erfcs<T>.c, c.nterf));
    }
    const T z = y * y;
    T value;
    if (z <= 4)
        value = std::exp(-z) / y *
                (T(0.5) + clenshaw_split_expecting<erc2cs_terms<T>>((8 / z - 5) / 3, lv_erc2cs<T>.c, c.nterc2));
    else
        value = std::exp(-z) / y *
                (T(0.5) + clenshaw_split_expecting<erfccs_terms<T>>(8 / z - 1, lv_erfccs<T>.c, c.nterfc));
    return x < 0 ? 2 - value : value;
}

// The standard normal distribution function, no push, no message.
template <class T>
inline T normal_cdf_core(T x) {
    bool underflow = false;
    T v = erfc_core<T>(-x * T(0.70710678118654757), &underflow);
    return underflow ? T(0) : T(0.5) * v;
}

}  // namespace zorvs::special

#endif
