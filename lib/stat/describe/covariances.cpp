// covariances.cpp - the variance-covariance matrix, the corrected sums of
// squares and crossproducts, or the correlation matrix of the columns of a
// data matrix, optionally pooled within groups, with frequencies, weights,
// and list-wise or pair-wise handling of missing values.
//
// Method: one pass over the observations.  Every pair of variables (j, k),
// j <= k, keeps its own running weighted means, centred sums of squares and
// crossproduct (West 1979, CACM 22; describe.hpp), over the observations in
// which both are present; list-wise, these are the same observations for
// every pair.  Each value enters less its variable's first value seen, so
// that a large offset with a small spread keeps its digits (data at 1e12
// that differ in the first decimal keep 13 digits of their correlation).
// Pair-wise, a covariance uses the means of the pair's own observations and
// a correlation the pair's own standard deviations, which is the usual
// definition of "pairwise complete" estimates.
//
// Frequencies repeat an observation; weights are reliability weights: the
// covariance is the weighted crossproduct over (W^2 - V) / W, W = sum f*w,
// V = sum f*w^2, which is count - 1 without weights and agrees with the
// unbiased weighted covariance of Price (1972) otherwise.  Pooled within
// groups, the crossproducts and these divisors are summed over the groups.
//
// Choices, documented with the prototypes in zorvstat.h:
//  - The matrix type is chosen by one of three selector keywords; the
//    default is the variance-covariance matrix.
//  - The matrix is returned full (both triangles), since a user indexes it
//    as a plain matrix.
//  - A pair (or, pair-wise, a variable) with fewer than two weighted
//    observations gives NaN entries with a warning; only when no variable
//    has two does the call fail.  A constant variable's correlations are
//    NaN, with a warning, and its diagonal too.
//  - Observations of a negative group are left out, which lets a caller
//    pool some groups only.
// Nothing is written to the caller's storage before the pass has ended
// without a terminal error.

#include <cmath>
#include <cstdarg>
#include <limits>
#include <utility>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "frame/raise.hpp"
#include "stat/describe/describe.hpp"
#include "zorvstat.h"

namespace {

using zorvs::describe::PairSums;

enum MatrixType { COVARIANCE, SSCP, CORRELATION };

template <class T>
struct Covariances {
    int n_observations, n_variables, x_col_dim, n_groups;
    const T *x;
    const T *frequencies, *weights;
    const int *groups;
    bool listwise;
    // Pair sums: n_groups blocks of the packed upper triangle, pair (j, k)
    // of group g at at(g, j, k); and the shift of each variable (its first
    // value seen).
    PairSums<T> *sums;
    T *shift;
    int n_missing, n_used;

    long n_pairs() const { return static_cast<long>(n_variables) * (n_variables + 1) / 2; }
    PairSums<T> &at(int g, int j, int k) {
        if (j > k) std::swap(j, k);
        return sums[g * n_pairs() + static_cast<long>(k) * (k + 1) / 2 + j];
    }
    T value(long i, int j) const { return x[i * x_col_dim + j]; }
};

// The pass.  False after a terminal error.
template <class T>
bool accumulate(Covariances<T> &c) {
    const int p = c.n_variables;
    for (long i = 0; i < c.n_observations; ++i) {
        T f, w;
        const int status = zorvs::describe::frequency_and_weight(c.frequencies, c.weights, i, f, w, &c.n_missing);
        if (status == 3) return false;
        if (status != 0) continue;
        int g = 0;
        if (c.groups) {
            g = c.groups[i];
            if (g >= c.n_groups) {
                zorvs::raise(5, 21107, static_cast<int>(i + 1), g, c.n_groups - 1);
                return false;
            }
            if (g < 0) continue;
        }
        bool missing = false;
        for (int j = 0; j < p; ++j) missing = missing || zorvs::is_missing(c.value(i, j));
        if (missing) {
            ++c.n_missing;
            if (c.listwise) continue;
        }
        bool used = false;
        for (int k = 0; k < p; ++k) {
            const T vk = c.value(i, k);
            if (zorvs::is_missing(vk)) continue;
            if (zorvs::is_missing(c.shift[k])) c.shift[k] = vk;
            used = true;
            for (int j = 0; j <= k; ++j) {
                const T vj = c.value(i, j);
                if (zorvs::is_missing(vj)) continue;
                zorvs::describe::add_pair(c.at(g, j, k), vj - c.shift[j], vk - c.shift[k], f, w);
            }
        }
        if (used && f * w > T(0)) ++c.n_used;
    }
    if (c.n_missing > 0) zorvs_ermes(3, c.listwise ? 11062 : 11288);
    return true;
}

// The pooled sums of pair (j, k): crossproduct, sums of squares, divisor, count.
template <class T>
PairSums<T> pooled(Covariances<T> &c, int j, int k, T &divisor) {
    PairSums<T> total{};
    divisor = T(0);
    for (int g = 0; g < c.n_groups; ++g) {
        const PairSums<T> &s = c.at(g, j, k);
        total.count += s.count;
        total.ss_a += s.ss_a;
        total.ss_b += s.ss_b;
        total.cross += s.cross;
        const T d = zorvs::describe::unbiased_divisor(s);
        if (d > T(0)) divisor += d;
    }
    return total;
}

// The matrix into `out` (leading dimension ld), full and symmetric.
template <class T>
void finish(Covariances<T> &c, MatrixType type, T *out, int ld) {
    const int p = c.n_variables;
    const T nan = zorvs::missing<T>();
    int thin_pairs = 0;
    for (int j = 0; j < p; ++j) {
        for (int k = j; k < p; ++k) {
            T divisor;
            const PairSums<T> s = pooled(c, j, k, divisor);
            T v = nan;
            if (!(divisor > T(0))) {
                ++thin_pairs;
            } else if (type == SSCP) {
                v = s.cross;
            } else if (type == COVARIANCE) {
                v = s.cross / divisor;
            } else if (s.ss_a > T(0) && s.ss_b > T(0)) {
                // The square roots taken apart: their product cannot overflow.
                v = j == k ? T(1) : s.cross / (std::sqrt(s.ss_a) * std::sqrt(s.ss_b));
                v = std::fmax(T(-1), std::fmin(T(1), v));
            } else if (j == k) {
                zorvs::raise(3, 21106, j + 1);
            }
            out[static_cast<long>(j) * ld + k] = out[static_cast<long>(k) * ld + j] = v;
        }
    }
    if (thin_pairs > 0) zorvs::raise(3, 21105, thin_pairs);
}

template <class T>
constinit thread_local T *lv_covariances = nullptr;

template <class T>
void l_covariances(int n_observations, int n_variables, T *x, va_list *list) {
    zorvs::OutputPair<T> result(lv_covariances<T>);
    zorvs::OutputPair<T> means, counts;
    zorvs::KeywordReader kw(list, 3);
    Covariances<T> c{};
    c.n_groups = 1;
    c.listwise = true;
    int x_col_dim = n_variables, cov_col_dim = n_variables, type_keywords = 0;
    MatrixType type = COVARIANCE;
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        switch (k) {
            case ZORVS_COVARIANCE_MATRIX: type = COVARIANCE, ++type_keywords; break;
            case ZORVS_CORRECTED_SSCP: type = SSCP, ++type_keywords; break;
            case ZORVS_CORRELATION_MATRIX: type = CORRELATION, ++type_keywords; break;
            case ZORVS_FREQUENCIES: c.frequencies = kw.pointer<T>(); break;
            case ZORVS_WEIGHTS: c.weights = kw.pointer<T>(); break;
            case ZORVS_POOLED_GROUPS:
                c.n_groups = kw.integer();
                c.groups = kw.pointer<int>();
                break;
            case ZORVS_MISSING_LISTWISE: c.listwise = true; break;
            case ZORVS_MISSING_ELEMENTWISE: c.listwise = false; break;
            case ZORVS_X_COL_DIM: x_col_dim = kw.integer(); break;
            case ZORVS_COV_COL_DIM: cov_col_dim = kw.integer(); break;
            case ZORVS_X_MEAN: means.take_address(kw.pointer<T *>()); break;
            case ZORVS_X_MEAN_USER: means.take_user(kw.pointer<T>()); break;
            case ZORVS_PAIR_COUNTS: counts.take_address(kw.pointer<T *>()); break;
            case ZORVS_PAIR_COUNTS_USER: counts.take_user(kw.pointer<T>()); break;
            case ZORVS_RETURN_USER: result.take_user(kw.pointer<T>()); break;
            default: kw.unknown(k); return;
        }
    }
    if (zorvs_error_n1rty[0] > 0) return;
    int arg_no = 0;
    zorvs_c1iarg(n_variables, "n_variables", 1, 0, &arg_no);
    zorvs_c1iarg(n_observations, "n_observations", 1, 0, &arg_no);
    zorvs_c1iarg(c.n_groups, "n_groups", 1, 0, &arg_no);
    if (zorvs_error_n1rty[0] > 3) return;
    zorvs_c12ile(n_variables, "n_variables", x_col_dim, "x_col_dim", &arg_no);
    zorvs_c12ile(n_variables, "n_variables", cov_col_dim, "cov_col_dim", &arg_no);
    if (!x) zorvs_null_pointer("x", -1, nullptr);
    if (c.n_groups > 1 && !c.groups) zorvs_null_pointer("groups", -1, nullptr);
    if (type_keywords > 1) {
        zorvs_e1stl(1, "ZORVS_COVARIANCE_MATRIX, ZORVS_CORRECTED_SSCP and ZORVS_CORRELATION_MATRIX");
        zorvs_ermes(5, 11117);
    }
    if (zorvs_error_n1rty[0] > 3) return;

    c.n_observations = n_observations;
    c.n_variables = n_variables;
    c.x_col_dim = x_col_dim;
    c.x = x;
    const long block = c.n_pairs() * static_cast<long>(sizeof(PairSums<T>) / sizeof(T));
    if (block * c.n_groups + n_variables > std::numeric_limits<int>::max()) {
        zorvs::raise(5, 200);
        return;
    }
    T *work = zorvs::workspace<T>(static_cast<int>(block * c.n_groups + n_variables), "n_variables");
    if (!work) return;
    c.sums = reinterpret_cast<PairSums<T> *>(work);
    c.shift = work + block * c.n_groups;
    for (long k = 0; k < block * c.n_groups; ++k) work[k] = T(0);
    for (int j = 0; j < n_variables; ++j) c.shift[j] = zorvs::missing<T>();

    if (!accumulate(c)) return;
    bool any = false;
    for (int j = 0; j < n_variables; ++j) {
        T divisor;
        pooled(c, j, j, divisor);
        any = any || divisor > T(0);
    }
    if (!any) {
        zorvs::raise(5, 21104, c.n_used);
        return;
    }
    if (!result.obtain(n_variables, "n_variables", cov_col_dim, "cov_col_dim") ||
        !means.obtain(c.n_groups, "n_groups", n_variables, "n_variables") ||
        !counts.obtain(n_variables, "n_variables", n_variables, "n_variables"))
        return;
    finish(c, type, result.data(), cov_col_dim);
    for (int g = 0; g < c.n_groups; ++g)
        for (int j = 0; j < n_variables; ++j) {
            const PairSums<T> &s = c.at(g, j, j);
            if (T *m = means.data()) m[g * n_variables + j] = s.weight > T(0) ? s.mean_a + c.shift[j] : zorvs::missing<T>();
        }
    if (T *n = counts.data())
        for (int j = 0; j < n_variables; ++j)
            for (int k = 0; k < n_variables; ++k) {
                T divisor;
                n[j * n_variables + k] = pooled(c, j, k, divisor).count;
            }
}

}  // namespace

extern "C" {

float *zorvs_f_covariances(int n_observations, int n_variables, float x[], ...) {
    ZORVS_KEYWORD_ENTRY(x, "zorvs_f_covariances", lv_covariances<float>,
                        l_covariances<float>(n_observations, n_variables, x, &list));
}
double *zorvs_d_covariances(int n_observations, int n_variables, double x[], ...) {
    ZORVS_KEYWORD_ENTRY(x, "zorvs_d_covariances", lv_covariances<double>,
                        l_covariances<double>(n_observations, n_variables, x, &list));
}

}  // extern "C"
