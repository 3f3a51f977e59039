// Tests of the multivariate normal deviates and of the Kinderman-Ramage
// normal deviates behind them: uniforms per deviate, goodness of fit of 10^6
// deviates against the library's normal distribution function at fixed
// seeds, the covariance of the vectors within its sampling error, singular
// covariances, and the failure paths.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "data/random/sequences.hpp"
#include "frame/frame.hpp"
#include "random/fit.hpp"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

using namespace zorvs_fit;

template <class T>
double normal_ks_p(const T *x, int n) {
    return ks_p(x, n, [](double v) { return zorvs_d_normal_cdf(v); });
}

// Chi-squared p-value over 200 classes of equal normal probability: finer
// than Kolmogorov-Smirnov to a fault in one of the method's narrow regions.
template <class T>
double normal_chi2_p(const T *x, int n) {
    constexpr int classes = 200;
    std::vector<double> edges(classes - 1);
    for (int k = 1; k < classes; ++k) edges[k - 1] = zorvs_d_normal_inverse_cdf(static_cast<double>(k) / classes);
    std::vector<double> count(classes, 0.0);
    for (int i = 0; i < n; ++i)
        count[std::upper_bound(edges.begin(), edges.end(), static_cast<double>(x[i])) - edges.begin()] += 1;
    const double expected = static_cast<double>(n) / classes;
    double chi2 = 0;
    for (double c : count) chi2 += (c - expected) * (c - expected) / expected;
    return 1 - zorvs_d_chi_squared_cdf(chi2, classes - 1);
}

// Kinderman and Ramage's central triangle: u below 0.884070402298758 gives
// xi*(1.13113163544418*u + v - 1) from two uniforms.  The first uniforms from
// seed 1 are 7.8e-6, 0.132, 0.756, 0.459, 0.533, 0.219.
TEST(RandomNormalMultivariate, CentralTriangleTakesTwoUniforms) {
    const double xi = 2.216035867166471;
    start(1);
    double z[3];
    const double one = 1.0;
    zorvs_d_random_normal_multivariate(3, 1, &one, ZORVS_RETURN_USER, z, 0);
    EXPECT_EQ(drawn_since_seed_1(), 6);
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(z[i], xi * (1.13113163544418 * u_ref(2 * i) + u_ref(2 * i + 1) - 1), 1e-14);
    // The single twin draws the same uniforms.
    start(1);
    float zf[3];
    const float onef = 1.0f;
    zorvs_f_random_normal_multivariate(3, 1, &onef, ZORVS_RETURN_USER, zf, 0);
    EXPECT_EQ(drawn_since_seed_1(), 6);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(zf[i], z[i], 1e-6);
}

// The generator of option 1 in exact integer arithmetic.
constexpr int64_t kModulus = 2147483647;
int64_t step(int64_t x) { return x * 16807 % kModulus; }
// The seed whose next step is x: x times the inverse of 16807 modulo the prime.
int64_t predecessor(int64_t x) {
    int64_t inverse = 1, base = 16807;
    for (int64_t e = kModulus - 2; e > 0; e >>= 1) {
        if (e & 1) inverse = inverse * base % kModulus;
        base = base * base % kModulus;
    }
    return x * inverse % kModulus;
}

// The tail and the three wedges: the seed is set so that the first uniform
// falls in the region; each round then takes a pair (v, w), and the deviate
// comes from the last pair drawn: sqrt(2*(h - log w)) in the tail,
// t(min(v, w)) in a wedge, negative when v >= w.
TEST(RandomNormalMultivariate, TailAndWedgesTakeUniformPairs) {
    const double xi = 2.216035867166471, h = 2.45540748228412, d = 2147483711.0;
    struct Case {
        double u;
        double (*t)(double m);
    };
    const Case cases[] = {
        {0.980, nullptr},
        {0.995, nullptr},
        {0.965, [](double m) { return 2.216035867166471 - 0.63083480192196 * m; }},
        {0.930, [](double m) { return 0.479727404222441 + 1.10547366102207 * m; }},
        {0.900, [](double m) { return 0.479727404222441 - 0.59550713801594 * m; }},
    };
    const double one = 1.0;
    for (const Case &c : cases) {
        SCOPED_TRACE("u = " + std::to_string(c.u));
        const int64_t first = static_cast<int64_t>(c.u * d);
        zorvs_random_option(1);
        zorvs_random_seed_set(static_cast<int>(predecessor(first)));
        double z;
        zorvs_d_random_normal_multivariate(1, 1, &one, ZORVS_RETURN_USER, &z, 0);
        std::vector<int64_t> stream{first};
        while (stream.back() != zorvs_random_seed_get() && stream.size() < 1000) stream.push_back(step(stream.back()));
        const std::size_t k = stream.size();
        ASSERT_LT(k, 1000u);
        EXPECT_EQ(k % 2, 1u) << k;  // the region's uniform and whole pairs
        const double u = static_cast<double>(first) / d, v = static_cast<double>(stream[k - 2]) / d,
                     w = static_cast<double>(stream[k - 1]) / d;
        double expected;
        if (c.t == nullptr) {
            expected = std::sqrt(2 * (h - std::log(w)));
            if (u >= 0.986655477086949) expected = -expected;
        } else {
            const double t = c.t(std::min(v, w));
            expected = v - w >= 0 ? -t : t;
        }
        EXPECT_NEAR(z, expected, 1e-14) << "after " << k << " uniforms";
        if (c.t == nullptr)
            EXPECT_GE(std::fabs(z), xi);
        else
            EXPECT_LT(std::fabs(z), xi);
    }
}

// Kolmogorov-Smirnov and chi-squared (199 df) p-values at these seeds:
// double seed 5001: 0.059 and 0.121; single seed 5002: 0.628 and 0.248.
TEST(RandomNormalMultivariate, KindermanRamageDeviatesFit) {
    const double one = 1.0;
    start(5001);
    double *z = zorvs_d_random_normal_multivariate(kDraws, 1, &one, 0);
    ASSERT_NE(z, nullptr);
    const double ks = normal_ks_p(z, kDraws), chi2 = normal_chi2_p(z, kDraws);
    std::printf("double: Kolmogorov-Smirnov p = %.3f, chi-squared p = %.3f\n", ks, chi2);
    EXPECT_GT(ks, 1e-3);
    EXPECT_GT(chi2, 1e-3);
    double s = 0, s2 = 0, s4 = 0;
    for (int i = 0; i < kDraws; ++i) s += z[i];
    const double mean = s / kDraws;
    for (int i = 0; i < kDraws; ++i) {
        const double d = (z[i] - mean) * (z[i] - mean);
        s2 += d;
        s4 += d * d;
    }
    EXPECT_LE(std::fabs(mean), 4 / std::sqrt(kDraws));
    EXPECT_LE(std::fabs(s2 / (kDraws - 1) - 1), 4 * std::sqrt(2.0 / kDraws));        // var of s^2: 2/n
    EXPECT_LE(std::fabs(s4 / kDraws - 3), 4 * std::sqrt(96.0 / kDraws));              // var of m4: 96/n
    std::free(z);
    const float onef = 1.0f;
    start(5002);
    float *zf = zorvs_f_random_normal_multivariate(kDraws, 1, &onef, 0);
    ASSERT_NE(zf, nullptr);
    const double ksf = normal_ks_p(zf, kDraws), chi2f = normal_chi2_p(zf, kDraws);
    std::printf("single: Kolmogorov-Smirnov p = %.3f, chi-squared p = %.3f\n", ksf, chi2f);
    EXPECT_GT(ksf, 1e-3);
    EXPECT_GT(chi2f, 1e-3);
    std::free(zf);
}

// Sample means and covariances of n vectors against the covariance, each
// within 4 standard errors: Var(s_ij) = (s_ii s_jj + s_ij^2)/n for normal data.
template <class T>
void check_covariance(const T *x, int n, int l, const double *sigma) {
    std::vector<double> mean(l, 0.0);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < l; ++j) mean[j] += x[static_cast<std::size_t>(i) * l + j];
    for (int j = 0; j < l; ++j) {
        mean[j] /= n;
        EXPECT_LE(std::fabs(mean[j]), 4 * std::sqrt(sigma[j * l + j] / n)) << "mean " << j;
    }
    for (int a = 0; a < l; ++a)
        for (int b = a; b < l; ++b) {
            double s = 0;
            for (int i = 0; i < n; ++i)
                s += (x[static_cast<std::size_t>(i) * l + a] - mean[a]) * (x[static_cast<std::size_t>(i) * l + b] - mean[b]);
            s /= n - 1;
            const double se = std::sqrt((sigma[a * l + a] * sigma[b * l + b] + sigma[a * l + b] * sigma[a * l + b]) / n);
            EXPECT_LE(std::fabs(s - sigma[a * l + b]), 4 * se) << "covariance " << a << ", " << b << ": " << s;
        }
}

TEST(RandomNormalMultivariate, VectorsHaveTheCovariance) {
    // Positive definite (leading minors 4, 8, 10), with scales that differ by
    // column so that a layout fault shows.
    const double sigma[9] = {4, 2, -1, 2, 3, 0.5, -1, 0.5, 2};
    const int n = 300000;
    start(6001);
    double *x = zorvs_d_random_normal_multivariate(n, 3, sigma, 0);
    ASSERT_NE(x, nullptr);
    check_covariance(x, n, 3, sigma);
    std::free(x);
    const float sigmaf[9] = {4, 2, -1, 2, 3, 0.5f, -1, 0.5f, 2};
    start(6002);
    float *xf = zorvs_f_random_normal_multivariate(n, 3, sigmaf, 0);
    ASSERT_NE(xf, nullptr);
    check_covariance(xf, n, 3, sigma);
    std::free(xf);
    // Only the upper triangle of the row-major matrix is read.
    const double upper[9] = {4, 2, -1, 999, 3, 0.5, 999, 999, 2};
    start(6001);
    double a[30], b[30];
    zorvs_d_random_normal_multivariate(10, 3, sigma, ZORVS_RETURN_USER, a, 0);
    start(6001);
    zorvs_d_random_normal_multivariate(10, 3, upper, ZORVS_RETURN_USER, b, 0);
    for (int i = 0; i < 30; ++i) EXPECT_EQ(a[i], b[i]);
}

// Row i is z R with R'R the covariance: from one seed, the first vector with
// the covariance diag(1, 4) is twice the second deviate in its second place.
TEST(RandomNormalMultivariate, RowsAreVectorsInOrder) {
    const double one = 1.0;
    start(11);
    double z[6];
    zorvs_d_random_normal_multivariate(6, 1, &one, ZORVS_RETURN_USER, z, 0);
    const double diag[4] = {1, 0, 0, 4};
    start(11);
    double x[6];
    zorvs_d_random_normal_multivariate(3, 2, diag, ZORVS_RETURN_USER, x, 0);
    // The deviates fill the column-major result column by column: the first
    // column takes z[0..2], the second z[3..5].
    for (int i = 0; i < 3; ++i) {
        EXPECT_DOUBLE_EQ(x[2 * i], z[i]);
        EXPECT_DOUBLE_EQ(x[2 * i + 1], 2 * z[3 + i]);
    }
}

TEST(RandomNormalMultivariate, RankOneCovarianceGivesALine) {
    const double v[4] = {1, -2, 0.5, 3};
    double sigma[16];
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) sigma[i * 4 + j] = v[i] * v[j];
    zorvs_test::CodeLog log;
    start(8);
    const int n = 1000;
    double *x = zorvs_d_random_normal_multivariate(n, 4, sigma, 0);
    ASSERT_NE(x, nullptr);
    EXPECT_TRUE(log.entries().empty());
    for (int i = 0; i < n; ++i) {
        const double t = x[i * 4];  // the multiple of v
        for (int j = 1; j < 4; ++j) EXPECT_NEAR(x[i * 4 + j], t * v[j], 1e-14 * (1 + std::fabs(t))) << i;
    }
    std::free(x);
    // A rank-two covariance: every vector is orthogonal to the null vector
    // (1, 1, -1) of sigma = A A' with A's columns (1, 0, 1) and (0, 1, 1).
    const float s2[9] = {1, 0, 1, 0, 1, 1, 1, 1, 2};
    float *y = zorvs_f_random_normal_multivariate(n, 3, s2, 0);
    ASSERT_NE(y, nullptr);
    for (int i = 0; i < n; ++i)
        EXPECT_NEAR(y[i * 3] + y[i * 3 + 1] - y[i * 3 + 2], 0.0f, 1e-5f * (1 + std::fabs(y[i * 3 + 2]))) << i;
    std::free(y);
}

TEST(RandomNormalMultivariate, CovarianceNotNonNegativeDefiniteIsReported) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    const double sigma[4] = {1, 2, 2, 1};
    start(1);
    double *x = zorvs_d_random_normal_multivariate(5, 2, sigma, 0);
    EXPECT_NE(x, nullptr);
    EXPECT_TRUE(log.has(3, 20406));
    std::free(x);
    q.errors.take();
}

TEST(RandomNormalMultivariate, FailuresAreReported) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    const double sigma[4] = {2, 1, 1, 2};
    start(1);
    EXPECT_EQ(zorvs_d_random_normal_multivariate(0, 2, sigma, 0), nullptr);
    EXPECT_NE(q.errors.take().find("n_vectors"), std::string::npos);
    EXPECT_EQ(zorvs_f_random_normal_multivariate(3, -1, nullptr, 0), nullptr);
    EXPECT_NE(q.errors.take().find("l_vectors"), std::string::npos);
    EXPECT_EQ(zorvs_random_seed_get(), 1);  // nothing drawn
    log.clear();
    EXPECT_EQ(zorvs_d_random_normal_multivariate(3, 2, sigma, 12345, 0), nullptr);
    EXPECT_TRUE(log.has(5, 11001));
    EXPECT_EQ(zorvs_error_param.i[2], 4);
    // The result: (5, 202) with both sizes and their names.
    log.clear();
    zorvs::allocation_failure_countdown = 1;
    EXPECT_EQ(zorvs_d_random_normal_multivariate(7, 2, sigma, 0), nullptr);
    zorvs::allocation_failure_countdown = 0;
    EXPECT_TRUE(log.has(5, 202));
    EXPECT_EQ(zorvs_error_param.i[1], 7);
    EXPECT_EQ(zorvs_error_param.i[2], 2);
    EXPECT_EQ(std::string(zorvs_error_param.l[1]), "n_vectors");
    EXPECT_EQ(std::string(zorvs_error_param.l[2]), "l_vectors");
    // The work matrix: (5, 201) with l_vectors, and the result is freed.
    log.clear();
    zorvs::allocation_failure_countdown = 2;
    EXPECT_EQ(zorvs_f_random_normal_multivariate(7, 2, std::vector<float>{2, 1, 1, 2}.data(), 0), nullptr);
    zorvs::allocation_failure_countdown = 0;
    EXPECT_TRUE(log.has(5, 201));
    EXPECT_EQ(zorvs_error_param.i[1], 2);
    EXPECT_EQ(std::string(zorvs_error_param.l[1]), "l_vectors");
    q.errors.take();
}

// Without memory for its buffer the transposition runs in place by cycles:
// the same vectors.
TEST(RandomNormalMultivariate, InPlaceTranspositionWithoutBuffer) {
    const double sigma[9] = {4, 2, -1, 2, 3, 0.5, -1, 0.5, 2};
    start(21);
    double *a = zorvs_d_random_normal_multivariate(50, 3, sigma, 0);
    start(21);
    zorvs::allocation_failure_countdown = 3;  // result, factor, transposition buffer
    double *b = zorvs_d_random_normal_multivariate(50, 3, sigma, 0);
    const int left = zorvs::allocation_failure_countdown;
    zorvs::allocation_failure_countdown = 0;
    EXPECT_EQ(left, 0);
    ASSERT_NE(a, nullptr);
    ASSERT_NE(b, nullptr);
    for (int i = 0; i < 150; ++i) EXPECT_EQ(a[i], b[i]);
    std::free(a);
    std::free(b);
}

TEST(RandomNormalMultivariate, BadSizesStopByDefault) {
    const double one = 1.0;
    EXPECT_EXIT(zorvs_d_random_normal_multivariate(0, 1, &one, 0), ::testing::ExitedWithCode(5),
                "n_vectors");
}

}  // namespace
