// beta_dist.cpp - the beta distribution function and its inverse.
//
// The distribution function is the incomplete beta ratio with the limits
// reported as notes.  The inverse (zorvs_betin, also behind
// zorvs_f_beta_inverse_cdf) solves I_x(a, b) = p:
//   1. For two comparable shapes above 1 (min > 1 and 10 min > max) the root
//      lies well inside (0, 1): two halvings on I_x give a bracket of width
//      1/4 that guards the iteration.
//   2. The start is that of Majumder and Bhattacharjee, Applied Statistics
//      algorithm AS 109 (1973), in the lighter tail: for p > 0.5 the problem
//      is turned into I_y(b, a) = 1 - p with y = 1 - x.
//   3. Newton's method on u = log y with Halley's correction; a step is
//      limited to [-0.99, 0.7] in u and kept inside the bracket of the signs
//      seen so far, so that it never leaves (0, 1).  At most 100 steps; the
//      AS 109 start usually leaves two or three.
#include <algorithm>
#include <cmath>

#include "dist/beta_incomplete.hpp"
#include "dist/continuous.h"
#include "dist/continuous_support.hpp"

namespace {

namespace zc = zorvs::continuous;

template <class T>
T l_beta_cdf(T x, T pin, T qin) {
    bool bad = zc::refused(pin > 0, 11033, pin);
    bad |= zc::refused(qin > 0, 11034, qin);
    if (bad) return zorvs::missing<T>();
    if (std::isnan(x)) return x;  // a missing x stays missing
    if (x <= 0) {
        zorvs::raise(1, 20415, x);
        return 0;
    }
    if (x >= 1) {
        zorvs::raise(1, 20416, x);
        return 1;
    }
    return zc::beta_ratio<T>(x, 1 - x, pin, qin, false);
}

// Starting value for I_y(pp, qq) = a with a <= 1/2: Majumder and
// Bhattacharjee, AS 109 (1973), after Carter's approximation: a normal
// deviate for a from a rational fit in sqrt(-2 log a), carried to the beta
// scale through the shapes, or for small shapes the leading term of the
// tail, y ~ (a pp B(pp, qq))^(1/pp).
template <class T>
T as109_start(T a, T pp, T qq, T lbeta) {
    const T r0 = std::sqrt(-2 * std::log(a));
    const T z = r0 - (T(2.30753) + T(0.27061) * r0) / (1 + (T(0.99229) + T(0.04481) * r0) * r0);
    if (pp > 1 && qq > 1) {
        const T r = (z * z - 3) / 6;
        const T s = 1 / (2 * pp - 1), t = 1 / (2 * qq - 1);
        const T h = 2 / (s + t);
        const T w = z * std::sqrt(h + r) / h - (t - s) * (r + T(5) / 6 - 2 / (3 * h));
        return pp / (pp + qq * std::exp(2 * w));
    }
    const T r = 2 * qq;
    T t = 1 / (9 * qq);
    const T c = 1 - t + z * std::sqrt(t);
    t = r * c * c * c;
    if (t <= 0) return -std::expm1((std::log1p(-a) + std::log(qq) + lbeta) / qq);
    t = (4 * pp + r - 2) / t;
    if (t <= 1) return std::exp((std::log(a) + std::log(pp) + lbeta) / pp);
    return 1 - 2 / (t + 1);
}

// Width of the bracket that the bisection leaves to the iteration.
template <class T>
constexpr T kWorkingWidth = T(0.25);

// The root x, and 1 - x to its own relative accuracy in *complement when
// that is given (from the variable the iteration ran on).
template <class T>
T l_betin(T p, T pin, T qin, T *complement = nullptr) {
    T unused;
    T &cx = complement ? *complement : unused;
    const T e = zorvs::epsilon<T>();
    bool bad = zc::refused(pin > 0, 9044, pin);
    bad |= zc::refused(qin > 0, 9045, qin);
    bad |= zc::refused(p > 0 && p < 1, 9046, p);
    if (bad) return cx = zorvs::missing<T>();

    // Two comparable shapes above 1: a few halvings on I_x bracket the root.
    T lo = 0, hi = 1;
    const T mn = std::min(pin, qin), mx = std::max(pin, qin);
    if (mn > 1 && 10 * mn > mx) {
        for (int k = 0; k < 30; ++k) {
            const T mid = (lo + hi) / 2;
            const T g = zc::beta_ratio<T>(mid, 1 - mid, pin, qin, false) - p;
            if (std::isnan(g)) return cx = g;  // the ratio could not be summed (warned)
            if (g < 0) lo = mid;
            else hi = mid;
            if (hi - lo < kWorkingWidth<T>) {
                // The residual counts relative to the tail, so that a small
                // p is not met by any x of a tiny I_x.
                if (std::fabs(g) <= e * std::min(p, 1 - p)) {
                    cx = 1 - mid;  // exact: mid is a short dyadic fraction
                    return mid;
                }
                break;
            }
        }
    }

    // The iteration works in the lighter tail: I_y(pp, qq) = a with a <= 1/2,
    // y = x for p <= 1/2, else y = 1 - x, a = 1 - p and the shapes exchanged.
    // Where the leading term of the other tail, 1 - I_y(pp, qq) ~ (1-y)^qq /
    // (qq B(pp, qq)), puts the root so close to 1 that pp (1 - y) < 1/100
    // (the term then holds to about that much, whatever the target), y
    // resolves it poorly and above 1 - eps/2 not at all: the iteration runs
    // on 1 - y instead, with the shapes exchanged and 1 - a as the target.
    bool is_complement = p > T(0.5);  // y is 1 - x
    T a = is_complement ? 1 - p : p;
    T pp = is_complement ? qin : pin, qq = is_complement ? pin : qin;
    T ylo = is_complement ? 1 - hi : lo, yhi = is_complement ? 1 - lo : hi;
    const T lbeta = zorvs::dist::log_beta(pp, qq);
    T log_tail = (std::log(a) + std::log(pp) + lbeta) / pp;
    const T log_other = (std::log1p(-a) + std::log(qq) + lbeta) / qq;
    const bool switched = log_other + std::log(std::max(pp, T(1))) < std::log(T(0.01));
    if (switched) {
        is_complement = !is_complement;
        a = 1 - a;
        std::swap(pp, qq);
        const T old_lo = ylo;
        ylo = 1 - yhi;
        yhi = 1 - old_lo;
        log_tail = log_other;
    }
    // Where the leading term of the tail puts the root below the smallest
    // normal number, y is taken as 0 (x as 0 or 1), with the warning.
    if (log_tail < std::log(zorvs::smallest<T>()) - 1) {
        zorvs::raise(3, 9047, p);
        cx = is_complement ? T(0) : T(1);
        return is_complement ? T(1) : T(0);
    }
    // The start: AS 109 in the lighter tail; after the switch the leading
    // term, which is close there.
    T y = switched ? std::exp(log_tail) : as109_start<T>(a, pp, qq, lbeta);
    if (!(y > ylo && y < yhi)) {
        y = std::exp(log_tail);
        if (!(y > ylo && y < yhi)) y = ylo > 0 || yhi < 1 ? (ylo + yhi) / 2 : T(0.5);
    }
    // A start above 1/2 puts the root where 1 - y is the smaller side: the
    // iteration runs on v = 1 - y, toward the same target a, so that 1 - y
    // keeps its relative accuracy (at (5e7, 1.5) y near 1 resolves 1 - y,
    // about 3e-8, only to 1e-10 of its size).  u below is the variable the
    // iteration runs on, y or v.
    const bool on_v = y > T(0.5);
    T u = on_v ? 1 - y : y;
    T ulo = on_v ? 1 - yhi : ylo, uhi = on_v ? 1 - ylo : yhi;

    // Newton's method in log y, where dI/dlog y = y f(y) = y^pp (1-y)^(qq-1)
    // / B(pp, qq), with Halley's second-order correction from
    // d(y f)/dlog y / (y f) = pp - (qq - 1) y / (1 - y); on v = 1 - y in
    // log v, where dI/dlog v = -v f(y) and the correction is qq - (pp - 1)
    // v / (1 - v).  A step is limited to [-0.99, 0.7] in log u and kept
    // inside the bracket of the residual's signs; the iteration stops when the
    // error left after the step, about (1 + h^2) |step|^3, is below the
    // epsilon.
    bool converged = false;
    for (int k = 0; k < 100; ++k) {
        const T cu = 1 - u;
        const T g = (on_v ? zc::beta_ratio<T>(cu, u, pp, qq, false) : zc::beta_ratio<T>(u, cu, pp, qq, false)) - a;
        if (std::isnan(g)) return cx = g;  // the ratio could not be summed (warned)
        if (g == 0) {
            converged = true;
            break;
        }
        if ((g < 0) != on_v) ulo = std::max(ulo, u);  // I falls as v grows
        else uhi = std::min(uhi, u);
        if (uhi <= zorvs::smallest<T>()) {  // the root is below the normal range
            u = 0;
            break;
        }
        // y f(y), or v f(y) on v, with the power of the variable one higher.
        const T uf = on_v ? std::exp((pp - 1) * std::log1p(-u) + qq * std::log(u) - lbeta)
                          : std::exp(pp * std::log(u) + (qq - 1) * std::log1p(-u) - lbeta);
        T delta, h = 0;
        bool clean = false;
        if (uf > 0 && std::isfinite(uf)) {
            delta = on_v ? g / uf : -g / uf;
            h = on_v ? qq - (pp - 1) * u / cu : pp - (qq - 1) * u / cu;
            const T corr = 1 + T(0.5) * delta * h;
            if (corr > T(0.5) && corr < 2) delta /= corr;
            clean = delta >= T(-0.99) && delta <= T(0.7);
            delta = std::clamp(delta, T(-0.99), T(0.7));
        } else {
            delta = (g < 0) != on_v ? T(0.7) : T(-0.99);
        }
        T next = u + u * std::expm1(delta);
        if (next == u) {  // a step below the spacing of u
            converged = true;
            break;
        }
        if (!(next > ulo && next < uhi)) {
            if (uhi - ulo <= 4 * e * uhi) {  // the bracket has closed
                converged = true;
                break;
            }
            next = (ulo + uhi) / 2;
            clean = false;
        }
        u = next;
        const T ad = std::fabs(delta);
        if (clean && (ad <= 4 * e || (1 + h * h) * ad * ad * ad <= e / 32)) {
            converged = true;
            break;
        }
    }
    if (!converged) zorvs::raise(3, 9047, p);
    // y and 1 - y: one of them is u itself, the other 1 - u.
    const T y_out = on_v ? 1 - u : u, cy_out = on_v ? u : 1 - u;
    cx = is_complement ? y_out : cy_out;
    return is_complement ? cy_out : y_out;
}

}  // namespace

namespace zorvs::continuous {

template <class T>
T betin_with_complement(T p, T pin, T qin, T *complement) {
    return zorvs::value_routine(zorvs::by_type<T>("zorvs_betin", "zorvs_dbetin"),
                                [&] { return l_betin<T>(p, pin, qin, complement); });
}
template float betin_with_complement<float>(float, float, float, float *);
template double betin_with_complement<double>(double, double, double, double *);

}  // namespace zorvs::continuous

extern "C" {

float zorvs_f_beta_cdf(float x, float pin, float qin) { ZORVS_VALUE_ENTRY(l_beta_cdf<float>(x, pin, qin)); }
double zorvs_d_beta_cdf(double x, double pin, double qin) { ZORVS_VALUE_ENTRY(l_beta_cdf<double>(x, pin, qin)); }
float zorvs_f_beta_inverse_cdf(float p, float pin, float qin) { ZORVS_VALUE_ENTRY(l_betin<float>(p, pin, qin)); }
double zorvs_d_beta_inverse_cdf(double p, double pin, double qin) { ZORVS_VALUE_ENTRY(l_betin<double>(p, pin, qin)); }
float zorvs_betin(float p, float pin, float qin) {
    return zorvs::continuous::betin_with_complement<float>(p, pin, qin, nullptr);
}
double zorvs_dbetin(double p, double pin, double qin) {
    return zorvs::continuous::betin_with_complement<double>(p, pin, qin, nullptr);
}

}  // extern "C"
