// blas.cpp - vector and matrix kernels on column-major storage: the level-1
// operations and reductions, plane rotations (Givens and modified Givens),
// the rank-one update, matrix-vector and matrix-matrix products and the
// triangular solve.
//
// The meanings follow the Basic Linear Algebra Subprograms: Lawson, Hanson,
// Kincaid and Krogh (1979), ACM TOMS 5, 308-323 (level 1); Dongarra, Du Croz,
// Hammarling and Hanson (1988), ACM TOMS 14, 1-17 (level 2); Dongarra, Du Croz,
// Duff and Hammarling (1990), ACM TOMS 16, 1-17 (level 3).  The library's own
// additions are the set, add, scaled copy, plain sum, sum of absolute
// products, triple product, Hadamard product and NaN search.
//
// Every routine adds in ascending element order in one accumulator of the
// data's own type, and the unit-stride loops do the same operations in the
// same order as the general ones, so the result never depends on the stride
// path.  The stride rules (walk, far end, count, bound) are described in
// kernels.h.  A count-rule routine does nothing for a stride of 0 or below:
// its element count would divide by zero or step backwards out of the array.

#include <cmath>
#include <cstring>

#include "frame/machine.h"
#include "frame/services.h"
#include "frame/twin.hpp"
#include "kernels/kernels.h"

namespace {

// 0 and 1 of the twin, read from the table of small numbers (machine.h).
inline const float *small_numbers(float) { return zorvs_F_NUMBER; }
inline const double *small_numbers(double) { return zorvs_D_NUMBER; }
template <class T>
T zero() {
    return small_numbers(T{})[0];
}
template <class T>
T one() {
    return small_numbers(T{})[1];
}

// Offset of element 1 under the far-end rule.
inline long far_start(int n, int inc) { return inc < 0 ? static_cast<long>(1 - n) * inc : 0; }

// Number of elements under the count rule (nothing for a stride of 0 or below).
inline int count_of(int n, int inc) {
    if (inc <= 0 || n <= 0) return 0;
    long c = (static_cast<long>(n) * inc - 1 + inc) / inc;
    return c > 0 ? static_cast<int>(c) : 0;
}

template <class T>
void l_set(int n, T a, T *x, int incx) {
    int c = count_of(n, incx);
    if (incx == 1) {
        for (int i = 0; i < c; ++i) x[i] = a;
    } else {
        for (long i = 0, k = 0; i < c; ++i, k += incx) x[k] = a;
    }
}

template <class T>
void l_add(int n, T a, T *x, int incx) {
    if (incx == 1) {
        for (int i = 0; i < n; ++i) x[i] = x[i] + a;
    } else {
        for (long i = 0, k = 0; i < n; ++i, k += incx) x[k] = x[k] + a;
    }
}

template <class T>
void l_scal(int n, T a, T *x, int incx) {
    int c = count_of(n, incx);
    if (incx == 1) {
        for (int i = 0; i < c; ++i) x[i] = a * x[i];
    } else {
        for (long i = 0, k = 0; i < c; ++i, k += incx) x[k] = a * x[k];
    }
}

template <class T>
void l_vcal(int n, T a, const T *x, int incx, T *y, int incy) {
    if (incx == 1 && incy == 1) {
        for (int i = 0; i < n; ++i) y[i] = a * x[i];
    } else {
        for (long i = 0, kx = 0, ky = 0; i < n; ++i, kx += incx, ky += incy) y[ky] = a * x[kx];
    }
}

template <class T>
void l_copy(int n, const T *x, int incx, T *y, int incy) {
    if (n <= 0) return;
    if (incx == 1 && incy == 1) {
        std::memmove(y, x, static_cast<std::size_t>(n) * sizeof(T));
        return;
    }
    long kx = far_start(n, incx), ky = far_start(n, incy);
    for (int i = 0; i < n; ++i, kx += incx, ky += incy) y[ky] = x[kx];
}

template <class T>
T l_sum(int n, const T *x, int incx) {
    T s = zero<T>();
    if (n <= 0 || incx <= 0) return s;
    if (incx == 1) {
        for (int i = 0; i < n; ++i) s = s + x[i];
    } else {
        long bound = static_cast<long>(n) * incx;
        for (long k = 0; k < bound; k += incx) s = s + x[k];
    }
    return s;
}

template <class T>
T l_asum(int n, const T *x, int incx) {
    T s = zero<T>();
    int c = count_of(n, incx);
    if (incx == 1) {
        for (int i = 0; i < c; ++i) s = s + std::fabs(x[i]);
    } else {
        for (long i = 0, k = 0; i < c; ++i, k += incx) s = s + std::fabs(x[k]);
    }
    return s;
}

// Sum over i of f(x(i), y(i)) under the far-end rule.
template <class T, class F>
T l_pair_sum(int n, const T *x, int incx, const T *y, int incy, F f) {
    T s = zero<T>();
    if (n <= 0) return s;
    if (incx == 1 && incy == 1) {
        for (int i = 0; i < n; ++i) s = s + f(x[i], y[i]);
    } else {
        long kx = far_start(n, incx), ky = far_start(n, incy);
        for (int i = 0; i < n; ++i, kx += incx, ky += incy) s = s + f(x[kx], y[ky]);
    }
    return s;
}

template <class T>
T l_dot(int n, const T *x, int incx, const T *y, int incy) {
    return l_pair_sum(n, x, incx, y, incy, [](T a, T b) { return a * b; });
}

template <class T>
T l_a1ot(int n, const T *x, int incx, const T *y, int incy) {
    return l_pair_sum(n, x, incx, y, incy, [](T a, T b) { return std::fabs(a * b); });
}

template <class T>
T l_xyz(int n, const T *x, int incx, const T *y, int incy, const T *z, int incz) {
    T s = zero<T>();
    if (n <= 0) return s;
    long kx = far_start(n, incx), ky = far_start(n, incy), kz = far_start(n, incz);
    for (int i = 0; i < n; ++i, kx += incx, ky += incy, kz += incz) s = s + (x[kx] * y[ky]) * z[kz];
    return s;
}

template <class T>
void l_hprod(int n, const T *x, int incx, const T *y, int incy, T *z, int incz) {
    if (n <= 0) return;
    if (incx == 1 && incy == 1 && incz == 1) {
        for (int i = 0; i < n; ++i) z[i] = x[i] * y[i];
        return;
    }
    long kx = far_start(n, incx), ky = far_start(n, incy), kz = far_start(n, incz);
    for (int i = 0; i < n; ++i, kx += incx, ky += incy, kz += incz) z[kz] = x[kx] * y[ky];
}

// Euclidean norm with scaling chosen by the sum of absolute values, after the
// thresholds of Blue (1978), ACM TOMS 4, 15-23: below cutlo the elements are
// scaled up by `small`, above cuthi scaled down by `big`, in between summed
// as they are.  The square roots of the constants are taken in double.
template <class T>
T l_nrm2(int n, const T *x) {
    const T s = zorvs::smallest<T>(), b = zorvs::largest<T>(), e = zorvs::epsilon<T>();
    const T cutlo = static_cast<T>(std::sqrt(static_cast<double>(s / e)));
    const T cuthi = static_cast<T>(std::sqrt(static_cast<double>(b * e)));
    const T small = one<T>() / (cutlo * e);
    const T big = (static_cast<T>(std::sqrt(static_cast<double>(s))) / e) /
                  static_cast<T>(std::sqrt(static_cast<double>(b)));
    T t = zero<T>();
    for (int i = 0; i < n; ++i) t = t + std::fabs(x[i]);
    T sum = zero<T>();
    if (t < cutlo) {
        for (int i = 0; i < n; ++i) {
            T v = small * x[i];
            sum = sum + v * v;
        }
        return static_cast<T>(std::sqrt(sum)) / small;
    }
    if (t > cuthi) {
        for (int i = 0; i < n; ++i) {
            T v = big * x[i];
            sum = sum + v * v;
        }
        return static_cast<T>(std::sqrt(sum)) / big;
    }
    for (int i = 0; i < n; ++i) sum = sum + x[i] * x[i];
    return static_cast<T>(std::sqrt(sum));
}

template <class T>
int l_iamax(int n, const T *x, int incx) {
    if (n < 1) return 0;
    if (n == 1) return 1;
    int best = 1;
    if (incx <= 0) return best;
    T value = std::fabs(x[0]);
    long bound = static_cast<long>(n) * incx;
    int index = 1;
    for (long k = 0; k < bound; k += incx, ++index) {
        T v = std::fabs(x[k]);
        if (v > value) {
            value = v;
            best = index;
        }
    }
    return best;
}

template <class T>
int l_ianan(int n, const T *x, int incx) {
    for (long i = 0, k = 0; i < n; ++i, k += incx)
        if (std::isnan(static_cast<double>(x[k]))) return static_cast<int>(i) + 1;
    return 0;
}

template <class T>
void l_rot(int n, T *x, int incx, T *y, int incy, T c, T s) {
    if (n <= 0) return;
    long kx = far_start(n, incx), ky = far_start(n, incy);
    for (int i = 0; i < n; ++i, kx += incx, ky += incy) {
        T xi = x[kx], yi = y[ky];
        x[kx] = c * xi + s * yi;
        y[ky] = c * yi - s * xi;
    }
}

// Givens rotation with the scaling by the larger component, so that the
// radius is formed without overflow.
template <class T>
void l_rotg(T *a, T *b, T *c, T *s) {
    const T quarter = static_cast<T>(0.25);
    if (std::fabs(*a) > std::fabs(*b)) {
        T u = *a + *a;
        T v = *b / u;
        T r = static_cast<T>(std::sqrt(quarter + v * v)) * u;
        *c = *a / r;
        *s = v * (*c + *c);
        *b = *s;
        *a = r;
    } else if (*b == zero<T>()) {
        *c = one<T>();
        *s = zero<T>();
        *a = zero<T>();
        *b = zero<T>();
    } else {
        T u = *b + *b;
        T v = *a / u;
        *a = static_cast<T>(std::sqrt(quarter + v * v)) * u;
        *s = *b / *a;
        *c = v * (*s + *s);
        *b = *c != zero<T>() ? one<T>() / *c : one<T>();
    }
}

template <class T>
void l_rotm(int n, T *x, int incx, T *y, int incy, const T *param) {
    const T flag = param[0];
    if (n < 1 || flag == static_cast<T>(-2)) return;
    const T h11 = param[1], h21 = param[2], h12 = param[3], h22 = param[4];
    long kx = far_start(n, incx), ky = far_start(n, incy);
    for (int i = 0; i < n; ++i, kx += incx, ky += incy) {
        T w = x[kx], z = y[ky];
        if (flag == zero<T>()) {
            x[kx] = w + z * h12;
            y[ky] = w * h21 + z;
        } else if (flag > zero<T>()) {
            x[kx] = w * h11 + z;
            y[ky] = -w + h22 * z;
        } else {
            x[kx] = w * h11 + z * h12;
            y[ky] = w * h21 + z * h22;
        }
    }
}

// Modified Givens rotation, Hammarling (1974) and Gentleman (1973), in the
// form of Lawson et al. (1979), with the rescaling constants 4096, 16780000
// and 5.96e-8 as decimal numbers in both precisions.
template <class T>
void l_rotmg(T *d1, T *d2, T *x1, T y1, T *param) {
    const T z = zero<T>(), o = one<T>();
    const T gam = static_cast<T>(4096.0);
    const T gamsq = static_cast<T>(16780000.0);
    const T rgamsq = static_cast<T>(5.96e-8);
    T flag, h11 = z, h12 = z, h21 = z, h22 = z;
    auto zero_all = [&] {
        flag = -o;
        h11 = h12 = h21 = h22 = z;
        *d1 = *d2 = *x1 = z;
    };
    // Rescaling works on the full form of H (flag -1): the unit entries that
    // the short forms leave implicit are written out first.
    auto full_form = [&] {
        if (flag == z) {
            h11 = o;
            h22 = o;
        } else {
            h21 = -o;
            h12 = o;
        }
        flag = -o;
    };
    if (*d1 < z) {
        zero_all();
    } else {
        T p2 = *d2 * y1;
        if (p2 == z) {
            param[0] = static_cast<T>(-2);
            return;
        }
        T p1 = *d1 * *x1;
        T q2 = p2 * y1;
        T q1 = p1 * *x1;
        if (std::fabs(q1) > std::fabs(q2)) {
            h21 = -y1 / *x1;
            h12 = p2 / p1;
            T u = o - h12 * h21;
            if (u > z) {
                flag = z;
                *d1 = *d1 / u;
                *d2 = *d2 / u;
                *x1 = *x1 * u;
            } else {
                zero_all();
            }
        } else if (q2 < z) {
            zero_all();
        } else {
            flag = o;
            h11 = p1 / p2;
            h22 = *x1 / y1;
            T u = o + h11 * h22;
            T temp = *d2 / u;
            *d2 = *d1 / u;
            *d1 = temp;
            *x1 = y1 * u;
        }
        if (*d1 != z) {
            while (*d1 <= rgamsq || *d1 >= gamsq) {
                full_form();
                if (*d1 <= rgamsq) {
                    *d1 = *d1 * (gam * gam);
                    *x1 = *x1 / gam;
                    h11 = h11 / gam;
                    h12 = h12 / gam;
                } else {
                    *d1 = *d1 / (gam * gam);
                    *x1 = *x1 * gam;
                    h11 = h11 * gam;
                    h12 = h12 * gam;
                }
            }
        }
        if (*d2 != z) {
            while (std::fabs(*d2) <= rgamsq || std::fabs(*d2) >= gamsq) {
                full_form();
                if (std::fabs(*d2) <= rgamsq) {
                    *d2 = *d2 * (gam * gam);
                    h21 = h21 / gam;
                    h22 = h22 / gam;
                } else {
                    *d2 = *d2 / (gam * gam);
                    h21 = h21 * gam;
                    h22 = h22 * gam;
                }
            }
        }
    }
    if (flag < z) {
        param[1] = h11;
        param[2] = h21;
        param[3] = h12;
        param[4] = h22;
    } else if (flag == z) {
        param[2] = h21;
        param[3] = h12;
    } else {
        param[1] = h11;
        param[4] = h22;
    }
    param[0] = flag;
}

inline int lower_first(const char *p) {
    unsigned char c = p ? static_cast<unsigned char>(*p) : 0;
    return (c >= 'A' && c <= 'Z') ? c - 'A' + 'a' : c;
}

// Raise one argument error of a checking kernel under its own name.
void l_kernel_error(const char *name, int code, int i1, int i2, bool two, const char *l1 = nullptr) {
    zorvs_e1psh(name);
    if (l1) {
        zorvs_e1stl(1, l1);
    } else {
        zorvs_e1sti(1, i1);
        if (two) zorvs_e1sti(2, i2);
    }
    zorvs_ermes(5, code);
    zorvs_e1pop(name);
}

const char *const lv_ger_name = "zorvs_sger";
const char *const lv_gemv_name = "zorvs_sgemv ";
const char *const lv_gemm_name = "zorvs_sgemm ";

template <class T>
void l_ger(int m, int n, T alpha, const T *x, int incx, const T *y, int incy, T *a, int lda) {
    if (m < 0) return l_kernel_error(lv_ger_name, 2033, m, 0, false);
    if (n < 0) return l_kernel_error(lv_ger_name, 2014, n, 0, false);
    if (lda < m || lda == 0) return l_kernel_error(lv_ger_name, 1020, lda, m, true);
    if (incx == 0) return l_kernel_error(lv_ger_name, 2015, incx, 0, false);
    if (incy == 0) return l_kernel_error(lv_ger_name, 2016, incy, 0, false);
    if (m == 0 || n == 0 || alpha == zero<T>()) return;
    long jy = far_start(n, incy);
    long kx = far_start(m, incx);
    for (int j = 0; j < n; ++j, jy += incy) {
        T *col = a + static_cast<long>(j) * lda;
        T temp = alpha * y[jy];
        if (incx == 1) {
            for (int i = 0; i < m; ++i) col[i] = col[i] + x[i] * temp;
        } else {
            long ix = kx;
            for (int i = 0; i < m; ++i, ix += incx) col[i] = col[i] + x[ix] * temp;
        }
    }
}

template <class T>
void l_gemv(const char *trans, int m, int n, T alpha, const T *a, int lda, const T *x, int incx, T beta,
            T *y, int incy) {
    if (m < 0) return l_kernel_error(lv_gemv_name, 2033, m, 0, false);
    if (n < 0) return l_kernel_error(lv_gemv_name, 2014, n, 0, false);
    if (lda < m || lda == 0) return l_kernel_error(lv_gemv_name, 1020, lda, m, true);
    if (incx == 0) return l_kernel_error(lv_gemv_name, 2015, incx, 0, false);
    if (incy == 0) return l_kernel_error(lv_gemv_name, 2016, incy, 0, false);
    const bool notrans = zorvs_l1ame(trans, 1, "N");
    if (!notrans && !zorvs_l1ame(trans, 1, "T") && !zorvs_l1ame(trans, 1, "C"))
        return l_kernel_error(lv_gemv_name, 20139, 0, 0, false, trans);
    if (m == 0 || n == 0 || (alpha == zero<T>() && beta == one<T>())) return;
    const int lenx = notrans ? n : m;
    const int leny = notrans ? m : n;
    const long kx = far_start(lenx, incx), ky = far_start(leny, incy);
    if (beta != one<T>()) {
        long iy = ky;
        for (int i = 0; i < leny; ++i, iy += incy) y[iy] = beta == zero<T>() ? zero<T>() : beta * y[iy];
    }
    if (alpha == zero<T>()) return;
    if (notrans) {
        long jx = kx;
        for (int j = 0; j < n; ++j, jx += incx) {
            const T *col = a + static_cast<long>(j) * lda;
            T temp = alpha * x[jx];
            long iy = ky;
            for (int i = 0; i < m; ++i, iy += incy) y[iy] = y[iy] + temp * col[i];
        }
    } else {
        long jy = ky;
        for (int j = 0; j < n; ++j, jy += incy)
            y[jy] = y[jy] + alpha * l_dot(m, a + static_cast<long>(j) * lda, 1, x, incx);
    }
}

// The transposition flag of a gemm operand and its leading dimension: "N"
// takes the operand as it is, with ld at least `rows`, "T" or "C" its
// transpose, with ld at least `rows_transposed`.  The message of a bad flag
// or dimension is raised in a frame of the routine's name; false then.
inline bool l_gemm_operand(const char *name, const char *trans, int ld, int rows, int code, int rows_transposed,
                           int code_transposed, bool *plain) {
    *plain = zorvs_l1ame(trans, 1, "N");
    const bool transposed = !*plain && (zorvs_l1ame(trans, 1, "T") || zorvs_l1ame(trans, 1, "C"));
    if (*plain && (ld < rows || ld == 0)) l_kernel_error(name, code, ld, rows, true);
    else if (!*plain && !transposed) l_kernel_error(name, 11286, 0, 0, false, trans);
    else if (transposed && (ld < rows_transposed || ld == 0))
        l_kernel_error(name, code_transposed, ld, rows_transposed, true);
    else return true;
    return false;
}

template <class T>
void l_gemm(const char *transa, const char *transb, int m, int n, int k, T alpha, const T *a, int lda,
            const T *b, int ldb, T beta, T *c, int ldc) {
    const char *name = lv_gemm_name;
    if (m < 0) return l_kernel_error(name, 2033, m, 0, false);
    if (n < 0) return l_kernel_error(name, 2014, n, 0, false);
    if (k < 0) return l_kernel_error(name, 11282, k, 0, false);
    if (ldc < m || ldc == 0) return l_kernel_error(name, 11283, ldc, m, true);
    bool nota, notb;
    if (!l_gemm_operand(name, transa, lda, m, 11284, k, 11285, &nota)) return;
    if (!l_gemm_operand(name, transb, ldb, k, 11287, n, 11281, &notb)) return;
    if (m == 0 || n == 0 || ((alpha == zero<T>() || k == 0) && beta == one<T>())) return;
    if (beta != one<T>()) {
        for (int j = 0; j < n; ++j) {
            T *col = c + static_cast<long>(j) * ldc;
            if (beta == zero<T>())
                for (int i = 0; i < m; ++i) col[i] = zero<T>();
            else if (beta == -one<T>())
                for (int i = 0; i < m; ++i) col[i] = -col[i];
            else
                for (int i = 0; i < m; ++i) col[i] = beta * col[i];
        }
    }
    if (k == 0 || alpha == zero<T>()) return;
    // op(A)(i,l) and op(B)(l,j), from 0.
    auto opa = [&](int i, int l) { return nota ? a[static_cast<long>(l) * lda + i] : a[static_cast<long>(i) * lda + l]; };
    auto opb = [&](int l, int j) { return notb ? b[static_cast<long>(j) * ldb + l] : b[static_cast<long>(l) * ldb + j]; };
    for (int l = 0; l < k; ++l) {
        for (int j = 0; j < n; ++j) {
            T temp = alpha * opb(l, j);
            T *col = c + static_cast<long>(j) * ldc;
            if (nota) {
                const T *acol = a + static_cast<long>(l) * lda;
                for (int i = 0; i < m; ++i) col[i] = col[i] + temp * acol[i];
            } else {
                for (int i = 0; i < m; ++i) col[i] = col[i] + temp * opa(i, l);
            }
        }
    }
}

// Pointer to pass to a far-end kernel so that it visits elements
// first .. first+len-1 (from 1) of the logical vector x of stride inc whose
// element 1 lies at offset k1.
template <class T>
T *sub_vector(T *x, long k1, int inc, int first, int len) {
    long pos = k1 + static_cast<long>(first - 1) * inc;
    if (inc < 0) pos -= static_cast<long>(1 - len) * inc;
    return x + pos;
}

// Triangular solve by inner products: every step subtracts the dot product of
// a row or column piece of A with the part of x already solved.
template <class T>
void l_trsv(const char *uplo, const char *trans, const char *diag, int n, const T *a, int lda, T *x,
            int incx) {
    if (n == 0) return;
    const bool upper = uplo && (*uplo == 'U' || *uplo == 'u');
    const bool tr = trans && (*trans == 'T' || *trans == 't' || *trans == 'C' || *trans == 'c');
    const bool nonunit = diag && (*diag == 'N' || *diag == 'n');
    const long k1 = far_start(n, incx);
    auto A = [&](int i, int j) -> const T * { return a + static_cast<long>(j - 1) * lda + (i - 1); };
    auto X = [&](int i) -> T & { return x[k1 + static_cast<long>(i - 1) * incx]; };
    const bool backward = upper != tr;  // upper & not transposed, lower & transposed
    if (backward) {
        for (int i = n; i >= 1; --i) {
            int len = n - i;
            T s = zero<T>();
            if (len > 0) {
                T *xs = sub_vector(x, k1, incx, i + 1, len);
                s = upper ? l_dot(len, A(i, i + 1), lda, xs, incx)   // row i right of the diagonal
                          : l_dot(len, A(i + 1, i), 1, xs, incx);    // column i below the diagonal
            }
            T v = X(i) - s;
            if (nonunit) v = v / *A(i, i);
            X(i) = v;
        }
    } else {
        for (int i = 1; i <= n; ++i) {
            int len = i - 1;
            T s = zero<T>();
            if (len > 0) {
                T *xs = sub_vector(x, k1, incx, 1, len);
                s = upper ? l_dot(len, A(1, i), 1, xs, incx)     // column i above the diagonal
                          : l_dot(len, A(i, 1), lda, xs, incx);  // row i left of the diagonal
            }
            T v = X(i) - s;
            if (nonunit) v = v / *A(i, i);
            X(i) = v;
        }
    }
}

}  // namespace

extern "C" {

void zorvs_sset(int n, float a, float x[], int incx) { l_set(n, a, x, incx); }
void zorvs_dset(int n, double a, double x[], int incx) { l_set(n, a, x, incx); }
void zorvs_sadd(int n, float a, float x[], int incx) { l_add(n, a, x, incx); }
void zorvs_dadd(int n, double a, double x[], int incx) { l_add(n, a, x, incx); }
void zorvs_sscal(int n, float a, float x[], int incx) { l_scal(n, a, x, incx); }
void zorvs_dscal(int n, double a, double x[], int incx) { l_scal(n, a, x, incx); }
void zorvs_svcal(int n, float a, const float x[], int incx, float y[], int incy) { l_vcal(n, a, x, incx, y, incy); }
void zorvs_dvcal(int n, double a, const double x[], int incx, double y[], int incy) { l_vcal(n, a, x, incx, y, incy); }
void zorvs_scopy(int n, const float x[], int incx, float y[], int incy) { l_copy(n, x, incx, y, incy); }
void zorvs_dcopy(int n, const double x[], int incx, double y[], int incy) { l_copy(n, x, incx, y, incy); }
float zorvs_ssum(int n, const float x[], int incx) { return l_sum(n, x, incx); }
double zorvs_dsum(int n, const double x[], int incx) { return l_sum(n, x, incx); }
int zorvs_isum(int n, const int ix[], int incx) {
    int s = 0;
    int c = count_of(n, incx);
    for (long i = 0, k = 0; i < c; ++i, k += incx) s += ix[k];
    return s;
}
float zorvs_sasum(int n, const float x[], int incx) { return l_asum(n, x, incx); }
double zorvs_dasum(int n, const double x[], int incx) { return l_asum(n, x, incx); }
float zorvs_sdot(int n, const float x[], int incx, const float y[], int incy) { return l_dot(n, x, incx, y, incy); }
double zorvs_ddot(int n, const double x[], int incx, const double y[], int incy) { return l_dot(n, x, incx, y, incy); }
float zorvs_a1ot(int n, const float x[], int incx, const float y[], int incy) { return l_a1ot(n, x, incx, y, incy); }
double zorvs_da1ot(int n, const double x[], int incx, const double y[], int incy) { return l_a1ot(n, x, incx, y, incy); }
float zorvs_sxyz(int n, const float x[], int incx, const float y[], int incy, const float z[], int incz) {
    return l_xyz(n, x, incx, y, incy, z, incz);
}
double zorvs_dxyz(int n, const double x[], int incx, const double y[], int incy, const double z[], int incz) {
    return l_xyz(n, x, incx, y, incy, z, incz);
}
void zorvs_shprod(const int *n, const float x[], const int *incx, const float y[], const int *incy, float z[],
                  const int *incz) {
    l_hprod(*n, x, *incx, y, *incy, z, *incz);
}
void zorvs_dshprod(const int *n, const double x[], const int *incx, const double y[], const int *incy, double z[],
                   const int *incz) {
    l_hprod(*n, x, *incx, y, *incy, z, *incz);
}
float zorvs_snrm2(int n, const float x[]) { return l_nrm2(n, x); }
double zorvs_dnrm2(int n, const double x[]) { return l_nrm2(n, x); }
int zorvs_isamax(int n, const float x[], int incx) { return l_iamax(n, x, incx); }
int zorvs_idamax(int n, const double x[], int incx) { return l_iamax(n, x, incx); }
int zorvs_isanan(int n, const float x[], int incx) { return l_ianan(n, x, incx); }
int zorvs_idanan(int n, const double x[], int incx) { return l_ianan(n, x, incx); }

void zorvs_srot(int n, float x[], int incx, float y[], int incy, float c, float s) { l_rot(n, x, incx, y, incy, c, s); }
void zorvs_drot(int n, double x[], int incx, double y[], int incy, double c, double s) {
    l_rot(n, x, incx, y, incy, c, s);
}
void zorvs_srotg(float *a, float *b, float *c, float *s) { l_rotg(a, b, c, s); }
void zorvs_drotg(double *a, double *b, double *c, double *s) { l_rotg(a, b, c, s); }
void zorvs_srotm(int n, float x[], int incx, float y[], int incy, const float param[5]) {
    l_rotm(n, x, incx, y, incy, param);
}
void zorvs_drotm(int n, double x[], int incx, double y[], int incy, const double param[5]) {
    l_rotm(n, x, incx, y, incy, param);
}
void zorvs_srotmg(float *d1, float *d2, float *x1, float y1, float param[5]) { l_rotmg(d1, d2, x1, y1, param); }
void zorvs_drotmg(double *d1, double *d2, double *x1, double y1, double param[5]) { l_rotmg(d1, d2, x1, y1, param); }

int zorvs_l1ame(const char *a, int len, const char *b) {
    (void)len;
    return lower_first(a) == lower_first(b);
}

void zorvs_sger(int m, int n, float alpha, const float x[], int incx, const float y[], int incy, float a[], int lda) {
    l_ger(m, n, alpha, x, incx, y, incy, a, lda);
}
void zorvs_dger(int m, int n, double alpha, const double x[], int incx, const double y[], int incy, double a[],
                int lda) {
    l_ger(m, n, alpha, x, incx, y, incy, a, lda);
}
void zorvs_sgemv(const char *trans, int trans_len, const int *m, const int *n, const float *alpha, const float a[],
                 const int *lda, const float x[], const int *incx, const float *beta, float y[], const int *incy) {
    (void)trans_len;
    l_gemv(trans, *m, *n, *alpha, a, *lda, x, *incx, *beta, y, *incy);
}
void zorvs_dgemv(const char *trans, int trans_len, const int *m, const int *n, const double *alpha, const double a[],
                 const int *lda, const double x[], const int *incx, const double *beta, double y[],
                 const int *incy) {
    (void)trans_len;
    l_gemv(trans, *m, *n, *alpha, a, *lda, x, *incx, *beta, y, *incy);
}
void zorvs_sgemm(const char *transa, int transa_len, const char *transb, int transb_len, const int *m, const int *n,
                 const int *k, const float *alpha, const float a[], const int *lda, const float b[], const int *ldb,
                 const float *beta, float c[], const int *ldc) {
    (void)transa_len;
    (void)transb_len;
    l_gemm(transa, transb, *m, *n, *k, *alpha, a, *lda, b, *ldb, *beta, c, *ldc);
}
void zorvs_dsgemm(const char *transa, int transa_len, const char *transb, int transb_len, const int *m, const int *n,
                  const int *k, const double *alpha, const double a[], const int *lda, const double b[],
                  const int *ldb, const double *beta, double c[], const int *ldc) {
    (void)transa_len;
    (void)transb_len;
    l_gemm(transa, transb, *m, *n, *k, *alpha, a, *lda, b, *ldb, *beta, c, *ldc);
}
void zorvs_strsv(const char *uplo, const char *trans, const char *diag, int n, const float a[], int lda, float x[],
                 int incx) {
    l_trsv(uplo, trans, diag, n, a, lda, x, incx);
}
void zorvs_dtrsv(const char *uplo, const char *trans, const char *diag, int n, const double a[], int lda, double x[],
                 int incx) {
    l_trsv(uplo, trans, diag, n, a, lda, x, incx);
}

}  // extern "C"
