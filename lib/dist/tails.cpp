// tails.cpp - t, chi-squared and F tails and quantiles to the accuracy of
// the incomplete beta and gamma ratios (tails.hpp).
#include "dist/tails.hpp"

#include <cmath>

#include "dist/dist.hpp"
#include "dist/large_shapes.hpp"

namespace zorvs::dist {

namespace {
// From this shape on, the incomplete gamma ratios come from the large-shape
// expansion, as in the gamma distribution function.
constexpr double large_shape = 1000;
}  // namespace

// P(T > t) is I_x(df/2, 1/2) / 2 with x = df / (df + t^2) for t >= 0.
double t_upper(double t, double df) {
    const double half = 0.5 * zorvs::dist::beta_incomplete(df / (df + t * t), 0.5 * df, 0.5);
    return t >= 0 ? half : 1 - half;
}
// The t with P(T > t) = q, 0 < q < 1 (0 at q = 0.5): from the beta quantile
// of 2q, or for t near 0 from the complementary ratio, where 1 - x would lose
// digits.
double t_quantile_upper(double q, double df) {
    if (q == 0.5) return 0;
    if (q > 0.5) return -t_quantile_upper(1 - q, df);
    if (2 * q < 0.5) {
        const double x = zorvs::dist::beta_inverse_cdf(2 * q, 0.5 * df, 0.5);
        return std::sqrt(df * (1 - x) / x);
    }
    const double y = zorvs::dist::beta_inverse_cdf(1 - 2 * q, 0.5, 0.5 * df);
    return std::sqrt(df * y / (1 - y));
}
// The regularised incomplete gamma ratios P(a, x) (lower) and Q(a, x) =
// 1 - P (upper): the series of P for x < a + 1, else the continued fraction
// of Q by the modified Lentz method (Press et al., Numerical Recipes, 2nd
// ed., 6.2), each tail from its own formula where it is the smaller one.
void gamma_ratios(double a, double x, double &lower, double &upper) {
    if (!(x > 0)) {
        lower = 0, upper = 1;
        return;
    }
    if (a >= large_shape) {
        // The series and the fraction take of the order of sqrt(a) terms:
        // the large-shape expansion, on the smaller tail.
        const bool upper_smaller = x > a;
        const double small = zorvs::continuous::gamma_ratio_large(a, x, upper_smaller);
        lower = upper_smaller ? 1 - small : small;
        upper = upper_smaller ? small : 1 - small;
        return;
    }
    const double front = std::exp(a * std::log(x) - x - zorvs::dist::log_gamma(a));
    const double tiny = 1e-300, eps = 1e-16;
    if (x < a + 1) {
        double term = 1 / a, sum = term;
        for (int n = 1; n < 10000 && std::fabs(term) > std::fabs(sum) * eps; ++n) sum += term *= x / (a + n);
        lower = std::fmin(1.0, sum * front);
        upper = 1 - lower;
        return;
    }
    double b = x + 1 - a, c = 1 / tiny, d = 1 / b, h = d;
    for (int i = 1; i < 10000; ++i) {
        const double an = -i * (i - a);
        b += 2;
        d = an * d + b;
        d = std::fabs(d) < tiny ? tiny : d;
        c = b + an / c;
        c = std::fabs(c) < tiny ? tiny : c;
        d = 1 / d;
        const double delta = d * c;
        h *= delta;
        if (std::fabs(delta - 1) < eps) break;
    }
    upper = std::fmin(1.0, front * h);
    lower = 1 - upper;
}
// The chi-squared quantile: the library's root, then Newton steps on the
// ratio of the smaller tail, with the density
// exp((a - 1) log(x/2) - x/2 - log Gamma(a)) / 2, a = df / 2.
double chi_squared_quantile(double p, double df) {
    double x = zorvs::dist::chi_squared_inverse_cdf(p, df);
    const double a = 0.5 * df;
    for (int step = 0; step < 6 && x > 0; ++step) {
        const double density = std::exp((a - 1) * std::log(0.5 * x) - 0.5 * x - zorvs::dist::log_gamma(a)) / 2;
        if (!(density > 0)) break;
        double lower, upper;
        gamma_ratios(a, 0.5 * x, lower, upper);
        const double change = p < 0.5 ? (lower - p) / density : (upper - (1 - p)) / -density;
        x -= change;
        if (std::fabs(change) <= 1e-15 * x) break;
    }
    return x;
}
// P(F <= f) on (df1, df2): I_x(df1/2, df2/2) with x = df1 f / (df1 f + df2),
// written so that an infinite f gives 1 and f = 0 gives 0.
double f_lower(double f, double df1, double df2) {
    return zorvs::dist::beta_incomplete(1 / (1 + df2 / (df1 * f)), 0.5 * df1, 0.5 * df2);
}
// The F quantile of p, from the beta quantile of p or, above 0.5, of its
// complement on the swapped shapes.
double f_quantile(double p, double df1, double df2) {
    if (p <= 0.5) {
        const double x = zorvs::dist::beta_inverse_cdf(p, 0.5 * df1, 0.5 * df2);
        return df2 * x / (df1 * (1 - x));
    }
    const double y = zorvs::dist::beta_inverse_cdf(1 - p, 0.5 * df2, 0.5 * df1);
    return df2 * (1 - y) / (df1 * y);
}

}  // namespace zorvs::dist
