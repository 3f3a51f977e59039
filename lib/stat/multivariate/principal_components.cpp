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
// Left to the implementer, settled here: the body accepts one variable and
// the worker refuses it ((5, 603) for "NVAR"), since one variable has no
// components to speak of.  A NaN in the matrix is not a missing value here:
// the eigensolver does not converge on it ((3, 20103)) and the results are
// NaN.  Every output the caller did not ask for is still computed in work
// space, as the worker fills them all.  The matrix is read as it stands (its
// upper triangle, seen column-major); it is not written.

#include <cmath>
#include <cstdarg>
#include <type_traits>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "kernels/kernels.h"
#include "kernels/linalg.h"
#include "stat/multivariate/output_pair.hpp"
#include "zorvstat.h"

namespace {

template <class T>
T *lv_eigenvalues = nullptr;

inline void e5csf(int n, const float *a, int lda, float *eval, float *evec, int ldevec, float *work, int *iwork) {
    zorvs_e5csf(&n, a, &lda, eval, evec, &ldevec, work, iwork);
}
inline void e5csf(int n, const double *a, int lda, double *eval, double *evec, int ldevec, double *work,
                  int *iwork) {
    zorvs_de5csf(&n, a, &lda, eval, evec, &ldevec, work, iwork);
}
inline float sum(int n, const float *x) { return zorvs_ssum(n, x, 1); }
inline double sum(int n, const double *x) { return zorvs_dsum(n, x, 1); }
inline int iamax(int n, const float *x) { return zorvs_isamax(n, x, 1); }
inline int iamax(int n, const double *x) { return zorvs_idamax(n, x, 1); }
inline float nrm2(int n, const float *x) { return zorvs_snrm2(n, x); }
inline double nrm2(int n, const double *x) { return zorvs_dnrm2(n, x); }
inline void scal(int n, float a, float *x) { zorvs_sscal(n, a, x, 1); }
inline void scal(int n, double a, double *x) { zorvs_dscal(n, a, x, 1); }
inline void vcal(int n, float a, const float *x, float *y) { zorvs_svcal(n, a, x, 1, y, 1); }
inline void vcal(int n, double a, const double *x, double *y) { zorvs_dvcal(n, a, x, 1, y, 1); }
inline float dot(int n, const float *x, const float *y) { return zorvs_sdot(n, x, 1, y, 1); }
inline double dot(int n, const double *x, const double *y) { return zorvs_ddot(n, x, 1, y, 1); }
inline void hprod(int n, const float *x, const float *y, float *z) {
    const int one = 1;
    zorvs_shprod(&n, x, &one, y, &one, z, &one);
}
inline void hprod(int n, const double *x, const double *y, double *z) {
    const int one = 1;
    zorvs_dshprod(&n, x, &one, y, &one, z, &one);
}
inline void transpose(int n, float *a) { zorvs_f_m1ran(n, n, a, a); }
inline void transpose(int n, double *a) { zorvs_d_m1ran(n, n, a, a); }
template <class T>
T spacing() {
    if constexpr (std::is_same_v<T, float>)
        return zorvs_f_machine(4);
    else
        return zorvs_d_machine(4);
}

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

    e5csf(n, a, lda, eval, evec, ldevec, work, iwork);
    if (zorvs_error_n1rty[1] > 3) {
        zorvs_e1pop(name);
        return;
    }
    const T total = sum(n, eval);
    T running = 0;
    for (int j = 0; j < n; ++j) {
        T *v = evec + static_cast<long>(j) * ldevec;
        const int k = iamax(n, v);
        T t = nrm2(n, v);
        if (v[k - 1] < T(0)) t = -t;
        scal(n, T(1) / t, v);
        running += eval[j];
        cum[j] = running / total;
    }
    const T smallest = eval[n - 1], largest = eval[0];
    if (smallest < T(0) && (n == 1 || largest <= T(0) || smallest < T(-1000) * spacing<T>() * largest)) {
        zorvs_e1sti(1, n - 1);
        zorvs_e1std(1, static_cast<double>(smallest));
        zorvs_ermes(3, 20102);
    }
    for (int j = 0; j < n; ++j) {
        const T ev = eval[j] > T(0) ? eval[j] : T(0);
        const T *v = evec + static_cast<long>(j) * ldevec;
        T *c = corr + static_cast<long>(j) * ldcorr;
        if (type == 1) {
            // The squares of the vector stand in the column for now.
            hprod(n, v, v, c);
            T s = ev * ev + (T(1) - T(2) * ev) * dot(n, c, c);
            for (int l = 1; l < n; ++l)
                for (int k = 0; k < l; ++k) {
                    const T r = at(a, lda, k, l);
                    s += T(2) * c[k] * c[l] * (r * r);
                }
            se[j] = std::sqrt(s > T(0) ? s : T(0)) * rt;
        } else {
            se[j] = ev * rt;
        }
        vcal(n, std::sqrt(ev), v, c);
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

template <class T>
void l_principal_components(int n_variables, T *covariances, va_list *list) {
    zorvs::KeywordReader kw(list, 2);
    bool user = false;
    int cov_col_dim = n_variables, type = 0, df = 100;
    zorvs::OptionalOutput<T> vectors, correlations, cumulative, std_errors;
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        switch (k) {
        case ZORVS_RETURN_USER:
            lv_eigenvalues<T> = kw.pointer<T>();
            user = true;
            break;
        case ZORVS_COV_COL_DIM: cov_col_dim = kw.integer(); break;
        case ZORVS_COVARIANCE_MATRIX: type = 0; break;
        case ZORVS_CORRELATION_MATRIX: type = 1; break;
        case ZORVS_EIGENVECTORS: vectors.set_give(kw.pointer<T *>()); break;
        case ZORVS_EIGENVECTORS_USER: vectors.set_user(kw.pointer<T>()); break;
        case ZORVS_CORRELATIONS: correlations.set_give(kw.pointer<T *>()); break;
        case ZORVS_CORRELATIONS_USER: correlations.set_user(kw.pointer<T>()); break;
        case ZORVS_CUM_PERCENT: cumulative.set_give(kw.pointer<T *>()); break;
        case ZORVS_CUM_PERCENT_USER: cumulative.set_user(kw.pointer<T>()); break;
        case ZORVS_STD_DEV:
            df = kw.integer();
            std_errors.set_give(kw.pointer<T *>());
            break;
        case ZORVS_STD_DEV_USER:
            df = kw.integer();
            std_errors.set_user(kw.pointer<T>());
            break;
        default: kw.unknown(k); return;
        }
    }
    int arg_no = 0;
    zorvs_c1iarg(n_variables, "n_variables", 1, 0, &arg_no);
    zorvs_null_pointer("covariances", -1, covariances);
    const bool checked = zorvs_error_n1rty[0] < 4;

    const int n = n_variables;
    T *work = checked ? zorvs::allocate<T>(2 * n, "n_variables") : nullptr;
    int *iwork = checked ? zorvs::allocate<int>(n, "n_variables") : nullptr;
    bool ready = work && iwork;
    if (ready && !user) ready = (lv_eigenvalues<T> = zorvs::allocate<T>(n, "n_variables")) != nullptr;
    ready = ready && vectors.acquire(n, "n_variables", n, "n_variables") &&
            correlations.acquire(n, "n_variables", n, "n_variables") && cumulative.acquire(n, "n_variables") &&
            std_errors.acquire(n, "n_variables");
    if (ready) {
        l_princ(df, n, covariances, cov_col_dim, type, lv_eigenvalues<T>, cumulative.data, std_errors.data,
                vectors.data, n, correlations.data, n, work, iwork);
        if (zorvs_error_n1rty[0] < 4) {
            transpose(n, vectors.data);
            transpose(n, correlations.data);
        }
    }
    const bool failed = zorvs_error_n1rty[0] >= 4;
    vectors.finish(failed);
    correlations.finish(failed);
    cumulative.finish(failed);
    std_errors.finish(failed);
    zorvs::release(work);
    zorvs::release(iwork);
    zorvs::exit_test(lv_eigenvalues<T>, user);
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
