// extrema.cpp - the larger or smaller of two numbers, the extreme of a
// variable-length list (zorvs_f_vmax and kin, the simplest routines on the
// full public frame), and the index of the extreme of a strided vector.
//
// Comparisons are strict, so the first of equal extremes wins, and a NaN in
// a list neither opens nor replaces anything unless it comes first.

#include <cmath>
#include <cstdarg>

#include "frame/frame.hpp"
#include "util/util.h"
#include "zorvstat.h"

namespace {

// Index from 1 of the first element that `better` prefers to all before it.
template <class T, class Better>
int index_of_extreme(int n, const T *x, int stride, Better better) {
    if (n < 1) return 0;
    if (n == 1) return 1;
    int best = 1;
    T value = x[0];
    if (stride == 1) {
        for (int i = 1; i < n; ++i) {
            if (better(x[i], value)) {
                value = x[i];
                best = i + 1;
            }
        }
    } else {
        long k = stride;
        for (int i = 1; i < n; ++i, k += stride) {
            if (better(x[k], value)) {
                value = x[k];
                best = i + 1;
            }
        }
    }
    return best;
}

constexpr auto greater = [](auto a, auto b) { return a > b; };
constexpr auto less = [](auto a, auto b) { return a < b; };

template <class T>
void maximum_index(int n, const T *x, int stride, int *index) {
    if (!index) return;
    *index = -1;
    double best = 0;
    long k = 0;
    for (int i = 0; i < n; ++i, k += stride) {
        double v = static_cast<double>(x[k]);
        if (std::isnan(v)) continue;
        if (*index < 0 || std::fabs(v) > best) {
            best = std::fabs(v);
            *index = i;
        }
    }
}

// Static results of the list routines, one per twin.
template <class T>
constinit thread_local T lv_vmax{};
template <class T>
constinit thread_local T lv_vmin{};

// Reals travel as double through the list; integers as int.
template <class T>
T next_number(va_list *list) {
    if constexpr (std::is_same_v<T, int>)
        return va_arg(*list, int);
    else
        return static_cast<T>(va_arg(*list, double));
}

template <class T, class Better>
void l_extreme_of_list(int n, va_list *list, T &result, Better better) {
    if (n < 1) return;
    result = next_number<T>(list);
    for (int i = 1; i < n; ++i) {
        T v = next_number<T>(list);
        if (better(v, result)) result = v;
    }
}

}  // namespace

extern "C" {

float zorvs_f_max(float a, float b) { return a > b ? a : b; }
double zorvs_d_max(double a, double b) { return a > b ? a : b; }
int zorvs_i_max(int a, int b) { return a > b ? a : b; }
float zorvs_f_min(float a, float b) { return a < b ? a : b; }
double zorvs_d_min(double a, double b) { return a < b ? a : b; }
int zorvs_i_min(int a, int b) { return a < b ? a : b; }

int zorvs_ismax(int n, const float x[], int stride) { return index_of_extreme(n, x, stride, greater); }
int zorvs_ismin(int n, const float x[], int stride) { return index_of_extreme(n, x, stride, less); }
int zorvs_dismax(int n, const double x[], int stride) { return index_of_extreme(n, x, stride, greater); }
int zorvs_dismin(int n, const double x[], int stride) { return index_of_extreme(n, x, stride, less); }
int zorvs_iimax(const int *n, const int x[], const int *stride) {
    return index_of_extreme(*n, x, *stride, greater);
}
int zorvs_iimin(const int *n, const int x[], const int *stride) {
    return index_of_extreme(*n, x, *stride, less);
}

void zorvs_f_maximum_index(int n, const float x[], int stride, int *index) { maximum_index(n, x, stride, index); }
void zorvs_d_maximum_index(int n, const double x[], int stride, int *index) { maximum_index(n, x, stride, index); }

float zorvs_f_vmax(int n, ...) {
    ZORVS_KEYWORD_ENTRY(n, "zorvs_f_vmax", lv_vmax<float>, l_extreme_of_list(n, &list, lv_vmax<float>, greater));
}
double zorvs_d_vmax(int n, ...) {
    ZORVS_KEYWORD_ENTRY(n, "zorvs_d_vmax", lv_vmax<double>, l_extreme_of_list(n, &list, lv_vmax<double>, greater));
}
int zorvs_i_vmax(int n, ...) {
    ZORVS_KEYWORD_ENTRY(n, "zorvs_i_vmax", lv_vmax<int>, l_extreme_of_list(n, &list, lv_vmax<int>, greater));
}
float zorvs_f_vmin(int n, ...) {
    ZORVS_KEYWORD_ENTRY(n, "zorvs_f_vmin", lv_vmin<float>, l_extreme_of_list(n, &list, lv_vmin<float>, less));
}
double zorvs_d_vmin(int n, ...) {
    ZORVS_KEYWORD_ENTRY(n, "zorvs_d_vmin", lv_vmin<double>, l_extreme_of_list(n, &list, lv_vmin<double>, less));
}
int zorvs_i_vmin(int n, ...) {
    ZORVS_KEYWORD_ENTRY(n, "zorvs_i_vmin", lv_vmin<int>, l_extreme_of_list(n, &list, lv_vmin<int>, less));
}

}  // extern "C"
