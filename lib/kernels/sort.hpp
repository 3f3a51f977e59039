// sort.hpp - the sorting and permutation kernels of kernels.h as one
// overloaded name for both twins (zorvs::sort::svrgn is zorvs_svrgn for
// float keys and zorvs_dsvrgn for double keys), counts by value.  Each
// overload is the C routine, messages included.
#ifndef ZORVS_KERNELS_SORT_HPP
#define ZORVS_KERNELS_SORT_HPP

#include "frame/twin.hpp"
#include "kernels/kernels.h"

namespace zorvs::sort {

// Sort ra into rb (rb may be ra).
inline constexpr Twins<zorvs_svrgn, zorvs_dsvrgn> svrgn{};
// The same, moving iperm with the keys.
inline constexpr Twins<zorvs_svrgp, zorvs_dsvrgp> svrgp{};
// By absolute value.
inline void svrbn(int n, const float ra[], float rb[]) { zorvs_svrbn(&n, ra, rb); }
inline void svrbn(int n, const double ra[], double rb[]) { zorvs_dsvrbn(&n, ra, rb); }
// Integers, moving iperm with them.
inline void svigp(int n, const int ia[], int ib[], int iperm[]) { zorvs_svigp(&n, ia, ib, iperm); }
// Permute x into xout by iperm: ipath 1 gathers, any other scatters.
inline void permu(int n, const float x[], int iperm[], int ipath, float xout[]) {
    zorvs_permu(&n, x, iperm, &ipath, xout);
}
inline void permu(int n, const double x[], int iperm[], int ipath, double xout[]) {
    zorvs_dpermu(&n, x, iperm, &ipath, xout);
}

}  // namespace zorvs::sort

#endif  // ZORVS_KERNELS_SORT_HPP
