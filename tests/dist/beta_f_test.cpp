// beta_f_test.cpp - incomplete beta, beta and F distributions and their
// inverses, in both twins, against the mpmath values of
// tests/data/dist/continuous_ref.inc (make_continuous.py).
#include "continuous_grid.hpp"


// ----------------------------------------------------------------- beta
TEST(BetaIncomplete, MatchesReferenceInBothTwins) {
    check_rows<double>("beta_incomplete");
    check_rows<float>("beta_incomplete");
}

TEST(BetaIncomplete, EdgesAndFailures) {
    zorvs_test::Quiet q;
    EXPECT_EQ(zorvs_d_beta_incomplete(0.5, 2, 2), 0.5);
    EXPECT_EQ(zorvs_d_beta_incomplete(0, 2, 3), 0.0);
    EXPECT_EQ(zorvs_d_beta_incomplete(1, 2, 3), 1.0);
    EXPECT_EQ(zorvs_n1rty(1), 0);
    EXPECT_TRUE(std::isnan(zorvs_d_beta_incomplete(1.5, 2, 3)));
    EXPECT_EQ(zorvs_error_code(), 120);
    EXPECT_EQ(r1(), 0.0);
    EXPECT_EQ(r2(), 1.0);
    EXPECT_EQ(zorvs_error_param.r[3], 1.5);
    EXPECT_TRUE(std::isnan(zorvs_f_beta_incomplete(0.5f, 0, 3)));
    EXPECT_EQ(zorvs_error_code(), 9031);
    EXPECT_EQ(r1(), 0.0);
    EXPECT_EQ(r2(), 3.0);
}

TEST(BetaDist, CdfMatchesReference) {
    check_rows<double>("beta_cdf");
    check_rows<float>("beta_cdf");
}

TEST(BetaDist, CdfEdgesAndFailures) {
    zorvs_test::Quiet q;
    EXPECT_EQ(zorvs_d_beta_cdf(0, 2, 3), 0.0);
    EXPECT_EQ(zorvs_n1rty(1), 1);
    EXPECT_EQ(zorvs_error_code(), 20415);
    EXPECT_EQ(zorvs_d_beta_cdf(1.2, 2, 3), 1.0);
    EXPECT_EQ(zorvs_error_code(), 20416);
    EXPECT_EQ(r1(), 1.2);
    EXPECT_TRUE(std::isnan(zorvs_d_beta_cdf(0.5, -1, 3)));
    EXPECT_EQ(zorvs_error_code(), 11033);
    EXPECT_TRUE(std::isnan(zorvs_f_beta_cdf(0.5f, 1, 0)));
    EXPECT_EQ(zorvs_error_code(), 11034);
}

TEST(BetaDist, InverseRoundTripsInBothTwins) {
    check_quantiles<double>("beta", 64 * DBL_EPSILON, 1e-11);
    check_quantiles<float>("beta", 64 * FLT_EPSILON, 1e-4);
}

TEST(BetaDist, InverseFailuresAndTheWorkerName) {
    zorvs_test::Quiet q;
    EXPECT_TRUE(std::isnan(zorvs_d_beta_inverse_cdf(0.5, 0, 1)));
    EXPECT_EQ(zorvs_error_code(), 9044);
    EXPECT_TRUE(std::isnan(zorvs_d_beta_inverse_cdf(0.5, 1, -2)));
    EXPECT_EQ(zorvs_error_code(), 9045);
    EXPECT_EQ(r1(), -2.0);
    EXPECT_TRUE(std::isnan(zorvs_dbetin(1, 1, 2)));
    EXPECT_EQ(zorvs_error_code(), 9046);
    EXPECT_NEAR(zorvs_dbetin(0.3, 2, 2), zorvs_d_beta_inverse_cdf(0.3, 2, 2), 0.0);
    EXPECT_NEAR(zorvs_betin(0.25f, 1, 1), 0.25f, 1e-6f);
}


// -------------------------------------------------------------------- F
TEST(FDist, CdfMatchesReference) {
    check_rows<double>("F_cdf");
    check_rows<float>("F_cdf");
}

TEST(FDist, CdfEdgesAndFailures) {
    zorvs_test::Quiet q;
    EXPECT_NEAR(zorvs_d_F_cdf(1, 3, 3), 0.5, 1e-15);
    EXPECT_EQ(zorvs_d_F_cdf(0, 3, 3), 0.0);
    EXPECT_EQ(zorvs_n1rty(1), 1);
    EXPECT_EQ(zorvs_error_code(), 9050);
    EXPECT_TRUE(std::isnan(zorvs_d_F_cdf(1, 0, 3)));
    EXPECT_EQ(zorvs_error_code(), 9048);
    EXPECT_EQ(r1(), 0.0);
    EXPECT_EQ(r2(), 3.0);
}

TEST(FDist, InverseRoundTripsInBothTwins) {
    check_quantiles<double>("F", 64 * DBL_EPSILON, 1e-10);
    check_quantiles<float>("F", 64 * FLT_EPSILON, 2e-4);
}

TEST(FDist, InverseEdgesAndFailures) {
    zorvs_test::Quiet q;
    EXPECT_NEAR(zorvs_d_F_inverse_cdf(0.5, 1, 1), 1.0, 1e-14);
    EXPECT_TRUE(std::isnan(zorvs_d_F_inverse_cdf(0, 1, 1)));
    EXPECT_EQ(zorvs_error_code(), 9043);
    EXPECT_TRUE(std::isnan(zorvs_d_F_inverse_cdf(0.5, 1, 0)));
    EXPECT_EQ(zorvs_error_code(), 9048);
}
