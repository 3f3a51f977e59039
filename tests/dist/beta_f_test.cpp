// beta_f_test.cpp - incomplete beta, beta and F distributions and their
// inverses, in both twins, against the mpmath values of
// tests/data/dist/continuous_ref.inc (make_continuous.py) and of
// tests/data/dist/beta_f_ref.inc (make_beta_f.py).
#include "continuous_grid.hpp"

#include <algorithm>
#include <string>


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

// A root below the smallest normal number (x^a / (a B(a, b)) = p with
// a = 0.001 puts x near 10^-30000) gives the limit with the warning 9047, in
// either tail and either twin.
TEST(BetaDist, InverseBeyondTheNormalRangeWarnsAndGivesTheLimit) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    EXPECT_EQ(zorvs_d_beta_inverse_cdf(1e-30, 0.001, 5), 0.0);
    EXPECT_EQ(zorvs_n1rty(1), 3);
    EXPECT_EQ(zorvs_error_code(), 9047);
    EXPECT_EQ(r1(), 1e-30);
    EXPECT_TRUE(log.has(3, 9047));
    EXPECT_NE(q.errors.text().find("p = 1e-30"), std::string::npos) << q.errors.text();
    EXPECT_EQ(zorvs_dbetin(0.75, 5, 0.001), 1.0);
    EXPECT_EQ(zorvs_error_code(), 9047);
    EXPECT_EQ(zorvs_betin(1e-20f, 0.01f, 2), 0.0f);
    EXPECT_EQ(zorvs_error_code(), 9047);
    // Just inside the range the root is found, without a message.
    double x = zorvs_d_beta_inverse_cdf(1e-30, 0.1, 5);
    EXPECT_EQ(zorvs_n1rty(1), 0);
    EXPECT_NEAR(zorvs_d_beta_cdf(x, 0.1, 5) / 1e-30, 1.0, 1e-13);
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

// Quantiles beyond the largest number.  With df2 = 0.001 the mass of the
// ratio's beta variable sits within 10^-600 of 1 for p = 1/2: its root
// rounds to 1 (the inverse warns that it met the limit) and the quantile is
// infinite.  At the other end 1 - p = 2^-53 with df2 = 0.01 puts the root of
// the upper tail below the smallest number.
TEST(FDist, InverseBeyondTheLargestNumberIsInfinite) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    EXPECT_EQ(zorvs_dbetin(0.5, 500, 0.0005), 1.0);
    EXPECT_EQ(zorvs_error_code(), 9047);
    EXPECT_EQ(zorvs_n1rty(1), 3);
    double f = zorvs_d_F_inverse_cdf(0.5, 1000, 0.001);
    EXPECT_TRUE(std::isinf(f) && f > 0);
    EXPECT_EQ(zorvs_n1rty(1), 4);
    EXPECT_EQ(zorvs_error_code(), 9008);
    EXPECT_TRUE(log.has(3, 9047));
    f = zorvs_d_F_inverse_cdf(1 - 0x1p-53, 1, 0.01);
    EXPECT_TRUE(std::isinf(f) && f > 0);
    EXPECT_EQ(zorvs_error_code(), 9008);
    float ff = zorvs_f_F_inverse_cdf(0.5f, 1000, 0.001f);
    EXPECT_TRUE(std::isinf(ff) && ff > 0);
    EXPECT_EQ(zorvs_error_code(), 9008);
}

// The t inverse below 2 df goes through the beta inverse; a root of the
// two-sided tail below the smallest number gives the limit, positive
// infinity as the method states, with the fatal message.
TEST(TDist, InverseBeyondTheLargestNumber) {
    zorvs_test::Quiet q;
    const double t = zorvs_d_t_inverse_cdf(1e-300, 1.5);
    EXPECT_TRUE(std::isinf(t) && t > 0);
    EXPECT_EQ(zorvs_n1rty(1), 4);
    EXPECT_EQ(zorvs_error_code(), 9008);
    const float tf = zorvs_f_t_inverse_cdf(1e-30f, 1.5f);
    EXPECT_TRUE(std::isinf(tf) && tf > 0);
    EXPECT_EQ(zorvs_error_code(), 9008);
}

TEST(FDistDeathTest, InfiniteQuantileStopsByDefault) {
    EXPECT_EXIT(zorvs_d_F_inverse_cdf(0.5, 1000, 0.001), ::testing::ExitedWithCode(4), "zorvs_d_F_inverse_cdf");
}


// ------------------------------------------- wider sweeps (make_beta_f.py)
// Shapes from 0.05 to 1000 with x from 1e-6 to 0.999, the F distribution
// function and its upper tail (through the safe F ratio) over degrees of
// freedom from 0.5 to 1000, and quantiles from 1e-30 to 1 - 2^-20.
struct WideRow {
    const char *kind;
    double args[3];
    double value;
    double kappa;
};
const WideRow wide_rows[] = {
#define ZORVS_BETA_F_CDF_ROWS
#include "data/dist/beta_f_ref.inc"
#undef ZORVS_BETA_F_CDF_ROWS
};
const QuantileRow wide_quantile_rows[] = {
#define ZORVS_BETA_F_QUANTILE_ROWS
#include "data/dist/beta_f_ref.inc"
#undef ZORVS_BETA_F_QUANTILE_ROWS
};

template <class T>
T wide_value(const std::string &kind, const double *a) {
    if (kind == "beta_incomplete") {
        if constexpr (std::is_same_v<T, float>) return zorvs_f_beta_incomplete(a[0], a[1], a[2]);
        else return zorvs_d_beta_incomplete(a[0], a[1], a[2]);
    }
    if (kind == "F_cdf") {
        if constexpr (std::is_same_v<T, float>) return zorvs_f_F_cdf(a[0], a[1], a[2]);
        else return zorvs_d_F_cdf(a[0], a[1], a[2]);
    }
    T f, p;  // F_upper: the tail of the ratio a[0] / 1
    if constexpr (std::is_same_v<T, float>) zorvs_c1f(a[0], 1, a[1], a[2], &f, &p);
    else zorvs_dc1f(a[0], 1, a[1], a[2], &f, &p);
    EXPECT_EQ(static_cast<double>(f), a[0]);
    return p;
}

// Relative error beyond 4 eps kappa within 1e-12 (double) and 1e-4 (single)
// wherever the value is a normal number of the twin.
template <class T>
void check_wide(const char *kind) {
    zorvs_test::Quiet q;
    const double eps = std::is_same_v<T, float> ? FLT_EPSILON : DBL_EPSILON;
    const double lo = std::is_same_v<T, float> ? FLT_MIN : DBL_MIN;
    const double bound = std::is_same_v<T, float> ? 1e-4 : 1e-12;
    double worst = 0;
    int checked = 0;
    for (const WideRow &r : wide_rows) {
        if (std::strcmp(r.kind, kind) != 0 || !(r.value >= lo)) continue;
        T got = wide_value<T>(kind, r.args);
        double excess = std::fabs(static_cast<double>(got) - r.value) / r.value - 4 * eps * r.kappa;
        EXPECT_LE(excess, bound) << kind << "(" << r.args[0] << ", " << r.args[1] << ", " << r.args[2] << ") got "
                                 << got << " want " << r.value << " kappa " << r.kappa;
        worst = std::max(worst, excess);
        ++checked;
    }
    EXPECT_GT(checked, 50);
    std::printf("[measure] %s %s twin, wide sweep of %d rows: largest relative error beyond 4 eps kappa %.3g\n", kind,
                std::is_same_v<T, float> ? "single" : "double", checked, worst);
}

TEST(BetaIncomplete, WideSweepInBothTwins) {
    check_wide<double>("beta_incomplete");
    check_wide<float>("beta_incomplete");
}

TEST(FDist, WideSweepOfBothTailsInBothTwins) {
    check_wide<double>("F_cdf");
    check_wide<float>("F_cdf");
    check_wide<double>("F_upper");
    check_wide<float>("F_upper");
}

// The quantile within `rel` of the reference, and the round trip within
// `rt` in units of x f(x).  With shapes up to 1000 the distribution function
// itself carries an error of several hundred eps (its condition number in
// the shapes), so the round trip bound is wider than on the shared grid.
template <class T>
void check_wide_quantiles(const char *kind, double rel, double rt) {
    zorvs_test::Quiet q;
    const double eps = std::is_same_v<T, float> ? FLT_EPSILON : DBL_EPSILON;
    double worst_rel = 0, worst_rt = 0;
    int checked = 0;
    for (const QuantileRow &r : wide_quantile_rows) {
        if (std::strcmp(r.kind, kind) != 0) continue;
        if (static_cast<double>(static_cast<T>(r.p)) != r.p || static_cast<T>(r.p) >= T(1)) continue;
        if (std::is_same_v<T, float> && (r.x > FLT_MAX || std::fabs(r.x) < 1e-30)) continue;
        // An F quantile whose beta root lies within 2 eps of 1 (in the
        // twin's precision) is infinite by the method.
        if (std::strcmp(kind, "F") == 0 && r.x > r.args[1] / (r.args[0] * 2 * eps)) continue;
        T x = quantile<T>(kind, r.p, r.args);
        EXPECT_EQ(zorvs_n1rty(1), 0) << kind << " p=" << r.p << " args " << r.args[0] << ", " << r.args[1];
        ASSERT_TRUE(std::isfinite(static_cast<double>(x))) << kind << " p=" << r.p;
        double e_rel = std::fabs(static_cast<double>(x) - r.x) / r.x;
        double residual = std::fabs(static_cast<double>(cdf_of<T>(kind, x, r.args)) - r.p);
        double e_rt = residual / (r.scale + 4 * eps * std::min(r.p, 1 - r.p));
        EXPECT_LE(e_rel, rel) << kind << " p=" << r.p << " args " << r.args[0] << ", " << r.args[1] << " x=" << x
                              << " want " << r.x;
        EXPECT_LE(e_rt, rt) << kind << " p=" << r.p << " args " << r.args[0] << ", " << r.args[1] << " x=" << x;
        worst_rel = std::max(worst_rel, e_rel);
        worst_rt = std::max(worst_rt, e_rt);
        ++checked;
    }
    EXPECT_GT(checked, 40);
    std::printf("[measure] %s inverse %s twin, wide sweep of %d rows: relative error %.3g, round trip %.3g\n", kind,
                std::is_same_v<T, float> ? "single" : "double", checked, worst_rel, worst_rt);
}

TEST(BetaDist, InverseWideSweepInBothTwins) {
    check_wide_quantiles<double>("beta", 1e-12, 1e-12);
    check_wide_quantiles<float>("beta", 2e-5, 5e-5);
}

TEST(FDist, InverseWideSweepInBothTwins) {
    check_wide_quantiles<double>("F", 1e-12, 1e-12);
    check_wide_quantiles<float>("F", 2e-5, 5e-5);
}
