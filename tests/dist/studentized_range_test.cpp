// studentized_range_test.cpp - the studentized range distribution and its
// inverse against SciPy's studentized_range (tests/data/dist/
// studentized_range_ref.inc, make_studentized_range.py; quantiles by solving
// its cdf(q) = p to 1e-13) for 2 to 100 means and 2 to 1e6 degrees of
// freedom, in both twins; edge values and messages as rows.

#include "dist/discrete.h"
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

struct StudentizedRangeRow { double p, df, means, q; };
struct StudentizedRangeCdfRow { double q, means, df, value; };
struct StudentizedRangeTwoRow { double p, df, q; };
#include "data/dist/studentized_range_ref.inc"

// The reference takes df above 1e5 as infinite: values at such a df differ
// from it by O(1/df).  The inverse's rows in four shards, the longest
// searches of the suite run in parallel.
class StudentizedRangeInverse : public ::testing::TestWithParam<int> {};

TEST_P(StudentizedRangeInverse, AgreesWithReference) {
    CodeLog log;
    Worst inverse("studentized range inverse, df <= 1e5, shard " + std::to_string(GetParam()) + ": relative error");
    for (std::size_t i = GetParam(); i < std::size(studentized_range_rows); i += 4) {
        const auto &r = studentized_range_rows[i];
        const double e = relative_error(zorvs_dsrin(r.p, r.df, r.means), r.q);
        EXPECT_LE(e, r.df > 1e5 ? 1e-6 + 10 / r.df : 1e-6) << "p=" << r.p << " df=" << r.df << " means=" << r.means;
        if (r.df <= 1e5) inverse.add(e);
    }
    EXPECT_TRUE(log.entries().empty());
}

INSTANTIATE_TEST_SUITE_P(Shards, StudentizedRangeInverse, ::testing::Range(0, 4));

// Two means is the folded t, exact at every df; the cdf in both twins.
TEST(StudentizedRange, TwoMeansAndCdfAgreeWithReference) {
    Quiet q;
    Worst two("studentized range inverse, two means: relative error"), cdf("studentized range cdf, df <= 1e5: absolute error");
    for (const auto &r : studentized_range_two_rows) {
        const double e = relative_error(zorvs_dsrin(r.p, r.df, 2), r.q);
        EXPECT_LE(e, 1e-8) << "p=" << r.p << " df=" << r.df;
        two.add(e);
    }
    for (const auto &r : studentized_range_cdf_rows) {
        const double e = std::fabs(zorvs_dsrdf(r.q, r.means, r.df) - r.value);
        EXPECT_LE(e, r.df > 1e5 ? 1e-5 : 1e-7 * std::fmax(r.value, 1e-3)) << "q=" << r.q << " means=" << r.means << " df=" << r.df;
        if (r.df > 1e5) continue;
        cdf.add(e);
        EXPECT_NEAR(zorvs_srdf(float(r.q), float(r.means), float(r.df)), r.value, 1e-4);
    }
}

// Monotone in p at the extremes of means and df; the single twin agrees.
TEST(StudentizedRange, InverseIsIncreasingInPInBothTwins) {
    for (double means : {2.0, 60.0})
        for (double df : {2.0, 1e6}) {
            double previous = 0;
            for (double p = 0.80; p < 0.9995; p += 0.04) {
                const double q = zorvs_dsrin(p, df, means);
                EXPECT_GT(q, previous) << "p=" << p << " df=" << df << " means=" << means;
                EXPECT_NEAR(zorvs_srin(float(p), float(df), float(means)), q, 1e-4 * q);
                previous = q;
            }
        }
}

// Two means: Q / sqrt(2) is |T|, and for df = 2, P(|T| <= t) = t / sqrt(2 + t^2).
TEST(StudentizedRange, EdgesAndMessages) {
    expect_rows({
        {ZORVS_CALL(zorvs_dsrdf(zorvs_dsrin(0.8, 9, 4), 4, 9)), 0.8, 0, 0, "", 1e-11},
        {ZORVS_CALL(zorvs_dsrdf(zorvs_dsrin(0.95, 9, 4), 4, 9)), 0.95, 0, 0, "", 1e-11},
        {ZORVS_CALL(zorvs_dsrdf(zorvs_dsrin(0.999, 9, 4), 4, 9)), 0.999, 0, 0, "", 1e-11},
        {ZORVS_CALL(zorvs_dsrdf(0.3 * std::sqrt(2.0), 2, 2)), 0.3 / std::sqrt(2.09), 0, 0, "", 1e-10},
        {ZORVS_CALL(zorvs_dsrdf(std::sqrt(2.0), 2, 2)), 1 / std::sqrt(3.0), 0, 0, "", 1e-10},
        {ZORVS_CALL(zorvs_dsrdf(4 * std::sqrt(2.0), 2, 2)), 4 / std::sqrt(18.0), 0, 0, "", 1e-10},
        {ZORVS_CALL(zorvs_dsrdf(0, 5, 10)), 0},
        {ZORVS_CALL(zorvs_dsrdf(-1, 5, 10)), 0},
        {ZORVS_CALL(zorvs_dsrdf(Inf, 5, 10)), 1},
        {ZORVS_CALL(zorvs_dsrdf(3, 1.5, 10)), NaN, 5, 9065, "r1=1.5"},
        {ZORVS_CALL(zorvs_dsrin(0.9, 1, 3)), NaN, 5, 9066, "r1=1"},
        {ZORVS_CALL(zorvs_srin(0.0f, 10, 3)), NaN, 5, 9067},
        {ZORVS_CALL(zorvs_srin(1.0f, 10, 3)), NaN, 5, 9067},
        {ZORVS_CALL(zorvs_srin(-0.1f, 10, 3)), NaN, 5, 9067},
        {ZORVS_CALL(zorvs_srin(float(NaN), 10, 3)), NaN, 5, 9067},
        {ZORVS_CALL(zorvs_dsrdf(NaN, 3, 10)), NaN, 3, 9069},
    });
}

}  // namespace
