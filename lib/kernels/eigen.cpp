// eigen.cpp - all eigenvalues and eigenvectors of a real symmetric matrix.
//
// The matrix (its upper triangle, mirrored down) is reduced to tridiagonal
// form by Householder reflections working from the last row upward, with the
// reflections accumulated into the vectors: Martin, Reinsch and Wilkinson,
// "Householder's tridiagonalization of a symmetric matrix", Numer. Math. 11
// (1968) 181-195 (procedure tred2 of the Handbook for Automatic Computation,
// vol. II).  Each row's tail is scaled by its sum of absolute values before
// the reflection is formed, which keeps the squares in range.
//
// The tridiagonal matrix is diagonalised by the implicit QL method with
// Wilkinson's shift, the rotations applied to the vectors as they are made:
// Martin and Wilkinson, "The implicit QL algorithm", Numer. Math. 12 (1968)
// 377-383 (procedure imtql2).  An off-diagonal counts as zero when it is
// below epsilon times its two neighbouring diagonals, or below a hundred times
// the smallest positive number.
//
// zorvs_e2csf leaves the values in the order in which QL finds them and
// scales each vector so that its element of largest magnitude is 1.
// zorvs_e5csf works on a copy of the matrix scaled by its largest element (so
// that neither overflow nor underflow can hurt the reduction), diagonalises
// each unreduced block of the tridiagonal matrix separately, and returns the
// values by decreasing magnitude with unit vectors.

#include <cmath>
#include <cstring>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/raise.hpp"
#include "kernels/blas.hpp"
#include "kernels/linalg.h"
#include "kernels/sort.hpp"

namespace {

inline bool failed() { return zorvs_error_n1rty[0] >= 4; }

template <class T>
inline T &el(T *v, int ld, int row, int col) {  // from 0
    return v[static_cast<std::size_t>(col) * ld + row];
}

// Private level-2 kernels with the meaning of the Level 2 BLAS routines of
// the same names (Dongarra, Du Croz, Hammarling and Hanson, "An extended set
// of FORTRAN Basic Linear Algebra Subprograms", ACM TOMS 14 (1988) 1-17), one
// template for both precisions, so that the solvers here depend on no other
// level-2 code.  Only the first character of a character argument counts:
// "L" (as in "LOW", "LOWER") the lower triangle, anything else the upper; "N"
// no transposition, anything else transposed.  Strides may be negative and
// then start at the far end; the callers trust their arguments, so there are
// no checks.  Where the order of operations is a choice, it is that of the
// Handbook procedure tred2, so that the reduction rounds as that procedure
// does.

// Index of element 0 of a vector of n elements with stride inc.
inline long first_index(int n, int inc) { return inc > 0 ? 0 : static_cast<long>(1 - n) * inc; }

inline bool lower_triangle(const char *uplo) { return uplo[0] == 'L' || uplo[0] == 'l'; }

// y := alpha op(A) x + beta y, A m x n.  Beta 0 stores zeros without reading
// y.  Transposed, each y(j) gets alpha times an inner product of column j
// with x, summed upward from 0.
template <class T>
void l_sgemv(const char *trans, int m, int n, T alpha, const T *a, int lda, const T *x, int incx, T beta, T *y,
             int incy) {
    if (m <= 0 || n <= 0 || (alpha == T(0) && beta == T(1))) return;
    const bool plain = trans[0] == 'N' || trans[0] == 'n';
    const int lenx = plain ? n : m, leny = plain ? m : n;
    const long kx = first_index(lenx, incx), ky = first_index(leny, incy);
    if (beta != T(1))
        for (long i = 0, iy = ky; i < leny; ++i, iy += incy) y[iy] = beta == T(0) ? T(0) : beta * y[iy];
    if (alpha == T(0)) return;
    for (long j = 0, jx = kx, jy = ky; j < n; ++j) {
        const T *column = &a[static_cast<std::size_t>(j) * lda];
        if (plain) {
            const T temp = alpha * x[jx];
            for (long i = 0, iy = ky; i < m; ++i, iy += incy) y[iy] += temp * column[i];
            jx += incx;
        } else {
            T temp = 0;
            for (long i = 0, ix = kx; i < m; ++i, ix += incx) temp += column[i] * x[ix];
            y[jy] += alpha * temp;
            jy += incy;
        }
    }
}

// y := alpha A x + beta y, A symmetric n x n given by one triangle.  Column
// j contributes alpha x(j) A(:,j) to the rest of y, and its inner product
// with x is added to y(j) in one accumulator started from y(j) + alpha x(j)
// A(j,j); with alpha = 1 this is tred2's order of additions.
template <class T>
void l_ssymv(const char *uplo, int n, T alpha, const T *a, int lda, const T *x, int incx, T beta, T *y, int incy) {
    if (n <= 0 || (alpha == T(0) && beta == T(1))) return;
    const long kx = first_index(n, incx), ky = first_index(n, incy);
    if (beta != T(1))
        for (long i = 0, iy = ky; i < n; ++i, iy += incy) y[iy] = beta == T(0) ? T(0) : beta * y[iy];
    if (alpha == T(0)) return;
    const bool lower = lower_triangle(uplo);
    for (long j = 0; j < n; ++j) {
        const T *column = &a[static_cast<std::size_t>(j) * lda];
        const long jx = kx + j * incx, jy = ky + j * incy;
        const T temp1 = alpha * x[jx];
        T sum = y[jy] + temp1 * column[j];
        const long from = lower ? j + 1 : 0, to = lower ? n : j;
        for (long i = from, ix = kx + from * incx, iy = ky + from * incy; i < to; ++i, ix += incx, iy += incy) {
            y[iy] += temp1 * column[i];
            sum += column[i] * (alpha * x[ix]);
        }
        y[jy] = sum;
    }
}

// A := alpha x y' + alpha y x' + A, A symmetric n x n, one triangle updated.
// Each element gets the sum of its two products in one addition, as in
// tred2; columns whose x(j) and y(j) are 0 are not skipped.
template <class T>
void l_ssyr2(const char *uplo, int n, T alpha, const T *x, int incx, const T *y, int incy, T *a, int lda) {
    if (n <= 0 || alpha == T(0)) return;
    const long kx = first_index(n, incx), ky = first_index(n, incy);
    const bool lower = lower_triangle(uplo);
    for (long j = 0; j < n; ++j) {
        T *column = &a[static_cast<std::size_t>(j) * lda];
        const T temp1 = alpha * y[ky + j * incy];
        const T temp2 = alpha * x[kx + j * incx];
        const long from = lower ? j : 0, to = lower ? n : j + 1;
        for (long i = from, ix = kx + from * incx, iy = ky + from * incy; i < to; ++i, ix += incx, iy += incy)
            column[i] += x[ix] * temp1 + y[iy] * temp2;
    }
}

// Householder tridiagonalisation of the symmetric matrix held in v (lower
// triangle read, upper triangle mirrored down first).  On return d is the
// diagonal, e(1..n-1) the sub-diagonal with e(0) = 0, and v the orthogonal
// matrix Q with Q' A Q tridiagonal.
template <class T>
void l_e3csf(int n, T *v, int ld, T *d, T *e) {
    for (int j = 1; j < n; ++j)
        for (int i = 0; i < j; ++i) el(v, ld, j, i) = el(v, ld, i, j);
    for (int j = 0; j < n; ++j) d[j] = el(v, ld, n - 1, j);
    for (int i = n - 1; i > 0; --i) {
        T scale = 0, h = 0;
        for (int k = 0; k < i; ++k) scale += std::fabs(d[k]);
        if (scale == T(0)) {
            // Nothing to annihilate: the off-diagonal element is zero.
            e[i] = d[i - 1];
            for (int j = 0; j < i; ++j) {
                d[j] = el(v, ld, i - 1, j);
                el(v, ld, i, j) = 0;
                el(v, ld, j, i) = 0;
            }
        } else {
            for (int k = 0; k < i; ++k) {
                d[k] /= scale;
                h += d[k] * d[k];
            }
            T f = d[i - 1];
            T g = std::sqrt(h);
            if (f > 0) g = -g;  // the sign against the element's, no cancellation
            e[i] = scale * g;
            h -= f * g;
            d[i - 1] = f - g;
            // p = A u / h over the leading i x i block, and u kept in column i.
            l_ssymv("LOWER", i, T(1), v, ld, d, 1, T(0), e, 1);
            for (int j = 0; j < i; ++j) el(v, ld, j, i) = d[j];
            f = 0;
            for (int j = 0; j < i; ++j) {
                e[j] /= h;
                f += e[j] * d[j];
            }
            // q = p - K u with K = u'p / 2h; A := A - u q' - q u'.
            const T hh = f / (h + h);
            for (int j = 0; j < i; ++j) e[j] -= hh * d[j];
            l_ssyr2("LOWER", i, T(-1), d, 1, e, 1, v, ld);
            for (int j = 0; j < i; ++j) {
                d[j] = el(v, ld, i - 1, j);
                el(v, ld, i, j) = 0;
            }
        }
        d[i] = h;
    }
    // Accumulate the transformations.
    for (int i = 0; i < n - 1; ++i) {
        el(v, ld, n - 1, i) = el(v, ld, i, i);
        el(v, ld, i, i) = 1;
        const T h = d[i + 1];
        T *next = &el(v, ld, 0, i + 1);
        if (h != T(0)) {
            // Z := Z - (u/h)(Z'u)' on the leading block; Z'u goes to d(0..i),
            // whose h values are spent.
            l_sgemv("TRANS", i + 1, i + 1, T(1), v, ld, next, 1, T(0), d, 1);
            for (int k = 0; k <= i; ++k) next[k] /= h;
            zorvs::blas::ger(i + 1, i + 1, T(-1), next, 1, d, 1, v, ld);
        }
        for (int k = 0; k <= i; ++k) next[k] = 0;
    }
    for (int j = 0; j < n; ++j) {
        d[j] = el(v, ld, n - 1, j);
        el(v, ld, n - 1, j) = 0;
    }
    el(v, ld, n - 1, n - 1) = 1;
    e[0] = 0;
}

// Implicit QL on the tridiagonal (d, e), e(i) below d(i) for i >= 1, rows
// first..last of a larger matrix; rotations go into the columns of v.
// Returns false when the iterations ran out (count is shared by the block).
template <class T>
bool l_e4csf(int first, int last, T *d, T *e, int nv, T *v, int ld, int limit) {
    const T eps = zorvs::epsilon<T>();
    const T small = T(100) * zorvs::smallest<T>();
    if (last <= first) return true;
    // Off-diagonal i couples i and i+1.
    for (int i = first; i < last; ++i) e[i] = e[i + 1];
    e[last] = 0;
    int iterations = 0;
    for (int l = first; l <= last; ++l) {
        for (;;) {
            int m = l;
            for (; m < last; ++m) {
                const T bound = eps * (std::fabs(d[m]) + std::fabs(d[m + 1]));
                if (std::fabs(e[m]) <= (bound > small ? bound : small)) break;
            }
            if (m == l) break;
            if (iterations >= limit) return false;
            ++iterations;
            T g = (d[l + 1] - d[l]) / (T(2) * e[l]);
            T r = std::hypot(g, T(1));
            g = d[m] - d[l] + e[l] / (g + (g >= 0 ? std::fabs(r) : -std::fabs(r)));
            T s = 1, c = 1, p = 0;
            int i = m - 1;
            for (; i >= l; --i) {
                T f = s * e[i];
                const T b = c * e[i];
                r = std::hypot(f, g);
                e[i + 1] = r;
                if (r == T(0)) {
                    // Underflow: the block splits here.
                    d[i + 1] -= p;
                    e[m] = 0;
                    break;
                }
                s = f / r;
                c = g / r;
                g = d[i + 1] - p;
                r = (d[i] - g) * s + T(2) * c * b;
                p = s * r;
                d[i + 1] = g + p;
                g = c * r - b;
                // Column i+1 := c col(i+1) + s col(i), column i := c col(i) - s col(i+1).
                zorvs::blas::rot(nv, &el(v, ld, 0, i + 1), 1, &el(v, ld, 0, i), 1, c, s);
            }
            if (r == T(0) && i >= l) continue;
            d[l] -= p;
            e[l] = g;
            e[m] = 0;
        }
    }
    return true;
}

template <class T>
void l_e2csf(int n, const T *a, int lda, T *eval, T *evec, int ldevec, T *work) {
    if (n < 1) {
        zorvs::raise(5, 20407, n);
        return;
    }
    if (lda < n) {
        zorvs::raise(5, 20408, lda, n);
        return;
    }
    if (ldevec < n) {
        zorvs::raise(5, 20409, ldevec, n);
        return;
    }
    for (int j = 0; j < n; ++j) std::memcpy(&el(evec, ldevec, 0, j), &a[static_cast<std::size_t>(j) * lda], sizeof(T) * n);
    T *e = work;
    l_e3csf(n, evec, ldevec, eval, e);
    if (!l_e4csf(0, n - 1, eval, e, n, evec, ldevec, 30 * n)) {
        zorvs_ermes(4, 20410);
        return;
    }
    for (int j = 0; j < n; ++j) {
        T *column = &el(evec, ldevec, 0, j);
        const int k = zorvs::blas::iamax(n, column, 1);
        if (k < 1 || column[k - 1] == T(0)) continue;
        const T big = column[k - 1];
        for (int i = 0; i < n; ++i) column[i] /= big;
    }
}

template <class T>
void l_e5csf(int n, const T *a, int lda, T *eval, T *evec, int ldevec, T *work, int *iwork) {
    int arg = 0;
    zorvs_c1dim(1, n, "N", lda, "LDA", &arg);
    zorvs_c1dim(1, n, "*N", ldevec, "LDEVEC", &arg);
    if (failed()) return;
    if (n == 1) {
        eval[0] = a[0];
        evec[0] = 1;
        return;
    }
    // l_e6csf: a copy scaled by the largest magnitude, then reduced.
    // A NaN (or an infinity, through infinity/infinity) is kept in the scale,
    // so that it reaches the iterations and shows as a failure to converge.
    T scale = 0;
    for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j; ++i) {
            const T size = std::fabs(a[static_cast<std::size_t>(j) * lda + i]);
            if (!(size <= scale)) scale = size;
        }
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) el(evec, ldevec, i, j) = i == j ? T(1) : T(0);
    if (scale == T(0)) {
        for (int i = 0; i < n; ++i) eval[i] = 0;
        return;
    }
    for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j; ++i) el(evec, ldevec, i, j) = a[static_cast<std::size_t>(j) * lda + i] / scale;
    T *e = work;
    l_e3csf(n, evec, ldevec, eval, e);
    // Cut into blocks at off-diagonals negligible against the whole matrix;
    // a NaN cuts nothing.
    T total = 0;
    for (int i = 0; i < n; ++i) total += eval[i] * eval[i] + e[i] * e[i];
    const T threshold = zorvs::epsilon<T>() * std::sqrt(total);
    bool converged = true;
    int first = 0;
    for (int i = 1; i <= n; ++i) {
        if (i < n && !(std::fabs(e[i]) <= threshold)) continue;
        if (i < n) e[i] = 0;
        // Block first..i-1: e(first) is the element above the block, zero.
        e[first] = 0;
        if (!l_e4csf(first, i - 1, eval, e, n, evec, ldevec, 30 * (i - first))) converged = false;
        first = i;
    }
    if (!converged) zorvs_ermes(3, 20103);
    for (int i = 0; i < n; ++i) eval[i] *= scale;
    // Order by decreasing magnitude: sort -|eval| carrying the permutation.
    T *key = work;
    T *sorted = work + n;
    for (int i = 0; i < n; ++i) {
        key[i] = -std::fabs(eval[i]);
        iwork[i] = i + 1;
    }
    zorvs::sort::svrgp(n, key, sorted, iwork);
    for (int i = 0; i < n; ++i) key[i] = eval[iwork[i] - 1];
    std::memcpy(eval, key, sizeof(T) * n);
    // Columns by cycles of the permutation: column i takes column iwork(i).
    T *temp = work;
    for (int i = 0; i < n; ++i) {
        if (iwork[i] < 0 || iwork[i] == i + 1) continue;
        std::memcpy(temp, &el(evec, ldevec, 0, i), sizeof(T) * n);
        int k = i;
        for (;;) {
            const int source = iwork[k] - 1;
            iwork[k] = -iwork[k];
            if (source == i) {
                std::memcpy(&el(evec, ldevec, 0, k), temp, sizeof(T) * n);
                break;
            }
            std::memcpy(&el(evec, ldevec, 0, k), &el(evec, ldevec, 0, source), sizeof(T) * n);
            k = source;
        }
    }
    for (int i = 0; i < n; ++i) iwork[i] = iwork[i] < 0 ? -iwork[i] : iwork[i];
}

}  // namespace

extern "C" {

void zorvs_e2csf(const int *n, const float a[], const int *lda, float eval[], float evec[], const int *ldevec,
                 float work[]) {
    zorvs::framed("zorvs_e2csf", [&] { l_e2csf(*n, a, *lda, eval, evec, *ldevec, work); });
}
void zorvs_de2csf(const int *n, const double a[], const int *lda, double eval[], double evec[],
                  const int *ldevec, double work[]) {
    zorvs::framed("zorvs_de2csf", [&] { l_e2csf(*n, a, *lda, eval, evec, *ldevec, work); });
}
void zorvs_e5csf(const int *n, const float a[], const int *lda, float eval[], float evec[], const int *ldevec,
                 float work[], int iwork[]) {
    zorvs::framed("zorvs_e5csf", [&] { l_e5csf(*n, a, *lda, eval, evec, *ldevec, work, iwork); });
}
void zorvs_de5csf(const int *n, const double a[], const int *lda, double eval[], double evec[],
                  const int *ldevec, double work[], int iwork[]) {
    zorvs::framed("zorvs_de5csf", [&] { l_e5csf(*n, a, *lda, eval, evec, *ldevec, work, iwork); });
}

}  // extern "C"
