/*
 * kernels.h - the vector and matrix kernels and the sorting kernels that the
 * statistical routines share.  C-compatible.
 *
 * Conventions of this layer:
 *  - Vectors are a pointer to the first element and a stride in elements;
 *    "element i" counts from 1.  Matrices are column-major with a leading
 *    dimension: element (i, j), both from 1, is a[(j-1)*lda + (i-1)].
 *  - Single-precision routines compute and accumulate in float, double ones
 *    in double; nothing accumulates in a wider type than its data.
 *  - Reductions return 0 for n below 1 and add in ascending element order in
 *    one accumulator.
 *  - Stride rules differ between routines and are part of their meaning:
 *      walk     exactly n elements from the pointer, stepping by the stride,
 *               whatever its sign;
 *      far end  the usual BLAS rule: a negative stride starts at element
 *               (1-n)*inc+1, so the same logical vector is visited backwards;
 *      count    max(0, (n*inc - 1 + inc) / inc) elements from the pointer
 *               (n for every positive stride; callers pass positive strides);
 *      bound    the index runs 1, 1+inc, ... while it is at most n*inc, so a
 *               stride of 0 or below visits nothing.
 *  - Only zorvs_sger, zorvs_sgemv and zorvs_sgemm (and twins) check their
 *    arguments, raising type 5 messages; all other kernels trust them.
 *  - Sorts are ascending, not stable, and do not allocate.  Index arrays
 *    (iperm) count from 1, are filled by the caller and are moved with the
 *    keys.  When the input and output pointers differ the input is copied
 *    first; when they are equal the sort is in place.
 */
#ifndef ZORVS_KERNELS_H
#define ZORVS_KERNELS_H

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Level 1 ----------------------------------------------------------- */

/* x(i) := a                                          (count) */
void zorvs_sset(int n, float a, float x[], int incx);
void zorvs_dset(int n, double a, double x[], int incx);
/* x(i) := x(i) + a                                   (walk) */
void zorvs_sadd(int n, float a, float x[], int incx);
void zorvs_dadd(int n, double a, double x[], int incx);
/* x(i) := a * x(i)                                   (count) */
void zorvs_sscal(int n, float a, float x[], int incx);
void zorvs_dscal(int n, double a, double x[], int incx);
/* y(i) := a * x(i)                                   (walk) */
void zorvs_svcal(int n, float a, const float x[], int incx, float y[], int incy);
void zorvs_dvcal(int n, double a, const double x[], int incx, double y[], int incy);
/* y(i) := x(i)                                       (far end) */
void zorvs_scopy(int n, const float x[], int incx, float y[], int incy);
void zorvs_dcopy(int n, const double x[], int incx, double y[], int incy);
/* sum of x(i)                                        (bound) */
float zorvs_ssum(int n, const float x[], int incx);
double zorvs_dsum(int n, const double x[], int incx);
/* integer sum of ix(i)                               (count) */
int zorvs_isum(int n, const int ix[], int incx);
/* sum of |x(i)|                                      (count) */
float zorvs_sasum(int n, const float x[], int incx);
double zorvs_dasum(int n, const double x[], int incx);
/* sum of x(i)*y(i)                                   (far end) */
float zorvs_sdot(int n, const float x[], int incx, const float y[], int incy);
double zorvs_ddot(int n, const double x[], int incx, const double y[], int incy);
/* sum of |x(i)*y(i)|                                 (far end) */
float zorvs_a1ot(int n, const float x[], int incx, const float y[], int incy);
double zorvs_da1ot(int n, const double x[], int incx, const double y[], int incy);
/* sum of (x(i)*y(i))*z(i)                            (far end) */
float zorvs_sxyz(int n, const float x[], int incx, const float y[], int incy, const float z[], int incz);
double zorvs_dxyz(int n, const double x[], int incx, const double y[], int incy, const double z[],
                  int incz);
/* z(i) := x(i)*y(i), every number by pointer         (far end) */
void zorvs_shprod(const int *n, const float x[], const int *incx, const float y[], const int *incy,
                  float z[], const int *incz);
void zorvs_dshprod(const int *n, const double x[], const int *incx, const double y[], const int *incy,
                   double z[], const int *incz);
/* Euclidean norm of a contiguous vector, scaled in three ranges chosen by
 * the sum of absolute values, so that it neither overflows nor underflows. */
float zorvs_snrm2(int n, const float x[]);
double zorvs_dnrm2(int n, const double x[]);
/* index from 1 of the first element of greatest |x(i)|; 0 for n < 1 (bound) */
int zorvs_isamax(int n, const float x[], int incx);
int zorvs_idamax(int n, const double x[], int incx);
/* index from 1 of the first NaN, 0 if none            (walk) */
int zorvs_isanan(int n, const float x[], int incx);
int zorvs_idanan(int n, const double x[], int incx);

/* ---- Rotations --------------------------------------------------------- */

/* x' := c x + s y, y' := c y - s x                   (far end) */
void zorvs_srot(int n, float x[], int incx, float y[], int incy, float c, float s);
void zorvs_drot(int n, double x[], int incx, double y[], int incy, double c, double s);
/* Givens rotation: on return a holds r, b holds z, and c, s the rotation. */
void zorvs_srotg(float *a, float *b, float *c, float *s);
void zorvs_drotg(double *a, double *b, double *c, double *s);
/* Apply the modified rotation param = (flag, h11, h21, h12, h22).  (far end) */
void zorvs_srotm(int n, float x[], int incx, float y[], int incy, const float param[5]);
void zorvs_drotm(int n, double x[], int incx, double y[], int incy, const double param[5]);
/* Construct the modified rotation that zeroes the second component of
 * (sqrt(d1) x1, sqrt(d2) y1); d1, d2 and x1 are updated. */
void zorvs_srotmg(float *d1, float *d2, float *x1, float y1, float param[5]);
void zorvs_drotmg(double *d1, double *d2, double *x1, double y1, double param[5]);

/* ---- Level 2 and 3 ----------------------------------------------------- */

/* Compare the first characters of a and b, case-insensitively; 1 if equal.
 * The length is accepted for the older calling style and not used. */
int zorvs_l1ame(const char *a, int len, const char *b);

/* A := A + alpha x y'.  Raises type 5 errors for bad m, n, lda, incx, incy. */
void zorvs_sger(int m, int n, float alpha, const float x[], int incx, const float y[], int incy,
                float a[], int lda);
void zorvs_dger(int m, int n, double alpha, const double x[], int incx, const double y[], int incy,
                double a[], int lda);
/* y := alpha op(A) x + beta y, op(A) = A for "N", A' for "T" or "C"; every
 * number by pointer. */
void zorvs_sgemv(const char *trans, int trans_len, const int *m, const int *n, const float *alpha,
                 const float a[], const int *lda, const float x[], const int *incx, const float *beta,
                 float y[], const int *incy);
void zorvs_dgemv(const char *trans, int trans_len, const int *m, const int *n, const double *alpha,
                 const double a[], const int *lda, const double x[], const int *incx,
                 const double *beta, double y[], const int *incy);
/* C := alpha op(A) op(B) + beta C, as k rank-one updates (l outermost);
 * every number by pointer.  The double twin is named zorvs_dsgemm. */
void zorvs_sgemm(const char *transa, int transa_len, const char *transb, int transb_len, const int *m,
                 const int *n, const int *k, const float *alpha, const float a[], const int *lda,
                 const float b[], const int *ldb, const float *beta, float c[], const int *ldc);
void zorvs_dsgemm(const char *transa, int transa_len, const char *transb, int transb_len, const int *m,
                  const int *n, const int *k, const double *alpha, const double a[], const int *lda,
                  const double b[], const int *ldb, const double *beta, double c[], const int *ldc);
/* x := op(A)^-1 x for triangular A: uplo "U"/"u" upper, else lower; trans
 * "T"/"t"/"C"/"c" transposed, else not; diag "N"/"n" non-unit, else unit.
 * No checks; n of 0 returns at once.                 (far end) */
void zorvs_strsv(const char *uplo, const char *trans, const char *diag, int n, const float a[], int lda,
                 float x[], int incx);
void zorvs_dtrsv(const char *uplo, const char *trans, const char *diag, int n, const double a[],
                 int lda, double x[], int incx);

/* ---- Sorting (Singleton's quicksort, CACM algorithm 347) ---------------- */

/* Sort ra into rb.  n <= 0: (5, 615). */
void zorvs_svrgn(int n, const float ra[], float rb[]);
void zorvs_dsvrgn(int n, const double ra[], double rb[]);
/* Sort ra into rb and move iperm with the keys.  n <= 0: (5, 616). */
void zorvs_svrgp(int n, const float ra[], float rb[], int iperm[]);
void zorvs_dsvrgp(int n, const double ra[], double rb[], int iperm[]);
/* Sort ra into rb by absolute value; signs stay with the values.
 * *n <= 0: (5, 614). */
void zorvs_svrbn(const int *n, const float ra[], float rb[]);
void zorvs_dsvrbn(const int *n, const double ra[], double rb[]);
/* Sort integers ia into ib and move iperm with them.  *n < 1: (5, 20426).
 * zorvs_dsvigp is the same routine under the double family's name. */
void zorvs_svigp(const int *n, const int ia[], int ib[], int iperm[]);
void zorvs_dsvigp(const int *n, const int ia[], int ib[], int iperm[]);

/* Permute x in place by cycles into xout (copied first when it differs):
 * ipath 1 gathers, xout'(i) = x(iperm(i)); any other ipath scatters,
 * xout'(iperm(i)) = x(i).  An entry outside 1..n: (5, 20422); a repeated
 * entry: (5, 20425), and nothing is permuted. */
void zorvs_permu(const int *n, const float x[], int iperm[], const int *ipath, float xout[]);
void zorvs_dpermu(const int *n, const double x[], int iperm[], const int *ipath, double xout[]);

#ifdef __cplusplus
}

/* The kernels' own helpers, reachable from C++ only: sort by absolute value
 * with the signs carried in iperm, sort integers without a permutation, and
 * permute integers; and the test that iperm holds each of 1..n once, which
 * raises (5, 20422) for an entry out of range and (5, 20425) for a repeat
 * and leaves iperm as it came. */
namespace zorvs {
bool l_check_permutation(int n, int iperm[]);
void l_svrbp(const int *n, const float ra[], float rb[], int iperm[]);
void l_svrbp(const int *n, const double ra[], double rb[], int iperm[]);
void l_svign(int n, const int ia[], int ib[]);
void l_permu(const int *n, const int x[], int iperm[], const int *ipath, int xout[]);
}  // namespace zorvs
#endif

#endif /* ZORVS_KERNELS_H */
