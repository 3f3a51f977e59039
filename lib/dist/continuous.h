/*
 * continuous.h - short worker names of the continuous distributions and the
 * safe F and t ratios of the argument-check family.  C-compatible.
 */
#ifndef ZORVS_DIST_CONTINUOUS_H
#define ZORVS_DIST_CONTINUOUS_H

#ifdef __cplusplus
extern "C" {
#endif

/* Inverse of the incomplete beta ratio: the x with I_x(pin, qin) = p. */
float zorvs_betin(float p, float pin, float qin);
double zorvs_dbetin(double p, double pin, double qin);

/* F ratio a/b and its upper tail probability with df1, df2 degrees of freedom. */
void zorvs_c1f(float a, float b, float df1, float df2, float *f, float *p);
void zorvs_dc1f(double a, double b, double df1, double df2, double *f, double *p);

/* t ratio a/b and its two-sided tail probability with df degrees of freedom. */
void zorvs_c1t(float a, float b, float df, float *t, float *p);
void zorvs_dc1t(double a, double b, double df, double *t, double *p);

#ifdef __cplusplus
}
#endif

#endif /* ZORVS_DIST_CONTINUOUS_H */
