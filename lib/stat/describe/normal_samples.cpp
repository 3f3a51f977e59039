// normal_samples.cpp - inference on the mean and variance of one normal
// sample, and on the difference of means and the ratio of variances of two.
//
// One sample: Student's t interval and test for the mean, the chi-squared
// interval and test for the variance, (n - 1) s^2 / sigma0^2 on n - 1
// degrees of freedom.  Two samples: the difference of means with the pooled
// variance (n1 + n2 - 2 degrees of freedom) and with Welch's separate
// variances and Satterthwaite's degrees of freedom (Welch 1947, Biometrika
// 34; Satterthwaite 1946, Biometrics Bulletin 2), and the F test and
// interval for the ratio of variances, s1^2 / s2^2 on (n1 - 1, n2 - 1).
// Textbook forms, as in Snedecor and Cochran, Statistical Methods, ch. 5-6.
//
// Each sample's mean and centred sum of squares come from one updating pass
// on its values less the first value (describe.hpp), so that a large
// offset costs no digits.  NaN marks a missing value and is left out.
//
// Choices, documented with the prototypes in zorvstat.h:
//  - The result is one vector per call (17 cells for one sample, 30 for
//    two) holding every estimate, interval and test, so that one call
//    answers the usual questions and no keyword is needed per statistic.
//  - Each test gives its two-sided p-value and both one-sided ones; the
//    hypotheses default to mean 0 (difference 0) and variance 1 (ratio 1).
//  - A sample needs 2 values other than NaN, both for the pooled and the
//    Welch forms (as t.test); fewer is terminal.  Constant data are no
//    error: the tests that divide by a zero standard error are NaN, with a
//    warning.
//  - A confidence level of 0 or less leaves its limits NaN, as in the
//    simple statistics.
// The results go into a local table first and reach the caller's storage
// only when the call has succeeded, so a terminal error leaves it as it was.

#include <cmath>
#include <cstdarg>

#include "dist/dist.hpp"
#include "dist/tails.hpp"
#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "frame/raise.hpp"
#include "stat/describe/describe.hpp"
#include "zorvstat.h"

namespace {

using zorvs::describe::PairSums;

// Cells of the one-sample result.
enum OneCell {
    O_COUNT, O_MEAN, O_VARIANCE, O_STD_DEV, O_DF, O_MEAN_LOWER, O_MEAN_UPPER, O_VARIANCE_LOWER, O_VARIANCE_UPPER,
    O_T, O_T_TEST = O_T, O_CHI_SQUARED = O_T + 4, O_CELLS = O_CHI_SQUARED + 4
};
// Cells of the two-sample result.
enum TwoCell {
    W_COUNT1, W_COUNT2, W_MEAN1, W_MEAN2, W_VARIANCE1, W_VARIANCE2, W_DIFFERENCE,
    W_POOLED_VARIANCE, W_POOLED_DF, W_POOLED_LOWER, W_POOLED_UPPER, W_POOLED_T,
    W_WELCH_DF = W_POOLED_T + 4, W_WELCH_LOWER, W_WELCH_UPPER, W_WELCH_T,
    W_F = W_WELCH_T + 4, W_F_DF1, W_F_DF2, W_RATIO_LOWER, W_RATIO_UPPER, W_F_P, W_CELLS = W_F_P + 3
};

// Mean and centred sum of squares of one sample, NaN left out.  Returns the
// number of values present; a sample with fewer than two raises (5, 21101),
// i1 = the sample's number, i2 = the values present.
template <class T>
int sample_sums(int n, const T *x, int sample, PairSums<T> &s) {
    s = PairSums<T>{};
    T shift = zorvs::missing<T>();
    int present = 0;
    for (int i = 0; i < n; ++i) {
        const T v = x[i];
        if (zorvs::is_missing(v)) continue;
        if (present++ == 0) shift = v;
        zorvs::describe::add_pair(s, v - shift, v - shift, T(1), T(1));
    }
    if (present < n) zorvs::raise(3, 21100, n - present, sample);
    if (present < 2) {
        zorvs::raise(5, 21101, sample, present);
        return present;
    }
    s.mean_a += shift;
    return present;
}

// Tail probabilities and quantiles in double precision for both twins
// (dist/tails.hpp): the library's t and chi-squared distribution functions
// carry some 8 digits, the tests here keep the 14 or so of the incomplete
// beta and gamma ratios, in either tail.
using zorvs::dist::chi_squared_quantile;
using zorvs::dist::f_lower;
using zorvs::dist::f_quantile;
using zorvs::dist::gamma_ratios;
using zorvs::dist::t_quantile_upper;
using zorvs::dist::t_upper;

// The tails of a statistic, two-sided, below and above, into p[0..2].
template <class T>
void two_sided(double below, double above, T *p) {
    p[0] = T(std::fmin(1.0, 2 * std::fmin(below, above)));
    p[1] = T(below);
    p[2] = T(above);
}

// Half width of the t interval at level (per cent), or NaN with no level.
template <class T>
T t_half_width(T level, T df, T standard_error) {
    if (!(level > T(0))) return zorvs::missing<T>();
    return T(t_quantile_upper(0.5 - double(level) / 200, df)) * standard_error;
}

// The t statistic (estimate - hypothesis) / standard error with its tails
// into cells [at, at + 3], and the interval estimate -+ half width into
// [lower, upper].  A standard error of 0 leaves the test NaN and raises
// (3, 21102), i1 = the test's number.
template <class T>
void t_inference(T estimate, T hypothesis, T standard_error, T df, T level, T *lower, T *at, int test) {
    if (!(standard_error > T(0))) {
        zorvs::raise(3, 21102, test);
        return;
    }
    const T half = t_half_width(level, df, standard_error);
    lower[0] = estimate - half;
    lower[1] = estimate + half;
    const T t = at[0] = (estimate - hypothesis) / standard_error;
    two_sided(t_upper(-t, df), t_upper(t, df), at + 1);
}

// The check of a confidence level (per cent): at or above 100 raises
// `code` with r1 = the level.
template <class T>
void check_level(T level, int code) {
    if (level >= T(100)) zorvs::raise(5, code, level);
}

// The hypothesised variance or ratio must be positive: (5, 21103), l1 = the
// keyword, r1 = the value.
template <class T>
void check_positive(T value, const char *keyword) {
    if (!(value > T(0))) {
        zorvs_e1stl(1, keyword);
        zorvs::raise(5, 21103, value);
    }
}
// A hypothesised mean or difference must be finite: (5, 21108), l1 = the
// keyword, r1 = the value.
template <class T>
void check_finite(T value, const char *keyword) {
    if (!std::isfinite(value)) {
        zorvs_e1stl(1, keyword);
        zorvs::raise(5, 21108, value);
    }
}

// Reads a level by value or by address.
template <class T>
T level_by_address(zorvs::KeywordReader &kw, const char *name, T old) {
    const T *p = kw.pointer<T>();
    if (p) return *p;
    zorvs_null_pointer(name, -1, nullptr);
    return old;
}

template <class T>
constinit thread_local T *lv_one_sample = nullptr;
template <class T>
constinit thread_local T *lv_two_sample = nullptr;

// The keywords both routines read; false for one they do not know.
template <class T>
struct Levels {
    T means = T(95), variances = T(95);
    bool read(int k, zorvs::KeywordReader &kw) {
        switch (k) {
            case ZORVS_CONFIDENCE_MEANS: means = kw.real<T>(); return true;
            case ZORVS_CONFIDENCE_MEANS_ADR: means = level_by_address(kw, "ZORVS_CONFIDENCE_MEANS_ADR", means); return true;
            case ZORVS_CONFIDENCE_VARIANCES: variances = kw.real<T>(); return true;
            case ZORVS_CONFIDENCE_VARIANCES_ADR:
                variances = level_by_address(kw, "ZORVS_CONFIDENCE_VARIANCES_ADR", variances);
                return true;
            default: return false;
        }
    }
    void check() const {
        check_level(means, 11064);
        check_level(variances, 11065);
    }
};

template <class T>
void copy_out(zorvs::OutputPair<T> &result, const T *cells, int n) {
    if (zorvs_error_n1rty[0] > 3 || !result.obtain(n)) return;
    for (int k = 0; k < n; ++k) result.data()[k] = cells[k];
}

template <class T>
void l_normal_one_sample(int n_observations, T *x, va_list *list) {
    zorvs::OutputPair<T> result(lv_one_sample<T>);
    zorvs::KeywordReader kw(list, 2);
    Levels<T> levels;
    T mean0 = T(0), variance0 = T(1);
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        if (levels.read(k, kw)) continue;
        switch (k) {
            case ZORVS_HYPOTHESIZED_MEAN: mean0 = kw.real<T>(); break;
            case ZORVS_HYPOTHESIZED_VARIANCE: variance0 = kw.real<T>(); break;
            case ZORVS_RETURN_USER: result.take_user(kw.pointer<T>()); break;
            default: kw.unknown(k); return;
        }
    }
    if (zorvs_error_n1rty[0] > 0) return;
    int arg_no = 0;
    zorvs_c1iarg(n_observations, "n_observations", 1, 0, &arg_no);
    if (!x) zorvs_null_pointer("x", -1, nullptr);
    levels.check();
    check_positive(variance0, "ZORVS_HYPOTHESIZED_VARIANCE");
    check_finite(mean0, "ZORVS_HYPOTHESIZED_MEAN");
    if (zorvs_error_n1rty[0] > 3) return;

    PairSums<T> s;
    const T count = T(sample_sums(n_observations, x, 1, s));
    if (zorvs_error_n1rty[0] > 3) return;
    T cells[O_CELLS];
    for (T &c : cells) c = zorvs::missing<T>();
    const T df = count - T(1), variance = s.ss_a / df;
    cells[O_COUNT] = count;
    cells[O_MEAN] = s.mean_a;
    cells[O_VARIANCE] = variance;
    cells[O_STD_DEV] = std::sqrt(variance);
    cells[O_DF] = df;
    t_inference(s.mean_a, mean0, cells[O_STD_DEV] / std::sqrt(count), df, levels.means, cells + O_MEAN_LOWER,
                cells + O_T_TEST, 1);
    // Variance: (n - 1) s^2 / chi2 at the two tails of the level.
    if (levels.variances > T(0)) {
        const double alpha = 0.5 * (1 - double(levels.variances) / 100);
        cells[O_VARIANCE_LOWER] = T(s.ss_a / chi_squared_quantile(1 - alpha, df));
        cells[O_VARIANCE_UPPER] = T(s.ss_a / chi_squared_quantile(alpha, df));
    }
    const T chi = s.ss_a / variance0;
    double below, above;
    gamma_ratios(0.5 * df, 0.5 * double(chi), below, above);
    cells[O_CHI_SQUARED] = chi;
    two_sided(below, above, cells + O_CHI_SQUARED + 1);
    copy_out(result, cells, O_CELLS);
}

template <class T>
void l_normal_two_sample(int n1, T *x1, int n2, T *x2, va_list *list) {
    zorvs::OutputPair<T> result(lv_two_sample<T>);
    zorvs::KeywordReader kw(list, 4);
    Levels<T> levels;
    T difference0 = T(0), ratio0 = T(1);
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        if (levels.read(k, kw)) continue;
        switch (k) {
            case ZORVS_HYPOTHESIZED_DIFFERENCE: difference0 = kw.real<T>(); break;
            case ZORVS_HYPOTHESIZED_RATIO: ratio0 = kw.real<T>(); break;
            case ZORVS_RETURN_USER: result.take_user(kw.pointer<T>()); break;
            default: kw.unknown(k); return;
        }
    }
    if (zorvs_error_n1rty[0] > 0) return;
    int arg_no = 0;
    zorvs_c1iarg(n1, "n_observations_1", 1, 0, &arg_no);
    zorvs_c1iarg(n2, "n_observations_2", 1, 0, &arg_no);
    if (!x1) zorvs_null_pointer("x1", -1, nullptr);
    if (!x2) zorvs_null_pointer("x2", -1, nullptr);
    levels.check();
    check_positive(ratio0, "ZORVS_HYPOTHESIZED_RATIO");
    check_finite(difference0, "ZORVS_HYPOTHESIZED_DIFFERENCE");
    if (zorvs_error_n1rty[0] > 3) return;

    PairSums<T> a, b;
    const T m1 = T(sample_sums(n1, x1, 1, a));
    const T m2 = T(sample_sums(n2, x2, 2, b));
    if (zorvs_error_n1rty[0] > 3) return;
    T cells[W_CELLS];
    for (T &c : cells) c = zorvs::missing<T>();
    const T v1 = a.ss_a / (m1 - T(1)), v2 = b.ss_a / (m2 - T(1));
    const T difference = a.mean_a - b.mean_a;
    cells[W_COUNT1] = m1;
    cells[W_COUNT2] = m2;
    cells[W_MEAN1] = a.mean_a;
    cells[W_MEAN2] = b.mean_a;
    cells[W_VARIANCE1] = v1;
    cells[W_VARIANCE2] = v2;
    cells[W_DIFFERENCE] = difference;

    // Pooled: one variance from both sums of squares.
    const T df = m1 + m2 - T(2), pooled = (a.ss_a + b.ss_a) / df;
    cells[W_POOLED_VARIANCE] = pooled;
    cells[W_POOLED_DF] = df;
    t_inference(difference, difference0, std::sqrt(pooled * (T(1) / m1 + T(1) / m2)), df, levels.means,
                cells + W_POOLED_LOWER, cells + W_POOLED_T, 1);

    // Welch: separate variances, Satterthwaite's degrees of freedom.
    const T e1 = v1 / m1, e2 = v2 / m2, e = e1 + e2;
    if (e > T(0)) cells[W_WELCH_DF] = e * e / (e1 * e1 / (m1 - T(1)) + e2 * e2 / (m2 - T(1)));
    t_inference(difference, difference0, std::sqrt(e), cells[W_WELCH_DF], levels.means, cells + W_WELCH_LOWER,
                cells + W_WELCH_T, 2);

    // F: the ratio of the variances over the hypothesised ratio.  The upper
    // tail is the lower tail of the reciprocal on (df2, df1), which keeps
    // the digits of a small p.
    const T df1 = m1 - T(1), df2 = m2 - T(1);
    cells[W_F_DF1] = df1;
    cells[W_F_DF2] = df2;
    if (!(v1 > T(0) && v2 > T(0))) {
        zorvs::raise(3, 21102, 3);
    } else {
        const T ratio = v1 / v2, f = ratio / ratio0;
        cells[W_F] = f;
        two_sided(f_lower(f, df1, df2), f_lower(T(1) / f, df2, df1), cells + W_F_P);
        if (levels.variances > T(0)) {
            const double alpha = 0.5 * (1 - double(levels.variances) / 100);
            cells[W_RATIO_LOWER] = T(ratio / f_quantile(1 - alpha, df1, df2));
            cells[W_RATIO_UPPER] = T(ratio / f_quantile(alpha, df1, df2));
        }
    }
    copy_out(result, cells, W_CELLS);
}

}  // namespace

extern "C" {

float *zorvs_f_normal_one_sample(int n_observations, float x[], ...) {
    ZORVS_KEYWORD_ENTRY(x, "zorvs_f_normal_one_sample", lv_one_sample<float>,
                        l_normal_one_sample<float>(n_observations, x, &list));
}
double *zorvs_d_normal_one_sample(int n_observations, double x[], ...) {
    ZORVS_KEYWORD_ENTRY(x, "zorvs_d_normal_one_sample", lv_one_sample<double>,
                        l_normal_one_sample<double>(n_observations, x, &list));
}
float *zorvs_f_normal_two_sample(int n_observations_1, float x1[], int n_observations_2, float x2[], ...) {
    ZORVS_KEYWORD_ENTRY(x2, "zorvs_f_normal_two_sample", lv_two_sample<float>,
                        l_normal_two_sample<float>(n_observations_1, x1, n_observations_2, x2, &list));
}
double *zorvs_d_normal_two_sample(int n_observations_1, double x1[], int n_observations_2, double x2[], ...) {
    ZORVS_KEYWORD_ENTRY(x2, "zorvs_d_normal_two_sample", lv_two_sample<double>,
                        l_normal_two_sample<double>(n_observations_1, x1, n_observations_2, x2, &list));
}

}  // extern "C"
