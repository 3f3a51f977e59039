// series_target.cpp - differencing, ARMA estimation by either method and
// forecasts from the record it hands over (now and then altered within its
// own arrays), on any series, orders, lags, backcasts, tolerances and
// keyword lists: parameters finite or a message, forecasts between their
// limits.
#include "fuzz_input.hpp"

namespace zorvs_fuzz::series {

const Item difference_menu[] = {{ZORVS_RETURN_USER, "o"}, {ZORVS_ORDERS, "n"}, {ZORVS_NUM_LOST, "k"},
    {ZORVS_EXCLUDE_FIRST, ""}, {ZORVS_SET_FIRST_TO_NAN, ""}};
const Item arma_menu[] = {{ZORVS_CONSTANT, ""}, {ZORVS_NO_CONSTANT, ""}, {ZORVS_METHOD_OF_MOMENTS, ""},
    {ZORVS_LEAST_SQUARES, ""}, {ZORVS_LEAST_SQUARES, ""}, {ZORVS_INITIAL_ESTIMATES, "xx"}, {ZORVS_AR_LAGS, "n"},
    {ZORVS_MA_LAGS, "n"}, {ZORVS_BACKCASTING, "dr"}, {ZORVS_BACKCASTING_ADR, "ds"}, {ZORVS_CONVERGENCE_TOLERANCE, "r"},
    {ZORVS_CONVERGENCE_TOLERANCE_ADR, "s"}, {ZORVS_RELATIVE_ERROR, "r"}, {ZORVS_RELATIVE_ERROR_ADR, "s"},
    {ZORVS_MAX_ITERATIONS, "d"}, {ZORVS_MEAN_ESTIMATE, "s"}, {ZORVS_RESIDUAL, "a"}, {ZORVS_RESIDUAL_USER, "o"},
    {ZORVS_PARAM_EST_COV, "a"}, {ZORVS_PARAM_EST_COV_USER, "o"}, {ZORVS_AUTOCOV, "a"}, {ZORVS_AUTOCOV_USER, "o"},
    {ZORVS_SS_RESIDUAL, "s"}, {ZORVS_RETURN_USER, "ooo"}};
const Item forecast_menu[] = {{ZORVS_CONFIDENCE, "r"}, {ZORVS_PSI_WEIGHTS, "a"}, {ZORVS_PSI_WEIGHTS_USER, "o"},
    {ZORVS_RETURN_USER, "o"}};

template <class T>
void one(Input &in, Store<T> &s) {
    const int n = in.one_in(4) ? in.count(6) : 5 + in.pick(150);
    in.fill(s.data, 400);
    const int low = in.one_in(8) ? -2 : 1;  // read first, as clang reads arguments
    in.fill_ints(s.ints, 64, low, in.one_in(8) ? 60 : 12);
    Builder<T> b(in, s);
    if (in.one_in(4)) {
        auto &l = b.from(difference_menu, 3);
        return void(call(F(difference), l, n, s.data, in.count(4), s.ints + 32));
    }
    const int p = in.one_in(10) ? -1 : in.pick(4), q = in.pick(4);
    b.add({ZORVS_ARMA_INFO, "a"});
    auto &l = b.from(arma_menu, 5);
    T *x = call(F(arma), l, n, s.data, p, q);
    if (!l.has(ZORVS_RETURN_USER))
        for (int i = 0; x && i < p + q + 1; ++i) require(std::isfinite(x[i]), "arma", "parameter not finite", x[i]);
    auto *info = static_cast<zorvs_arma_info *>(s.address[0]);
    if (!info) return;
    switch (in.pick(8)) {  // an altered record, within its own arrays
        case 0: if (info->p > 0) info->ar_lags[0] = in.any_int(); break;
        case 1: info->innovation_variance = in.real(); break;
        case 2: info->n_last_observations = in.pick(info->n_last_observations + 1); break;
        case 3: info->method = in.any_int(); break;
        case 4: if (info->q > 0) info->ma_lags[0] = in.any_int(); break;
        default: break;
    }
    const int n_predict = in.count(40);
    Builder<T> fb(in, s);
    auto &fl = fb.from(forecast_menu, 3);
    T *f = call(F(arma_forecast), fl, info, n_predict);
    for (int h = 0; f && !fl.has(ZORVS_RETURN_USER) && h < n_predict; ++h)
        require(!(f[3 * h + 1] > f[3 * h]) && !(f[3 * h] > f[3 * h + 2]), "arma_forecast", "outside limits", f[3 * h]);
}

}  // namespace zorvs_fuzz::series

ZORVS_FUZZ_TARGET(series)
