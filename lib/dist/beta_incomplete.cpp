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
// The orientation: the tail on x's side of the mean a/(a+b) is summed in
// its own orientation where it is likely small (x beyond 2/3 of a standard
// deviation from the mean when it is the value asked for, beyond 2.15 when
// the other one is) and its sums take at most 300 terms.  Otherwise the
// exchange above, except that between x = 0.2 and 0.8, where both
// orientations keep y below 0.8, the one whose sums are shorter is taken
// (about log(eps)/log(y) terms for a fractional q, and q).
// Two refinements keep the relative accuracy of the method's sums:
//   - The exchange gives I_x(a, b) as 1 - I_y(b, a), and the complement
//     1 - I_x(a, b) that the F distribution needs is 1 minus the sum.  Such
//     a difference d carries the rounding of the sum magnified by 1/d.  Below
//     1/64 the small tail is summed in its own orientation, when its two
//     series take at most 20000 terms (y up to about 0.998), and the large
//     value is 1 minus it.  From 1/64 to 1/4 the tail is summed again where
//     the value asked for could lose more than 64 units of rounding (by the
//     lengths of the sums and the size of the logarithm of their leading
//     factor) and the other way is at least four times as accurate, when its
//     series take at most 300 terms, or 20000 where more than 1024 units are
//     at stake.
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
// Large shapes: where both orientations' sums would pass 1200 terms, and
// for a small tail whose own sums would be that long, the methods made for
// large shapes (large_shapes.cpp: Temme's uniform expansions and the
// continued fraction after DiDonato and Morris) take over.  So they do for
// a shape beyond 1136 where the orientation taken would sum more than 1200
// terms, or the smaller shape is 10 or more: there the sums, short as they
// may be, carry the rounding of a leading factor whose logarithm is in the
// hundreds (against mpmath, F(f; 300, 1e5) off by 2.3e-12 and F(f; 2000,
// 5000) by 2.6e-12 beyond the argument's rounding; 5e-17 by the large-shape
// methods).  Everywhere else the values are those of the sums.
// The single twin sums in double precision and rounds the result.
#include "dist/beta_incomplete.hpp"

#include <algorithm>
#include <cmath>

#include "dist/continuous_support.hpp"
#include "dist/large_shapes.hpp"

namespace {

namespace zc = zorvs::continuous;

template <class T>
struct BetaConstants {
    T eps = 0, alneps = 0, sml = 0, alnsml = 0, scale = 0;
};
template <class T>
constinit thread_local BetaConstants<T> lv_beta_constants;

template <class T>
const BetaConstants<T> &constants() {
    BetaConstants<T> &k = lv_beta_constants<T>;
    if (k.eps == 0) {
        k.sml = zorvs::smallest<T>();
        k.alnsml = T(0.95) * std::log(k.sml);
        k.scale = std::exp(k.alnsml);
        k.alneps = std::log(zorvs::epsilon<T>() / 2);
        k.eps = zorvs::epsilon<T>() / 2;
    }
    return k;
}

// Longest product of ratios used for log B(p, q) from log B(ps, p).
constexpr int kProductTerms = 40;
// Most terms of the two sums spent on a small tail in its own orientation,
// below 1/64 and from 1/64 to 1/4.
constexpr double kLongestSums = 20000;
constexpr double kShortSums = 300;
constexpr double kLowTail = 1.0 / 64;
// Sum length beyond which the large-shape methods take over.  Measured on
// the wide sweeps of the tests (shapes to 1900): where both orientations
// pass 1200 terms the sums are off by up to 6e-13, the large-shape methods
// by at most 4e-15, at a fraction of the time; shorter sums keep their
// values.
constexpr double kLargeSums = 1200;
// Smaller shape from which, at a larger one beyond kLargeSums - 64, the
// large-shape methods serve whatever the sum lengths.
constexpr double kSmallShapeSums = 10;
// The most terms either sum may take, some hundredths of a second.  Beyond,
// the ratio is not summed (a warning, NaN) rather than tying the caller up
// for seconds or for ever: the sums grow with shapes beyond 10^6 in both
// orientations, and lose digits at the rate of their length (1e-10 at 10^7
// terms, 1e-8 at 10^8).
constexpr int kMaxTerms = 10000000;

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

// I_y(p, q) by the two sums, without exchange; cy = 1 - y.  *too_long is
// set, and the sum is NaN, where a sum would take more than kMaxTerms terms.
template <class T>
T l_betai_sums(T y, T cy, T p, T q, bool *too_long) {
    const BetaConstants<T> &k = constants<T>();
    if ((p + q) * y / (p + 1) < k.eps) {
        // log(y) of a subnormal y is still accurate; only y = 0 needs a
        // stand-in, and gives 0 below.
        T xb = p * std::log(y > 0 ? y : k.sml) - std::log(p) - zorvs::dist::log_beta(p, q);
        return (xb > k.alnsml && y != 0) ? std::exp(xb) : T(0);
    }
    // log y (and log(1 - y) below) from 1 - y (from y) where that is the
    // smaller and the large p (q) it multiplies would magnify the rounding
    // of y (of 1 - y) itself.
    const T lny = y > T(0.5) && p > 64 ? std::log1p(-cy) : std::log(y);

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
        else lpbeta = std::log(p) + zorvs::dist::log_beta(ps, p);
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
            const T terms = std::max(k.alneps / lny, T(4));
            if (!(terms <= T(kMaxTerms))) {
                *too_long = true;
                return zorvs::missing<T>();
            }
            const int n = static_cast<int>(terms);
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
        if (!have_lqbeta) lqbeta = std::log(q) + zorvs::dist::log_beta(p, q);
        const T lncy = cy > T(0.5) && q > 64 ? std::log1p(-y) : std::log(cy);
        T xb = p * lny + q * lncy - lqbeta;
        // The first term lies ib levels of the scale counter below the
        // threshold, and a term climbs at most one level a term: from more
        // levels than the sum has terms none counts.  Capped so that the
        // count fits an int (xb / alnsml passes 2^31 at huge p); a NaN xb
        // gives a NaN term.
        int ib = static_cast<int>(std::fmin(std::fmax(xb / k.alnsml, T(0)), T(kMaxTerms) + 2));
        T term = std::exp(xb - static_cast<T>(ib) * k.alnsml);
        T c = 1 / cy;
        T p1 = q * c / (p + q - 1);
        T fin = 0, fin1 = 0;
        // int(q) terms, one fewer for a whole q; at most kMaxTerms.
        const T terms = q == std::trunc(q) ? q - 1 : std::trunc(q);
        const bool capped = terms > T(kMaxTerms);
        const int n = capped ? kMaxTerms : static_cast<int>(terms);
        bool ended = false;
        // The ratio of term i+1 to term i, (q - i) c / (p + q - i - 1),
        // falls with i when p >= 1 and rises when p < 1, where the last one
        // bounds it; once the bound r is below 1 the terms left sum to at
        // most term r / (1 - r).
        const T last_ratio = (q - terms + 1) * c / (p + q - terms);
        // Terms that rise from the first (p1 > 1) keep rising up to i = p + q
        // - (p - 1)/y (for p > 1; to the end for p <= 1): a peak beyond the
        // cap means the sum cannot end within it, and it is not begun.
        if (capped && p1 > 1 && (p <= 1 || p + q - (p - 1) / y > T(kMaxTerms))) {
            *too_long = true;
            return zorvs::missing<T>();
        }
        for (int i = 1; i <= n; ++i) {
            T xi = static_cast<T>(i);
            const T ratio = (q - xi + 1) * c / (p + q - xi);
            // With p1 <= 1 the terms fall and stay at one level.
            if (p1 <= 1 && term / k.eps <= (ib == 0 ? fin : fin1)) {
                ended = true;
                break;
            }
            const T bound = p >= 1 ? ratio : last_ratio;
            if (ib == 0 && bound < 1 && term * bound <= k.eps * (1 - bound) * fin) {
                ended = true;
                break;
            }
            term *= ratio;
            if (term > 1) {
                --ib;
                term *= k.scale;
            }
            if (ib == 0) fin += term;
            else if (ib == 1) fin1 += term;
        }
        if (capped && !ended) {
            *too_long = true;
            return zorvs::missing<T>();
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

// Terms the two sums take for I_y(p, q): the infinite one about log(eps) /
// log(y) for a fractional q, the finite one about q.
template <class T>
T sum_length(T y, T cy, T q) {
    const T lny = y > T(0.99) ? std::log1p(-cy) : std::log(y);  // y may round to 1
    return (q == std::trunc(q) ? 0 : constants<T>().alneps / lny) + q;
}

template <class T>
T l_beta_ratio(T x, T cx, T a, T b, bool upper) {
    // An infinite shape would take infinitely many terms; only the ends of
    // the range have their values.
    if (std::isinf(a) || std::isinf(b)) {
        if (x == 0 || cx == 0) return (x == 0) == upper ? T(1) : T(0);
        zorvs::raise(3, 9057, x, a, b);
        return zorvs::missing<T>();
    }
    // The tail on x's side of the mean a/(a+b) is likely below 1/4 where x
    // lies more than 2/3 of a standard deviation from it, and below 1/64
    // beyond 2.15 (so it is in the normal limit).  Such a tail, when it is the
    // value asked for, or below 1/64 when the other one is, is summed in its
    // own orientation where its series take at most 300 terms, so that it
    // keeps its relative accuracy and the other value is 1 minus it, without
    // a second sum.  Otherwise the exchange of the method keeps y below 0.8,
    // and between 0.2 and 0.8, where either orientation does, the one with
    // the shorter sums is taken.
    // The sum lengths of the two orientations, each worked out once when
    // first needed: kept (I_x(a, b)) and exchanged (I_(1-x)(b, a)).
    T keep_length = zorvs::missing<T>(), exchange_length = zorvs::missing<T>();
    auto keep = [&] {
        if (std::isnan(keep_length)) keep_length = sum_length(x, cx, b);
        return keep_length;
    };
    auto exchange = [&] {
        if (std::isnan(exchange_length)) exchange_length = sum_length(cx, x, a);
        return exchange_length;
    };
    // Where both orientations would take more than kLargeSums terms, the
    // methods made for large shapes.  The shorter orientation takes at most
    // max(a, b) + 53 terms (its y is at most 1/2), so below that nothing is
    // measured; both shapes beyond kLargeSums make both finite sums that
    // long, without a logarithm.
    const bool large_shapes = std::max(a, b) > T(kLargeSums - 64);
    if (large_shapes && (std::min(a, b) > T(kLargeSums) || std::min(keep(), exchange()) > T(kLargeSums))) {
        // Shapes far apart (one below 1e-15, the other beyond 1e300) can
        // overflow the continued fraction's b / a: no value, as for a sum
        // too long.
        const double v = zc::beta_ratio_large(x, cx, a, b, upper);
        if (std::isnan(v)) {
            zorvs::raise(3, 9057, x, a, b);
            return zorvs::missing<T>();
        }
        return static_cast<T>(v);
    }
    const T n = a + b, d = x * n - a;  // (x - mean)(a + b)
    const bool lower_small = d < 0;
    const T z2 = lower_small == !upper ? T(4.0 / 9.0) : T(4.6);  // squared deviates
    bool swapped;
    if (d * d * (n + 1) > z2 * a * b && (lower_small ? keep() : exchange()) <= T(kShortSums)) {
        swapped = !lower_small;
    } else {
        swapped = !(b <= a && x < T(0.8)) && x >= T(0.2);
        // The lengths of both orientations, in the band or where the
        // method's own would pass 20000 terms.
        bool compare = x >= T(0.2) && x <= T(0.8);
        if (!compare) {
            // Without a logarithm where it cannot: the length passes 20000
            // only for q near that or beyond, or y beyond 0.998 (a fractional q).
            const T y = swapped ? cx : x, q = swapped ? a : b;
            if (q > T(kLongestSums) / 2 || (y > T(0.998) && q != std::trunc(q)))
                compare = (swapped ? exchange() : keep()) > T(kLongestSums);
        }
        if (compare && keep() != exchange()) swapped = exchange() < keep();
    }
    // The orientation taken may still be the long one (a small shape whole,
    // so that the other orientation's sums are short, and x beyond 0.8 or
    // where the tail test chose): at large shapes the large-shape methods
    // rather than thousands of terms; and with the smaller shape from 10 on,
    // rather than sums whose leading factor rounds at 1e-13 and worse.
    if (large_shapes && (std::min(a, b) >= T(kSmallShapeSums) || (swapped ? exchange() : keep()) > T(kLargeSums)))
        return static_cast<T>(zc::beta_ratio_large(x, cx, a, b, upper));
    // s is I_x(a, b) unexchanged, its complement exchanged; t the other one.
    bool too_long = false;
    T s = swapped ? l_betai_sums(cx, x, b, a, &too_long) : l_betai_sums(x, cx, a, b, &too_long);
    if (too_long) {
        zorvs::raise(3, 9057, x, a, b);
        return zorvs::missing<T>();
    }
    T t = 1 - s;
    // Below 1/4 the small tail t may be summed again in its own orientation.
    // The rounding of a sum grows with its length and with the size of the
    // logarithm of its leading factor (about a |log x| + b |log(1-x)| in
    // either orientation); 1 - s carries that of the sum for s at the scale
    // of s, 1 - t that of the sum for t at the scale of t.  Below 1/64 the
    // tail is summed again whenever its series take at most 20000 terms, so
    // that a value close to 1 is 1 minus an accurate tail.  From 1/64 to 1/4
    // it is summed again where the value asked for could lose more than 64
    // units of rounding the other way and the sum for t is at least four
    // times as accurate: up to 300 terms, or up to 20000 where more than
    // 1024 units are at stake.
    if (t < T(0.25)) {
        const T length = swapped ? keep() : exchange();
        bool resum;
        // Below 1/64 a tail whose own sums would be too long to run comes
        // from the large-shape methods where a shape is large enough for
        // them; before, it was 1 minus the sum, with only absolute accuracy.
        const bool large = length > T(kLargeSums) && std::max(a, b) > T(kLargeSums - 64);
        if (t < T(kLowTail)) {
            resum = length <= T(kLongestSums) || large;
        } else {
            const bool want_s = swapped == upper;
            const T lead = a * std::fabs(std::log(x)) + b * std::fabs(std::log(cx));
            const T es = lead + (swapped ? exchange() : keep()), et = lead + length;
            // Expected rounding of the value asked for, in units, both ways.
            const T direct = want_s ? es : s * es / t;
            const T again = want_s ? t * et / s : et;
            resum = direct > 64 && 4 * again < direct && length <= T(direct > 1024 ? kLongestSums : kShortSums);
        }
        if (resum && large) {
            // A tail whose own sums would be long comes from the large-shape
            // methods: t is the upper tail unexchanged, I_x(a, b) exchanged.
            t = static_cast<T>(zc::beta_ratio_large(x, cx, a, b, !swapped));
            s = 1 - t;
        } else if (resum) {
            bool again_too_long = false;
            const T t2 = swapped ? l_betai_sums(x, cx, a, b, &again_too_long) : l_betai_sums(cx, x, b, a, &again_too_long);
            if (!again_too_long) {
                t = t2;
                s = 1 - t;
            }
        }
    }
    return clamp01(swapped == upper ? s : t);
}

// The ratio in the twin's type.  The single twin sums in double precision
// and rounds: in single precision the logarithm of the leading factor
// x^a (1-x)^b / B(a, b), some hundreds for shapes in the hundreds, rounds
// at 1e-7 of its size, and a long chain of ratios adds to that, so that
// the sums lose 1e-4 and more; x and 1 - x of a float are exact in double.
template <class T>
T ratio_in_twin(double x, double cx, double a, double b, bool upper) {
    return static_cast<T>(l_beta_ratio<double>(x, cx, a, b, upper));
}

template <class T>
T l_beta_incomplete(T x, T a, T b) {
    bool bad = false;
    if (!std::isnan(x) && !(x >= 0 && x <= 1)) {
        zorvs_e1stl(1, "x");
        zorvs::raise(5, 120, T(0), T(1), x);
        bad = true;
    }
    if (!(a > 0) || !(b > 0)) {
        zorvs::raise(5, 9031, a, b);
        bad = true;
    }
    if (bad) return zorvs::missing<T>();
    if (std::isnan(x)) return x;  // a missing x stays missing
    return ratio_in_twin<T>(x, 1 - static_cast<double>(x), a, b, false);
}

}  // namespace

namespace zorvs::continuous {

template <class T>
T beta_ratio(T x, T cx, T a, T b, bool upper) {
    return ratio_in_twin<T>(x, cx, a, b, upper);
}
template float beta_ratio<float>(float, float, float, float, bool);
template double beta_ratio<double>(double, double, double, double, bool);

}  // namespace zorvs::continuous

extern "C" {

float zorvs_f_beta_incomplete(float x, float a, float b) { ZORVS_VALUE_ENTRY(l_beta_incomplete<float>(x, a, b)); }
double zorvs_d_beta_incomplete(double x, double a, double b) { ZORVS_VALUE_ENTRY(l_beta_incomplete<double>(x, a, b)); }

}  // extern "C"
