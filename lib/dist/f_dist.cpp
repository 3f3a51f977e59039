// f_dist.cpp - Fisher's F distribution function and its inverse.
//
// With x = df2/(df2 + df1 f), F(f) = 1 - I_x(df2/2, df1/2) (Abramowitz and
// Stegun 26.6.2), taken as the complement that the ratio routine gives
// without subtracting from 1.  The inverse solves the incomplete beta ratio in the
// lighter tail: for p <= 1/2, I_x(df1/2, df2/2) = p with f = df2 x/(df1 (1-x));
// above, I_x(df2/2, df1/2) = 1 - p with f = (1/x - 1) df2/df1.
#include <cmath>

#include "dist/beta_incomplete.hpp"
#include "dist/continuous.h"
#include "dist/continuous_support.hpp"

namespace {

namespace zc = zorvs::continuous;

// Degrees of freedom whose half is positive: the smallest subnormal halves
// to a shape of 0, where the incomplete beta ratio has no value.
template <class T>
bool usable_df(T df) {
    return T(0.5) * df > 0;  // a NaN df included
}

template <class T>
T l_F_cdf(T f, T df1, T df2) {
    if (!usable_df(df1) || !usable_df(df2)) {
        zorvs::raise(5, 9048, df1, df2);
        return zorvs::missing<T>();
    }
    if (f <= 0) {
        zorvs::raise(1, 9050, f);
        return 0;
    }
    if (std::isnan(f)) return f;  // a missing f stays missing
    return zc::F_tail<T>(f, df1, df2, false);
}

template <class T>
T l_F_inverse_cdf(T p, T df1, T df2) {
    const T e = zorvs::epsilon<T>();
    bool bad = false;
    if (!(p > 0 && p < 1)) {
        zorvs::raise(5, 9043, p);
        bad = true;
    }
    if (!usable_df(df1) || !usable_df(df2)) {
        zorvs::raise(5, 9048, df1, df2);
        bad = true;
    }
    if (bad) return zorvs::missing<T>();
    // 1 - x comes from the inverse itself, to its own relative accuracy:
    // formed from x it would cancel where x is close to 1.
    T cx;
    if (p <= T(0.5)) {
        T x = zc::betin_with_complement<T>(p, T(0.5) * df1, T(0.5) * df2, &cx);
        if (x >= 1 - e) {
            zorvs_ermes(4, 9008);
            return zorvs::infinity<T>();
        }
        return df2 * x / (df1 * cx);
    }
    T x = zc::betin_with_complement<T>(1 - p, T(0.5) * df2, T(0.5) * df1, &cx);
    if (x == 0) {
        zorvs_ermes(4, 9008);
        return zorvs::infinity<T>();
    }
    return cx / x * df2 / df1;  // (1/x - 1) df2/df1
}

}  // namespace

namespace zorvs::continuous {

// x = df2/(df2 + df1 f) and 1 - x, each formed from a ratio at most 1 so
// that both keep full relative accuracy; the distribution function is the
// complement 1 - I_x(df2/2, df1/2) and the upper tail I_x(df2/2, df1/2),
// both as the ratio routine gives them, without subtracting from 1.  Both
// twins form x and 1 - x in double, where the ratio is summed
// (beta_incomplete.cpp).
template <class T>
T F_tail(T f_in, T df1_in, T df2_in, bool upper) {
    const double f = f_in, df1 = df1_in, df2 = df2_in;
    // Infinite degrees of freedom: the chi-squared limits, F = chi2(df1)/df1
    // for an infinite df2, df2/chi2(df2) for an infinite df1, and 1 for both.
    if (std::isinf(df1) || std::isinf(df2)) {
        double lower;
        if (std::isinf(df1) && std::isinf(df2)) lower = f >= 1 ? 1.0 : 0.0;
        else if (std::isinf(df2)) lower = zorvs::dist::chi_squared_cdf(df1 * f, df1);
        else lower = 1 - zorvs::dist::chi_squared_cdf(df2 / f, df2);
        return static_cast<T>(upper ? 1 - lower : lower);
    }
    double x, cx;
    const double m = df1 * f;
    if (m >= df2) {
        const double r = df2 / m, inv = 1 / (1 + r);
        x = r * inv;
        cx = inv;
    } else {
        const double r = m / df2, inv = 1 / (1 + r);
        x = inv;
        cx = r * inv;
    }
    return static_cast<T>(beta_ratio<double>(x, cx, 0.5 * df2, 0.5 * df1, !upper));
}
template float F_tail<float>(float, float, float, bool);
template double F_tail<double>(double, double, double, bool);

}  // namespace zorvs::continuous

extern "C" {

float zorvs_f_F_cdf(float f, float df1, float df2) { ZORVS_VALUE_ENTRY(l_F_cdf<float>(f, df1, df2)); }
double zorvs_d_F_cdf(double f, double df1, double df2) { ZORVS_VALUE_ENTRY(l_F_cdf<double>(f, df1, df2)); }
float zorvs_f_F_inverse_cdf(float p, float df1, float df2) { ZORVS_VALUE_ENTRY(l_F_inverse_cdf<float>(p, df1, df2)); }
double zorvs_d_F_inverse_cdf(double p, double df1, double df2) {
    ZORVS_VALUE_ENTRY(l_F_inverse_cdf<double>(p, df1, df2));
}

}  // extern "C"
