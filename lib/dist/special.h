/* special.h - C-linkage internal routines of the special functions:
 * Chebyshev series evaluation and length, log(1+x), the Stirling
 * correction of log gamma.  Fullerton's FNLIB methods. */
#ifndef ZORVS_DIST_SPECIAL_H
#define ZORVS_DIST_SPECIAL_H

#ifdef __cplusplus
extern "C" {
#endif

/* Sum of the Chebyshev series cs[0..n-1] at x (Clenshaw; cs[0] halved). */
float zorvs_csevl(float x, const float cs[], int n);
double zorvs_dcsevl(double x, const double cs[], int n);
/* Number of terms of cs[0..nos-1] needed for an error below eta. */
int zorvs_inits(const float cs[], int nos, float eta);
int zorvs_initds(const double cs[], int nos, float eta);
/* log(1+x), accurate in relative terms for small x. */
float zorvs_alnrel(float x);
double zorvs_dalnrel(double x);
/* log gamma(x) - ((x-0.5) log x - x + log sqrt(2 pi)) for x >= 10. */
float zorvs_r9lgmc(float x);
double zorvs_d9lgmc(double x);

#ifdef __cplusplus
}
#endif

#endif
