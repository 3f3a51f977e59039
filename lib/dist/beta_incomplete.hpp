// beta_incomplete.hpp - the incomplete beta ratio and the F distribution's
// two tails without a push of their own and without argument checks, for
// the beta and F routines, the inverse and the safe F ratio; the inverse
// of the ratio with its complement, for the F and t inverses.
#ifndef ZORVS_DIST_BETA_INCOMPLETE_HPP
#define ZORVS_DIST_BETA_INCOMPLETE_HPP

namespace zorvs::continuous {

// I_x(a, b), or with `upper` its complement 1 - I_x(a, b), for x in [0, 1]
// given together with cx = 1 - x (each to its own full relative accuracy),
// and a, b > 0.  Raises nothing.
template <class T>
T beta_ratio(T x, T cx, T a, T b, bool upper);

// The F(df1, df2) distribution function at f > 0, or with `upper` its upper
// tail, each without subtraction from 1.  df1, df2 > 0; raises nothing.
template <class T>
T F_tail(T f, T df1, T df2, bool upper);

// zorvs_betin / zorvs_dbetin (the same frame and messages), with 1 - x to
// its own relative accuracy in *complement.
template <class T>
T betin_with_complement(T p, T pin, T qin, T *complement);

}  // namespace zorvs::continuous

#endif  // ZORVS_DIST_BETA_INCOMPLETE_HPP
