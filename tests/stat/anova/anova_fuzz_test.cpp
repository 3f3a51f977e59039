// anova_fuzz_test.cpp - random calls of the one-way analysis of variance and
// of the Student-Newman-Keuls test: empty and negative group sizes, NaN,
// infinite and huge responses, any comparison method at odd levels, odd
// means, standard errors, degrees of freedom and levels.  No call may
// crash, hang or write outside its arrays (the sanitizer build checks); a
// p-value is NaN or a probability, an interval holds its difference, a
// grouping counts means that exist.
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

double odd_value(Xorshift &rng) {
    switch (rng.below(10)) {
    case 0: return NaN;
    case 1: return rng.below(2) ? Inf : -1e300;
    case 2: return 1e12;
    default: return 10 * rng.unit();
    }
}

TEST(AnovaFuzz, RandomCallsEndCleanly) {
    Quiet quiet;
    Xorshift rng{22};
    const int methods[6] = {0, ZORVS_TUKEY_USER, ZORVS_DUNN_SIDAK_USER, ZORVS_BONFERRONI_USER, ZORVS_SCHEFFE_USER,
                            ZORVS_ONE_AT_A_TIME_USER};
    const double levels[6] = {95, 90, 99.5, 30, 0, -1};
    for (int trial = 0; trial < 300; ++trial) {
        const int k = rng.below(6);
        std::vector<int> n(k + 1);
        for (int &v : n) v = rng.below(12) ? rng.below(5) : -1;
        std::vector<double> y(24), rows(75, -7), table(15);  // room for 6 groups of 4
        for (double &v : y) v = rng.below(4) ? 1 + rng.unit() : odd_value(rng);
        const int method = methods[rng.below(6)];
        const bool tukey = method == ZORVS_TUKEY_USER && rng.below(4);  // Tukey costs a quantile: fewer
        const double p = zorvs_d_anova_oneway(k, n.data(), y.data(), ZORVS_ANOVA_TABLE_USER, table.data(),
                                              ZORVS_CONFIDENCE, levels[rng.below(6)],
                                              method == ZORVS_TUKEY_USER && !tukey ? 0 : method, rows.data(), 0);
        EXPECT_TRUE(std::isnan(p) || (p >= 0 && p <= 1)) << p;
        for (int r = 0; method && zorvs_n1rty(1) < 4 && r < k * (k - 1) / 2; ++r) {
            EXPECT_FALSE(rows[5 * r + 3] > rows[5 * r + 2] || rows[5 * r + 4] < rows[5 * r + 2]) << r;
        }
    }
    for (int trial = 0; trial < 12; ++trial) {
        const int k = rng.below(5);
        std::vector<double> means(k + 1);
        for (double &v : means) v = rng.below(3) ? 10 * rng.unit() : odd_value(rng);
        const double alphas[4] = {0.01, 0.05, 0.2, 0.005};
        int *eq = zorvs_d_multiple_comparisons(k, means.data(), rng.below(30) - 1, rng.below(5) ? rng.unit() : -1,
                                               ZORVS_ALPHA, alphas[rng.below(4)], 0);
        EXPECT_EQ(eq == nullptr, zorvs_n1rty(1) >= 4);
        for (int i = 0; eq && i < k - 1; ++i) EXPECT_TRUE(eq[i] >= 0 && eq[i] <= k - i) << i;
        std::free(eq);
    }
}

}  // namespace
