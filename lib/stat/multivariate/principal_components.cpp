// principal_components.cpp - principal components of a covariance or
// correlation matrix: the eigenvalues in decreasing order, unit eigenvectors,
// cumulative proportions of the total variance, large-sample standard errors
// of the eigenvalues, and the correlations of the variables with the
// components.
//
// Method: the symmetric eigensystem of the matrix (Householder reduction and
// implicit QL, zorvs_e5csf), values by decreasing magnitude.  Each
// eigenvector is scaled to length 1 and its sign chosen so that its element
// of largest magnitude is positive (the first such element on a tie).
//
// Standard errors with df degrees of freedom of the matrix (default 100):
// for a covariance matrix lambda * sqrt(2 / df) (Anderson 1963, "Asymptotic
// theory for principal component analysis", Ann. Math. Statist. 34); for a
// correlation matrix Girshick's (1939) sqrt(2 / df) times the root of
// lambda^2 + (1 - 2 lambda) sum_k v_k^4 + 2 sum_{k<l} v_k^2 v_l^2 r_kl^2,
// with the sums over the eigenvector v of lambda.  A negative eigenvalue
// counts as 0 in the standard errors and the correlations; the smallest
// one is reported (3, 20102) only when it is negative beyond 1000 spacings
// of the largest.  A variable of zero variance gets a row of NaN among the
// correlations.
//
// A choice made here: the body accepts one variable and
// the worker refuses it ((5, 603) for "NVAR"), since one variable has no
// components to speak of.  A NaN in the matrix is not a missing value here:
// the eigensolver does not converge on it ((3, 20103)) and the results are
// NaN.  Every output the caller did not ask for is still computed in work
// space, as the worker fills them all.  The matrix is read as it stands (its
// upper triangle, seen column-major); it is not written.

#include <cmath>
#include <cstdarg>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "frame/twin.hpp"
#include "kernels/blas.hpp"
#include "kernels/kernels.h"
#include "kernels/linalg.hpp"
#include "stat/multivariate/failed_addresses.hpp"
#include "zorvstat.h"

namespace {

template <class T>
constinit thread_local T *lv_eigenvalues = nullptr;

// The worker, column-major.  type 0: covariance matrix, 1: correlation
// matrix.  work holds 2n reals, iwork n integers.
template <class T>
void l_princ(int df, int n, const T *a, int lda, int type, T *eval, T *cum, T *se, T *evec, int ldevec, T *corr,
             int ldcorr, T *work, int *iwork) {
    static const char *const name = "l_princ ";
    zorvs_e1psh(name);
    int arg_no = 0;
    zorvs_c1iarg(n, "NVAR", 2, 1, &arg_no);
    if (n >= 2) {
        zorvs_c1dim(2, n, "n_variables", lda, "cov_col_dim", &arg_no);
        zorvs_c1dim(2, n, "*n_variables", ldevec, "eigenvectors_col_dim", &arg_no);
        zorvs_c1dim(2, n, "*n_variables", ldcorr, "correlations_col_dim", &arg_no);
    }
    auto at = [](const T *m, int ld, int i, int j) -> T { return m[static_cast<long>(j) * ld + i]; };
    for (int i = 0; i < n && zorvs_n1rcd(0) == 0; ++i) {
        if (at(a, lda, i, i) < T(0)) {
            zorvs_e1sti(1, i);
            zorvs_e1std(1, static_cast<double>(at(a, lda, i, i)));
            zorvs_ermes(5, 20100);
        }
    }
    if (zorvs_n1rcd(0) != 0) {
        zorvs_e1pop(name);
        return;
    }
    T rdf = static_cast<T>(df);
    if (df < 1) {
        rdf = T(100);
        zorvs_ermes(3, 20101);
    }
    const T rt = std::sqrt(T(2) / rdf);

    zorvs::linalg::e5csf(n, a, lda, eval, evec, ldevec, work, iwork);
    if (zorvs_error_n1rty[1] > 3) {
        zorvs_e1pop(name);
        return;
    }
    const T total = zorvs::blas::sum(n, eval, 1);
    T running = 0;
    for (int j = 0; j < n; ++j) {
        T *v = evec + static_cast<long>(j) * ldevec;
        const int k = zorvs::blas::iamax(n, v, 1);
        T t = zorvs::blas::nrm2(n, v);
        if (v[k - 1] < T(0)) t = -t;
        zorvs::blas::scal(n, T(1) / t, v, 1);
        running += eval[j];
        cum[j] = running / total;
    }
    // By magnitude, a negative value can come before a positive one of the
    // same size: the smallest and the largest are looked for in all.
    int low = n - 1;
    T largest = eval[0];
    for (int j = 0; j < n; ++j) {
        if (eval[j] < eval[low]) low = j;
        if (eval[j] > largest) largest = eval[j];
    }
    const T smallest = eval[low];
    if (smallest < T(0) && (n == 1 || largest <= T(0) || smallest < T(-1000) * zorvs::epsilon<T>() * largest)) {
        zorvs_e1sti(1, low);
        zorvs_e1std(1, static_cast<double>(smallest));
        zorvs_ermes(3, 20102);
    }
    for (int j = 0; j < n; ++j) {
        const T ev = eval[j] > T(0) ? eval[j] : T(0);
        const T *v = evec + static_cast<long>(j) * ldevec;
        T *c = corr + static_cast<long>(j) * ldcorr;
        if (type == 1) {
            // The squares of the vector stand in the column for now.
            zorvs::blas::hprod(n, v, 1, v, 1, c, 1);
            T s = ev * ev + (T(1) - T(2) * ev) * zorvs::blas::dot(n, c, 1, c, 1);
            for (int l = 1; l < n; ++l)
                for (int k = 0; k < l; ++k) {
                    const T r = at(a, lda, k, l);
                    s += T(2) * c[k] * c[l] * (r * r);
                }
            se[j] = std::sqrt(s > T(0) ? s : T(0)) * rt;
        } else {
            se[j] = ev * rt;
        }
        zorvs::blas::vcal(n, std::sqrt(ev), v, 1, c, 1);
    }
    if (type == 0) {
        const T nan = zorvs::missing<T>();
        for (int i = 0; i < n; ++i) {
            const T c = at(a, lda, i, i);
            const T root = std::sqrt(c);
            for (int j = 0; j < n; ++j) {
                T &cell = corr[static_cast<long>(j) * ldcorr + i];
                cell = c > T(0) ? cell / root : nan;
            }
        }
    }
    zorvs_e1pop(name);
}

// An output the worker fills whether or not it was asked for: the pair's
// storage, or else a work array of the same size; null after a failed
// allocation (reported).
template <class T, class... Sizes>
T *filled_output(zorvs::OutputPair<T> &out, Sizes... sizes) {
    if (!out.obtain(sizes...)) return nullptr;
    return out.data() ? out.data() : zorvs::workspace<T>(sizes...);
}

template <class T>
void l_components_of(int n, T *covariances, int cov_col_dim, int type, int df, zorvs::OutputPair<T> &values,
                     zorvs::OutputPair<T> &vectors, zorvs::OutputPair<T> &correlations,
                     zorvs::OutputPair<T> &cumulative, zorvs::OutputPair<T> &std_errors) {
    T *work = zorvs::workspace<T>(2 * n, "n_variables");
    if (!work) return;
    int *iwork = zorvs::workspace<int>(n, "n_variables");
    if (!iwork) return;
    if (!values.obtain(n, "n_variables")) return;
    T *vec = filled_output(vectors, n, "n_variables", n, "n_variables");
    if (!vec) return;
    T *corr = filled_output(correlations, n, "n_variables", n, "n_variables");
    if (!corr) return;
    T *cum = filled_output(cumulative, n, "n_variables");
    if (!cum) return;
    T *se = filled_output(std_errors, n, "n_variables");
    if (!se) return;
    l_princ(df, n, covariances, cov_col_dim, type, values.data(), cum, se, vec, n, corr, n, work, iwork);
    if (zorvs_error_n1rty[0] >= 4) return;
    zorvs::linalg::m1ran(n, n, vec, vec);
    zorvs::linalg::m1ran(n, n, corr, corr);
}

template <class T>
void l_principal_components(int n_variables, T *covariances, va_list *list) {
    zorvs::OutputPair<T> values(lv_eigenvalues<T>);
    zorvs::KeywordReader kw(list, 2);
    int cov_col_dim = n_variables, type = 0, df = 100;
    zorvs::OutputPair<T> vectors, correlations, cumulative, std_errors;
    // The addresses given with ZORVS_X, nulled when the call fails.
    T **given[4] = {};
    auto address = [&](zorvs::OutputPair<T> &out, int i) {
        given[i] = kw.pointer<T *>();
        out.take_address(given[i]);
    };
    auto user = [&](zorvs::OutputPair<T> &out, int i) {
        given[i] = nullptr;
        out.take_user(kw.pointer<T>());
    };
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        switch (k) {
        case ZORVS_RETURN_USER: values.take_user(kw.pointer<T>()); break;
        case ZORVS_COV_COL_DIM: cov_col_dim = kw.integer(); break;
        case ZORVS_COVARIANCE_MATRIX: type = 0; break;
        case ZORVS_CORRELATION_MATRIX: type = 1; break;
        case ZORVS_EIGENVECTORS: address(vectors, 0); break;
        case ZORVS_EIGENVECTORS_USER: user(vectors, 0); break;
        case ZORVS_CORRELATIONS: address(correlations, 1); break;
        case ZORVS_CORRELATIONS_USER: user(correlations, 1); break;
        case ZORVS_CUM_PERCENT: address(cumulative, 2); break;
        case ZORVS_CUM_PERCENT_USER: user(cumulative, 2); break;
        case ZORVS_STD_DEV:
            df = kw.integer();
            address(std_errors, 3);
            break;
        case ZORVS_STD_DEV_USER:
            df = kw.integer();
            user(std_errors, 3);
            break;
        default: kw.unknown(k); return;
        }
    }
    int arg_no = 0;
    zorvs_c1iarg(n_variables, "n_variables", 1, 0, &arg_no);
    zorvs_null_pointer("covariances", -1, covariances);
    if (zorvs_error_n1rty[0] < 4)
        l_components_of(n_variables, covariances, cov_col_dim, type, df, values, vectors, correlations, cumulative,
                        std_errors);
    zorvs::null_failed_addresses(given[0], given[1], given[2], given[3]);
}

}  // namespace

extern "C" {

float *zorvs_f_principal_components(int n_variables, float covariances[], ...) {
    ZORVS_KEYWORD_ENTRY(covariances, "zorvs_f_principal_components", lv_eigenvalues<float>,
                        l_principal_components<float>(n_variables, covariances, &list));
}
double *zorvs_d_principal_components(int n_variables, double covariances[], ...) {
    ZORVS_KEYWORD_ENTRY(covariances, "zorvs_d_principal_components", lv_eigenvalues<double>,
                        l_principal_components<double>(n_variables, covariances, &list));
}

}  // extern "C"
