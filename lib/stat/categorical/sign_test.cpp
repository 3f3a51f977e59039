// sign_test.cpp - the sign test: under the hypothesis each observation
// that differs from the value q lies above it with probability p, so the
// count k of positive deviations x - q among the n observations that differ
// from q is binomial (n, p), and the result is the upper tail P(K >= k)
// (Conover, Practical Nonparametric Statistics, 3.4).  Observations equal
// to q carry no sign and are left out of the trials; missing observations
// (NaN) are dropped.
//
// The result is 1 - F(k - 1; n, p) with F the binomial distribution
// function, and 1.0 when no deviation is positive.
//
// Settled here:
//  - After an error of type 4 or 5 the result is the missing value (NaN),
//    not 0.0, which would read as a highly significant test; the counts of
//    ZORVS_N_POSITIVE_DEVIATIONS and ZORVS_N_ZERO_DEVIATIONS are then not
//    written.
//  - A null x is refused with (5, 150); a null count pointer asks for
//    nothing.
//  - Infinite observations count by their sign like any other.

#include <cstdarg>

#include "dist/dist.hpp"
#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "frame/raise.hpp"
#include "frame/twin.hpp"
#include "zorvstat.h"

namespace {

template <class T>
constinit thread_local T lv_sign_test = 0;

template <class T>
void l_sign_test(int n_observations, const T *x, va_list *list) {
    lv_sign_test<T> = zorvs::missing<T>();
    zorvs::KeywordReader kw(list, 2);
    T p = T(0.5), q = T(0);
    int *n_positive_out = nullptr, *n_zero_out = nullptr;
    for (int key = kw.keyword(); key != 0; key = kw.keyword()) {
        switch (key) {
        case ZORVS_PERCENTAGE: p = kw.real<T>(); break;
        case ZORVS_PERCENTAGE_ADR: p = *kw.pointer<T>(); break;
        case ZORVS_PERCENTILE: q = kw.real<T>(); break;
        case ZORVS_PERCENTILE_ADR: q = *kw.pointer<T>(); break;
        case ZORVS_N_POSITIVE_DEVIATIONS: n_positive_out = kw.pointer<int>(); break;
        case ZORVS_N_ZERO_DEVIATIONS: n_zero_out = kw.pointer<int>(); break;
        default: kw.unknown(key); return;
        }
    }
    int arg_no = 0;
    zorvs_c1iarg(n_observations, "n_observations", 2, 0, &arg_no);
    if (!(p > T(0) && p < T(1))) {  // a NaN p fails too
        zorvs_e1stl(1, "percentile");
        zorvs::raise(5, 120, 0.0, 1.0, p);
    }
    zorvs_null_pointer("x", -1, x);
    if (zorvs_error_n1rty[0] > 3) return;

    int n_positive = 0, n_zero = 0, n_valid = 0;
    for (int i = 0; i < n_observations; ++i) {
        if (zorvs::is_missing(x[i])) continue;
        ++n_valid;
        const T d = x[i] - q;
        if (d > T(0)) ++n_positive;
        else if (d == T(0)) ++n_zero;
    }
    if (n_valid == 0) {
        zorvs_ermes(5, 11099);
        return;
    }
    T result = T(1);
    if (n_positive >= 1)
        result = T(1) - zorvs::dist::binomial_cdf(n_positive - 1, n_valid - n_zero, p);
    lv_sign_test<T> = result;
    if (n_positive_out) *n_positive_out = n_positive;
    if (n_zero_out) *n_zero_out = n_zero;
}

}  // namespace

extern "C" {

float zorvs_f_sign_test(int n_observations, float x[], ...) {
    ZORVS_KEYWORD_ENTRY(x, "zorvs_f_sign_test", lv_sign_test<float>, l_sign_test<float>(n_observations, x, &list));
}

double zorvs_d_sign_test(int n_observations, double x[], ...) {
    ZORVS_KEYWORD_ENTRY(x, "zorvs_d_sign_test", lv_sign_test<double>, l_sign_test<double>(n_observations, x, &list));
}

}  // extern "C"
