// fuzz_findings_test.cpp - the faults the libFuzzer targets (fuzz/targets/)
// found, a row each, so that the plain and the sanitizer builds see them too
// (the inputs themselves are in fuzz/corpus/<target>/finding-*, where also
// the principal components of a float matrix whose negative eigenvalue came
// first by magnitude, unreported, stay replayed).  Values are
// limits of the distributions (an infinite statistic, shapes so large that
// the distribution is a point mass), not computed references.
#include "support/tables.hpp"

namespace {

using zorvs_test::Call;
using zorvs_test::NaN;
using zorvs_test::Inf;

// Distribution functions at the edges of their arguments: a probability in
// [0, 1] or a refusal, never a NaN without a message.
TEST(FuzzFindings, DistributionsAtTheEdges) {
    const double tiny_df = 4.9406564584124654e-324;  // its half is 0
    zorvs_test::expect_rows({
        {ZORVS_CALL(zorvs_d_chi_squared_cdf(Inf, Inf)), 1.0},  // inf / inf in the cube-root approximation
        {ZORVS_CALL(zorvs_f_chi_squared_cdf(INFINITY, 100.0f)), 1.0},
        {ZORVS_CALL(zorvs_f_chi_squared_cdf(1e38f, 1e38f)), 0.5, 0, 0, "", 1e-6},  // 9 df overflowed a float
        {ZORVS_CALL(zorvs_f_chi_squared_inverse_cdf(0.5f, 1e38f)), 1e38, 0, 0, "", 1e32},
        {ZORVS_CALL(zorvs_d_F_cdf(95.0, 1e300, 1e300)), 1.0},  // a b overflowed in the beta ratio's leading factor
        {ZORVS_CALL(zorvs_d_F_cdf(0.999999, 1e30, 1e30)), 0.0},
        {ZORVS_CALL(zorvs_d_F_cdf(1e-310, 0.5, tiny_df)), NaN, 5, 9048},
        {ZORVS_CALL(zorvs_d_F_inverse_cdf(0.5, tiny_df, 2.0)), NaN, 5, 9048},
        {ZORVS_CALL(zorvs_d_F_cdf(0.5, 1.246533832842823e-18, 1e300)), NaN, 3, 9057},  // b / a overflowed
        {ZORVS_CALL(zorvs_f_gamma_incomplete(7.8704914e20f, 7.870611e20f)), Inf},  // rounding passed 0 in a log1p
        {ZORVS_CALL(zorvs_d_gamma_incomplete(200.0, 1e300)), Inf},
    });
}

// An output asked for in both forms: the one given last holds, the caller's
// array is neither handed over as a block nor freed.
TEST(FuzzFindings, RegressionOutputInBothForms) {
    zorvs_test::Quiet quiet;
    const double x[6] = {1, 2, 3, 4, 5, 7}, y[6] = {2.1, 3.9, 6.2, 7.8, 10.1, 14.2};
    double mine[15] = {}, *block = nullptr;
    std::free(zorvs_d_regression(6, 1, const_cast<double *>(x), const_cast<double *>(y), ZORVS_ANOVA_TABLE, &block,
                                 ZORVS_ANOVA_TABLE_USER, mine, 0));
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(mine[0], 1.0);  // degrees of freedom of the regression
    mine[0] = 0;
    std::free(zorvs_d_regression(6, 1, const_cast<double *>(x), const_cast<double *>(y), ZORVS_ANOVA_TABLE_USER, mine,
                                 ZORVS_ANOVA_TABLE, &block, 0));
    ASSERT_NE(block, nullptr);
    EXPECT_NE(block, mine);
    EXPECT_EQ(block[0], 1.0);
    EXPECT_EQ(mine[0], 0.0);
    std::free(block);
}

}  // namespace
