// Tests of the linear regression fit (its outputs against R's lm are in
// regression_summary_test.cpp, beside the summary of the same fits): the
// hard problems Longley and a Wampler-style quintic against exact rational
// least squares (make_regression_exact.py); frequencies against replicated
// rows; the rank test; every refusal and its outcome.
#include "support/tables.hpp"

#include "stat/regress/twins.hpp"

namespace {

#include "data/stat/regress/regression_exact_ref.inc"
#include "data/stat/regress/regression_lm_ref.inc"

using namespace zorvs_test;

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

// Hard problems against exact rational least squares on the same numbers:
// Longley to 9 digits at least, the quintic to 8; in single precision
// Longley's data rounded to float (the exact solution of those floats is
// the reference) and the noisy quintic (exact in float) to 3.  With a
// column added that is four times the second (Longley's GNP; trees' height
// in float, whose Longley keeps too few digits), the rank is one lower, a
// warning says so, the added coefficient is 0.0 and the others are those of
// the fit without it.
struct Hard {
    const char *name;
    bool single, dependent;
    int n, nv;
    const double *x, *y, *coef;
    double min_digits;
};
const Hard hard[] = {
    {"Longley", false, false, 16, 6, longley_x, longley_y, longley_d_coef, 9},
    {"quintic, exact fit", false, false, 21, 5, wampler_x, wampler_y1, wampler_y1_coef, 8},
    {"quintic, noisy", false, false, 21, 5, wampler_x, wampler_y4, wampler_y4_coef, 8},
    {"Longley, float", true, false, 16, 6, longley_x, longley_y, longley_f_coef, 3},
    {"quintic, noisy, float", true, false, 21, 5, wampler_x, wampler_y4, wampler_y4_coef, 3},
    {"Longley, a dependent column", false, true, 16, 6, longley_x, longley_y, longley_d_coef, 9},
    {"trees, a dependent column, float", true, true, 31, 2, lm_cases[1].x, lm_cases[1].y, lm_cases[1].coef, 3},
};

template <class T>
double fewest_digits(const Hard &h) {
    std::vector<T> x;
    for (int i = 0; i < h.n; ++i) {
        x.insert(x.end(), h.x + i * h.nv, h.x + (i + 1) * h.nv);
        if (h.dependent) x.push_back(static_cast<T>(4 * h.x[i * h.nv + 1]));
    }
    std::vector<T> y(h.y, h.y + h.n);
    CodeLog log;
    int rank = -1, nv = h.nv + h.dependent;
    T *coef = fit<T>(h.n, nv, x.data(), y.data(), ZORVS_RANK, &rank, 0);
    EXPECT_TRUE(rank == h.nv + 1 && log.has(3, 11047) == h.dependent && (!h.dependent || (coef && coef[nv] == 0))) << h.name;
    double worst = 17;
    for (int j = 0; coef && j <= h.nv; ++j) worst = std::min(worst, digits(coef[j], h.coef[j]));
    std::free(coef);
    return coef ? worst : 0;
}

TEST(Regression, HardProblemsAgainstExactLeastSquares) {
    Quiet q;
    for (const Hard &h : hard) {
        const double worst = h.single ? fewest_digits<float>(h) : fewest_digits<double>(h);
        EXPECT_GE(worst, h.min_digits) << h.name;
        RecordProperty(h.name, std::to_string(worst));
    }
}

// Frequencies give the fit of the replicated rows; a zero frequency drops
// the row; a weight of 0.0 keeps the row in the degrees of freedom only, a
// weight of 2 counts the row's coefficients as a frequency of 2 does.
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
    w[0] = f2[0] = 2;
    w[5] = f2[5] = 0;
    // coefficients, then the table, then the means
    auto run = [&](std::vector<T> &x, std::vector<T> &y, int keyword, T *by) {
        std::vector<T> r(3 + 15 + 2);
        T *b = fit<T>(int(y.size()), c.nv, x.data(), y.data(), keyword, by, ZORVS_ANOVA_TABLE_USER, &r[3],
                      ZORVS_X_MEAN_USER, &r[18], 0);
        std::copy(b, b + 3, r.begin());
        return std::free(b), r;
    };
    const auto by_f = run(x, y, ZORVS_FREQUENCIES, f.data()), rep = run(xr, yr, ZORVS_FREQUENCIES, nullptr),
               by_w = run(x, y, ZORVS_WEIGHTS, w.data()), by_f2 = run(x, y, ZORVS_FREQUENCIES, f2.data());
    for (int j = 0; j < 20; ++j) {
        EXPECT_LE(relative(by_f[j], rep[j]), 10 * tol) << j;
        if (j < 3) { EXPECT_NEAR(by_w[j], by_f2[j], tol * (1 + std::fabs(by_f2[j]))) << j; }
    }
    EXPECT_EQ(by_w[4], T(c.aov[1]));
    // the weighted mean: sum(w x) / sum(w)
    double sw = 0, swx = 0;
    for (int i = 0; i < c.n; ++i) sw += w[i], swx += w[i] * c.x[i * c.nv];
    EXPECT_NEAR(by_w[18], swx / sw, tol * std::fabs(swx / sw));
}

// Edge cases of the fit, each with its outcome, as rows on the last fit b:
// an exact fit (error sum of squares 0, F infinite and p-value 0 when it is
// exactly 0); constant y (sum of squares exactly 0); a constant column with
// an intercept (dropped); as many rows as parameters, frequencies summing
// to less than the rank (the table's df for error 0), and all rows missing
// (no degrees of freedom); a missing frequency (the row counted missing);
// residuals NaN where the row has a NaN, which the record's extremes pass
// over.
TYPED_TEST(RegressionTwin, EdgeCases) {
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN(), inf = std::numeric_limits<T>::infinity();
    T x[] = {1, 2, 3, 4, 5}, y[] = {3, 5, 7, 9, 11}, yc[] = {0.3f, 0.3f, 0.3f, 0.3f, 0.3f};
    T xk[] = {1, 7, 2, 7, 3, 7, 4, 7, 5, 7}, y2[] = {1, 4}, xn[] = {nan, nan, nan}, xr[] = {1, 2, nan, 4, 5};
    T fn[] = {1, nan, 1, 2, 1}, half[] = {0.5, 0.5};
    T aov[15], res[5], *b = nullptr;
    const int table = ZORVS_ANOVA_TABLE_USER, record = ZORVS_REGRESSION_INFO;
    Info<T> *info = nullptr;
    int rank = 0;
    CodeLog log;
    // the fit's first coefficient, the fit kept in b
    auto f = [&](int n, int nv, T *x, T *y, auto... keys) {
        std::free(b);
        b = fit<T>(n, nv, x, y, keys..., 0);
        return b ? double(b[0]) : NaN;
    };
    auto missing = [&] {
        const int m = info->rows_missing;
        return std::free(info), m;
    };
    expect_rows({
        {ZORVS_CALL(f(5, 1, x, y, table, aov)), 1, 0, 0, "", 1e-5},
        {ZORVS_CALL(b[1]), 2, -1, 0, "", 1e-5},
        {ZORVS_CALL(aov[4]), 0, -1, 0, "", 1e-8},
        {ZORVS_CALL(aov[4] != 0 || (aov[8] == inf && aov[9] == 0)), 1, -1},
        {ZORVS_CALL(f(5, 1, x, yc, table, aov) && aov[4] == 0 && b[1] == 0), 1},
        {ZORVS_CALL(f(5, 2, xk, y, ZORVS_RANK, &rank) && b[2] == 0 && rank == 2), 1, 3, 11047},
        {ZORVS_CALL(b[1]), 2, -1, 0, "", 1e-5},
        {ZORVS_CALL(f(2, 1, x, y2)), -2, 6, 11049, "", 1e-5},
        {ZORVS_CALL((f(2, 1, x, y2, ZORVS_FREQUENCIES, half, table, aov), aov[1])), 0, 6, 11049},
        {ZORVS_CALL(b[1]), 3, -1, 0, "", 1e-5},
        {ZORVS_CALL((log.clear(), f(3, 1, xn, y, record, &info), log.has(6, 11049))), 1, -1},
        {ZORVS_CALL(info->df_error == 0 && std::isnan(*info->x_min) && missing() == 3), 1, -1},
        {ZORVS_CALL((f(5, 1, x, y, ZORVS_FREQUENCIES, fn, record, &info), missing())), 1, 0, 0},
        {ZORVS_CALL(f(5, 1, xr, y, ZORVS_RESIDUAL_USER, res, record, &info) && std::isnan(res[2])), 1},
        {ZORVS_CALL(*info->x_min == 1 && *info->x_max == 5 && missing() == 1), 1, -1},
        {ZORVS_CALL(std::fabs(res[0]) + std::fabs(res[1]) + std::fabs(res[3]) + std::fabs(res[4])), 0, -1, 0, "", 4e-5},
        {ZORVS_DO(std::free(b)), any, -1},
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
    double sentinel = 0, *table = &sentinel, *b = nullptr, ye[] = {2, 3, 7, 8, 9};
    double we[] = {4e-320, 1, 1, 1, 1}, lx[4], ly[4], lf[4], *aov = nullptr, ret[2], cov[4], *mean = nullptr;
    for (int i = 0; i < 4; ++i) lx[i] = large_df_rows[3 * i], ly[i] = large_df_rows[3 * i + 1], lf[i] = large_df_rows[3 * i + 2];
    zorvs_d_regression_info *info = nullptr;
    CodeLog log;
    auto refused = [&](auto... a) {
        return !zorvs_d_regression(a..., 0) && table == &sentinel && !info && x[0] == 1 && x[5] == 6;
    };
    const int t = ZORVS_ANOVA_TABLE;
    auto refit = [&](double *fitted) { return std::free(b), b = fitted; };
    expect_rows({
        {ZORVS_CALL(refused(6, 1, x, y, ZORVS_FREQUENCIES, negative, t, &table, ZORVS_REGRESSION_INFO, &info)), 1, 4, 11054, "i2=3"},
        {ZORVS_CALL(refused(6, 1, x, y, ZORVS_WEIGHTS, negative, t, &table)), 1, 4, 11056},
        {ZORVS_CALL(refused(0, 1, x, y)), 1, 5, 603},
        {ZORVS_CALL(refused(6, 0, x, y)), 1, 5, 603},
        {ZORVS_CALL(refused(6, 1, nullptr, y)), 1, 5, 6002},
        {ZORVS_CALL(refused(6, 1, x, nullptr)), 1, 5, 6002},
        {ZORVS_CALL(refused(3, 2, x, y, ZORVS_X_COL_DIM, 1)), 1, 5, 1024},
        {ZORVS_CALL(refused(6, 1, x, y, ZORVS_COV_COL_DIM, 3)), 1, 5, 11038},
        {ZORVS_CALL(refused(6, 1, x, y, ZORVS_TOLERANCE, 1.5)), 1, 5, 11050},
        {ZORVS_CALL(refused(6, 1, x, y, ZORVS_ANOVA_TABLE_USER, nullptr)), 1, 5, 104},
        {ZORVS_CALL(refused(6, 1, x, y, 77)), 1, 5, 11001},
        {ZORVS_CALL(refit(zorvs_d_regression(6, 1, zeros, y, 0))[0]), 3.5, 3, 11047, "", 1e-15},
        {ZORVS_CALL(b[1]), 0, -1},
        {ZORVS_CALL((refit(zorvs_d_regression(5, 1, x, ye, ZORVS_WEIGHTS, we, 0)), b[0])), 0.1, 0, 0, "", 2e-13},
        {ZORVS_CALL(b[1]), 1.9, 0, 0, "", 2e-13},
        {ZORVS_CALL((we[0] = 1e300, refit(zorvs_d_regression(5, 1, x, ye, ZORVS_WEIGHTS, we, 0)), b[0] + b[1])), 2, 0, 0, "", 1e-12},
        {ZORVS_CALL((log.clear(), refit(zorvs_d_regression(4, 1, lx, ly, ZORVS_FREQUENCIES, lf, t, &aov, 0)), aov[1])), 1e8},
        {ZORVS_CALL(relative(aov[8], large_df_F_p[0]) + relative(aov[9], large_df_F_p[1]) + log.has_code(9057)), 0, -1, 0, "", 2e-9},
        {ZORVS_DO((std::free(b), std::free(aov))), any, -1},
        // the caller's storage for the coefficients and the covariances, the means allocated
        {ZORVS_CALL(zorvs_d_regression(6, 1, x, y, ZORVS_RETURN_USER, ret, ZORVS_COEF_COVARIANCES_USER, cov, ZORVS_X_MEAN,
                                       &mean, 0) == ret && mean[0] == 3.5), 1, 0, 0},
        {ZORVS_DO(std::free(mean)), any, -1},
    });
}

}  // namespace
