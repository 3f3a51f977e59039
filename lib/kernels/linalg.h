/*
 * linalg.h - the library's internal dense linear algebra on symmetric
 * matrices: rank-revealing Cholesky, the generalized triangular solver, the
 * sweep operator, small matrix utilities, prime factorisation, the in-place
 * cycle transposition and the symmetric eigensystem.
 *
 * Matrices are column-major with a leading dimension; every routine except
 * the transposition takes its numbers by pointer.  Names without a `d` are
 * single precision, with a `d` double precision.  Compiles as C99 and C++.
 */
#ifndef ZORVS_LINALG_H
#define ZORVS_LINALG_H

#ifdef __cplusplus
extern "C" {
#endif

/* Rank-revealing Cholesky factor R (upper) with A = R'R. */
void zorvs_chfac(const int *n, const float a[], const int *lda, const float *tol, int *irank, float fac[],
                 const int *ldfac);
void zorvs_dchfac(const int *n, const double a[], const int *lda, const double *tol, int *irank, double fac[],
                  const int *ldfac);

/* Solve R x = b (ipath 1, 3) or R'x = b (2, 4) with a possibly singular R; 3 and 4 also give the
 * generalized inverse of R in rinv. */
void zorvs_girts(const int *n, const float r[], const int *ldr, const int *nb, const float b[], const int *ldb,
                 const int *ipath, int *irank, float x[], const int *ldx, float rinv[], const int *ldrinv);
void zorvs_dgirts(const int *n, const double r[], const int *ldr, const int *nb, const double b[],
                  const int *ldb, const int *ipath, int *irank, double x[], const int *ldx, double rinv[],
                  const int *ldrinv);

/* One sweep on row krow of the symmetric matrix a (upper triangle).  With S the swept rows (isw = -1) and T
 * the others, a holds inverse(A_SS), inverse(A_SS) A_ST and A_TT - A_TS inverse(A_SS) A_ST: sweeping every
 * row gives the inverse, and sweeping a row again restores it. */
void zorvs_gswep(const int *krow, const int *n, float a[], const int *lda, const int *irev, const float *tol,
                 const float d[], float isw[]);
void zorvs_dgswep(const int *krow, const int *n, double a[], const int *lda, const int *irev, const double *tol,
                  const double d[], double isw[]);

/* B := A'A. */
void zorvs_mxtxf(const int *nra, const int *nca, const float a[], const int *lda, const int *nb, float b[],
                 const int *ldb);
void zorvs_dmxtxf(const int *nra, const int *nca, const double a[], const int *lda, const int *nb, double b[],
                  const int *ldb);

/* Copy a square matrix. */
void zorvs_crgrg(const int *n, const float a[], const int *lda, float b[], const int *ldb);
void zorvs_dcrgrg(const int *n, const double a[], const int *lda, double b[], const int *ldb);

/* Fill the lower triangle from the upper. */
void zorvs_csfrg(const int *n, float a[], const int *lda);
void zorvs_dcsfrg(const int *n, double a[], const int *lda);

/* 1-norm: the largest column sum of absolute values. */
void zorvs_nr1rr(const int *nra, const int *nca, const float a[], const int *lda, float *anorm);
void zorvs_dnr1rr(const int *nra, const int *nca, const double a[], const int *lda, double *anorm);

/* Prime factorisation of n > 1: distinct primes, their exponents and prime powers
 * (at most 9 distinct primes fit an int). */
void zorvs_prime(const int *n, int *nfactors, int factors[], int exponents[], int powers[]);

/* Symmetric eigensystem: all values and vectors, unsorted (e2csf) or by decreasing magnitude (e5csf).
 * work holds at least n values (e2csf) or 2n values (e5csf); iwork n integers. */
void zorvs_e2csf(const int *n, const float a[], const int *lda, float eval[], float evec[], const int *ldevec,
                 float work[]);
void zorvs_de2csf(const int *n, const double a[], const int *lda, double eval[], double evec[],
                  const int *ldevec, double work[]);
void zorvs_e5csf(const int *n, const float a[], const int *lda, float eval[], float evec[], const int *ldevec,
                 float work[], int iwork[]);
void zorvs_de5csf(const int *n, const double a[], const int *lda, double eval[], double evec[],
                  const int *ldevec, double work[], int iwork[]);

/* The in-place cycle transposition of a row-major nra x nca block, without a work array.  int_max
 * stands for the largest integer in the test that chooses products modulo N by doubling and adding;
 * the library passes zorvs_i_machine(5), tests a smaller bound to reach that path on small shapes. */
void zorvs_f_m1ran_cycles(int nra, int nca, float a[], long long int_max);
void zorvs_d_m1ran_cycles(int nra, int nca, double a[], long long int_max);
void zorvs_i_m1ran_cycles(int nra, int nca, int a[], long long int_max);

#ifdef __cplusplus
}
#endif

#endif /* ZORVS_LINALG_H */
