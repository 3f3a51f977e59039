// arma_forecast_test.cpp - forecasts, probability limits and psi weights in
// both twins, from the record of the least-squares fit with backcast length
// 0, against predict(arima(method = "CSS")) at the same parameters
// (tests/data/stat/series/arma_forecast_ref.inc, make_arma_forecast.R) on lh
// and lynx; the refusals of bad records and arguments as rows.
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/stat/series/arma_forecast_ref.inc"

ZORVS_TWIN_SUITE(ArmaForecastTwin);

// Both twins forecast from the record of the double fit, whose parameters R
// was given: the float twin's own fit stops about 1e-3 away from them,
// which would hide the recursion.  Each model of the table: its series,
// orders, R's forecasts with limits and psi weights, and the innovation
// variance.
TYPED_TEST(ArmaForecastTwin, ForecastsLimitsAndPsiAgreeWithR) {
    using T = TypeParam;
    const bool single = std::is_same_v<T, float>;
    const auto forecast = twin<T>(zorvs_f_arma_forecast, zorvs_d_arma_forecast);
    const double tol_forecast = single ? 1e-5 : 1e-10, tol_limits = single ? 1e-5 : 1e-8;
    Worst worst(std::string("forecasts and limits against R, ") + (single ? "float" : "double"));
    Quiet quiet;  // the fits of lh MA(1) and lynx warn about their moment starts
    const int h = forecast_n_ahead;
    for (const auto &[name, series, n, p, q, want, want_psi, s2] : forecast_models) {
        SCOPED_TRACE(name);
        std::vector<double> z(series, series + n);
        const bool own = z.size() > 100;  // lynx: blocks of the routine; lh: the caller's
        std::vector<T> user(3 * h, T(-1)), psi_user(h);
        void *info = nullptr;
        double *est = zorvs_d_arma(int(z.size()), z.data(), p, q, ZORVS_LEAST_SQUARES, ZORVS_BACKCASTING, 0, 0.0,
                                   ZORVS_ARMA_INFO, &info, 0);
        ASSERT_TRUE(est && info);
        auto *record = static_cast<zorvs_arma_info *>(info);
        EXPECT_NEAR(record->innovation_variance, s2, 1e-12 * s2);
        T *psi = psi_user.data();
        T *f = own ? forecast(record, h, ZORVS_PSI_WEIGHTS, &psi, 0)
                   : forecast(record, h, ZORVS_CONFIDENCE, 95.0, ZORVS_PSI_WEIGHTS_USER, psi, ZORVS_RETURN_USER, user.data(), 0);
        ASSERT_TRUE(f && psi);
        for (int i = 0; i < 3 * h; ++i)
            worst.expect_within(std::fabs(f[i] - want[i]) / std::fabs(want[0]), i % 3 ? tol_limits : tol_forecast);
        for (int k = 0; k < h; ++k) EXPECT_NEAR(psi[k], want_psi[k], single ? 1e-6 : 1e-12) << k;
        if (own) std::free(f), std::free(psi);
        std::free(est), std::free(info);
    }
}

// Refusals: a message from the catalogue, a null result, the caller's
// storage and output addresses untouched.
TYPED_TEST(ArmaForecastTwin, BadRecordsAndArgumentsAreRefused) {
    using T = TypeParam;
    const auto arma = twin<T>(zorvs_f_arma, zorvs_d_arma);
    const auto forecast = twin<T>(zorvs_f_arma_forecast, zorvs_d_arma_forecast);
    std::vector<T> z(std::begin(forecast_lh), std::end(forecast_lh)), user(6, T(42));
    void *moments = nullptr, *lsq = nullptr, *failed = nullptr;
    T *e1 = nullptr, *e2 = nullptr;
    {
        Quiet q;  // the fit of one observation fails and leaves its record unwritten
        EXPECT_EQ(arma(1, z.data(), 1, 0, ZORVS_ARMA_INFO, &failed, 0), nullptr);
        e1 = arma(int(z.size()), z.data(), 1, 1, ZORVS_ARMA_INFO, &moments, 0);
        e2 = arma(int(z.size()), z.data(), 1, 1, ZORVS_LEAST_SQUARES, ZORVS_ARMA_INFO, &lsq, 0);
    }
    ASSERT_TRUE(moments && lsq);
    auto *rec = static_cast<zorvs_arma_info *>(lsq);
    zorvs_arma_info bad_order = *rec, bad_lag = *rec, bad_var = *rec, bad_res = *rec, bad_par = *rec;
    bad_order.p = -1;
    int lag_zero = 0;
    bad_lag.ar_lags = &lag_zero;
    bad_var.innovation_variance = NaN;
    bad_res.n_last_residuals = 3;
    double inf_phi = Inf;
    bad_par.ar = &inf_phi;
    T sentinel = 0, *psi = &sentinel, *f = nullptr, *g = nullptr;  // an output address the refusals leave alone
    T *const psi_before = psi;
    auto refused = [&](T *f) { return f == nullptr && psi == psi_before; };
    auto untouched = [&] { return std::all_of(user.begin(), user.end(), [](T v) { return v == 42; }); };
    expect_rows({
        {ZORVS_CALL(refused(forecast(static_cast<zorvs_arma_info *>(failed), 3, ZORVS_PSI_WEIGHTS, &psi, 0))), 1, 5,
         21240},
        {ZORVS_CALL(refused(forecast(static_cast<zorvs_arma_info *>(moments), 3, 0))), 1, 5, 21242, "i1=1"},
        {ZORVS_CALL(refused(forecast(&bad_order, 3, 0))), 1, 5, 21241, "l1=orders"},
        {ZORVS_CALL(refused(forecast(&bad_lag, 3, 0))), 1, 5, 21241, "l1=lags"},
        {ZORVS_CALL(refused(forecast(&bad_par, 3, 0))), 1, 5, 21241, "l1=parameters"},
        {ZORVS_CALL(refused(forecast(&bad_var, 3, 0))), 1, 5, 21241, "l1=innovation_variance"},
        {ZORVS_CALL(refused(forecast(&bad_res, 3, 0))), 1, 5, 21241, "l1=n_last_residuals"},
        {ZORVS_CALL(refused(forecast(rec, 0, ZORVS_PSI_WEIGHTS, &psi, 0))), 1, 5, 603, "l1=n_predict"},
        {ZORVS_CALL(refused(forecast(rec, 2, ZORVS_CONFIDENCE, 100.0, 0))), 1, 5, 20403},
        {ZORVS_CALL(refused(forecast(rec, 2, 55555, 0))), 1, 5, 11001, "i1=55555 i2=3"},
        {ZORVS_CALL(forecast(nullptr, 2, ZORVS_RETURN_USER, user.data(), 0) == user.data() && untouched()), 1, 5,
         21240},
        // a failed work array after the caller's table was taken
        {ZORVS_CALL((zorvs::allocation_failure_countdown = 1, forecast(rec, 2, ZORVS_RETURN_USER, user.data(), 0) == user.data() && untouched())), 1, 5, 201},
        // a level below 50 is an immediate warning that keeps the forecasts;
        // the level 0 gives limits equal to the forecasts
        {ZORVS_CALL((f = forecast(rec, 2, ZORVS_CONFIDENCE, 40.0, 0)) && f[1] < f[0]), 1, 6, 20404},
        {ZORVS_CALL((g = forecast(rec, 1, ZORVS_CONFIDENCE, 0.0, 0)) && g[1] == g[0] && g[2] == g[0]), 1, 0, 0},
    });
    std::free(f), std::free(g), std::free(e1), std::free(e2), std::free(moments), std::free(lsq);
}

}  // namespace
