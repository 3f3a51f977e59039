// Tests of the sign test and the Wilcoxon rank-sum test: the sign test
// against exact binomial tails in rational arithmetic
// (data/stat/categorical/nonparametric_sign_test.py), with values equal to
// the percentile and missing values; the rank-sum statistics against rank
// sums in rational arithmetic, mpmath probabilities and R's wilcox.test
// (nonparametric_rank_sum.py), with ties, fuzz chains and missing values;
// the refusals, with nothing written after them, and the stops.
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/stat/categorical/nonparametric_rank_sum_ref.inc"
#include "data/stat/categorical/nonparametric_sign_test_ref.inc"

ZORVS_TWIN_SUITE(SignRank);

// Every case twice: p and q by value and through the _ADR pointers.
TYPED_TEST(SignRank, SignTestExactTail) {
    using T = TypeParam;
    auto sign = twin<T>(zorvs_f_sign_test, zorvs_d_sign_test);
    Worst worst(std::string("sign test, absolute error, ") + (sizeof(T) == 4 ? "float" : "double"));
    for (const SignCase &c : sign_cases) {
        SCOPED_TRACE(c.name);
        std::vector<T> x(c.x, c.x + c.n);
        int positive = -1, zero = -1;
        const double got = sign(c.n, x.data(), ZORVS_PERCENTILE, c.q, ZORVS_PERCENTAGE, c.p,
                                ZORVS_N_POSITIVE_DEVIATIONS, &positive, ZORVS_N_ZERO_DEVIATIONS, &zero, 0);
        EXPECT_EQ(zorvs_error_type(), 0);
        EXPECT_EQ(positive * 1000 + zero, c.positive * 1000 + c.zero);
        worst.expect_within(std::fabs(got - c.want), 32 * eps_of<T>);
        T q = static_cast<T>(c.q), p = static_cast<T>(c.p);
        EXPECT_EQ(sign(c.n, x.data(), ZORVS_PERCENTILE_ADR, &q, ZORVS_PERCENTAGE_ADR, &p, 0), got);
    }
}

// The ten statistics, the midrank sum and p-value also against R where the
// ties are exact equalities.  With a fuzz the vector is allocated
// (ZORVS_STAT) and the fuzz read through ZORVS_FUZZ_ADR.
TYPED_TEST(SignRank, RankSumAgreesWithReferences) {
    using T = TypeParam;
    auto rank_sum = twin<T>(zorvs_f_wilcoxon_rank_sum, zorvs_d_wilcoxon_rank_sum);
    const bool single = sizeof(T) == 4;
    const double rel = single ? 2e-5 : 1e-10, floor = single ? 1e-6 : 1e-14;
    Worst worst(std::string("rank sum p-value against R, relative, ") + (single ? "float" : "double"));
    Quiet quiet;
    for (const RankSumCase &c : rank_sum_cases) {
        SCOPED_TRACE(c.name);
        std::vector<T> x(c.x, c.x + c.n1), y(c.y, c.y + c.n2);
        T user[10], *stat = user, fuzz = static_cast<T>(c.fuzz);
        CodeLog log;
        const double p = c.fuzz < 0 ? rank_sum(c.n1, x.data(), c.n2, y.data(), ZORVS_STAT_USER, user, 0)
                                    : rank_sum(c.n1, x.data(), c.n2, y.data(), ZORVS_FUZZ_ADR, &fuzz, ZORVS_STAT, &stat, 0);
        ASSERT_NE(stat, nullptr);
        EXPECT_EQ(p, stat[9]);
        for (int i = 0; i < 10; ++i) EXPECT_TRUE(agrees(stat[i], c.want[i], rel * std::fabs(c.want[i]) + floor)) << i;
        // a level keeps its latest warning: a tie across the samples comes last
        EXPECT_EQ(log.has(3, 11123), c.cross > 0);
        EXPECT_TRUE(c.cross > 0 || log.has(3, 11121) == (c.n1 < 25 && c.n2 < 25));
        EXPECT_TRUE(std::isnan(c.r_w) || stat[6] == c.r_w);
        // R has no p-value when all values are tied
        if (!std::isnan(c.r_p)) worst.expect_within(relative_error(p, c.r_p), rel);
        if (stat != user) std::free(stat);
    }
}

// Refusals: the result is missing; the counts, the caller's vector and the
// address of ZORVS_STAT are not written.
TYPED_TEST(SignRank, RefusalsWriteNothing) {
    using T = TypeParam;
    auto sign = twin<T>(zorvs_f_sign_test, zorvs_d_sign_test);
    auto rank_sum = twin<T>(zorvs_f_wilcoxon_rank_sum, zorvs_d_wilcoxon_rank_sum);
    T x[] = {1, 2, 3}, y[] = {2, 5, 6, 7}, far[] = {4, 5, 6, 7}, gaps[] = {NaN, NaN, NaN};
    T signs[] = {-1, 2, 3, NaN, 0, 5};  // 3 of 4 signed values above 0: P(K >= 3) = 5/16
    T stat[10], *address = x, *const null = nullptr;
    std::fill(stat, stat + 10, T(-9));
    int positive = -7, zero = -7;
    expect_rows({
        {ZORVS_CALL(sign(6, signs, 0)), 5.0 / 16, 0, 0, "", 4 * eps_of<T>},
        {ZORVS_CALL(sign(1, x, ZORVS_N_POSITIVE_DEVIATIONS, &positive, 0)), NaN, 5, 603, "i1=1 i2=2 l1=n_observations"},
        {ZORVS_CALL(sign(6, signs, ZORVS_PERCENTAGE, 1.0, 0)), NaN, 5, 120, "r1=0 r2=1 r3=1 l1=percentile"},
        {ZORVS_CALL(sign(6, signs, ZORVS_PERCENTAGE, NaN, 0)), NaN, 5, 120, "r3=nan"},
        {ZORVS_CALL(sign(3, gaps, ZORVS_N_ZERO_DEVIATIONS, &zero, 0)), NaN, 5, 11099},
        {ZORVS_CALL(sign(6, signs, 99, 0)), NaN, 5, 11001, "i1=99 i2=3"},
        {ZORVS_CALL(sign(6, null, 0)), NaN, 5, 150, "l1=x"},
        // no ties: z = (6 - 12) / sqrt(8), p = erfc(|z| / sqrt 2)
        {ZORVS_CALL(rank_sum(3, x, 4, far, 0)), 0.0338948535246893, 3, 11121, "i1=3 i2=4", 1e-6},
        {ZORVS_CALL(rank_sum(0, x, 4, y, ZORVS_STAT_USER, stat, 0)), NaN, 5, 11118, "i1=0 i2=4 l1=n1_observations"},
        {ZORVS_CALL(rank_sum(1, x, 1, y, ZORVS_STAT, &address, 0)), NaN, 5, 11119, "i1=1 i2=1"},
        {ZORVS_CALL(rank_sum(3, x, 4, y, ZORVS_FUZZ, -0.5, ZORVS_STAT_USER, stat, 0)), NaN, 5, 11120, "r1=-0.5"},
        {ZORVS_CALL(rank_sum(2, gaps, 4, y, ZORVS_STAT, &address, 0)), NaN, 4, 11122},
        {ZORVS_CALL(rank_sum(3, x, 2, gaps, ZORVS_STAT_USER, stat, 0)), NaN, 4, 11122},
        {ZORVS_CALL(rank_sum(3, x, 4, y, 4711, 0)), NaN, 5, 11001, "i1=4711 i2=5"},
        {ZORVS_CALL(rank_sum(3, null, 4, y, 0)), NaN, 5, 150, "l1=x"},
        {ZORVS_DO((zorvs::allocation_failure_countdown = 1, rank_sum(3, x, 4, y, ZORVS_STAT_USER, stat, 0))), any, 5, 202},
        {ZORVS_DO((zorvs::allocation_failure_countdown = 2, rank_sum(3, x, 4, y, ZORVS_STAT, &address, 0))), any, 5, 200},
    });
    zorvs::allocation_failure_countdown = 0;
    for (T v : stat) EXPECT_EQ(v, -9);
    EXPECT_EQ(address, x);
    EXPECT_EQ(positive * 1000 + zero, -7007);
}

}  // namespace
