// Tests of the regression summary and prediction: t tests, inflation
// factors, covariances, the analysis of variance table, predictions with
// their limits and the case statistics against R (make_regression_summary.R
// on the fits of make_regression_lm.R), and the edge cases and refusals.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "stat/regress/regress.h"
#include "stat/regress/twins.hpp"
#include "support/capture.hpp"
#include "support/tables.hpp"
#include "zorvstat.h"

namespace {

struct LmCase {
    const char *name;
    int n, nv, intercept;
    bool weighted;
    const double *x, *y, *w, *coef, *aov, *cov;
};
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

// |got - want| relative to |want|, or to `floor` where |want| is smaller.
double rel(double got, double want, double floor) {
    if (std::isnan(want) || std::isinf(want)) return got == want || (std::isnan(got) && std::isnan(want)) ? 0 : 1;
    return std::fabs(got - want) / std::max(std::fabs(want), floor);
}

template <class T>
class RegressionSummary : public ::testing::Test {};
using Reals = ::testing::Types<float, double>;
TYPED_TEST_SUITE(RegressionSummary, Reals);

constexpr bool single(float) { return true; }
constexpr bool single(double) { return false; }

// Every data set: the t-test table (pointer form, leading dimension 5), the
// inflation factors, the covariances (leading dimension p + 1) and the
// table against R.  Errors relative to the value, with a floor of 1e-8 of
// the column's largest for values that cancel to near 0 (t near 0); float
// to the digits its data carry.  The p-values carry the digits of the t
// distribution function, some 8 in the far tail of a large df.
TYPED_TEST(RegressionSummary, AgreesWithR) {
    using T = TypeParam;
    const double tol = single(T()) ? 1e-2 : 1e-9, p_tol = 1e-8;
    const std::string twin = single(T()) ? " f" : " d";
    Worst t_err("t tests" + twin), v_err("vif" + twin), c_err("vcov" + twin), a_err("anova" + twin);
    for (std::size_t k = 0; k < std::size(lm_cases); ++k) {
        const LmCase &c = lm_cases[k];
        const SummaryRef &r = summary_refs[k];
        SCOPED_TRACE(c.name);
        const int p = c.nv + c.intercept;
        Fitted<T> f(c);
        ASSERT_NE(f.info, nullptr);
        T *tests = nullptr, *vif = nullptr;
        std::vector<T> cov(p * (p + 1)), aov(15);
        summary<T>(f.info, ZORVS_COEF_T_TESTS, &tests, ZORVS_COEF_T_TESTS_COL_DIM, 5, ZORVS_COEF_VIF, &vif,
                   ZORVS_COEF_COVARIANCES_USER, cov.data(), ZORVS_COVB_COL_DIM, p + 1, ZORVS_ANOVA_TABLE_USER,
                   aov.data(), 0);
        ASSERT_EQ(zorvs_error_type(), 0);
        ASSERT_TRUE(tests && vif);
        for (int col = 0; col < 4; ++col) {
            double big = 0;
            for (int j = 0; j < p; ++j) big = std::max(big, std::fabs(r.tests[4 * j + col]));
            for (int j = 0; j < p; ++j) {
                const double e = rel(tests[5 * j + col], r.tests[4 * j + col], col == 3 ? 0 : 1e-8 * big);
                t_err.add(e);
                EXPECT_LE(e, col == 3 ? std::max(tol, p_tol) : tol) << "coefficient " << j << " column " << col;
            }
        }
        for (int j = 0; j < p; ++j) {
            v_err.add(rel(vif[j], r.vif[j], 0));
            EXPECT_LE(rel(vif[j], r.vif[j], 0), tol) << "vif " << j;
            for (int i = 0; i < p; ++i) {
                const double floor = 1e-8 * std::sqrt(c.cov[i * p + i] * c.cov[j * p + j]);
                c_err.add(rel(cov[i * (p + 1) + j], c.cov[i * p + j], floor));
                EXPECT_LE(rel(cov[i * (p + 1) + j], c.cov[i * p + j], floor), tol) << i << "," << j;
            }
        }
        for (int e = 0; e < 15; ++e) {
            a_err.add(rel(aov[e], c.aov[e], 0));
            EXPECT_LE(rel(aov[e], c.aov[e], 0), tol) << "table entry " << e;
        }
        std::free(tests);
        std::free(vif);
    }
}

// Every training row: the prediction, its limits at the case's level, and
// the case statistics against predict, hatvalues, rstandard, rstudent,
// cooks.distance and dffits.  Weighted fits pass their weights.  Values
// below 1e-2 of their column's largest (a residual, a limit near 0) are
// measured relative to that.
TYPED_TEST(RegressionSummary, PredictionAgreesWithR) {
    using T = TypeParam;
    const double tol = single(T()) ? 1e-2 : 1e-9;
    const char *names[] = {"prediction", "residual", "leverage", "standardized", "deleted", "cooksd", "dffits",
                           "mean low", "mean high", "new low", "new high", "scheffe low", "scheffe high"};
    std::vector<double> worst(13);
    for (std::size_t k = 0; k < std::size(lm_cases); ++k) {
        const LmCase &c = lm_cases[k];
        SCOPED_TRACE(c.name);
        Fitted<T> f(c);
        ASSERT_NE(f.info, nullptr);
        std::vector<std::vector<T>> out(13, std::vector<T>(c.n));
        T *residual = nullptr;
        T *pred = predict<T>(f.info, c.n, f.x.data(), ZORVS_Y, f.y.data(), ZORVS_WEIGHTS, f.w.data(),
                             ZORVS_CONFIDENCE, summary_refs[k].level, ZORVS_RETURN_USER, out[0].data(),
                             ZORVS_RESIDUAL, &residual, ZORVS_LEVERAGE_USER, out[2].data(),
                             ZORVS_STANDARDIZED_RESIDUAL_USER, out[3].data(), ZORVS_DELETED_RESIDUAL_USER,
                             out[4].data(), ZORVS_COOKSD_USER, out[5].data(), ZORVS_DFFITS_USER, out[6].data(),
                             ZORVS_CI_POP_MEAN_USER, out[7].data(), out[8].data(), ZORVS_CI_NEW_SAMPLE_USER,
                             out[9].data(), out[10].data(), ZORVS_SCHEFFE_CI_USER, out[11].data(),
                             out[12].data(), 0);
        ASSERT_EQ(pred, out[0].data());
        ASSERT_NE(residual, nullptr);
        out[1].assign(residual, residual + c.n);
        std::free(residual);
        for (int col = 0; col < 13; ++col) {
            const double *want = summary_refs[k].rows + col;
            double big = 0;
            for (int i = 0; i < c.n; ++i) big = std::max(big, std::fabs(want[13 * i]));
            for (int i = 0; i < c.n; ++i) {
                const double e = rel(out[col][i], want[13 * i], 1e-2 * big);
                worst[col] = std::max(worst[col], e);
                EXPECT_LE(e, tol) << names[col] << " row " << i;
            }
        }
    }
    for (int col = 0; col < 13; ++col)
        std::printf("[measure] %s %s: largest %.3g\n", single(T()) ? "f" : "d", names[col], worst[col]);
}

}  // namespace

namespace {

// Every refusal of both routines and of the t-test worker, with its
// parameters.  A corrupt record is a copy of a sound one with one field
// changed.
TYPED_TEST(RegressionSummary, Refusals) {
    using T = TypeParam;
    Fitted<T> f(lm_cases[0]);  // cars: 50 rows, 1 regressor
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
        {ZORVS_CALL(kept(predict<T>(info, 1, x, 99999, 0))), 0, 5, 11001, "i1=99999 i2=4"},
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
        zorvs_e1mes(0, 0, " ");
        summary<T>(f.info, ZORVS_COEF_T_TESTS_USER, tests, ZORVS_ANOVA_TABLE_USER, aov, 0);
        EXPECT_EQ(zorvs_error_type(), 0);
        for (int j = 0; j < 2; ++j) {
            EXPECT_EQ(tests[4 * j], f.info->coefficients[j]);
            for (int k = 1; k < 4; ++k) EXPECT_TRUE(std::isnan(tests[4 * j + k])) << j << " " << k;
        }
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
    {   // A dropped column: factor infinite, estimate 0.0, t and p NaN; a row
        // off the plane x2 = 2 x1 lies outside the estimation space.
        std::vector<double> x;
        for (int i = 0; i < c.n; ++i) x.insert(x.end(), {c.x[i], 2 * c.x[i]});
        Fitted<T> f(c.n, 2, x.data(), c.y, nullptr, true);
        zorvs_e1mes(0, 0, " ");
        summary<T>(f.info, ZORVS_COEF_T_TESTS_USER, tests, ZORVS_COEF_VIF_USER, vif, 0);
        EXPECT_EQ(zorvs_error_type(), 0);
        EXPECT_TRUE(std::isinf(vif[2]));
        EXPECT_EQ(tests[8], T(0));
        EXPECT_TRUE(std::isnan(tests[10]) && std::isnan(tests[11]));
        EXPECT_NEAR(tests[6], summary_refs[0].tests[6], 1e-3 * std::fabs(tests[6]));  // t of x1 alone
        T row[2] = {10, 5}, lev;
        std::free(predict<T>(f.info, 1, row, ZORVS_LEVERAGE_USER, &lev, 0));
        EXPECT_EQ(zorvs_error_type(), 3);
        EXPECT_EQ(zorvs_error_code(), 20050);
    }
}

// Rows of weight 0.0, rows with a NaN, and new rows far from the data: the
// leverage clamp and the negative deleted variance, each with its warning
// when its use is asked for and withdrawn when not.
TYPED_TEST(RegressionSummary, SpecialRows) {
    using T = TypeParam;
    Quiet q;
    Fitted<T> f(lm_cases[0]);
    const T nan = std::numeric_limits<T>::quiet_NaN();
    // Weight 0.0: a prediction, leverage 0.0, no pointwise limits; the
    // Scheffe limits ignore the weight.  A NaN regressor: NaN throughout.
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

    // Far out with a response: leverage above 1 clamped to 1.0; a response
    // far off at the centre: the deleted variance negative, set to 0.0.
    struct Row {
        T x, y;
        int keyword, code;
    } rows[] = {{1e4, 0, ZORVS_LEVERAGE_USER, 20051}, {1e4, 0, ZORVS_CI_POP_MEAN_USER, 0},
                {15, 1e5, ZORVS_DELETED_RESIDUAL_USER, 20052}, {15, 1e5, ZORVS_COOKSD_USER, 0}};
    for (Row &r : rows) {
        T out[2] = {nan, nan};
        zorvs_e1mes(0, 0, " ");
        if (r.keyword == ZORVS_CI_POP_MEAN_USER)
            std::free(predict<T>(f.info, 1, &r.x, ZORVS_Y, &r.y, r.keyword, out, out + 1, 0));
        else
            std::free(predict<T>(f.info, 1, &r.x, ZORVS_Y, &r.y, r.keyword, out, 0));
        EXPECT_EQ(zorvs_error_code(), r.code) << r.x << " " << r.keyword;
        if (r.keyword == ZORVS_LEVERAGE_USER) {
            EXPECT_EQ(out[0], T(1));
        }
        if (r.keyword == ZORVS_DELETED_RESIDUAL_USER) {
            EXPECT_TRUE(std::isinf(out[0]));
        }
    }
}

TEST(RegressionSummaryDeathTest, NullRecordStops) {
    expect_stops({{[] { zorvs_d_regression_summary(nullptr, 0); }, 5, "zorvs_d_regression_summary"}});
}

}  // namespace
