// t_dist.cpp - Student's t distribution function and its inverse.
//
// Distribution function after Hill, "Algorithm 395: Student's
// t-distribution", CACM 13 (1970) 617-619: for t^2 >= df the incomplete beta
// ratio I_{df/(df+t^2)}(df/2, 1/2); for an integer df below 20 the exact
// finite trigonometric sum (t^2 < 4) or the exact tail series; otherwise
// Hill's normal approximation of the transformed variable, completed by erfc.
//
// Inverse after Hill, "Algorithm 396: Student's t-quantiles", CACM 13 (1970)
// 619-620: closed forms for df = 1 and 2, the incomplete beta inverse for
// 1 < df < 2, and for df > 2 Hill's expansion in the tail of the
// distribution or his Cornish-Fisher-type normal expansion elsewhere.
#include <cmath>

#include "dist/beta_incomplete.hpp"
#include "dist/continuous.h"
#include "dist/continuous_support.hpp"

namespace {

namespace zc = zorvs::continuous;

constexpr double two_over_pi = 0.63661977236758005;

template <class T>
T l_t_cdf(T t, T df) {
    if (!(df >= 1)) {
        zorvs::raise(5, 9042, df);
        return zorvs::missing<T>();
    }
    if (std::isnan(t)) return t;  // a missing t stays missing
    // Infinite degrees of freedom: the normal limit (the forms below would
    // take infinity times 0).
    if (std::isinf(df)) return zorvs::dist::normal_cdf(t);
    const T c2pi = static_cast<T>(two_over_pi);
    T t2 = t * t;
    T P;
    if (df <= t2) {
        P = zorvs::dist::beta_incomplete(df / (df + t2), T(0.5) * df, T(0.5));
    } else {
        T y = t2 / df;
        T b = 1 + y;
        bool integer = std::trunc(df) == df;
        if (integer && !(df >= 20 && t2 < df) && !(df > 200)) {
            if (df < 20 && t2 < 4) {
                // Exact finite sum.
                T a = std::sqrt(y);
                T y2 = a;
                if (df == 1) a = 0;
                T n = df - 2;
                while (n > 1) {
                    a = (n - 1) / (b * n) * a + y2;
                    n -= 2;
                }
                if (n == 0) a = a / std::sqrt(b);
                else a = (std::atan(y2) + a / b) * c2pi;
                P = 1 - a;
            } else {
                // Exact tail series.
                T a = 1, z = 0, w = df, old;
                do {
                    z += 2;
                    w = w * (z - 1) / (b * z);
                    old = a;
                    a += w / (df + z);
                } while (a != old);
                T n = df;
                while (n > 1 && a >= T(1e-30)) {
                    a = a * (n - 1) / (b * n);
                    n -= 2;
                }
                if (n != 0) a = std::sqrt(b) * c2pi * a / b;
                P = a;
            }
        } else {
            // Hill's normal approximation.
            if ((1 + y) - 1 != 0) y = y * std::log(b) / ((1 + y) - 1);
            T a = df - T(0.5);
            b = 48 * a * a;
            y = a * y;
            T Y = (((((T(-0.4) * y - T(3.3)) * y - 24) * y - T(85.5)) / (T(0.8) * y * y + 100 + b) + y + 3) / b + 1) *
                  std::sqrt(y);
            if (Y < T(18.8125)) {
                P = zorvs::dist::erfc(Y * static_cast<T>(0.70710678118654757));
                zc::clear_alert();
            } else {
                P = 0;
            }
        }
    }
    return t > 0 ? 1 - T(0.5) * P : T(0.5) * P;
}

template <class T>
T l_t_inverse_cdf(T p, T df) {
    const T e = zorvs::epsilon<T>();
    const T half_pi = T(1.570796);
    bool bad = false;
    if (!(df >= 1)) {
        zorvs::raise(5, 9042, df);
        bad = true;
    }
    if (!(p > 0 && p < 1)) {
        zorvs::raise(5, 9043, p);
        bad = true;
    }
    if (bad) return zorvs::missing<T>();
    if (std::isinf(df)) return zorvs::dist::normal_inverse_cdf(p);  // the normal limit

    if (p > T(0.5) - e && p < T(0.5) + e) return 0;
    T P = p < T(0.5) ? 2 * p : 2 * (1 - p);
    T t;
    if (std::fabs(df - 2) <= e) {
        t = std::sqrt(2 / (P * (2 - P)) - 2);
    } else if (std::fabs(df - 1) <= e) {
        T g = P * half_pi;
        t = std::cos(g) / std::sin(g);
    } else if (df <= 2) {
        // 1 - |1 - 2p| is the two-sided tail P itself; forming it by the
        // subtraction would cancel to 0 for a p below the epsilon.
        // 1 - x from the inverse, so that (1/x - 1) = (1 - x)/x keeps its
        // digits for x close to 1 (p close to 1/2).
        T cx;
        T x = zc::betin_with_complement<T>(P, T(0.5) * df, T(0.5), &cx);
        if (x == 0) {
            zorvs_ermes(4, 9008);
            return zorvs::infinity<T>();
        }
        t = std::sqrt(cx / x * df);
    } else {
        T a = 1 / (df - T(0.5));
        T b = 48 / (a * a);
        T c = ((20700 * a / b - 98) * a - 16) * a + T(96.36);
        T d = ((T(94.5) / (b + c) - 3) / b + 1) * std::sqrt(a * half_pi) * df;
        T y = std::pow(d * P, 2 / df);
        T t2;
        if (y <= a + T(0.05)) {
            T w = ((df + 6) / (df * y) - T(0.089) * d - T(0.822)) * (df + 2) * 3;
            T v = (1 / w + T(0.5) / (df + 4)) * y - 1;
            t2 = df * (v * (df + 1) / (df + 2) + 1 / y);
        } else {
            T x = zorvs::dist::normal_inverse_cdf(T(0.5) * P);
            y = x * x;
            if (df < 5) c += (df - T(4.5)) * T(0.3) * (x + T(0.6));
            c = (((T(0.05) * d * x - 5) * x - 7) * x - 2) * x + b + c;
            y = (((((T(0.4) * y + T(6.3)) * y + 36) * y + T(94.5)) / c - y - 3) / b + 1) * x;
            y = a * y * y;
            T w = y <= T(0.002) ? y + T(0.5) * y * y : std::exp(y) - 1;
            t2 = df * w;
        }
        t = std::sqrt(t2);
    }
    return p < T(0.5) ? -t : t;
}

}  // namespace

extern "C" {

float zorvs_f_t_cdf(float t, float df) { ZORVS_VALUE_ENTRY(l_t_cdf<float>(t, df)); }
double zorvs_d_t_cdf(double t, double df) { ZORVS_VALUE_ENTRY(l_t_cdf<double>(t, df)); }
float zorvs_f_t_inverse_cdf(float p, float df) { ZORVS_VALUE_ENTRY(l_t_inverse_cdf<float>(p, df)); }
// The double twin reports under its historical name.
double zorvs_d_t_inverse_cdf(double p, double df) {
    return zorvs::value_routine("zorvs_d_t_inverse", [&] { return l_t_inverse_cdf<double>(p, df); });
}

}  // extern "C"
