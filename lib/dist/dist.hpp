// dist.hpp - the special functions and distributions as one overloaded name
// for both twins: zorvs::dist::normal_cdf(x) is zorvs_f_normal_cdf for a
// float x and zorvs_d_normal_cdf for a double, so that a template body names
// one routine.  Each name calls the public (or short) routine itself, with
// its frame and messages, as if the body had called it by its C name.  The
// names are the C names without the precision mark.  The routines whose
// arguments are all integers (zorvs_binom, the hypergeometric distribution)
// cannot be told apart by their arguments and are called by their C names.
#ifndef ZORVS_DIST_DIST_HPP
#define ZORVS_DIST_DIST_HPP

#include <cmath>

#include "dist/continuous.h"
#include "dist/discrete.h"
#include "dist/special.h"
#include "frame/twin.hpp"
#include "zorvstat.h"

namespace zorvs::dist {

// Gamma and beta families, error function, incomplete gamma and beta.
inline constexpr Twins<zorvs_f_gamma, zorvs_d_gamma> gamma{};
inline constexpr Twins<zorvs_f_log_gamma, zorvs_d_log_gamma> log_gamma{};
inline constexpr Twins<zorvs_f_beta, zorvs_d_beta> beta{};
inline constexpr Twins<zorvs_f_log_beta, zorvs_d_log_beta> log_beta{};
inline constexpr Twins<zorvs_f_erf, zorvs_d_erf> erf{};
inline constexpr Twins<zorvs_f_erfc, zorvs_d_erfc> erfc{};
inline constexpr Twins<zorvs_f_gamma_incomplete, zorvs_d_gamma_incomplete> gamma_incomplete{};
inline constexpr Twins<zorvs_f_beta_incomplete, zorvs_d_beta_incomplete> beta_incomplete{};

// Series and corrections of the special functions (special.h).
inline constexpr Twins<zorvs_csevl, zorvs_dcsevl> csevl{};
inline constexpr Twins<zorvs_inits, zorvs_initds> inits{};
inline constexpr Twins<zorvs_alnrel, zorvs_dalnrel> alnrel{};
inline constexpr Twins<zorvs_r9lgmc, zorvs_d9lgmc> r9lgmc{};

// Continuous distributions.
inline constexpr Twins<zorvs_f_normal_cdf, zorvs_d_normal_cdf> normal_cdf{};
inline constexpr Twins<zorvs_f_normal_inverse_cdf, zorvs_d_normal_inverse_cdf> normal_inverse_cdf{};
inline constexpr Twins<zorvs_f_bivariate_normal_cdf, zorvs_d_bivariate_normal_cdf> bivariate_normal_cdf{};
inline constexpr Twins<zorvs_f_gamma_cdf, zorvs_d_gamma_cdf> gamma_cdf{};
inline constexpr Twins<zorvs_f_chi_squared_cdf, zorvs_d_chi_squared_cdf> chi_squared_cdf{};
inline constexpr Twins<zorvs_f_chi_squared_inverse_cdf, zorvs_d_chi_squared_inverse_cdf> chi_squared_inverse_cdf{};
inline constexpr Twins<zorvs_f_beta_cdf, zorvs_d_beta_cdf> beta_cdf{};
inline constexpr Twins<zorvs_f_beta_inverse_cdf, zorvs_d_beta_inverse_cdf> beta_inverse_cdf{};
inline constexpr Twins<zorvs_f_t_cdf, zorvs_d_t_cdf> t_cdf{};
inline constexpr Twins<zorvs_f_t_inverse_cdf, zorvs_d_t_inverse_cdf> t_inverse_cdf{};
inline constexpr Twins<zorvs_f_F_cdf, zorvs_d_F_cdf> F_cdf{};
inline constexpr Twins<zorvs_f_F_inverse_cdf, zorvs_d_F_inverse_cdf> F_inverse_cdf{};

// The short workers of continuous.h: the beta inverse, the safe F and t ratios.
inline constexpr Twins<zorvs_betin, zorvs_dbetin> betin{};
inline constexpr Twins<zorvs_c1f, zorvs_dc1f> c1f{};
inline constexpr Twins<zorvs_c1t, zorvs_dc1t> c1t{};

// Discrete distributions and the studentized range.
inline constexpr Twins<zorvs_f_poisson_cdf, zorvs_d_poisson_cdf> poisson_cdf{};
inline constexpr Twins<zorvs_f_binomial_cdf, zorvs_d_binomial_cdf> binomial_cdf{};
inline constexpr Twins<zorvs_srdf, zorvs_dsrdf> srdf{};
inline constexpr Twins<zorvs_srin, zorvs_dsrin> srin{};

// The normal quantile to working accuracy, for callers that need more
// than the rational approximation of normal_inverse_cdf (about 1e-7 in
// both twins): lower = p and upper = 1 - p, each computed by the caller
// where it is exact, so that the smaller tail is the one inverted.  Two
// Newton steps on normal_cdf, whose lower tail has full relative accuracy,
// take the approximation to working precision (the error squares at each).
template <class T>
T normal_quantile(T lower, T upper) {
    const bool upper_tail = upper < lower;
    const T p = upper_tail ? upper : lower;
    T x = normal_inverse_cdf(p);
    for (int step = 0; step < 2; ++step) {
        const T density = std::exp(-x * x / 2) / std::sqrt(T(2) * T(3.14159265358979323846));
        if (!(density > 0) || !std::isfinite(x)) break;
        x -= (normal_cdf(x) - p) / density;
    }
    return upper_tail ? -x : x;
}

}  // namespace zorvs::dist

#endif  // ZORVS_DIST_DIST_HPP
