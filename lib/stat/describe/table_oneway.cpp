// table_oneway.cpp - one-way frequency table: counts of one vector of
// observations in intervals of one of four schemes.
//
//   mode 0  k equal intervals spanning the data (default; ZORVS_DATA_BOUNDS
//           also returns the extremes).  Cells are open below and closed
//           above; each upper edge is widened by a fuzz of 10 eps w so that a
//           value that lies on an edge up to rounding of the edge's product
//           j*w falls into the lower cell.  The largest value lands in the
//           last cell.
//   mode 1  ZORVS_KNOWN_BOUNDS: k - 2 equal intervals between the bounds and
//           two open-ended cells for what lies at or below the lower bound and
//           above the upper one.
//   mode 2  ZORVS_CUTPOINTS: k - 1 increasing cutpoints; cells open below,
//           closed above, first and last open-ended.
//   mode 3  ZORVS_CLASS_MARKS: k increasing marks; an observation counts in
//           the first cell whose mark lies within half the distance of the
//           first two marks; one farther from every mark is not counted.
//
// Counts are reals raised by adding 1.  A NaN among the observations is an
// error, not a missing value.
//
// In mode 1 the edges are the products (j - 1) * w of the width with a cell
// number, so a value at the upper bound may lie above (k - 2) * w by a
// rounding error while not above the bound itself.  Such a value is counted
// in the last inner cell, the cell that holds the upper bound.

#include <cmath>
#include <cstdarg>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/twin.hpp"
#include "util/extrema.hpp"
#include "zorvstat.h"

namespace {

template <class T>
constinit thread_local T *lv_table = nullptr;

// Validate and count.  iopt is the mode; lower, upper belong to mode 1, half
// to mode 3; class_marks is filled in modes 0 and 1, read in modes 2 and 3.
template <class T>
void l_owfrq(const int *n_observations, const T *x, const int *n_intervals, const int *iopt, const T *lower,
             const T *upper, const T *half, T *class_marks, T *table) {
    static const char *const name = "l_owfrq ";
    zorvs_e1psh(name);
    const int n = *n_observations, k = *n_intervals, mode = *iopt;
    if (n < 1) {
        zorvs_e1sti(1, n);
        zorvs_ermes(5, 11002);
    }
    if (mode == 1 && !(*lower < *upper)) {
        zorvs_e1std(1, static_cast<double>(*lower));
        zorvs_e1std(2, static_cast<double>(*upper));
        zorvs_ermes(5, 20023);
    }
    if (mode == 2 || mode == 3) {
        const int count = mode == 3 ? k : k - 1;
        // "Not above" also catches a NaN among the values.  A single value
        // has no neighbour: a NaN there is reported as not above itself.
        for (int i = count == 1 ? 0 : 1; i < count; ++i) {
            const int before = i > 0 ? i - 1 : 0;
            const bool bad = i > 0 ? !(class_marks[i] > class_marks[before]) : std::isnan(class_marks[0]);
            if (bad) {
                zorvs_e1stl(1, mode == 2 ? "cutpoints" : "class_marks");
                zorvs_e1sti(1, i);
                zorvs_e1sti(2, before);
                zorvs_e1std(1, static_cast<double>(class_marks[i]));
                zorvs_e1std(2, static_cast<double>(class_marks[before]));
                zorvs_ermes(5, 20024);
            }
        }
    }
    if (mode == 1 && k < 3) {
        zorvs_e1sti(1, k);
        zorvs_ermes(5, 20021);
    } else if (mode == 2 && k < 2) {
        zorvs_e1sti(1, k);
        zorvs_e1sti(2, mode);
        zorvs_e1stl(1, "ZORVS_CUTPOINTS");
        zorvs_ermes(5, 20020);
    } else if (k < 1) {
        zorvs_e1sti(1, k);
        zorvs_ermes(5, 20025);
    }
    if (zorvs::first_missing(n, x) >= 0) zorvs_ermes(5, 20026);
    if (zorvs_n1rcd(0) != 0) {
        zorvs_e1pop(name);
        return;
    }

    const T one = static_cast<T>(1);
    for (int j = 0; j < k; ++j) table[j] = static_cast<T>(0);
    switch (mode) {
    case 0: {
        const T xmin = x[zorvs::util::ismin(n, x, 1) - 1];
        const T xmax = x[zorvs::util::ismax(n, x, 1) - 1];
        const T w = (xmax - xmin) / static_cast<T>(k);
        const T fuzz = (static_cast<T>(10) * zorvs::epsilon<T>()) * w;
        for (int i = 0; i < n; ++i) {
            const T d = x[i] - xmin;
            int cell = k - 1;
            for (int j = 1; j <= k - 1; ++j) {
                const T tj = static_cast<T>(j);
                if (j == 1) {
                    if (d - w <= fuzz) {
                        cell = 0;
                        break;
                    }
                } else if (d > static_cast<T>(j - 1) * w && d - tj * w <= fuzz) {
                    cell = j - 1;
                    break;
                }
            }
            table[cell] = table[cell] + one;
        }
        for (int i = 0; i < k; ++i)
            class_marks[i] = static_cast<T>(static_cast<double>(xmin) + static_cast<double>(w) * (i + 0.5));
        break;
    }
    case 1: {
        const T lo = *lower, hi = *upper;
        const T w = (hi - lo) / static_cast<T>(k - 2);
        for (int i = 0; i < n; ++i) {
            int cell;
            if (x[i] <= lo) {
                cell = 0;
            } else if (x[i] > hi) {
                cell = k - 1;
            } else {
                const T d = x[i] - lo;
                cell = k - 2;  // above (k - 2) * w only by rounding: the cell of the upper bound
                for (int j = 2; j <= k - 1; ++j) {
                    if (d > static_cast<T>(j - 2) * w && d <= static_cast<T>(j - 1) * w) {
                        cell = j - 1;
                        break;
                    }
                }
            }
            table[cell] = table[cell] + one;
        }
        const T half_w = w / static_cast<T>(2);
        class_marks[0] = lo - half_w;
        class_marks[k - 1] = hi + half_w;
        for (int i = 1; i <= k - 2; ++i) class_marks[i] = lo + w * (static_cast<T>(i - 1) + static_cast<T>(0.5));
        break;
    }
    case 2: {
        const T *c = class_marks;
        for (int i = 0; i < n; ++i)
            if (x[i] <= c[0]) table[0] = table[0] + one;
        for (int j = 1; j <= k - 2; ++j)
            for (int i = 0; i < n; ++i)
                if (c[j - 1] < x[i] && x[i] <= c[j]) table[j] = table[j] + one;
        for (int i = 0; i < n; ++i)
            if (x[i] > c[k - 2]) table[k - 1] = table[k - 1] + one;
        break;
    }
    default: {
        const T *m = class_marks;
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < k; ++j) {
                if (std::fabs(x[i] - m[j]) <= *half) {
                    table[j] = table[j] + one;
                    break;
                }
            }
        }
        break;
    }
    }
    zorvs_e1pop(name);
}

template <class T>
void l_table_oneway(int n_observations, T *x, int n_intervals, va_list *list) {
    zorvs::OutputPair<T> table(lv_table<T>);
    zorvs::KeywordReader kw(list, 3);
    int modes = 0, iopt = 0;
    T *min_out = nullptr, *max_out = nullptr;
    T lower = 0, upper = 0, half = 0;
    T *given = nullptr;  // caller's cutpoints or class marks
    for (int key = kw.keyword(); key != 0; key = kw.keyword()) {
        switch (key) {
        case ZORVS_DATA_BOUNDS:
            min_out = kw.pointer<T>();
            max_out = kw.pointer<T>();
            iopt = 0;
            ++modes;
            break;
        case ZORVS_KNOWN_BOUNDS:
            lower = kw.real<T>();
            upper = kw.real<T>();
            iopt = 1;
            ++modes;
            break;
        case ZORVS_CUTPOINTS:
            given = kw.pointer<T>();
            iopt = 2;
            ++modes;
            break;
        case ZORVS_CLASS_MARKS:
            given = kw.pointer<T>();
            iopt = 3;
            ++modes;
            break;
        case ZORVS_RETURN_USER:
            table.take_user(kw.pointer<T>());
            break;
        default:
            kw.unknown(key);
            return;
        }
    }
    // From here on the pop frees the marks and, after a failure, the table.
    T *marks = nullptr;
    if (modes > 1) {
        zorvs_ermes(5, 20022);
        return;
    }
    int arg_no = 0;
    zorvs_c1iarg(n_intervals, "n_intervals", 1, 0, &arg_no);
    if (zorvs_error_n1rty[0] > 3) return;
    if (!table.obtain(n_intervals, "n_intervals")) return;
    if (iopt >= 2) {
        if (n_intervals < 2) {
            zorvs_e1sti(1, n_intervals);
            zorvs_e1stl(1, iopt == 2 ? "ZORVS_CUTPOINTS" : "ZORVS_CLASS_MARKS");
            zorvs_ermes(5, 20020);
            return;
        }
        if (iopt == 3) half = (given[1] - given[0]) / static_cast<T>(2);
        marks = given;
    } else {
        marks = zorvs::workspace<T>(n_intervals, "n_intervals");
        if (!marks) return;
    }
    l_owfrq<T>(&n_observations, x, &n_intervals, &iopt, &lower, &upper, &half, marks, table.data());
    if (zorvs_error_n1rty[0] < 4 && iopt == 0 && min_out && max_out) {
        *min_out = x[zorvs::util::ismin(n_observations, x, 1) - 1];
        *max_out = x[zorvs::util::ismax(n_observations, x, 1) - 1];
    }
}

}  // namespace

extern "C" {

float *zorvs_f_table_oneway(int n_observations, float x[], int n_intervals, ...) {
    ZORVS_KEYWORD_ENTRY(n_intervals, "zorvs_f_table_oneway", lv_table<float>,
                        l_table_oneway<float>(n_observations, x, n_intervals, &list));
}

double *zorvs_d_table_oneway(int n_observations, double x[], int n_intervals, ...) {
    ZORVS_KEYWORD_ENTRY(n_intervals, "zorvs_d_table_oneway", lv_table<double>,
                        l_table_oneway<double>(n_observations, x, n_intervals, &list));
}

}  // extern "C"
