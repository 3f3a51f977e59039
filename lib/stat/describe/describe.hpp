// describe.hpp - pieces the descriptive routines share: the frequency and
// weight of one observation, and the running sums of a pair of variables
// that the sample tests and the covariances accumulate in one pass.
#ifndef ZORVS_STAT_DESCRIBE_DESCRIBE_HPP
#define ZORVS_STAT_DESCRIBE_DESCRIBE_HPP

#include "frame/checks.hpp"

namespace zorvs::describe {

// The frequency and weight of one observation: zorvs::check::
// frequency_and_weight (frame/checks.hpp).
using zorvs::check::frequency_and_weight;

// Running sums of two variables a and b over the observations where both
// are present: the frequency count, the weight total W = sum f*w and
// V = sum f*w^2, the weighted means and the centred sums of squares and of
// crossproducts.  For a single variable, a and b are the same.
//
// The update is the weighted one of West (1979, CACM 22): with r = f*w / W
// after the observation is added, d = x - mean, mean += r*d, and the sums
// grow by f*w*(1 - r) * d_a * d_b.  The caller passes each value less a
// shift of its variable (its first value seen): the centred sums do not
// change under a shift, and the small running means keep the digits of a
// small spread about a large offset.
template <class T>
struct PairSums {
    T count, weight, weight_squares, mean_a, mean_b, ss_a, ss_b, cross;
};

template <class T>
inline void add_pair(PairSums<T> &s, T a, T b, T f, T w) {
    s.count += f;
    const T fw = f * w;
    if (fw == T(0)) return;
    s.weight += fw;
    s.weight_squares += fw * w;
    const T r = fw / s.weight;
    const T g = fw * (T(1) - r);
    const T da = a - s.mean_a, db = b - s.mean_b;
    s.mean_a += r * da;
    s.mean_b += r * db;
    s.ss_a += g * da * da;
    s.ss_b += g * db * db;
    s.cross += g * da * db;
}

// The divisor that makes the centred sums unbiased: frequencies count
// repeated observations, weights are reliability weights, so it is
// (W^2 - V) / W, which is count - 1 without weights and W (1 - sum of the
// squared normalised weights) without frequencies.  Not positive when
// fewer than two observations carry weight.
template <class T>
inline T unbiased_divisor(const PairSums<T> &s) {
    if (!(s.weight > T(0))) return T(0);
    return (s.weight * s.weight - s.weight_squares) / s.weight;
}

}  // namespace zorvs::describe

#endif  // ZORVS_STAT_DESCRIBE_DESCRIBE_HPP
