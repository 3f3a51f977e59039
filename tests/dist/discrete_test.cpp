// Tests of the Poisson, binomial and hypergeometric distribution functions
// and the binomial coefficient: against R's ppois, pbinom and phyper over
// grids that reach tails below 1e-300, against exact rational sums, and for
// every message the routines raise.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdio>

#include "dist/discrete.h"
#include "frame/services.h"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

struct PoissonRow { int k; double theta, value; };
struct BinomialRow { int k, n; double p, value; };
struct HypergeometricRow { int k, n, m, l; double value; };
#include "data/dist/discrete_ref.inc"
#include "data/dist/hypergeometric_ref.inc"

// Relative error, measured against the reference; subnormal references are
// compared in absolute terms against the smallest normal number.
double relative_error(double got, double want) {
    double scale = std::fabs(want) > DBL_MIN ? std::fabs(want) : DBL_MIN;
    return std::fabs(got - want) / scale;
}

// Single twin: relative error for values in float's normal range, absolute
// against FLT_MIN below it.
double relative_error_float(float got, double want) {
    double scale = std::fabs(want) > FLT_MIN ? std::fabs(want) : FLT_MIN;
    return std::fabs(static_cast<double>(got) - want) / scale;
}

}  // namespace

// --- Poisson -------------------------------------------------------------

TEST(PoissonCdf, DoubleAgreesWithReferenceIncludingDeepTails) {
    zorvs_test::Quiet q;
    double worst = 0;
    for (const auto &r : poisson_rows) {
        double got = zorvs_d_poisson_cdf(r.k, r.theta);
        // Condition number in theta of the leading term: |k - theta|.
        double allowed = 1e-12 + 4 * DBL_EPSILON * std::fabs(r.k - r.theta);
        if (r.value < DBL_MIN) {
            EXPECT_GT(got, 0) << "k=" << r.k << " theta=" << r.theta;
            EXPECT_LT(std::fabs(got - r.value), 1e-3 * DBL_MIN);
            continue;
        }
        double e = relative_error(got, r.value);
        worst = std::fmax(worst, e);
        EXPECT_LE(e, allowed) << "k=" << r.k << " theta=" << r.theta << " got " << got << " want " << r.value;
    }
    std::printf("poisson double: worst relative error %.3g\n", worst);
}

TEST(PoissonCdf, SingleAgreesWithReference) {
    zorvs_test::Quiet q;
    for (const auto &r : poisson_rows) {
        if (r.theta > 1.6e7) continue;  // theta exact in float for the grid
        float got = zorvs_f_poisson_cdf(r.k, static_cast<float>(r.theta));
        double want = zorvs_d_poisson_cdf(r.k, static_cast<double>(static_cast<float>(r.theta)));
        if (want < FLT_MIN) continue;
        EXPECT_LE(relative_error_float(got, want), 1e-4) << "k=" << r.k << " theta=" << r.theta;
    }
}

// --- Binomial ------------------------------------------------------------

TEST(BinomialCdf, DoubleAgreesWithReferenceIncludingDeepTails) {
    zorvs_test::Quiet q;
    double worst = 0;
    for (const auto &r : binomial_rows) {
        double got = zorvs_d_binomial_cdf(r.k, r.n, r.p);
        if (r.value < DBL_MIN) {
            EXPECT_GT(got, 0) << "k=" << r.k << " n=" << r.n << " p=" << r.p;
            EXPECT_LT(std::fabs(got - r.value), 1e-3 * DBL_MIN);
            continue;
        }
        // Condition number in p of the leading term: |k - n p| / q, and
        // |n - k| / q near P = 1 (where the upper tail's condition bounds it).
        double q = 1 - r.p;
        double condition = std::fabs(r.k - r.n * r.p) / q * (r.value > 0.5 ? (1 - r.value) / r.value : 1.0);
        double e = relative_error(got, r.value);
        worst = std::fmax(worst, e);
        EXPECT_LE(e, 1e-12 + 4 * DBL_EPSILON * condition) << "k=" << r.k << " n=" << r.n << " p=" << r.p << " got " << got << " want "
                            << r.value;
    }
    std::printf("binomial double: worst relative error %.3g\n", worst);
}

// --- Hypergeometric ------------------------------------------------------

TEST(HypergeometricCdf, DoubleAgreesWithReference) {
    zorvs_test::Quiet q;
    double worst = 0;
    for (const auto &r : hypergeometric_rows) {
        double got = zorvs_d_hypergeometric_cdf(r.k, r.n, r.m, r.l);
        if (r.value < DBL_MIN) {
            EXPECT_GT(got, 0);
            continue;
        }
        double e = relative_error(got, r.value);
        worst = std::fmax(worst, e);
        EXPECT_LE(e, 1e-12) << "k=" << r.k << " n=" << r.n << " m=" << r.m << " l=" << r.l << " got " << got
                            << " want " << r.value;
    }
    std::printf("hypergeometric double: worst relative error %.3g\n", worst);
}

TEST(BinomialCdf, SingleTwinAgreesWithReference) {
    zorvs_test::Quiet q;
    for (const auto &r : binomial_rows) {
        float p = static_cast<float>(r.p);
        double want = zorvs_d_binomial_cdf(r.k, r.n, static_cast<double>(p));
        if (want < FLT_MIN) continue;
        EXPECT_LE(relative_error_float(zorvs_f_binomial_cdf(r.k, r.n, p), want), 1e-4)
            << "k=" << r.k << " n=" << r.n << " p=" << r.p;
    }
}

TEST(HypergeometricCdf, SingleTwinAgreesWithReference) {
    zorvs_test::Quiet q;
    for (const auto &r : hypergeometric_rows) {
        if (r.value < FLT_MIN) continue;
        EXPECT_LE(relative_error_float(zorvs_f_hypergeometric_cdf(r.k, r.n, r.m, r.l), r.value), 1e-4)
            << "k=" << r.k << " n=" << r.n << " m=" << r.m << " l=" << r.l;
    }
}

// --- Edge values and exact small cases -----------------------------------

TEST(PoissonCdf, EdgeValues) {
    zorvs_test::Quiet q;
    EXPECT_NEAR(zorvs_d_poisson_cdf(0, 1), std::exp(-1.0), 1e-16);
    EXPECT_EQ(zorvs_d_poisson_cdf(1000, 1e-20), 1.0);
    double v = zorvs_d_poisson_cdf(100000, 1e5);
    EXPECT_GT(v, 0.5);
    EXPECT_LT(v, 0.502);
    // Exact: P(X <= 3) = e^-2 (1 + 2 + 2 + 4/3) = e^-2 19/3.
    EXPECT_NEAR(zorvs_d_poisson_cdf(3, 2), std::exp(-2.0) * 19 / 3, 2e-16);
    // A result in the subnormal range comes out, not 0: P(X <= 0) = e^-720.
    double tiny = zorvs_d_poisson_cdf(0, 720);
    EXPECT_GT(tiny, 0);
    EXPECT_NEAR(tiny, 2.03223080242429e-313, 1e-320);
    EXPECT_EQ(zorvs_d_poisson_cdf(0, 800), 0.0);
    EXPECT_EQ(zorvs_d_poisson_cdf(5, INFINITY), 0.0);
}

TEST(BinomialCdf, EdgeValues) {
    zorvs_test::Quiet q;
    EXPECT_EQ(zorvs_d_binomial_cdf(3, 3, 0.5), 1.0);
    EXPECT_NEAR(zorvs_d_binomial_cdf(2, 3, 0.5), 0.875, 1e-15);
    EXPECT_EQ(zorvs_d_binomial_cdf(0, 10, 0.0), 1.0);
    EXPECT_EQ(zorvs_d_binomial_cdf(9, 10, 1.0), 0.0);
    EXPECT_EQ(zorvs_d_binomial_cdf(0, 1, 1e-300), 1.0);
    // Exact: P(X <= 4), n = 10, p = 1/4, is 966654 / 4^10.
    EXPECT_NEAR(zorvs_d_binomial_cdf(4, 10, 0.25), 966654.0 / 1048576.0, 1e-15);
    EXPECT_NEAR(zorvs_f_binomial_cdf(4, 10, 0.25f), 966654.0 / 1048576.0, 1e-7);
}

TEST(HypergeometricCdf, EdgeValuesAndSupport) {
    zorvs_test::Quiet q;
    // 5 drawn from 10 holding 3: P(X <= 1) = (C(7,5) + 3 C(7,4)) / C(10,5) = 126 / 252.
    EXPECT_NEAR(zorvs_d_hypergeometric_cdf(1, 5, 3, 10), 0.5, 1e-15);
    EXPECT_EQ(zorvs_d_hypergeometric_cdf(3, 5, 3, 10), 1.0);
    // Below the support (at least 5 + 8 - 10 = 3 successes): 0 without a message.
    zorvs_test::CodeLog log;
    EXPECT_EQ(zorvs_d_hypergeometric_cdf(2, 5, 8, 10), 0.0);
    EXPECT_TRUE(log.entries().empty());
    // Whole population drawn: X = m surely.
    EXPECT_EQ(zorvs_d_hypergeometric_cdf(3, 10, 4, 10), 0.0);
    EXPECT_EQ(zorvs_d_hypergeometric_cdf(4, 10, 4, 10), 1.0);
    EXPECT_EQ(zorvs_d_hypergeometric_cdf(0, 3, 0, 10), 1.0);
}

// --- Messages --------------------------------------------------------------

TEST(PoissonMessages, NegativeKIsANoteAndBadMeanIsTerminal) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    EXPECT_EQ(zorvs_d_poisson_cdf(-1, 1), 0.0);
    EXPECT_TRUE(log.has(1, 9054));
    EXPECT_EQ(zorvs_error_param.i[1], -1);
    for (double theta : {0.0, -2.0, static_cast<double>(NAN)}) {
        EXPECT_TRUE(std::isnan(zorvs_d_poisson_cdf(3, theta)));
        EXPECT_EQ(zorvs_error_type(), 5);
        EXPECT_EQ(zorvs_error_code(), 9064);
    }
    EXPECT_EQ(zorvs_error_param.r[1] != zorvs_error_param.r[1], true);  // NaN stored as given
    EXPECT_TRUE(std::isnan(zorvs_f_poisson_cdf(3, -2.0f)));
    EXPECT_EQ(zorvs_error_param.r[1], -2.0);
    EXPECT_NE(q.errors.take().find("zorvs_f_poisson_cdf"), std::string::npos);
}

TEST(BinomialMessages, EveryCheck) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    EXPECT_TRUE(std::isnan(zorvs_d_binomial_cdf(1, 0, 0.5)));
    EXPECT_TRUE(log.has(5, 9058));
    EXPECT_EQ(zorvs_error_param.i[1], 0);
    EXPECT_TRUE(std::isnan(zorvs_d_binomial_cdf(1, 5, 1.5)));
    EXPECT_TRUE(log.has(5, 9059));
    EXPECT_EQ(zorvs_error_param.r[1], 1.5);
    EXPECT_TRUE(std::isnan(zorvs_f_binomial_cdf(1, 5, -0.25f)));
    EXPECT_EQ(zorvs_error_code(), 9059);
    log.clear();
    EXPECT_EQ(zorvs_d_binomial_cdf(-2, 5, 0.5), 0.0);
    EXPECT_TRUE(log.has(1, 9054));
    EXPECT_EQ(zorvs_d_binomial_cdf(4, 3, 0.5), 1.0);
    EXPECT_TRUE(log.has(1, 9060));
    EXPECT_EQ(zorvs_error_param.i[1], 4);
    EXPECT_EQ(zorvs_error_param.i[2], 3);
}

TEST(HypergeometricMessages, EveryCheckInOrder) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    EXPECT_TRUE(std::isnan(zorvs_d_hypergeometric_cdf(1, 0, 3, 10)));
    EXPECT_TRUE(log.has(5, 9061));
    EXPECT_TRUE(std::isnan(zorvs_d_hypergeometric_cdf(1, 11, 3, 10)));
    EXPECT_EQ(zorvs_error_param.i[1], 11);
    EXPECT_EQ(zorvs_error_param.i[2], 10);
    EXPECT_TRUE(std::isnan(zorvs_f_hypergeometric_cdf(1, 5, 12, 10)));
    EXPECT_TRUE(log.has(5, 9062));
    EXPECT_EQ(zorvs_error_param.i[1], 12);
    EXPECT_TRUE(std::isnan(zorvs_d_hypergeometric_cdf(1, 5, -1, 10)));
    EXPECT_EQ(zorvs_error_code(), 9062);
    log.clear();
    EXPECT_EQ(zorvs_d_hypergeometric_cdf(-1, 5, 3, 10), 0.0);
    EXPECT_TRUE(log.has(1, 9054));
    EXPECT_EQ(zorvs_d_hypergeometric_cdf(4, 5, 3, 10), 1.0);
    EXPECT_TRUE(log.has(1, 9063));
    EXPECT_EQ(zorvs_error_param.i[1], 4);
    EXPECT_EQ(zorvs_error_param.i[2], 3);
}

// Terminal errors stop the process with their type as status.
TEST(PoissonDeath, BadMeanStops) {
    EXPECT_EXIT(zorvs_d_poisson_cdf(1, -1), ::testing::ExitedWithCode(5), "9064|poisson");
}
TEST(BinomialDeath, BadTrialsStop) {
    EXPECT_EXIT(zorvs_f_binomial_cdf(1, -3, 0.5f), ::testing::ExitedWithCode(5), "9058|binomial");
}
TEST(HypergeometricDeath, BadSuccessCountStops) {
    EXPECT_EXIT(zorvs_d_hypergeometric_cdf(1, 5, 20, 10), ::testing::ExitedWithCode(5), "9062|hypergeometric");
}
TEST(BinomDeath, BadCountsStop) {
    EXPECT_EXIT(zorvs_dbinom(3, 5), ::testing::ExitedWithCode(5), "600|binom");
}

// --- Binomial coefficient ------------------------------------------------

TEST(BinomCoefficient, ExactAndLargeValues) {
    zorvs_test::Quiet q;
    EXPECT_EQ(zorvs_dbinom(0, 0), 1.0);
    EXPECT_EQ(zorvs_dbinom(10, 3), 120.0);
    EXPECT_EQ(zorvs_binom(10, 7), 120.0f);
    EXPECT_EQ(zorvs_dbinom(60, 30), 118264581564861424.0);
    EXPECT_EQ(zorvs_dbinom(52, 5), 2598960.0);
    // C(1000, 500) = 2.7028824094543656951561469362597527549615200844654828e299
    EXPECT_NEAR(zorvs_dbinom(1000, 500) / 2.7028824094543656951561469362597527549615200844654828e299, 1.0, 4e-16);
    // C(2000000000, 3) = n (n - 1) (n - 2) / 6 = 1333333331333333334000000000
    EXPECT_NEAR(zorvs_dbinom(2000000000, 3) / 1.333333331333333334e27, 1.0, 2e-16);
    EXPECT_NEAR(zorvs_binom(100, 50) / 1.0089134454556419e29, 1.0, 1e-7);
}

TEST(BinomMessages, BadCountsAndOverflow) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    for (auto nm : {std::pair{-1, 0}, std::pair{3, -1}, std::pair{3, 5}}) {
        EXPECT_TRUE(std::isnan(zorvs_dbinom(nm.first, nm.second)));
        EXPECT_EQ(zorvs_error_code(), 600);
        EXPECT_EQ(zorvs_error_param.i[1], nm.first);
        EXPECT_EQ(zorvs_error_param.i[2], nm.second);
    }
    EXPECT_TRUE(log.has(5, 600));
    EXPECT_TRUE(std::isnan(zorvs_dbinom(1100, 550)));
    EXPECT_TRUE(log.has(5, 20402));
    EXPECT_EQ(zorvs_error_param.i[1], 1100);
    // Single: C(200, 100) = 9.05e58 is beyond float but within double.
    EXPECT_TRUE(std::isnan(zorvs_binom(200, 100)));
    EXPECT_EQ(zorvs_error_code(), 20402);
    EXPECT_GT(zorvs_dbinom(200, 100), 9.0e58);
}
