// discrete_test.cpp - Poisson, binomial and hypergeometric distribution
// functions and the binomial coefficient: against R's ppois and pbinom
// (tests/data/dist/discrete_ref.inc, make_discrete.R) and mpmath's
// hypergeometric sums (hypergeometric_ref.inc, make_hypergeometric.py) over
// grids that reach tails below 1e-300, exact rational values, and every
// message of the family as rows.

#include "dist/discrete.h"
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;
using ::testing::Message;

struct PoissonRow { int k; double theta, value; };
struct BinomialRow { int k, n; double p, value; };
struct HypergeometricRow { int k, n, m, l; double value; };
#include "data/dist/discrete_ref.inc"
#include "data/dist/hypergeometric_ref.inc"

// The double twin within `allowed` of the reference (a reference below the
// smallest normal number: a positive value within `below_normal` of it);
// the single twin within 1e-4 of its reference where that is a normal float.
void expect_close(Worst &worst, const std::string &at, double got, double want, double allowed, double below_normal,
                  double single, double single_want) {
    if (want < DBL_MIN) {
        EXPECT_GT(got, 0) << at;
        EXPECT_LT(std::fabs(got - want), below_normal) << at;
    } else {
        EXPECT_LE(relative_error(got, want), allowed) << at << " got " << got;
        worst.add(relative_error(got, want));
    }
    if (single_want >= FLT_MIN) { EXPECT_LE(relative_error(single, single_want, FLT_MIN), 1e-4) << at << " single"; }
}

TEST(DiscreteCdf, MatchesReferenceIncludingDeepTailsInBothTwins) {
    Quiet q;
    Worst poisson("poisson double: relative error"), binomial("binomial double: relative error"),
        hypergeometric("hypergeometric double: relative error");
    for (const auto &r : poisson_rows) {
        // Condition number in theta of the leading term: |k - theta|; the
        // single twin against the double at the float theta (exact up to 1.6e7).
        const float theta = float(r.theta);
        expect_close(poisson, (Message() << "k " << r.k << " theta " << r.theta).GetString(), zorvs_d_poisson_cdf(r.k, r.theta),
                     r.value, 1e-12 + 4 * DBL_EPSILON * std::fabs(r.k - r.theta), 1e-3 * DBL_MIN, zorvs_f_poisson_cdf(r.k, theta),
                     r.theta > 1.6e7 ? NaN : zorvs_d_poisson_cdf(r.k, theta));
    }
    for (const auto &r : binomial_rows) {
        // Condition number in p of the leading term: |k - n p| / q, and
        // |n - k| / q near P = 1 (where the upper tail's condition bounds it).
        const double condition = std::fabs(r.k - r.n * r.p) / (1 - r.p) * (r.value > 0.5 ? (1 - r.value) / r.value : 1.0);
        const float p = float(r.p);
        expect_close(binomial, (Message() << "k " << r.k << " n " << r.n << " p " << r.p).GetString(),
                     zorvs_d_binomial_cdf(r.k, r.n, r.p), r.value, 1e-12 + 4 * DBL_EPSILON * condition, 1e-3 * DBL_MIN,
                     zorvs_f_binomial_cdf(r.k, r.n, p), zorvs_d_binomial_cdf(r.k, r.n, p));
    }
    for (const auto &r : hypergeometric_rows)
        expect_close(hypergeometric, (Message() << "k " << r.k << " n " << r.n << " m " << r.m << " l " << r.l).GetString(),
                     zorvs_d_hypergeometric_cdf(r.k, r.n, r.m, r.l), r.value, 1e-12, Inf,
                     zorvs_f_hypergeometric_cdf(r.k, r.n, r.m, r.l), r.value);
}

TEST(DiscreteEdges, ValuesAndMessages) {
    expect_rows({
        // Poisson: exact P(X <= 3) = e^-2 19/3; a subnormal result comes out
        {ZORVS_CALL(zorvs_d_poisson_cdf(1000, 1e-20)), 1},
        {ZORVS_CALL(zorvs_d_poisson_cdf(100000, 1e5)), 0.501, 0, 0, "", 0.001},
        {ZORVS_CALL(zorvs_d_poisson_cdf(3, 2)), std::exp(-2.0) * 19 / 3, 0, 0, "", 2e-16},
        {ZORVS_CALL(zorvs_d_poisson_cdf(0, 720)), 2.03223080242429e-313, 0, 0, "", 1e-320},
        {ZORVS_CALL(zorvs_d_poisson_cdf(0, 800)), 0},
        {ZORVS_CALL(zorvs_d_poisson_cdf(5, Inf)), 0},
        {ZORVS_CALL(zorvs_d_poisson_cdf(-1, 1)), 0, 1, 9054, "i1=-1"},
        {ZORVS_CALL(zorvs_d_poisson_cdf(3, 0.0)), NaN, 5, 9064},
        {ZORVS_CALL(zorvs_d_poisson_cdf(3, -2.0)), NaN, 5, 9064},
        {ZORVS_CALL(zorvs_d_poisson_cdf(3, NaN)), NaN, 5, 9064, "r1=nan"},
        {ZORVS_CALL(zorvs_f_poisson_cdf(3, -2.0f)), NaN, 5, 9064, "r1=-2"},
        // binomial: exact P(X <= 4), n = 10, p = 1/4, is 966654 / 4^10
        {ZORVS_CALL(zorvs_d_binomial_cdf(3, 3, 0.5)), 1},
        {ZORVS_CALL(zorvs_d_binomial_cdf(0, 10, 0.0)), 1},
        {ZORVS_CALL(zorvs_d_binomial_cdf(9, 10, 1.0)), 0},
        {ZORVS_CALL(zorvs_d_binomial_cdf(0, 1, 1e-300)), 1},
        {ZORVS_CALL(zorvs_d_binomial_cdf(4, 10, 0.25)), 966654.0 / 1048576.0, 0, 0, "", 1e-15},
        {ZORVS_CALL(zorvs_f_binomial_cdf(4, 10, 0.25f)), 966654.0 / 1048576.0, 0, 0, "", 1e-7},
        {ZORVS_CALL(zorvs_d_binomial_cdf(1, 0, 0.5)), NaN, 5, 9058, "i1=0"},
        {ZORVS_CALL(zorvs_d_binomial_cdf(1, 5, 1.5)), NaN, 5, 9059, "r1=1.5"},
        {ZORVS_CALL(zorvs_f_binomial_cdf(1, 5, -0.25f)), NaN, 5, 9059},
        {ZORVS_CALL(zorvs_d_binomial_cdf(-2, 5, 0.5)), 0, 1, 9054},
        {ZORVS_CALL(zorvs_d_binomial_cdf(4, 3, 0.5)), 1, 1, 9060, "i1=4 i2=3"},
        // hypergeometric, 5 drawn from 10 holding 3: P(X <= 1) = 126 / 252;
        // below the support 0 without a message; all drawn: X = m surely
        {ZORVS_CALL(zorvs_d_hypergeometric_cdf(1, 5, 3, 10)), 0.5, 0, 0, "", 1e-15},
        {ZORVS_CALL(zorvs_d_hypergeometric_cdf(3, 5, 3, 10)), 1},
        {ZORVS_CALL(zorvs_d_hypergeometric_cdf(2, 5, 8, 10)), 0, 0},
        {ZORVS_CALL(zorvs_d_hypergeometric_cdf(3, 10, 4, 10)), 0},
        {ZORVS_CALL(zorvs_d_hypergeometric_cdf(4, 10, 4, 10)), 1},
        {ZORVS_CALL(zorvs_d_hypergeometric_cdf(0, 3, 0, 10)), 1},
        {ZORVS_CALL(zorvs_d_hypergeometric_cdf(1, 0, 3, 10)), NaN, 5, 9061},
        {ZORVS_CALL(zorvs_d_hypergeometric_cdf(1, 11, 3, 10)), NaN, 5, 9061, "i1=11 i2=10"},
        {ZORVS_CALL(zorvs_f_hypergeometric_cdf(1, 5, 12, 10)), NaN, 5, 9062, "i1=12"},
        {ZORVS_CALL(zorvs_d_hypergeometric_cdf(1, 5, -1, 10)), NaN, 5, 9062},
        {ZORVS_CALL(zorvs_d_hypergeometric_cdf(-1, 5, 3, 10)), 0, 1, 9054},
        {ZORVS_CALL(zorvs_d_hypergeometric_cdf(4, 5, 3, 10)), 1, 1, 9063, "i1=4 i2=3"},
        // binomial coefficient; C(200, 100) = 9.05e58 is beyond float
        {ZORVS_CALL(zorvs_dbinom(0, 0)), 1},
        {ZORVS_CALL(zorvs_dbinom(10, 3)), 120},
        {ZORVS_CALL(zorvs_binom(10, 7)), 120},
        {ZORVS_CALL(zorvs_dbinom(60, 30)), 118264581564861424.0},
        {ZORVS_CALL(zorvs_dbinom(52, 5)), 2598960},
        {ZORVS_CALL(zorvs_dbinom(1000, 500) / 2.7028824094543656951561469362597527549615200844654828e299), 1, 0, 0, "",
         4e-16},
        {ZORVS_CALL(zorvs_dbinom(2000000000, 3) / 1.333333331333333334e27), 1, 0, 0, "", 2e-16},
        {ZORVS_CALL(zorvs_binom(100, 50) / 1.0089134454556419e29), 1, 0, 0, "", 1e-7},
        {ZORVS_CALL(zorvs_dbinom(200, 100) / 9.0548514656103281165e58), 1, 0, 0, "", 1e-13},
        {ZORVS_CALL(zorvs_dbinom(-1, 0)), NaN, 5, 600, "i1=-1 i2=0"},
        {ZORVS_CALL(zorvs_dbinom(3, -1)), NaN, 5, 600, "i1=3 i2=-1"},
        {ZORVS_CALL(zorvs_dbinom(3, 5)), NaN, 5, 600, "i1=3 i2=5"},
        {ZORVS_CALL(zorvs_dbinom(1100, 550)), NaN, 5, 20402, "i1=1100"},
        {ZORVS_CALL(zorvs_binom(200, 100)), NaN, 5, 20402},
    });
}

}  // namespace
