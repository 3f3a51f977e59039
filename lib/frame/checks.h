/*
 * checks.h - the shared argument checks and the safe arithmetic on
 * statistics.
 *
 * A check tests one thing; on failure it stores the message's parameters and
 * raises it, and it returns nothing useful, so that a routine can run all its
 * checks in a row and then test the error state once.  Every check adds to
 * the caller's counter *arg_no, pass or fail.  Names are the names by which
 * the user knows the arguments; they are printed in the messages.
 *
 * Real checks come in single precision (zorvs_c1...) and double precision
 * (zorvs_dc1...).  The header compiles as C99 and as C++.
 */
#ifndef ZORVS_CHECKS_H
#define ZORVS_CHECKS_H

#ifdef __cplusplus
extern "C" {
#endif

/* value at least lo (if lo > hi), else value from lo to hi: (5, 603) or (5, 602). */
void zorvs_c1iarg(int value, const char *name, int lo, int hi, int *arg_no);
/* a at most b: (5, 601). */
void zorvs_c12ile(int a, const char *name_a, int b, const char *name_b, int *arg_no);
/* n at least lo, ld at least 1, n at most ld; a name starting with '*' waives the test of n. */
void zorvs_c1dim(int lo, int n, const char *name, int ld, const char *name_ld, int *arg_no);
/* n at least lo; if ld is at least 1, n at most ld. */
void zorvs_c1ind(int lo, int n, const char *name, int ld, const char *name_ld, int *arg_no);
/* x not below 0: (5, 11061). */
void zorvs_c1ge0(float x, const char *name, int *arg_no);
void zorvs_dc1ge0(double x, const char *name, int *arg_no);
/* A confidence percentage: 0 <= x < 100 and not in (0, 50): (5, 20403), (6, 20404). */
void zorvs_c1cip(const char *name, float x, int *arg_no_1, int *arg_no_2);
void zorvs_dc1cip(const char *name, double x, int *arg_no_1, int *arg_no_2);
/* Upper triangular R, column-major: a row with a zero diagonal is zero to its right: (5, 11060). */
void zorvs_c1r(int n, const float r[], int ldr, int *arg_no);
void zorvs_dc1r(int n, const double r[], int ldr, int *arg_no);
/* Effects of a general linear model: (5, 20235), (5, 20237), (5, 20238). */
void zorvs_c1ef(int ncol, int nclvar, const int indcl[], int nef, const int nvef[], const int indef[],
                int *arg_no);

/* a / b, with NaN, infinities and 0 where a plain division would trap or mislead. */
void zorvs_c1div(float a, float b, float *result);
void zorvs_dc1div(double a, double b, double *result);

/* Frequency and weight of one row of a column-major matrix.  status: 0 use the
 * row, 1 zero frequency, 2 missing, 3 negative frequency or weight. */
void zorvs_c1wfr(int ido, int group, const float x[], int ldx, int row, int sign, int ifrq, int iwt,
                 int spare, int *nmiss, float *freq, float *wt, int *status);
void zorvs_dc1wfr(int ido, int group, const double x[], int ldx, int row, int sign, int ifrq, int iwt,
                  int spare, int *nmiss, double *freq, double *wt, int *status);

#ifdef __cplusplus
}
#endif

#endif /* ZORVS_CHECKS_H */
