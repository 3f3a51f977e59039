// Tests of the beta deviates: the uniforms each method takes from the
// stream, a chi-squared test of 10^6 deviates against the library's own
// distribution function at fixed seeds, sample moments within 4 standard
// errors of the mpmath moments (tests/data/random/make_beta_moments.py), and
// the failure paths.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "data/random/sequences.hpp"
#include "frame/frame.hpp"
#include "random/fit.hpp"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

using namespace zorvs_fit;

struct Moments {
    double p, q, mean, var, mu4;
};
const Moments kMoments[] = {
#include "data/random/beta_moments.inc"
};

const Moments &moments_of(double p, double q) {
    for (const Moments &m : kMoments)
        if (m.p == p && m.q == q) return m;
    ADD_FAILURE() << "no reference moments for " << p << ", " << q;
    return kMoments[0];
}

// Chi-squared p-value of a sample over classes of about equal probability:
// the edges are the library's quantiles k/500, the expected counts come from
// the library's distribution function at the edges, so that an error of the
// inverse moves an edge but does not bias the test.  Classes expected to hold
// fewer than 5 are pooled with their right neighbour.
template <class T>
double chi2_p(const T *x, int n, double p, double q) {
    constexpr int classes = 500;
    std::vector<double> edges;
    for (int k = 1; k < classes; ++k) {
        const double e = zorvs_d_beta_inverse_cdf(static_cast<double>(k) / classes, p, q);
        if (edges.empty() || e > edges.back()) edges.push_back(e);
    }
    std::vector<double> count(edges.size() + 1, 0.0);
    for (int i = 0; i < n; ++i)
        count[std::upper_bound(edges.begin(), edges.end(), static_cast<double>(x[i])) - edges.begin()] += 1;
    double chi2 = 0, observed = 0, expected = 0, below = 0;
    int df = -1;
    for (std::size_t k = 0; k < count.size(); ++k) {
        const double f = k < edges.size() ? zorvs_d_beta_cdf(edges[k], p, q) : 1.0;
        observed += count[k];
        expected += n * (f - below);
        below = f;
        if (expected >= 5 || k + 1 == count.size()) {
            chi2 += (observed - expected) * (observed - expected) / expected;
            observed = expected = 0;
            ++df;
        }
    }
    return 1 - zorvs_d_chi_squared_cdf(chi2, df);
}

template <class T>
void check_moments(const T *x, int n, const Moments &m) {
    zorvs_fit::check_moments(x, n, m.mean, m.var, m.mu4);
}

TEST(RandomBeta, InversionTakesOneUniformEach) {
    start(1);
    double r[5];
    zorvs_d_random_beta(5, 2.5, 1.0, ZORVS_RETURN_USER, r, 0);
    EXPECT_EQ(drawn_since_seed_1(), 5);
    for (int i = 0; i < 5; ++i) EXPECT_DOUBLE_EQ(r[i], std::pow(u_ref(i), 1 / 2.5));
    start(1);
    zorvs_d_random_beta(5, 1.0, 3.0, ZORVS_RETURN_USER, r, 0);
    EXPECT_EQ(drawn_since_seed_1(), 5);
    for (int i = 0; i < 5; ++i) EXPECT_NEAR(r[i], 1 - std::cbrt(u_ref(i)), 1e-15);
    // Near 0 the value keeps its relative accuracy: the first uniform is 7.8e-6.
    EXPECT_NEAR(r[0] / -std::expm1(std::log(u_ref(0)) / 3), 1.0, 1e-15);
    start(1);
    zorvs_d_random_beta(5, 1.0, 1.0, ZORVS_RETURN_USER, r, 0);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(r[i], u_ref(i));
}

// Candidates of the three rejection methods from a pair of uniforms, as the
// published methods form them; the deviate is the candidate of the last pair
// drawn, and each round draws a pair.
double johnk_candidate(double p, double q, double u, double v) {
    const double x = std::pow(u, 1 / p), y = std::pow(v, 1 / q);
    return x / (x + y);
}
double cheng_candidate(double p, double q, double u, double) {
    const double a = std::min(p, q), b = std::max(p, q), alpha = a + b;
    const double beta = std::sqrt((alpha - 2) / (2 * a * b - alpha));
    const double w = a * std::exp(beta * std::log(u / (1 - u)));
    return p <= q ? w / (b + w) : b / (b + w);
}
double switching_candidate(double p, double q, double u, double) {
    const double a = std::min(p, q), b = std::max(p, q);
    const double t = (1 - a) / (b + 1 - a);
    const double r = b * t / (b * t + a * std::pow(1 - t, b));
    const double x = u <= r ? t * std::pow(u / r, 1 / a) : 1 - (1 - t) * std::pow((1 - u) / (1 - r), 1 / b);
    return p <= q ? x : 1 - x;
}

TEST(RandomBeta, RejectionMethodsTakeUniformPairs) {
    struct Case {
        double p, q;
        double (*candidate)(double, double, double, double);
    };
    const Case cases[] = {{0.3, 0.7, johnk_candidate},     {0.6, 0.4, johnk_candidate},
                          {2.0, 5.0, cheng_candidate},     {30.0, 7.0, cheng_candidate},
                          {0.5, 3.0, switching_candidate}, {4.0, 0.3, switching_candidate}};
    for (const Case &c : cases) {
        SCOPED_TRACE(std::to_string(c.p) + ", " + std::to_string(c.q));
        start(1);
        int before = 0;
        for (int i = 0; i < 20; ++i) {
            double x;
            zorvs_d_random_beta(1, c.p, c.q, ZORVS_RETURN_USER, &x, 0);
            const int after = drawn_since_seed_1();
            ASSERT_GT(after, before);
            EXPECT_EQ((after - before) % 2, 0) << "deviate " << i;
            EXPECT_NEAR(x, c.candidate(c.p, c.q, u_ref(after - 2), u_ref(after - 1)), 1e-13) << "deviate " << i;
            before = after;
        }
        // The single twin draws the same uniforms, rounded to single precision.
        start(1);
        float xf[20];
        zorvs_f_random_beta(20, static_cast<float>(c.p), static_cast<float>(c.q), ZORVS_RETURN_USER, xf, 0);
        EXPECT_EQ(drawn_since_seed_1(), before);
        start(1);
        double xd[20];
        zorvs_d_random_beta(20, c.p, c.q, ZORVS_RETURN_USER, xd, 0);
        for (int i = 0; i < 20; ++i) EXPECT_NEAR(xf[i], xd[i], 1e-5 * (1e-3 + xd[i])) << "deviate " << i;
    }
}

void fit_case(double p, double q, int seed) {
    SCOPED_TRACE("beta(" + std::to_string(p) + ", " + std::to_string(q) + ")");
    start(seed);
    double *x = zorvs_d_random_beta(kDraws, p, q, 0);
    ASSERT_NE(x, nullptr);
    for (int i = 0; i < kDraws; ++i) ASSERT_TRUE(x[i] >= 0 && x[i] <= 1) << i << ": " << x[i];
    const double pv = chi2_p(x, kDraws, p, q);
    std::printf("beta(%g, %g) seed %d: chi-squared p = %.3f\n", p, q, seed, pv);
    EXPECT_GT(pv, 1e-3);
    check_moments(x, kDraws, moments_of(p, q));
    std::free(x);
}

// Chi-squared p-values (500 classes) at seeds 3001.. in this order:
// Johnk (0.3, 0.7) 0.331, (0.5, 0.5) 0.457, (0.9, 0.95) 0.875, (0.1, 0.2) 0.709
//   (in logarithms);
// inversion (1, 3) 0.811, (2.5, 1) 0.003, (1, 1) 0.025, (1, 0.3) 0.339;
// switching (0.5, 3) 0.691, (4, 0.3) 0.132, (0.9, 1.1) 0.860, (0.05, 40) 0.258,
//   (0.7, 500) 0.026;
// Cheng (1.5, 1.5) 0.215, (2, 5) 0.788, (30, 7) 0.509, (1000, 2000) 0.301,
//   (1.01, 1.02) 0.221.
// (2.5, 1) and (1, 1) fall into the same classes, being one monotone map of
// the same uniforms; over other seeds these p-values spread evenly.
TEST(RandomBeta, FitsAndMomentsAcrossMethods) {
    const double shapes[][2] = {{0.3, 0.7}, {0.5, 0.5}, {0.9, 0.95}, {0.1, 0.2},  {1.0, 3.0},
                                {2.5, 1.0}, {1.0, 1.0}, {1.0, 0.3},  {0.5, 3.0},  {4.0, 0.3},
                                {0.9, 1.1}, {0.05, 40.0}, {0.7, 500.0}, {1.5, 1.5}, {2.0, 5.0},
                                {30.0, 7.0}, {1000.0, 2000.0}, {1.01, 1.02}};
    int seed = 3000;
    for (const auto &s : shapes) fit_case(s[0], s[1], ++seed);
}

// Chi-squared p-values at seeds 4001..: (0.4, 0.6) 0.173, (1, 2) 0.587,
// (0.5, 6) 0.147, (3, 4) 0.525.
TEST(RandomBeta, SingleTwinFits) {
    const float shapes[][2] = {{0.4f, 0.6f}, {1.0f, 2.0f}, {0.5f, 6.0f}, {3.0f, 4.0f}};
    int seed = 4000;
    for (const auto &s : shapes) {
        const double p = s[0], q = s[1];
        SCOPED_TRACE("beta(" + std::to_string(p) + ", " + std::to_string(q) + ")");
        start(++seed);
        float *x = zorvs_f_random_beta(kDraws, s[0], s[1], 0);
        ASSERT_NE(x, nullptr);
        const double pv = chi2_p(x, kDraws, p, q);
        std::printf("single beta(%g, %g) seed %d: chi-squared p = %.3f\n", p, q, seed, pv);
        EXPECT_GT(pv, 1e-3);
        std::free(x);
    }
}

// Shapes so small that both powers of Johnk's method underflow together:
// the round in logarithms keeps the moments.
TEST(RandomBeta, TinyShapesKeepTheirMoments) {
    start(77);
    double *x = zorvs_d_random_beta(kDraws, 0.02, 0.02, 0);
    ASSERT_NE(x, nullptr);
    int inside = 0;
    for (int i = 0; i < kDraws; ++i) inside += x[i] >= 0 && x[i] <= 1;
    EXPECT_EQ(inside, kDraws);
    check_moments(x, kDraws, moments_of(0.02, 0.02));
    std::free(x);
}

TEST(RandomBeta, FailuresAreReported) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    start(1);
    EXPECT_EQ(zorvs_d_random_beta(10, 0.0, 2.0, 0), nullptr);
    EXPECT_TRUE(log.has(5, 11033));
    EXPECT_FALSE(log.has_code(11034));
    log.clear();
    EXPECT_EQ(zorvs_f_random_beta(10, 2.0f, -1.0f, 0), nullptr);
    EXPECT_TRUE(log.has(5, 11034));
    EXPECT_FALSE(log.has_code(11033));
    log.clear();
    EXPECT_EQ(zorvs_d_random_beta(10, -1.0, std::nan(""), 0), nullptr);
    EXPECT_TRUE(log.has(5, 11033));
    EXPECT_TRUE(log.has(5, 11034));
    log.clear();
    EXPECT_EQ(zorvs_d_random_beta(0, 1.0, 2.0, 0), nullptr);
    EXPECT_NE(q.errors.take().find("n_random"), std::string::npos);
    EXPECT_EQ(zorvs_random_seed_get(), 1);  // nothing drawn
    log.clear();
    EXPECT_EQ(zorvs_d_random_beta(3, 1.0, 2.0, 12345, 0), nullptr);
    EXPECT_TRUE(log.has(5, 11001));
    EXPECT_EQ(zorvs_error_param.i[2], 4);
    log.clear();
    zorvs::allocation_failure_countdown = 1;
    EXPECT_EQ(zorvs_f_random_beta(5, 2.0f, 3.0f, 0), nullptr);
    zorvs::allocation_failure_countdown = 0;
    EXPECT_TRUE(log.has(5, 200));
    q.errors.take();
}

// An infinite shape makes every round of Cheng's method fail: the deviate is
// given up after 1000 rounds of two uniforms.
TEST(RandomBeta, ThousandRejectedRoundsEndTheRoutine) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    const double inf = std::numeric_limits<double>::infinity();
    start(1);
    double r[4] = {0, 0, 0, 0};
    zorvs_d_random_beta(4, inf, 2.0, ZORVS_RETURN_USER, r, 0);
    EXPECT_TRUE(log.has(5, 11035));
    EXPECT_EQ(zorvs_error_param.i[1], 1);  // the first deviate
    for (double v : r) EXPECT_TRUE(std::isnan(v));
    int64_t x = 1;
    for (int k = 0; k < 2000; ++k) x = x * 16807 % 2147483647;
    EXPECT_EQ(zorvs_random_seed_get(), x);
    // The single twin, and an allocated result that comes back null.
    log.clear();
    const float inf_f = std::numeric_limits<float>::infinity();
    EXPECT_EQ(zorvs_f_random_beta(3, 2.0f, inf_f, 0), nullptr);
    EXPECT_TRUE(log.has(5, 11035));
    // Below 1 against an infinite shape the switching method meets its bound
    // at once and gives the limit, the point mass at 0 or at 1.
    log.clear();
    float limit[2];
    zorvs_f_random_beta(2, 0.5f, inf_f, ZORVS_RETURN_USER, limit, 0);
    EXPECT_EQ(limit[0], 0.0f);
    zorvs_f_random_beta(2, inf_f, 0.5f, ZORVS_RETURN_USER, limit, 0);
    EXPECT_EQ(limit[1], 1.0f);
    EXPECT_TRUE(log.entries().empty());
    q.errors.take();
}

TEST(RandomBeta, BadShapesStopByDefault) {
    EXPECT_EXIT(zorvs_d_random_beta(3, -1.0, 2.0, 0), ::testing::ExitedWithCode(5), "11033|zorvs_d_random_beta");
    EXPECT_EXIT(zorvs_f_random_beta(3, 1.0f, 0.0f, 0), ::testing::ExitedWithCode(5), "11034|zorvs_f_random_beta");
    EXPECT_EXIT(zorvs_d_random_beta(2, std::numeric_limits<double>::infinity(), 2.0, 0),
                ::testing::ExitedWithCode(5), "Deviate 1 of the beta");
}

}  // namespace
