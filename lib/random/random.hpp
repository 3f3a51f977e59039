// random.hpp - what the deviate routines share: the generators they build
// on, as one overloaded name for both twins (zorvs::random::uniforms(n, r)
// is zorvs_f_r1uni for a float array and zorvs_d_r1uni for a double one, so
// that both continue the one shared stream exactly as the C names do).
#ifndef ZORVS_RANDOM_RANDOM_HPP
#define ZORVS_RANDOM_RANDOM_HPP

#include "frame/frame.hpp"
#include "frame/twin.hpp"
#include "random/random.h"
#include "zorvstat.h"

namespace zorvs::random {

// n uniforms into r, without the keyword frame (n >= 1).
inline constexpr Twins<zorvs_f_r1uni, zorvs_d_r1uni> uniforms{};

// n standard normal deviates into the caller's r, through the public
// routine and its frame (ZORVS_RETURN_USER).
inline void normals(int n, float r[]) { zorvs_f_random_normal(n, ZORVS_RETURN_USER, r, 0); }
inline void normals(int n, double r[]) { zorvs_d_random_normal(n, ZORVS_RETURN_USER, r, 0); }

}  // namespace zorvs::random

#endif  // ZORVS_RANDOM_RANDOM_HPP
