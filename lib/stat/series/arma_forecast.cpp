// arma_forecast.cpp - forecasts of an ARMA model fitted by zorvs_f_arma,
// with probability limits and the psi weights, from its arma_info record.
//
// Method (Box and Jenkins, Time Series Analysis, chapter 5): with the
// model z(t) = c + sum phi_i z(t - l_i) + a(t) - sum theta_j a(t - m_j),
// the forecast from origin n at lead h is
//   zhat(h) = c + sum_i phi_i [z(n + h - l_i)] - sum_j theta_j [a(n + h - m_j)]
// where [z(s)] is the observation for s <= n and the forecast zhat(s - n)
// after it, and [a(s)] the residual of the fit for s <= n and 0 after it.
// The psi weights of the model's infinite moving-average form are
//   psi_0 = 1,  psi_k = sum_(i: l_i <= k) phi_i psi_(k - l_i) - theta(k),
// theta(k) the sum of the theta_j with m_j = k, and the forecast error at
// lead h has the variance sigma^2 sum_(k < h) psi_k^2, sigma^2 the record's
// innovation variance.  The limits are zhat(h) -/+ z_(1 - alpha/2) times
// its square root, z to working accuracy from zorvs::dist::normal_quantile.
//
// Settled here:
//  - The result is an n_predict x 3 table, row-major: for lead h = 1..n_predict
//    the forecast, the lower and the upper limit.  ZORVS_CONFIDENCE (per
//    cent, default 95.0) sets the level, checked as every confidence level of
//    the library; ZORVS_PSI_WEIGHTS (T **) and _USER (T []) give psi_0 to
//    psi_(n_predict - 1), psi_0 = 1 included.
//  - The residuals are those of the least-squares fit, with the conditional
//    start (a = 0 before the first residual), so that with backcast length 0
//    the forecasts are those of the conditional-sum-of-squares fit.  The
//    record of a moments estimate holds no residuals: a model with
//    moving-average terms is then refused (5, 21242) rather than forecast
//    with residuals taken as 0; a pure autoregression is forecast.
//  - The record is checked before anything is written: a null record
//    (the address that a failed fit left unwritten) is (5, 21240); orders,
//    lags, counts of kept values, parameters, observations, residuals or a
//    variance that zorvs_f_arma cannot have made are (5, 21241) with the
//    field named.
//  - The recursion runs in the routine's real type, on the record's values
//    narrowed to it in the float twin.

#include <cmath>
#include <cstdarg>

#include "dist/dist.hpp"
#include "frame/checks.h"
#include "frame/checks.hpp"
#include "frame/frame.hpp"
#include "zorvstat.h"

namespace {

template <class T>
constinit thread_local T *lv_forecast = nullptr;

bool all_finite(int n, const double *v) {
    for (int i = 0; i < n; ++i) {
        if (!std::isfinite(v[i])) return false;
    }
    return true;
}

// The largest lag, 0 for none; -1 if a lag is below 1 or the list is null.
int largest_lag(int k, const int *lags) {
    if (k == 0) return 0;
    if (!lags) return -1;
    int big = 0;
    for (int i = 0; i < k; ++i) {
        if (lags[i] < 1) return -1;
        if (lags[i] > big) big = lags[i];
    }
    return big;
}

// The field of a record that zorvs_f_arma cannot have made, or null.
const char *record_fault(const zorvs_arma_info &r) {
    if (r.p < 0 || r.q < 0 || r.p + r.q < 1) return "orders";
    const int big_p = largest_lag(r.p, r.ar_lags), big_q = largest_lag(r.q, r.ma_lags);
    if (big_p < 0 || big_q < 0 || big_p >= r.n_observations || big_q >= r.n_observations) return "lags";
    if ((r.p > 0 && !r.ar) || (r.q > 0 && !r.ma) || !all_finite(r.p, r.ar) || !all_finite(r.q, r.ma) ||
        !std::isfinite(r.constant))
        return "parameters";
    if (!(r.innovation_variance >= 0) || !std::isfinite(r.innovation_variance)) return "innovation_variance";
    if (r.n_last_observations != big_p || (big_p > 0 && !r.last_observations) ||
        !all_finite(big_p, r.last_observations))
        return "last_observations";
    if (r.n_last_residuals != 0 && r.n_last_residuals != big_q) return "n_last_residuals";
    if (r.n_last_residuals > 0 && (!r.last_residuals || !all_finite(big_q, r.last_residuals)))
        return "last_residuals";
    return nullptr;
}

template <class T>
void l_arma_forecast(const zorvs_arma_info *info, int n_predict, va_list *list) {
    // A confidence level below 50 is a warning of type 6, which costs nothing.
    constexpr auto failure = zorvs::Failure::above_warning_but_immediate;
    zorvs::OutputPair<T> table(lv_forecast<T>, failure);
    zorvs::OutputPair<T> psi_out(failure);
    zorvs::KeywordReader kw(list, 2);
    T confidence = 95;
    for (int key = kw.keyword(); key != 0; key = kw.keyword()) {
        switch (key) {
        case ZORVS_CONFIDENCE: confidence = kw.real<T>(); break;
        case ZORVS_PSI_WEIGHTS: psi_out.take_address(kw.pointer<T *>()); break;
        case ZORVS_PSI_WEIGHTS_USER: psi_out.take_user(kw.pointer<T>()); break;
        case ZORVS_RETURN_USER: table.take_user(kw.pointer<T>()); break;
        default: kw.unknown(key); return;
        }
    }
    int arg_no = 0, arg_no_2 = 0;
    zorvs_c1iarg(n_predict, "n_predict", 1, 0, &arg_no);
    zorvs::check::c1cip("confidence", confidence, &arg_no, &arg_no_2);
    if (!info) {
        zorvs_ermes(5, 21240);
    } else if (const char *field = record_fault(*info)) {
        zorvs_e1stl(1, field);
        zorvs_ermes(5, 21241);
    } else if (info->q > 0 && info->n_last_residuals == 0) {
        zorvs_e1sti(1, info->q);
        zorvs_ermes(5, 21242);
    }
    if (zorvs_error_n1rty[0] > 3 && zorvs_error_n1rty[0] != 6) return;
    if (!table.obtain(n_predict, "n_predict", 3, "3") || !psi_out.obtain(n_predict, "n_predict")) return;
    T *psi = psi_out.user() || psi_out.data() ? psi_out.data() : zorvs::workspace<T>(n_predict, "n_predict");
    T *zhat = zorvs::workspace<T>(n_predict, "n_predict");
    if (!psi || !zhat) return;

    const zorvs_arma_info &r = *info;
    const int big_p = r.n_last_observations, big_q = r.n_last_residuals;
    for (int h = 1; h <= n_predict; ++h) {
        T f = static_cast<T>(r.constant);
        for (int i = 0; i < r.p; ++i) {
            const int back = h - r.ar_lags[i];  // lead of the value used; <= 0 is observed
            const T z = back >= 1 ? zhat[back - 1] : static_cast<T>(r.last_observations[big_p - 1 + back]);
            f += static_cast<T>(r.ar[i]) * z;
        }
        for (int j = 0; j < r.q; ++j) {
            const int back = h - r.ma_lags[j];
            if (back <= 0) f -= static_cast<T>(r.ma[j]) * static_cast<T>(r.last_residuals[big_q - 1 + back]);
        }
        zhat[h - 1] = f;
    }
    for (int k = 0; k < n_predict; ++k) {
        T s = k == 0 ? T(1) : T(0);
        for (int i = 0; i < r.p; ++i) {
            if (r.ar_lags[i] <= k) s += static_cast<T>(r.ar[i]) * psi[k - r.ar_lags[i]];
        }
        for (int j = 0; j < r.q; ++j) {
            if (r.ma_lags[j] == k) s -= static_cast<T>(r.ma[j]);
        }
        psi[k] = s;
    }
    const T z = zorvs::dist::normal_quantile(T(0.5) + confidence / T(200), T(0.5) - confidence / T(200));
    const T sigma2 = static_cast<T>(r.innovation_variance);
    T *out = table.data();
    T sum_psi2 = 0;
    for (int h = 1; h <= n_predict; ++h) {
        sum_psi2 += psi[h - 1] * psi[h - 1];
        const T half = z * std::sqrt(sigma2 * sum_psi2);
        out[3 * (h - 1)] = zhat[h - 1];
        out[3 * (h - 1) + 1] = zhat[h - 1] - half;
        out[3 * (h - 1) + 2] = zhat[h - 1] + half;
    }
}

}  // namespace

extern "C" {

float *zorvs_f_arma_forecast(zorvs_arma_info *arma_info, int n_predict, ...) {
    ZORVS_KEYWORD_ENTRY(n_predict, "zorvs_f_arma_forecast", lv_forecast<float>,
                        l_arma_forecast<float>(arma_info, n_predict, &list));
}

double *zorvs_d_arma_forecast(zorvs_arma_info *arma_info, int n_predict, ...) {
    ZORVS_KEYWORD_ENTRY(n_predict, "zorvs_d_arma_forecast", lv_forecast<double>,
                        l_arma_forecast<double>(arma_info, n_predict, &list));
}

}  // extern "C"
