// normal.cpp - the standard normal distribution function and its inverse.
//
// The distribution function is 0.5 erfc(-x/sqrt 2), so that both tails keep
// full relative accuracy; an underflow far in the lower tail gives 0 without
// a message.  The inverse is a rational approximation of the inverse error
// function with seven-digit coefficients in three ranges of
// t = sqrt(-log(2 min(p, 1-p))) (after Hastings-type minimax forms, see
// Abramowitz and Stegun 26.2.23 for the principle).  No Newton step follows,
// so both twins are accurate to about 1e-7 in relative terms.
#include "dist/special_detail.hpp"

namespace {
using namespace zorvs::special;

template <class T>
T l_normal_cdf(T x) {
    return normal_cdf_core(x);
}

// The tail form, t >= 4, with q = 1/t.
double tail_form(double t) {
    const double q = 1 / t;
    const double n = ((double(0.01078639) * q - double(0.1498384)) * q - double(0.002028152)) * q;
    const double d = ((q - double(0.06888301)) * q + double(0.5211733)) * q + double(0.09952975);
    return t + t * (double(0.0001851159) + n / d);
}

// Both twins evaluate the form in double, so that the single twin carries
// the error of the approximation and not that of single-precision arithmetic;
// the range tests use the twin's own epsilon.
template <class T>
T l_normal_inverse_cdf(T p_in) {
    using W = double;
    const W p = p_in;
    if (!(p > 0 && p < 1)) {
        raise(5, 9041, p);
        return zorvs::missing<T>();
    }
    const W e = epsilon<T>();
    W v;
    if (e < p && p < 1 - 3 * e) {
        const W y = std::fabs(1 - 2 * p);
        if (y <= W(0.85)) {
            const W z = y * y;
            const W d = W(-0.05496261) / (W(-1.187515) + z);
            const W g = W(-3.293474) + z + W(-1.896513) / (W(-2.374996) + z + d);
            v = y + y * (W(-0.113773) + W(-0.5751703) * z / g);
        } else {
            // w + w y with w = 1 - y is 4 p (1 - p); formed from p itself it
            // escapes the cancellation in 1 - |1 - 2p| (1 - p is exact here
            // for p >= 0.5).
            const W t = std::sqrt(-std::log(4 * p * (1 - p)));
            if (t < W(2.5)) {
                const W n = ((W(0.05073975) * t - W(0.2368201)) * t - W(0.1314774)) * t;
                const W d = ((t - W(7.586103)) * t + W(21.98546)) * t - W(44.27977);
                v = t + t * (W(-0.1146666) + n / d);
            } else if (t < 4) {
                const W n = ((W(0.06208963) * t - W(0.3166501)) * t + W(0.3937021)) * t;
                const W d = ((t - W(2.962883)) * t + W(4.666263)) * t - W(6.266786);
                v = t + t * (W(-0.05668422) + n / d);
            } else {
                v = tail_form(t);
            }
        }
    } else {
        const W r = p >= W(0.5) ? 2 * (1 - p) : 2 * p;
        v = tail_form(std::sqrt(-std::log(r + (r - r * r))));
    }
    const W sqrt2 = W(1.4142135623730951);
    return static_cast<T>(p >= W(0.5) ? sqrt2 * v : -sqrt2 * v);
}

}  // namespace

extern "C" float zorvs_f_normal_cdf(float x) { ZORVS_VALUE_ENTRY(l_normal_cdf(x)); }
extern "C" double zorvs_d_normal_cdf(double x) { ZORVS_VALUE_ENTRY(l_normal_cdf(x)); }
extern "C" float zorvs_f_normal_inverse_cdf(float p) { ZORVS_VALUE_ENTRY(l_normal_inverse_cdf(p)); }
extern "C" double zorvs_d_normal_inverse_cdf(double p) { ZORVS_VALUE_ENTRY(l_normal_inverse_cdf(p)); }
