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
template <class T>
T tail_form(T t) {
    const T q = 1 / t;
    const T n = ((T(0.01078639) * q - T(0.1498384)) * q - T(0.002028152)) * q;
    const T d = ((q - T(0.06888301)) * q + T(0.5211733)) * q + T(0.09952975);
    return t + t * (T(0.0001851159) + n / d);
}

template <class T>
T l_normal_inverse_cdf(T p) {
    if (!(p > 0 && p < 1)) {
        raise(5, 9041, p);
        return zorvs::missing<T>();
    }
    const T e = epsilon<T>();
    T v;
    if (e < p && p < 1 - 3 * e) {
        const T y = std::fabs(1 - 2 * p);
        if (y <= T(0.85)) {
            const T z = y * y;
            const T d = T(-0.05496261) / (T(-1.187515) + z);
            const T g = T(-3.293474) + z + T(-1.896513) / (T(-2.374996) + z + d);
            v = y + y * (T(-0.113773) + T(-0.5751703) * z / g);
        } else {
            const T w = 1 - y;
            const T t = std::sqrt(-std::log(w + w * y));
            if (t < T(2.5)) {
                const T n = ((T(0.05073975) * t - T(0.2368201)) * t - T(0.1314774)) * t;
                const T d = ((t - T(7.586103)) * t + T(21.98546)) * t - T(44.27977);
                v = t + t * (T(-0.1146666) + n / d);
            } else if (t < 4) {
                const T n = ((T(0.06208963) * t - T(0.3166501)) * t + T(0.3937021)) * t;
                const T d = ((t - T(2.962883)) * t + T(4.666263)) * t - T(6.266786);
                v = t + t * (T(-0.05668422) + n / d);
            } else {
                v = tail_form(t);
            }
        }
    } else {
        const T r = p >= T(0.5) ? 2 * (1 - p) : 2 * p;
        v = tail_form(std::sqrt(-std::log(r + (r - r * r))));
    }
    const T sqrt2 = T(1.4142135623730951);
    return p >= T(0.5) ? sqrt2 * v : -sqrt2 * v;
}

}  // namespace

extern "C" float zorvs_f_normal_cdf(float x) {
    return zorvs::value_routine("zorvs_f_normal_cdf", [&] { return l_normal_cdf(x); });
}
extern "C" double zorvs_d_normal_cdf(double x) {
    return zorvs::value_routine("zorvs_d_normal_cdf", [&] { return l_normal_cdf(x); });
}
extern "C" float zorvs_f_normal_inverse_cdf(float p) {
    return zorvs::value_routine("zorvs_f_normal_inverse_cdf", [&] { return l_normal_inverse_cdf(p); });
}
extern "C" double zorvs_d_normal_inverse_cdf(double p) {
    return zorvs::value_routine("zorvs_d_normal_inverse_cdf", [&] { return l_normal_inverse_cdf(p); });
}
