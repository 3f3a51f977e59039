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
