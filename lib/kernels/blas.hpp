// blas.hpp - the vector and matrix kernels of kernels.h as one overloaded
// name for both twins: zorvs::blas::dot(n, x, incx, y, incy) is zorvs_sdot
// for float data and zorvs_ddot for double, so that a template body names
// one routine.  The names are those of the C routines without the precision
// letter; the stride rules, checks and messages are the C routines' own
// (kernels.h), since each overload is that routine.
#ifndef ZORVS_KERNELS_BLAS_HPP
#define ZORVS_KERNELS_BLAS_HPP

#include "kernels/kernels.h"

namespace zorvs::blas {

// ---- Level 1 ----
inline void set(int n, float a, float x[], int incx) { zorvs_sset(n, a, x, incx); }
inline void set(int n, double a, double x[], int incx) { zorvs_dset(n, a, x, incx); }
inline void add(int n, float a, float x[], int incx) { zorvs_sadd(n, a, x, incx); }
inline void add(int n, double a, double x[], int incx) { zorvs_dadd(n, a, x, incx); }
inline void scal(int n, float a, float x[], int incx) { zorvs_sscal(n, a, x, incx); }
inline void scal(int n, double a, double x[], int incx) { zorvs_dscal(n, a, x, incx); }
inline void vcal(int n, float a, const float x[], int incx, float y[], int incy) {
    zorvs_svcal(n, a, x, incx, y, incy);
}
inline void vcal(int n, double a, const double x[], int incx, double y[], int incy) {
    zorvs_dvcal(n, a, x, incx, y, incy);
}
inline void copy(int n, const float x[], int incx, float y[], int incy) { zorvs_scopy(n, x, incx, y, incy); }
inline void copy(int n, const double x[], int incx, double y[], int incy) { zorvs_dcopy(n, x, incx, y, incy); }
inline float sum(int n, const float x[], int incx) { return zorvs_ssum(n, x, incx); }
inline double sum(int n, const double x[], int incx) { return zorvs_dsum(n, x, incx); }
inline int sum(int n, const int ix[], int incx) { return zorvs_isum(n, ix, incx); }
inline float asum(int n, const float x[], int incx) { return zorvs_sasum(n, x, incx); }
inline double asum(int n, const double x[], int incx) { return zorvs_dasum(n, x, incx); }
inline float dot(int n, const float x[], int incx, const float y[], int incy) {
    return zorvs_sdot(n, x, incx, y, incy);
}
inline double dot(int n, const double x[], int incx, const double y[], int incy) {
    return zorvs_ddot(n, x, incx, y, incy);
}
inline float a1ot(int n, const float x[], int incx, const float y[], int incy) {
    return zorvs_a1ot(n, x, incx, y, incy);
}
inline double a1ot(int n, const double x[], int incx, const double y[], int incy) {
    return zorvs_da1ot(n, x, incx, y, incy);
}
inline float xyz(int n, const float x[], int incx, const float y[], int incy, const float z[], int incz) {
    return zorvs_sxyz(n, x, incx, y, incy, z, incz);
}
inline double xyz(int n, const double x[], int incx, const double y[], int incy, const double z[], int incz) {
    return zorvs_dxyz(n, x, incx, y, incy, z, incz);
}
inline void hprod(int n, const float x[], int incx, const float y[], int incy, float z[], int incz) {
    zorvs_shprod(&n, x, &incx, y, &incy, z, &incz);
}
inline void hprod(int n, const double x[], int incx, const double y[], int incy, double z[], int incz) {
    zorvs_dshprod(&n, x, &incx, y, &incy, z, &incz);
}
inline float nrm2(int n, const float x[]) { return zorvs_snrm2(n, x); }
inline double nrm2(int n, const double x[]) { return zorvs_dnrm2(n, x); }
inline int iamax(int n, const float x[], int incx) { return zorvs_isamax(n, x, incx); }
inline int iamax(int n, const double x[], int incx) { return zorvs_idamax(n, x, incx); }
// Index from 1 of the first NaN, 0 if none.
inline int ianan(int n, const float x[], int incx) { return zorvs_isanan(n, x, incx); }
inline int ianan(int n, const double x[], int incx) { return zorvs_idanan(n, x, incx); }

// ---- Rotations ----
inline void rot(int n, float x[], int incx, float y[], int incy, float c, float s) {
    zorvs_srot(n, x, incx, y, incy, c, s);
}
inline void rot(int n, double x[], int incx, double y[], int incy, double c, double s) {
    zorvs_drot(n, x, incx, y, incy, c, s);
}
inline void rotg(float *a, float *b, float *c, float *s) { zorvs_srotg(a, b, c, s); }
inline void rotg(double *a, double *b, double *c, double *s) { zorvs_drotg(a, b, c, s); }
inline void rotm(int n, float x[], int incx, float y[], int incy, const float param[5]) {
    zorvs_srotm(n, x, incx, y, incy, param);
}
inline void rotm(int n, double x[], int incx, double y[], int incy, const double param[5]) {
    zorvs_drotm(n, x, incx, y, incy, param);
}
inline void rotmg(float *d1, float *d2, float *x1, float y1, float param[5]) { zorvs_srotmg(d1, d2, x1, y1, param); }
inline void rotmg(double *d1, double *d2, double *x1, double y1, double param[5]) {
    zorvs_drotmg(d1, d2, x1, y1, param);
}

// ---- Level 2 and 3: numbers by value here, by pointer in the C routines ----
inline void ger(int m, int n, float alpha, const float x[], int incx, const float y[], int incy, float a[],
                int lda) {
    zorvs_sger(m, n, alpha, x, incx, y, incy, a, lda);
}
inline void ger(int m, int n, double alpha, const double x[], int incx, const double y[], int incy, double a[],
                int lda) {
    zorvs_dger(m, n, alpha, x, incx, y, incy, a, lda);
}
inline void gemv(const char *trans, int m, int n, float alpha, const float a[], int lda, const float x[], int incx,
                 float beta, float y[], int incy) {
    zorvs_sgemv(trans, 1, &m, &n, &alpha, a, &lda, x, &incx, &beta, y, &incy);
}
inline void gemv(const char *trans, int m, int n, double alpha, const double a[], int lda, const double x[],
                 int incx, double beta, double y[], int incy) {
    zorvs_dgemv(trans, 1, &m, &n, &alpha, a, &lda, x, &incx, &beta, y, &incy);
}
inline void gemm(const char *transa, const char *transb, int m, int n, int k, float alpha, const float a[], int lda,
                 const float b[], int ldb, float beta, float c[], int ldc) {
    zorvs_sgemm(transa, 1, transb, 1, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc);
}
inline void gemm(const char *transa, const char *transb, int m, int n, int k, double alpha, const double a[],
                 int lda, const double b[], int ldb, double beta, double c[], int ldc) {
    zorvs_dsgemm(transa, 1, transb, 1, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc);
}
inline void trsv(const char *uplo, const char *trans, const char *diag, int n, const float a[], int lda, float x[],
                 int incx) {
    zorvs_strsv(uplo, trans, diag, n, a, lda, x, incx);
}
inline void trsv(const char *uplo, const char *trans, const char *diag, int n, const double a[], int lda,
                 double x[], int incx) {
    zorvs_dtrsv(uplo, trans, diag, n, a, lda, x, incx);
}

}  // namespace zorvs::blas

#endif  // ZORVS_KERNELS_BLAS_HPP
