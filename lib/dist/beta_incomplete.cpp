// beta_incomplete.cpp - the regularised incomplete beta ratio I_x(a, b).
//
// Fullerton's FNLIB method (after Bosten and Battiste, remark on algorithm
// 179, CACM 17 (1974) 156): with the arguments exchanged so that the series
// converges fast (y = 1 - x, a <-> b when x >= 0.2 unless b <= a and
// x < 0.8), I_y(p, q) is the sum of an infinite series in y for the
// fractional part ps of q,
//   y^p / (p B(ps, p)) * (1 + p sum_i (1-ps)_i y^i / (i! (p+i))),
// and a finite sum of int(q) terms y^p (1-y)^(q-i) / (q B(p, q)) ... built by
// recurrence, with a scale counter that keeps single terms from underflow.
// The underflow threshold of the first term is 0.95 log(smallest), a little
// inside the range, so that exp() of it never lands among the subnormals;
// one step of the scale counter is that same factor e^alnsml.
//
// Two refinements keep the relative accuracy of the method's sums:
//   - The exchange gives I_x(a, b) as 1 - I_y(b, a), and the complement
//     1 - I_x(a, b) that the F distribution needs is 1 minus the sum.  Such
//     a difference d carries the rounding of the sum magnified by 1/d; below
//     1/4 the small tail is summed in its own orientation instead, when its
//     two series together take at most 300 terms, or below 1/64 (in the
//     single twin below 1/4) at most 20000 terms (y up to about 0.998).
//   - Terms below the threshold are not dropped at once: one more level of
//     the scale counter carries them, and they count when the total is a
//     normal number.
// B(p, q) follows from B(ps, p) by q = ps + m and
//   B(p, ps + m) = B(p, ps) prod_{k<m} (ps + k) / (p + ps + k)
// for a short product, so that one logarithm of the beta function serves
// both sums; with ps = 1 the first sum is the single term y^p.  Where B(ps,
// pf) for the fractional part pf of p has a closed form (1/ps for a whole
// p, pi / sin(pi ps) for ps + pf = 1), log B(ps, p) is a short product too.
// The infinite series ends once the rest, below the last term times
// y/(1 - y), is negligible; the finite sum likewise once the bound of its
// falling ratios makes the rest negligible.
#include "dist/beta_incomplete.hpp"

#include <algorithm>
#include <cmath>

#include "dist/continuous_support.hpp"

namespace {

namespace zc = zorvs::continuous;

template <class T>
struct BetaConstants {
    T eps = 0, alneps = 0, sml = 0, alnsml = 0, scale = 0;
};
template <class T>
BetaConstants<T> lv_beta_constants;

template <class T>
const BetaConstants<T> &constants() {
    BetaConstants<T> &k = lv_beta_constants<T>;
    if (k.eps == 0) {
        k.sml = zc::smallest<T>();
        k.alnsml = T(0.95) * std::log(k.sml);
        k.scale = std::exp(k.alnsml);
        k.alneps = std::log(zc::epsilon<T>() / 2);
        k.eps = zc::epsilon<T>() / 2;
    }
    return k;
}

// Longest product of ratios used for log B(p, q) from log B(ps, p).
constexpr int kProductTerms = 40;
// Most terms of the two sums spent on a small tail in its own orientation,
// below 1/64 and from 1/64 to 1/4.
constexpr double kLongestSums = 20000;
constexpr double kShortSums = 300;
// The tail below which the longer sums are spent: 1/64 in double precision;
// in single precision all of 1/4, where six lost bits would be too many.
template <class T>
constexpr T kLowTail = std::is_same_v<T, float> ? T(0.25) : T(1) / 64;

constexpr double kPi = 3.14159265358979323846;

// prod_{j >= 0, a + j < end} (a + j) / (b + j), the factors in pairs (one
// division for two).  b < 1e15 and end - a below the product limit, so that
// no square overflows.
template <class T>
T ratio_product(T a, T b, T end) {
    T prod = 1;
    T j = 0;
    for (; a + j + 1 < end; j += 2) prod *= ((a + j) * (a + j + 1)) / ((b + j) * (b + j + 1));
    if (a + j < end) prod *= (a + j) / (b + j);
    return prod;
}

// I_y(p, q) by the two sums, without exchange; cy = 1 - y.
template <class T>
T l_betai_sums(T y, T cy, T p, T q) {
    const BetaConstants<T> &k = constants<T>();
    if ((p + q) * y / (p + 1) < k.eps) {
        T xb = p * std::log(std::max(y, k.sml)) - std::log(p) - zc::log_beta<T>(p, q);
        return (xb > k.alnsml && y != 0) ? std::exp(xb) : T(0);
    }
    const T lny = std::log(y);

    // The infinite sum in y for the fractional part of q.  A sum whose
    // first term lies below the threshold is carried at the next level of
    // the scale counter (s1, a multiple of e^alnsml).
    T ps = q - std::trunc(q);
    if (ps == 0) ps = 1;
    // log(p B(ps, p)) from B(ps, pf) for the fractional part pf of p (pf = 1
    // for a whole p) where that is known in closed form: B(ps, 1) = 1/ps,
    // and B(ps, 1 - ps) = pi / sin(pi ps) by the reflection formula.
    // -log B(1, p) = log p cancels.
    T lpbeta = 0;
    if (ps != 1) {
        T pf = p - std::trunc(p);
        if (pf == 0) pf = 1;
        T base = 0;
        if (pf == 1) base = 1 / ps;
        else if (ps + pf == 1) base = T(kPi) / std::sin(T(kPi) * std::min(ps, pf));
        if (base > 0 && p < kProductTerms) lpbeta = std::log(p * base * ratio_product(pf, ps + pf, p));
        else lpbeta = std::log(p) + zc::log_beta<T>(ps, p);
    }
    const T xb0 = p * lny - lpbeta;
    // log(q B(p, q)) - log(p B(ps, p)) from the product.
    T lqbeta = 0;
    bool have_lqbeta = false;
    if (q > 1 && q < kProductTerms && p < T(1e15)) {
        const T prod = q * ratio_product(ps, p + ps, q);
        if (prod >= k.scale) {
            lqbeta = lpbeta + std::log(prod / p);
            have_lqbeta = true;
        }
    }
    T s = 0, s1 = 0;
    if (xb0 >= 2 * k.alnsml) {
        const bool low = xb0 < k.alnsml;
        T first = std::exp(low ? xb0 - k.alnsml : xb0);
        T sum = first;
        if (ps != 1) {
            // Terms fall by at least the factor y: the tail after a term t
            // is below t y / (1 - y).
            const T tail = y / cy;
            const int n = static_cast<int>(std::max(k.alneps / lny, T(4)));
            // Two terms a round with one division, r = 1/(i (p+i) j (p+j))
            // for j = i + 1, which gives (i - ps)/i, 1/(p+i) and the same for
            // j; the running term takes one product a round, so that
            // neither the division nor a chain of products sets the pace.
            // (The squares stay finite for p below 1e14.)
            T term = first * p;
            int i = 1;
            if (p < T(1e14)) {
                for (; i + 1 <= n; i += 2) {
                    const T xi = static_cast<T>(i), xj = xi + 1;
                    const T di = xi * (p + xi), dj = xj * (p + xj);
                    const T r = 1 / (di * dj);
                    const T fi = (xi - ps) * y * (p + xi) * (dj * r);
                    const T fj = (xj - ps) * y * (p + xj) * (di * r);
                    const T ti = term * fi;
                    term *= fi * fj;
                    const T add_i = ti * xi * (dj * r), add_j = term * xj * (di * r);
                    sum += add_i + add_j;
                    if (add_j * tail <= k.eps * sum) {
                        i = n + 1;
                        break;
                    }
                }
            }
            for (; i <= n; ++i) {
                const T xi = static_cast<T>(i);
                const T r = 1 / (xi * (p + xi));
                term *= (xi - ps) * y * (p + xi) * r;
                const T add = term * xi * r;
                sum += add;
                if (add * tail <= k.eps * sum) break;
            }
        }
        if (low) s1 = sum;
        else s = sum;
    }

    // The finite sum for the integer part of q.
    if (q > 1) {
        if (!have_lqbeta) lqbeta = std::log(q) + zc::log_beta<T>(p, q);
        T xb = p * lny + q * std::log(cy) - lqbeta;
        int ib = static_cast<int>(std::max(xb / k.alnsml, T(0)));
        T term = std::exp(xb - static_cast<T>(ib) * k.alnsml);
        T c = 1 / cy;
        T p1 = q * c / (p + q - 1);
        T fin = 0, fin1 = 0;
        int n = static_cast<int>(q);
        if (q == static_cast<T>(n)) --n;
        // The ratio of term i+1 to term i, (q - i) c / (p + q - i - 1),
        // falls with i when p >= 1 and rises when p < 1, where the last one
        // bounds it; once the bound r is below 1 the terms left sum to at
        // most term r / (1 - r).
        const T last_ratio = (q - static_cast<T>(n) + 1) * c / (p + q - static_cast<T>(n));
        for (int i = 1; i <= n; ++i) {
            T xi = static_cast<T>(i);
            const T ratio = (q - xi + 1) * c / (p + q - xi);
            // With p1 <= 1 the terms fall and stay at one level.
            if (p1 <= 1 && term / k.eps <= (ib == 0 ? fin : fin1)) break;
            const T bound = p >= 1 ? ratio : last_ratio;
            if (ib == 0 && bound < 1 && term * bound <= k.eps * (1 - bound) * fin) break;
            term *= ratio;
            if (term > 1) {
                --ib;
                term *= k.scale;
            }
            if (ib == 0) fin += term;
            else if (ib == 1) fin1 += term;
        }
        s += fin;
        s1 += fin1;
    }
    if (s1 != 0) {
        // Carried terms count when the total is a normal number.
        T total = s + s1 * k.scale;
        s = total >= k.sml ? total : s;
    }
    return s;
}

template <class T>
T clamp01(T v) {
    return std::clamp(v, T(0), T(1));
}

template <class T>
T l_beta_ratio(T x, T cx, T a, T b, bool upper) {
    const bool swapped = !(b <= a && x < T(0.8)) && x >= T(0.2);
    // s is I_x(a, b) unexchanged, its complement exchanged; t the other one.
    T s = swapped ? l_betai_sums(cx, x, b, a) : l_betai_sums(x, cx, a, b);
    T t = 1 - s;
    if (t < T(0.25)) {
        // The small tail is summed in its own orientation where its two
        // series are not too long: 1 - s has lost digits, up to six in the
        // double twin for t above 1/64, more below.
        const T y = swapped ? x : cx, q = swapped ? b : a;
        const T length = (q == std::trunc(q) ? 0 : constants<T>().alneps / std::log(y)) + q;
        if (length <= (t < kLowTail<T> ? kLongestSums : kShortSums)) {
            t = swapped ? l_betai_sums(x, cx, a, b) : l_betai_sums(cx, x, b, a);
            s = 1 - t;
        }
    }
    return clamp01(swapped == upper ? s : t);
}

template <class T>
T l_beta_incomplete(T x, T a, T b) {
    bool bad = false;
    if (!(x >= 0 && x <= 1)) {
        zorvs_e1stl(1, "x");
        zc::raise_reals(5, 120, 0, 1, x);
        bad = true;
    }
    if (!(a > 0) || !(b > 0)) {
        zc::raise_reals(5, 9031, a, b);
        bad = true;
    }
    if (bad) return zc::nan<T>();
    return l_beta_ratio<T>(x, 1 - x, a, b, false);
}

}  // namespace

namespace zorvs::continuous {

template <class T>
T beta_ratio(T x, T cx, T a, T b, bool upper) {
    return l_beta_ratio<T>(x, cx, a, b, upper);
}
template float beta_ratio<float>(float, float, float, float, bool);
template double beta_ratio<double>(double, double, double, double, bool);

}  // namespace zorvs::continuous

extern "C" {

float zorvs_f_beta_incomplete(float x, float a, float b) {
    return zorvs::value_routine("zorvs_f_beta_incomplete", [&] { return l_beta_incomplete<float>(x, a, b); });
}
double zorvs_d_beta_incomplete(double x, double a, double b) {
    return zorvs::value_routine("zorvs_d_beta_incomplete", [&] { return l_beta_incomplete<double>(x, a, b); });
}

}  // extern "C"
