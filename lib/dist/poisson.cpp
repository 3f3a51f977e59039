// poisson.cpp - the Poisson distribution function P(X <= k), X Poisson with
// mean theta.
//
// The k + 1 point probabilities are summed from both ends (the term at 0 and
// the term at k), each end kept as a mantissa and a shift count so that no
// term underflows on its way to the middle; see discrete_terms.hpp.  The end
// terms are exp(-theta) and Loader's saddle-point form of the term at k
// (C. Loader 2000, "Fast and accurate computation of binomial
// probabilities"); the inner terms follow by t_j = t_{j-1} theta / j.
// From k = 1000 on, where that sum is long, P(X <= k) is the upper
// incomplete gamma ratio Q(k + 1, theta) for large shapes (large_shapes.cpp).
#include <cmath>

#include "dist/discrete.h"
#include "dist/discrete_terms.hpp"
#include "dist/large_shapes.hpp"
#include "frame/frame.hpp"
#include "frame/raise.hpp"
#include "zorvstat.h"

namespace {

// Counts from which the distribution function is a gamma ratio, not a sum.
constexpr int kLongSum = 1000;

template <class T>
T l_poisson_cdf(int k, T theta_in) {
    const double theta = static_cast<double>(theta_in);
    if (!(theta > 0)) {
        zorvs_e1str(1, theta);
        zorvs_ermes(5, 9064);
        return zorvs::missing<T>();
    }
    if (k < 0) {
        zorvs::raise(1, 9054, k);
        return T(0);
    }
    if (theta <= static_cast<double>(zorvs::epsilon<T>())) return T(1);
    if (theta == zorvs::infinity<double>()) return T(0);

    if (k >= kLongSum) return static_cast<T>(zorvs::continuous::gamma_ratio_large(k + 1.0, theta, true));
    using zorvs::discrete::log_poisson_term;
    zorvs::discrete::TwoEndedSum<T> summation;
    double s = summation.sum(
        0, k, [theta](double j) { return log_poisson_term(j, theta); }, std::floor(theta),
        [theta](double j) { return theta / j; }, [theta](double j) { return j / theta; });
    return static_cast<T>(s < 1 ? s : 1.0);
}

}  // namespace

extern "C" {

float zorvs_f_poisson_cdf(int k, float theta) { ZORVS_VALUE_ENTRY(l_poisson_cdf<float>(k, theta)); }
double zorvs_d_poisson_cdf(int k, double theta) { ZORVS_VALUE_ENTRY(l_poisson_cdf<double>(k, theta)); }

}  // extern "C"
