// regression.cpp - least-squares fit of one dependent variable on a matrix of
// regressors, with its analysis of variance table, coefficient covariances,
// means, residuals and the regression_info record.
//
// Method: one pass over the rows, each rotated into an upper triangular
// factor by square-root-free Givens rotations in the form of Gentleman
// (Applied Statistics algorithm AS 75, 1974) as refined by Miller (AS 274,
// 1992): the factor is a unit upper triangle with a vector of squared scales
// d, so that a rotation costs two multiplications and two additions per
// element and no square root.  With an intercept the first row of the
// triangle carries the weighted means, and a new row enters it with weight 1,
// which is the exact updating of the mean (West 1979) for every column at
// once.  During the pass the rotation keeps the reciprocals of the row's
// weight and of the scales, which takes the division out of the chain from
// one step of a row to the next; the loop over a row's elements runs over
// whole 32-byte blocks, free of calls, and the pass is built for AVX2 as well
// as for the baseline instruction set (no fused multiply-add: the rounding
// is the same in both).
//
// Rank: at the close, column j is dependent if its scale d[j] is at most
// tol^2 times its sum of squares about the earlier columns' span plus d[j]
// (below the intercept row), i.e. if 1 - R^2 of column j on the columns
// before it is at most tol^2.  A constant column other than the intercept
// and a column of zeros are dependent.  The row of a dependent column is
// rotated into the rows below it, so that its information is kept, and the
// column's coefficient is 0.0.
//
// Settled here:
//  - ZORVS_X_MEAN (and the record's x_mean and y_mean) are the means weighted
//    by frequency times weight, sum(f w x) / sum(f w), over the rows used:
//    the point the fitted plane passes through, and with frequencies alone
//    the plain mean of the replicated rows.  Without a row of positive
//    weight they stay 0.0.
//  - The tolerance is checked before the pass, so that a bad one costs no
//    pass over the data.
//  - A user array given as a null pointer is refused with (5, 104), and
//    ZORVS_COV_COL_DIM below the number of parameters with (5, 601).
//  - The p-value of F, 1 - F(f), is summed as the upper tail itself, so that
//    a small p-value keeps its relative accuracy.
//  - Frequencies below 1.0 that sum to less than the rank leave df_error
//    negative: (6, 11049) as for none, the record keeps the value, and the
//    analysis of variance table shows 0.0 error degrees of freedom.

#include <cmath>
#include <cstdarg>
#include <cstring>
#include <limits>

#include "dist/beta_incomplete.hpp"
#include "frame/checks.hpp"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "kernels/kernels.h"
#include "kernels/linalg.hpp"
#include "stat/regress/givens_fit.hpp"
#include "stat/regress/regress.hpp"
#include "zorvstat.h"

namespace {

template <class T>
using Info = std::conditional_t<std::is_same_v<T, float>, zorvs_f_regression_info, zorvs_d_regression_info>;

// 1 - F(f) of the F distribution, summed as the upper tail itself: a small
// p-value keeps its relative accuracy, where 1 minus the distribution
// function would keep only its absolute one.
template <class T>
T f_upper_tail(T f, T df1, T df2) {
    if (f <= T(0)) return T(1);
    return zorvs::continuous::F_tail<T>(f, df1, df2, true);
}
// One row z (p regressors, y at z[p]) of weight t rotated into the rows
// from j0 on; what is left of it goes to the error sum of squares.
template <class T>
__attribute__((always_inline)) inline void rotate_row(T *__restrict rbar, T *__restrict d, T *__restrict z, int p,
                                                      int ld, int j0, T t, T &sse) {
    for (int j = j0; j < p && t != T(0); ++j) {
        const T xi = z[j];
        if (xi == T(0)) continue;
        const T di = d[j];
        const T dpi = di + (t * xi) * xi;
        if (dpi == T(0)) continue;
        const T cbar = di / dpi;
        const T sbar = (t * xi) / dpi;
        t = cbar * t;
        d[j] = dpi;
        T *__restrict r = rbar + static_cast<long>(j) * ld;
        for (int k = j + 1; k <= p; ++k) {
            const T zk = z[k];
            z[k] = zk - xi * r[k];
            r[k] = cbar * r[k] + sbar * zk;
        }
    }
    sse += (t * z[p]) * z[p];
}

// The same rotation during the pass, with the reciprocals u = 1/t of the
// row's weight and e[j] = 1/d[j] of the scales (e = inf for a row that holds
// nothing yet).  Then u at the next row of R is u + e[j] xi^2, a sum that
// needs no division, and the one division of a step, 1/(u + e[j] xi^2), is
// off the chain from one step to the next: the steps of a row follow each
// other at the pace of a multiplication and an addition instead of a
// division.  cbar = u h, sbar = e[j] xi h and e[j] cbar are Gentleman's
// d/d', t xi/d' and 1/d', with h = 1/(u + e[j] xi^2).
template <class T>
__attribute__((always_inline)) inline void rotate_row_reciprocal(T *__restrict rbar, T *__restrict e,
                                                                 T *__restrict z, int p, int ld, T u, T &sse) {
    typedef T V __attribute__((vector_size(32)));
    constexpr int lanes = zorvs::GivensFit<T>::lanes;
    const T inf = std::numeric_limits<T>::infinity();
    for (int j = 0; j < p; ++j) {
        const T xi = z[j];
        if (xi == T(0)) continue;
        T *__restrict r = rbar + static_cast<long>(j) * ld;
        const T ej = e[j];
        if (ej == inf) {
            // An empty row of R takes the whole rest of the row.
            e[j] = u / (xi * xi);
            for (int k = j + 1; k <= p; ++k) r[k] = z[k] / xi;
            return;
        }
        const T exi = ej * xi;
        const T den = u + exi * xi;
        const T h = T(1) / den;
        const T cbar = u * h;
        const T sbar = exi * h;
        e[j] = ej * cbar;
        u = den;
        // Up to the next multiple of the lane count one by one, then whole
        // vectors: every step reads and writes z in the same 32-byte blocks,
        // so that a block written by one step is read whole by the next.
        const int head = (j + lanes) / lanes * lanes;  // j + 1 rounded up
        for (int k = j + 1; k < head && k <= p; ++k) {
            const T zk = z[k];
            z[k] = zk - xi * r[k];
            r[k] = cbar * r[k] + sbar * zk;
        }
        for (int k = head; k < ld; k += lanes) {
            V zv, rv;
            __builtin_memcpy(&zv, z + k, sizeof(V));
            __builtin_memcpy(&rv, r + k, sizeof(V));
            const V zn = zv - xi * rv;
            const V rn = cbar * rv + sbar * zv;
            __builtin_memcpy(z + k, &zn, sizeof(V));
            __builtin_memcpy(r + k, &rn, sizeof(V));
        }
    }
    sse += (z[p] * z[p]) / u;
}

// Row i into z (1.0 for the intercept, the regressors, y) if it holds no
// NaN; else it counts as missing.
template <class T>
__attribute__((always_inline)) inline bool take_row(zorvs::GivensFit<T> &f, const T *__restrict row, T y) {
    const int c = f.intercept, nv = f.n_independent, p = f.p;
    T *__restrict z = f.z;
    int bad = y != y;
    for (int j = 0; j < nv; ++j) bad |= row[j] != row[j];
    if (bad) {
        ++f.rows_missing;
        return false;
    }
    z[0] = T(1);
    for (int j = 0; j < nv; ++j) z[c + j] = row[j];
    z[p] = y;
    return true;
}

// The extremes of every column and of y; the first used row sets them.
template <class T>
__attribute__((always_inline)) inline void track_extremes(zorvs::GivensFit<T> &f) {
    const int p = f.p;
    T *__restrict z = f.z;
    T *__restrict lo = f.lo;
    T *__restrict hi = f.hi;
    if (zorvs::is_missing(lo[p]))
        for (int k = 0; k <= p; ++k) lo[k] = hi[k] = z[k];
    for (int k = 0; k <= p; ++k) {
        lo[k] = z[k] < lo[k] ? z[k] : lo[k];
        hi[k] = z[k] > hi[k] ? z[k] : hi[k];
    }
}

// Without an intercept the weighted means run on their own (with one, the
// first row of the factor holds them).
template <class T>
__attribute__((always_inline)) inline void track_means(zorvs::GivensFit<T> &f, T t) {
    if (f.intercept) return;
    T *__restrict z = f.z;
    T *__restrict mean = f.mean;
    f.weight_sum += t;
    const T r = t / f.weight_sum;
    for (int k = 0; k <= f.p; ++k) mean[k] += r * (z[k] - mean[k]);
}

// The pass over rows without frequencies or weights: the common case.
template <class T>
__attribute__((always_inline)) inline void plain_rows_body(zorvs::GivensFit<T> &f, long n, const T *x, long ldx,
                                                           const T *y) {
    T sse = f.sse;
    for (long i = 0; i < n; ++i) {
        if (!take_row(f, x + i * ldx, y[i])) continue;
        f.df_error += T(1);
        track_extremes(f);
        track_means(f, T(1));
        rotate_row_reciprocal(f.rbar, f.d, f.z, f.p, f.ld, T(1), sse);
    }
    f.sse = sse;
}

// Rows with frequencies or weights, one at a time.
template <class T>
__attribute__((always_inline)) inline void weighted_rows(zorvs::GivensFit<T> &f, long n, const T *x, long ldx, const T *y, const T *freq, const T *wt,
                   long first_row) {
    for (long i = 0; i < n; ++i) {
        T fi, wi;
        const int status = zorvs::check::frequency_and_weight(freq, wt, i, fi, wi, nullptr, first_row);
        if (status == 3) {
            f.stopped = true;
            return;
        }
        if (status == 1) continue;
        if (status == 2) {
            ++f.rows_missing;
            continue;
        }
        if (!take_row(f, x + i * ldx, y[i])) continue;
        f.df_error += fi;
        track_extremes(f);
        if (wi == T(0)) continue;
        const T t = wi * fi;
        track_means(f, t);
        // A weight so small that its reciprocal overflows (a subnormal
        // product) adds nothing the sums could hold.
        const T u = T(1) / t;
        if (!std::isinf(u)) rotate_row_reciprocal(f.rbar, f.d, f.z, f.p, f.ld, u, f.sse);
    }
}

// Both drives, built for the vector units in use: AVX2 where the processor
// has it (no fused multiply-add, so the rounding is that of the baseline
// build), and the baseline instruction set otherwise.
template <class T>
__attribute__((always_inline)) inline void rows_body(zorvs::GivensFit<T> &f, long n, const T *x, long ldx,
                                                     const T *y, const T *freq, const T *wt, long first_row) {
    if (!freq && !wt)
        plain_rows_body<T>(f, n, x, ldx, y);
    else
        weighted_rows<T>(f, n, x, ldx, y, freq, wt, first_row);
}

#define ZORVS_ADD_ROWS(T, suffix)                                                                           \
    __attribute__((target("avx2"))) void add_rows_avx2_##suffix(zorvs::GivensFit<T> &f, long n, const T *x, \
                                                                 long ldx, const T *y, const T *freq,       \
                                                                 const T *wt, long first_row) {             \
        rows_body<T>(f, n, x, ldx, y, freq, wt, first_row);                                                 \
    }                                                                                                       \
    void add_rows_base_##suffix(zorvs::GivensFit<T> &f, long n, const T *x, long ldx, const T *y,           \
                                const T *freq, const T *wt, long first_row) {                               \
        rows_body<T>(f, n, x, ldx, y, freq, wt, first_row);                                                 \
    }                                                                                                       \
    void add_rows(zorvs::GivensFit<T> &f, long n, const T *x, long ldx, const T *y, const T *freq,          \
                  const T *wt, long first_row) {                                                            \
        if (__builtin_cpu_supports("avx2"))                                                                 \
            add_rows_avx2_##suffix(f, n, x, ldx, y, freq, wt, first_row);                                   \
        else                                                                                                \
            add_rows_base_##suffix(f, n, x, ldx, y, freq, wt, first_row);                                   \
    }
ZORVS_ADD_ROWS(float, f)
ZORVS_ADD_ROWS(double, d)
#undef ZORVS_ADD_ROWS

// Close: rank test, dependent rows rotated down, coefficients, ordinary R.
template <class T>
void l_r3ivn(zorvs::GivensFit<T> &f, T *coef, T *r) {
    const int p = f.p, ld = f.ld, c0 = f.intercept;
    T *rb = f.rbar, *d = f.d;
    auto at = [&](int j, int k) -> T & { return rb[static_cast<long>(j) * ld + k]; };
    // The pass kept the reciprocals of the scales.
    for (int j = 0; j < p; ++j) d[j] = std::isinf(d[j]) ? T(0) : T(1) / d[j];
    f.total_ss = f.sse;
    for (int k = c0; k < p; ++k) f.total_ss += (d[k] * at(k, p)) * at(k, p);
    const T q = f.tolerance * f.tolerance;
    int constants = -2;
    for (int j = 0; j < p; ++j) {
        const T lo = f.lo[j], hi = f.hi[j];
        bool dependent;
        if (!(lo == hi)) {
            if (j < c0) {
                dependent = d[0] == T(0);
            } else {
                T ss = d[j];
                for (int k = c0; k < j; ++k) ss += (d[k] * at(k, j)) * at(k, j);
                dependent = d[j] <= q * ss;
            }
        } else if (lo != T(0)) {
            dependent = ++constants >= 0;
        } else {
            dependent = true;
        }
        if (!dependent) continue;
        // Rotate the row, without its column j, into the rows below.
        const T t = d[j];
        for (int k = 0; k <= j; ++k) f.z[k] = T(0);
        for (int k = j + 1; k <= p; ++k) {
            f.z[k] = at(j, k);
            at(j, k) = T(0);
        }
        d[j] = T(0);
        for (int k = 0; k < j; ++k) at(k, j) = T(0);
        rotate_row(rb, d, f.z, p, ld, j + 1, t, f.sse);
    }
    // The unit triangle and its right side, solved for the coefficients.
    T *b = f.z;
    for (int j = 0; j < p; ++j) {
        const bool kept = d[j] > T(0);
        for (int i = 0; i < p; ++i)
            r[static_cast<long>(j) * p + i] = (i > j || !(d[i] > T(0))) ? T(0) : (i == j ? T(1) : at(i, j));
        b[j] = kept ? at(j, p) : T(0);
    }
    zorvs::linalg::girts(p, r, p, 1, b, p, 1, &f.rank, coef, p, nullptr, 1);
    f.df_error -= static_cast<T>(f.rank);
    if (f.df_error <= T(0)) {
        zorvs_e1str(1, static_cast<double>(f.df_error));
        zorvs_ermes(6, 11049);
    }
    for (int i = 0; i < p; ++i) {
        const T s = std::sqrt(d[i]);
        for (int j = i; j < p; ++j) r[static_cast<long>(j) * p + i] *= s;
    }
}

}  // namespace

namespace zorvs {

template <class T>
void r2ivn(int ido, GivensFit<T> &f, long n_rows, const T *x, long ldx, const T *y, const T *freq, const T *wt,
           long first_row, T *coef, T *r) {
    if (ido == 0 || ido == 1) {
        f.p = f.n_independent + f.intercept;
        f.ld = zorvs::GivensFit<T>::row_length(f.p);
        const long pl = f.ld;
        f.rbar = f.work;
        f.d = f.rbar + f.p * pl;
        f.z = f.d + f.p;
        f.lo = f.z + pl;
        f.hi = f.lo + pl;
        f.mean = f.hi + pl;
        for (long k = 0; k < f.p * pl; ++k) f.rbar[k] = T(0);
        for (long k = 0; k < pl; ++k) {
            f.lo[k] = f.hi[k] = zorvs::missing<T>();
            f.mean[k] = f.z[k] = T(0);
        }
        for (int k = 0; k < f.p; ++k) f.d[k] = std::numeric_limits<T>::infinity();
        f.weight_sum = f.sse = f.df_error = f.total_ss = T(0);
        f.rows_missing = f.rank = 0;
        f.stopped = false;
    }
    if ((ido == 0 || ido == 2) && !f.stopped) {
        add_rows(f, n_rows, x, ldx, y, freq, wt, first_row);
    }
    if ((ido == 0 || ido == 3) && !f.stopped) {
        // With an intercept, the first row holds the weighted means.
        if (f.intercept)
            for (int k = 1; k <= f.p; ++k) f.mean[k] = f.rbar[k];
        f.mean[0] = T(1);
        l_r3ivn(f, coef, r);
    }
}

template void r2ivn<float>(int, GivensFit<float> &, long, const float *, long, const float *, const float *,
                           const float *, long, float *, float *);
template void r2ivn<double>(int, GivensFit<double> &, long, const double *, long, const double *, const double *,
                            const double *, long, double *, double *);

}  // namespace zorvs

namespace {

template <class T>
void l_g1aov(T dfr, T dfe, T sse, T sst, T ymean, T *aov) {
    static const char *const name = "zorvs_g1aov";
    zorvs_e1psh(name);
    int arg = 0;
    const T ssr = sst - sse > T(0) ? sst - sse : T(0);
    zorvs::check::c1ge0(dfr, "df_regression", &arg);
    zorvs::check::c1ge0(dfe, "df_error", &arg);
    zorvs::check::c1ge0(sse, "ss_error", &arg);
    zorvs::check::c1ge0(ssr, "ss_regression", &arg);
    if (zorvs_error_n1rty[0] >= 4) {
        zorvs_e1pop(name);
        return;
    }
    const T nan = zorvs::missing<T>();
    aov[0] = dfr;
    aov[1] = dfe;
    aov[2] = dfr + dfe;
    aov[3] = ssr;
    aov[4] = sse;
    aov[5] = ssr + sse;
    aov[6] = zorvs::check::divide(ssr, dfr);
    aov[7] = zorvs::check::divide(sse, dfe);
    aov[8] = zorvs::check::divide(aov[6], aov[7]);
    if (zorvs::is_missing(aov[8]))
        aov[9] = nan;
    else if (std::isinf(aov[8]))
        aov[9] = T(0);
    else
        aov[9] = f_upper_tail(aov[8], dfr, dfe);
    aov[10] = T(100) * zorvs::check::divide(ssr, aov[5]);
    const T u = zorvs::check::divide(aov[7], zorvs::check::divide(aov[5], dfr + dfe));
    aov[11] = zorvs::is_missing(u) ? nan : (u > T(1) ? T(0) : T(100) * (T(1) - u));
    aov[12] = zorvs::is_missing(aov[7]) ? nan : std::sqrt(aov[7]);
    aov[13] = ymean;
    aov[14] = zorvs::is_missing(aov[7]) ? nan : T(100) * zorvs::check::divide(aov[12], ymean);
    zorvs_e1pop(name);
}

template <class T>
void l_rcovb(int n, const T *r, int ldr, T sse, T dfe, T *cov, int ldcov) {
    static const char *const name = "zorvs_rcovb";
    zorvs_e1psh(name);
    int arg = 0, rank = 0;
    zorvs::check::c1r(n, r, ldr, &arg);
    if (zorvs_error_n1rty[0] < 4) {
        const T s2 = zorvs::check::divide(sse, dfe);
        T dummy = 0;
        zorvs::linalg::girts(n, r, ldr, 0, &dummy, n, 3, &rank, &dummy, n, cov, ldcov);
        // cov := s2 U U' in place, U the inverse triangle: column j of the
        // product needs columns j and above of U, and (j, j) is written last.
        auto u = [&](int i, int j) -> T & { return cov[static_cast<long>(j) * ldcov + i]; };
        for (int j = 0; j < n; ++j)
            for (int i = 0; i <= j; ++i) {
                T s = T(0);
                for (int k = j; k < n; ++k) s += u(i, k) * u(j, k);
                u(i, j) = s2 * s;
            }
        for (int j = 0; j < n; ++j)
            for (int i = j + 1; i < n; ++i) u(i, j) = u(j, i);
    }
    zorvs_e1pop(name);
}

template <class T>
constinit thread_local T *lv_regression = nullptr;

// Optional output in the pointer or the user form: the one place where the
// routine allocates what it hands to the caller.
template <class T>
struct Output {
    T **pointer = nullptr;  // pointer form
    T *user = nullptr;      // user form
    bool user_given = false;
    T *storage = nullptr;  // what is filled
    bool wanted() const { return pointer || user_given; }
    // The two forms exclude each other: the one given last holds, so that
    // the caller's array is never handed over as a block nor freed.
    void take_pointer(T **p) {
        pointer = p;
        user_given = false;
    }
    void take_user(T *p) {
        user = p;
        user_given = true;
        pointer = nullptr;
    }
    // Hand an allocated result to the caller, or free it if its worker met
    // an error above a warning.
    void deliver(bool ok) {
        if (!pointer || !storage || user_given) return;
        if (ok)
            *pointer = storage;
        else
            zorvs::release(storage);
    }
    // Allocate (pointer form) or take the user's array; code on failure.
    bool acquire(long count, int code) {
        if (user_given) {
            storage = user;
            return true;
        }
        storage = static_cast<T *>(zorvs::raw_allocate(static_cast<std::size_t>(count > 0 ? count : 1) * sizeof(T)));
        if (!storage) zorvs_ermes(5, code);
        return storage != nullptr;
    }
};

template <class T>
void l_regression(int n_rows, int n_independent, T *x, T *y, va_list *list) {
    zorvs::KeywordReader kw(list, 4);
    bool user = false, intercept = true, col_dim_given = false, cov_dim_given = false;
    int x_col_dim = n_independent, cov_col_dim = 0;
    T tolerance = T(100) * std::numeric_limits<T>::epsilon();
    const T *freq = nullptr, *wt = nullptr;
    int *rank_out = nullptr;
    Info<T> **info_out = nullptr;
    Output<T> anova, cov, means, residuals;
    auto user_form = [&](Output<T> &o, const char *short_name, const char *keyword) {
        o.take_user(kw.pointer<T>());
        if (!o.user) {
            zorvs_e1stl(1, short_name);
            zorvs_e1stl(2, keyword);
            zorvs_ermes(5, 104);
        }
    };
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        switch (k) {
        case ZORVS_X_COL_DIM:
            x_col_dim = kw.integer();
            col_dim_given = true;
            break;
        case ZORVS_NO_INTERCEPT: intercept = false; break;
        case ZORVS_TOLERANCE: tolerance = kw.real<T>(); break;
        case ZORVS_TOLERANCE_ADR: {
            const T *t = kw.pointer<T>();
            if (t)
                tolerance = *t;
            else
                zorvs_null_pointer("ZORVS_TOLERANCE_ADR", -1, nullptr);
            break;
        }
        case ZORVS_FREQUENCIES: freq = kw.pointer<T>(); break;
        case ZORVS_WEIGHTS: wt = kw.pointer<T>(); break;
        case ZORVS_RANK: rank_out = kw.pointer<int>(); break;
        case ZORVS_ANOVA_TABLE: anova.take_pointer(kw.pointer<T *>()); break;
        case ZORVS_ANOVA_TABLE_USER: user_form(anova, "anova_table", "ZORVS_ANOVA_TABLE_USER"); break;
        case ZORVS_COEF_COVARIANCES: cov.take_pointer(kw.pointer<T *>()); break;
        case ZORVS_COEF_COVARIANCES_USER:
            user_form(cov, "coef_covariances", "ZORVS_COEF_COVARIANCES_USER");
            break;
        case ZORVS_COV_COL_DIM:
            cov_col_dim = kw.integer();
            cov_dim_given = true;
            break;
        case ZORVS_X_MEAN: means.take_pointer(kw.pointer<T *>()); break;
        case ZORVS_X_MEAN_USER: user_form(means, "x_mean", "ZORVS_X_MEAN_USER"); break;
        case ZORVS_RESIDUAL: residuals.take_pointer(kw.pointer<T *>()); break;
        case ZORVS_RESIDUAL_USER: user_form(residuals, "residual", "ZORVS_RESIDUAL_USER"); break;
        case ZORVS_REGRESSION_INFO: info_out = kw.pointer<Info<T> *>(); break;
        case ZORVS_RETURN_USER:
            lv_regression<T> = kw.pointer<T>();
            user = true;
            break;
        default: kw.unknown(k); return;
        }
    }
    if (zorvs_error_n1rty[0] >= 4) return;
    if (!x) {
        zorvs_e1stl(1, "x");
        zorvs_ermes(5, 6002);
    }
    if (!y) {
        zorvs_e1stl(1, "y");
        zorvs_ermes(5, 6002);
    }
    int arg = 0;
    zorvs_c1iarg(n_rows, "n_rows", 1, 0, &arg);
    zorvs_c1iarg(n_independent, "n_independent", 1, 0, &arg);
    if (zorvs_error_n1rty[0] >= 4) return;
    if (col_dim_given && x_col_dim < n_independent) {
        zorvs_e1stl(1, "x_col_dim");
        zorvs_e1sti(1, n_independent);
        zorvs_e1sti(2, x_col_dim);
        zorvs_ermes(5, 1024);
        return;
    }
    const int p = n_independent + (intercept ? 1 : 0);
    if (cov_dim_given && !cov.wanted()) {
        zorvs_ermes(5, 11038);
        return;
    }
    if (!cov_dim_given) cov_col_dim = p;
    zorvs_c12ile(p, "n_parameters", cov_col_dim, "cov_col_dim", &arg);
    if (!(tolerance >= T(0) && tolerance <= T(1))) {
        zorvs_e1str(1, static_cast<double>(tolerance));
        zorvs_ermes(5, 11050);
    }
    if (zorvs_error_n1rty[0] >= 4) return;

    // The record: header, then the vectors in one run.
    const long nv = n_independent;
    const long reals = p + 1 + static_cast<long>(p) * p + 2L * p + 3 * nv + 3;
    Info<T> *info = nullptr;
    if (p < 46000)
        info = static_cast<Info<T> *>(zorvs::raw_allocate(sizeof(Info<T>) + static_cast<std::size_t>(reals) * sizeof(T)));
    if (!info) {
        zorvs_e1sti(1, n_independent);
        zorvs_e1stl(1, "n_independent");
        zorvs_e1sti(2, 1);
        zorvs_e1stl(2, "n_dependent");
        zorvs_ermes(5, 202);
        return;
    }
    T *v = reinterpret_cast<T *>(info + 1);
    info->coefficients = v;
    info->sscp_error = v += p;
    info->r_matrix = v += 1;
    info->r_scale = v += static_cast<long>(p) * p;
    info->work_row = v += p;
    info->x_mean = v += p;
    info->x_min = v += nv;
    info->x_max = v += nv;
    info->y_mean = v += nv;
    info->y_min = v += 1;
    info->y_max = v += 1;

    zorvs::GivensFit<T> fit{};
    fit.n_independent = n_independent;
    fit.intercept = intercept ? 1 : 0;
    fit.tolerance = tolerance;
    // Work space and the coefficients; a failure names n_independent, the
    // argument that sets both sizes.
    fit.work = static_cast<T *>(
        zorvs::workspace_block(static_cast<std::size_t>(zorvs::GivensFit<T>::work_size(p)) * sizeof(T)));
    if (fit.work && !user) lv_regression<T> = static_cast<T *>(zorvs::raw_allocate(sizeof(T) * p));
    // The one exit from here on: the record handed over or freed, and on
    // failure an allocated result freed.  The work space is the frame's,
    // freed by its pop.
    auto finish = [&](bool failed) {
        if (failed && !user) zorvs::release(lv_regression<T>);
        if (!failed && info_out)
            *info_out = info;
        else
            zorvs::release(info);
    };
    if (!fit.work || !lv_regression<T>) {
        zorvs_e1sti(1, n_independent);
        zorvs_e1stl(1, "n_independent");
        zorvs_ermes(5, 201);
        return finish(true);
    }
    T *coef = lv_regression<T>;

    zorvs::r2ivn<T>(0, fit, n_rows, x, x_col_dim, y, freq, wt, 0, coef, info->r_matrix);
    const T y_min = fit.lo[p], y_max = fit.hi[p];
    if (intercept && y_min == y_max) fit.sse = T(0);
    if (!fit.stopped && fit.rank < p) {
        zorvs_e1sti(1, fit.rank);
        zorvs_ermes(3, 11047);
    }
    if (!fit.stopped && rank_out) {
        // Truncated, within the range of an int (frequencies may be huge).
        const double rank = static_cast<double>(n_rows - fit.rows_missing) - static_cast<double>(fit.df_error);
        *rank_out = !(rank > -2147483648.0) ? (std::isnan(rank) ? 0 : -2147483647 - 1)
                    : rank < 2147483647.0   ? static_cast<int>(rank)
                                            : 2147483647;
    }
    int type = zorvs_error_type();
    if (fit.stopped || (type > 3 && type != 6)) return finish(true);

    // Covariances, table, means, residuals: each on its own, so that a
    // failure of one leaves the others standing.  A worker's frame passes its
    // type to ours at its pop; what stands at this level then is its own.
    auto worker_ok = [] { return zorvs_error_n1rty[0] < 4 || zorvs_error_n1rty[0] == 6; };
    const T nan = zorvs::missing<T>();
    if (cov.wanted() && cov.acquire(static_cast<long>(p) * cov_col_dim, 11039)) {
        zorvs::regress::rcovb(p, info->r_matrix, p, fit.sse, fit.df_error, cov.storage, cov_col_dim);
        cov.deliver(worker_ok());
    }
    if (anova.wanted() && anova.acquire(15, 11040)) {
        const T *r = info->r_matrix;
        T m = nan;
        if (intercept && r[0] > T(0)) {
            T s = T(0);
            for (int j = 0; j < p; ++j) s += r[static_cast<long>(j) * p] * coef[j];
            m = s / r[0];
        }
        const int dfr = fit.rank - fit.intercept > 0 ? fit.rank - fit.intercept : 0;
        for (int k = 0; k < 15; ++k) anova.storage[k] = nan;
        // Frequencies below 1.0 can sum to less than the rank, which leaves
        // df_error negative: no variance can be estimated, as with none, so
        // the table shows 0.0 error degrees of freedom (with (6, 11049)).
        const T dfe = fit.df_error > T(0) ? fit.df_error : T(0);
        zorvs::regress::g1aov(static_cast<T>(dfr), dfe, fit.sse, fit.total_ss, m, anova.storage);
        anova.deliver(worker_ok());
    }
    if (means.wanted() && means.acquire(nv, 11041)) {
        for (int j = 0; j < nv; ++j) means.storage[j] = fit.mean[fit.intercept + j];
        means.deliver(true);
    }
    if (residuals.wanted() && residuals.acquire(n_rows, 11042)) {
        for (long i = 0; i < n_rows; ++i) {
            const T *row = x + i * x_col_dim;
            T s = intercept ? coef[0] : T(0);
            for (int j = 0; j < nv; ++j) s += row[j] * coef[fit.intercept + j];
            residuals.storage[i] = y[i] - s;
        }
        residuals.deliver(true);
    }

    // The record.
    info->n_observations = n_rows;
    info->rows_missing = fit.rows_missing;
    info->n_dependent = 1;
    info->n_parameters = p;
    info->intercept = fit.intercept;
    info->rank = fit.rank;
    info->df_error = fit.df_error;
    std::memcpy(info->coefficients, coef, sizeof(T) * static_cast<std::size_t>(p));
    *info->sscp_error = fit.sse;
    for (int j = 0; j < p; ++j) info->r_scale[j] = T(1);
    for (int j = 0; j < nv; ++j) {
        info->x_mean[j] = fit.mean[fit.intercept + j];
        info->x_min[j] = fit.lo[fit.intercept + j];
        info->x_max[j] = fit.hi[fit.intercept + j];
    }
    *info->y_mean = fit.mean[p];
    *info->y_min = y_min;
    *info->y_max = y_max;
    finish(false);
}

}  // namespace

extern "C" {

void zorvs_g1aov(float dfr, float dfe, float sse, float sst, float ymean, float aov[]) {
    l_g1aov(dfr, dfe, sse, sst, ymean, aov);
}
void zorvs_dg1aov(double dfr, double dfe, double sse, double sst, double ymean, double aov[]) {
    l_g1aov(dfr, dfe, sse, sst, ymean, aov);
}

void zorvs_rcovb(int n, const float r[], int ldr, float sse, float dfe, float cov[], int ldcov) {
    l_rcovb(n, r, ldr, sse, dfe, cov, ldcov);
}
void zorvs_drcovb(int n, const double r[], int ldr, double sse, double dfe, double cov[], int ldcov) {
    l_rcovb(n, r, ldr, sse, dfe, cov, ldcov);
}

float *zorvs_f_regression(int n_rows, int n_independent, float x[], float y[], ...) {
    ZORVS_KEYWORD_ENTRY(y, "zorvs_f_regression", lv_regression<float>,
                        l_regression<float>(n_rows, n_independent, x, y, &list));
}

double *zorvs_d_regression(int n_rows, int n_independent, double x[], double y[], ...) {
    ZORVS_KEYWORD_ENTRY(y, "zorvs_d_regression", lv_regression<double>,
                        l_regression<double>(n_rows, n_independent, x, y, &list));
}

}  // extern "C"
