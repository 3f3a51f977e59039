// check_dist.cpp - the safe F and t ratios of the argument-check family:
// zorvs_c1f gives a/b and its upper tail under F(df1, df2), zorvs_c1t gives
// a/b and its two-sided tail under t(df).  A ratio that an ordinary
// division would make misleading (0/0, x/0, overflow) becomes NaN or an
// infinity by the rules of zorvs_c1div, and the tail follows it: NaN for a
// NaN ratio or impossible degrees of freedom, 0 for an infinite ratio.  The
// F tail of a positive ratio, 1 - F(f), is summed as the small tail itself,
// so that a p-value far below the epsilon keeps its digits; so is the t
// tail, as twice the distribution function at -|t|.
#include <cmath>
#include <limits>

#include "dist/beta_incomplete.hpp"
#include "dist/continuous.h"
#include "dist/dist.hpp"
#include "frame/checks.hpp"
#include "frame/frame.hpp"

namespace {

template <class T>
void l_c1f(T a, T b, T df1, T df2, T *f, T *p) {
    T ratio = zorvs::check::divide(a, b);
    T tail;
    if (std::isnan(ratio) || !(df1 > 0) || !(df2 > 0)) tail = zorvs::missing<T>();
    else if (std::isinf(ratio) && ratio > 0) tail = 0;
    else if (ratio > 0) tail = zorvs::continuous::F_tail<T>(ratio, df1, df2, true);
    else tail = 1 - zorvs::dist::F_cdf(ratio, df1, df2);  // with the distribution's note
    if (f) *f = ratio;
    if (p) *p = tail;
}

template <class T>
void l_c1t(T a, T b, T df, T *t, T *p) {
    T ratio = zorvs::check::divide(a, b);
    T tail;
    if (std::isnan(ratio) || df == 0) tail = zorvs::missing<T>();
    else if (std::isinf(ratio)) tail = 0;
    else tail = 2 * zorvs::dist::t_cdf(-std::fabs(ratio), df);  // 2 (1 - F(|t|)), without the cancellation
    if (t) *t = ratio;
    if (p) *p = tail;
}

}  // namespace

extern "C" {

void zorvs_c1f(float a, float b, float df1, float df2, float *f, float *p) {
    zorvs_e1psh("zorvs_c1f");
    l_c1f<float>(a, b, df1, df2, f, p);
    zorvs_e1pop("zorvs_c1f");
}
void zorvs_dc1f(double a, double b, double df1, double df2, double *f, double *p) {
    zorvs_e1psh("zorvs_c1f");
    l_c1f<double>(a, b, df1, df2, f, p);
    zorvs_e1pop("zorvs_c1f");
}
void zorvs_c1t(float a, float b, float df, float *t, float *p) {
    zorvs_e1psh("zorvs_c1t");
    l_c1t<float>(a, b, df, t, p);
    zorvs_e1pop("zorvs_c1t");
}
void zorvs_dc1t(double a, double b, double df, double *t, double *p) {
    zorvs_e1psh("zorvs_c1t");
    l_c1t<double>(a, b, df, t, p);
    zorvs_e1pop("zorvs_c1t");
}

}  // extern "C"
