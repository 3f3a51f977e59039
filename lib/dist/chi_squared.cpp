// chi_squared.cpp - the chi-squared distribution function and its inverse.
//
// Distribution function, with h = df/2 and x = chi2/2:
//   df > 65        Wilson and Hilferty's cube-root normal approximation
//                  (Wilson and Hilferty 1931; Johnson, Kotz and Balakrishnan,
//                  Continuous Univariate Distributions 1, ch. 18);
//   x < max(h/2, 13)   the power series of P(h, x) = x^h e^-x / gamma(h+1) *
//                  sum x^k / ((h+1)...(h+k));
//   otherwise      the asymptotic series of the complement, 1 - x^(h-1) e^-x
//                  / gamma(h) * (1 + (h-1)/x + (h-1)(h-2)/x^2 + ...), finite
//                  for an even df.
// Inverse: a root search on the distribution function from the
// Wilson-Hilferty start, bracketed by doubling steps and closed by the
// Illinois variant of false position (Dowell and Jarratt, BIT 11 (1971)
// 168-174).
#include <algorithm>
#include <cmath>

#include "dist/continuous_support.hpp"
#include "dist/special_detail.hpp"

namespace {

namespace zc = zorvs::continuous;

// 1 - Q(h, x) by the asymptotic series of the complement Q.  P is smallest
// at the branch's lower edge x = max(h/2, 13) (2.6e-4 at x = 16.125, h =
// 32.25), where the subtraction magnifies the rounding of Q, and the
// truncation of the series, by Q/P, some 4e3: in single precision that alone
// would cost 2e-4 of P.  Both twins therefore form the branch in double, with
// the double epsilon ending the series, and the single twin rounds P.
double asymptotic_cdf(double x, double h) {
    const double e = zorvs::epsilon<double>();
    const double g = zorvs::special::gamma_core<double>(h);  // 0.25 <= h <= 32.5: no message
    double y = 1 / x;
    double t = (h - 1) * y;
    double sum = 1 + t;
    double c = h - 2;
    for (int i = 2; i <= 50; ++i) {
        t = t * c * y;
        if (t <= e * sum) break;
        sum += t;
        c -= 1;
    }
    return 1 - y * (sum * std::exp(h * std::log(x) - x)) / g;
}

template <class T>
T l_chi_squared_cdf(T chi2, T df) {
    const T e = zorvs::epsilon<T>();
    if (chi2 < 0) {
        zorvs_e1str(1, chi2);
        zorvs_e1stl(1, "chi_squared");
        zorvs_ermes(1, 9055);
        return 0;
    }
    if (!(df >= T(0.5))) {  // a NaN df included
        zorvs::raise(5, 9051, df);
        return zorvs::missing<T>();
    }
    if (std::isnan(chi2)) return chi2;  // a missing value stays missing
    if (chi2 <= T(1e-12)) return 0;
    if (std::isinf(chi2)) return 1;  // at any df, an infinite one included (inf/inf in the cube root)
    if (df > 65) {
        if (chi2 < 2) return 0;
        T h = (T(2) / 9) / df;  // 9 df overflows a float df near its largest
        T z = (std::cbrt(chi2 / df) - (1 - h)) / std::sqrt(h);
        if (z > 5) return 1;
        if (z < T(-18.8055)) {
            zorvs_ermes(2, 9019);
            return 0;
        }
        // z >= -18.8055: the normal tail does not underflow, and the core
        // spares the push of a public call.
        return zorvs::special::normal_cdf_core<T>(z);
    }
    if (chi2 > 200) return 1;

    T x = T(0.5) * chi2;
    T h = T(0.5) * df;
    if (x < std::max(T(0.5) * h, T(13))) {
        if (df > 25 && chi2 < 2) return 0;
        T g = zorvs::special::gamma_core<T>(h);  // 0.25 <= h <= 32.5: no message
        // Each term is the last times x/(h+i); the ratio does not depend on
        // the running term, so its division overlaps the chain of products.
        T t = 1 / (g * h);
        T sum = t;
        for (int i = 1; i <= 50; ++i) {
            t *= x / (h + static_cast<T>(i));
            if (t <= e * sum) break;
            sum += t;
        }
        return std::exp(h * std::log(x) - x) * sum;
    }
    return static_cast<T>(asymptotic_cdf(x, h));
}

// The distribution function as the root search sees it.  The first slope
// point 1.05 z can lie far left of a large df's body, where the normal form
// raises its underflow alert; the alert concerns that trial point only, not
// the caller's quantile, and is cleared.
// The body is called directly: the search passes x >= 0 and a checked df,
// so nothing but that alert can be raised, and no push is needed.
template <class T>
T cdf(T x, T df) {
    T r = l_chi_squared_cdf<T>(x, df);
    zc::clear_alert();
    return r;
}

template <class T>
T l_chi_squared_inverse_cdf(T p, T df) {
    const T e = zorvs::epsilon<T>();
    bool bad = false;
    if (!(p > 0 && p < 1)) {
        zorvs::raise(5, 9043, p);
        bad = true;
    }
    if (!(df >= T(0.5))) {
        zorvs::raise(5, 9051, df);
        bad = true;
    }
    if (bad) return zorvs::missing<T>();

    const T tol = 10 * e;
    T z = zorvs::dist::normal_inverse_cdf(p);
    T h = (T(2) / 9) / df;  // 9 df overflows a float df near its largest
    T w = 1 - h + z * std::sqrt(h);
    T x0 = std::max(T(0), df * w * w * w);
    T f0 = cdf(x0, df) - p;
    if (f0 == 0) return x0;

    // A first slope from a nearby point, then steps doubled until the sign
    // of the residual changes.
    T x1, dx;
    if (std::fabs(z) >= 1) {
        x1 = T(1.05) * z;
        dx = x1 - x0;
    } else {
        x1 = z + T(0.05);
        dx = T(0.05);
    }
    x1 = std::max(T(0), x1);
    T d = (cdf(x1, df) - p - f0) / dx;
    T s = -f0 / std::max(T(0.01), d);
    T f1 = 0;
    bool bracketed = false;
    for (int k = 0; k < 100; ++k) {
        s *= 2;
        x1 = std::max(T(0), x0 + s);
        f1 = cdf(x1, df) - p;
        if (f0 * f1 < 0) {
            bracketed = true;
            break;
        }
    }
    if (!bracketed) {
        zorvs::raise(3, 9052, p, df, x1);
        return zorvs::missing<T>();
    }

    // Illinois false position: the retained end's residual is halved when
    // the same end survives twice, and a bisection step replaces a secant
    // step that failed to shrink the residual.
    bool m = false;
    for (int k = 0; k < 100; ++k) {
        T mid = (x0 + x1) / 2;
        dx = x1 - x0;
        if (mid != 0 ? std::fabs(dx / mid) < tol : std::fabs(dx) < tol) return mid;
        T x = m ? mid : x1 - f1 * dx / (f1 - f0);
        x = std::max(T(0), x);
        m = false;
        T f = cdf(x, df) - p;
        if (f * f1 <= 0) {
            x0 = x1;
            f0 = f1;
            x1 = x;
            f1 = f;
        } else {
            x1 = x;
            f0 /= 2;
            if (std::fabs(f) > std::fabs(f0)) {
                f0 *= 2;
                m = true;
            }
            f1 = f;
        }
    }
    zorvs_ermes(3, 9053);
    return (x0 + x1) / 2;
}

}  // namespace

extern "C" {

float zorvs_f_chi_squared_cdf(float chi_squared, float df) {
    ZORVS_VALUE_ENTRY(l_chi_squared_cdf<float>(chi_squared, df));
}
double zorvs_d_chi_squared_cdf(double chi_squared, double df) {
    ZORVS_VALUE_ENTRY(l_chi_squared_cdf<double>(chi_squared, df));
}
float zorvs_f_chi_squared_inverse_cdf(float p, float df) { ZORVS_VALUE_ENTRY(l_chi_squared_inverse_cdf<float>(p, df)); }
double zorvs_d_chi_squared_inverse_cdf(double p, double df) {
    ZORVS_VALUE_ENTRY(l_chi_squared_inverse_cdf<double>(p, df));
}

}  // extern "C"
