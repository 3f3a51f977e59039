// extrema.hpp - the index routines of util.h as one overloaded name for the
// real twins and the integers: zorvs::util::ismax(n, x, stride) is
// zorvs_ismax, zorvs_dismax or zorvs_iimax by the element type.
#ifndef ZORVS_UTIL_EXTREMA_HPP
#define ZORVS_UTIL_EXTREMA_HPP

#include "util/util.h"

namespace zorvs::util {

// Index from 1 of the first largest element; 0 if n is below 1.
inline int ismax(int n, const float x[], int stride) { return zorvs_ismax(n, x, stride); }
inline int ismax(int n, const double x[], int stride) { return zorvs_dismax(n, x, stride); }
inline int ismax(int n, const int x[], int stride) { return zorvs_iimax(&n, x, &stride); }
// Index from 1 of the first smallest element; 0 if n is below 1.
inline int ismin(int n, const float x[], int stride) { return zorvs_ismin(n, x, stride); }
inline int ismin(int n, const double x[], int stride) { return zorvs_dismin(n, x, stride); }
inline int ismin(int n, const int x[], int stride) { return zorvs_iimin(&n, x, &stride); }

}  // namespace zorvs::util

#endif  // ZORVS_UTIL_EXTREMA_HPP
