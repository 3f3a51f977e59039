// dist_target.cpp - the special functions, distribution functions and their
// inverses on any reals and counts: each value in its range (a probability
// in [0, 1], a quantile in the support, erf in [-1, 1], the incomplete gamma
// integral not negative), or NaN from a NaN
// argument or with a message.
#include "fuzz_input.hpp"

namespace {

using zorvs_fuzz::probability;
using zorvs_fuzz::require;

template <class T>
void one(zorvs_fuzz::Input &in) {
    using zorvs_fuzz::twin;
    const T a = T(in.real()), b = T(in.real()), c = T(in.real());
    const bool nan_in = std::isnan(a) || std::isnan(b) || std::isnan(c);
    const int i = in.any_int(), j = in.any_int(), k = in.any_int(), l = in.any_int();
    std::snprintf(zorvs_fuzz::context, sizeof zorvs_fuzz::context, "%s: %.17g %.17g %.17g %d %d %d %d",
                  sizeof(T) == 4 ? "float" : "double", double(a), double(b), double(c), i, j, k, l);
    auto in_support = [&](double v, double low, double high, const char *name) {
        if (std::isnan(v) && (nan_in || zorvs_error_type() >= 3)) return;
        require(v >= low && v <= high, name, "outside the support", v);
    };
    switch (in.pick(21)) {
        case 0: twin<T>(zorvs_f_gamma, zorvs_d_gamma)(a); break;
        case 1: twin<T>(zorvs_f_log_gamma, zorvs_d_log_gamma)(a); break;
        case 2: twin<T>(zorvs_f_beta, zorvs_d_beta)(a, b); break;
        case 3: twin<T>(zorvs_f_log_beta, zorvs_d_log_beta)(a, b); break;
        case 4: in_support(twin<T>(zorvs_f_erf, zorvs_d_erf)(a), -1, 1, "erf"); break;
        case 5: in_support(twin<T>(zorvs_f_erfc, zorvs_d_erfc)(a), 0, 2, "erfc"); break;
        case 6: probability(twin<T>(zorvs_f_normal_cdf, zorvs_d_normal_cdf)(a), "normal_cdf", nan_in); break;
        case 7: twin<T>(zorvs_f_normal_inverse_cdf, zorvs_d_normal_inverse_cdf)(a); break;
        case 8:
            probability(twin<T>(zorvs_f_bivariate_normal_cdf, zorvs_d_bivariate_normal_cdf)(a, b, c),
                        "bivariate_normal_cdf", nan_in);
            break;
        case 9:  // the integral itself, from 0 to gamma(a)
            in_support(twin<T>(zorvs_f_gamma_incomplete, zorvs_d_gamma_incomplete)(a, b), 0, INFINITY, "gamma_incomplete");
            break;
        case 10: probability(twin<T>(zorvs_f_gamma_cdf, zorvs_d_gamma_cdf)(a, b), "gamma_cdf", nan_in); break;
        case 11: probability(twin<T>(zorvs_f_chi_squared_cdf, zorvs_d_chi_squared_cdf)(a, b), "chi_squared_cdf", nan_in); break;
        case 12:
            in_support(twin<T>(zorvs_f_chi_squared_inverse_cdf, zorvs_d_chi_squared_inverse_cdf)(a, b), 0, INFINITY,
                       "chi_squared_inverse_cdf");
            break;
        case 13: probability(twin<T>(zorvs_f_beta_incomplete, zorvs_d_beta_incomplete)(a, b, c), "beta_incomplete", nan_in); break;
        case 14: probability(twin<T>(zorvs_f_beta_cdf, zorvs_d_beta_cdf)(a, b, c), "beta_cdf", nan_in); break;
        case 15: in_support(twin<T>(zorvs_f_beta_inverse_cdf, zorvs_d_beta_inverse_cdf)(a, b, c), 0, 1, "beta_inverse_cdf"); break;
        case 16:
            probability(twin<T>(zorvs_f_t_cdf, zorvs_d_t_cdf)(a, b), "t_cdf", nan_in);
            twin<T>(zorvs_f_t_inverse_cdf, zorvs_d_t_inverse_cdf)(a, b);
            break;
        case 17:
            probability(twin<T>(zorvs_f_F_cdf, zorvs_d_F_cdf)(a, b, c), "F_cdf", nan_in);
            in_support(twin<T>(zorvs_f_F_inverse_cdf, zorvs_d_F_inverse_cdf)(a, b, c), 0, INFINITY, "F_inverse_cdf");
            break;
        case 18: probability(twin<T>(zorvs_f_poisson_cdf, zorvs_d_poisson_cdf)(i, a), "poisson_cdf", nan_in); break;
        case 19: probability(twin<T>(zorvs_f_binomial_cdf, zorvs_d_binomial_cdf)(i, j, a), "binomial_cdf", nan_in); break;
        default:
            probability(twin<T>(zorvs_f_hypergeometric_cdf, zorvs_d_hypergeometric_cdf)(i, j, k, l), "hypergeometric_cdf");
    }
}

}  // namespace

ZORVS_FUZZ_TWIN_TARGET(one)
