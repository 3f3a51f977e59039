// Tests of the linear regression fit: coefficients, analysis of variance
// table and covariances against R's lm on data sets shipped with R
// (make_regression_lm.R), with and without intercept and with weights; the
// hard problems Longley and a Wampler-style quintic against exact rational
// least squares (make_regression_exact.py); frequencies against replicated
// rows; the rank test; the record; every refusal and its outcome.
#include "support/tables.hpp"

#include "stat/regress/twins.hpp"

namespace {

using zorvs_test::LmCase;
#include "data/stat/regress/regression_exact_ref.inc"
#include "data/stat/regress/regression_lm_ref.inc"

using zorvs_test::CodeLog;
using zorvs_test::Quiet;
using zorvs_test::any;
using zorvs_test::NaN;

using zorvs_test::fit;
using zorvs_test::Info;

// Significant digits of got against want (the log relative error, capped).
double digits(double got, double want) {
    if (got == want) return 17;
    if (want == 0) return -std::log10(std::fabs(got));
    return std::min(17.0, -std::log10(std::fabs(got - want) / std::fabs(want)));
}
double relative(double got, double want) {
    if (std::isnan(want)) return std::isnan(got) ? 0 : 1;
    return want == 0 ? std::fabs(got) : std::fabs(got - want) / std::fabs(want);
}

ZORVS_TWIN_SUITE(RegressionTwin);

// Every case of lm: coefficients, the 15 entries of the table and the
// covariances.  Double to 1e-10 relative, the p-value of F too, however
// small; float to the digits its data and sums carry.
TYPED_TEST(RegressionTwin, AgreesWithLm) {
    using T = TypeParam;
    const bool single = std::is_same_v<T, float>;
    for (const LmCase &c : lm_cases) {
        const int p = c.nv + c.intercept;
        const double tol = single ? 1e-4 : 1e-10;
        std::vector<T> x(c.x, c.x + c.n * c.nv), y(c.y, c.y + c.n), w(c.w, c.w + c.n);
        std::vector<T> aov(15), cov(p * p);
        T *coef = c.intercept ? fit<T>(c.n, c.nv, x.data(), y.data(), ZORVS_WEIGHTS, c.weighted ? w.data() : nullptr,
                                       ZORVS_ANOVA_TABLE_USER, aov.data(), ZORVS_COEF_COVARIANCES_USER, cov.data(), 0)
                              : fit<T>(c.n, c.nv, x.data(), y.data(), ZORVS_WEIGHTS, c.weighted ? w.data() : nullptr,
                                       ZORVS_ANOVA_TABLE_USER, aov.data(), ZORVS_COEF_COVARIANCES_USER, cov.data(),
                                       ZORVS_NO_INTERCEPT, 0);
        ASSERT_NE(coef, nullptr) << c.name;
        double scale = 0;
        for (int j = 0; j < p; ++j) scale = std::max(scale, std::fabs(c.coef[j]));
        for (int j = 0; j < p; ++j)
            EXPECT_LE(std::fabs(coef[j] - c.coef[j]), tol * (single ? scale : std::fabs(c.coef[j])))
                << c.name << " coefficient " << j;
        for (int k = 0; k < 15; ++k) {
            const double err = relative(aov[k], c.aov[k]);
            EXPECT_LE(err, tol) << c.name << " table entry " << k << ": " << aov[k];
        }
        for (int i = 0; i < p; ++i)
            for (int j = 0; j < p; ++j) {
                const double want = c.cov[i * p + j];
                const double bound = tol * std::sqrt(std::fabs(c.cov[i * p + i] * c.cov[j * p + j]));
                EXPECT_LE(std::fabs(cov[i * p + j] - want), bound)
                    << c.name << " covariance " << i << "," << j;
            }
        std::free(coef);
    }
}

// Hard problems against exact rational least squares on the same numbers:
// Longley to 9 digits at least, the quintic to 8; in single precision
// Longley's data rounded to float (the exact solution of those floats is
// the reference) and the noisy quintic (exact in float) to 3.
struct Hard {
    const char *name;
    bool single;
    int n, nv;
    const double *x, *y, *coef;
    double min_digits;
};
const Hard hard[] = {
    {"Longley", false, 16, 6, longley_x, longley_y, longley_d_coef, 9},
    {"quintic, exact fit", false, 21, 5, wampler_x, wampler_y1, wampler_y1_coef, 8},
    {"quintic, noisy", false, 21, 5, wampler_x, wampler_y4, wampler_y4_coef, 8},
    {"Longley, float", true, 16, 6, longley_x, longley_y, longley_f_coef, 3},
    {"quintic, noisy, float", true, 21, 5, wampler_x, wampler_y4, wampler_y4_coef, 3},
};

template <class T>
double fewest_digits(const Hard &h) {
    std::vector<T> x(h.x, h.x + h.n * h.nv), y(h.y, h.y + h.n);
    T *coef = fit<T>(h.n, h.nv, x.data(), y.data(), 0);
    double worst = 17;
    for (int j = 0; coef && j <= h.nv; ++j) worst = std::min(worst, digits(coef[j], h.coef[j]));
    std::free(coef);
    return coef ? worst : 0;
}

TEST(Regression, HardProblemsAgainstExactLeastSquares) {
    for (const Hard &h : hard) {
        const double worst = h.single ? fewest_digits<float>(h) : fewest_digits<double>(h);
        EXPECT_GE(worst, h.min_digits) << h.name;
        RecordProperty(h.name, std::to_string(worst));
    }
}

// A column that is an exact multiple of another: rank one lower, its
// coefficient 0.0, a warning, and the other coefficients those of the fit
// without it.
TYPED_TEST(RegressionTwin, DependentColumnIsDropped) {
    using T = TypeParam;
    Quiet q;
    CodeLog codes;
    // Longley with a seventh column, four times GNP, for double; trees with
    // four times girth for float (whose Longley keeps too few digits).
    const bool single = std::is_same_v<T, float>;
    const LmCase &trees = lm_cases[1];
    const int n = single ? trees.n : 16, nv0 = single ? 2 : 6, nv = nv0 + 1;
    const double *x0 = single ? trees.x : longley_x, *y0 = single ? trees.y : longley_y;
    const double *want = single ? trees.coef : longley_d_coef;
    std::vector<T> x;
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < nv0; ++j) x.push_back(static_cast<T>(x0[i * nv0 + j]));
        x.push_back(static_cast<T>(4 * x0[i * nv0 + 1]));
    }
    std::vector<T> y(y0, y0 + n);
    int rank = -1;
    Info<T> *info = nullptr;
    T *coef = fit<T>(n, nv, x.data(), y.data(), ZORVS_RANK, &rank, ZORVS_REGRESSION_INFO, &info, 0);
    ASSERT_NE(coef, nullptr);
    EXPECT_TRUE(codes.has(3, 11047));
    EXPECT_EQ(zorvs_error_param.i[1], nv);
    EXPECT_EQ(rank, nv);
    EXPECT_EQ(coef[nv], T(0));
    for (int j = 0; j <= nv0; ++j) EXPECT_GE(digits(coef[j], want[j]), single ? 3 : 9) << j;
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->rank, nv);
    for (int i = 0; i <= nv; ++i) EXPECT_EQ(info->r_matrix[nv * (nv + 1) + i], T(0)) << i;  // dropped column
    std::free(info);
    std::free(coef);
}

// Frequencies give the fit of the replicated rows; a zero frequency drops
// the row; a weight of 0.0 keeps the row in the degrees of freedom only.
TYPED_TEST(RegressionTwin, FrequenciesAndWeights) {
    using T = TypeParam;
    const double tol = std::is_same_v<T, float> ? 2e-5 : 1e-12;
    const LmCase &c = lm_cases[1];  // trees
    std::vector<T> x(c.x, c.x + c.n * c.nv), y(c.y, c.y + c.n), f(c.n), xr, yr, w(c.n, T(1)), f2(c.n, T(1));
    for (int i = 0; i < c.n; ++i) {
        f[i] = static_cast<T>(i % 3);
        for (int k = 0; k < i % 3; ++k) {
            xr.insert(xr.end(), x.begin() + i * c.nv, x.begin() + (i + 1) * c.nv);
            yr.push_back(y[i]);
        }
    }
    // weights: the coefficients of the row of weight 2 given twice; a row of
    // weight 0.0 still counts in the degrees of freedom
    w[0] = f2[0] = 2;
    w[5] = f2[5] = 0;
    struct Fit {
        std::vector<T> b, aov, mean;
    };
    auto run = [&](std::vector<T> &x, std::vector<T> &y, int keyword, T *by) {
        Fit r{{}, std::vector<T>(15), std::vector<T>(2)};
        T *b = fit<T>(int(y.size()), c.nv, x.data(), y.data(), keyword, by, ZORVS_ANOVA_TABLE_USER, r.aov.data(),
                      ZORVS_X_MEAN_USER, r.mean.data(), 0);
        if (b) r.b.assign(b, b + 3);
        std::free(b);
        return r;
    };
    const Fit by_f = run(x, y, ZORVS_FREQUENCIES, f.data()), rep = run(xr, yr, ZORVS_FREQUENCIES, nullptr),
              by_w = run(x, y, ZORVS_WEIGHTS, w.data()), by_f2 = run(x, y, ZORVS_FREQUENCIES, f2.data());
    ASSERT_TRUE(by_f.b.size() == 3 && rep.b.size() == 3 && by_w.b.size() == 3 && by_f2.b.size() == 3);
    for (int j = 0; j < 3; ++j) {
        EXPECT_NEAR(by_f.b[j], rep.b[j], tol * (1 + std::fabs(rep.b[j]))) << j;
        EXPECT_NEAR(by_w.b[j], by_f2.b[j], tol * (1 + std::fabs(by_f2.b[j]))) << j;
    }
    for (int k = 0; k < 15; ++k) EXPECT_LE(relative(by_f.aov[k], rep.aov[k]), 10 * tol) << k;
    for (int j = 0; j < 2; ++j) EXPECT_NEAR(by_f.mean[j], rep.mean[j], tol * std::fabs(rep.mean[j])) << j;
    EXPECT_EQ(by_w.aov[1], T(c.aov[1]));
    // the weighted mean: sum(w x) / sum(w)
    double sw = 0, swx = 0;
    for (int i = 0; i < c.n; ++i) sw += w[i], swx += w[i] * c.x[i * c.nv];
    EXPECT_NEAR(by_w.mean[0], swx / sw, tol * std::fabs(swx / sw));
}

// The record: counts, extremes (cars' speeds run from 4 to 25), means, and
// R with R'R = X'X, on cars with one speed missing.
TEST(Regression, RecordHoldsTheFactorAndTheSummaries) {
    const LmCase &c = lm_cases[0];  // cars
    std::vector<double> x(c.x, c.x + c.n), y(c.y, c.y + c.n);
    x[3] = NAN;
    double s = 0, s2 = 0, sy = 0;
    for (int i = 0; i < c.n; ++i)
        if (i != 3) s += x[i], s2 += x[i] * x[i], sy += y[i];
    zorvs_d_regression_info *info = nullptr;
    double *coef = zorvs_d_regression(c.n, 1, x.data(), y.data(), ZORVS_REGRESSION_INFO, &info, 0);
    ASSERT_NE(info, nullptr);
    const double *r = info->r_matrix;  // column-major 2 x 2
    zorvs_test::expect_rows({
        {ZORVS_CALL(info->n_observations == 50 && info->rows_missing == 1 && info->n_dependent == 1 &&
                    info->n_parameters == 2 && info->intercept == 1 && info->rank == 2 && info->df_error == 47), 1, -1},
        {ZORVS_CALL(info->coefficients[1] == coef[1] && *info->x_min == 4 && *info->x_max == 25), 1, -1},
        {ZORVS_CALL(*info->x_mean), s / 49, -1, 0, "", 1e-13 * s / 49},
        {ZORVS_CALL(*info->y_mean), sy / 49, -1, 0, "", 1e-13 * sy / 49},
        {ZORVS_CALL(r[1] == 0 && r[0] > 0 && r[3] > 0 && info->r_scale[0] == 1.0), 1, -1},
        {ZORVS_CALL(r[0] * r[0]), 49, -1, 0, "", 1e-12 * 49},
        {ZORVS_CALL(r[0] * r[2]), s, -1, 0, "", 1e-12 * s},
        {ZORVS_CALL(r[2] * r[2] + r[3] * r[3]), s2, -1, 0, "", 1e-12 * s2},
    });
    std::free(info);
    std::free(coef);
}

// Edge cases of the fit, each with its outcome, as rows on the last fit b:
// an exact fit (error sum of squares 0, F infinite and p-value 0 when it is
// exactly 0); constant y (sum of squares exactly 0); a constant column with
// an intercept (dropped); as many rows as parameters, frequencies summing
// to less than the rank, and all rows missing (no degrees of freedom); a missing frequency (the row counted missing);
// residuals NaN where the row has a NaN.
TYPED_TEST(RegressionTwin, EdgeCases) {
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN(), inf = std::numeric_limits<T>::infinity();
    T x[] = {1, 2, 3, 4, 5}, y[] = {3, 5, 7, 9, 11}, yc[] = {0.3f, 0.3f, 0.3f, 0.3f, 0.3f};
    T xk[] = {1, 7, 2, 7, 3, 7, 4, 7, 5, 7}, y2[] = {1, 4}, xn[] = {nan, nan, nan}, xr[] = {1, 2, nan, 4, 5};
    T fn[] = {1, nan, 1, 2, 1}, half[] = {0.5, 0.5};
    T aov[15], res[5], *b = nullptr;
    Info<T> *info = nullptr;
    int rank = 0;
    CodeLog log;
    auto fitted = [&](T *r) { return std::free(b), b = r, r ? double(r[0]) : NaN; };
    zorvs_test::expect_rows({
        {ZORVS_CALL(fitted(fit<T>(5, 1, x, y, ZORVS_ANOVA_TABLE_USER, aov, 0))), 1, 0, 0, "", 1e-5},
        {ZORVS_CALL(b[1]), 2, -1, 0, "", 1e-5},
        {ZORVS_CALL(aov[4]), 0, -1, 0, "", 1e-8},
        {ZORVS_CALL(aov[4] != 0 || (aov[8] == inf && aov[9] == 0)), 1, -1},
        {ZORVS_CALL(fitted(fit<T>(5, 1, x, yc, ZORVS_ANOVA_TABLE_USER, aov, 0)) && aov[4] == 0 && b[1] == 0), 1},
        {ZORVS_CALL(fitted(fit<T>(5, 2, xk, y, ZORVS_RANK, &rank, 0)) && b[2] == 0 && rank == 2), 1, 3, 11047},
        {ZORVS_CALL(b[1]), 2, -1, 0, "", 1e-5},
        {ZORVS_CALL(fitted(fit<T>(2, 1, x, y2, 0))), -2, 6, 11049, "", 1e-5},
        // frequencies summing to less than the rank: df_error negative, the table's 0
        {ZORVS_CALL((fitted(fit<T>(2, 1, x, y2, ZORVS_FREQUENCIES, half, ZORVS_ANOVA_TABLE_USER, aov, 0)), aov[1])), 0,
         6, 11049},
        {ZORVS_CALL(b[1]), 3, -1, 0, "", 1e-5},
        {ZORVS_CALL((log.clear(), fitted(fit<T>(3, 1, xn, y, ZORVS_REGRESSION_INFO, &info, 0)), log.has(6, 11049))), 1, -1},
        {ZORVS_CALL(info->rows_missing == 3 && info->df_error == 0 && std::isnan(*info->x_min)), 1, -1},
        {ZORVS_DO((std::free(info), info = nullptr)), any, -1},
        // a missing frequency: the row counted missing
        {ZORVS_CALL((fitted(fit<T>(5, 1, x, y, ZORVS_FREQUENCIES, fn, ZORVS_REGRESSION_INFO, &info, 0)),
                     info->rows_missing)), 1, 0, 0},
        {ZORVS_DO(std::free(info)), any, -1},
        {ZORVS_CALL(fitted(fit<T>(5, 1, xr, y, ZORVS_RESIDUAL_USER, res, 0)) && std::isnan(res[2])), 1},
        {ZORVS_CALL(std::fabs(res[0]) + std::fabs(res[1]) + std::fabs(res[3]) + std::fabs(res[4])), 0, -1, 0, "", 4e-5},
        {ZORVS_CALL(fitted(nullptr)), NaN, -1},
    });
}

// Refusals: the message, a null result, nothing written to the caller's
// pointers, and x as it was; a column of zeros is dropped with a warning.
// Then extreme weights and frequencies: a subnormal weight gives the fit
// without its row, a huge one the line through its point; 10^8 degrees of
// freedom for error by frequencies give the exact F ratio and its upper
// tail (make_regression_exact.py), whose condition in F is about 0.6.
TEST(Regression, BadInputIsRefusedAndExtremeWeightsServed) {
    double x[] = {1, 2, 3, 4, 5, 6}, y[] = {1, 3, 2, 5, 4, 6}, negative[] = {1, 1, -1, 1, 1, 1}, zeros[6] = {};
    double sentinel = 0, *table = &sentinel, *b = nullptr, *r = nullptr, ye[] = {2, 3, 7, 8, 9};
    double we[] = {4e-320, 1, 1, 1, 1}, lx[4], ly[4], lf[4], *aov = nullptr;
    for (int i = 0; i < 4; ++i) lx[i] = large_df_rows[3 * i], ly[i] = large_df_rows[3 * i + 1], lf[i] = large_df_rows[3 * i + 2];
    zorvs_d_regression_info *info = nullptr;
    CodeLog log;
    auto refused = [&](double *r) { return r == nullptr && table == &sentinel && !info && x[0] == 1 && x[5] == 6; };
    zorvs_test::expect_rows({
        {ZORVS_CALL(refused(zorvs_d_regression(6, 1, x, y, ZORVS_FREQUENCIES, negative, ZORVS_ANOVA_TABLE, &table,
                                               ZORVS_REGRESSION_INFO, &info, 0))), 1, 4, 11054, "i2=3"},
        {ZORVS_CALL(refused(zorvs_d_regression(6, 1, x, y, ZORVS_WEIGHTS, negative, ZORVS_ANOVA_TABLE, &table, 0))), 1, 4,
         11056},
        {ZORVS_CALL(refused(zorvs_d_regression(0, 1, x, y, 0))), 1, 5, 603},
        {ZORVS_CALL(refused(zorvs_d_regression(6, 0, x, y, 0))), 1, 5, 603},
        {ZORVS_CALL(refused(zorvs_d_regression(6, 1, nullptr, y, 0))), 1, 5, 6002},
        {ZORVS_CALL(refused(zorvs_d_regression(6, 1, x, nullptr, 0))), 1, 5, 6002},
        {ZORVS_CALL(refused(zorvs_d_regression(3, 2, x, y, ZORVS_X_COL_DIM, 1, 0))), 1, 5, 1024},
        {ZORVS_CALL(refused(zorvs_d_regression(6, 1, x, y, ZORVS_COV_COL_DIM, 3, 0))), 1, 5, 11038},
        {ZORVS_CALL(refused(zorvs_d_regression(6, 1, x, y, ZORVS_TOLERANCE, 1.5, 0))), 1, 5, 11050},
        {ZORVS_CALL(refused(zorvs_d_regression(6, 1, x, y, ZORVS_ANOVA_TABLE_USER, nullptr, 0))), 1, 5, 104},
        {ZORVS_CALL(refused(zorvs_d_regression(6, 1, x, y, 77, 0))), 1, 5, 11001},
        {ZORVS_CALL((b = zorvs_d_regression(6, 1, zeros, y, 0))[0]), 3.5, 3, 11047, "", 1e-15},
        {ZORVS_CALL(b[1]), 0, -1},
        {ZORVS_DO(std::free(b)), any, -1},
        {ZORVS_CALL((b = zorvs_d_regression(5, 1, x, ye, ZORVS_WEIGHTS, we, 0), r = zorvs_d_regression(4, 1, x + 1, ye + 1, 0),
                     std::fabs(b[0] - r[0]) + std::fabs(b[1] - r[1]))), 0, 0, 0, "", 2e-13},
        {ZORVS_DO((std::free(b), std::free(r), we[0] = 1e300)), any, -1},
        {ZORVS_CALL((b = zorvs_d_regression(5, 1, x, ye, ZORVS_WEIGHTS, we, 0), b[0] + b[1])), 2, 0, 0, "", 1e-12},
        {ZORVS_DO((std::free(b), log.clear())), any, -1},
        {ZORVS_CALL((b = zorvs_d_regression(4, 1, lx, ly, ZORVS_FREQUENCIES, lf, ZORVS_ANOVA_TABLE, &aov, 0), aov[1])), 1e8},
        {ZORVS_CALL(relative(aov[8], large_df_F_p[0]) + relative(aov[9], large_df_F_p[1]) + log.has_code(9057)), 0, -1, 0,
         "", 2e-9},
        {ZORVS_DO((std::free(b), std::free(aov))), any, -1},
    });
}

// The pointer forms give the same numbers as the user forms, the covariance
// matrix in a wider row stride.
TEST(Regression, PointerFormsOfTheOutputs) {
    const LmCase &c = lm_cases[1];  // trees
    std::vector<double> x(c.x, c.x + c.n * c.nv), y(c.y, c.y + c.n);
    double *aov = nullptr, *cov = nullptr, *mean = nullptr, *res = nullptr;
    double coef[3];
    EXPECT_EQ(zorvs_d_regression(c.n, c.nv, x.data(), y.data(), ZORVS_RETURN_USER, coef, ZORVS_ANOVA_TABLE, &aov,
                                 ZORVS_COEF_COVARIANCES, &cov, ZORVS_COV_COL_DIM, 4, ZORVS_X_MEAN, &mean,
                                 ZORVS_RESIDUAL, &res, 0),
              coef);
    ASSERT_TRUE(aov && cov && mean && res);
    for (int k = 0; k < 15; ++k) EXPECT_LE(relative(aov[k], c.aov[k]), 1e-10) << k;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) EXPECT_LE(relative(cov[i * 4 + j], c.cov[i * 3 + j]), 1e-10) << i << j;
    double ss = 0;
    for (int i = 0; i < c.n; ++i) ss += res[i] * res[i];
    EXPECT_LE(relative(ss, c.aov[4]), 1e-12);
    EXPECT_LE(relative(mean[1], 76.0), 1e-15);  // mean height of the trees
    for (double *p : {aov, cov, mean, res}) std::free(p);
}

}  // namespace
