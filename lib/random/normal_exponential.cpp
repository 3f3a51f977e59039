// normal_exponential.cpp - normal and exponential deviates by inversion.
//
// Both draw exactly one uniform per deviate from the shared stream: the
// normal deviate is the normal inverse distribution function of the uniform,
// the standard exponential deviate is -log(u).  Inversion keeps the stream
// aligned between the single and the double routines.
#include <cmath>

#include "dist/dist.hpp"
#include "frame/checks.h"
#include "frame/frame.hpp"
#include "random/random.h"
#include "random/random.hpp"
#include "zorvstat.h"

namespace {

template <class T> constinit thread_local T *lv_normal = nullptr;
template <class T> constinit thread_local T *lv_exponential = nullptr;

// Keyword list, check of n, storage and uniforms; null when nothing to do.
template <class T>
T *prepare(int n, va_list *list, T *&static_result) {
    zorvs::OutputPair<T> result(static_result);
    zorvs::KeywordReader kw(list, 1);
    if (!zorvs::read_return_user(kw, result)) {
        result.drop();
        return nullptr;
    }
    int arg = 0;
    zorvs_c1iarg(n, "n_random", 1, 0, &arg);
    if (zorvs_n1rcd(0) != 0) {
        result.drop();
        return nullptr;
    }
    if (!result.obtain(static_cast<std::size_t>(n))) return nullptr;
    zorvs::random::uniforms(n, result.data());
    return result.data();
}

template <class T>
void l_random_normal(int n, va_list *list) {
    T *r = prepare<T>(n, list, lv_normal<T>);
    if (!r) return;
    for (int i = 0; i < n; ++i) r[i] = zorvs::dist::normal_inverse_cdf(r[i]);
}

template <class T>
void l_rnexp(int n, va_list *list) {
    T *r = prepare<T>(n, list, lv_exponential<T>);
    if (!r) return;
    for (int i = 0; i < n; ++i) r[i] = -std::log(r[i]);
}

}  // namespace

extern "C" {

float *zorvs_f_random_normal(int n, ...) {
    ZORVS_KEYWORD_ENTRY(n, "zorvs_f_random_normal", lv_normal<float>, l_random_normal<float>(n, &list));
}
double *zorvs_d_random_normal(int n, ...) {
    ZORVS_KEYWORD_ENTRY(n, "zorvs_d_random_normal", lv_normal<double>, l_random_normal<double>(n, &list));
}
float *zorvs_f_random_exponential(int n, ...) {
    ZORVS_KEYWORD_ENTRY(n, "zorvs_f_random_exponential", lv_exponential<float>, l_rnexp<float>(n, &list));
}
double *zorvs_d_random_exponential(int n, ...) {
    ZORVS_KEYWORD_ENTRY(n, "zorvs_d_random_exponential", lv_exponential<double>, l_rnexp<double>(n, &list));
}

}  // extern "C"
