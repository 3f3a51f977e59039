// gamma_incomplete.cpp - the incomplete gamma integral and the gamma
// distribution function.
//
// zorvs_f_gamma_incomplete(a, x) is the integral from 0 to x of
// t^(a-1) exp(-t) dt, gamma(a) x^a times Tricomi's incomplete gamma function
// gamma*(a, x) = x^-a P(a, x), which is evaluated by Fullerton's FNLIB method
// (Gautschi, "A computational procedure for incomplete gamma functions",
// ACM TOMS 5 (1979) 466-481):
//   x <= 1          Taylor series of gamma*(a, x)             (l_r9gmit)
//   1 < x, a < x    continued fraction of the complement      (l_r9lgic)
//   1 < x <= a      Perron's continued fraction of gamma*     (l_r9lgit)
// The product is formed in logarithms (l_gamit), since the public routine
// takes only a > 0 and the result is positive.
//
// zorvs_f_gamma_cdf(x, a) is the regularised P(a, x) by the classical
// series and continued fraction with the fixed tolerance 1e-8, in both
// precisions: a fast distribution function of about eight correct digits;
// above the shape 1e3 by the method for large shapes, to about 1e-14.
#include <cmath>

#include "dist/continuous_support.hpp"
#include "dist/large_shapes.hpp"

namespace {

namespace zc = zorvs::continuous;

// Taylor sum S of Tricomi's gamma*(a, x) = S / gamma(a+1) for 0 < x <= 1 and
// a > 0: S = 1 + sum (-x)^k a / (k! (a + k)).
template <class T>
T l_r9gmit(T a, T x) {
    const T eps = zorvs::epsilon<T>() / 2;
    T te = a, s = 1;
    for (int k = 1; k <= 200; ++k) {
        T fk = static_cast<T>(k);
        te = -x * te / fk;
        T t = te / (a + fk);
        s += t;
        if (std::fabs(t) < eps * std::fabs(s)) break;
    }
    return s;
}

// log of the complementary incomplete gamma function Gamma(a, x) for large
// x and a <= x, by its continued fraction; alx = log x.
template <class T>
T l_r9lgic(T a, T x, T alx) {
    const T eps = zorvs::epsilon<T>() / 2;
    T xpa = x + 1 - a;
    T xma = x - 1 - a;
    T r = 0, p = 1, s = 1;
    for (int k = 1; k <= 300; ++k) {
        T fk = static_cast<T>(k);
        T t = fk * (a - fk) * (1 + r);
        r = -t / ((xma + 2 * fk) * (xpa + 2 * fk) + t);
        p *= r;
        s += p;
        if (std::fabs(p) < eps * s) break;
    }
    return a * alx - x + std::log(s / xpa);
}

// Perron's continued fraction for x > 1, a >= x: the factor hstar of
// Tricomi's gamma*(a, x) = e^-x / (gamma(a+1) hstar).
// Where a + x passes the square root of the largest number the products
// of the recurrence would overflow (inf/inf); there its terms are divided
// through by a + x + k first, which the large a makes harmless.
template <class T>
T l_r9lgit(T a, T x) {
    const T eps = zorvs::epsilon<T>() / 2;
    T ax = a + x;
    T a1x = ax + 1;
    const bool scaled = ax > std::sqrt(zorvs::largest<T>()) / 4;
    T r = 0, p = 1, s = 1;
    for (int k = 1; k <= 200; ++k) {
        T fk = static_cast<T>(k);
        if (scaled) {
            const T u = (a + fk) / (ax + fk) * x * (1 + r);
            r = u / ((a1x + fk) - u);
        } else {
            T t = (a + fk) * x * (1 + r);
            r = t / ((ax + fk) * (a1x + fk) - t);
        }
        p *= r;
        s += p;
        if (std::fabs(p) < eps * s) break;
    }
    return 1 - x * s / a1x;
}

// log of gamma(a, x) = gamma(a) x^a gamma*(a, x) for a > 0, x > 0, with
// gamma*(a, x) taken region by region as in FNLIB's gamit.  In the Taylor and
// Perron regions gamma* carries 1/gamma(a+1), which is cancelled against
// gamma(a) by hand (gamma(a+1) = a gamma(a)): gamma(a, x) = x^a S / a, or
// x^a e^-x / (a hstar).  Neither gamma(a) x^a (which overflows for a large a)
// nor gamma* (which underflows) is formed, and no two large logarithms are
// subtracted, so the single twin keeps its precision wherever the result is
// representable.
template <class T>
T l_gamit(T a, T x) {
    T alx = std::log(x);
    if (x <= 1) return a * alx - std::log(a) + std::log(l_r9gmit(a, x));
    if (a >= x) return a * alx - x - std::log(a) - std::log(l_r9lgit(a, x));
    // gamma(a, x) = gamma(a) (1 - Gamma(a, x)/gamma(a)).
    T lga = zorvs::dist::log_gamma(a);
    // Past the mode (a < x) the integral holds more than a third of
    // gamma(a): where gamma(a) / 3 overflows, so does the result.  The
    // difference below would only be rounding there, and could pass 0.
    if (lga - T(1.1) > std::log(zorvs::largest<T>())) return zorvs::infinity<T>();
    T t = l_r9lgic(a, x, alx) - lga;
    return lga + std::log1p(-std::exp(t));
}

template <class T>
T l_gamma_incomplete(T a, T x) {
    bool bad = false;
    if (!(a > 0)) {  // a NaN a included
        zorvs::raise(5, 9032, a);
        bad = true;
    }
    if (x < 0) {
        zorvs::raise(5, 9033, x);
        bad = true;
    }
    if (bad) return zorvs::missing<T>();
    if (std::isnan(x)) return x;  // a missing x stays missing
    if (x == 0) return 0;
    // The limits: the whole integral gamma(a) (which may overflow to
    // infinity), and for an infinite a, 0 up to x = 1 and infinity beyond.
    if (std::isinf(x)) return std::exp(zorvs::dist::log_gamma(a));
    if (std::isinf(a)) return x <= 1 ? T(0) : zorvs::infinity<T>();
    return std::exp(l_gamit(a, x));
}

// Largest shape served by the series and continued fraction below; beyond,
// the incomplete gamma ratio for large shapes (large_shapes.cpp: Temme's
// uniform expansion near the mean, series and continued fraction with an
// exact leading factor in the tails) gives P to about 1e-14 in constant
// time.  Those sums take about 6 sqrt(a) rounds and keep only the tolerance
// 1e-8 (the double twin 4e-8 at 1e8 against SciPy's gammainc, the single
// twin 1.5e-4 at 1e3); their exponent a log x - x - log_gamma(a) cancels
// and keeps a rounding of about eps a log a, and near the centre the
// continued fraction's stopping rule, a change below 1e-8 from one round
// to the next, ends long before it has converged at huge shapes.  From 1e3
// on in both twins the large-shape method is both faster and more
// accurate; the shapes below keep their values bit for bit.
template <class T>
constexpr T gamma_cdf_shape_limit() {
    return T(1e3);
}

template <class T>
constexpr T kFourthRootLargest = sizeof(T) == sizeof(float) ? T(4.2e9) : T(1.1e77);

// Rounds of either sum at most: the longest needed up to the shape limit is
// about 6 sqrt(a), 60000 at 1e8.  A sum that has not ended by then will not.
constexpr int kGammaCdfRounds = 1000000;

// The warning and NaN of a value the method cannot give.
template <class T>
T gamma_cdf_unreachable(T x, T a) {
    zorvs::raise(3, 9070, x, a, gamma_cdf_shape_limit<T>());
    return zorvs::missing<T>();
}

// The standard gamma distribution function P(a, x): the series
// x^a e^-x / gamma(a+1) * (1 + x/(a+1) + x^2/((a+1)(a+2)) + ...) for x <= 1
// or x < a, else 1 - Q(a, x) with Q by the Legendre continued fraction in
// its three-term recurrence with rescaling (Abramowitz and Stegun 6.5.29,
// 6.5.31).  Both stop at the tolerance 1e-8.
//
// Shapes beyond the limit above: the ratio for large shapes, in double,
// rounded to the twin.
template <class T>
T l_gamma_cdf(T x, T a) {
    const T big = T(1e30);
    const T tol = T(1e-8);
    const T u = std::log(zorvs::smallest<T>()) + zorvs::epsilon<T>();
    if (x < 0) {
        zorvs_e1str(1, x);
        zorvs_e1stl(1, "x");
        zorvs_ermes(1, 9055);
        return 0;
    }
    if (x == 0) return 0;
    if (!(a > 0)) {  // a NaN a included
        zorvs::raise(5, 9056, a);
        return zorvs::missing<T>();
    }
    // A missing x stays missing (the loops below would not end on a NaN).
    if (std::isnan(x)) return x;
    if (std::isinf(a)) return 0;  // all the mass beyond any finite x
    // x beyond the cube root of the largest number; the logarithm only where
    // x passes its fourth root.
    if (x > kFourthRootLargest<T> && std::log(x) >= std::log(zorvs::largest<T>()) / 3) {
        if (a >= T(0.5) * x) {
            zorvs::raise(4, 9010, x, a);
            return zorvs::missing<T>();
        }
        return 1;
    }
    if (a > gamma_cdf_shape_limit<T>()) return static_cast<T>(zc::gamma_ratio_large(a, x, false));
    T exponent = a * std::log(x) - x - zorvs::dist::log_gamma(a);
    T f = exponent <= u ? T(0) : std::exp(exponent);

    if (x <= 1 || x < a) {
        T c = 1, g = 1, s = a;
        int rounds = 0;
        do {
            if (++rounds > kGammaCdfRounds) return gamma_cdf_unreachable(x, a);
            s += 1;
            c = c * x / s;
            g += c;
        } while (c > tol);
        const T v = g * f / a;
        return v > 1 ? T(1) : v;  // rounding can pass 1 by an ulp
    }

    T y = 1 - a;
    T z = x + y + 1;
    T c = 0;
    T p1 = 1, p2 = x, p3 = x + 1, p4 = z * x;
    T r = p3 / p4;
    for (int rounds = 1;; ++rounds) {
        if (rounds > kGammaCdfRounds) return gamma_cdf_unreachable(x, a);
        c += 1;
        y += 1;
        z += 2;
        T t = y * c;
        T p5 = p3 * z - p1 * t;
        T p6 = p4 * z - p2 * t;
        if (p6 != 0) {
            T q = p5 / p6;
            T d = std::fabs(r - q);
            if (d <= 10 * q * tol && d <= tol) break;
            r = q;
        }
        p1 = p3;
        p2 = p4;
        p3 = p5;
        p4 = p6;
        if (std::fabs(p5) >= big || std::fabs(p6) >= big) {
            p1 /= big;
            p2 /= big;
            p3 /= big;
            p4 /= big;
        }
    }
    const T v = 1 - r * f;
    return v < 0 ? T(0) : v;
}

}  // namespace

extern "C" {

float zorvs_f_gamma_incomplete(float a, float x) { ZORVS_VALUE_ENTRY(l_gamma_incomplete<float>(a, x)); }
double zorvs_d_gamma_incomplete(double a, double x) { ZORVS_VALUE_ENTRY(l_gamma_incomplete<double>(a, x)); }
float zorvs_f_gamma_cdf(float x, float a) { ZORVS_VALUE_ENTRY(l_gamma_cdf<float>(x, a)); }
double zorvs_d_gamma_cdf(double x, double a) { ZORVS_VALUE_ENTRY(l_gamma_cdf<double>(x, a)); }

}  // extern "C"
