// regression_prediction.cpp - predicted values of new or old rows from the
// regression_info record of a fit, with pointwise limits for the mean and
// for a new observation, simultaneous Scheffe limits for the mean, and,
// given the responses, the case statistics: residual, leverage,
// standardised and deleted (externally studentised) residuals, Cook's D and
// DFFITS.
//
// Method: with R the factor of the fit (R'R = X'WX), the leverage of a model
// row x of weight w is h = w |z|^2 with R'z = x, one triangular solve per
// row and no inverse formed.  Then, with s2 = SSE / df and e the residual
// (Belsley, Kuh and Welsch 1980; Cook 1977):
//   standardised   e / sqrt(s2 (1 - h) / w)
//   Cook's D       e^2 w h / (r s2 (1 - h)^2),  r the rank
//   deleted        e / sqrt(s2d (1 - h) / w),  s2d = (SSE - w e^2 / (1 - h)) / (df - 1)
//   DFFITS         e sqrt(w h) / (sqrt(s2d) (1 - h))
// The variance with the case deleted comes from the update formula, without
// refitting.  Limits: the mean +- t sqrt(s2 h / w), a new observation
// +- t sqrt(s2 / w + s2 h / w), Scheffe +- sqrt(rank F s2 h).
//
// The case vector of a row, 12 reals from 0: response, prediction, residual,
// leverage, standardised residual, deleted residual, Cook's D, DFFITS, the
// lower and upper limits for the mean, those for a new observation.
//
// Settled here:
//  - A cell of the case vector that no step reaches for a row holds NaN:
//    the vector is cleared to NaN ahead of each row.  A row with a NaN
//    regressor gets NaN for all but the response.
//  - A null record is refused with (5, 150), a null x, ZORVS_Y or
//    ZORVS_WEIGHTS array with (5, 6002) naming it, a null user array (the
//    result's included) with (5, 104).  A failing allocation of an output
//    raises (5, 201) naming n_predict, the count that sets its size, and of
//    the work space (5, 200).
//  - Everything is computed in work space and copied to the outputs when
//    the last row is done, so that after a terminal error (a negative weight
//    in a later row, say) the caller's storage is as it was.
//  - The t multiplier is computed once per call, and the Scheffe multiplier
//    from the first row that holds no NaN, with the rank of that row's
//    solve (the rank of the fit).  With fewer than 1 degree of freedom for
//    error (fractional frequencies) there is no t multiplier, and the
//    pointwise limits are NaN, where the t distribution would refuse it.
//  - The warnings of the leverage clamp and of a negative deleted variance
//    that the caller cannot see the use of are withdrawn at the end if they
//    are the latest event of the call.
//  - Without ZORVS_Y the response is 0.0, so a residual exists and the
//    leverage of a row far from the data is clamped to 1.0 as for a known
//    response (with its warning when the leverage is asked for).
//  - A dropped column's row and column of R are 0.0 at and above the
//    diagonal, so the record no longer tells how that column depends on the
//    others: every row with a non-zero entry there is reported as outside
//    the estimation space (3, 20050), a training row included.

#include <cmath>
#include <cstdarg>
#include <cstring>
#include <limits>

#include "dist/dist.hpp"
#include "dist/tails.hpp"
#include "frame/checks.hpp"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "frame/raise.hpp"
#include "kernels/linalg.hpp"
#include "stat/regress/regress.hpp"
#include "zorvstat.h"

namespace {

template <class T>
using Info = std::conditional_t<std::is_same_v<T, float>, zorvs_f_regression_info, zorvs_d_regression_info>;

// Entries of the case vector, and the two Scheffe limits after them.
enum : int { RESPONSE, PREDICTED, RESIDUAL, LEVERAGE, STANDARDIZED, DELETED, COOKSD, DFFITS, MEAN_LOW, MEAN_HIGH,
             NEW_LOW, NEW_HIGH, SCHEFFE_LOW, SCHEFFE_HIGH, ROW_ENTRIES };

template <class T>
void l_r2tin(int np, const T *r, int ldr, const T *xrow, T w, T e, T dfe, T sse, T *z, int *rank, T *cs) {
    zorvs::framed("zorvs_r2tin", [&] {
        constexpr T eps = std::numeric_limits<T>::epsilon();
        int solved_rank = 0;
        zorvs::linalg::girts(np, r, ldr, 1, xrow, np, 2, &solved_rank, z, np, z, np);
        // A right side out of the span of R' is a row outside the
        // estimation space: the same event, told in the terms of prediction.
        if (zorvs::error_stack.top()->code == 11059) {
            zorvs_e1mes(0, 0, " ");
            zorvs_ermes(3, 20050);
        }
        if (zorvs::regress::failed_here()) return;
        int count = 0;
        T zz = T(0);
        for (int j = 0; j < np; ++j) {
            if (r[static_cast<long>(j) * ldr + j] <= T(0))
                z[j] = T(0);
            else
                ++count;
            zz += z[j] * z[j];
        }
        *rank = count;
        T h = w * zz;
        if (!std::isnan(e) && h > T(1) - T(10) * eps) {
            if (h > T(1) + T(1000) * eps) zorvs::raise(3, 20051, h);
            h = T(1);
        }
        cs[LEVERAGE] = h;
        if (std::isnan(e) || w == T(0) || dfe == T(0)) return;
        const T s2 = zorvs::check::divide(sse, dfe);
        const T u = T(1) - h, v = u / w;
        if (s2 == T(0) || v == T(0)) return;
        cs[STANDARDIZED] = zorvs::check::divide(e, std::sqrt(s2 * v));
        cs[COOKSD] = count == 0 ? zorvs::missing<T>() : zorvs::check::divide(e * e * w * h / count, s2 * u * u);
        if (dfe == T(1)) return;
        const T a = e * e / v, f = dfe - T(1);
        T s2d = (sse - a) / f;
        const T g = (sse + a) / f;
        if (s2d < T(10) * eps * g) {
            if (s2d < -T(1000) * eps * g) zorvs::raise(3, 20052, s2d);
            s2d = T(0);
        }
        cs[DELETED] = zorvs::check::divide(e, std::sqrt(s2d * v));
        cs[DFFITS] = zorvs::check::divide(e * std::sqrt(w * h), std::sqrt(s2d) * u);
    });
}

template <class T>
void l_r2ase(int np, int ic, const T *r, int ldr, const T *b, T dfe, T sse, const T *row, T tmult, T *cs, T *z,
             int *rank) {
    const int nv = np - ic;
    const T w = row[nv], y = row[nv + 1];
    for (int k = 0; k < 12; ++k) cs[k] = zorvs::missing<T>();
    cs[RESPONSE] = y;
    *rank = 0;
    T *model = z + np;
    if (ic) model[0] = T(1);
    bool clean = true;
    T prediction = T(0);
    for (int j = 0; j < nv; ++j) {
        model[ic + j] = row[j];
        clean = clean && !std::isnan(row[j]);
    }
    for (int j = 0; j < np; ++j) prediction += model[j] * b[j];
    cs[PREDICTED] = prediction;
    cs[RESIDUAL] = y - prediction;
    if (!clean) return;
    l_r2tin(np, r, ldr, model, w, cs[RESIDUAL], dfe, sse, z, rank, cs);
    if (zorvs::regress::failed_here()) return;
    const T s2 = zorvs::check::divide(sse, dfe);
    if (std::isnan(w) || w == T(0) || std::isnan(prediction) || std::isnan(s2)) return;
    const T q = s2 * cs[LEVERAGE] / w;
    const T half_mean = std::sqrt(q) * tmult, half_new = tmult * std::sqrt(s2 / w + q);
    cs[MEAN_LOW] = prediction - half_mean;
    cs[MEAN_HIGH] = prediction + half_mean;
    cs[NEW_LOW] = prediction - half_new;
    cs[NEW_HIGH] = prediction + half_new;
}

// The output keywords: the entry of the row they hand out (two entries for
// a pair of limits), and whether they need the responses.
struct Column {
    int keyword, user_keyword, entry;
    bool pair, needs_y;
    const char *name, *user_name, *short_name;
};
constexpr Column columns[] = {
    {ZORVS_RESIDUAL, ZORVS_RESIDUAL_USER, RESIDUAL, false, true, "ZORVS_RESIDUAL", "ZORVS_RESIDUAL_USER", "residual"},
    {ZORVS_LEVERAGE, ZORVS_LEVERAGE_USER, LEVERAGE, false, false, "ZORVS_LEVERAGE", "ZORVS_LEVERAGE_USER",
     "leverage"},
    {ZORVS_STANDARDIZED_RESIDUAL, ZORVS_STANDARDIZED_RESIDUAL_USER, STANDARDIZED, false, true,
     "ZORVS_STANDARDIZED_RESIDUAL", "ZORVS_STANDARDIZED_RESIDUAL_USER", "standardized_residual"},
    {ZORVS_DELETED_RESIDUAL, ZORVS_DELETED_RESIDUAL_USER, DELETED, false, true, "ZORVS_DELETED_RESIDUAL",
     "ZORVS_DELETED_RESIDUAL_USER", "deleted_residual"},
    {ZORVS_COOKSD, ZORVS_COOKSD_USER, COOKSD, false, true, "ZORVS_COOKSD", "ZORVS_COOKSD_USER", "cooksd"},
    {ZORVS_DFFITS, ZORVS_DFFITS_USER, DFFITS, false, true, "ZORVS_DFFITS", "ZORVS_DFFITS_USER", "dffits"},
    {ZORVS_CI_POP_MEAN, ZORVS_CI_POP_MEAN_USER, MEAN_LOW, true, false, "ZORVS_CI_POP_MEAN", "ZORVS_CI_POP_MEAN_USER",
     "ci_pop_mean"},
    {ZORVS_CI_NEW_SAMPLE, ZORVS_CI_NEW_SAMPLE_USER, NEW_LOW, true, false, "ZORVS_CI_NEW_SAMPLE",
     "ZORVS_CI_NEW_SAMPLE_USER", "ci_new_sample"},
    {ZORVS_SCHEFFE_CI, ZORVS_SCHEFFE_CI_USER, SCHEFFE_LOW, true, false, "ZORVS_SCHEFFE_CI", "ZORVS_SCHEFFE_CI_USER",
     "scheffe_ci"},
};

template <class T>
constinit thread_local T *lv_regression_prediction = nullptr;

template <class T>
void l_regression_prediction(Info<T> *info, int n_predict, T *x, va_list *list) {
    constexpr auto rule = zorvs::Failure::above_warning_but_immediate;
    zorvs::OutputPair<T> result(lv_regression_prediction<T>, rule);
    zorvs::OutputPair<T> outs[ROW_ENTRIES];
    for (auto &o : outs) o = zorvs::OutputPair<T>(rule);
    zorvs::KeywordReader kw(list, 3);
    const T *y = nullptr, *weights = nullptr;
    bool y_given = false, weights_given = false, col_dim_given = false;
    int x_col_dim = 0;
    T confidence = T(95);
    const char *needs_y[ROW_ENTRIES] = {};
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        switch (k) {
        case ZORVS_Y: y = kw.pointer<T>(), y_given = true; break;
        case ZORVS_WEIGHTS: weights = kw.pointer<T>(), weights_given = true; break;
        case ZORVS_X_COL_DIM: x_col_dim = kw.integer(), col_dim_given = true; break;
        case ZORVS_CONFIDENCE: confidence = kw.real<T>(); break;
        case ZORVS_CONFIDENCE_ADR:
            if (const T *p = kw.pointer<T>())
                confidence = *p;
            else
                zorvs_null_pointer("ZORVS_CONFIDENCE_ADR", -1, nullptr);
            break;
        case ZORVS_RETURN_USER:
            zorvs::regress::take_user_array(kw, result, "prediction", "ZORVS_RETURN_USER");
            break;
        default: {
            const Column *c = nullptr;
            for (const Column &col : columns)
                if (k == col.keyword || k == col.user_keyword) c = &col;
            if (!c) {
                kw.unknown(k);
                return;
            }
            const bool user = k == c->user_keyword;
            for (int part = 0; part <= (c->pair ? 1 : 0); ++part) {
                zorvs::OutputPair<T> &o = outs[c->entry + part];
                if (user)
                    zorvs::regress::take_user_array(kw, o, c->short_name, c->user_name);
                else
                    o.take_address(kw.pointer<T *>());
            }
            if (c->needs_y) needs_y[c->entry] = user ? c->user_name : c->name;
        }
        }
    }
    if (zorvs::regress::failed_here()) return;
    if (!info) {
        zorvs_null_pointer("regression_info", -1, nullptr);
        return;
    }
    const int np = info->n_parameters, ic = info->intercept, nv = np - ic;
    int arg = 0;
    zorvs_c1iarg(n_predict, "n_predict", 1, 0, &arg);
    zorvs::check::c1cip("confidence", confidence, &arg, &arg);
    if (col_dim_given && x_col_dim < nv) {
        zorvs_e1stl(1, "x_col_dim");
        zorvs_e1stl(2, "regression_info->n_independent");
        zorvs::raise(5, 600, x_col_dim, nv);
    }
    if (ic != 0 && ic != 1) zorvs::raise(5, 20300, ic);
    if (np < 1) zorvs::raise(5, 20301, np);
    for (const char *name : needs_y)
        if (name && !y_given) {
            zorvs_e1stl(1, name);
            zorvs_ermes(5, 20220);
        }
    auto refuse_null = [](bool null, const char *name) {
        if (!null) return;
        zorvs_e1stl(1, name);
        zorvs_ermes(5, 6002);
    };
    refuse_null(!x, "x");
    refuse_null(y_given && !y, "y");
    refuse_null(weights_given && !weights, "weights");
    if (zorvs::regress::failed_here()) return;
    if (!col_dim_given) x_col_dim = nv;
    if (!result.obtain(n_predict, "n_predict")) return;
    for (int e = RESIDUAL; e < ROW_ENTRIES; ++e)
        if (!outs[e].obtain(n_predict, "n_predict")) return;

    // Work: the rows' entries, one row of data, the solve.
    const std::size_t n = static_cast<std::size_t>(n_predict);
    T *cases = zorvs::workspace<T>(n * ROW_ENTRIES + static_cast<std::size_t>(nv + 2 + 2 * np));
    if (!cases) return;
    T *row = cases + n * ROW_ENTRIES, *z = row + nv + 2;
    const T dfe = info->df_error, sse = *info->sscp_error, nan = zorvs::missing<T>();
    const T tmult = dfe >= T(1) ? T(zorvs::dist::t_quantile_upper(double((T(100) - confidence) / T(200)), double(dfe))) : nan;
    T scheffe = nan;
    bool scheffe_ready = false;
    for (std::size_t i = 0; i < n; ++i) {
        const T *xi = x + i * static_cast<std::size_t>(x_col_dim);
        bool clean = true;
        for (int j = 0; j < nv; ++j) row[j] = xi[j];
        row[nv] = weights ? weights[i] : T(1);
        row[nv + 1] = y ? y[i] : T(0);
        if (row[nv] < T(0)) {
            zorvs::raise(5, 11057, static_cast<int>(i), row[nv]);
            return;
        }
        for (int j = 0; j < nv + 2; ++j) clean = clean && !std::isnan(row[j]);
        T *cs = cases + i * ROW_ENTRIES;
        int rank = 0;
        l_r2ase(np, ic, info->r_matrix, np, info->coefficients, dfe, sse, row, tmult, cs, z, &rank);
        if (zorvs::regress::failed_here()) return;
        cs[SCHEFFE_LOW] = cs[SCHEFFE_HIGH] = nan;
        if (!(dfe > T(0)) || !clean) continue;
        if (!scheffe_ready && rank > 0)  // a level of 0 is a band of width 0
            scheffe = confidence > T(0)
                          ? T(rank) * zorvs::dist::F_inverse_cdf(confidence / T(100), T(rank), dfe)
                          : T(0);
        scheffe_ready = true;
        const T half = std::sqrt(scheffe * zorvs::check::divide(sse, dfe) * cs[LEVERAGE]);
        cs[SCHEFFE_LOW] = cs[PREDICTED] - half;
        cs[SCHEFFE_HIGH] = cs[PREDICTED] + half;
    }

    auto wanted = [&](int first, int last) {
        for (int e = first; e <= last; ++e)
            if (outs[e].wanted()) return true;
        return false;
    };
    const int code = zorvs::error_stack.top()->code;
    if ((code == 20051 && !wanted(LEVERAGE, DFFITS)) ||
        (code == 20052 && !outs[DELETED].wanted() && !outs[DFFITS].wanted()))
        zorvs_e1mes(0, 0, " ");
    for (std::size_t i = 0; i < n; ++i) {
        const T *cs = cases + i * ROW_ENTRIES;
        result.data()[i] = cs[PREDICTED];
        for (int e = RESIDUAL; e < ROW_ENTRIES; ++e)
            if (T *out = outs[e].data()) out[i] = cs[e];
    }
}

}  // namespace

extern "C" {

void zorvs_r2ase(int np, int intcep, const float r[], int ldr, const float b[], float dfe, float sse,
                 const float row[], float tmult, float cases[], float z[], int *rank) {
    l_r2ase(np, intcep, r, ldr, b, dfe, sse, row, tmult, cases, z, rank);
}
void zorvs_dr2ase(int np, int intcep, const double r[], int ldr, const double b[], double dfe, double sse,
                  const double row[], double tmult, double cases[], double z[], int *rank) {
    l_r2ase(np, intcep, r, ldr, b, dfe, sse, row, tmult, cases, z, rank);
}
void zorvs_r2tin(int np, const float r[], int ldr, const float xrow[], float w, float e, float dfe, float sse,
                 float z[], int *rank, float cases[]) {
    l_r2tin(np, r, ldr, xrow, w, e, dfe, sse, z, rank, cases);
}
void zorvs_dr2tin(int np, const double r[], int ldr, const double xrow[], double w, double e, double dfe,
                  double sse, double z[], int *rank, double cases[]) {
    l_r2tin(np, r, ldr, xrow, w, e, dfe, sse, z, rank, cases);
}

float *zorvs_f_regression_prediction(zorvs_f_regression_info *regression_info, int n_predict, float x[], ...) {
    ZORVS_KEYWORD_ENTRY(x, "zorvs_f_regression_prediction", lv_regression_prediction<float>,
                        l_regression_prediction<float>(regression_info, n_predict, x, &list));
}
double *zorvs_d_regression_prediction(zorvs_d_regression_info *regression_info, int n_predict, double x[], ...) {
    ZORVS_KEYWORD_ENTRY(x, "zorvs_d_regression_prediction", lv_regression_prediction<double>,
                        l_regression_prediction<double>(regression_info, n_predict, x, &list));
}

}  // extern "C"
