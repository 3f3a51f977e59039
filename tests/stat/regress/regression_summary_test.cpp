// Tests of the regression summary and prediction: t tests, inflation
// factors, covariances, the analysis of variance table, predictions with
// their limits and the case statistics against R (make_regression_summary.R
// on the fits of make_regression_lm.R), and the edge cases and refusals.
#include "stat/regress/regress.h"
#include "stat/regress/twins.hpp"

namespace {

#include "data/stat/regress/regression_lm_ref.inc"
#include "data/stat/regress/regression_summary_ref.inc"

using namespace zorvs_test;

template <class T>
struct Fitted {
    std::vector<T> x, y, w, coef;
    T *aov = nullptr, *cov = nullptr;  // the covariances in rows of p + 1
    Info<T> *info = nullptr;
    // The fit of rows (n, nv, row-major x) by the library, its record, its
    // coefficients, table and covariances kept.
    Fitted(int n, int nv, const double *x0, const double *y0, const double *w0, bool intercept)
        : x(x0, x0 + n * nv), y(y0, y0 + n), w(n, T(1)) {
        if (w0) w.assign(w0, w0 + n);
        T *b = fit<T>(n, nv, x.data(), y.data(), ZORVS_WEIGHTS, w0 ? w.data() : nullptr, ZORVS_REGRESSION_INFO, &info,
                      ZORVS_ANOVA_TABLE, &aov, ZORVS_COEF_COVARIANCES, &cov, ZORVS_COV_COL_DIM, nv + intercept + 1,
                      intercept ? 0 : ZORVS_NO_INTERCEPT, 0);
        if (b) coef.assign(b, b + nv + intercept);
        std::free(b);
    }
    explicit Fitted(const LmCase &c) : Fitted(c.n, c.nv, c.x, c.y, c.w, c.intercept) {}
    ~Fitted() {
        for (void *p : {(void *)info, (void *)aov, (void *)cov}) std::free(p);
    }
};

ZORVS_TWIN_SUITE(RegressionSummary);

// Every data set against R: the fit's coefficients, table of 15 and
// covariances (pointer forms, the covariances in a wider row stride) to
// 1e-10 relative in double and 1e-4 in float (coefficients relative to the
// largest, covariances to the standard errors of the pair); the t-test table (pointer form, leading
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
                           "mean high", "new low", "new high", "scheffe low", "scheffe high", "fit coefficient",
                           "fit anova"};
    double worst[22] = {};
    // Output o: n values, got[i * gs], want[i * ws].
    auto compare = [&](int o, int n, const T *got, int gs, const double *want, int ws, double floor) {
        double big = 0;
        for (int i = 0; i < n; ++i) big = std::max(big, std::fabs(want[i * ws]));
        for (int i = 0; i < n; ++i) {
            const double g = got[i * gs], w = want[i * ws];
            const double e = std::isfinite(w) ? std::fabs(g - w) / std::max(std::fabs(w), floor * big)
                                              : !(g == w || (std::isnan(g) && std::isnan(w)));
            worst[o] = std::max(worst[o], e);
            const double bar = o >= 20 ? (single ? 1e-4 : 1e-10) : single ? 1e-2 : o == 3 ? 1e-8 : 1e-9;
            EXPECT_LE(e, bar) << names[o] << " " << i;
        }
    };
    for (std::size_t k = 0; k < std::size(lm_cases); ++k) {
        const LmCase &c = lm_cases[k];
        const SummaryRef &r = summary_refs[k];
        SCOPED_TRACE(c.name);
        const int p = c.nv + c.intercept, n = c.n;
        Fitted<T> f(c);
        ASSERT_TRUE(f.info && int(f.coef.size()) == p);
        compare(20, p, f.coef.data(), 1, c.coef, 1, single ? 1 : 0);
        compare(21, 15, f.aov, 1, c.aov, 1, 0);
        for (int k = 0; k < p * p; ++k)  // relative to the standard errors of the pair
            EXPECT_LE(std::fabs(f.cov[k / p * (p + 1) + k % p] - c.cov[k]),
                      (single ? 1e-4 : 1e-10) * std::sqrt(std::fabs(c.cov[k / p * (p + 1)] * c.cov[k % p * (p + 1)])))
                << "fit vcov " << k;
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
    for (int o = 0; o < 22; ++o) std::printf("[measure] %s %s: largest %.3g\n", single ? "f" : "d", names[o], worst[o]);
}

// Every message of both routines and of the t-test worker, with its
// parameters, and the degenerate fits and special rows, as rows.  A corrupt
// record is a copy of a sound one with one field changed.  A refusal writes
// nothing: not the caller's arrays, not the output addresses.  The warnings
// of prediction, from one row with a response: far out (leverage above 1,
// clamped), far off at the centre (deleted variance negative, set to 0.0,
// so the deleted residual is infinite), off the plane x2 = 2 x1 of a fit
// that dropped x2; the first two withdrawn when the statistics they concern
// are not asked for.  Cars' first rows refitted: as many rows as parameters
// (df 0: the estimates stand, all that needs s2 is NaN), one more (df 1:
// standardized residuals +-1, no deleted residual or DFFITS); the dropped
// column: factor infinite, estimate 0.0, t and p NaN.  A row of weight 0.0:
// a prediction, leverage 0.0, no pointwise limits, Scheffe limits that
// ignore the weight; a NaN regressor: NaN throughout.
TYPED_TEST(RegressionSummary, MessagesAndSpecialCases) {
    using T = TypeParam;
    Quiet q;
    const LmCase &c = lm_cases[0];  // cars: 50 rows, 1 regressor
    std::vector<double> x2;
    for (int i = 0; i < 50; ++i) x2.insert(x2.end(), {c.x[i], 2 * c.x[i]});
    Fitted<T> f(c), dropped(50, 2, x2.data(), c.y, nullptr, true), df0(2, 1, c.x + 1, c.y + 1, nullptr, true),
        df1(3, 1, c.x + 4, c.y + 4, nullptr, true);
    const T nan = std::numeric_limits<T>::quiet_NaN();
    T far[1] = {1e4}, centre[1] = {15}, off[2] = {10, 5}, rows[2] = {15, nan}, w0[2] = {0, 1}, y40[2] = {40, 40};
    auto first = [](Info<T> *in, T *row, T y, int keyword) {
        T out = 0, *pred = predict<T>(in, 1, row, ZORVS_Y, &y, keyword, &out, 0);
        if (pred != &out) std::free(pred);
        return out;
    };
    Info<T> *info = f.info, no_intercept_flag = *info, no_parameters = *info, negative_df = *info;
    no_intercept_flag.intercept = 2;
    no_parameters.n_parameters = 0, no_parameters.intercept = 0;
    negative_df.df_error = -1;
    T *x = f.x.data(), buf[64], w[3] = {1, 1, -1}, *none = nullptr, b[2] = {1, 1}, se[2] = {1, -1}, *pred = nullptr;
    std::vector<T> sevens(30, T(7));
    T *s = sevens.data(), t[12], vif[3], aov[15], st[3], del[3], dff[3], lev[2], lo[2], hi[2], slo[2], shi[2], res[2];
    auto all_nan = [](auto... v) { return (std::isnan(v) && ...); };
    // the summary of info; a prediction of the first row of x, kept or not
    auto sum = [&](Info<T> *in, auto... keys) { summary<T>(in, keys..., 0); };
    auto kept = [&](Info<T> *in, auto... keys) {
        T *p = predict<T>(in, 1, x, keys..., 0);
        return std::free(p), p != nullptr;
    };
    const int tt = ZORVS_COEF_T_TESTS_USER, conf = ZORVS_CONFIDENCE, lev_u = ZORVS_LEVERAGE_USER;
    expect_rows({
        {ZORVS_DO(sum(nullptr)), any, 5, 150, "l1=regression_info"},
        {ZORVS_DO(sum(info, ZORVS_COEF_VIF_USER, none)), any, 5, 104, "l1=coef_vif l2=ZORVS_COEF_VIF_USER"},
        {ZORVS_DO(sum(info, tt, buf, ZORVS_COEF_T_TESTS_COL_DIM, 3)), any, 5, 603, "i1=3 i2=4 l1=coef_t_tests_col_dim"},
        {ZORVS_DO(sum(info, tt, s, ZORVS_COEF_VIF, &none, ZORVS_COEF_COVARIANCES_USER, s + 8, ZORVS_COVB_COL_DIM, 1)), any,
         5, 601, "i1=2 i2=1 l2=covb_col_dim"},
        {ZORVS_DO(sum(&no_intercept_flag)), any, 5, 602, "i1=2 l1=regression_info->intercept"},
        {ZORVS_DO(sum(&no_parameters)), any, 5, 603, "i1=0 l1=regression_info->n_parameters"},
        {ZORVS_DO(sum(&negative_df)), any, 5, 11061, "r1=-1 l1=regression_info->df_error"},
        {ZORVS_DO(sum(info, 99999)), any, 5, 11001, "i1=99999 i2=2"},
        {ZORVS_DO(ZORVS_TWIN(rcoef, drcoef)(2, b, se, T(-1), T(1), buf, 4)), any, 5, 20423, "r1=-1"},
        {ZORVS_DO(ZORVS_TWIN(rcoef, drcoef)(2, b, se, T(3), T(1), buf, 4)), any, 5, 20424, "i1=1 r1=-1"},
        {ZORVS_CALL(kept(nullptr)), 0, 5, 150, "l1=regression_info"},
        {ZORVS_CALL(kept(info, ZORVS_CONFIDENCE, 100.0)), 0, 5, 20403, "r1=100 l1=confidence"},
        {ZORVS_CALL(kept(info, conf, 25.0)), 1, 6, 20404, "r1=25"},
        {ZORVS_CALL(kept(info, conf, 0.0)), 1, 0, 0},
        {ZORVS_CALL(kept(info, ZORVS_CONFIDENCE_ADR, none)), 0, 5, 150, "l1=ZORVS_CONFIDENCE_ADR"},
        {ZORVS_CALL(kept(info, ZORVS_X_COL_DIM, 0)), 0, 5, 600, "i1=0 i2=1 l1=x_col_dim l2=regression_info->n_independent"},
        {ZORVS_CALL(kept(&no_intercept_flag)), 0, 5, 20300, "i1=2"},
        {ZORVS_CALL(kept(&no_parameters)), 0, 5, 20301, "i1=0"},
        {ZORVS_CALL(kept(info, ZORVS_COOKSD_USER, buf)), 0, 5, 20220, "l1=ZORVS_COOKSD_USER"},
        {ZORVS_CALL(kept(info, ZORVS_DFFITS, &none)), 0, 5, 20220, "l1=ZORVS_DFFITS"},
        {ZORVS_CALL(kept(info, ZORVS_Y, none)), 0, 5, 6002, "l1=y"},
        {ZORVS_CALL(kept(info, ZORVS_SCHEFFE_CI_USER, buf, none)), 0, 5, 104, "l1=scheffe_ci l2=ZORVS_SCHEFFE_CI_USER"},
        {ZORVS_CALL(kept(info, ZORVS_RETURN_USER, none)), 0, 5, 104, "l2=ZORVS_RETURN_USER"},
        {ZORVS_CALL(kept(info, 99999)), 0, 5, 11001, "i1=99999 i2=4"},
        {ZORVS_CALL(predict<T>(info, 0, x, 0) != nullptr), 0, 5, 603, "i1=0 i2=1 l1=n_predict"},
        {ZORVS_CALL(predict<T>(info, 1, none, 0) != nullptr), 0, 5, 6002, "l1=x"},
        {ZORVS_CALL((pred = predict<T>(info, 3, x, ZORVS_WEIGHTS, w, ZORVS_Y, f.y.data(), ZORVS_RETURN_USER, s + 12,
                                       ZORVS_CI_NEW_SAMPLE_USER, s + 15, s + 18, ZORVS_RESIDUAL, &none, 0)) == s + 12 ||
                    !pred), 1, 5, 11057, "i1=2 r1=-1"},
        {ZORVS_CALL(none == nullptr && sevens == std::vector<T>(30, T(7))), 1, -1},
        {ZORVS_CALL(first(info, far, 0, lev_u)), 1, 3, 20051},
        {ZORVS_CALL(first(info, far, 0, ZORVS_RETURN_USER)), any, 0, 0},
        {ZORVS_CALL(first(info, centre, T(1e5), ZORVS_DELETED_RESIDUAL_USER)), INFINITY, 3, 20052},
        {ZORVS_CALL(first(info, centre, T(1e5), ZORVS_COOKSD_USER)), any, 0, 0},
        {ZORVS_CALL(first(dropped.info, off, 0, lev_u)), any, 3, 20050},
        {ZORVS_DO(sum(df0.info, tt, t, ZORVS_ANOVA_TABLE_USER, aov)), any, -1},
        {ZORVS_CALL(t[0] == df0.info->coefficients[0] && t[4] == df0.info->coefficients[1] &&
                    all_nan(t[1], t[2], t[3], t[5], t[6], t[7], aov[7])), 1, -1},
        {ZORVS_DO(std::free(predict<T>(df1.info, 3, df1.x.data(), ZORVS_Y, df1.y.data(), ZORVS_STANDARDIZED_RESIDUAL_USER,
                                       st, ZORVS_DELETED_RESIDUAL_USER, del, ZORVS_DFFITS_USER, dff, 0))), any, -1},
        {ZORVS_CALL(std::fabs(st[0]) + std::fabs(st[1]) + std::fabs(st[2])), 3, -1, 0, "", 3e-4},
        {ZORVS_CALL(all_nan(del[0], del[1], del[2], dff[0], dff[1], dff[2])), 1, -1},
        {ZORVS_DO(sum(dropped.info, tt, t, ZORVS_COEF_VIF_USER, vif)), any, -1},
        {ZORVS_CALL(std::isinf(vif[2]) && t[8] == 0 && all_nan(t[10], t[11])), 1, -1},
        {ZORVS_CALL(t[6]), summary_refs[0].tests[6], -1, 0, "", 1e-3 * std::fabs(summary_refs[0].tests[6])},
        {ZORVS_CALL((pred = predict<T>(info, 2, rows, ZORVS_WEIGHTS, w0, ZORVS_Y, y40, lev_u, lev, ZORVS_CI_POP_MEAN_USER,
                                       lo, hi, ZORVS_SCHEFFE_CI_USER, slo, shi, ZORVS_RESIDUAL_USER, res, 0))[0]),
         c.coef[0] + 15 * c.coef[1], 0, 0, "", 1e-4 * std::fabs(c.coef[0] + 15 * c.coef[1])},
        {ZORVS_CALL(res[0] == y40[0] - pred[0] && lev[0] == 0 && all_nan(lo[0], hi[0]) && slo[0] == pred[0]), 1, -1},
        {ZORVS_CALL(all_nan(pred[1], lev[1], lo[1], slo[1], res[1])), 1, -1},
        {ZORVS_DO(std::free(pred)), any, -1},
    });
}

}  // namespace
