// Special functions: accuracy of both twins against 50-digit references
// (tests/data/dist/make_special.py), the edge cases of each method, and
// every message the family raises with its type, parameters and result.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include "dist/special.h"
#include "dist/special_detail.hpp"
#include "frame/services.h"
#include "zorvstat.h"
#include "../support/capture.hpp"

namespace {
#include "../data/dist/special_ref.inc"

constexpr double eps_d = 0x1p-52;

// The error state at user level keeps the last message until it is cleared.
void clear_error() { zorvs_e1mes(0, 0, " "); }
constexpr double eps_f = 0x1p-23;

template <size_t W, size_t N>
constexpr size_t rows(const double (&)[N][W]) {
    return N;
}

// Largest error in units of the allowance base + 4 eps cond, over a table
// of one-argument functions; relative, or absolute when abs_measure.
struct Worst {
    double ratio = 0;   // largest error / allowance
    double error = 0;   // largest plain error (relative or absolute)
    double at = 0;
};

template <class T, size_t N>
Worst check1(const double (&ref)[N][3], T (*f)(T), double base, bool abs_measure) {
    const double eps = sizeof(T) == 4 ? eps_f : eps_d;
    Worst w;
    zorvs_test::Quiet q;  // notes of lost accuracy near poles are expected
    for (size_t i = 0; i < N; ++i) {
        const double x = ref[i][0], v = ref[i][1], cond = ref[i][2];
        if (static_cast<double>(static_cast<T>(x)) != x) continue;
        if (sizeof(T) == 4 && std::fabs(v) > 3e38) continue;
        if (sizeof(T) == 4 && v != 0 && std::fabs(v) < 1.2e-38) continue;
        clear_error();
        const double got = f(static_cast<T>(x));
        // Below gamma's underflow limit the result is 0 by design, with a note.
        if (got == 0 && v != 0 && zorvs_error_type() == 2) continue;
        double err, allow;
        if (abs_measure) {
            err = std::fabs(got - v);
            allow = base * std::fmax(1.0, std::fabs(v)) + 4 * eps * cond;
        } else {
            err = std::fabs(got - v) / std::fabs(v);
            allow = base + 4 * eps * cond;
        }
        if (!(err / allow <= w.ratio)) {
            w.ratio = err / allow;
            w.at = x;
        }
        if (err > w.error) w.error = err;
    }
    return w;
}

template <class T, size_t N>
Worst check2(const double (&ref)[N][4], T (*f)(T, T), double base, bool abs_measure) {
    const double eps = sizeof(T) == 4 ? eps_f : eps_d;
    Worst w;
    zorvs_test::Quiet q;
    for (size_t i = 0; i < N; ++i) {
        const double a = ref[i][0], b = ref[i][1], v = ref[i][2], cond = ref[i][3];
        if (sizeof(T) == 4 && (std::fabs(v) > 3e38 || (!abs_measure && std::fabs(v) < 1.2e-38))) continue;
        const double got = f(static_cast<T>(a), static_cast<T>(b));
        double err = std::fabs(got - v), allow;
        if (abs_measure) {
            allow = base * std::fmax(1.0, std::fabs(v)) + 4 * eps * cond;
        } else {
            err /= std::fabs(v);
            allow = base + 4 * eps * cond;
        }
        if (!(err / allow <= w.ratio)) {
            w.ratio = err / allow;
            w.at = a * 1e6 + b;
        }
        if (err > w.error) w.error = err;
    }
    return w;
}

void report(const char *name, const Worst &w) {
    std::printf("[ accuracy ] %-28s max error %.3g, %.3g of the allowance\n", name, w.error, w.ratio);
}

// ---------------------------------------------------------------- accuracy

TEST(GammaAccuracy, DoubleTwinsWithinTheirAllowance) {
    Worst g = check1<double>(ref_gamma, zorvs_d_gamma, 1e-13, false);
    Worst lg = check1<double>(ref_log_gamma, zorvs_d_log_gamma, 1e-13, true);
    report("zorvs_d_gamma", g);
    report("zorvs_d_log_gamma (abs)", lg);
    EXPECT_LE(g.ratio, 1.0) << "at " << g.at;
    EXPECT_LE(lg.ratio, 1.0) << "at " << lg.at;
}

TEST(GammaAccuracy, SingleTwinsWithinTheirAllowance) {
    Worst g = check1<float>(ref_gamma, zorvs_f_gamma, 1e-5, false);
    Worst lg = check1<float>(ref_log_gamma, zorvs_f_log_gamma, 1e-5, true);
    report("zorvs_f_gamma", g);
    report("zorvs_f_log_gamma (abs)", lg);
    EXPECT_LE(g.ratio, 1.0) << "at " << g.at;
    EXPECT_LE(lg.ratio, 1.0) << "at " << lg.at;
}

TEST(BetaAccuracy, BothTwinsWithinTheirAllowance) {
    Worst b = check2<double>(ref_beta, zorvs_d_beta, 1e-13, false);
    Worst lb = check2<double>(ref_log_beta, zorvs_d_log_beta, 1e-13, true);
    Worst bf = check2<float>(ref_beta, zorvs_f_beta, 1e-5, false);
    Worst lbf = check2<float>(ref_log_beta, zorvs_f_log_beta, 1e-5, true);
    report("zorvs_d_beta", b);
    report("zorvs_d_log_beta (abs)", lb);
    report("zorvs_f_beta", bf);
    report("zorvs_f_log_beta (abs)", lbf);
    EXPECT_LE(b.ratio, 1.0) << "at " << b.at;
    EXPECT_LE(lb.ratio, 1.0) << "at " << lb.at;
    EXPECT_LE(bf.ratio, 1.0) << "at " << bf.at;
    EXPECT_LE(lbf.ratio, 1.0) << "at " << lbf.at;
}

TEST(SpecialAccuracy, AlnrelBothTwins) {
    Worst d = check1<double>(ref_alnrel, zorvs_dalnrel, 1e-13, false);
    Worst f = check1<float>(ref_alnrel, zorvs_alnrel, 1e-5, false);
    report("zorvs_dalnrel", d);
    report("zorvs_alnrel", f);
    EXPECT_LE(d.ratio, 1.0) << "at " << d.at;
    EXPECT_LE(f.ratio, 1.0) << "at " << f.at;
}

TEST(ErfAccuracy, ErfAndErfcBothTwins) {
    Worst e = check1<double>(ref_erf, zorvs_d_erf, 1e-13, false);
    Worst c = check1<double>(ref_erfc, zorvs_d_erfc, 1e-13, false);
    Worst ef = check1<float>(ref_erf, zorvs_f_erf, 1e-5, false);
    Worst cf = check1<float>(ref_erfc, zorvs_f_erfc, 1e-5, false);
    report("zorvs_d_erf", e);
    report("zorvs_d_erfc", c);
    report("zorvs_f_erf", ef);
    report("zorvs_f_erfc", cf);
    EXPECT_LE(e.ratio, 1.0) << "at " << e.at;
    EXPECT_LE(c.ratio, 1.0) << "at " << c.at;
    EXPECT_LE(ef.ratio, 1.0) << "at " << ef.at;
    EXPECT_LE(cf.ratio, 1.0) << "at " << cf.at;
}

TEST(NormalAccuracy, CdfBothTwins) {
    Worst d = check1<double>(ref_normal_cdf, zorvs_d_normal_cdf, 1e-13, false);
    Worst f = check1<float>(ref_normal_cdf, zorvs_f_normal_cdf, 1e-5, false);
    report("zorvs_d_normal_cdf", d);
    report("zorvs_f_normal_cdf", f);
    EXPECT_LE(d.ratio, 1.0) << "at " << d.at;
    EXPECT_LE(f.ratio, 1.0) << "at " << f.at;
}

// The seven-digit rational form: about 1e-7 relative (absolute below |x| = 1).
TEST(NormalAccuracy, InverseCdfHasTheErrorOfItsApproximation) {
    Worst d = check1<double>(ref_normal_inverse_cdf, zorvs_d_normal_inverse_cdf, 1.5e-7, true);
    Worst f = check1<float>(ref_normal_inverse_cdf, zorvs_f_normal_inverse_cdf, 1.5e-7, true);
    report("zorvs_d_normal_inverse_cdf", d);
    report("zorvs_f_normal_inverse_cdf", f);
    EXPECT_LE(d.ratio, 1.0) << "at " << d.at;
    EXPECT_LE(f.ratio, 1.0) << "at " << f.at;
}

TEST(NormalAccuracy, BivariateBothTwinsAbsolute) {
    double worst_d = 0, worst_f = 0;
    size_t at_d = 0;
    for (size_t i = 0; i < rows(ref_bivariate); ++i) {
        const double *r = ref_bivariate[i];
        const double d = std::fabs(zorvs_d_bivariate_normal_cdf(r[0], r[1], r[2]) - r[3]);
        const double f = std::fabs(zorvs_f_bivariate_normal_cdf(float(r[0]), float(r[1]), float(r[2])) - r[3]);
        if (d > worst_d) {
            worst_d = d;
            at_d = i;
        }
        worst_f = std::fmax(worst_f, f);
    }
    std::printf("[ accuracy ] zorvs_d_bivariate_normal_cdf max abs error %.3g at (%g, %g, %g)\n", worst_d,
                ref_bivariate[at_d][0], ref_bivariate[at_d][1], ref_bivariate[at_d][2]);
    std::printf("[ accuracy ] zorvs_f_bivariate_normal_cdf max abs error %.3g\n", worst_f);
    EXPECT_LE(worst_d, 1e-15);   // measured 7.6e-16
    EXPECT_LE(worst_f, 1e-6);    // measured 3.3e-7
}

// ---------------------------------------------------------------- edge cases

TEST(GammaValues, ExactPointsAndRegions) {
    clear_error();
    EXPECT_NEAR(zorvs_d_gamma(1.0), 1.0, 2 * eps_d);
    EXPECT_EQ(zorvs_d_gamma(5.0), 24.0);
    EXPECT_NEAR(zorvs_d_gamma(0.5) * zorvs_d_gamma(0.5), M_PI, 4 * eps_d * M_PI);
    EXPECT_NEAR(zorvs_f_gamma(0.5f) * zorvs_f_gamma(0.5f), float(M_PI), 4 * eps_f * M_PI);
    EXPECT_NEAR(zorvs_d_gamma(-1.5), 4 * std::sqrt(M_PI) / 3, 1e-14);
    // 10 stays in the series region: 9! exactly from the recurrence.
    EXPECT_NEAR(zorvs_d_gamma(10.0), 362880.0, 362880.0 * 1e-15);
    EXPECT_NEAR(zorvs_f_gamma(10.0f), 362880.0f, 362880.0f * 4 * eps_f);
    EXPECT_NEAR(zorvs_d_log_gamma(1e305) / (1e305 * (std::log(1e305) - 1)), 1.0, 1e-15);
    EXPECT_EQ(zorvs_error_type(), 0);
}

TEST(BetaValues, StepsAndSymmetry) {
    EXPECT_NEAR(zorvs_d_beta(1, 1), 1.0, eps_d);
    EXPECT_NEAR(zorvs_f_beta(2, 3), 1.0f / 12, 1e-7);
    EXPECT_EQ(zorvs_d_log_beta(12, 15), zorvs_d_log_beta(15, 12));
    EXPECT_NEAR(zorvs_d_log_beta(2, 3), std::log(1.0 / 12), 1e-15);                      // small region
    EXPECT_NEAR(zorvs_d_log_beta(2, 15), -std::log(15.0 * 16.0 / 1.0) + 0.0, 1e-13);      // q >= 10
    EXPECT_NEAR(zorvs_d_log_beta(12, 15), std::lgamma(12.) + std::lgamma(15.) - std::lgamma(27.), 1e-12);
    EXPECT_EQ(zorvs_dalnrel(0.0), 0.0);
    EXPECT_EQ(zorvs_dalnrel(1e-300), 1e-300);
}

TEST(ErfValues, EdgesAndIdentities) {
    EXPECT_EQ(zorvs_d_erfc(-30.0), 2.0);
    EXPECT_EQ(zorvs_f_erfc(-30.0f), 2.0f);
    // Both sides of |x| = 1 meet smoothly.
    EXPECT_NEAR(zorvs_d_erf(1.0000001) - zorvs_d_erf(1.0), 1e-7 * 2 / std::sqrt(M_PI) * std::exp(-1.0), 1e-14);
    for (double x = -3; x <= 3; x += 0.37) EXPECT_NEAR(zorvs_d_erf(x) + zorvs_d_erfc(x), 1.0, 4 * eps_d);
    EXPECT_EQ(zorvs_d_erf(7.0), 1.0);
    EXPECT_EQ(zorvs_d_erf(-7.0), -1.0);
    EXPECT_EQ(zorvs_d_erf(1e-300), 2e-300 / std::sqrt(M_PI));
}

TEST(NormalValues, CdfTailsAndInverse) {
    EXPECT_EQ(zorvs_d_normal_cdf(0.0), 0.5);
    EXPECT_EQ(zorvs_f_normal_cdf(0.0f), 0.5f);
    EXPECT_EQ(zorvs_d_normal_cdf(40.0), 1.0);
    clear_error();
    EXPECT_EQ(zorvs_d_normal_cdf(-40.0), 0.0);
    EXPECT_EQ(zorvs_error_type(), 0);  // underflow cleared, in silence
    EXPECT_EQ(zorvs_f_normal_cdf(-40.0f), 0.0f);
    EXPECT_EQ(zorvs_error_type(), 0);
    EXPECT_EQ(zorvs_d_normal_inverse_cdf(0.5), 0.0);
    EXPECT_NEAR(zorvs_d_normal_inverse_cdf(0.975), 1.959963984540054, 1e-6);
    EXPECT_NEAR(zorvs_f_normal_inverse_cdf(0.975f), 1.959963984540054, 1e-6);
    // Symmetry of the form.
    EXPECT_EQ(zorvs_d_normal_inverse_cdf(0.25), -zorvs_d_normal_inverse_cdf(0.75));
    // The far-tail branch: p at or below the epsilon.
    EXPECT_NEAR(zorvs_d_normal_inverse_cdf(1e-300) / -37.047096, 1.0, 1e-5);
}

TEST(NormalValues, BivariateSpecialPoints) {
    EXPECT_NEAR(zorvs_d_bivariate_normal_cdf(0, 0, 0), 0.25, 1e-16);
    EXPECT_NEAR(zorvs_d_bivariate_normal_cdf(0, 0, 0.5), 1.0 / 3, 1e-15);
    EXPECT_NEAR(zorvs_f_bivariate_normal_cdf(0, 0, 0.5f), 1.0f / 3, 1e-6);
    // Independence: the product of the marginals.
    EXPECT_NEAR(zorvs_d_bivariate_normal_cdf(1, -0.5, 0), zorvs_d_normal_cdf(1) * zorvs_d_normal_cdf(-0.5), 1e-15);
    // Very large |h|: stays within 0..1, equals the lesser marginal or the product.
    const double big = zorvs_d_bivariate_normal_cdf(40, 0.3, 0.4);
    EXPECT_NEAR(big, zorvs_d_normal_cdf(0.3), 1e-15);
    EXPECT_EQ(zorvs_d_bivariate_normal_cdf(-40, 0.3, 0.4), 0.0);
}

TEST(SpecialSeries, ClenshawAndLength) {
    // T0/2 + T1 x + T2 (2x^2 - 1) at x = 0.3 with cs = {2, 3, 5}.
    const double cs[] = {2, 3, 5};
    EXPECT_NEAR(zorvs_dcsevl(0.3, cs, 3), 1 + 0.9 + 5 * (2 * 0.09 - 1), 1e-15);
    const float csf[] = {2, 3, 5};
    EXPECT_NEAR(zorvs_csevl(0.3f, csf, 3), 1 + 0.9 + 5 * (2 * 0.09 - 1), 1e-6);
    clear_error();
    EXPECT_NEAR(zorvs_dcsevl(1.05, cs, 3), 1 + 3 * 1.05 + 5 * (2 * 1.05 * 1.05 - 1), 1e-14);
    EXPECT_EQ(zorvs_error_type(), 0);
    const double tail[] = {1, 0.1, 0.01, 0.001, 1e-4};
    EXPECT_EQ(zorvs_initds(tail, 5, 5e-4f), 4);   // 1e-4 + 1e-3 passes 5e-4 at term 4
    EXPECT_EQ(zorvs_initds(tail, 5, 10.f), 1);     // never passed
    EXPECT_EQ(zorvs_inits(csf, 3, 6.f), 2);        // 5 + 3 passes 6 at term 2
}

// ---------------------------------------------------------------- messages

struct Expect {
    int type, code;
};

// Call with the stops off and check the type, code and result.
template <class F>
double raised(F call, Expect e) {
    zorvs_test::Quiet q;
    clear_error();
    const double v = call();
    EXPECT_EQ(zorvs_error_type(), e.type);
    EXPECT_EQ(zorvs_error_code(), e.code);
    return v;
}

TEST(SpecialMessages, SeriesRoutines) {
    const double cs[] = {1, 0.5};
    EXPECT_TRUE(std::isnan(raised([&] { return zorvs_dcsevl(0.2, cs, 0); }, {5, 9001})));
    EXPECT_EQ(zorvs_error_param.i[1], 0);
    EXPECT_TRUE(std::isnan(raised([&] { return zorvs_dcsevl(0.2, cs, 1001); }, {5, 9002})));
    EXPECT_EQ(zorvs_error_param.i[1], 1001);
    const double v = raised([&] { return zorvs_dcsevl(1.2, cs, 2); }, {3, 9003});
    EXPECT_NEAR(v, 0.5 + 0.6, 1e-15);
    EXPECT_EQ(zorvs_error_param.r[1], 1.2);
    EXPECT_EQ(raised([&] { return double(zorvs_initds(cs, 0, 0.1f)); }, {5, 9004}), 0.0);
    EXPECT_EQ(zorvs_error_param.i[1], 0);
    EXPECT_EQ(raised([&] { return double(zorvs_initds(cs, 2, 1e-3f)); }, {5, 9005}), 0.0);
    const float csf[] = {1, 0.5f};
    EXPECT_EQ(raised([&] { return double(zorvs_inits(csf, 2, 1e-3f)); }, {5, 9005}), 0.0);
}

TEST(GammaMessages, GammaFailureRows) {
    EXPECT_TRUE(std::isnan(raised([] { return zorvs_d_gamma(0.0); }, {5, 9024})));
    EXPECT_TRUE(std::isnan(raised([] { return zorvs_d_gamma(-2.0); }, {5, 9006})));
    EXPECT_EQ(zorvs_error_param.r[1], -2.0);
    EXPECT_TRUE(std::isnan(raised([] { return double(zorvs_f_gamma(-3.0f)); }, {5, 9006})));
    EXPECT_TRUE(std::isnan(raised([] { return zorvs_d_gamma(1e-310); }, {4, 9011})));
    EXPECT_EQ(zorvs_error_param.r[1], 1e-310);
    const double near = raised([] { return zorvs_d_gamma(-2.000000001); }, {3, 9020});
    EXPECT_NEAR(near / std::tgamma(-2.000000001), 1.0, 1e-6);
    EXPECT_TRUE(std::isnan(raised([] { return zorvs_d_gamma(200.0); }, {4, 9009})));
    EXPECT_EQ(zorvs_error_param.r[1], 200.0);
    EXPECT_NEAR(zorvs_error_param.r[2], 171.61, 0.01);
    EXPECT_EQ(raised([] { return zorvs_d_gamma(-180.5); }, {2, 9014}), 0.0);
    EXPECT_NEAR(zorvs_error_param.r[2], -170.56, 0.01);
    EXPECT_TRUE(std::isnan(raised([] { return zorvs_d_gamma(-20.0); }, {4, 9021})));
    const double far = raised([] { return zorvs_d_gamma(-20.0000001); }, {3, 9020});
    EXPECT_TRUE(std::isfinite(far));
}

// The limits' Newton iteration settles within its 10 rounds for IEEE
// numbers; a NaN limit keeps it from settling, in either half.
TEST(GammaMessages, LimitsThatDoNotSettle) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    double xmin = 0, xmax = 0;
    auto limits = [&](double s, double b) {
        return zorvs::value_routine("l_r9gaml", [&] {
            zorvs::special::r9gaml_core(s, b, &xmin, &xmax);
            return xmax;
        });
    };
    EXPECT_TRUE(std::isnan(raised([&] { return limits(nan, 0x1p1023); }, {4, 9022})));
    EXPECT_TRUE(std::isnan(xmin));
    EXPECT_TRUE(std::isnan(raised([&] { return limits(0x1p-1022, nan); }, {4, 9023})));
    EXPECT_NEAR(xmin, -170.56, 0.01);  // the lower limit was found
    raised([&] { return limits(0x1p-1022, 0x1.fffffffffffffp1023); }, {0, 0});
    EXPECT_NEAR(xmax, 171.61, 0.01);
    EXPECT_NEAR(xmin, -170.56, 0.01);
    float fmin = 0, fmax = 0;
    raised([&] {
        return zorvs::value_routine("l_r9gaml", [&] {
            zorvs::special::r9gaml_core(0x1p-126f, std::numeric_limits<float>::quiet_NaN(), &fmin, &fmax);
            return double(fmax);
        });
    }, {4, 9023});
    EXPECT_TRUE(std::isnan(fmax));
}

TEST(GammaMessages, LogGammaAndCorrectionRows) {
    EXPECT_TRUE(std::isnan(raised([] { return zorvs_d_log_gamma(-1.0); }, {4, 9006})));
    EXPECT_TRUE(std::isnan(raised([] { return zorvs_d_log_gamma(-30.0); }, {4, 9006})));
    EXPECT_TRUE(std::isnan(raised([] { return zorvs_d_log_gamma(1e306); }, {4, 9013})));
    EXPECT_NEAR(zorvs_error_param.r[2], 2.5327e305, 1e301);
    EXPECT_TRUE(std::isnan(raised([] { return double(zorvs_f_log_gamma(1e37f)); }, {4, 9013})));
    const double r = raised([] { return zorvs_d_log_gamma(-20.0000000001); }, {3, 9020});
    EXPECT_TRUE(std::isfinite(r));
    EXPECT_TRUE(std::isnan(raised([] { return zorvs_d9lgmc(5.0); }, {4, 60002})));
    EXPECT_EQ(zorvs_error_param.r[1], 5.0);
    EXPECT_EQ(zorvs_error_param.r[2], 10.0);
    EXPECT_EQ(raised([] { return zorvs_d9lgmc(1e308); }, {2, 9015}), 0.0);
    EXPECT_EQ(raised([] { return double(zorvs_r9lgmc(1e38f)); }, {2, 9015}), 0.0);
    EXPECT_NEAR(raised([] { return zorvs_d9lgmc(1e10); }, {0, 0}), 1 / 12e10, 1e-26);
}

TEST(BetaMessages, BetaLogBetaAlnrelRows) {
    EXPECT_TRUE(std::isnan(raised([] { return zorvs_d_beta(-1.0, 2.0); }, {5, 9031})));
    EXPECT_EQ(zorvs_error_param.r[1], -1.0);
    EXPECT_EQ(zorvs_error_param.r[2], 2.0);
    EXPECT_EQ(raised([] { return double(zorvs_f_beta(1000.f, 1000.f)); }, {2, 9018}), 0.0);
    EXPECT_EQ(zorvs_error_param.r[1], 1000.0);
    EXPECT_TRUE(std::isnan(raised([] { return zorvs_d_log_beta(0.0, 1.0); }, {5, 9038})));
    EXPECT_TRUE(std::isnan(raised([] { return zorvs_dalnrel(-1.0); }, {5, 9039})));
    EXPECT_EQ(zorvs_error_param.r[1], -1.0);
    const double v = raised([] { return zorvs_dalnrel(-1 + 1e-10); }, {3, 9040});
    EXPECT_NEAR(v, std::log(1e-10), 1e-6);
    EXPECT_NEAR(zorvs_error_param.r[2], -1 + std::sqrt(eps_d), 1e-17);
    EXPECT_TRUE(std::isnan(raised([] { return double(zorvs_alnrel(-2.f)); }, {5, 9039})));
}

TEST(ErfMessages, UnderflowInverseAndBivariateRows) {
    EXPECT_EQ(raised([] { return zorvs_d_erfc(30.0); }, {2, 9015}), 0.0);
    EXPECT_EQ(zorvs_error_param.r[1], 30.0);
    EXPECT_NEAR(zorvs_error_param.r[2], 26.54, 0.01);
    EXPECT_EQ(raised([] { return double(zorvs_f_erfc(10.f)); }, {2, 9015}), 0.0);
    EXPECT_TRUE(std::isnan(raised([] { return zorvs_d_normal_inverse_cdf(0.0); }, {5, 9041})));
    EXPECT_TRUE(std::isnan(raised([] { return zorvs_d_normal_inverse_cdf(1.0); }, {5, 9041})));
    EXPECT_EQ(zorvs_error_param.r[1], 1.0);
    EXPECT_TRUE(std::isnan(raised([] { return double(zorvs_f_normal_inverse_cdf(-0.5f)); }, {5, 9041})));
    EXPECT_TRUE(std::isnan(raised([] { return zorvs_d_bivariate_normal_cdf(1, 2, 1.5); }, {5, 20030})));
    EXPECT_EQ(zorvs_error_param.r[1], 1.5);
    EXPECT_EQ(raised([] { return zorvs_d_bivariate_normal_cdf(1, 2, 1); }, {6, 20031}), zorvs_d_normal_cdf(1));
    EXPECT_NEAR(raised([] { return zorvs_d_bivariate_normal_cdf(1, 2, -1); }, {6, 20031}),
                zorvs_d_normal_cdf(1) + zorvs_d_normal_cdf(2) - 1, 1e-16);
    EXPECT_EQ(raised([] { return zorvs_d_bivariate_normal_cdf(-1, -2, -1); }, {6, 20031}), 0.0);
}

// Types 4 and 5 stop the process by default, with the routine named.
TEST(SpecialMessagesDeathTest, StopsByDefault) {
    EXPECT_EXIT(zorvs_d_gamma(0.0), ::testing::ExitedWithCode(5), "zorvs_d_gamma");
    EXPECT_EXIT(zorvs_d_gamma(200.0), ::testing::ExitedWithCode(4), "zorvs_d_gamma");
    EXPECT_EXIT(zorvs_d_log_gamma(1e306), ::testing::ExitedWithCode(4), "zorvs_d_log_gamma");
    EXPECT_EXIT(zorvs_d_normal_inverse_cdf(0.0), ::testing::ExitedWithCode(5), "zorvs_d_normal_inverse_cdf");
    EXPECT_EXIT(zorvs_f_bivariate_normal_cdf(0, 0, 2), ::testing::ExitedWithCode(5), "zorvs_f_bivariate_normal_cdf");
    EXPECT_EXIT(zorvs_alnrel(-1.f), ::testing::ExitedWithCode(5), "zorvs_alnrel");
}

}  // namespace
