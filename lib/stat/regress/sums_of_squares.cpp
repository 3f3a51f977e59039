// sums_of_squares.cpp - one row added to running weighted means and
// corrected sums of squares of n variables, the streaming update that the
// contingency-table and rank routines share with the regression summary.
//
// Method: the weighted form of Welford's update (West 1979).  With W the
// running weight after the row's weight w is added, f = w / W and
// g = w (1 - f):  d = x - xbar,  xbar += f d,  ss += g d^2.  The update never
// forms a sum of squares about zero, so a large common offset costs no
// digits.  A weight of 0.0 changes nothing; a running weight that is still
// 0.0 after the row leaves the means and sums as they are.
//
// Counts, strides and the reals w and sumwt come by pointer.  A negative
// stride walks its vector from the far end, as the vector kernels do.

#include "frame/frame.hpp"
#include "frame/raise.hpp"
#include "stat/regress/regress.h"

namespace {

// Offset of element i (from 0) of a vector of n elements with stride inc.
inline long element(int i, int n, int inc) {
    return inc >= 0 ? static_cast<long>(i) * inc : static_cast<long>(n - 1 - i) * -static_cast<long>(inc);
}

template <class T>
void l_s1msq(const int *n, const T *x, const int *incx, const T *w, T *sumwt, T *xbar, const int *incxbar, T *ss,
             const int *incss) {
    zorvs::framed("zorvs_s1msq ", [&] {
        if (*n < 1) {
            zorvs::raise(5, 11124, *n);
            return;
        }
        if (*sumwt < T(0)) {
            zorvs::raise(5, 11125, *sumwt);
            return;
        }
        if (*w == T(0)) return;
        *sumwt += *w;
        if (!(*sumwt > T(0))) return;
        const T f = *w / *sumwt;
        const T g = *w * (T(1) - f);
        for (int i = 0; i < *n; ++i) {
            T &mean = xbar[element(i, *n, *incxbar)];
            const T d = x[element(i, *n, *incx)] - mean;
            mean += f * d;
            ss[element(i, *n, *incss)] += g * d * d;
        }
    });
}

}  // namespace

extern "C" {

void zorvs_s1msq(const int *n, const float x[], const int *incx, const float *w, float *sumwt, float xbar[],
                 const int *incxbar, float ss[], const int *incss) {
    l_s1msq(n, x, incx, w, sumwt, xbar, incxbar, ss, incss);
}
void zorvs_ds1msq(const int *n, const double x[], const int *incx, const double *w, double *sumwt, double xbar[],
                  const int *incxbar, double ss[], const int *incss) {
    l_s1msq(n, x, incx, w, sumwt, xbar, incxbar, ss, incss);
}

}  // extern "C"
