// linalg.hpp - the dense linear algebra of linalg.h and the in-place
// transposition as one overloaded name for both twins, numbers by value:
// zorvs::linalg::chfac(n, a, lda, tol, &rank, fac, ldfac) is zorvs_chfac for
// float and zorvs_dchfac for double.  Each overload is the C routine, with
// its frame and messages.
#ifndef ZORVS_KERNELS_LINALG_HPP
#define ZORVS_KERNELS_LINALG_HPP

#include "kernels/linalg.h"
#include "zorvstat.h"

namespace zorvs::linalg {

inline void chfac(int n, const float a[], int lda, float tol, int *irank, float fac[], int ldfac) {
    zorvs_chfac(&n, a, &lda, &tol, irank, fac, &ldfac);
}
inline void chfac(int n, const double a[], int lda, double tol, int *irank, double fac[], int ldfac) {
    zorvs_dchfac(&n, a, &lda, &tol, irank, fac, &ldfac);
}
inline void girts(int n, const float r[], int ldr, int nb, const float b[], int ldb, int ipath, int *irank,
                  float x[], int ldx, float rinv[], int ldrinv) {
    zorvs_girts(&n, r, &ldr, &nb, b, &ldb, &ipath, irank, x, &ldx, rinv, &ldrinv);
}
inline void girts(int n, const double r[], int ldr, int nb, const double b[], int ldb, int ipath, int *irank,
                  double x[], int ldx, double rinv[], int ldrinv) {
    zorvs_dgirts(&n, r, &ldr, &nb, b, &ldb, &ipath, irank, x, &ldx, rinv, &ldrinv);
}
inline void gswep(int krow, int n, float a[], int lda, int irev, float tol, const float d[], float isw[]) {
    zorvs_gswep(&krow, &n, a, &lda, &irev, &tol, d, isw);
}
inline void gswep(int krow, int n, double a[], int lda, int irev, double tol, const double d[], double isw[]) {
    zorvs_dgswep(&krow, &n, a, &lda, &irev, &tol, d, isw);
}
inline void mxtxf(int nra, int nca, const float a[], int lda, int nb, float b[], int ldb) {
    zorvs_mxtxf(&nra, &nca, a, &lda, &nb, b, &ldb);
}
inline void mxtxf(int nra, int nca, const double a[], int lda, int nb, double b[], int ldb) {
    zorvs_dmxtxf(&nra, &nca, a, &lda, &nb, b, &ldb);
}
inline void crgrg(int n, const float a[], int lda, float b[], int ldb) { zorvs_crgrg(&n, a, &lda, b, &ldb); }
inline void crgrg(int n, const double a[], int lda, double b[], int ldb) { zorvs_dcrgrg(&n, a, &lda, b, &ldb); }
inline void csfrg(int n, float a[], int lda) { zorvs_csfrg(&n, a, &lda); }
inline void csfrg(int n, double a[], int lda) { zorvs_dcsfrg(&n, a, &lda); }
inline float nr1rr(int nra, int nca, const float a[], int lda) {
    float anorm;
    zorvs_nr1rr(&nra, &nca, a, &lda, &anorm);
    return anorm;
}
inline double nr1rr(int nra, int nca, const double a[], int lda) {
    double anorm;
    zorvs_dnr1rr(&nra, &nca, a, &lda, &anorm);
    return anorm;
}
inline void e2csf(int n, const float a[], int lda, float eval[], float evec[], int ldevec, float work[]) {
    zorvs_e2csf(&n, a, &lda, eval, evec, &ldevec, work);
}
inline void e2csf(int n, const double a[], int lda, double eval[], double evec[], int ldevec, double work[]) {
    zorvs_de2csf(&n, a, &lda, eval, evec, &ldevec, work);
}
inline void e5csf(int n, const float a[], int lda, float eval[], float evec[], int ldevec, float work[],
                  int iwork[]) {
    zorvs_e5csf(&n, a, &lda, eval, evec, &ldevec, work, iwork);
}
inline void e5csf(int n, const double a[], int lda, double eval[], double evec[], int ldevec, double work[],
                  int iwork[]) {
    zorvs_de5csf(&n, a, &lda, eval, evec, &ldevec, work, iwork);
}

// Transpose the row-major nra x nca block a into at (in place when at is a).
inline void m1ran(int nra, int nca, const float a[], float at[]) { zorvs_f_m1ran(nra, nca, a, at); }
inline void m1ran(int nra, int nca, const double a[], double at[]) { zorvs_d_m1ran(nra, nca, a, at); }
inline void m1ran(int nra, int nca, const int a[], int at[]) { zorvs_i_m1ran(nra, nca, a, at); }

}  // namespace zorvs::linalg

#endif  // ZORVS_KERNELS_LINALG_HPP
