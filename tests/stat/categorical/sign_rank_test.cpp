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

template <class T>
class SignTest : public ::testing::Test {};
TYPED_TEST_SUITE(SignTest, Reals);

template <class T>
std::vector<T> as(const double *x, int n) {
    return std::vector<T>(x, x + n);
}

// Every case twice: p and q by value and through the _ADR pointers.
TYPED_TEST(SignTest, ExactBinomialTail) {
    using T = TypeParam;
    auto sign = twin<T>(zorvs_f_sign_test, zorvs_d_sign_test);
    Worst worst(std::string("sign test, absolute error, ") + (sizeof(T) == 4 ? "float" : "double"));
    for (const SignCase &c : sign_cases) {
        SCOPED_TRACE(c.name);
        std::vector<T> x = as<T>(c.x, c.n);
        const std::vector<T> before = x;
        int positive = -1, zero = -1;
        const double got = sign(c.n, x.data(), ZORVS_PERCENTILE, c.q, ZORVS_PERCENTAGE, c.p,
                                ZORVS_N_POSITIVE_DEVIATIONS, &positive, ZORVS_N_ZERO_DEVIATIONS, &zero, 0);
        EXPECT_EQ(zorvs_error_type(), 0);
        EXPECT_EQ(positive, c.positive);
        EXPECT_EQ(zero, c.zero);
        EXPECT_NEAR(got, c.want, 32 * eps_of<T>);
        worst.add(std::fabs(got - c.want));
        T q = static_cast<T>(c.q), p = static_cast<T>(c.p);
        EXPECT_EQ(sign(c.n, x.data(), ZORVS_PERCENTILE_ADR, &q, ZORVS_PERCENTAGE_ADR, &p, 0), got);
        for (int i = 0; i < c.n; ++i) EXPECT_TRUE(agrees(x[i], before[i])) << i;
    }
}

// The defaults (q = 0, p = 0.5) and the refusals; after a refusal the
// result is missing and the counts keep what they held.
TYPED_TEST(SignTest, DefaultsAndRefusals) {
    using T = TypeParam;
    auto sign = twin<T>(zorvs_f_sign_test, zorvs_d_sign_test);
    T x[] = {-1, 2, 3, NaN, 0, 5};  // 3 of 4 signed values above 0: P(K >= 3) = 5/16
    T missing[] = {NaN, NaN, NaN};
    int positive = -7, zero = -7;
    expect_rows({
        {ZORVS_CALL(sign(6, x, 0)), 5.0 / 16, 0, 0, "", 4 * eps_of<T>},
        {ZORVS_CALL(sign(1, x, ZORVS_N_POSITIVE_DEVIATIONS, &positive, 0)), NaN, 5, 603,
         "i1=1 i2=2 l1=n_observations"},
        {ZORVS_CALL(sign(6, x, ZORVS_PERCENTAGE, 1.0, 0)), NaN, 5, 120, "r1=0 r2=1 r3=1 l1=percentile"},
        {ZORVS_CALL(sign(6, x, ZORVS_PERCENTAGE, 0.0, 0)), NaN, 5, 120, "r3=0"},
        {ZORVS_CALL(sign(6, x, ZORVS_PERCENTAGE, NaN, 0)), NaN, 5, 120, "r3=nan"},
        {ZORVS_CALL(sign(3, missing, ZORVS_N_ZERO_DEVIATIONS, &zero, 0)), NaN, 5, 11099},
        {ZORVS_CALL(sign(6, x, 99, 0)), NaN, 5, 11001, "i1=99 i2=3"},
        {ZORVS_CALL(sign(6, static_cast<T *>(nullptr), 0)), NaN, 5, 150, "l1=x"},
    });
    EXPECT_EQ(positive, -7);
    EXPECT_EQ(zero, -7);
}

TEST(SignTestStop, TooFewObservationsStops) {
    expect_stops({{[] {
                       float x[] = {1};
                       zorvs_f_sign_test(1, x, 0);
                   },
                   5, "603|n_observations"}});
}

template <class T>
class RankSum : public ::testing::Test {};
TYPED_TEST_SUITE(RankSum, Reals);

// The ten statistics of every case; the p-value and the midrank sum also
// against R where the ties are exact equalities.  Rank sums are exact; the
// rest within a relative tolerance, or an absolute one near 0.
TYPED_TEST(RankSum, AgreesWithReferences) {
    using T = TypeParam;
    auto rank_sum = twin<T>(zorvs_f_wilcoxon_rank_sum, zorvs_d_wilcoxon_rank_sum);
    const bool single = sizeof(T) == 4;
    const double rel = single ? 2e-5 : 1e-10, abs_floor = single ? 1e-6 : 1e-14;
    Worst worst(std::string("rank sum p-value against R, relative, ") + (single ? "float" : "double"));
    Quiet quiet;
    for (const RankSumCase &c : rank_sum_cases) {
        SCOPED_TRACE(c.name);
        std::vector<T> x = as<T>(c.x, c.n1), y = as<T>(c.y, c.n2);
        T stat[10];
        CodeLog log;
        const double p = c.fuzz < 0 ? rank_sum(c.n1, x.data(), c.n2, y.data(), ZORVS_STAT_USER, stat, 0)
                                    : rank_sum(c.n1, x.data(), c.n2, y.data(), ZORVS_FUZZ, c.fuzz,
                                               ZORVS_STAT_USER, stat, 0);
        EXPECT_TRUE(agrees(p, c.want[9], rel * std::fabs(c.want[9]) + abs_floor));
        for (int i = 0; i < 10; ++i)
            EXPECT_TRUE(agrees(stat[i], c.want[i], rel * std::fabs(c.want[i]) + abs_floor))
                << i << ": " << stat[i] << " want " << c.want[i];
        // a level keeps its latest warning: a tie across the samples comes last
        EXPECT_EQ(log.has(3, 11123), c.cross > 0);
        if (c.cross == 0) { EXPECT_EQ(log.has(3, 11121), c.n1 < 25 && c.n2 < 25); }
        if (!std::isnan(c.r_w)) { EXPECT_EQ(stat[6], c.r_w); }
        if (!std::isnan(c.r_p)) {  // R has no p-value when all values are tied
            EXPECT_TRUE(agrees(p, c.r_p, rel * std::fabs(c.r_p)));
            worst.add(relative_error(p, c.r_p));
        }
    }
}

// The allocated vector of ZORVS_STAT and the fuzz through ZORVS_FUZZ_ADR:
// the chain of steps of 0.125 is one group, the step of 0.126 is not.
TYPED_TEST(RankSum, AllocatedStatisticsAndFuzzByAddress) {
    using T = TypeParam;
    auto rank_sum = twin<T>(zorvs_f_wilcoxon_rank_sum, zorvs_d_wilcoxon_rank_sum);
    Quiet quiet;
    const RankSumCase &c = rank_sum_cases[6];  // fuzz_chain
    ASSERT_STREQ(c.name, "fuzz_chain");
    std::vector<T> x = as<T>(c.x, c.n1), y = as<T>(c.y, c.n2);
    T fuzz = static_cast<T>(c.fuzz), *stat = nullptr;
    rank_sum(c.n1, x.data(), c.n2, y.data(), ZORVS_FUZZ_ADR, &fuzz, ZORVS_STAT, &stat, 0);
    ASSERT_NE(stat, nullptr);
    EXPECT_EQ(stat[0], c.want[0]);
    EXPECT_EQ(stat[3], c.want[3]);
    std::free(stat);
    // with no fuzz every value is a group of its own: W_low = W_high = W
    stat = nullptr;
    fuzz = 0;
    rank_sum(c.n1, x.data(), c.n2, y.data(), ZORVS_FUZZ_ADR, &fuzz, ZORVS_STAT, &stat, 0);
    ASSERT_NE(stat, nullptr);
    EXPECT_EQ(stat[0], stat[3]);
    EXPECT_EQ(stat[0], stat[6]);
    std::free(stat);
}

// Refusals: the result is missing, and neither the caller's vector nor the
// address of ZORVS_STAT is written.
TYPED_TEST(RankSum, RefusalsWriteNothing) {
    using T = TypeParam;
    auto rank_sum = twin<T>(zorvs_f_wilcoxon_rank_sum, zorvs_d_wilcoxon_rank_sum);
    T x[] = {1, 2, 3}, y[] = {2, 5, 6, 7}, gaps[] = {NaN, NaN};
    T stat[10], *address = reinterpret_cast<T *>(&x);  // any value not null
    std::fill(stat, stat + 10, T(-9));
    T *const null = nullptr;
    T far[] = {4, 5, 6, 7};
    expect_rows({
        {ZORVS_CALL(rank_sum(3, x, 4, far, 0)), any, 3, 11121, "i1=3 i2=4"},
        {ZORVS_CALL(rank_sum(0, x, 4, y, ZORVS_STAT_USER, stat, 0)), NaN, 5, 11118,
         "i1=0 i2=4 l1=n1_observations l2=n2_observations"},
        {ZORVS_CALL(rank_sum(1, x, 1, y, ZORVS_STAT, &address, 0)), NaN, 5, 11119, "i1=1 i2=1"},
        {ZORVS_CALL(rank_sum(3, x, 4, y, ZORVS_FUZZ, -0.5, ZORVS_STAT_USER, stat, 0)), NaN, 5, 11120, "r1=-0.5"},
        {ZORVS_CALL(rank_sum(2, gaps, 4, y, ZORVS_STAT_USER, stat, ZORVS_STAT, &address, 0)), NaN, 4, 11122},
        {ZORVS_CALL(rank_sum(3, x, 2, gaps, ZORVS_STAT_USER, stat, 0)), NaN, 4, 11122},
        {ZORVS_CALL(rank_sum(3, x, 4, y, 4711, 0)), NaN, 5, 11001, "i1=4711 i2=5"},
        {ZORVS_CALL(rank_sum(3, null, 4, y, 0)), NaN, 5, 150, "l1=x"},
        {ZORVS_DO((zorvs::allocation_failure_countdown = 1, rank_sum(3, x, 4, y, ZORVS_STAT_USER, stat, 0))),
         any, 5, 202, "i1=3 i2=4 l1=n1_observations l2=n2_observations"},
        // the vector of ZORVS_STAT itself cannot be had
        {ZORVS_DO((zorvs::allocation_failure_countdown = 2, rank_sum(3, x, 4, y, ZORVS_STAT, &address, 0))),
         any, 5, 200},
    });
    zorvs::allocation_failure_countdown = 0;
    for (T v : stat) EXPECT_EQ(v, -9);
    EXPECT_EQ(address, reinterpret_cast<T *>(&x));
}

TEST(RankSumStop, EmptySampleStops) {
    expect_stops({{[] {
                       double x[] = {1, 2};
                       zorvs_d_wilcoxon_rank_sum(0, x, 2, x, 0);
                   },
                   5, "11118|n1_observations"},
                  {[] {
                       float x[] = {NaN, NaN}, y[] = {1, 2};
                       zorvs_f_wilcoxon_rank_sum(2, x, 2, y, 0);
                   },
                   4, "11122|zorvs_f_wilcoxon_rank_sum"}});
}

}  // namespace
