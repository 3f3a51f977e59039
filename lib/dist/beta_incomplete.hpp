// beta_incomplete.hpp - the incomplete beta ratio without a push of its own
// and without argument checks, for the beta and F routines and the inverse.
#ifndef ZORVS_DIST_BETA_INCOMPLETE_HPP
#define ZORVS_DIST_BETA_INCOMPLETE_HPP

namespace zorvs::continuous {

// I_x(a, b), or with `upper` its complement 1 - I_x(a, b), for x in [0, 1]
// given together with cx = 1 - x (each to its own full relative accuracy),
// and a, b > 0.  Raises nothing.
template <class T>
T beta_ratio(T x, T cx, T a, T b, bool upper);

}  // namespace zorvs::continuous

#endif  // ZORVS_DIST_BETA_INCOMPLETE_HPP
