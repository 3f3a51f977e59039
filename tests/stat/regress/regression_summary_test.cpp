// Tests of the regression summary and prediction: t tests, inflation
// factors, covariances, the analysis of variance table, predictions with
// their limits and the case statistics against R (make_regression_summary.R
// on the fits of make_regression_lm.R), and the edge cases and refusals.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "frame/frame.hpp"
#include "stat/regress/regress.h"
#include "stat/regress/twins.hpp"
#include "support/capture.hpp"
#include "support/tables.hpp"
#include "zorvstat.h"

namespace {

using zorvs_test::LmCase;
struct SummaryRef {
    double level;
    const double *tests, *vif, *rows;
};
#include "data/stat/regress/regression_lm_ref.inc"
#include "data/stat/regress/regression_summary_ref.inc"

using namespace zorvs_test;

template <class T>
struct Fitted {
    std::vector<T> x, y, w;
    Info<T> *info = nullptr;
    // The fit of rows (n, nv, row-major x) by the library, its record kept.
    Fitted(int n, int nv, const double *x0, const double *y0, const double *w0, bool intercept)
        : x(x0, x0 + n * nv), y(y0, y0 + n), w(n, T(1)) {
        if (w0) w.assign(w0, w0 + n);
        std::free(fit<T>(n, nv, x.data(), y.data(), ZORVS_WEIGHTS, w.data(), ZORVS_REGRESSION_INFO, &info,
                         intercept ? 0 : ZORVS_NO_INTERCEPT, 0));
    }
    explicit Fitted(const LmCase &c) : Fitted(c.n, c.nv, c.x, c.y, c.w, c.intercept) {}
    ~Fitted() { std::free(info); }
};

template <class T>
class RegressionSummary : public ::testing::Test {};
using Reals = ::testing::Types<float, double>;
TYPED_TEST_SUITE(RegressionSummary, Reals);

// Every data set against R: the t-test table (pointer form, leading
// dimension 5), the inflation factors, the covariances (leading dimension
// p + 1) and the table of the summary; for every training row the
// prediction, its limits at the case's level and the case statistics, the
// weighted fits with their weights.  Errors are relative to the value, or
// to `floor` times the largest of its column where the value is smaller (a
// t near 0, a residual or a limit near 0); the p-values carry the digits of
// the t distribution function, some 8 in the far tail of a large df.  Float
// to the digits its data carry.
TYPED_TEST(RegressionSummary, AgreesWithR) {
    using T = TypeParam;
    const bool single = std::is_same_v<T, float>;
    const char *names[] = {"estimate", "standard error", "t", "p", "vif", "vcov", "anova", "prediction",
                           "residual", "leverage", "standardized", "deleted", "cooksd", "dffits", "mean low",
                           "mean high", "new low", "new high", "scheffe low", "scheffe high"};
    double worst[20] = {};
    // Output o: n values, got[i * gs], want[i * ws].
    auto compare = [&](int o, int n, const T *got, int gs, const double *want, int ws, double floor) {
        double big = 0;
        for (int i = 0; i < n; ++i) big = std::max(big, std::fabs(want[i * ws]));
        for (int i = 0; i < n; ++i) {
            const double g = got[i * gs], w = want[i * ws];
            const double e = std::isfinite(w) ? std::fabs(g - w) / std::max(std::fabs(w), floor * big)
                                              : !(g == w || (std::isnan(g) && std::isnan(w)));
            worst[o] = std::max(worst[o], e);
            EXPECT_LE(e, single ? 1e-2 : o == 3 ? 1e-8 : 1e-9) << names[o] << " " << i;
        }
    };
    for (std::size_t k = 0; k < std::size(lm_cases); ++k) {
        const LmCase &c = lm_cases[k];
        const SummaryRef &r = summary_refs[k];
        SCOPED_TRACE(c.name);
        const int p = c.nv + c.intercept, n = c.n;
        Fitted<T> f(c);
        ASSERT_NE(f.info, nullptr);
        T *tests = nullptr, *vif = nullptr, *residual = nullptr;
        std::vector<T> cov(p * (p + 1)), aov(15), rows(13 * n);
        summary<T>(f.info, ZORVS_COEF_T_TESTS, &tests, ZORVS_COEF_T_TESTS_COL_DIM, 5, ZORVS_COEF_VIF, &vif,
                   ZORVS_COEF_COVARIANCES_USER, cov.data(), ZORVS_COVB_COL_DIM, p + 1, ZORVS_ANOVA_TABLE_USER,
                   aov.data(), 0);
        ASSERT_TRUE(tests && vif);
        T *out = rows.data(), *pred = predict<T>(
            f.info, n, f.x.data(), ZORVS_Y, f.y.data(), ZORVS_WEIGHTS, f.w.data(), ZORVS_CONFIDENCE, r.level,
            ZORVS_RETURN_USER, out, ZORVS_RESIDUAL, &residual, ZORVS_LEVERAGE_USER, out + 2 * n,
            ZORVS_STANDARDIZED_RESIDUAL_USER, out + 3 * n, ZORVS_DELETED_RESIDUAL_USER, out + 4 * n, ZORVS_COOKSD_USER,
            out + 5 * n, ZORVS_DFFITS_USER, out + 6 * n, ZORVS_CI_POP_MEAN_USER, out + 7 * n, out + 8 * n,
            ZORVS_CI_NEW_SAMPLE_USER, out + 9 * n, out + 10 * n, ZORVS_SCHEFFE_CI_USER, out + 11 * n, out + 12 * n, 0);
        ASSERT_TRUE(pred == out && residual);
        EXPECT_EQ(zorvs_error_type(), 0);
        std::copy(residual, residual + n, out + n);
        for (int col = 0; col < 4; ++col) compare(col, p, tests + col, 5, r.tests + col, 4, col == 3 ? 0 : 1e-8);
        compare(4, p, vif, 1, r.vif, 1, 0);
        for (int i = 0; i < p; ++i) compare(5, p, &cov[i * (p + 1)], 1, c.cov + i * p, 1, 1e-8);
        compare(6, 15, aov.data(), 1, c.aov, 1, 0);
        for (int col = 0; col < 13; ++col) compare(7 + col, n, out + col * n, 1, r.rows + col, 13, 1e-2);
        for (T *a : {tests, vif, residual}) std::free(a);
    }
    for (int o = 0; o < 20; ++o) std::printf("[measure] %s %s: largest %.3g\n", single ? "f" : "d", names[o], worst[o]);
}

// Every message of both routines and of the t-test worker, with its
// parameters.  A corrupt record is a copy of a sound one with one field
// changed.  The warnings of prediction, from one row with a response: far
// out (leverage above 1, clamped), far off at the centre (deleted variance
// negative, set to 0.0, so the deleted residual is infinite), off the plane
// x2 = 2 x1 of a fit that dropped x2; the first two withdrawn when the
// statistics they concern are not asked for.
TYPED_TEST(RegressionSummary, Messages) {
    using T = TypeParam;
    Quiet q;
    Fitted<T> f(lm_cases[0]);  // cars: 50 rows, 1 regressor
    std::vector<double> x2;
    for (int i = 0; i < 50; ++i) x2.insert(x2.end(), {lm_cases[0].x[i], 2 * lm_cases[0].x[i]});
    Fitted<T> dropped(50, 2, x2.data(), lm_cases[0].y, nullptr, true);
    T far[1] = {1e4}, centre[1] = {15}, off[2] = {10, 5};
    auto first = [](Info<T> *in, T *row, T y, int keyword) {
        T out = 0, *pred = predict<T>(in, 1, row, ZORVS_Y, &y, keyword, &out, 0);
        if (pred != &out) std::free(pred);
        return out;
    };
    Info<T> *info = f.info, no_intercept_flag = *info, no_parameters = *info, negative_df = *info;
    no_intercept_flag.intercept = 2;
    no_parameters.n_parameters = 0, no_parameters.intercept = 0;
    negative_df.df_error = -1;
    T *x = f.x.data(), buf[64], w[2] = {1, -1}, *none = nullptr, b[2] = {1, 1}, se[2] = {1, -1};
    auto kept = [](T *p) { return std::free(p), p != nullptr; };
    expect_rows({
        {ZORVS_DO(summary<T>(static_cast<Info<T> *>(nullptr), 0)), any, 5, 150, "l1=regression_info"},
        {ZORVS_DO(summary<T>(info, ZORVS_COEF_VIF_USER, none, 0)), any, 5, 104, "l1=coef_vif l2=ZORVS_COEF_VIF_USER"},
        {ZORVS_DO(summary<T>(info, ZORVS_COEF_T_TESTS_USER, buf, ZORVS_COEF_T_TESTS_COL_DIM, 3, 0)), any, 5, 603,
         "i1=3 i2=4 l1=coef_t_tests_col_dim"},
        {ZORVS_DO(summary<T>(info, ZORVS_COEF_COVARIANCES_USER, buf, ZORVS_COVB_COL_DIM, 1, 0)), any, 5, 601,
         "i1=2 i2=1 l2=covb_col_dim"},
        {ZORVS_DO(summary<T>(&no_intercept_flag, 0)), any, 5, 602, "i1=2 l1=regression_info->intercept"},
        {ZORVS_DO(summary<T>(&no_parameters, 0)), any, 5, 603, "i1=0 l1=regression_info->n_parameters"},
        {ZORVS_DO(summary<T>(&negative_df, 0)), any, 5, 11061, "r1=-1 l1=regression_info->df_error"},
        {ZORVS_DO(summary<T>(info, 99999, 0)), any, 5, 11001, "i1=99999 i2=2"},
        {ZORVS_DO(ZORVS_TWIN(rcoef, drcoef)(2, b, se, T(-1), T(1), buf, 4)), any, 5, 20423, "r1=-1"},
        {ZORVS_DO(ZORVS_TWIN(rcoef, drcoef)(2, b, se, T(3), T(1), buf, 4)), any, 5, 20424, "i1=1 r1=-1"},
        {ZORVS_CALL(kept(predict<T>(static_cast<Info<T> *>(nullptr), 1, x, 0))), 0, 5, 150, "l1=regression_info"},
        {ZORVS_CALL(kept(predict<T>(info, 0, x, 0))), 0, 5, 603, "i1=0 i2=1 l1=n_predict"},
        {ZORVS_CALL(kept(predict<T>(info, 1, x, ZORVS_CONFIDENCE, 100.0, 0))), 0, 5, 20403, "r1=100 l1=confidence"},
        {ZORVS_CALL(kept(predict<T>(info, 1, x, ZORVS_CONFIDENCE, 25.0, 0))), 1, 6, 20404, "r1=25"},
        {ZORVS_CALL(kept(predict<T>(info, 1, x, ZORVS_CONFIDENCE, 0.0, 0))), 1, 0, 0},
        {ZORVS_CALL(kept(predict<T>(info, 1, x, ZORVS_CONFIDENCE_ADR, none, 0))), 0, 5, 150,
         "l1=ZORVS_CONFIDENCE_ADR"},
        {ZORVS_CALL(kept(predict<T>(info, 1, x, ZORVS_X_COL_DIM, 0, 0))), 0, 5, 600,
         "i1=0 i2=1 l1=x_col_dim l2=regression_info->n_independent"},
        {ZORVS_CALL(kept(predict<T>(&no_intercept_flag, 1, x, 0))), 0, 5, 20300, "i1=2"},
        {ZORVS_CALL(kept(predict<T>(&no_parameters, 1, x, 0))), 0, 5, 20301, "i1=0"},
        {ZORVS_CALL(kept(predict<T>(info, 1, x, ZORVS_COOKSD_USER, buf, 0))), 0, 5, 20220, "l1=ZORVS_COOKSD_USER"},
        {ZORVS_CALL(kept(predict<T>(info, 1, x, ZORVS_DFFITS, &none, 0))), 0, 5, 20220, "l1=ZORVS_DFFITS"},
        {ZORVS_CALL(kept(predict<T>(info, 1, none, 0))), 0, 5, 6002, "l1=x"},
        {ZORVS_CALL(kept(predict<T>(info, 1, x, ZORVS_Y, none, 0))), 0, 5, 6002, "l1=y"},
        {ZORVS_CALL(kept(predict<T>(info, 2, x, ZORVS_WEIGHTS, w, 0))), 0, 5, 11057, "i1=1 r1=-1"},
        {ZORVS_CALL(kept(predict<T>(info, 1, x, ZORVS_SCHEFFE_CI_USER, buf, none, 0))), 0, 5, 104,
         "l1=scheffe_ci l2=ZORVS_SCHEFFE_CI_USER"},
        {ZORVS_CALL(kept(predict<T>(info, 1, x, ZORVS_RETURN_USER, none, 0))), 0, 5, 104, "l2=ZORVS_RETURN_USER"},
        {ZORVS_CALL(kept(predict<T>(info, 1, x, 99999, 0))), 0, 5, 11001, "i1=99999 i2=4"},
        {ZORVS_CALL(first(info, far, 0, ZORVS_LEVERAGE_USER)), 1, 3, 20051},
        {ZORVS_CALL(first(info, far, 0, ZORVS_RETURN_USER)), any, 0, 0},
        {ZORVS_CALL(first(info, centre, T(1e5), ZORVS_DELETED_RESIDUAL_USER)), INFINITY, 3, 20052},
        {ZORVS_CALL(first(info, centre, T(1e5), ZORVS_COOKSD_USER)), any, 0, 0},
        {ZORVS_CALL(first(dropped.info, off, 0, ZORVS_LEVERAGE_USER)), any, 3, 20050},
    });
}

// After a terminal error the caller's arrays are as they were and no
// pointer output is written: a negative weight in the last row, and a
// summary whose covariance leading dimension is too small.
TYPED_TEST(RegressionSummary, NothingWrittenAfterTerminalError) {
    using T = TypeParam;
    Quiet q;
    Fitted<T> f(lm_cases[0]);
    std::vector<T> w(3, T(1)), pred(3, T(7)), low(3, T(7)), high(3, T(7)), tests(8, T(7)), cov(4, T(7));
    w[2] = -1;
    T *residual = nullptr, *vif = nullptr;
    predict<T>(f.info, 3, f.x.data(), ZORVS_WEIGHTS, w.data(), ZORVS_Y, f.y.data(), ZORVS_RETURN_USER, pred.data(),
               ZORVS_CI_NEW_SAMPLE_USER, low.data(), high.data(), ZORVS_RESIDUAL, &residual, 0);
    summary<T>(f.info, ZORVS_COEF_T_TESTS_USER, tests.data(), ZORVS_COEF_VIF, &vif, ZORVS_COEF_COVARIANCES_USER,
               cov.data(), ZORVS_COVB_COL_DIM, 1, 0);
    EXPECT_EQ(residual, nullptr);
    EXPECT_EQ(vif, nullptr);
    for (const auto *v : {&pred, &low, &high, &tests, &cov})
        for (T e : *v) EXPECT_EQ(e, T(7));
}

// Cars' first rows, refitted: with as many rows as parameters (no degrees
// of freedom for error), one more (one degree), and with a regressor that
// is twice the first (a dropped column).
TYPED_TEST(RegressionSummary, DegenerateFits) {
    using T = TypeParam;
    Quiet q;
    const LmCase &c = lm_cases[0];
    T tests[12], vif[3], aov[15];
    {   // df 0: estimates stand, everything that needs s2 is NaN.
        Fitted<T> f(2, 1, c.x + 1, c.y + 1, nullptr, true);
        summary<T>(f.info, ZORVS_COEF_T_TESTS_USER, tests, ZORVS_ANOVA_TABLE_USER, aov, 0);
        EXPECT_TRUE(tests[0] == f.info->coefficients[0] && tests[4] == f.info->coefficients[1]);
        for (int k : {1, 2, 3, 5, 6, 7}) EXPECT_TRUE(std::isnan(tests[k])) << k;
        EXPECT_TRUE(std::isnan(aov[7]));
    }
    {   // df 1: standardized residuals are +-1, no deleted residual or DFFITS.
        Fitted<T> f(3, 1, c.x + 4, c.y + 4, nullptr, true);
        T stand[3], del[3], dffits[3];
        std::free(predict<T>(f.info, 3, f.x.data(), ZORVS_Y, f.y.data(), ZORVS_STANDARDIZED_RESIDUAL_USER, stand,
                             ZORVS_DELETED_RESIDUAL_USER, del, ZORVS_DFFITS_USER, dffits, 0));
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(std::fabs(stand[i]), 1, 1e-4) << i;
            EXPECT_TRUE(std::isnan(del[i]) && std::isnan(dffits[i])) << i;
        }
    }
    {   // A dropped column: factor infinite, estimate 0.0, t and p NaN.
        std::vector<double> x;
        for (int i = 0; i < c.n; ++i) x.insert(x.end(), {c.x[i], 2 * c.x[i]});
        Fitted<T> f(c.n, 2, x.data(), c.y, nullptr, true);
        summary<T>(f.info, ZORVS_COEF_T_TESTS_USER, tests, ZORVS_COEF_VIF_USER, vif, 0);
        EXPECT_TRUE(std::isinf(vif[2]));
        EXPECT_EQ(tests[8], T(0));
        EXPECT_TRUE(std::isnan(tests[10]) && std::isnan(tests[11]));
        EXPECT_NEAR(tests[6], summary_refs[0].tests[6], 1e-3 * std::fabs(tests[6]));  // t of x1 alone
    }
}

// A row of weight 0.0: a prediction, leverage 0.0, no pointwise limits, and
// Scheffe limits that ignore the weight.  A NaN regressor: NaN throughout.
TYPED_TEST(RegressionSummary, SpecialRows) {
    using T = TypeParam;
    Quiet q;
    Fitted<T> f(lm_cases[0]);
    const T nan = std::numeric_limits<T>::quiet_NaN();
    T x[2] = {15, nan}, w[2] = {0, 1}, y[2] = {40, 40}, lev[2], lo[2], hi[2], slo[2], shi[2], res[2];
    T *pred = predict<T>(f.info, 2, x, ZORVS_WEIGHTS, w, ZORVS_Y, y, ZORVS_LEVERAGE_USER, lev, ZORVS_CI_POP_MEAN_USER,
                         lo, hi, ZORVS_SCHEFFE_CI_USER, slo, shi, ZORVS_RESIDUAL_USER, res, 0);
    ASSERT_NE(pred, nullptr);
    EXPECT_EQ(zorvs_error_type(), 0);
    EXPECT_NEAR(pred[0], lm_cases[0].coef[0] + 15 * lm_cases[0].coef[1], 1e-4 * std::fabs(pred[0]));
    EXPECT_EQ(res[0], y[0] - pred[0]);
    EXPECT_EQ(lev[0], T(0));
    EXPECT_TRUE(std::isnan(lo[0]) && std::isnan(hi[0]));
    EXPECT_EQ(slo[0], pred[0]);
    for (T v : {pred[1], lev[1], lo[1], slo[1], res[1]}) EXPECT_TRUE(std::isnan(v));
    std::free(pred);
}

// Each allocation of the summary (t tests, factors, covariances, table,
// work) and of the prediction (result, leverage, work) failing in turn: its
// message, and no output at all.
TEST(RegressionSummary, AllocationFailures) {
    Quiet q;
    CodeLog codes;
    Fitted<double> f(lm_cases[0]);
    const struct {
        bool summary;
        int failing, code;
    } rows[] = {{true, 1, 202}, {true, 2, 201}, {true, 3, 202}, {true, 4, 201}, {true, 5, 200},
                {false, 1, 201}, {false, 2, 201}, {false, 3, 200}};
    for (const auto &r : rows) {
        double *out[5] = {};
        codes.clear();
        zorvs::allocation_failure_countdown = r.failing;
        if (r.summary)
            zorvs_d_regression_summary(f.info, ZORVS_COEF_T_TESTS, &out[0], ZORVS_COEF_VIF, &out[1],
                                       ZORVS_COEF_COVARIANCES, &out[2], ZORVS_ANOVA_TABLE, &out[3], 0);
        else
            out[4] = zorvs_d_regression_prediction(f.info, 2, f.x.data(), ZORVS_LEVERAGE, &out[0], 0);
        zorvs::allocation_failure_countdown = 0;
        EXPECT_TRUE(codes.has(5, r.code)) << r.summary << " " << r.failing;
        for (double *p : out) EXPECT_EQ(p, nullptr) << r.summary << " " << r.failing;
    }
}

TEST(RegressionSummaryDeathTest, NullRecordStops) {
    expect_stops({{[] { zorvs_d_regression_summary(nullptr, 0); }, 5, "zorvs_d_regression_summary"}});
}

}  // namespace
