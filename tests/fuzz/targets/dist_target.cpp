// dist_target.cpp - the special functions, distribution functions and their
// inverses on any reals and counts: each value in its range (a probability
// in [0, 1], a quantile in the support, erf in [-1, 1], the incomplete gamma
// integral not negative), or NaN from a NaN argument or with a message.
// Two workers ride along: log(1 + x) beside the log beta, and the upper
// tail of a ratio a / c on (b, c) degrees of freedom beside F, missing by
// design where a degree of freedom is not positive.
#include "dist/continuous.h"
#include "dist/special.h"
#include "fuzz_input.hpp"

namespace zorvs_fuzz::dist {

template <class T>
void one(Input &in, Store<T> &) {
    const T a = T(in.real()), b = T(in.real()), c = T(in.real());
    const bool nan_in = std::isnan(a) || std::isnan(b) || std::isnan(c);
    const int i = in.any_int(), j = in.any_int(), k = in.any_int(), l = in.any_int();
    std::snprintf(context, sizeof context, "%s: %.17g %.17g %.17g %d %d %d %d", sizeof(T) == 4 ? "float" : "double",
                  double(a), double(b), double(c), i, j, k, l);
    auto in_support = [&](double v, double low, double high, const char *name) {
        if (!std::isnan(v) || !(nan_in || zorvs_error_type() >= 3))
            require(v >= low && v <= high, name, "outside the support", v);
    };
    auto p = [&](double v, const char *name) { probability(v, name, nan_in); };
    switch (in.pick(21)) {
        case 0: F(gamma)(a); break;
        case 1: F(log_gamma)(a); break;
        case 2: F(beta)(a, b); break;
        case 3: F(log_beta)(a, b), twin<T>(zorvs_alnrel, zorvs_dalnrel)(a); break;
        case 4: in_support(F(erf)(a), -1, 1, "erf"); break;
        case 5: in_support(F(erfc)(a), 0, 2, "erfc"); break;
        case 6: p(F(normal_cdf)(a), "normal_cdf"); break;
        case 7: F(normal_inverse_cdf)(a); break;
        case 8: p(F(bivariate_normal_cdf)(a, b, c), "bivariate_normal_cdf"); break;
        case 9: in_support(F(gamma_incomplete)(a, b), 0, INFINITY, "gamma_incomplete"); break;  // not the ratio
        case 10: p(F(gamma_cdf)(a, b), "gamma_cdf"); break;
        case 11: p(F(chi_squared_cdf)(a, b), "chi_squared_cdf"); break;
        case 12: in_support(F(chi_squared_inverse_cdf)(a, b), 0, INFINITY, "chi_squared_inverse_cdf"); break;
        case 13: p(F(beta_incomplete)(a, b, c), "beta_incomplete"); break;
        case 14: p(F(beta_cdf)(a, b, c), "beta_cdf"); break;
        case 15: in_support(F(beta_inverse_cdf)(a, b, c), 0, 1, "beta_inverse_cdf"); break;
        case 16: p(F(t_cdf)(a, b), "t_cdf"), F(t_inverse_cdf)(a, b); break;
        case 17: {
            p(F(F_cdf)(a, b, c), "F_cdf"), in_support(F(F_inverse_cdf)(a, b, c), 0, INFINITY, "F_inverse_cdf");
            T ratio, tail;
            twin<T>(zorvs_c1f, zorvs_dc1f)(a, c, b, c, &ratio, &tail);
            if (b > 0 && c > 0) p(tail, "c1f");
            break;
        }
        case 18: p(F(poisson_cdf)(i, a), "poisson_cdf"); break;
        case 19: p(F(binomial_cdf)(i, j, a), "binomial_cdf"); break;
        default: probability(F(hypergeometric_cdf)(i, j, k, l), "hypergeometric_cdf");
    }
}

}  // namespace zorvs_fuzz::dist

ZORVS_FUZZ_TARGET(dist)
