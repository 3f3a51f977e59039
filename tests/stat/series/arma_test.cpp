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

using zorvs_test::any;

template <class T>
constexpr bool single = std::is_same_v<T, float>;

TYPED_TEST(ArmaTwin, MomentsSolveTheMomentEquations) {
    using T = TypeParam;
    zorvs_test::Quiet q;
    // double: the bar of the estimates; float: the rounding of sums of a few
    // hundred single-precision products
    const double rel = single<T> ? 2e-3 : 1e-6;
    zorvs_test::Worst worst(std::string("arma moments against mpmath, relative, ") + (single<T> ? "float" : "double"));
    for (const MomentsCase &c : moments_cases) {
        SCOPED_TRACE(std::string(c.name) + " p=" + std::to_string(c.p) + " q=" + std::to_string(c.q));
        std::vector<T> z(c.z, c.z + c.n), acv(c.p + c.q + 2, -1);
        T mean = std::numeric_limits<T>::quiet_NaN();
        T *x = arma<T>(c.n, z.data(), c.p, c.q, ZORVS_AUTOCOV_USER, acv.data(), ZORVS_MEAN_ESTIMATE, &mean, 0);
        ASSERT_NE(x, nullptr);
        EXPECT_EQ(zorvs_n1rty(1), c.solved ? 0 : 3);
        if (!c.solved) {
            EXPECT_EQ(zorvs_error_code(), 11235);
        }
        EXPECT_NEAR(mean, c.mean, rel * std::fabs(c.mean));
        for (int k = 0; k < c.p + c.q + 2; ++k) EXPECT_NEAR(acv[k], c.acv[k], rel * c.acv[0]) << "lag " << k;
        for (int i = 0; i < (c.solved ? c.p + c.q + 1 : c.p + 1); ++i) {
            EXPECT_NEAR(x[i], c.est[i], rel * std::fmax(std::fabs(c.est[i]), single<T> ? 1.0 : 1e-6)) << i;
            if (c.est[i] != 0) worst.add(zorvs_test::relative_error(x[i], c.est[i]));
        }
        std::free(x);
    }
}

// The sum of squares at the library's estimate is no more than 1e-8 (float:
// 1e-4) above the best minimum scipy finds; the estimates agree to 1e-4.
TYPED_TEST(ArmaTwin, LeastSquaresReachTheMinimum) {
    using T = TypeParam;
    zorvs_test::Quiet q;
    const double ss_rel = single<T> ? 1e-4 : 1e-8, par = single<T> ? 2e-2 : 1e-4;
    zorvs_test::Worst gap(std::string("arma least squares: SS above the best minimum, relative, ") +
                          (single<T> ? "float" : "double"));
    for (const LeastSquaresCase &c : least_squares_cases) {
        const std::string label = std::string(c.name) + " p=" + std::to_string(c.p) + " q=" + std::to_string(c.q) +
                                  " L=" + std::to_string(c.length);
        SCOPED_TRACE(label);
        std::vector<T> z(c.z, c.z + c.n);
        int ar_lags[3] = {c.lags[0], c.lags[1], c.lags[2]};
        int *ma_lags = ar_lags + c.p;
        T ss = -1;
        const int k = c.p + c.q + c.constant;
        std::vector<T> cov(k * k);
        T *x = c.constant
                   ? arma<T>(c.n, z.data(), c.p, c.q, ZORVS_LEAST_SQUARES, ZORVS_BACKCASTING, c.length, 0.0,
                             ZORVS_AR_LAGS, ar_lags, ZORVS_MA_LAGS, ma_lags, ZORVS_SS_RESIDUAL, &ss,
                             ZORVS_PARAM_EST_COV_USER, cov.data(), 0)
                   : arma<T>(c.n, z.data(), c.p, c.q, ZORVS_LEAST_SQUARES, ZORVS_NO_CONSTANT, ZORVS_BACKCASTING,
                             c.length, 0.0, ZORVS_AR_LAGS, ar_lags, ZORVS_SS_RESIDUAL, &ss, ZORVS_PARAM_EST_COV_USER,
                             cov.data(), 0);
        ASSERT_NE(x, nullptr);
        // the covariance s^2 (J'J)^-1, against the reference's own Jacobian
        for (int i = 0; i < k; ++i)
            for (int j = 0; j < k; ++j)
                EXPECT_NEAR(cov[i * k + j], c.cov[i * k + j],
                            (single<T> ? 5e-2 : 1e-3) * std::sqrt(c.cov[i * k + i] * c.cov[j * k + j]))
                    << i << "," << j;
        EXPECT_EQ(zorvs_n1rty(1), 0);
        EXPECT_LE(ss, c.ss * (1 + ss_rel));
        EXPECT_GE(ss, c.ss * (1 - ss_rel));
        for (int i = 0; i < c.p + c.q + 1; ++i)
            EXPECT_NEAR(x[i], c.est[i], par * std::fmax(1.0, std::fabs(c.est[i]))) << i;
        gap.add((static_cast<double>(ss) - c.ss) / c.ss);
        std::free(x);
    }
}

// Residuals, covariance, record and caller storage agree with each other.
TYPED_TEST(ArmaTwin, OutputsOfTheLeastSquaresFit) {
    using T = TypeParam;
    const LeastSquaresCase &c = least_squares_cases[0];  // lh ARMA(1,1), 10 backcasts
    std::vector<T> z(c.z, c.z + c.n);
    T *resid = nullptr, *cov = nullptr, *acv = nullptr, ss = 0, constant = 0, ar = 0, ma = 0;
    void *info = nullptr;
    T *x = arma<T>(c.n, z.data(), 1, 1, ZORVS_LEAST_SQUARES, ZORVS_RESIDUAL, &resid, ZORVS_PARAM_EST_COV, &cov,
                   ZORVS_AUTOCOV, &acv, ZORVS_SS_RESIDUAL, &ss, ZORVS_ARMA_INFO, &info, ZORVS_RETURN_USER, &constant,
                   &ar, &ma, 0);
    ASSERT_EQ(x, &constant);
    ASSERT_TRUE(resid && cov && acv && info);
    const int m = c.n + 10 - 1;
    T sum = 0;
    for (int i = 0; i < m; ++i) sum += resid[i] * resid[i];
    EXPECT_NEAR(sum, ss, 1e-5 * ss);
    for (int i = 0; i < 3; ++i) {
        EXPECT_GT(cov[i * 3 + i], 0);
        for (int j = 0; j < 3; ++j) EXPECT_NEAR(cov[i * 3 + j], cov[j * 3 + i], 1e-4 * std::fabs(cov[i * 3 + j]));
    }
    // standard error of phi about sqrt((1 - phi^2) / n) for a near-AR(1) fit
    EXPECT_GT(std::sqrt(cov[4]), 0.05);
    EXPECT_LT(std::sqrt(cov[4]), 0.5);
    const auto *rec = static_cast<zorvs_arma_info *>(info);
    EXPECT_EQ((std::vector<double>{double(rec->p), double(rec->q), double(rec->method), rec->ar[0], rec->ma[0],
                                   rec->constant, double(rec->ar_lags[0]), rec->last_observations[0],
                                   rec->last_residuals[0]}),
              (std::vector<double>{1, 1, ZORVS_LEAST_SQUARES, double(ar), double(ma), double(constant), 1,
                                   double(z[c.n - 1]), double(resid[m - 1])}));
    EXPECT_NEAR(rec->innovation_variance, ss / (m - 3), 1e-5 * ss);
    for (void *p : {(void *)resid, (void *)cov, (void *)acv, info}) std::free(p);
    // a mean given is used, not replaced: the autocovariances are about it
    T given = 2, acv2[3];
    T *g = arma<T>(c.n, z.data(), 1, 0, ZORVS_MEAN_ESTIMATE, &given, ZORVS_AUTOCOV_USER, acv2, 0);
    ASSERT_NE(g, nullptr);
    EXPECT_EQ(given, 2);
    double c0 = 0;
    for (int t = 0; t < c.n; ++t) c0 += (c.z[t] - 2) * (c.z[t] - 2) / c.n;
    EXPECT_NEAR(acv2[0], c0, 1e-5 * c0);
    EXPECT_NEAR(g[0], 2 * (1 - g[1]), 1e-6);
    std::free(g);
    // p = 0, q = 1: two reals; the moments record has no residuals
    info = nullptr;
    zorvs_test::Quiet quiet;  // the MA(1) moment equations of lh have no solution: a warning
    T *y = arma<T>(c.n, z.data(), 0, 1, ZORVS_ARMA_INFO, &info, 0);
    ASSERT_NE(y, nullptr);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(static_cast<zorvs_arma_info *>(info)->n_last_residuals, 0);
    std::free(y);
    std::free(info);
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
    const char *only_ls = "ZORVS_METHOD_OF_MOMENTS and argument(s) used exclusively with ZORVS_LEAST_SQUARES";
    zorvs_test::expect_rows({
        {ZORVS_CALL(refused(arma<T>(48, x, 1, 0, ZORVS_METHOD_OF_MOMENTS, ZORVS_RESIDUAL, &r, ZORVS_SS_RESIDUAL, &ss, 0))),
         1, 5, 11117, "", 0, only_ls},
        {ZORVS_CALL(refused(arma<T>(48, x, 1, 0, ZORVS_BACKCASTING, 5, 0.0, 0))), 1, 5, 11117, "", 0, only_ls},
        {ZORVS_CALL(refused(arma<T>(48, x, 1, 0, ZORVS_METHOD_OF_MOMENTS, ZORVS_CONSTANT, 0))), 1, 5, 11117, "", 0, only_ls},
        {ZORVS_CALL(refused(arma<T>(48, x, 1, 0, ZORVS_LEAST_SQUARES, ZORVS_CONSTANT, ZORVS_NO_CONSTANT, 0))), 1, 5, 11117,
         "", 0, "ZORVS_NO_CONSTANT and ZORVS_CONSTANT"},
        {ZORVS_CALL(refused(arma<T>(48, x, 1, 0, ZORVS_LEAST_SQUARES, ZORVS_METHOD_OF_MOMENTS, 0))), 1, 5, 11117, "", 0,
         "ZORVS_METHOD_OF_MOMENTS and ZORVS_LEAST_SQUARES"},
        {ZORVS_CALL(refused(arma<T>(48, x, 1, 1, ZORVS_INITIAL_ESTIMATES, &ar, &ma, 0))), 1, 5, 11117, "", 0,
         "ZORVS_METHOD_OF_MOMENTS and ZORVS_INITIAL_ESTIMATES"},
        {ZORVS_CALL(refused(arma<T>(48, x, -1, 1, 0))), 1, 5, 11257},
        {ZORVS_CALL(refused(arma<T>(48, x, 0, 0, 0))), 1, 5, 11257},
        {ZORVS_CALL(refused(arma<T>(1, x, 1, 0, 0))), 1, 5, 11083},
        {ZORVS_CALL(refused(arma<T>(5, x, 2, 2, 0))), 1, 5, 11226},
        {ZORVS_CALL(refused(arma<T>(48, nan.data(), 1, 0, 0))), 1, 5, 11227},
        {ZORVS_CALL(refused(arma<T>(48, inf.data(), 1, 0, 0))), 1, 5, 11238},
        {ZORVS_CALL(refused(arma<T>(20, huge.data(), 1, 0, ZORVS_LEAST_SQUARES, 0))), 1, 5, 11239},
        {ZORVS_CALL(refused(arma<T>(48, x, 1, 0, ZORVS_LEAST_SQUARES, ZORVS_AR_LAGS, &lag, 0))), 1, 5, 11233,
         "l1=ZORVS_AR_LAGS"},
        {ZORVS_CALL(refused(arma<T>(30, flat.data(), 1, 1, 0))), 1, 5, 11232},
        {ZORVS_CALL(refused(arma<T>(30, flat.data(), 1, 1, ZORVS_LEAST_SQUARES, ZORVS_INITIAL_ESTIMATES, &ar, &ma, 0))),
         1, 5, 11230},
        // four fixed arguments, the keyword, its pointer, then 777
        {ZORVS_CALL(refused(arma<T>(48, x, 1, 0, ZORVS_SS_RESIDUAL, &ss, 777, 0))), 1, 5, 11001, "i1=777 i2=7"},
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
    auto kept = [&](T *r) { return std::free(x), x = r, r != nullptr; };
    auto backcast = [&](double threshold, T **res) {
        std::free(arma<T>(s4.n, sun.data(), 2, 1, ZORVS_LEAST_SQUARES, ZORVS_INITIAL_ESTIMATES, start_ar, &start_ma,
                          ZORVS_BACKCASTING, 6, threshold, ZORVS_MAX_ITERATIONS, 1, ZORVS_RESIDUAL, res, 0));
    };
    zorvs_test::expect_rows({
        {ZORVS_CALL(kept(arma<T>(c.n, z.data(), 1, 0, ZORVS_LEAST_SQUARES, ZORVS_INITIAL_ESTIMATES, &ar, &ma,
                                 ZORVS_BACKCASTING, 0, 0.0, ZORVS_SS_RESIDUAL, &ss, 0)) && ss <= ss_bar), 1, -1},
        {ZORVS_CALL(x[1]), c.est[1], -1, 0, "", par_tol},
        {ZORVS_CALL(kept(arma<T>(m.n, w.data(), 0, 1, ZORVS_LEAST_SQUARES, ZORVS_INITIAL_ESTIMATES, &ar, &huge, 0))), 0, 4,
         11237},
        {ZORVS_CALL(kept(arma<T>(40, cycle.data(), 1, 1, 0))), 0, 4, 11234},
        {ZORVS_CALL(kept(arma<T>(s4.n, sun.data(), 2, 1, ZORVS_LEAST_SQUARES, ZORVS_MAX_ITERATIONS, 1, 0))), 1, 3, 11236},
        {ZORVS_CALL(kept(arma<T>(s4.n, sun.data(), 2, 1, ZORVS_LEAST_SQUARES, ZORVS_BACKCASTING, 4, 0.0,
                                 ZORVS_CONVERGENCE_TOLERANCE, double(tol), ZORVS_RELATIVE_ERROR, double(rel),
                                 ZORVS_SS_RESIDUAL, &ss, 0))), 1, -1},
        {ZORVS_CALL((a = arma<T>(s4.n, sun.data(), 2, 1, ZORVS_LEAST_SQUARES, ZORVS_BACKCASTING_ADR, 4, &thr,
                                 ZORVS_CONVERGENCE_TOLERANCE_ADR, &tol, ZORVS_RELATIVE_ERROR_ADR, &rel,
                                 ZORVS_SS_RESIDUAL, &ss2, 0)) && ss == ss2 && std::equal(a, a + 4, x)), 1, -1},
        {ZORVS_DO((std::free(a), backcast(1e30, &r1), backcast(0.0, &r2))), any, -1},
        {ZORVS_CALL(r1 && r2 && r1[0] != r2[0] && r1[s4.n + 6 - 3] != r2[s4.n + 6 - 3]), 1, -1},
        {ZORVS_DO((std::free(r1), std::free(r2))), any, -1},
        {ZORVS_CALL(kept(arma<T>(big.n, y.data(), 3, 17, ZORVS_LEAST_SQUARES, ZORVS_MAX_ITERATIONS, 3, 0)) &&
                    std::all_of(x, x + 21, [](T v) { return std::isfinite(v); })), 1, -1},
        {ZORVS_CALL(kept(nullptr)), 0, -1},
    });
}

}  // namespace
