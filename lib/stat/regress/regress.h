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

/* Sequential sums of squares of the regressors after the intercept, from
 * the upper triangular R (np x np, leading dimension ldr) and the
 * coefficients b: for regressor j, df[j] = 1.0 if R(j,j) > 0.0, else 0.0,
 * and ss[j] = (row j of R times b)^2.  intcep is 1 with an intercept. */
void zorvs_rsqss(int np, int intcep, const float r[], int ldr, const float b[], float df[], float ss[]);
void zorvs_drsqss(int np, int intcep, const double r[], int ldr, const double b[], double df[], double ss[]);

/* Summary of a fit from R, b, the degrees of freedom and sum of squares for
 * error: the table aov (15), the inflation factors vif (np), the coefficient
 * covariances cov (np x np, leading dimension ldcov, both triangles) and
 * the standard errors se (np).  work holds 2 np reals. */
void zorvs_rstat(int np, int intcep, const float r[], int ldr, const float b[], float dfe, float sse,
                 float aov[], float vif[], float cov[], int ldcov, float se[], float work[]);
void zorvs_drstat(int np, int intcep, const double r[], int ldr, const double b[], double dfe, double sse,
                  double aov[], double vif[], double cov[], int ldcov, double se[], double work[]);

/* t tests of the coefficients: row j of tt (row-major, leading dimension
 * ldtt) is b[j], se[j], the t statistic and its two-sided p-value with dfe
 * degrees of freedom; t and p are NaN if the mean square mse is NaN.
 * Raises (5, 20423) for dfe below 0.0 and (5, 20424) for a negative se. */
void zorvs_rcoef(int np, const float b[], const float se[], float dfe, float mse, float tt[], int ldtt);
void zorvs_drcoef(int np, const double b[], const double se[], double dfe, double mse, double tt[], int ldtt);

/* The case vector of one row (12 reals, see regression_prediction.cpp) from
 * R, b, dfe and sse of a fit.  row holds the np - intcep regressors, the
 * weight and the response; tmult is the t multiplier of the pointwise
 * limits (NaN for none).  z (2 np reals) is work; *rank receives the rank. */
void zorvs_r2ase(int np, int intcep, const float r[], int ldr, const float b[], float dfe, float sse,
                 const float row[], float tmult, float cases[], float z[], int *rank);
void zorvs_dr2ase(int np, int intcep, const double r[], int ldr, const double b[], double dfe, double sse,
                  const double row[], double tmult, double cases[], double z[], int *rank);

/* Leverage and case statistics (entries 3 to 7 of the case vector) of the
 * model row xrow (np reals, 1.0 first with an intercept) of weight w and
 * residual e.  z (np reals) receives the solution of R'z = xrow; *rank the
 * count of columns that were not dropped.  Raises (3, 20050) for a row
 * outside the estimation space, (3, 20051) and (3, 20052) as it clamps. */
void zorvs_r2tin(int np, const float r[], int ldr, const float xrow[], float w, float e, float dfe, float sse,
                 float z[], int *rank, float cases[]);
void zorvs_dr2tin(int np, const double r[], int ldr, const double xrow[], double w, double e, double dfe,
                  double sse, double z[], int *rank, double cases[]);

#ifdef __cplusplus
}
#endif

#endif /* ZORVS_REGRESS_H */
