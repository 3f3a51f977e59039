// chi_squared_test.cpp - Pearson's chi-squared test of goodness of fit of
// counts in given cells to a distribution function or to given expected
// counts.
//
// Method (Pearson 1900; Kendall and Stuart, The Advanced Theory of
// Statistics, vol. 2, ch. 30): with observed counts O_k and expected counts
// E_k in K cells, X^2 = sum (O_k - E_k)^2 / E_k on K - 1 - m degrees of
// freedom, m the number of parameters of the distribution estimated from
// the data (Fisher 1924; exact when the estimates are those of the grouped
// data), and the p-value P(chi2 > X^2), the upper tail of the incomplete
// gamma ratio in double precision, so that a small p-value keeps its
// relative accuracy.
//
// The cells are cut by the K - 1 increasing cutpoints c_1 < ... < c_(K-1):
// cell 1 is (-inf, c_1], cell k (c_(k-1), c_k], cell K (c_(K-1), inf).  With
// a distribution function F the expected counts are N (F(c_k) - F(c_(k-1)))
// with F(c_0) = 0, F(c_K) = 1 and N the total count; F is called once per
// cutpoint, through the frame's user-function bracket, and every value it
// returns must lie in [0, 1] and not decrease.  Given expected counts are
// used as they are (their sum need not be N).
//
// Settled here:
//  - The result is the p-value; NaN after any error.  ZORVS_CHI_SQUARED
//    (int *df, float *chi_squared, float *p_value) gives the triple, as in
//    the contingency tables.
//  - Raw data (the default): x holds n_observations values, each with its
//    ZORVS_FREQUENCIES frequency (default 1).  A NaN value or frequency is
//    missing and skipped, a frequency of 0 is skipped, a negative one is
//    (5, 11054).  Cutpoints are needed.  ZORVS_COUNTS: x holds the
//    n_categories counts, n_observations must equal n_categories (5, 21230),
//    every count finite and 0 or more (5, 21227); cutpoints are needed only
//    with a distribution function.
//  - Exactly one of the distribution function (non-null `cdf`) and
//    ZORVS_EXPECTED_GIVEN: both (5, 11117), neither (5, 21220).
//  - An expected count of 0 or less (a cell of probability 0) is (5, 21226):
//    the statistic would be infinite or undefined.  Expected counts below 5
//    are a warning (3, 21229), as the approximation may be poor there; the
//    results are kept.
//  - No observation left (all missing, or all frequencies 0): (5, 21228).
//  - The p-value is the complement of the distribution function, so that
//    below about 1e-13 (double) it holds no more than absolute accuracy.
//  - Nothing is written to the caller's storage before all checks,
//    the distribution function's values included, have passed.

#include <algorithm>
#include <cmath>
#include <cstdarg>

#include "dist/dist.hpp"
#include "dist/tails.hpp"
#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "zorvstat.h"

namespace {

template <class T>
constinit thread_local T lv_chi_squared_test = 0;

template <class T>
using Cdf = T (*)(T);

// Cutpoints c[0..k-1] strictly increasing and not NaN; else (5, 21222).
template <class T>
bool increasing(int k, const T *c) {
    for (int i = 0; i < k; ++i) {
        if (zorvs::is_missing(c[i]) || (i > 0 && !(c[i] > c[i - 1]))) {
            zorvs_e1sti(1, i);
            zorvs_e1str(1, static_cast<double>(c[i]));
            zorvs_e1sti(2, i > 0 ? i - 1 : i);
            zorvs_e1str(2, static_cast<double>(i > 0 ? c[i - 1] : c[i]));
            zorvs_ermes(5, 21222);
            return false;
        }
    }
    return true;
}

// F at the cutpoints, into prob[0..k-2] as cell probabilities (the last in
// prob[k-1]); false with (5, 21223) or (5, 21224) when F misbehaves.
template <class T>
bool cell_probabilities(Cdf<T> cdf, int n_cells, const T *c, T *prob) {
    T before = 0, at_before = 0;
    for (int i = 0; i < n_cells - 1; ++i) {
        const T f = zorvs::call_user_function(cdf, c[i]);
        if (!(f >= 0 && f <= 1)) {
            zorvs_e1str(1, static_cast<double>(c[i]));
            zorvs_e1str(2, static_cast<double>(f));
            zorvs_ermes(5, 21223);
            return false;
        }
        if (f < before) {
            zorvs_e1str(1, static_cast<double>(c[i]));
            zorvs_e1str(2, static_cast<double>(f));
            zorvs_e1str(3, static_cast<double>(at_before));
            zorvs_e1str(4, static_cast<double>(before));
            zorvs_ermes(5, 21224);
            return false;
        }
        prob[i] = f - before;
        before = f;
        at_before = c[i];
    }
    prob[n_cells - 1] = 1 - before;
    return true;
}

template <class T>
void l_chi_squared_test(Cdf<T> cdf, int n_categories, int n_observations, const T *x, va_list *list) {
    lv_chi_squared_test<T> = zorvs::missing<T>();
    zorvs::OutputPair<T> expected_out, contributions_out, counts_out;
    zorvs::KeywordReader kw(list, 4);
    const T *cutpoints = nullptr, *frequencies = nullptr, *given = nullptr;
    bool counts_given = false;
    int n_estimated = 0, *df_out = nullptr;
    T *chi_out = nullptr, *p_out = nullptr;
    for (int key = kw.keyword(); key != 0; key = kw.keyword()) {
        switch (key) {
        case ZORVS_CUTPOINTS: cutpoints = kw.pointer<T>(); break;
        case ZORVS_FREQUENCIES: frequencies = kw.pointer<T>(); break;
        case ZORVS_COUNTS: counts_given = true; break;
        case ZORVS_EXPECTED_GIVEN: given = kw.pointer<T>(); break;
        case ZORVS_N_PARAMETERS_ESTIMATED: n_estimated = kw.integer(); break;
        case ZORVS_CHI_SQUARED:
            df_out = kw.pointer<int>();
            chi_out = kw.pointer<T>();
            p_out = kw.pointer<T>();
            break;
        case ZORVS_EXPECTED: expected_out.take_address(kw.pointer<T *>()); break;
        case ZORVS_EXPECTED_USER: expected_out.take_user(kw.pointer<T>()); break;
        case ZORVS_CHI_SQUARED_CONTRIBUTIONS: contributions_out.take_address(kw.pointer<T *>()); break;
        case ZORVS_CHI_SQUARED_CONTRIBUTIONS_USER: contributions_out.take_user(kw.pointer<T>()); break;
        case ZORVS_CELL_COUNTS: counts_out.take_address(kw.pointer<T *>()); break;
        case ZORVS_CELL_COUNTS_USER: counts_out.take_user(kw.pointer<T>()); break;
        default: kw.unknown(key); return;
        }
    }
    if (cdf && given) {
        zorvs_e1stl(1, "cdf and ZORVS_EXPECTED_GIVEN");
        zorvs_ermes(5, 11117);
    } else if (!cdf && !given) {
        zorvs_ermes(5, 21220);
    }
    int arg_no = 0;
    zorvs_c1iarg(n_categories, "n_categories", 2, 1, &arg_no);
    if (n_observations < 1) {
        zorvs_e1sti(1, n_observations);
        zorvs_ermes(5, 11002);
    }
    zorvs_null_pointer("x", -1, x);
    if (counts_given && n_observations != n_categories) {
        zorvs_e1sti(1, n_observations);
        zorvs_e1sti(2, n_categories);
        zorvs_ermes(5, 21230);
    }
    const int df = n_categories - 1 - n_estimated;
    if (n_categories >= 2 && (n_estimated < 0 || df < 1)) {
        zorvs_e1sti(1, n_categories);
        zorvs_e1sti(2, n_estimated);
        zorvs_e1sti(3, df);
        zorvs_ermes(5, 21225);
    }
    if ((cdf || !counts_given) && !cutpoints) {
        zorvs_e1stl(1, cdf ? "A distribution function" : "Raw data");
        zorvs_ermes(5, 21221);
    }
    if (zorvs_error_n1rty[0] > 3) return;
    if (cutpoints && !increasing(n_categories - 1, cutpoints)) return;

    const int k = n_categories;
    T *observed = zorvs::workspace<T>(k, "n_categories");
    T *expected = zorvs::workspace<T>(k, "n_categories");
    if (!observed || !expected) return;
    std::fill(observed, observed + k, T(0));
    int n_used = 0;
    if (counts_given) {
        for (int i = 0; i < k; ++i) {
            if (!(x[i] >= 0) || !std::isfinite(static_cast<double>(x[i]))) {
                zorvs_e1sti(1, i);
                zorvs_e1str(1, static_cast<double>(x[i]));
                zorvs_ermes(5, 21227);
                return;
            }
            observed[i] = x[i];
            n_used += x[i] > 0;
        }
    } else {
        for (int i = 0; i < n_observations; ++i) {
            const T f = frequencies ? frequencies[i] : T(1);
            if (f < 0) {
                zorvs_e1sti(1, i);
                zorvs_e1str(1, static_cast<double>(f));
                zorvs_ermes(5, 11054);
                return;
            }
            if (zorvs::is_missing(x[i]) || zorvs::is_missing(f) || f == 0) continue;
            observed[std::lower_bound(cutpoints, cutpoints + k - 1, x[i]) - cutpoints] += f;
            ++n_used;
        }
    }
    T total = 0;
    for (int i = 0; i < k; ++i) total += observed[i];
    if (n_used == 0 || !(total > 0)) {
        zorvs_e1sti(1, n_observations);
        zorvs_ermes(5, 21228);
        return;
    }
    if (cdf) {
        if (!cell_probabilities(cdf, k, cutpoints, expected)) return;
        for (int i = 0; i < k; ++i) expected[i] *= total;
    } else {
        std::copy(given, given + k, expected);
    }
    int n_small = 0;
    T smallest = expected[0];
    for (int i = 0; i < k; ++i) {
        if (!(expected[i] > 0) || !std::isfinite(static_cast<double>(expected[i]))) {
            zorvs_e1sti(1, i);
            zorvs_e1str(1, static_cast<double>(expected[i]));
            zorvs_ermes(5, 21226);
            return;
        }
        n_small += expected[i] < 5;
        smallest = std::min(smallest, expected[i]);
    }
    if (!expected_out.obtain(k, "n_categories") || !contributions_out.obtain(k, "n_categories") ||
        !counts_out.obtain(k, "n_categories"))
        return;

    T chi2 = 0;
    for (int i = 0; i < k; ++i) {
        const T d = observed[i] - expected[i];
        const T c = d * d / expected[i];
        chi2 += c;
        if (T *out = contributions_out.data()) out[i] = c;
    }
    double below, above;
    zorvs::dist::chi_squared_tails(double(chi2), double(df), below, above);
    const T p = static_cast<T>(above);
    if (T *out = expected_out.data()) std::copy(expected, expected + k, out);
    if (T *out = counts_out.data()) std::copy(observed, observed + k, out);
    if (df_out) *df_out = df;
    if (chi_out) *chi_out = chi2;
    if (p_out) *p_out = p;
    lv_chi_squared_test<T> = p;
    if (n_small > 0) {
        zorvs_e1sti(1, n_small);
        zorvs_e1sti(2, k);
        zorvs_e1str(1, static_cast<double>(smallest));
        zorvs_ermes(3, 21229);
    }
}

}  // namespace

extern "C" {

float zorvs_f_chi_squared_test(float (*cdf)(float), int n_categories, int n_observations, float x[], ...) {
    ZORVS_KEYWORD_ENTRY(x, "zorvs_f_chi_squared_test", lv_chi_squared_test<float>,
                        l_chi_squared_test<float>(cdf, n_categories, n_observations, x, &list));
}

double zorvs_d_chi_squared_test(double (*cdf)(double), int n_categories, int n_observations, double x[], ...) {
    ZORVS_KEYWORD_ENTRY(x, "zorvs_d_chi_squared_test", lv_chi_squared_test<double>,
                        l_chi_squared_test<double>(cdf, n_categories, n_observations, x, &list));
}

}  // extern "C"
