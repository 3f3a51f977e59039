// difference.cpp - differencing of a time series: a sequence of operators
// (1 - B^s_k)^d_k, each with its own period s_k and order d_k, applied from
// the last to the first, as Box and Jenkins write the seasonal and ordinary
// differences of a series.
//
// Every application of an operator of period s loses s more observations at
// the head of the series.  Those cells are NaN in the result by default
// (ZORVS_SET_FIRST_TO_NAN); with ZORVS_EXCLUDE_FIRST the n - lost kept values
// move to the head of the result.
//
// Settled here:
//  - With ZORVS_EXCLUDE_FIRST the cells behind the kept values are set to
//    NaN, so that no stale difference can be mistaken for a result.
//  - ZORVS_EXCLUDE_FIRST and ZORVS_SET_FIRST_TO_NAN may both be given; the
//    last one in the list holds.
//  - Once the lost count reaches the length of the series every later pass
//    would only write NaN: the passes stop there and the lost count is still
//    summed over all operators.  A lost count beyond the range of int is
//    reported as the largest int.
//  - Only a NaN in the series is refused; infinite values are differenced
//    by IEEE arithmetic (infinity less infinity is NaN).
//  - ZORVS_ORDERS with a null array, or a null series or period array, is
//    refused with (5, 150).

#include <climits>
#include <cstdarg>
#include <cstring>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "frame/twin.hpp"
#include "zorvstat.h"

namespace {

template <class T>
constinit thread_local T *lv_difference = nullptr;

// The worker: checks the periods, orders and series, then differences into w
// (n values, may be z itself) with the work vector work.  *lost receives the
// count of observations lost at the head.
template <class T>
void l_d2ff(int n, const T *z, int n_differences, const int *periods, const int *orders, bool exclude_first, T *w,
            T *work, int *lost_out) {
    static const char *const name = "l_d2ff";
    zorvs_e1psh(name);
    for (int k = 0; k < n_differences; ++k) {
        if (periods[k] < 1) {
            zorvs_e1sti(1, k);
            zorvs_e1sti(2, periods[k]);
            zorvs_ermes(4, 20210);
        }
    }
    for (int k = 0; k < n_differences; ++k) {
        if (orders[k] < 0) {
            zorvs_e1sti(1, k);
            zorvs_e1sti(2, orders[k]);
            zorvs_ermes(4, 20211);
        }
    }
    if (int at = zorvs::first_missing(n, z); at >= 0) {
        zorvs_e1sti(1, at);
        zorvs_ermes(4, 20212);
    }
    if (zorvs_error_n1rty[0] != 0) {
        zorvs_e1pop(name);
        return;
    }

    if (w != z) std::memcpy(w, z, static_cast<std::size_t>(n) * sizeof(T));
    const T nan = zorvs::missing<T>();
    long long lost = 0;
    for (int k = n_differences - 1; k >= 0; --k) {
        const long long s = periods[k];
        for (int d = 0; d < orders[k]; ++d) {
            if (lost >= n) {
                // every cell is lost already: count the rest without passes
                lost += s * (orders[k] - d);
                break;
            }
            lost += s;
            // Differences of the previous pass go to the work vector, so
            // that x(i - s) is still the old value when x(i) is formed.
            for (long long i = 0; i < n; ++i) work[i] = i < lost ? nan : w[i] - w[i - s];
            std::memcpy(w, work, static_cast<std::size_t>(n) * sizeof(T));
        }
        if (lost > INT_MAX) lost = INT_MAX;
    }
    if (exclude_first) {
        const long long kept = lost < n ? n - lost : 0;
        if (kept > 0) std::memmove(w, w + lost, static_cast<std::size_t>(kept) * sizeof(T));
        for (long long i = kept; i < n; ++i) w[i] = nan;
    }
    *lost_out = static_cast<int>(lost);
    zorvs_e1pop(name);
}

template <class T>
void l_difference(int n_observations, T *z, int n_differences, int *periods, va_list *list) {
    zorvs::OutputPair<T> result(lv_difference<T>);
    zorvs::KeywordReader kw(list, 4);
    bool exclude_first = false;
    int *orders = nullptr, *num_lost = nullptr;
    bool orders_given = false;
    for (int key = kw.keyword(); key != 0; key = kw.keyword()) {
        switch (key) {
        case ZORVS_RETURN_USER: result.take_user(kw.pointer<T>()); break;
        case ZORVS_ORDERS:
            orders = kw.pointer<int>();
            orders_given = true;
            break;
        case ZORVS_NUM_LOST: num_lost = kw.pointer<int>(); break;
        case ZORVS_EXCLUDE_FIRST: exclude_first = true; break;
        case ZORVS_SET_FIRST_TO_NAN: exclude_first = false; break;
        default: kw.unknown(key); return;
        }
    }
    int arg_no = 0;
    zorvs_c1iarg(n_observations, "n_observations", 1, 0, &arg_no);
    zorvs_c1iarg(n_differences, "n_differences", 1, 0, &arg_no);
    zorvs_null_pointer("z", -1, z);
    zorvs_null_pointer("periods", -1, periods);
    if (orders_given) zorvs_null_pointer("orders", -1, orders);
    if (result.user()) zorvs_null_pointer("ZORVS_RETURN_USER", -1, result.data());
    if (zorvs_error_n1rty[0] > 3) return;

    // The work arrays belong to the frame: its pop frees them on every path.
    if (!result.obtain(n_observations, "n_observations")) return;
    T *work = zorvs::workspace<T>(n_observations, "n_observations");
    if (!work) return;
    if (!orders) {
        int *ones = zorvs::workspace<int>(n_differences, "n_differences");
        if (!ones) return;
        for (int k = 0; k < n_differences; ++k) ones[k] = 1;
        orders = ones;
    }
    int lost = 0;
    l_d2ff<T>(n_observations, z, n_differences, periods, orders, exclude_first, result.data(), work, &lost);
    if (zorvs_error_n1rty[0] < 4 && num_lost) *num_lost = lost;
}

}  // namespace

extern "C" {

float *zorvs_f_difference(int n_observations, float z[], int n_differences, int periods[], ...) {
    ZORVS_KEYWORD_ENTRY(periods, "zorvs_f_difference", lv_difference<float>,
                        l_difference<float>(n_observations, z, n_differences, periods, &list));
}

double *zorvs_d_difference(int n_observations, double z[], int n_differences, int periods[], ...) {
    ZORVS_KEYWORD_ENTRY(periods, "zorvs_d_difference", lv_difference<double>,
                        l_difference<double>(n_observations, z, n_differences, periods, &list));
}

}  // extern "C"
