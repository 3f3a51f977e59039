// gamma.cpp - the gamma function, the logarithm of its absolute value and
// the correction term of Stirling's formula, after Fullerton's FNLIB
// (gamma, alngam, r9lgmc, gamlim; Los Alamos 1977).
//
// |x| <= 10: gamma(1+y), 0 <= y < 1, from the Chebyshev series gamcs, then
// the recurrence gamma(x+1) = x gamma(x) up or down.  |x| > 10: Stirling's
// form exp((y-0.5) log y - y + log sqrt(2 pi) + r9lgmc(y)) with the
// correction from the series algmcs, and the reflection formula
// gamma(-y) = -pi / (y sin(pi y) gamma(y)) for negative arguments.
// The overflow and underflow limits come from a Newton iteration on the
// log of Stirling's form (gamlim), at the first use.
#include "dist/special_detail.hpp"

namespace zorvs::special {

namespace {

template <class T>
constexpr auto lv_gamcs = rounded<T>(gamcs_data);
template <class T>
constexpr auto lv_algmcs = rounded<T>(algmcs_data);
// Series lengths for the first-use etas, 0.1 u and u.
template <class T>
constexpr int gamcs_terms = expected_terms(lv_gamcs<T>, 0.1);
template <class T>
constexpr int algmcs_terms = expected_terms(lv_algmcs<T>, 1.0);

constexpr double sq2pil = 0.9189385332046728;   // log sqrt(2 pi)
constexpr double pi = 3.14159265358979323846;

// First-use bounds of each twin; 0 means not yet worked out.
template <class T>
struct GammaBounds {
    int ngam;      // terms of gamcs
    T dxrel;       // relative accuracy limit near negative integers
    T xsml;        // smallest argument magnitude
    T xmin, xmax;  // arguments at which gamma underflows, overflows
};
template <class T>
constinit thread_local GammaBounds<T> lv_gamma_bounds{};

template <class T>
struct LgmcBounds {
    int nalgm;  // terms of algmcs
    T xbig;     // above it the correction is 1/(12x)
    T xmax;     // above it the correction underflows
};
template <class T>
constinit thread_local LgmcBounds<T> lv_lgmc_bounds{};

template <class T>
struct LogGammaBounds {
    T xmax;  // overflow limit of log gamma
    T dxrel;
};
template <class T>
constinit thread_local LogGammaBounds<T> lv_log_gamma_bounds{};

// Underflow and overflow arguments of gamma, one pair per twin, shared by
// gamma and beta; filled by l_r9gaml at the first use.
template <class T>
struct GammaLimits {
    T xmin, xmax;
};
template <class T>
constinit thread_local GammaLimits<T> lv_gamma_limits{};

// Limits of gamma by Newton's method on the log of Stirling's form, for
// the twin's smallest and largest numbers.
template <class T>
void l_r9gaml(T *xmin, T *xmax) {
    r9gaml_core(smallest<T>(), largest<T>(), xmin, xmax);
}

}  // namespace

// The same for given smallest and largest numbers s and b.
template <class T>
void r9gaml_core(T s, T b, T *xmin, T *xmax) {
    const T alnsml = std::log(s);
    T xm = -alnsml;
    bool done = false;
    for (int i = 0; i < 10 && !done; ++i) {
        T xold = xm;
        T xln = std::log(xm);
        xm = xm - xm * ((xm + T(0.5)) * xln - xm - T(0.2258) + alnsml) / (xm * xln + T(0.5));
        done = std::fabs(xm - xold) < T(0.005);
    }
    if (!done) {
        raise(4, 9022);
        *xmin = *xmax = zorvs::missing<T>();
        return;
    }
    xm = -xm + T(0.01);
    const T alnbig = std::log(b);
    T xb = alnbig;
    done = false;
    for (int i = 0; i < 10 && !done; ++i) {
        T xold = xb;
        T xln = std::log(xb);
        xb = xb - xb * ((xb - T(0.5)) * xln - xb + T(0.9189) - alnbig) / (xb * xln - T(0.5));
        done = std::fabs(xb - xold) < T(0.005);
    }
    if (!done) {
        raise(4, 9023);
        *xmin = xm;
        *xmax = zorvs::missing<T>();
        return;
    }
    xb = xb - T(0.01);
    *xmax = xb;
    *xmin = std::fmax(xm, 1 - xb);
}

namespace {

template <class T>
void gamma_first_use() {
    GammaBounds<T> &g = lv_gamma_bounds<T>;
    if (g.ngam != 0) return;
    const T s = smallest<T>(), b = largest<T>(), u = half_epsilon<T>(), e = epsilon<T>();
    g.dxrel = std::sqrt(e);
    g.xsml = std::exp(std::fmax(std::log(s), -std::log(b)) + T(0.01));
    gamma_limits<T>(&g.xmin, &g.xmax);
    g.ngam = initds_checked(lv_gamcs<T>.c, 42, static_cast<float>(T(0.1) * u));
}

template <class T>
void lgmc_first_use() {
    LgmcBounds<T> &c = lv_lgmc_bounds<T>;
    if (c.nalgm != 0) return;
    const T s = smallest<T>(), b = largest<T>(), u = half_epsilon<T>();
    c.xbig = 1 / std::sqrt(u);
    c.xmax = std::exp(std::fmin(std::log(b / 12), -std::log(12 * s)));
    c.nalgm = initds_checked(lv_algmcs<T>.c, 15, static_cast<float>(u));
}

// |(x - nearest integer)/x| below dxrel: half the digits are lost.
template <class T>
bool near_negative_integer(T x, T dxrel) {
    return std::fabs((x - std::trunc(x - T(0.5))) / x) < dxrel;
}

}  // namespace

template <class T>
void gamma_limits(T *xmin, T *xmax) {
    GammaLimits<T> &l = lv_gamma_limits<T>;
    if (l.xmax == 0) l_r9gaml(&l.xmin, &l.xmax);
    *xmin = l.xmin;
    *xmax = l.xmax;
}

template <class T>
T r9lgmc_core(T x) {
    lgmc_first_use<T>();
    const LgmcBounds<T> &c = lv_lgmc_bounds<T>;
    if (x < 10) {
        raise(4, 60002, x, T(10));
        return zorvs::missing<T>();
    }
    if (x >= c.xmax) {
        raise(2, 9015, x, c.xmax);
        return 0;
    }
    if (x >= c.xbig) return 1 / (12 * x);
    const T t = 10 / x;
    return clenshaw_split_expecting<algmcs_terms<T>>(2 * t * t - 1, lv_algmcs<T>.c, c.nalgm) / x;
}

template <class T>
T gamma_core(T x) {
    gamma_first_use<T>();
    const GammaBounds<T> &g = lv_gamma_bounds<T>;
    T y = std::fabs(x);
    if (y <= 10) {
        int n = static_cast<int>(x);
        if (x < 0) n -= 1;
        y = x - static_cast<T>(n);
        T value = T(0.9375) + clenshaw_split_expecting<gamcs_terms<T>>(2 * y - 1, lv_gamcs<T>.c, g.ngam);
        if (n == 1) return value;
        if (n >= 2) {
            for (int i = 1; i <= n - 1; ++i) value *= y + static_cast<T>(i);
            return value;
        }
        if (x == 0) {
            raise(5, 9024);
            return zorvs::missing<T>();
        }
        if (y * T(1e20) < g.xsml * T(1e20)) {
            raise(4, 9011, x);
            return zorvs::missing<T>();
        }
        if (x < 0 && x + static_cast<T>(-n - 1) == 0) {
            raise(5, 9006, x);
            return zorvs::missing<T>();
        }
        if (x < T(-0.5) && near_negative_integer(x, g.dxrel)) raise(3, 9020, x);
        for (int i = 1; i <= 1 - n; ++i) value /= x + static_cast<T>(i - 1);
        return value;
    }
    if (x > g.xmax) {
        raise(4, 9009, x, g.xmax);
        return zorvs::missing<T>();
    }
    if (x < g.xmin) {
        raise(2, 9014, x, g.xmin);
        return 0;
    }
    const T value = std::exp((y - T(0.5)) * std::log(y) - y + T(sq2pil) + r9lgmc_core(y));
    if (x > 0) return value;
    // A negative integer is a pole; sin(pi y) of the rounded pi y is never
    // exactly 0 there, so the test is made on x itself.
    if (x == std::trunc(x)) {
        raise(4, 9021, x);
        return zorvs::missing<T>();
    }
    if (near_negative_integer(x, g.dxrel)) raise(3, 9020, x);
    // sin(pi y) from the fraction of y, which is exact, so that the
    // rounding of pi y does not cost relative accuracy near the poles.
    const T whole = std::trunc(y);
    T sinpiy = std::sin(T(pi) * (y - whole));
    if (std::fmod(whole, T(2)) != 0) sinpiy = -sinpiy;
    if (sinpiy == 0) {
        raise(4, 9021, x);
        return zorvs::missing<T>();
    }
    return -T(pi) / (y * sinpiy * value);
}

template float gamma_core<float>(float);
template double gamma_core<double>(double);
template float r9lgmc_core<float>(float);
template double r9lgmc_core<double>(double);
template void gamma_limits<float>(float *, float *);
template void gamma_limits<double>(double *, double *);
template void r9gaml_core<float>(float, float, float *, float *);
template void r9gaml_core<double>(double, double, double *, double *);

namespace {

template <class T>
T l_log_gamma(T x) {
    LogGammaBounds<T> &lb = lv_log_gamma_bounds<T>;
    if (lb.xmax == 0) {
        const T b = largest<T>();
        lb.dxrel = std::sqrt(epsilon<T>());
        lb.xmax = b / std::log(b);
    }
    const T y = std::fabs(x);
    if (y <= 10) {
        if (x <= 0 && x == std::trunc(x)) {
            raise(4, 9006, x);
            return zorvs::missing<T>();
        }
        const T g = gamma_core(x);
        if (zorvs::is_missing(g)) return g;
        return std::log(std::fabs(g));
    }
    if (y > lb.xmax) {
        raise(4, 9013, x, lb.xmax);
        return zorvs::missing<T>();
    }
    if (x > 0) return T(sq2pil) + (x - T(0.5)) * std::log(x) - x + r9lgmc_core(y);
    // Poles at the non-positive integers; sin(pi y) from the exact fraction.
    const T sinpiy = x == std::trunc(x) ? T(0) : std::fabs(std::sin(T(pi) * (y - std::trunc(y))));
    if (sinpiy == 0) {
        raise(4, 9006, x);
        return zorvs::missing<T>();
    }
    const T r = T(0.22579135264472744) + (x - T(0.5)) * std::log(y) - x - std::log(sinpiy) - r9lgmc_core(y);
    if (std::fabs((x - std::trunc(x - T(0.5))) * r / x) < lb.dxrel) raise(3, 9020, x);
    return r;
}

}  // namespace
}  // namespace zorvs::special

using zorvs::special::gamma_core;
using zorvs::special::l_log_gamma;
using zorvs::special::r9lgmc_core;

extern "C" float zorvs_f_gamma(float x) { ZORVS_VALUE_ENTRY(gamma_core(x)); }
extern "C" double zorvs_d_gamma(double x) { ZORVS_VALUE_ENTRY(gamma_core(x)); }
extern "C" float zorvs_f_log_gamma(float x) { ZORVS_VALUE_ENTRY(l_log_gamma(x)); }
extern "C" double zorvs_d_log_gamma(double x) { ZORVS_VALUE_ENTRY(l_log_gamma(x)); }
extern "C" float zorvs_r9lgmc(float x) { ZORVS_VALUE_ENTRY(r9lgmc_core(x)); }
extern "C" double zorvs_d9lgmc(double x) { ZORVS_VALUE_ENTRY(r9lgmc_core(x)); }
