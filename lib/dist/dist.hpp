// dist.hpp - the special functions and distributions as one overloaded name
// for both twins: zorvs::dist::normal_cdf(x) is zorvs_f_normal_cdf for a
// float x and zorvs_d_normal_cdf for a double, so that a template body names
// one routine.  Each overload is the public (or short) routine itself, with
// its frame and messages, as if the body had called it by its C name.  The
// names are the C names without the precision mark.  The routines whose
// arguments are all integers (zorvs_binom, the hypergeometric distribution)
// cannot be told apart by their arguments and are called by their C names.
#ifndef ZORVS_DIST_DIST_HPP
#define ZORVS_DIST_DIST_HPP

#include "dist/continuous.h"
#include "dist/discrete.h"
#include "dist/special.h"
#include "zorvstat.h"

namespace zorvs::dist {

// ---- Gamma and beta families, error function ----
inline float gamma(float x) { return zorvs_f_gamma(x); }
inline double gamma(double x) { return zorvs_d_gamma(x); }
inline float log_gamma(float x) { return zorvs_f_log_gamma(x); }
inline double log_gamma(double x) { return zorvs_d_log_gamma(x); }
inline float beta(float a, float b) { return zorvs_f_beta(a, b); }
inline double beta(double a, double b) { return zorvs_d_beta(a, b); }
inline float log_beta(float a, float b) { return zorvs_f_log_beta(a, b); }
inline double log_beta(double a, double b) { return zorvs_d_log_beta(a, b); }
inline float erf(float x) { return zorvs_f_erf(x); }
inline double erf(double x) { return zorvs_d_erf(x); }
inline float erfc(float x) { return zorvs_f_erfc(x); }
inline double erfc(double x) { return zorvs_d_erfc(x); }
inline float gamma_incomplete(float a, float x) { return zorvs_f_gamma_incomplete(a, x); }
inline double gamma_incomplete(double a, double x) { return zorvs_d_gamma_incomplete(a, x); }
inline float beta_incomplete(float x, float a, float b) { return zorvs_f_beta_incomplete(x, a, b); }
inline double beta_incomplete(double x, double a, double b) { return zorvs_d_beta_incomplete(x, a, b); }

// ---- Series and corrections of the special functions (special.h) ----
inline float csevl(float x, const float cs[], int n) { return zorvs_csevl(x, cs, n); }
inline double csevl(double x, const double cs[], int n) { return zorvs_dcsevl(x, cs, n); }
inline int inits(const float cs[], int nos, float eta) { return zorvs_inits(cs, nos, eta); }
inline int inits(const double cs[], int nos, float eta) { return zorvs_initds(cs, nos, eta); }
inline float alnrel(float x) { return zorvs_alnrel(x); }
inline double alnrel(double x) { return zorvs_dalnrel(x); }
inline float r9lgmc(float x) { return zorvs_r9lgmc(x); }
inline double r9lgmc(double x) { return zorvs_d9lgmc(x); }

// ---- Continuous distributions ----
inline float normal_cdf(float x) { return zorvs_f_normal_cdf(x); }
inline double normal_cdf(double x) { return zorvs_d_normal_cdf(x); }
inline float normal_inverse_cdf(float p) { return zorvs_f_normal_inverse_cdf(p); }
inline double normal_inverse_cdf(double p) { return zorvs_d_normal_inverse_cdf(p); }
inline float bivariate_normal_cdf(float x, float y, float rho) { return zorvs_f_bivariate_normal_cdf(x, y, rho); }
inline double bivariate_normal_cdf(double x, double y, double rho) {
    return zorvs_d_bivariate_normal_cdf(x, y, rho);
}
inline float gamma_cdf(float x, float a) { return zorvs_f_gamma_cdf(x, a); }
inline double gamma_cdf(double x, double a) { return zorvs_d_gamma_cdf(x, a); }
inline float chi_squared_cdf(float chi_squared, float df) { return zorvs_f_chi_squared_cdf(chi_squared, df); }
inline double chi_squared_cdf(double chi_squared, double df) { return zorvs_d_chi_squared_cdf(chi_squared, df); }
inline float chi_squared_inverse_cdf(float p, float df) { return zorvs_f_chi_squared_inverse_cdf(p, df); }
inline double chi_squared_inverse_cdf(double p, double df) { return zorvs_d_chi_squared_inverse_cdf(p, df); }
inline float beta_cdf(float x, float pin, float qin) { return zorvs_f_beta_cdf(x, pin, qin); }
inline double beta_cdf(double x, double pin, double qin) { return zorvs_d_beta_cdf(x, pin, qin); }
inline float beta_inverse_cdf(float p, float pin, float qin) { return zorvs_f_beta_inverse_cdf(p, pin, qin); }
inline double beta_inverse_cdf(double p, double pin, double qin) { return zorvs_d_beta_inverse_cdf(p, pin, qin); }
inline float t_cdf(float t, float df) { return zorvs_f_t_cdf(t, df); }
inline double t_cdf(double t, double df) { return zorvs_d_t_cdf(t, df); }
inline float t_inverse_cdf(float p, float df) { return zorvs_f_t_inverse_cdf(p, df); }
inline double t_inverse_cdf(double p, double df) { return zorvs_d_t_inverse_cdf(p, df); }
inline float F_cdf(float f, float df1, float df2) { return zorvs_f_F_cdf(f, df1, df2); }
inline double F_cdf(double f, double df1, double df2) { return zorvs_d_F_cdf(f, df1, df2); }
inline float F_inverse_cdf(float p, float df1, float df2) { return zorvs_f_F_inverse_cdf(p, df1, df2); }
inline double F_inverse_cdf(double p, double df1, double df2) { return zorvs_d_F_inverse_cdf(p, df1, df2); }
// Short workers of continuous.h.
inline float betin(float p, float pin, float qin) { return zorvs_betin(p, pin, qin); }
inline double betin(double p, double pin, double qin) { return zorvs_dbetin(p, pin, qin); }
inline void c1f(float a, float b, float df1, float df2, float *f, float *p) { zorvs_c1f(a, b, df1, df2, f, p); }
inline void c1f(double a, double b, double df1, double df2, double *f, double *p) {
    zorvs_dc1f(a, b, df1, df2, f, p);
}
inline void c1t(float a, float b, float df, float *t, float *p) { zorvs_c1t(a, b, df, t, p); }
inline void c1t(double a, double b, double df, double *t, double *p) { zorvs_dc1t(a, b, df, t, p); }

// ---- Discrete distributions and the studentized range ----
inline float poisson_cdf(int k, float theta) { return zorvs_f_poisson_cdf(k, theta); }
inline double poisson_cdf(int k, double theta) { return zorvs_d_poisson_cdf(k, theta); }
inline float binomial_cdf(int k, int n, float p) { return zorvs_f_binomial_cdf(k, n, p); }
inline double binomial_cdf(int k, int n, double p) { return zorvs_d_binomial_cdf(k, n, p); }
inline float srdf(float q, float n_means, float df) { return zorvs_srdf(q, n_means, df); }
inline double srdf(double q, double n_means, double df) { return zorvs_dsrdf(q, n_means, df); }
inline float srin(float p, float df, float n_means) { return zorvs_srin(p, df, n_means); }
inline double srin(double p, double df, double n_means) { return zorvs_dsrin(p, df, n_means); }

}  // namespace zorvs::dist

#endif  // ZORVS_DIST_DIST_HPP
