// extrema.hpp - the index routines of util.h as one overloaded name for the
// two twins: zorvs::util::ismax(n, x, stride) is zorvs_ismax or
// zorvs_dismax by the element type.
#ifndef ZORVS_UTIL_EXTREMA_HPP
#define ZORVS_UTIL_EXTREMA_HPP

#include "frame/twin.hpp"
#include "util/util.h"

namespace zorvs::util {

// Index from 1 of the first largest element; 0 if n is below 1.
inline constexpr Twins<zorvs_ismax, zorvs_dismax> ismax{};
// Index from 1 of the first smallest element; 0 if n is below 1.
inline constexpr Twins<zorvs_ismin, zorvs_dismin> ismin{};

}  // namespace zorvs::util

#endif  // ZORVS_UTIL_EXTREMA_HPP
