// check_dist_test.cpp - the safe F and t ratios with their tail probabilities.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "dist/continuous.h"
#include "support/capture.hpp"
#include "frame/services.h"
#include "zorvstat.h"

TEST(CheckF, RatioAndUpperTail) {
    zorvs_test::Quiet q;
    double f = 0, p = 0;
    zorvs_dc1f(4, 2, 3, 10, &f, &p);
    EXPECT_EQ(f, 2.0);
    // Each tail is summed on its own: they agree to the rounding of the
    // larger one (0.82, whose unit in the last place is 1.1e-16).
    EXPECT_NEAR(p, 1 - zorvs_d_F_cdf(2, 3, 10), 3.3e-16);
    EXPECT_NEAR(p, 0.178007407375175, 1e-12);  // R: pf(2, 3, 10, lower = FALSE)
    float ff = 0, fp = 0;
    zorvs_c1f(4, 2, 3, 10, &ff, &fp);
    EXPECT_EQ(ff, 2.0f);
    EXPECT_NEAR(fp, 0.1780074f, 1e-5f);
}

TEST(CheckF, DegenerateRatios) {
    zorvs_test::Quiet q;
    double f = 0, p = 0;
    zorvs_dc1f(1, 0, 3, 10, &f, &p);  // +infinity: tail 0
    EXPECT_TRUE(std::isinf(f) && f > 0);
    EXPECT_EQ(p, 0.0);
    zorvs_dc1f(0, 0, 3, 10, &f, &p);  // 0/0: NaN
    EXPECT_TRUE(std::isnan(f));
    EXPECT_TRUE(std::isnan(p));
    zorvs_dc1f(2, 1, 0, 10, &f, &p);  // impossible df
    EXPECT_EQ(f, 2.0);
    EXPECT_TRUE(std::isnan(p));
    zorvs_dc1f(std::nan(""), 1, 3, 10, &f, &p);
    EXPECT_TRUE(std::isnan(p));
    EXPECT_EQ(zorvs_n1rty(1), 0);
}

TEST(CheckF, TRatioAndTwoSidedTail) {
    zorvs_test::Quiet q;
    double t = 0, p = 0;
    zorvs_dc1t(-4, 2, 10, &t, &p);
    EXPECT_EQ(t, -2.0);
    EXPECT_NEAR(p, 0.0733880347707404, 1e-12);  // R: 2 * pt(-2, 10)
    zorvs_dc1t(-1, 0, 10, &t, &p);
    EXPECT_TRUE(std::isinf(t) && t < 0);
    EXPECT_EQ(p, 0.0);
    zorvs_dc1t(1, 2, 0, &t, &p);
    EXPECT_TRUE(std::isnan(p));
    zorvs_dc1t(0, 0, 5, &t, &p);
    EXPECT_TRUE(std::isnan(t));
    EXPECT_TRUE(std::isnan(p));
    float ft = 0, fp = 0;
    zorvs_c1t(3, 1, 4, &ft, &fp);
    EXPECT_EQ(ft, 3.0f);
    EXPECT_NEAR(fp, 0.0399420f, 1e-5f);  // R: 2 * pt(-3, 4)
}
