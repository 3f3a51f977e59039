// fit.hpp - helpers shared by the tests of the random deviates: a fixed
// start of the stream, Kolmogorov-Smirnov p-values, moment checks within 4
// standard errors, and the position in the exact stream of generator 1.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "data/random/sequences.hpp"
#include "zorvstat.h"

namespace zorvs_fit {

constexpr int kDraws = 1000000;

inline void start(int seed) {
    zorvs_random_option(1);
    zorvs_random_seed_set(seed);
}

// Asymptotic Kolmogorov p-value of sqrt(n)*D.
inline double kolmogorov_p(double d, int n) {
    const double rn = std::sqrt(static_cast<double>(n));
    const double x = (rn + 0.12 + 0.11 / rn) * d;
    double s = 0;
    for (int k = 1; k <= 100; ++k) s += 2 * ((k % 2) ? 1 : -1) * std::exp(-2.0 * k * k * x * x);
    return std::min(1.0, std::max(0.0, s));
}

template <class T, class Cdf>
double ks_p(const T *x, int n, Cdf cdf) {
    std::vector<double> v(x, x + n);
    std::sort(v.begin(), v.end());
    double d = 0;
    for (int i = 0; i < n; ++i) {
        const double f = cdf(v[i]);
        d = std::max({d, f - static_cast<double>(i) / n, static_cast<double>(i + 1) / n - f});
    }
    return kolmogorov_p(d, n);
}

// Mean and variance within 4 standard errors of the true ones; mu4 is the
// fourth central moment.
template <class T>
void check_moments(const T *x, int n, double mean, double var, double mu4) {
    double s = 0;
    for (int i = 0; i < n; ++i) s += x[i];
    const double m = s / n;
    double ss = 0;
    for (int i = 0; i < n; ++i) ss += (x[i] - m) * (x[i] - m);
    const double v = ss / (n - 1);
    EXPECT_LE(std::fabs(m - mean), 4 * std::sqrt(var / n)) << "mean " << m;
    EXPECT_LE(std::fabs(v - var), 4 * std::sqrt((mu4 - var * var) / n)) << "variance " << v;
}

// The uniforms of generator 1 from seed 1, from exact integer arithmetic.
inline double u_ref(int k) { return static_cast<double>(random_ref::plain1_seed1[k]) / random_ref::divisor; }

// How many uniforms have been drawn since seed 1 (up to 200).
inline int drawn_since_seed_1() {
    const int64_t s = zorvs_random_seed_get();
    for (int k = 0; k < 200; ++k)
        if (random_ref::plain1_seed1[k] == s) return k + 1;
    return -1;
}

}  // namespace zorvs_fit
