// allocation_failures_test.cpp - each allocation of a statistics routine
// made to fail in turn, a row a routine: the message, what is handed over
// (nothing after a memory message; the result and the other outputs after
// an output's own message), and no leak (the sanitizer build).
#include "stat/regress/twins.hpp"

namespace {

#include "data/stat/regress/regressors_glm_ref.inc"

using namespace zorvs_test;

template <class... P>
bool free_all(bool nothing, P *...p) {
    (std::free(const_cast<void *>(static_cast<const void *>(p))), ...);
    return nothing;
}

TEST(StatisticsAllocations, EachFailureIsReportedAndHandsOverNothing) {
    double x[] = {1, 2, 3, 4, 5}, y[] = {1, 3, 2, 5, 4}, km[] = {0, 0, 1, 1, 9, 9, 10, 10}, seeds[] = {0, 0, 10, 10};
    std::vector<double> cars(glm_x, glm_x + 4 * 32), z(80);
    for (int t = 1; t < 80; ++t) z[t] = 0.6 * z[t - 1] + std::sin(3.7 * t) + 0.3 * std::cos(11.1 * t);
    int class_columns[] = {0, 2}, one = 1;
    zorvs_d_regression_info *info = nullptr;
    std::free(zorvs_d_regression(5, 1, x, y, ZORVS_REGRESSION_INFO, &info, 0));
    ASSERT_NE(info, nullptr);
    expect_allocation_failures({
        // the record, the work space and the coefficients: nothing; then each
        // output in turn: the fit and the other outputs stand; one later
        // allocation is absorbed
        {"regression", [&] {
             double *out[4] = {}, *b;
             zorvs_d_regression_info *rec = nullptr;
             b = zorvs_d_regression(5, 1, x, y, ZORVS_COEF_COVARIANCES, &out[0], ZORVS_ANOVA_TABLE, &out[1],
                                    ZORVS_X_MEAN, &out[2], ZORVS_RESIDUAL, &out[3], ZORVS_REGRESSION_INFO, &rec, 0);
             const int given = (out[0] != nullptr) + (out[1] != nullptr) + (out[2] != nullptr) + (out[3] != nullptr);
             EXPECT_TRUE(b ? rec && given >= 3 : !rec && given == 0);
             return free_all(!b, b, rec, out[0], out[1], out[2], out[3]);
         }, 7, {202, 201, 201, 11039, 11040, 11041, 11042}, true},
        {"regression_summary", [&] {
             double *out[4] = {};
             zorvs_d_regression_summary(info, ZORVS_COEF_T_TESTS, &out[0], ZORVS_COEF_VIF, &out[1],
                                        ZORVS_COEF_COVARIANCES, &out[2], ZORVS_ANOVA_TABLE, &out[3], 0);
             return free_all(!out[0] && !out[1] && !out[2] && !out[3], out[0], out[1], out[2], out[3]);
         }, 5, {202, 201, 202, 201, 200}},
        {"regression_prediction", [&] {
             double *lev = nullptr, *p = zorvs_d_regression_prediction(info, 2, x, ZORVS_LEVERAGE, &lev, 0);
             return free_all(!p && !lev, p, lev);
         }, 3, {201, 201, 200}},
        // the transposition falls back to its cycle method without its work
        {"regressors_for_glm", [&] {
             double *reg = nullptr;
             const int n = zorvs_d_regressors_for_glm(32, cars.data(), 2, 2, ZORVS_X_CLASS_COLUMNS, class_columns,
                                                      ZORVS_MODEL_ORDER, 2, ZORVS_REGRESSORS, &reg, 0);
             EXPECT_TRUE(n == 0 ? !reg : n == glm_o2_s1_ncol && reg[32 * n - 1] == glm_o2_s1[32 * n - 1]);
             EXPECT_EQ(cars, std::vector<double>(glm_x, glm_x + 4 * 32));
             return free_all(n == 0, reg);
         }, 5, {}, true},
        {"cluster_k_means", [&] {
             double *means = x;
             int *counts = nullptr, *c = zorvs_d_cluster_k_means(4, 2, km, 2, seeds, ZORVS_CLUSTER_MEANS, &means,
                                                                 ZORVS_CLUSTER_COUNTS, &counts, ZORVS_FREQUENCIES,
                                                                 km + 2, 0);
             return free_all(!c && !means && !counts, c, means, counts);
         }, 5},
        {"principal_components", [&] {
             double a[4] = {2, 1, 1, 2}, *vectors = a, *std_errors = a;
             double *values = zorvs_d_principal_components(2, a, ZORVS_EIGENVECTORS, &vectors, ZORVS_STD_DEV, 10,
                                                           &std_errors, 0);
             return free_all(!values && !vectors && !std_errors, values, vectors, std_errors);
         }, 5},
        {"arma", [&] {
             double *resid = nullptr, *cov = nullptr, *acv = nullptr;
             void *rec = nullptr;
             double *b = zorvs_d_arma(80, z.data(), 1, 1, ZORVS_LEAST_SQUARES, ZORVS_RESIDUAL, &resid,
                                      ZORVS_PARAM_EST_COV, &cov, ZORVS_AUTOCOV, &acv, ZORVS_ARMA_INFO, &rec, 0);
             return free_all(!b && !resid && !cov && !acv && !rec, b, resid, cov, acv, rec);
         }, 5},
        {"difference", [&] {
             int lost = -1;
             double *w = zorvs_d_difference(4, x, 1, &one, ZORVS_NUM_LOST, &lost, 0);
             return free_all(!w && lost == -1, w);
         }, 3},
    });
    std::free(info);
}

}  // namespace
