// blas.hpp - the vector and matrix kernels of kernels.h as one overloaded
// name for both twins: zorvs::blas::dot(n, x, incx, y, incy) is zorvs_sdot
// for float data and zorvs_ddot for double, so that a template body names
// one routine.  The names are those of the C routines without the precision
// letter; the stride rules, checks and messages are the C routines' own
// (kernels.h), since each overload is that routine.
#ifndef ZORVS_KERNELS_BLAS_HPP
#define ZORVS_KERNELS_BLAS_HPP

#include "frame/twin.hpp"
#include "kernels/kernels.h"

namespace zorvs::blas {

// Level 1: the Hadamard product takes its numbers by value here, by
// pointer in the C routines; the others their C parameters.
inline void hprod(int n, const float x[], int incx, const float y[], int incy, float z[], int incz) {
    zorvs_shprod(&n, x, &incx, y, &incy, z, &incz);
}
inline void hprod(int n, const double x[], int incx, const double y[], int incy, double z[], int incz) {
    zorvs_dshprod(&n, x, &incx, y, &incy, z, &incz);
}
inline constexpr Twins<zorvs_sset, zorvs_dset> set{};
inline constexpr Twins<zorvs_sadd, zorvs_dadd> add{};
inline constexpr Twins<zorvs_sscal, zorvs_dscal> scal{};
inline constexpr Twins<zorvs_svcal, zorvs_dvcal> vcal{};
inline constexpr Twins<zorvs_scopy, zorvs_dcopy> copy{};
inline constexpr Twins<zorvs_ssum, zorvs_dsum> sum{};
inline constexpr Twins<zorvs_sasum, zorvs_dasum> asum{};
inline constexpr Twins<zorvs_sdot, zorvs_ddot> dot{};
inline constexpr Twins<zorvs_a1ot, zorvs_da1ot> a1ot{};
inline constexpr Twins<zorvs_sxyz, zorvs_dxyz> xyz{};
inline constexpr Twins<zorvs_snrm2, zorvs_dnrm2> nrm2{};
inline constexpr Twins<zorvs_isamax, zorvs_idamax> iamax{};
inline constexpr Twins<zorvs_isanan, zorvs_idanan> ianan{};  // index from 1 of the first NaN, 0 if none

// Rotations, the rank-one update and the triangular solve.
inline constexpr Twins<zorvs_srot, zorvs_drot> rot{};
inline constexpr Twins<zorvs_srotg, zorvs_drotg> rotg{};
inline constexpr Twins<zorvs_srotm, zorvs_drotm> rotm{};
inline constexpr Twins<zorvs_srotmg, zorvs_drotmg> rotmg{};
inline constexpr Twins<zorvs_sger, zorvs_dger> ger{};
inline constexpr Twins<zorvs_strsv, zorvs_dtrsv> trsv{};

// The matrix-vector and matrix-matrix products: numbers by value here, by
// pointer in the C routines.
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

}  // namespace zorvs::blas

#endif  // ZORVS_KERNELS_BLAS_HPP
