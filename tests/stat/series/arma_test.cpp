// Tests of ARMA estimation.  Method of moments against the moment equations
// solved in 50 digits by mpmath; least squares against the best minimum of
// the same backcast sum of squares that scipy finds, with R's CSS estimates
// beside them, and the covariance of the estimates against the reference's
// own Jacobian (tests/data/stat/series/make_arma.py).  Then the outputs, the
// keyword conflicts, bad series and starts, caller storage and the stop.
#include "support/tables.hpp"

namespace {

#include "data/stat/series/arma_ref.inc"

ZORVS_TWIN_SUITE(ArmaTwin);

ZORVS_TWIN_WRAPPER(arma, arma)

using namespace zorvs_test;

template <class T>
constexpr bool single = std::is_same_v<T, float>;

TYPED_TEST(ArmaTwin, MomentsSolveTheMomentEquations) {
    using T = TypeParam;
    Quiet q;
    // double: the bar of the estimates; float: the rounding of sums of a few
    // hundred single-precision products
    const double rel = single<T> ? 2e-3 : 1e-6;
    Worst worst(std::string("arma moments against mpmath, relative, ") + (single<T> ? "float" : "double"));
    for (const MomentsCase &c : moments_cases) {
        SCOPED_TRACE(std::string(c.name) + " p=" + std::to_string(c.p) + " q=" + std::to_string(c.q));
        std::vector<T> z(c.z, c.z + c.n), acv(c.p + c.q + 2, -1);
        T mean = std::numeric_limits<T>::quiet_NaN();
        T *x = arma<T>(c.n, z.data(), c.p, c.q, ZORVS_AUTOCOV_USER, acv.data(), ZORVS_MEAN_ESTIMATE, &mean, 0);
        ASSERT_NE(x, nullptr);
        EXPECT_TRUE(c.solved ? zorvs_n1rty(1) == 0 : zorvs_n1rty(1) == 3 && zorvs_error_code() == 11235);
        EXPECT_NEAR(mean, c.mean, rel * std::fabs(c.mean));
        for (int k = 0; k < c.p + c.q + 2; ++k) EXPECT_NEAR(acv[k], c.acv[k], rel * c.acv[0]) << "lag " << k;
        for (int i = 0; i < (c.solved ? c.p + c.q + 1 : c.p + 1); ++i)
            worst.expect_within(relative_error(x[i], c.est[i], single<T> ? 1.0 : 1e-6), rel);
        std::free(x);
    }
}

// The sum of squares at the library's estimate is no more than 1e-8 (float:
// 1e-4) above the best minimum scipy finds; the estimates agree to 1e-4.
TYPED_TEST(ArmaTwin, LeastSquaresReachTheMinimum) {
    using T = TypeParam;
    Quiet q;
    const double ss_rel = single<T> ? 1e-4 : 1e-8, par = single<T> ? 2e-2 : 1e-4, cov_tol = single<T> ? 5e-2 : 1e-3;
    Worst gap(std::string("arma least squares: SS above the best minimum, relative, ") +
                          (single<T> ? "float" : "double"));
    for (const LeastSquaresCase &c : least_squares_cases) {
        SCOPED_TRACE(std::string(c.name) + " p=" + std::to_string(c.p) + " q=" + std::to_string(c.q) +
                     " L=" + std::to_string(c.length));
        std::vector<T> z(c.z, c.z + c.n);
        int ar_lags[3] = {c.lags[0], c.lags[1], c.lags[2]};
        T ss = -1;
        const int k = c.p + c.q + c.constant;
        std::vector<T> cov(k * k);
        T *x = arma<T>(c.n, z.data(), c.p, c.q, ZORVS_LEAST_SQUARES, c.constant ? ZORVS_CONSTANT : ZORVS_NO_CONSTANT,
                       ZORVS_BACKCASTING, c.length, 0.0, ZORVS_AR_LAGS, ar_lags, ZORVS_MA_LAGS, ar_lags + c.p,
                       ZORVS_SS_RESIDUAL, &ss, ZORVS_PARAM_EST_COV_USER, cov.data(), 0);
        ASSERT_NE(x, nullptr);
        // the covariance s^2 (J'J)^-1, against the reference's own Jacobian
        for (int i = 0; i < k * k; ++i)
            EXPECT_NEAR(cov[i], c.cov[i], cov_tol * std::sqrt(c.cov[i / k * (k + 1)] * c.cov[i % k * (k + 1)])) << i;
        EXPECT_EQ(zorvs_n1rty(1), 0);
        EXPECT_NEAR(ss, c.ss, c.ss * ss_rel);
        for (int i = 0; i < c.p + c.q + 1; ++i)
            EXPECT_NEAR(x[i], c.est[i], par * std::fmax(1.0, std::fabs(c.est[i]))) << i;
        gap.add((static_cast<double>(ss) - c.ss) / c.ss);
        std::free(x);
    }
}

// Residuals, covariance, record and caller storage agree with each other:
// the residuals' sum of squares is the one returned, the record holds the estimates and the last observation and residual.  A mean
// given is used, not replaced: the autocovariances are about it.  The
// moments record of an MA(1) has no residuals.
TYPED_TEST(ArmaTwin, OutputsOfTheLeastSquaresFit) {
    using T = TypeParam;
    Quiet quiet;  // the MA(1) moment equations of lh have no solution: a warning
    const LeastSquaresCase &c = least_squares_cases[0];  // lh ARMA(1,1), 10 backcasts
    std::vector<T> z(c.z, c.z + c.n);
    T *resid = nullptr, *cov = nullptr, *acv = nullptr, ss = 0, b[3], given = 2, acv2[3], *g = nullptr;
    void *info = nullptr, *moments = nullptr;
    const int m = c.n + 10 - 1;
    double sum = 0, c0 = 0;
    for (int t = 0; t < c.n; ++t) c0 += (c.z[t] - 2) * (c.z[t] - 2) / c.n;
    zorvs_arma_info *rec = nullptr;
    expect_rows({
        {ZORVS_CALL(arma<T>(c.n, z.data(), 1, 1, ZORVS_LEAST_SQUARES, ZORVS_RESIDUAL, &resid, ZORVS_PARAM_EST_COV, &cov,
                            ZORVS_AUTOCOV, &acv, ZORVS_SS_RESIDUAL, &ss, ZORVS_ARMA_INFO, &info, ZORVS_RETURN_USER, b, b + 1,
                            b + 2, 0) == b && resid && cov && acv && (rec = static_cast<zorvs_arma_info *>(info))), 1, 0, 0},
        {ZORVS_CALL((std::for_each(resid, resid + m, [&](T r) { sum += r * r; }), relative_error(sum, ss))), 0, -1, 0, "", 1e-5},
        {ZORVS_CALL(rec->p == 1 && rec->q == 1 && rec->method == ZORVS_LEAST_SQUARES && rec->ar_lags[0] == 1), 1, -1},
        {ZORVS_CALL(rec->constant == b[0] && rec->ar[0] == b[1] && rec->ma[0] == b[2]), 1, -1},
        {ZORVS_CALL(rec->last_observations[0] == z[c.n - 1] && rec->last_residuals[0] == resid[m - 1]), 1, -1},
        {ZORVS_CALL((rec->innovation_variance - ss / (m - 3)) / ss), 0, -1, 0, "", 1e-5},
        {ZORVS_CALL((g = arma<T>(c.n, z.data(), 1, 0, ZORVS_MEAN_ESTIMATE, &given, ZORVS_AUTOCOV_USER, acv2, 0),
                     given == 2 ? acv2[0] : 0)), c0, 0, 0, "", 1e-5 * c0},
        {ZORVS_CALL(g[0] - 2 * (1 - g[1])), 0, -1, 0, "", 1e-6},
        {ZORVS_DO(std::free(arma<T>(c.n, z.data(), 0, 1, ZORVS_ARMA_INFO, &moments, 0))), any, 3, 11235},
        {ZORVS_CALL(static_cast<zorvs_arma_info *>(moments)->n_last_residuals), 0, -1},
    });
    for (void *p : {(void *)resid, (void *)cov, (void *)acv, info, (void *)g, moments}) std::free(p);
}

// Refusals: (type, code), parameters and text; nothing written through the
// outputs (each row checks its residual pointer and sum of squares).
TYPED_TEST(ArmaTwin, BadInput) {
    using T = TypeParam;
    std::vector<T> z(series_lh, series_lh + 48), nan = z, inf = z, flat(30, T(2.5)), huge(20);
    nan[17] = std::numeric_limits<T>::quiet_NaN();
    inf[5] = -std::numeric_limits<T>::infinity();
    for (int i = 0; i < 20; ++i) huge[i] = (i % 3 ? 2 : -2) * std::sqrt(std::numeric_limits<T>::max());
    T ar = 0.5, ma = 0.1, ss = -7, *r = nullptr, *x = z.data();
    int lag = 48;
    // A refused call: no result, and the outputs as they were.
    auto refused = [&](T *result) { return result == nullptr && ss == -7 && r == nullptr; };
    auto no = [&](int n, T *z, int p, int q, auto... keys) { return refused(arma<T>(n, z, p, q, keys..., 0)); };
    const char *only_ls = "ZORVS_METHOD_OF_MOMENTS and argument(s) used exclusively with ZORVS_LEAST_SQUARES";
    const int lsq = ZORVS_LEAST_SQUARES, mom = ZORVS_METHOD_OF_MOMENTS;
    expect_rows({
        {ZORVS_CALL(no(48, x, 1, 0, mom, ZORVS_RESIDUAL, &r, ZORVS_SS_RESIDUAL, &ss)), 1, 5, 11117, "", 0, only_ls},
        {ZORVS_CALL(no(48, x, 1, 0, ZORVS_BACKCASTING, 5, 0.0)), 1, 5, 11117, "", 0, only_ls},
        {ZORVS_CALL(no(48, x, 1, 0, mom, ZORVS_CONSTANT)), 1, 5, 11117, "", 0, only_ls},
        {ZORVS_CALL(no(48, x, 1, 0, lsq, ZORVS_CONSTANT, ZORVS_NO_CONSTANT)), 1, 5, 11117, "", 0, "ZORVS_NO_CONSTANT and"},
        {ZORVS_CALL(no(48, x, 1, 0, lsq, mom)), 1, 5, 11117, "", 0, "ZORVS_METHOD_OF_MOMENTS and ZORVS_LEAST_SQUARES"},
        {ZORVS_CALL(no(48, x, 1, 1, ZORVS_INITIAL_ESTIMATES, &ar, &ma)), 1, 5, 11117, "", 0, "ZORVS_INITIAL_ESTIMATES"},
        {ZORVS_CALL(no(48, x, -1, 1)), 1, 5, 11257},
        {ZORVS_CALL(no(48, x, 0, 0)), 1, 5, 11257},
        {ZORVS_CALL(no(1, x, 1, 0)), 1, 5, 11083},
        {ZORVS_CALL(no(5, x, 2, 2)), 1, 5, 11226},
        {ZORVS_CALL(no(48, nan.data(), 1, 0)), 1, 5, 11227},
        {ZORVS_CALL(no(48, inf.data(), 1, 0)), 1, 5, 11238},
        {ZORVS_CALL(no(20, huge.data(), 1, 0, lsq)), 1, 5, 11239},
        {ZORVS_CALL(no(48, x, 1, 0, lsq, ZORVS_AR_LAGS, &lag)), 1, 5, 11233, "l1=ZORVS_AR_LAGS"},
        {ZORVS_CALL(no(30, flat.data(), 1, 1)), 1, 5, 11232},
        {ZORVS_CALL(no(30, flat.data(), 1, 1, lsq, ZORVS_INITIAL_ESTIMATES, &ar, &ma)), 1, 5, 11230},
        // four fixed arguments, the keyword, its pointer, then 777
        {ZORVS_CALL(no(48, x, 1, 0, ZORVS_SS_RESIDUAL, &ss, 777)), 1, 5, 11001, "i1=777 i2=7"},
    });
}

// The estimators' own messages and keyword forms, as rows.  A start
// outside the stationary region still ends at the minimum; an MA start of
// 1e4 on 400 values overflows every residual.  A lag-1 autocovariance
// exactly 0 leaves the ARMA(1,1) moment equation 0 = c_2.  One iteration
// is not enough: a warning, and the last point.  The _ADR forms read the
// caller's real of the routine's type and give the same fit.  A threshold
// that ends backcasting at once puts the process mean behind the first
// backcast, so the residuals differ from the full ones.  Many parameters:
// no fixed bound on the orders.
TYPED_TEST(ArmaTwin, EstimatorMessagesAndKeywordForms) {
    using T = TypeParam;
    const LeastSquaresCase &c = least_squares_cases[1], &m = least_squares_cases[7], &s4 = least_squares_cases[4],
                           &big = least_squares_cases[6];  // lh AR(1); 400 values; sunspot ARMA(2,1); 21 parameters
    std::vector<T> z(c.z, c.z + c.n), w(m.z, m.z + m.n), sun(s4.z, s4.z + s4.n), y(big.z, big.z + big.n), cycle;
    for (int i = 0; i < 40; ++i) cycle.push_back(static_cast<T>(i % 4 == 0 ? 1 : i % 4 == 2 ? -1 : 0));
    T ar = 1.5, ma = 0, huge = 1e4, ss = 0, ss2 = 0, thr = 0, tol = T(1e-6), rel = T(1e-10), start_ar[2] = {1.4f, -0.7f};
    T start_ma = 0.1f, *x = nullptr, *a = nullptr, *r1 = nullptr, *r2 = nullptr;
    const double par_tol = single<T> ? 1e-2 : 1e-4, ss_bar = c.ss * (1 + (single<T> ? 1e-4 : 1e-8));
    // a least-squares fit kept in x
    auto ls = [&](std::vector<T> &z, int p, int q, auto... keys) {
        std::free(x);
        x = arma<T>(int(z.size()), z.data(), p, q, ZORVS_LEAST_SQUARES, keys..., 0);
        return x != nullptr;
    };
    auto backcast = [&](double threshold, T **res) {
        std::free(arma<T>(s4.n, sun.data(), 2, 1, ZORVS_LEAST_SQUARES, ZORVS_INITIAL_ESTIMATES, start_ar, &start_ma,
                          ZORVS_BACKCASTING, 6, threshold, ZORVS_MAX_ITERATIONS, 1, ZORVS_RESIDUAL, res, 0));
    };
    const int start = ZORVS_INITIAL_ESTIMATES, back = ZORVS_BACKCASTING, sum = ZORVS_SS_RESIDUAL;
    expect_rows({
        {ZORVS_CALL(ls(z, 1, 0, start, &ar, &ma, back, 0, 0.0, sum, &ss) && ss <= ss_bar), 1, -1},
        {ZORVS_CALL(x[1]), c.est[1], -1, 0, "", par_tol},
        {ZORVS_CALL(ls(w, 0, 1, start, &ar, &huge)), 0, 4, 11237},
        {ZORVS_CALL((std::free(x), x = arma<T>(40, cycle.data(), 1, 1, 0), x != nullptr)), 0, 4, 11234},
        {ZORVS_CALL(ls(sun, 2, 1, ZORVS_MAX_ITERATIONS, 1)), 1, 3, 11236},
        {ZORVS_CALL(ls(sun, 2, 1, back, 4, 0.0, ZORVS_CONVERGENCE_TOLERANCE, double(tol), ZORVS_RELATIVE_ERROR,
                       double(rel), sum, &ss)), 1, -1},
        {ZORVS_CALL((a = arma<T>(s4.n, sun.data(), 2, 1, ZORVS_LEAST_SQUARES, ZORVS_BACKCASTING_ADR, 4, &thr,
                                 ZORVS_CONVERGENCE_TOLERANCE_ADR, &tol, ZORVS_RELATIVE_ERROR_ADR, &rel,
                                 sum, &ss2, 0)) && ss == ss2 && std::equal(a, a + 4, x)), 1, -1},
        {ZORVS_DO((std::free(a), backcast(1e30, &r1), backcast(0.0, &r2))), any, -1},
        {ZORVS_CALL(r1 && r2 && r1[0] != r2[0] && r1[s4.n + 6 - 3] != r2[s4.n + 6 - 3]), 1, -1},
        {ZORVS_CALL(ls(y, 3, 17, ZORVS_MAX_ITERATIONS, 3) && std::all_of(x, x + 21, [](T v) { return std::isfinite(v); })), 1, -1},
    });
    for (T *p : {x, r1, r2}) std::free(p);
}

}  // namespace
