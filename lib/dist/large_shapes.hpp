// large_shapes.hpp - the incomplete beta and gamma ratios at large shapes
// (large_shapes.cpp), for the ratio routines where their own sums would be
// long.  Double precision; they raise nothing.
#ifndef ZORVS_DIST_LARGE_SHAPES_HPP
#define ZORVS_DIST_LARGE_SHAPES_HPP

namespace zorvs::continuous {

// log(1 + t) - t for t > -1, without the cancellation near 0.
double log1pmx(double t);

// I_x(a, b), or with `upper` its complement, for x in [0, 1] given with
// cx = 1 - x (each to its own relative accuracy) and a, b > 0, at least one
// of them large (a few thousand).
double beta_ratio_large(double x, double cx, double a, double b, bool upper);

// The regularised incomplete gamma ratio P(a, x), or with `upper` Q(a, x),
// for a >= 100 and x >= 0.
double gamma_ratio_large(double a, double x, bool upper);

}  // namespace zorvs::continuous

#endif  // ZORVS_DIST_LARGE_SHAPES_HPP
