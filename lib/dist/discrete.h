/*
 * discrete.h - short worker names of the discrete distributions and of the
 * studentized range.  C-compatible.
 */
#ifndef ZORVS_DIST_DISCRETE_H
#define ZORVS_DIST_DISCRETE_H

#ifdef __cplusplus
extern "C" {
#endif

/* Binomial coefficient n! / (m! (n - m)!); (5, 600) unless 0 <= m <= n,
 * (5, 20402) when it exceeds the largest number of the type. */
float zorvs_binom(int n, int m);
double zorvs_dbinom(int n, int m);

/* Studentized range distribution function P(Q <= q) for the range of
 * n_means independent normal means divided by an independent estimate of
 * their standard deviation with df degrees of freedom. */
float zorvs_srdf(float q, float n_means, float df);
double zorvs_dsrdf(double q, double n_means, double df);

/* Its inverse: the q with P(Q <= q) = p, for 0 < p < 1. */
float zorvs_srin(float p, float df, float n_means);
double zorvs_dsrin(double p, double df, double n_means);

#ifdef __cplusplus
}
#endif

#endif /* ZORVS_DIST_DISCRETE_H */
