// cholesky.cpp - factorisation and solution for symmetric non-negative
// definite matrices that may be singular, the sweep operator, and the small
// matrix utilities around them.  Column-major, numbers by pointer.
//
// zorvs_chfac: the rank-revealing Cholesky factor R (upper, A = R'R) by
//   columns (the inner-product form of Golub and Van Loan, Matrix
//   Computations, 4th ed., algorithm 4.2.1), where a pivot at or below tol
//   times the diagonal of A marks its row dependent and zero; a column that
//   needs a non-zero element against a dependent row, or a pivot below zero,
//   shows that A is not non-negative definite.
// zorvs_girts: triangular solves with such an R, and its generalized inverse
//   (the zero-diagonal rows and columns of R become zero rows and columns of
//   the inverse; the rest is the inverse of the remaining triangle, formed in
//   place as in LINPACK's DTRDI, Dongarra et al., LINPACK Users' Guide, 1979).
// zorvs_gswep: one step of the sweep operator (Goodnight, "A tutorial on the
//   SWEEP operator", The American Statistician 33 (1979) 149-158) on the upper
//   triangle.  With S the swept rows and T the others the matrix holds
//   inverse(A_SS), inverse(A_SS) A_ST and A_TT - A_TS inverse(A_SS) A_ST, all
//   with their own signs, so that sweeping every row gives the inverse and
//   sweeping a row a second time restores the matrix; the signs of the
//   update follow from isw of the two indices and of the pivot.

#include <cmath>
#include <cstring>

#include "frame/checks.h"
#include "frame/checks.hpp"
#include "frame/frame.hpp"
#include "frame/raise.hpp"
#include "kernels/blas.hpp"
#include "kernels/linalg.h"

namespace {

// A terminal or fatal error has been raised in the current routine.
inline bool failed() { return zorvs_error_n1rty[0] >= 4; }

// Element (i, j) from 1 of a column-major matrix.
template <class T>
inline T &at(T *a, int lda, int i, int j) {
    return a[static_cast<std::size_t>(j - 1) * lda + (i - 1)];
}
template <class T>
inline const T &at(const T *a, int lda, int i, int j) {
    return a[static_cast<std::size_t>(j - 1) * lda + (i - 1)];
}

// Zero the strict lower triangle of an n x n block.
template <class T>
void l_c1trg(int n, T *a, int lda) {
    if (n < 1) {
        zorvs::raise(5, 2025, n);
        return;
    }
    if (n > lda) {
        zorvs::raise(5, 2026, n, lda);
        return;
    }
    for (int j = 1; j < n; ++j)
        for (int i = j + 1; i <= n; ++i) at(a, lda, i, j) = T(0);
}

template <class T>
void l_chfac(int n, const T *a, int lda, T tol, int *irank, T *fac, int ldfac) {
    int arg = 0;
    zorvs_c1dim(1, n, "N", lda, "LDA", &arg);
    zorvs_c1dim(1, n, "N", ldfac, "LDFAC", &arg);
    if (!(tol >= T(0) && tol <= T(1))) {
        zorvs_e1str(1, static_cast<double>(tol));
        zorvs_ermes(5, 20405);
    }
    if (failed()) return;
    for (int j = 1; j <= n; ++j) {
        const T *from = &at(a, lda, 1, j);
        T *to = &at(fac, ldfac, 1, j);
        if (from != to) std::memmove(to, from, sizeof(T) * j);
    }
    *irank = 0;
    int inconsistent = 0;
    for (int j = 1; j <= n; ++j) {
        T sum = 0;
        const T x = tol * std::sqrt(std::fabs(at(fac, ldfac, j, j)));
        T *column = &at(fac, ldfac, 1, j);
        for (int i = 1; i < j; ++i) {
            const T *ci = &at(fac, ldfac, 1, i);
            T t = column[i - 1] - zorvs::blas::dot(i - 1, ci, 1, column, 1);
            if (ci[i - 1] != T(0)) {
                t /= ci[i - 1];
                column[i - 1] = t;
                sum += t * t;
            } else {
                if (inconsistent == 0 && std::fabs(t) > x * zorvs::blas::nrm2(i - 1, ci)) inconsistent = j;
                column[i - 1] = 0;
            }
        }
        const T diagonal = column[j - 1];
        T t = diagonal - sum;
        // A pivot that is not a number from a diagonal that is comes from an
        // element that overflowed (0 * inf in a product), which no
        // nonnegative definite matrix has: each |r(i, j)| is at most
        // sqrt(a(j, j)).  It counts as a negative pivot.
        if (std::fabs(t) <= tol * std::fabs(diagonal)) {
            t = 0;
        } else if (t < T(0) || (std::isnan(t) && !std::isnan(diagonal))) {
            t = 0;
            if (inconsistent == 0) inconsistent = j;
        } else {
            ++*irank;
        }
        column[j - 1] = std::sqrt(t);
    }
    if (inconsistent != 0) {
        zorvs_e1sti(1, inconsistent);
        zorvs_e1str(1, static_cast<double>(tol));
        zorvs_ermes(3, 20406);
    }
    l_c1trg(n, fac, ldfac);
}

template <class T>
void l_girts(int n, const T *r, int ldr, int nb, const T *b, int ldb, int ipath, int *irank, T *x, int ldx, T *rinv,
             int ldrinv) {
    int arg = 0;
    zorvs_c1dim(1, n, "N", ldr, "LDR", &arg);
    zorvs_c1iarg(nb, "NB", 0, -1, &arg);
    zorvs_c1iarg(ipath, "IPATH", 1, 4, &arg);
    if (nb >= 1) {
        zorvs_c1dim(1, n, "*N", ldb, "LDB", &arg);
        zorvs_c1dim(1, n, "*N", ldx, "LDX", &arg);
    }
    if (ipath == 3 || ipath == 4) zorvs_c1dim(1, n, "*N", ldrinv, "tdrinv", &arg);
    if (failed()) return;
    zorvs::check::c1r(n, r, ldr, &arg);
    if (failed()) return;
    *irank = 0;
    for (int i = 1; i <= n; ++i)
        if (at(r, ldr, i, i) != T(0)) ++*irank;
    const bool transposed = ipath == 2 || ipath == 4;
    for (int k = 1; k <= nb; ++k) {
        T *xk = &at(x, ldx, 1, k);
        const T *bk = &at(b, ldb, 1, k);
        if (xk != bk) std::memmove(xk, bk, sizeof(T) * n);
        if (*irank == n) {
            zorvs::blas::trsv("UPPER", transposed ? "TRANSPOSE" : "NOT-TRANS", "NON-UNIT", n, r, ldr, xk, 1);
        } else if (!transposed) {
            for (int i = n; i >= 1; --i) {
                const T rii = at(r, ldr, i, i);
                if (rii == T(0)) {
                    if (xk[i - 1] != T(0)) {
                        zorvs_e1sti(1, i);
                        zorvs_e1sti(2, k);
                        zorvs_e1str(1, static_cast<double>(xk[i - 1]));
                        zorvs_ermes(3, 11058);
                    }
                    xk[i - 1] = 0;
                } else {
                    const T xi = xk[i - 1] / rii;
                    xk[i - 1] = xi;
                    const T *ri = &at(r, ldr, 1, i);
                    for (int h = 0; h < i - 1; ++h) xk[h] -= xi * ri[h];
                }
            }
        } else {
            const T eps = zorvs::epsilon<T>();
            for (int i = 1; i <= n; ++i) {
                const T *ri = &at(r, ldr, 1, i);
                const T t = xk[i - 1] - zorvs::blas::dot(i - 1, ri, 1, xk, 1);
                if (ri[i - 1] != T(0)) {
                    xk[i - 1] = t / ri[i - 1];
                } else {
                    // The residual of an equation of a dependent row must vanish
                    // on the scale of the terms that formed it.
                    const T scale = std::fabs(bk[i - 1]) + zorvs::blas::a1ot(i - 1, ri, 1, xk, 1);
                    if (std::fabs(t) > T(100) * T(n) * eps * scale) {
                        zorvs::raise(3, 11059, i, k);
                    }
                    xk[i - 1] = 0;
                }
            }
        }
    }
    if (ipath == 3 || ipath == 4) {
        for (int j = 1; j <= n; ++j) {
            const T *from = &at(r, ldr, 1, j);
            T *to = &at(rinv, ldrinv, 1, j);
            if (from != to) std::memmove(to, from, sizeof(T) * j);
            for (int i = j + 1; i <= n; ++i) at(rinv, ldrinv, i, j) = 0;
        }
        for (int k = 1; k <= n; ++k) {
            T *ck = &at(rinv, ldrinv, 1, k);
            if (ck[k - 1] == T(0)) {
                // A dependent row: its row is already zero, its column goes too.
                for (int h = 0; h < k; ++h) ck[h] = 0;
                continue;
            }
            ck[k - 1] = T(1) / ck[k - 1];
            const T t = -ck[k - 1];
            for (int h = 0; h < k - 1; ++h) ck[h] *= t;
            for (int j = k + 1; j <= n; ++j) {
                T *cj = &at(rinv, ldrinv, 1, j);
                const T s = cj[k - 1];
                cj[k - 1] = 0;
                for (int h = 0; h < k; ++h) cj[h] += s * ck[h];
            }
        }
    }
}

template <class T>
void l_gswep(int krow, int n, T *a, int lda, int irev, T tol, const T *d, T *isw) {
    int arg = 0;
    zorvs_c1dim(1, n, "N", lda, "LDA", &arg);
    zorvs_c1ind(1, krow, "KROW", n, "N", &arg);
    zorvs_c1iarg(irev, "IREV", 0, 1, &arg);
    if (!(tol >= T(0) && tol <= T(1))) {
        zorvs_e1str(1, static_cast<double>(tol));
        zorvs_ermes(5, 20405);
    }
    if (failed()) return;
    for (int i = 1; i <= n; ++i) {
        if (tol > T(0) && d[i - 1] < T(0)) {
            zorvs_e1sti(1, i);
            zorvs_e1str(1, static_cast<double>(d[i - 1]));
            zorvs_ermes(5, 20417);
        }
        if (isw[i - 1] != T(1) && isw[i - 1] != T(-1)) {
            zorvs_e1sti(1, i);
            zorvs_e1str(1, static_cast<double>(isw[i - 1]));
            zorvs_e1str(2, 1.0);
            zorvs_e1str(3, -1.0);
            zorvs_ermes(5, 20418);
        }
    }
    if (failed()) return;
    // Element (i, j) of the symmetric matrix through its upper triangle.
    auto u = [&](int i, int j) -> T & { return i <= j ? at(a, lda, i, j) : at(a, lda, j, i); };
    const int k = krow;
    const T p = u(k, k);
    const T sk = isw[k - 1];
    bool accept = true;
    if (sk > T(0)) {
        // A forward sweep: the pivot's residual must stay above tol times its
        // starting value, and so must that of every row swept before, whose
        // diagonal 1/r of the inverse becomes 1/r + a(j,k)^2/p.
        accept = p > tol * d[k - 1];
        for (int j = 1; accept && j <= n; ++j) {
            if (j == k || isw[j - 1] > T(0)) continue;
            const T ajk = u(j, k);
            const T residual = T(1) / (u(j, j) + ajk * ajk / p);
            accept = residual >= tol * d[j - 1];
        }
    }
    if (!accept) {
        if (irev == 0)
            for (int i = 1; i <= n; ++i) u(i, k) = 0;
        return;
    }
    // a(i,j) := a(i,j) + c a(i,k) a(j,k) / p, with c = +1 where i and j are
    // both on the side that k joins (both swept for a forward sweep, both
    // not swept for a reverse one) and c = -1 otherwise; a(i,k) := isw(i)
    // a(i,k) / p; a(k,k) := 1/p.
    const T r = T(1) / p;
    for (int j = 1; j <= n; ++j) {
        if (j == k) continue;
        const T ajk = u(j, k) * r;
        const bool j_joins = isw[j - 1] == -sk;
        for (int i = 1; i <= j; ++i) {
            if (i == k) continue;
            if (j_joins && isw[i - 1] == -sk)
                at(a, lda, i, j) += u(i, k) * ajk;
            else
                at(a, lda, i, j) -= u(i, k) * ajk;
        }
    }
    for (int i = 1; i <= n; ++i)
        if (i != k) u(i, k) *= isw[i - 1] * r;
    u(k, k) = r;
    isw[k - 1] = -isw[k - 1];
}

template <class T>
void l_mxtxf(int nra, int nca, const T *a, int lda, int nb, T *b, int ldb) {
    if (nra <= 0 || nca <= 0) {
        zorvs::raise(5, 20136, nra, nca);
    } else if (nra > lda) {
        zorvs::raise(5, 20137, nra, lda);
    } else if (nb != nca) {
        zorvs::raise(5, 11278, nb, nca);
    } else if (nb > ldb) {
        zorvs::raise(5, 11279, ldb, nb);
    } else {
        zorvs::blas::gemm("T", "N", nca, nca, nra, T(1), a, lda, a, lda, T(0), b, ldb);  // B = A'A
    }
}

template <class T>
void l_crgrg(int n, const T *a, int lda, T *b, int ldb) {
    if (lda < n || ldb < n) {
        zorvs::raise(5, lda < n ? 11280 : 11281, lda < n ? lda : ldb, n);
        return;
    }
    for (int j = 1; j <= n; ++j) {
        const T *from = &at(a, lda, 1, j);
        T *to = &at(b, ldb, 1, j);
        if (from != to) std::memmove(to, from, sizeof(T) * n);
    }
}

template <class T>
void l_csfrg(int n, T *a, int lda) {
    if (n < 1) {
        zorvs::raise(5, 2025, n);
    } else if (n > lda) {
        zorvs::raise(5, 2026, n, lda);
    } else {
        for (int j = 2; j <= n; ++j)
            for (int i = 1; i < j; ++i) at(a, lda, j, i) = at(a, lda, i, j);
    }
}

template <class T>
void l_nr1rr(int nra, int nca, const T *a, int lda, T *anorm) {
    if (nra > lda) {
        zorvs::raise(5, 20137, nra, lda);
    }
    if (nra < 1) {
        zorvs::raise(5, 620, nra);
    }
    if (nca < 1) {
        zorvs::raise(5, 621, nca);
    }
    if (failed()) return;
    T norm = 0;
    for (int j = 1; j <= nca; ++j) {
        const T s = zorvs::blas::asum(nra, &at(a, lda, 1, j), 1);
        if (s > norm) norm = s;
    }
    *anorm = norm;
}

}  // namespace

extern "C" {

void zorvs_chfac(const int *n, const float a[], const int *lda, const float *tol, int *irank, float fac[],
                 const int *ldfac) {
    zorvs::framed("zorvs_chfac", [&] { l_chfac(*n, a, *lda, *tol, irank, fac, *ldfac); });
}
void zorvs_dchfac(const int *n, const double a[], const int *lda, const double *tol, int *irank, double fac[],
                  const int *ldfac) {
    zorvs::framed("zorvs_dchfac", [&] { l_chfac(*n, a, *lda, *tol, irank, fac, *ldfac); });
}

void zorvs_girts(const int *n, const float r[], const int *ldr, const int *nb, const float b[], const int *ldb,
                 const int *ipath, int *irank, float x[], const int *ldx, float rinv[], const int *ldrinv) {
    zorvs::framed("zorvs_girts", [&] { l_girts(*n, r, *ldr, *nb, b, *ldb, *ipath, irank, x, *ldx, rinv, *ldrinv); });
}
void zorvs_dgirts(const int *n, const double r[], const int *ldr, const int *nb, const double b[],
                  const int *ldb, const int *ipath, int *irank, double x[], const int *ldx, double rinv[],
                  const int *ldrinv) {
    zorvs::framed("zorvs_dgirts", [&] { l_girts(*n, r, *ldr, *nb, b, *ldb, *ipath, irank, x, *ldx, rinv, *ldrinv); });
}

void zorvs_gswep(const int *krow, const int *n, float a[], const int *lda, const int *irev, const float *tol,
                 const float d[], float isw[]) {
    zorvs::framed("zorvs_gswep", [&] { l_gswep(*krow, *n, a, *lda, *irev, *tol, d, isw); });
}
void zorvs_dgswep(const int *krow, const int *n, double a[], const int *lda, const int *irev, const double *tol,
                  const double d[], double isw[]) {
    zorvs::framed("zorvs_dgswep", [&] { l_gswep(*krow, *n, a, *lda, *irev, *tol, d, isw); });
}

void zorvs_mxtxf(const int *nra, const int *nca, const float a[], const int *lda, const int *nb, float b[],
                 const int *ldb) {
    zorvs::framed("zorvs_mxtxf", [&] { l_mxtxf(*nra, *nca, a, *lda, *nb, b, *ldb); });
}
void zorvs_dmxtxf(const int *nra, const int *nca, const double a[], const int *lda, const int *nb, double b[],
                  const int *ldb) {
    zorvs::framed("zorvs_dmxtxf", [&] { l_mxtxf(*nra, *nca, a, *lda, *nb, b, *ldb); });
}

void zorvs_crgrg(const int *n, const float a[], const int *lda, float b[], const int *ldb) {
    zorvs::framed("zorvs_crgrg", [&] { l_crgrg(*n, a, *lda, b, *ldb); });
}
void zorvs_dcrgrg(const int *n, const double a[], const int *lda, double b[], const int *ldb) {
    zorvs::framed("zorvs_dcrgrg", [&] { l_crgrg(*n, a, *lda, b, *ldb); });
}

void zorvs_csfrg(const int *n, float a[], const int *lda) {
    zorvs::framed("zorvs_csfrg", [&] { l_csfrg(*n, a, *lda); });
}
void zorvs_dcsfrg(const int *n, double a[], const int *lda) {
    zorvs::framed("zorvs_dcsfrg", [&] { l_csfrg(*n, a, *lda); });
}

void zorvs_nr1rr(const int *nra, const int *nca, const float a[], const int *lda, float *anorm) {
    zorvs::framed("zorvs_nr1rr", [&] { l_nr1rr(*nra, *nca, a, *lda, anorm); });
}
void zorvs_dnr1rr(const int *nra, const int *nca, const double a[], const int *lda, double *anorm) {
    zorvs::framed("zorvs_dnr1rr", [&] { l_nr1rr(*nra, *nca, a, *lda, anorm); });
}

void zorvs_prime(const int *n, int *nfactors, int factors[], int exponents[], int powers[]) {
    int count = 0;
    long long m = *n;
    for (long long p = 2; p * p <= m; p += (p == 2 ? 1 : 2)) {
        if (m % p) continue;
        int e = 0;
        long long power = 1;
        while (m % p == 0) {
            m /= p;
            power *= p;
            ++e;
        }
        factors[count] = static_cast<int>(p);
        exponents[count] = e;
        powers[count] = static_cast<int>(power);
        ++count;
    }
    if (m > 1) {
        factors[count] = static_cast<int>(m);
        exponents[count] = 1;
        powers[count] = static_cast<int>(m);
        ++count;
    }
    *nfactors = count;
}

}  // extern "C"
