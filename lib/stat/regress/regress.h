/*
 * regress.h - the workers of the regression family that more than one
 * source file calls: the regressors of a general linear model, the one-pass
 * least-squares fit, the coefficient covariances, the analysis of
 * variance table and the streaming weighted sums of squares.  Column-major,
 * indices from 1.  Names without a `d` are
 * single precision, with a `d` double precision.  Compiles as C99 and C++.
 */
#ifndef ZORVS_REGRESS_H
#define ZORVS_REGRESS_H

#ifdef __cplusplus
extern "C" {
#endif

/* Regressors of a general linear model.  x: nobs rows (leading dimension
 * ldx) of ncol columns; indcl: the nclvar class columns; nclval, clval: the
 * sorted distinct values of each class variable, one run after another; nef
 * effects of nvef[k] columns listed in indef.  idummy 1, 2 or 3 is the
 * dummy scheme, and its negative asks for the count alone (xd untouched).
 * Returns the regressor count in *nreg and the rows with a missing value in
 * *nrmiss; xd (nobs x *nreg, leading dimension ldxd) gets the regressors. */
void zorvs_grglm(int nobs, int ncol, const float x[], int ldx, int nclvar, const int indcl[], const int nclval[],
                 const float clval[], int nef, const int nvef[], const int indef[], int idummy, int *nreg,
                 float xd[], int ldxd, int *nrmiss);
void zorvs_dgrglm(int nobs, int ncol, const double x[], int ldx, int nclvar, const int indcl[],
                  const int nclval[], const double clval[], int nef, const int nvef[], const int indef[],
                  int idummy, int *nreg, double xd[], int ldxd, int *nrmiss);

/* Analysis of variance table of 15 reals from the regression degrees of
 * freedom, those for error, the error and total sums of squares, and the
 * mean of the dependent variable (NaN if unknown). */
void zorvs_g1aov(float dfr, float dfe, float sse, float sst, float ymean, float aov[]);
void zorvs_dg1aov(double dfr, double dfe, double sse, double sst, double ymean, double aov[]);

/* Covariances of the coefficients, s2 inverse(R'R), from the upper
 * triangular R (n x n, leading dimension ldr; a zero diagonal marks a
 * dropped column) and s2 = sse / dfe.  cov has leading dimension ldcov. */
void zorvs_rcovb(int n, const float r[], int ldr, float sse, float dfe, float cov[], int ldcov);
void zorvs_drcovb(int n, const double r[], int ldr, double sse, double dfe, double cov[], int ldcov);

/* One row added to running weighted means and corrected sums of squares:
 * with *sumwt += *w, f = *w / *sumwt and g = *w (1 - f), for each of the *n
 * variables d = x - xbar, xbar += f d, ss += g d^2.  A weight of 0.0 changes
 * nothing.  Strides may be negative (the vector is walked from its far end).
 * Raises (5, 11124) for *n below 1 and (5, 11125) for *sumwt below 0.0. */
void zorvs_s1msq(const int *n, const float x[], const int *incx, const float *w, float *sumwt, float xbar[],
                 const int *incxbar, float ss[], const int *incss);
void zorvs_ds1msq(const int *n, const double x[], const int *incx, const double *w, double *sumwt, double xbar[],
                  const int *incxbar, double ss[], const int *incss);

#ifdef __cplusplus
}
#endif

#endif /* ZORVS_REGRESS_H */
