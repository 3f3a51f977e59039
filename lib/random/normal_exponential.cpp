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

template <class T> T *lv_normal = nullptr;
template <class T> T *lv_exponential = nullptr;

// Keyword list, check of n, allocation and uniforms; false when nothing to do.
template <class T>
bool prepare(int n, va_list *list, T *&result, bool &user) {
    zorvs::KeywordReader kw(list, 1);
    if (!zorvs::random::read_keywords(kw, result, user)) return false;
    int arg = 0;
    zorvs_c1iarg(n, "n_random", 1, 0, &arg);
    if (zorvs_n1rcd(0) != 0) {
        result = nullptr;
        return false;
    }
    if (!user) {
        result = zorvs::allocate<T>(static_cast<std::size_t>(n));
        if (!result) return false;
    }
    zorvs::random::uniforms(n, result);
    return true;
}

template <class T>
void l_random_normal(int n, va_list *list) {
    bool user;
    if (!prepare<T>(n, list, lv_normal<T>, user)) return;
    T *r = lv_normal<T>;
    for (int i = 0; i < n; ++i) r[i] = zorvs::dist::normal_inverse_cdf(r[i]);
    zorvs::exit_test(lv_normal<T>, user);
}

template <class T>
void l_rnexp(int n, va_list *list) {
    bool user;
    if (!prepare<T>(n, list, lv_exponential<T>, user)) return;
    T *r = lv_exponential<T>;
    for (int i = 0; i < n; ++i) r[i] = -std::log(r[i]);
    zorvs::exit_test(lv_exponential<T>, user);
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
