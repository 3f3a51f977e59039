// binomial.cpp - the binomial distribution function P(X <= k), X binomial
// with n trials and success probability p.
//
// The point probabilities from 0 to k are summed from both ends with the
// mantissa-and-shift scheme of discrete_terms.hpp.  The end terms come from
// Loader's saddle-point form (C. Loader 2000, "Fast and accurate computation
// of binomial probabilities"), the inner terms by the ratio
// t_j / t_{j-1} = (n - j + 1) / j * p / q, with q = 1 - p.
// From k = 1000 on, where that sum is long, P(X <= k) is the incomplete
// beta ratio I_q(n - k, k + 1) for large shapes (large_shapes.cpp).
#include <cmath>
#include <limits>

#include "dist/discrete.h"
#include "dist/discrete_terms.hpp"
#include "dist/large_shapes.hpp"
#include "frame/frame.hpp"
#include "frame/raise.hpp"
#include "zorvstat.h"

namespace {

// Counts from which the distribution function is a beta ratio, not a sum.
constexpr int kLongSum = 1000;

template <class T>
T l_binomial_cdf(int k, int n, T p_in) {
    const double p = static_cast<double>(p_in);
    bool bad = false;
    if (n <= 0) {
        zorvs::raise(5, 9058, n);
        bad = true;
    }
    if (!(p >= 0 && p <= 1)) {
        zorvs_e1str(1, p);
        zorvs_ermes(5, 9059);
        bad = true;
    }
    if (bad) return zorvs::missing<T>();
    if (k < 0) {
        zorvs::raise(1, 9054, k);
        return T(0);
    }
    if (k > n) {
        zorvs::raise(1, 9060, k, n);
        return T(1);
    }
    if (k == n) return T(1);
    // P(X <= k) >= (1 - p)^n >= 1 - n p: with p below 1e-290 it rounds to 1.
    if (p < 1e-290) return T(1);
    if (p == 1) return T(0);

    const double q = 1.0 - p;  // exact for p >= 0.5 and rounded once below
    if (k >= kLongSum) return static_cast<T>(zorvs::continuous::beta_ratio_large(q, p, n - k, k + 1.0, false));
    const double dn = n;
    const double odds = p / q, inverse_odds = q / p;
    using zorvs::discrete::log_binomial_term;
    zorvs::discrete::TwoEndedSum<T> summation;
    double s = summation.sum(
        0, k, [=](double j) { return log_binomial_term(j, dn, p, q); }, std::floor((dn + 1) * p),
        [=](double j) { return (dn - j + 1) / j * odds; },
        [=](double j) { return j / (dn - j + 1) * inverse_odds; });
    return static_cast<T>(s < 1 ? s : 1.0);
}

}  // namespace

extern "C" {

float zorvs_f_binomial_cdf(int k, int n, float p) { ZORVS_VALUE_ENTRY(l_binomial_cdf<float>(k, n, p)); }
double zorvs_d_binomial_cdf(int k, int n, double p) { ZORVS_VALUE_ENTRY(l_binomial_cdf<double>(k, n, p)); }

}  // extern "C"
