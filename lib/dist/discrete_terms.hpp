// discrete_terms.hpp - point probabilities in log form and the two-ended
// summation shared by the Poisson, binomial and hypergeometric distribution
// functions.
//
// Log point probabilities follow Loader's saddle-point form (C. Loader 2000,
// "Fast and accurate computation of binomial probabilities"): the Stirling
// error stirlerr(n) = log n! - log(sqrt(2 pi n) (n/e)^n) and the deviance
// bd0(x, np) = x log(x/np) + np - x, the latter by a series when x is near np.
// Written this way, log p(k) carries no cancellation of large terms such as
// -theta + k log(theta) - log k! for theta and k near 1e6, so the absolute
// error of the log, hence the relative error of the term, stays a few ulps.
//
// The sum P(X <= k) = t_a + ... + t_b runs from both ends.  Each end keeps its
// term as a mantissa m and a shift count d, term = m * scale^d with scale
// twice the smallest normal number of the result type, so terms far below the
// underflow threshold still move by their ratio recurrence without becoming
// zero.  The end with the greater term moves next; a term enters the sum only
// at shift count 0 (terms at count 1 are kept aside so that a result below the
// normal range still comes out as a subnormal rather than 0).  Once all terms
// left lie on one side of the mode they fall away from the end that is nearer
// the mode, and the loop stops when their total cannot reach the last bit.
// All arithmetic runs in double; the single twin rounds the result once.
#ifndef ZORVS_DIST_DISCRETE_TERMS_HPP
#define ZORVS_DIST_DISCRETE_TERMS_HPP

#include <cfloat>
#include <cmath>
#include <type_traits>

#include "frame/twin.hpp"

namespace zorvs::discrete {

constexpr double ln_2pi = 1.8378770664093454835606594728112353;

// log n! - log(sqrt(2 pi n) (n/e)^n) for an integer n >= 0 (0 at n = 0).
inline double stirlerr(double n) {
    // Exact values for n = 0 .. 15 (computed in 40-digit arithmetic).
    static constexpr double table[16] = {
        0.0,
        0.0810614667953272582197, 0.0413406959554092940938, 0.0276779256849983391488,
        0.0207906721037650931115, 0.0166446911898211921632, 0.0138761288230707479987,
        0.0118967099458917700951, 0.0104112652619720964975, 0.00925546218271273291773,
        0.00833056343336287125647, 0.00757367548795184079497, 0.00694284010720952986566,
        0.00640899418800420706844, 0.00595137011275884773562, 0.00555473355196280137104,
    };
    constexpr double s0 = 1.0 / 12, s1 = 1.0 / 360, s2 = 1.0 / 1260, s3 = 1.0 / 1680, s4 = 1.0 / 1188;
    if (n <= 15) return table[static_cast<int>(n)];
    double nn = n * n;
    if (n > 500) return (s0 - s1 / nn) / n;
    if (n > 80) return (s0 - (s1 - s2 / nn) / nn) / n;
    if (n > 35) return (s0 - (s1 - (s2 - s3 / nn) / nn) / nn) / n;
    return (s0 - (s1 - (s2 - (s3 - s4 / nn) / nn) / nn) / nn) / n;
}

// x log(x/np) + np - x, without cancellation when x is near np (np > 0).
inline double bd0(double x, double np) {
    if (std::fabs(x - np) < 0.1 * (x + np)) {
        double v = (x - np) / (x + np);
        double s = (x - np) * v;
        double ej = 2 * x * v;
        v *= v;
        for (int j = 1; j < 1000; ++j) {
            ej *= v;
            double s1 = s + ej / (2 * j + 1);
            if (s1 == s) return s1;
            s = s1;
        }
        return s;
    }
    return x * std::log(x / np) + np - x;
}

// log P(X = x), X Poisson with mean theta > 0, x >= 0 an integer.
inline double log_poisson_term(double x, double theta) {
    if (x == 0) return -theta;
    return -stirlerr(x) - bd0(x, theta) - 0.5 * (ln_2pi + std::log(x));
}

// log P(X = x), X binomial with n trials and success probability p, q = 1 - p
// given separately so that a q near 0 keeps its digits; 0 <= x <= n.
inline double log_binomial_term(double x, double n, double p, double q) {
    if (x == 0) {
        if (n == 0) return 0;
        return p < 0.1 ? n * std::log1p(-p) : n * std::log(q);
    }
    if (x == n) return q < 0.1 ? n * std::log1p(-q) : n * std::log(p);
    if (p == 0 || q == 0) return -zorvs::infinity<double>();
    double lc = stirlerr(n) - stirlerr(x) - stirlerr(n - x) - bd0(x, n * p) - bd0(n - x, n * q);
    // log(2 pi x (n - x) / n); (n - x) / n rather than 1 - x / n, whose
    // rounding would be magnified when x is near n.
    double lf = ln_2pi + std::log(x) + (2 * x < n ? std::log1p(-x / n) : std::log((n - x) / n));
    return lc - 0.5 * lf;
}

// A term of the sum as mantissa and shift count: value = m * scale^d.
struct ScaledTerm {
    double m;
    double d;  // a double, so that a count of 1e300 / 700 neither overflows nor wraps
};

// The summation, with the scale of result type T.
template <class T>
class TwoEndedSum {
public:
    TwoEndedSum()
        : scale_(2.0 * static_cast<double>(zorvs::smallest<T>())),
          log_scale_(std::log(scale_)) {}

    double scale() const { return scale_; }
    double log_scale() const { return log_scale_; }

    ScaledTerm from_log(double log_value) const {
        if (!(log_value > -zorvs::infinity<double>())) return {0.0, 0.0};
        double d = log_value < 0 ? std::trunc(log_value / log_scale_) : 0.0;
        return {std::exp(log_value - d * log_scale_), d};
    }

    // sum of t_a .. t_b.  log_term(j) = log t_j, up(j) = t_j / t_{j-1},
    // down(j) = t_{j-1} / t_j; mode is an index where the terms stop rising.
    // Returns the sum in double.
    //
    // A ratio such as (n - j + 1) / j * p / q carries the rounding of p / q
    // into every step with the same sign, so after 1e5 steps a term would be
    // off by 1e5 ulps.  Every `anchor_steps` steps an end therefore takes its
    // term afresh from log_term, which bounds the drift by that many ulps.
    template <class LogTerm, class Up, class Down>
    double sum(long a, long b, LogTerm log_term, double mode, Up up, Down down) const {
        constexpr int anchor_steps = 128;
        ScaledTerm lo = from_log(log_term(static_cast<double>(a)));
        ScaledTerm hi = from_log(log_term(static_cast<double>(b)));
        int lo_steps = 0, hi_steps = 0;
        double total = 0, carry = 0;  // Neumaier's compensated sum of count-0 terms
        double below = 0;             // mantissas of terms at shift count 1
        while (a <= b) {
            bool take_low = lo.d < hi.d || (lo.d == hi.d && lo.m >= hi.m);
            ScaledTerm &t = take_low ? lo : hi;
            if (t.d == 0) {
                double s = total + t.m;
                carry += std::fabs(total) >= t.m ? (total - s) + t.m : (t.m - s) + total;
                total = s;
            } else if (t.d == 1) {
                below += t.m;
            }
            if (a == b) break;
            if (take_low) {
                ++a;
                if (++lo_steps == anchor_steps) {
                    lo = from_log(log_term(static_cast<double>(a)));
                    lo_steps = 0;
                } else {
                    step(lo, up(static_cast<double>(a)));
                }
            } else {
                --b;
                if (++hi_steps == anchor_steps) {
                    hi = from_log(log_term(static_cast<double>(b)));
                    hi_steps = 0;
                } else {
                    step(hi, down(static_cast<double>(b + 1)));
                }
            }
            // All terms left on one side of the mode: bound what they can add.
            const ScaledTerm *largest = nullptr;
            if (static_cast<double>(a) >= mode) largest = &lo;
            else if (static_cast<double>(b) <= mode) largest = &hi;
            if (largest) {
                double left = static_cast<double>(b - a + 1);
                double sum_now = total + carry;
                if (largest->d == 0) {
                    if (left * largest->m < sum_now * 0x1p-60) break;
                } else if (left * scale_ < sum_now * 0x1p-60) {
                    break;
                } else if (largest->d >= 2 && sum_now == 0) {
                    // What is left lies below scale^2: it cannot move a
                    // result that is already below the normal range.
                    break;
                }
            }
        }
        return total + carry + below * scale_;
    }

private:
    void step(ScaledTerm &t, double ratio) const {
        t.m *= ratio;
        if (t.d > 0 && t.m >= 1) {
            t.m *= scale_;
            t.d -= 1;
        } else if (t.m < scale_ && t.m > 0) {
            t.m /= scale_;
            t.d += 1;
        }
    }
    double scale_;
    double log_scale_;
};

}  // namespace zorvs::discrete

#endif  // ZORVS_DIST_DISCRETE_TERMS_HPP
