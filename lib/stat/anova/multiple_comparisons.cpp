// multiple_comparisons.cpp - the Student-Newman-Keuls test on group means
// with a common standard error: zorvs_f_multiple_comparisons and its double
// twin.
//
// With the means sorted ascending (s[0] <= s[1] <= ...), a run of m
// consecutive means is found not to differ when its range s[i + m - 1] -
// s[i] is at most q(p; m, df) times the standard error of a mean, q the
// upper quantile of the studentized range for m means (D. Newman 1939,
// Biometrika 31, 20-30; M. Keuls 1952, Euphytica 1, 112-122).  The ranges
// are tested for m = 2 upwards, so that a wider run found equal overwrites
// the narrower run at its start and clears the run that starts one place
// later.  The result, n_groups - 1 ints, holds at sorted position i the
// length of the run found to start there, 0 where none does.
//
// The tabled levels 0.01 and 0.1 are taken as p = 0.99 and 0.9 exactly, so
// that no rounding of 1 - level moves the quantile.
//
// Settled here: a NaN among the means refuses the call with (5, 11154), the
// position of the first from 0 in i1, since a missing mean has no place in
// the sorted order.  The checks run in order, each raising and going on.
#include <cstddef>

#include "dist/dist.hpp"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "kernels/sort.hpp"
#include "zorvstat.h"

namespace {

template <class T>
constinit thread_local int *lv_equal_means = nullptr;

// l_s2kmc: the test on the k means, into equal_means (k - 1); sorted is
// work storage of k reals.
template <class T>
void l_s2kmc(int k, const T *means, T std_error, int df, T level, T *sorted, int *equal_means) {
    static const char *const name = "l_s2kmc ";
    zorvs_e1psh(name);
    zorvs::sort::svrgn(k, means, sorted);
    for (int i = 0; i < k - 1; ++i) equal_means[i] = 0;
    const T p = level == T(0.01) ? T(0.99) : level == T(0.1) ? T(0.9) : T(1) - level;
    for (int m = 2; m <= k; ++m) {
        const T critical = zorvs::dist::srin(p, T(df), T(m)) * std_error;
        for (int i = 0; i <= k - m; ++i) {
            if (!(sorted[i + m - 1] - sorted[i] <= critical)) continue;
            equal_means[i] = m;
            if (m >= 3) equal_means[i + 1] = 0;
        }
    }
    zorvs_e1pop(name);
}

template <class T>
void l_multiple_comparisons(int n_groups, T *means, int df, T std_error, va_list *list) {
    zorvs::OutputPair<int> result(lv_equal_means<T>);
    zorvs::KeywordReader kw(list, 4);
    T level = T(0.01);
    for (int key = kw.keyword(); key != 0; key = kw.keyword()) {
        switch (key) {
        case ZORVS_ALPHA: level = kw.real<T>(); break;
        case ZORVS_RETURN_USER: result.take_user(kw.pointer<int>()); break;
        default: kw.unknown(key); return;
        }
    }
    bool refused = false;
    if (n_groups < 2) {
        zorvs_e1sti(1, n_groups);
        zorvs_ermes(5, 11150);
        refused = true;
    }
    if (std_error < 0) {
        zorvs_e1str(1, std_error);
        zorvs_ermes(5, 11151);
        refused = true;
    }
    if (df < 1) {
        zorvs_e1str(1, df);
        zorvs_ermes(5, 11152);
        refused = true;
    }
    const T eps = zorvs::epsilon<T>();
    if (!(level >= T(0.01) - eps && level <= T(0.1) + eps)) {
        zorvs_e1str(1, level);
        zorvs_ermes(5, 11153);
        refused = true;
    }
    zorvs_null_pointer("means", -1, means);
    if (refused || zorvs_error_n1rty[0] > 3) return;
    const int first_nan = zorvs::first_missing(n_groups, means);
    if (first_nan >= 0) {
        zorvs_e1sti(1, first_nan);
        zorvs_ermes(5, 11154);
        return;
    }
    if (!result.obtain(static_cast<std::size_t>(n_groups - 1))) return;
    T *sorted = zorvs::workspace<T>(static_cast<std::size_t>(n_groups));
    if (!sorted) return;
    l_s2kmc(n_groups, means, std_error, df, level, sorted, result.data());
}

}  // namespace

extern "C" {

int *zorvs_f_multiple_comparisons(int n_groups, float means[], int df, float std_error, ...) {
    ZORVS_KEYWORD_ENTRY(std_error, "zorvs_f_multiple_comparisons", lv_equal_means<float>,
                        l_multiple_comparisons<float>(n_groups, means, df, std_error, &list));
}
int *zorvs_d_multiple_comparisons(int n_groups, double means[], int df, double std_error, ...) {
    ZORVS_KEYWORD_ENTRY(std_error, "zorvs_d_multiple_comparisons", lv_equal_means<double>,
                        l_multiple_comparisons<double>(n_groups, means, df, std_error, &list));
}

}  // extern "C"
