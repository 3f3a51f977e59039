// regression_summary.cpp - inference on the coefficients of a least-squares
// fit, read from its regression_info record: t tests, variance inflation
// factors, coefficient covariances and the analysis of variance table.
//
// Method: everything comes from the triangular factor R of the record, with
// R'R = X'WX, and never from X'X formed anew.  The regression sum of squares
// is the sum of the sequential (type I) sums of squares, the squares of the
// rotated right-hand side Rb below the intercept row.  The covariances are
// s2 (R'R)^-1 through the generalized triangular inverse, so that a dropped
// column has a zero row and column.  The inflation factor of column j is its
// sum of squares about the mean (about 0.0 without an intercept), read off
// column j of R, times the diagonal of (R'R)^-1: that is 1 / (1 - R_j^2) of
// column j regressed on the others, without forming that regression.
//
// Settled here:
//  - The checks of the record run before any output is touched; results
//    are computed in work space and copied to the caller's storage only
//    when no error above a warning (other than an immediate one) stands, so
//    that a failed call writes nothing there.
//  - A null record is refused with (5, 150), a null user array with
//    (5, 104), ZORVS_COEF_T_TESTS_COL_DIM below 4 with (5, 603) and
//    ZORVS_COVB_COL_DIM below n_parameters with (5, 601).
//  - A failing allocation of an output names the sizes that set the block
//    (n_parameters and the leading dimension): (5, 201) or (5, 202); that of
//    the work space raises (5, 200).
//  - The intercept's inflation factor is n (R(0,0)^2, the sum of weights)
//    times the diagonal of the inverse: 1 / (1 - R^2) of the constant
//    column regressed on the others without intercept.  A dropped column's
//    factor is infinite, its coefficient 0.0, its standard error 0.0, and
//    its t and p NaN.
//  - With no degrees of freedom for error the fit is exact, and the error
//    sum of squares of the table is 0.0 whatever rounding the record holds:
//    the mean square is then NaN, and so are the covariances, standard
//    errors, t and p; the estimates stand.

#include <cmath>
#include <cstdarg>
#include <cstring>

#include "dist/dist.hpp"
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

// Element (i, j), from 0, of a column-major matrix.
template <class T>
T &at(T *a, int ld, int i, int j) {
    return a[static_cast<long>(j) * ld + i];
}

template <class T>
void l_rsqss(int np, int ic, const T *r, int ldr, const T *b, T *df, T *ss) {
    for (int j = ic; j < np; ++j) {
        T s = T(0);
        for (int k = j; k < np; ++k) s += at(r, ldr, j, k) * b[k];
        df[j - ic] = at(r, ldr, j, j) > T(0) ? T(1) : T(0);
        ss[j - ic] = s * s;
    }
}

template <class T>
void l_rstat(int np, int ic, const T *r, int ldr, const T *b, T dfe, T sse, T *aov, T *vif, T *cov, int ldcov,
             T *se, T *work) {
    zorvs::framed("zorvs_rstat", [&] {
        const T nan = zorvs::missing<T>();
        const int nv = np - ic;
        T *df = work, *ss = work + np;
        l_rsqss(np, ic, r, ldr, b, df, ss);
        T dfr = T(0), ssr = T(0);
        for (int j = 0; j < nv; ++j) {
            dfr += df[j];
            ssr += ss[j];
        }
        T mean = nan;
        if (ic && at(r, ldr, 0, 0) > T(0)) {
            T s = T(0);
            for (int j = 0; j < np; ++j) s += at(r, ldr, 0, j) * b[j];
            mean = s / at(r, ldr, 0, 0);
        }
        for (int k = 0; k < 15; ++k) aov[k] = nan;
        // No degrees of freedom for error: the fit is exact, and what the
        // record holds as the error sum of squares is rounding.
        const T e = dfe == T(0) ? T(0) : sse;
        zorvs::regress::g1aov(dfr, dfe, e, ssr + e, mean, aov);
        if (zorvs::regress::failed_here()) return;

        // Sums of squares of the columns about their means, from R.
        for (int j = 0; j < np; ++j) vif[j] = T(0);
        if (ic) vif[0] = at(r, ldr, 0, 0) * at(r, ldr, 0, 0);
        for (int j = ic; j < np; ++j) {
            const T d = at(r, ldr, j, j);
            if (d > T(0)) {
                for (int k = ic; k <= j; ++k)
                    if (at(r, ldr, k, k) > T(0)) vif[j] += at(r, ldr, k, j) * at(r, ldr, k, j);
            } else {
                vif[j] = d == T(0) ? zorvs::infinity<T>() : nan;
            }
        }
        zorvs::regress::rcovb(np, r, ldr, T(1), T(1), cov, ldcov);
        if (zorvs::regress::failed_here()) return;
        for (int j = 0; j < np; ++j)
            if (std::isfinite(vif[j])) vif[j] *= at(cov, ldcov, j, j);

        const T mse = aov[7];
        for (int j = 0; j < np; ++j)
            for (int i = 0; i <= j; ++i) at(cov, ldcov, i, j) = std::isnan(mse) ? nan : at(cov, ldcov, i, j) * mse;
        zorvs::linalg::csfrg(np, cov, ldcov);
        for (int j = 0; j < np; ++j) se[j] = std::isnan(mse) ? nan : std::sqrt(at(cov, ldcov, j, j));
    });
}

template <class T>
void l_rcoef(int np, const T *b, const T *se, T dfe, T mse, T *tt, int ldtt) {
    zorvs::framed("zorvs_rcoef", [&] {
        if (dfe < T(0)) {
            zorvs::raise(5, 20423, dfe);
            return;
        }
        for (int j = 0; j < np; ++j) {
            T *row = tt + static_cast<long>(j) * ldtt;
            row[0] = b[j];
            row[1] = se[j];
            row[2] = row[3] = zorvs::missing<T>();
            if (std::isnan(mse)) continue;
            if (se[j] < T(0)) {
                zorvs::raise(5, 20424, j, se[j]);
                return;
            }
            zorvs::dist::c1t(b[j], se[j], dfe, &row[2], &row[3]);
        }
    });
}

// The checks of a record that every reader of it makes.
template <class T>
bool record_is_sound(const Info<T> *info) {
    if (!info) {
        zorvs_null_pointer("regression_info", -1, nullptr);
        return false;
    }
    int arg = 0;
    zorvs_c1iarg(info->n_parameters, "regression_info->n_parameters", 1, 0, &arg);
    zorvs_c1iarg(info->intercept, "regression_info->intercept", 0, 1, &arg);
    zorvs_c1iarg(info->n_parameters - info->intercept, "abs(n_independent)", 0, -1, &arg);
    zorvs::check::c1ge0(info->df_error, "regression_info->df_error", &arg);
    zorvs::check::c1ge0(*info->sscp_error, "regression_info->sscp_error[0]", &arg);
    return !zorvs::regress::failed_here();
}

template <class T>
void l_regression_summary(Info<T> *info, va_list *list) {
    constexpr auto rule = zorvs::Failure::above_warning_but_immediate;
    zorvs::OutputPair<T> tests(rule), vif(rule), cov(rule), aov(rule);
    zorvs::KeywordReader kw(list, 1);
    int tests_ld = 4, cov_ld = -1;
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        switch (k) {
        case ZORVS_COEF_T_TESTS: tests.take_address(kw.pointer<T *>()); break;
        case ZORVS_COEF_T_TESTS_USER:
            zorvs::regress::take_user_array(kw, tests, "coef_t_tests", "ZORVS_COEF_T_TESTS_USER");
            break;
        case ZORVS_COEF_T_TESTS_COL_DIM: tests_ld = kw.integer(); break;
        case ZORVS_COEF_VIF: vif.take_address(kw.pointer<T *>()); break;
        case ZORVS_COEF_VIF_USER: zorvs::regress::take_user_array(kw, vif, "coef_vif", "ZORVS_COEF_VIF_USER"); break;
        case ZORVS_COEF_COVARIANCES: cov.take_address(kw.pointer<T *>()); break;
        case ZORVS_COEF_COVARIANCES_USER:
            zorvs::regress::take_user_array(kw, cov, "coef_covariances", "ZORVS_COEF_COVARIANCES_USER");
            break;
        case ZORVS_COVB_COL_DIM: cov_ld = kw.integer(); break;
        case ZORVS_ANOVA_TABLE: aov.take_address(kw.pointer<T *>()); break;
        case ZORVS_ANOVA_TABLE_USER:
            zorvs::regress::take_user_array(kw, aov, "anova_table", "ZORVS_ANOVA_TABLE_USER");
            break;
        default: kw.unknown(k); return;
        }
    }
    if (zorvs::regress::failed_here() || !record_is_sound<T>(info)) return;
    const int np = info->n_parameters;
    if (cov_ld < 0) cov_ld = np;
    int arg = 0;
    zorvs_c1iarg(tests_ld, "coef_t_tests_col_dim", 4, 0, &arg);
    zorvs_c12ile(np, "n_parameters", cov_ld, "covb_col_dim", &arg);
    if (zorvs::regress::failed_here()) return;
    if (!tests.obtain(np, "n_parameters", tests_ld, "coef_t_tests_col_dim") || !vif.obtain(np, "n_parameters") ||
        !cov.obtain(np, "n_parameters", cov_ld, "covb_col_dim") || !aov.obtain(15, "anova_table"))
        return;

    // Work: covariances (np x np), standard errors, factors, table, the
    // sequential columns (2 np) and the t tests (np x 4).
    T *w_cov = zorvs::workspace<T>(static_cast<std::size_t>(np) * (np + 8) + 15);
    if (!w_cov) return;
    T *w_se = w_cov + static_cast<long>(np) * np, *w_vif = w_se + np, *w_aov = w_vif + np;
    T *w_seq = w_aov + 15, *w_tests = w_seq + 2 * np;
    l_rstat(np, info->intercept, info->r_matrix, np, info->coefficients, info->df_error, *info->sscp_error, w_aov,
            w_vif, w_cov, np, w_se, w_seq);
    if (zorvs::regress::failed_here()) return;
    l_rcoef(np, info->coefficients, w_se, info->df_error, w_aov[7], w_tests, 4);
    if (zorvs::regress::failed_here()) return;

    for (int j = 0; j < np; ++j) {
        if (T *t = tests.data()) std::memcpy(t + static_cast<long>(j) * tests_ld, w_tests + 4L * j, 4 * sizeof(T));
        if (T *c = cov.data())
            std::memcpy(c + static_cast<long>(j) * cov_ld, w_cov + static_cast<long>(j) * np, np * sizeof(T));
        if (T *v = vif.data()) v[j] = w_vif[j];
    }
    if (T *a = aov.data()) std::memcpy(a, w_aov, 15 * sizeof(T));
}

}  // namespace

extern "C" {

void zorvs_rsqss(int np, int intcep, const float r[], int ldr, const float b[], float df[], float ss[]) {
    zorvs::framed("zorvs_rsqss", [&] { l_rsqss(np, intcep, r, ldr, b, df, ss); });
}
void zorvs_drsqss(int np, int intcep, const double r[], int ldr, const double b[], double df[], double ss[]) {
    zorvs::framed("zorvs_rsqss", [&] { l_rsqss(np, intcep, r, ldr, b, df, ss); });
}
void zorvs_rstat(int np, int intcep, const float r[], int ldr, const float b[], float dfe, float sse, float aov[],
                 float vif[], float cov[], int ldcov, float se[], float work[]) {
    l_rstat(np, intcep, r, ldr, b, dfe, sse, aov, vif, cov, ldcov, se, work);
}
void zorvs_drstat(int np, int intcep, const double r[], int ldr, const double b[], double dfe, double sse,
                  double aov[], double vif[], double cov[], int ldcov, double se[], double work[]) {
    l_rstat(np, intcep, r, ldr, b, dfe, sse, aov, vif, cov, ldcov, se, work);
}
void zorvs_rcoef(int np, const float b[], const float se[], float dfe, float mse, float tt[], int ldtt) {
    l_rcoef(np, b, se, dfe, mse, tt, ldtt);
}
void zorvs_drcoef(int np, const double b[], const double se[], double dfe, double mse, double tt[], int ldtt) {
    l_rcoef(np, b, se, dfe, mse, tt, ldtt);
}

void zorvs_f_regression_summary(zorvs_f_regression_info *regression_info, ...) {
    ZORVS_KEYWORD_ENTRY_VOID(regression_info, "zorvs_f_regression_summary",
                             l_regression_summary<float>(regression_info, &list));
}
void zorvs_d_regression_summary(zorvs_d_regression_info *regression_info, ...) {
    ZORVS_KEYWORD_ENTRY_VOID(regression_info, "zorvs_d_regression_summary",
                             l_regression_summary<double>(regression_info, &list));
}

}  // extern "C"
