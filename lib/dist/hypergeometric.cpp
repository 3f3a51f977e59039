// hypergeometric.cpp - the hypergeometric distribution function and the
// binomial coefficient.
//
// zorvs_f_hypergeometric_cdf(k, n, m, l): P(X <= k), X the number of
// successes in a sample of n drawn without replacement from a population of
// l that holds m successes.  The point probabilities from the lower end of
// the support, max(0, n + m - l), to k are summed from both ends with the
// mantissa-and-shift scheme of discrete_terms.hpp.  An end term is written,
// after Loader (C. Loader 2000, "Fast and accurate computation of binomial
// probabilities"), as a ratio of three binomial point probabilities with
// p = n / l:  h(x) = b(x; m, p) b(n - x; l - m, p) / b(n; l, p), each in the
// saddle-point form, so no large log factorials cancel.  Inner terms follow
// by h(x) / h(x - 1) = (m - x + 1)(n - x + 1) / (x (l - m - n + x)).
//
// zorvs_binom(n, m): n! / (m! (n - m)!), by the product formula in extended
// precision.
#include <cmath>

#include "dist/discrete.h"
#include "dist/discrete_terms.hpp"
#include "frame/frame.hpp"
#include "frame/raise.hpp"
#include "zorvstat.h"

namespace {

template <class T>
T l_hypergeometric_cdf(int k, int n, int m, int l) {
    bool bad = false;
    if (n < 1 || n > l) {
        zorvs::raise(5, 9061, n, l);
        bad = true;
    }
    if (m < 0 || m > l) {
        zorvs::raise(5, 9062, m, l);
        bad = true;
    }
    if (bad) return zorvs::missing<T>();
    if (k < 0) {
        zorvs::raise(1, 9054, k);
        return T(0);
    }
    const int top = n < m ? n : m;
    if (k > top) {
        zorvs::raise(1, 9063, k, top);
        return T(1);
    }
    if (k == top) return T(1);
    const long bottom = static_cast<long>(n) + m - l > 0 ? static_cast<long>(n) + m - l : 0;
    if (k < bottom) return T(0);

    using zorvs::discrete::log_binomial_term;
    const double dn = n, dm = m, dl = l;
    const double p = dn / dl, q = (dl - dn) / dl;
    auto log_term = [=](double x) {
        return log_binomial_term(x, dm, p, q) + log_binomial_term(dn - x, dl - dm, p, q) -
               log_binomial_term(dn, dl, p, q);
    };
    const double rest = dl - dm - dn;
    zorvs::discrete::TwoEndedSum<T> summation;
    double s = summation.sum(
        bottom, k, log_term,
        std::floor((dn + 1) * (dm + 1) / (dl + 2)),
        [=](double x) { return (dm - x + 1) * (dn - x + 1) / (x * (rest + x)); },
        [=](double x) { return x * (rest + x) / ((dm - x + 1) * (dn - x + 1)); });
    return static_cast<T>(s < 1 ? s : 1.0);
}

template <class T>
T l_binom(int n, int m) {
    if (n < 0 || m < 0 || m > n) {
        zorvs::raise(5, 600, n, m);
        return zorvs::missing<T>();
    }
    const int j = m < n - m ? m : n - m;
    // C(n, j) = prod_{i=1..j} (n - j + i) / i.  A result within the range of
    // double needs j <= 1030 (C(n, j) >= 2^j when n >= 2j), so the product
    // runs at most that long; in extended precision its 2j roundings stay
    // below one ulp of the result.  The loop ends once the partial product,
    // which only grows, has passed the largest number of the type.
    const long double limit = static_cast<long double>(zorvs::largest<T>());
    long double value = 1;
    for (int i = 1; i <= j; ++i) {
        value = value * static_cast<long double>(n - j + i) / static_cast<long double>(i);
        if (value > limit) {
            zorvs::raise(5, 20402, n, m);
            return zorvs::missing<T>();
        }
    }
    // The product is an integer; rounding removes the error of the divisions.
    if (value < 0x1p53L) value = std::roundl(value);
    return static_cast<T>(value);
}

}  // namespace

extern "C" {

float zorvs_f_hypergeometric_cdf(int k, int n, int m, int l) {
    ZORVS_VALUE_ENTRY(l_hypergeometric_cdf<float>(k, n, m, l));
}
double zorvs_d_hypergeometric_cdf(int k, int n, int m, int l) {
    ZORVS_VALUE_ENTRY(l_hypergeometric_cdf<double>(k, n, m, l));
}
float zorvs_binom(int n, int m) { ZORVS_VALUE_ENTRY(l_binom<float>(n, m)); }
double zorvs_dbinom(int n, int m) { ZORVS_VALUE_ENTRY(l_binom<double>(n, m)); }

}  // extern "C"
