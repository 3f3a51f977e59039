// tails.hpp - tail probabilities and quantiles of the t, chi-squared and F
// distributions to the working accuracy of the incomplete beta and gamma
// ratios (about 14 digits), in either tail, for the tests and intervals of
// the statistical routines.  The public t and chi-squared functions follow
// Hill's approximations and the Wilson-Hilferty form (some 8 digits); these
// are the routes for a p-value or a limit that must keep its digits.
// Double precision, for both twins; they raise nothing.
#ifndef ZORVS_DIST_TAILS_HPP
#define ZORVS_DIST_TAILS_HPP

namespace zorvs::dist {

// P(T > t) for Student's t on df degrees of freedom.
double t_upper(double t, double df);
// The t with P(T > t) = q, 0 < q < 1.
double t_quantile_upper(double q, double df);
// The regularised incomplete gamma ratios P(a, x) (lower) and Q(a, x) =
// 1 - P (upper), each tail from its own formula where it is the smaller.
void gamma_ratios(double a, double x, double &lower, double &upper);
// P(X <= x) and P(X > x) for chi-squared on df degrees of freedom.
inline void chi_squared_tails(double x, double df, double &lower, double &upper) {
    gamma_ratios(0.5 * df, 0.5 * x, lower, upper);
}
// The chi-squared quantile of p.
double chi_squared_quantile(double p, double df);
// P(F <= f) on (df1, df2); the upper tail is f_lower(1 / f, df2, df1).
double f_lower(double f, double df1, double df2);
// The F quantile of p.
double f_quantile(double p, double df1, double df2);

}  // namespace zorvs::dist

#endif  // ZORVS_DIST_TAILS_HPP
