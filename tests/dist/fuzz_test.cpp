// fuzz_test.cpp - every special function and continuous distribution, in
// both twins, called with random and awkward arguments (NaN, infinities,
// signed zeros, subnormal and huge values, values next to 1) from fixed
// seeds.  What must hold whatever the arguments:
//   - the call returns (a loop that never ends shows as a test timeout);
//   - a distribution function's value is NaN or lies in [0, 1];
//   - a NaN argument never gives a number, except where the method settles
//     the value before it looks at that argument (a negative x of the gamma
//     and chi-squared distribution functions gives 0 with its note);
//   - a NaN from arguments that are not NaN comes with a message of type 3 or
//     above (the safe F ratio's impossible degrees of freedom give a missing
//     tail by design).
// Shapes of the beta family are drawn up to 10^6, where their sums stay
// short; shapes beyond, which the ratio refuses with a warning, have a test
// of their own in beta_f_test.cpp.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "dist/continuous.h"
#include "dist/special.h"
#include "frame/services.h"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
const double nan_value = std::numeric_limits<double>::quiet_NaN();

// xorshift64*: the same arguments on every run and platform.
struct Draw {
    std::uint64_t s;
    std::uint64_t next() {
        s ^= s >> 12;
        s ^= s << 25;
        s ^= s >> 27;
        return s * 0x2545F4914F6CDD1Dull;
    }
    double unit() { return static_cast<double>(next() >> 11) * 0x1p-53; }
    // An awkward value, a random magnitude of either sign from e^-30 to e^30
    // (below `largest`), or a number in [0, 1).
    double any(double largest = inf) {
        static const double awkward[] = {nan_value, inf, -inf, 0.0, -0.0, 1.0, -1.0, 0.5, 2.0, 1e-310, -1e-310,
                                         1e-300, 1e300, -1e300, 1.7e308, 0x1p-1074, 1 - 0x1p-53, 0x1p-53,
                                         170.5, 171.7, -170.5, 1e-20, 30, 65, 65.5, 200, 1e6, 0.49, 25, 10, 3};
        switch (next() % 4) {
            case 0: {
                const double v = awkward[next() % (sizeof awkward / sizeof awkward[0])];
                return std::fabs(v) > largest && std::isfinite(v) ? largest : v;
            }
            case 1: return std::fmin(std::exp(60 * unit() - 30), largest);
            case 2: return -std::fmin(std::exp(60 * unit() - 30), largest);
            default: return unit();
        }
    }
};

enum Kind { value, probability, quantile };

struct Routine {
    const char *name;
    int arity;
    Kind kind;
    double shape_limit;  // largest shape or df drawn
    std::function<double(double, double, double)> dbl, sgl;
    bool nan_settled_first = false;  // a negative x settles the value first
};

const std::vector<Routine> &routines() {
    static const std::vector<Routine> all = {
        {"gamma", 1, value, inf, [](double a, double, double) { return zorvs_d_gamma(a); },
         [](double a, double, double) { return double(zorvs_f_gamma(float(a))); }},
        {"log_gamma", 1, value, inf, [](double a, double, double) { return zorvs_d_log_gamma(a); },
         [](double a, double, double) { return double(zorvs_f_log_gamma(float(a))); }},
        {"beta", 2, value, inf, [](double a, double b, double) { return zorvs_d_beta(a, b); },
         [](double a, double b, double) { return double(zorvs_f_beta(float(a), float(b))); }},
        {"log_beta", 2, value, inf, [](double a, double b, double) { return zorvs_d_log_beta(a, b); },
         [](double a, double b, double) { return double(zorvs_f_log_beta(float(a), float(b))); }},
        {"alnrel", 1, value, inf, [](double a, double, double) { return zorvs_dalnrel(a); },
         [](double a, double, double) { return double(zorvs_alnrel(float(a))); }},
        {"erf", 1, value, inf, [](double a, double, double) { return zorvs_d_erf(a); },
         [](double a, double, double) { return double(zorvs_f_erf(float(a))); }},
        {"erfc", 1, value, inf, [](double a, double, double) { return zorvs_d_erfc(a); },
         [](double a, double, double) { return double(zorvs_f_erfc(float(a))); }},
        {"normal_cdf", 1, probability, inf, [](double a, double, double) { return zorvs_d_normal_cdf(a); },
         [](double a, double, double) { return double(zorvs_f_normal_cdf(float(a))); }},
        {"normal_inverse_cdf", 1, quantile, inf,
         [](double p, double, double) { return zorvs_d_normal_inverse_cdf(p); },
         [](double p, double, double) { return double(zorvs_f_normal_inverse_cdf(float(p))); }},
        {"bivariate_normal_cdf", 3, probability, inf,
         [](double a, double b, double c) { return zorvs_d_bivariate_normal_cdf(a, b, c); },
         [](double a, double b, double c) { return double(zorvs_f_bivariate_normal_cdf(float(a), float(b), float(c))); }},
        {"gamma_incomplete", 2, value, inf, [](double a, double x, double) { return zorvs_d_gamma_incomplete(a, x); },
         [](double a, double x, double) { return double(zorvs_f_gamma_incomplete(float(a), float(x))); }},
        {"gamma_cdf", 2, probability, inf, [](double x, double a, double) { return zorvs_d_gamma_cdf(x, a); },
         [](double x, double a, double) { return double(zorvs_f_gamma_cdf(float(x), float(a))); }, true},
        {"chi_squared_cdf", 2, probability, inf,
         [](double x, double df, double) { return zorvs_d_chi_squared_cdf(x, df); },
         [](double x, double df, double) { return double(zorvs_f_chi_squared_cdf(float(x), float(df))); }, true},
        {"chi_squared_inverse_cdf", 2, quantile, inf,
         [](double p, double df, double) { return zorvs_d_chi_squared_inverse_cdf(p, df); },
         [](double p, double df, double) { return double(zorvs_f_chi_squared_inverse_cdf(float(p), float(df))); }},
        {"beta_incomplete", 3, probability, 1e6,
         [](double x, double a, double b) { return zorvs_d_beta_incomplete(x, a, b); },
         [](double x, double a, double b) { return double(zorvs_f_beta_incomplete(float(x), float(a), float(b))); }},
        {"beta_cdf", 3, probability, 1e6, [](double x, double a, double b) { return zorvs_d_beta_cdf(x, a, b); },
         [](double x, double a, double b) { return double(zorvs_f_beta_cdf(float(x), float(a), float(b))); }},
        {"beta_inverse_cdf", 3, quantile, 1e6,
         [](double p, double a, double b) { return zorvs_d_beta_inverse_cdf(p, a, b); },
         [](double p, double a, double b) { return double(zorvs_f_beta_inverse_cdf(float(p), float(a), float(b))); }},
        {"t_cdf", 2, probability, inf, [](double t, double df, double) { return zorvs_d_t_cdf(t, df); },
         [](double t, double df, double) { return double(zorvs_f_t_cdf(float(t), float(df))); }},
        {"t_inverse_cdf", 2, quantile, 1e6, [](double p, double df, double) { return zorvs_d_t_inverse_cdf(p, df); },
         [](double p, double df, double) { return double(zorvs_f_t_inverse_cdf(float(p), float(df))); }},
        {"F_cdf", 3, probability, 2e6, [](double f, double a, double b) { return zorvs_d_F_cdf(f, a, b); },
         [](double f, double a, double b) { return double(zorvs_f_F_cdf(float(f), float(a), float(b))); }},
        {"F_inverse_cdf", 3, quantile, 2e6, [](double p, double a, double b) { return zorvs_d_F_inverse_cdf(p, a, b); },
         [](double p, double a, double b) { return double(zorvs_f_F_inverse_cdf(float(p), float(a), float(b))); }},
        {"F_upper_tail", 3, probability, 2e6,
         [](double f, double a, double b) {
             double r, p;
             zorvs_dc1f(f, 1, a, b, &r, &p);
             return p;
         },
         [](double f, double a, double b) {
             float r, p;
             zorvs_c1f(float(f), 1, float(a), float(b), &r, &p);
             return double(p);
         }},
    };
    return all;
}

// Shapes of the beta family below the smallest normal number are not drawn:
// the gamma function refuses them as too close to its pole, inside a call
// whose own type does not show it.
bool drawn_shape_ok(double v) { return !(std::fabs(v) > 0 && std::fabs(v) < 1e-300); }

class Fuzz : public ::testing::TestWithParam<int> {};

TEST_P(Fuzz, ArgumentsOfEveryKindGiveNoFalseNumbers) {
    const Routine &r = routines()[GetParam()];
    SCOPED_TRACE(r.name);
    zorvs_test::Quiet q;
    Draw draw{0x9E3779B97F4A7C15ull + static_cast<std::uint64_t>(GetParam())};
    const bool beta_family = r.shape_limit < inf;
    // Fewer calls of the inverses, each a root search.
    const int rounds = r.kind == quantile ? 500 : 1500;
    int calls = 0;
    for (int twin = 0; twin < 2; ++twin) {
        for (int i = 0; i < rounds; ++i) {
            double a = draw.any(), b = draw.any(r.shape_limit), c = draw.any(r.shape_limit);
            // Probabilities and the x of the beta ratio mostly inside (0, 1).
            if ((r.kind == quantile || std::string(r.name).rfind("beta_", 0) == 0) && i % 3 != 0) a = draw.unit();
            if (beta_family && !(drawn_shape_ok(b) && drawn_shape_ok(c))) continue;
            const double v = twin ? r.sgl(a, b, c) : r.dbl(a, b, c);
            const int type = zorvs_n1rty(1);
            ++calls;
            const bool nan_in = std::isnan(a) || (r.arity > 1 && std::isnan(b)) || (r.arity > 2 && std::isnan(c));
            char where[160];
            std::snprintf(where, sizeof where, "%s twin at (%.17g, %.17g, %.17g) = %.17g, type %d",
                          twin ? "single" : "double", a, b, c, v, type);
            if (r.kind == probability) {
                EXPECT_TRUE(std::isnan(v) || (v >= 0 && v <= 1)) << where;
            }
            if (nan_in && !(r.nan_settled_first && a < 0)) {
                EXPECT_TRUE(std::isnan(v)) << where;
            }
            // (in the single twin, of the degrees of freedom as floats)
            const double b_twin = twin ? double(float(b)) : b, c_twin = twin ? double(float(c)) : c;
            const bool missing_by_design = std::string(r.name) == "F_upper_tail" && !(b_twin > 0 && c_twin > 0);
            if (!nan_in && std::isnan(v) && !missing_by_design) {
                EXPECT_GE(type, 3) << where;
            }
        }
    }
    EXPECT_GT(calls, rounds);
}

INSTANTIATE_TEST_SUITE_P(AllRoutines, Fuzz, ::testing::Range(0, static_cast<int>(routines().size())),
                         [](const ::testing::TestParamInfo<int> &info) {
                             return std::string(routines()[info.param].name);
                         });

}  // namespace

namespace {

// The cases the fuzzing found, one by one.
TEST(MissingAndInfiniteArguments, MissingValuesStayMissing) {
    zorvs_test::Quiet q;
    EXPECT_TRUE(std::isnan(zorvs_d_erf(nan_value)));  // was 1
    EXPECT_TRUE(std::isnan(zorvs_d_bivariate_normal_cdf(nan_value, nan_value, 0.4)));  // did not return
    EXPECT_TRUE(std::isnan(zorvs_d_bivariate_normal_cdf(nan_value, 0.5, 1)));  // was a bound
    EXPECT_TRUE(std::isnan(zorvs_d_gamma_cdf(nan_value, 0.2)));                // did not return
    EXPECT_TRUE(std::isnan(zorvs_d_t_cdf(nan_value, 65)));                     // did not return
    EXPECT_TRUE(std::isnan(zorvs_d_beta_cdf(nan_value, 2, 3)));               // was 0
    EXPECT_TRUE(std::isnan(zorvs_d_beta_incomplete(nan_value, 2, 3)));
    EXPECT_TRUE(std::isnan(zorvs_d_F_cdf(nan_value, 2, 3)));
    EXPECT_TRUE(std::isnan(zorvs_d_gamma_incomplete(2, nan_value)));
    EXPECT_EQ(zorvs_n1rty(1), 0);
    // A missing shape or df is refused like any other outside its range.
    EXPECT_TRUE(std::isnan(zorvs_d_log_beta(nan_value, 1)));  // was a number
    EXPECT_EQ(zorvs_error_code(), 9038);
    EXPECT_TRUE(std::isnan(zorvs_d_chi_squared_cdf(300, nan_value)));  // was 1
    EXPECT_EQ(zorvs_error_code(), 9051);
    EXPECT_TRUE(std::isnan(zorvs_d_chi_squared_inverse_cdf(0.5, nan_value)));  // was 0
    EXPECT_EQ(zorvs_error_code(), 9051);
    EXPECT_TRUE(std::isnan(zorvs_d_gamma_incomplete(nan_value, 0)));  // was 0
    EXPECT_EQ(zorvs_error_code(), 9032);
    EXPECT_TRUE(std::isnan(zorvs_d_gamma_cdf(2, nan_value)));
    EXPECT_EQ(zorvs_error_code(), 9056);
    double f, p;
    zorvs_dc1f(2, 1, 3, nan_value, &f, &p);  // was 0 with a terminal message
    EXPECT_TRUE(std::isnan(p));
}

TEST(MissingAndInfiniteArguments, LimitsAndEdgesOfTheRange) {
    zorvs_test::Quiet q;
    // A correlation among the subnormals: the series of Owen's T ends.
    EXPECT_NEAR(zorvs_d_bivariate_normal_cdf(1.1e-16, -0.0, -1e-310), 0.25, 1e-15);
    // Rounding no longer lifts the gamma distribution function above 1.
    EXPECT_LE(zorvs_d_gamma_cdf(9.1971432166697608e-08, 1e-20), 1.0);
    EXPECT_EQ(zorvs_d_gamma_cdf(5, inf), 0.0);
    // The incomplete gamma integral: overflow to infinity rather than NaN,
    // the whole integral at x = infinity, and an infinite shape.
    EXPECT_EQ(zorvs_d_gamma_incomplete(1e300, 2e8), inf);
    EXPECT_NEAR(zorvs_d_gamma_incomplete(3.5, inf), std::tgamma(3.5), 1e-14 * std::tgamma(3.5));
    EXPECT_EQ(zorvs_d_gamma_incomplete(inf, 0.5), 0.0);
    EXPECT_EQ(zorvs_d_gamma_incomplete(inf, 2), inf);
    EXPECT_EQ(zorvs_n1rty(1), 0);
    // Beta with an infinite shape underflows to 0; its logarithm is -infinity.
    EXPECT_EQ(zorvs_d_log_beta(2, inf), -inf);
    EXPECT_EQ(zorvs_d_beta(0.3, inf), 0.0);
    EXPECT_EQ(zorvs_error_code(), 9018);
    // Infinite degrees of freedom: the normal and chi-squared limits.
    EXPECT_EQ(zorvs_d_t_cdf(1, inf), zorvs_d_normal_cdf(1));
    EXPECT_EQ(zorvs_d_t_inverse_cdf(0.9, inf), zorvs_d_normal_inverse_cdf(0.9));
    EXPECT_EQ(zorvs_d_F_cdf(2, 3, inf), zorvs_d_chi_squared_cdf(6, 3));
    EXPECT_NEAR(zorvs_d_F_cdf(2, inf, 3), 1 - zorvs_d_chi_squared_cdf(1.5, 3), 1e-15);
    EXPECT_EQ(zorvs_d_F_cdf(2, inf, inf), 1.0);
    EXPECT_EQ(zorvs_d_F_cdf(0.5, inf, inf), 0.0);
}

// A huge shape whose ratio one orientation sums in 10^9 terms and the other
// in 1600: the short one is taken (the ratio underflows to 0).  Where both
// orientations would run past 10^7 terms, or a shape is infinite, the ratio
// is refused with a warning at once.
TEST(MissingAndInfiniteArguments, HugeShapesAnswerOrRefuseAtOnce) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    EXPECT_EQ(zorvs_d_beta_incomplete(0.97700292959772372, 1894659468.0039856, 0.045676722978542354), 0.0);
    EXPECT_EQ(zorvs_n1rty(1), 0);
    EXPECT_TRUE(std::isnan(zorvs_d_beta_incomplete(0.5, 1e15, 1e15 + 0.5)));
    EXPECT_EQ(zorvs_n1rty(1), 3);
    EXPECT_EQ(zorvs_error_code(), 9057);
    EXPECT_TRUE(std::isnan(zorvs_d_F_cdf(0.5, 1, 1e9)));
    EXPECT_EQ(zorvs_error_code(), 9057);
    EXPECT_TRUE(std::isnan(zorvs_d_beta_incomplete(0.5, inf, 2)));
    EXPECT_EQ(zorvs_error_code(), 9057);
    EXPECT_EQ(zorvs_d_beta_incomplete(0, inf, 2), 0.0);
    EXPECT_EQ(zorvs_d_beta_incomplete(1, 2, inf), 1.0);
    EXPECT_TRUE(std::isnan(zorvs_f_beta_incomplete(0.5f, 1e15f, 1e15f)));
    EXPECT_EQ(zorvs_error_code(), 9057);
    EXPECT_TRUE(log.has(3, 9057));
    // Within the limit the F distribution function with 10^7 df is summed.
    EXPECT_NEAR(zorvs_d_F_cdf(2.5, 3, 1e7), 0.9424414854033543, 1e-9);  // SciPy
}

}  // namespace
