// normality.cpp - tests of normality of one sample: the Shapiro-Wilk W test
// in Royston's approximation (Appl. Statist. 31 (1982) 115-124 and 176-180,
// algorithm AS 181), the default, and the Lilliefors test (Kolmogorov-
// Smirnov with estimated mean and variance) with the p-value of Dallal and
// Wilkinson (Amer. Statist. 40 (1986) 294-296).  The routine returns the
// p-value.
//
// Shapiro-Wilk, on m sorted values: the weights of the inner pairs are the
// expected normal order statistics z_i = -Phi^-1(p_i), with p_i from
// Royston's fit to the plotting positions (constants A to G and the small-m
// correction P, Q, R); the weight of the extreme pair follows from the sum
// of squares S of the others, so that the weights have unit norm.  Below
// m = 7 the weights are Shapiro and Wilk's exact ones.  The p-value comes
// from a closed form at m = 3, Royston's polynomials of a log transform for
// m = 4 to 6, and a normalising power transform of 1 - W above.
//
// Lilliefors: D = max over tied groups of F - e0 and e - F, F the normal
// distribution function at the standardised value, e0 and e the empirical
// distribution below and through the group; the p-value formula of Dallal
// and Wilkinson holds for p up to 0.1, and is reported as 0.01 or 0.5 at its
// limits.
//
// Values are read in place when x is already ascending with every NaN at
// its end; otherwise the valid values are copied to a work vector and
// sorted.  x is never changed.
//
// Settled here:
//  - The ties message (6, 20208) is raised once per call, and only when some
//    tied group holds two or more values: a group closed by a strictly larger
//    value is the normal case and not worth a warning.
//  - All values equal is told by the smallest and the largest being equal,
//    not by a sum of squares that rounding may leave just above 0.
//  - W is capped at 1, which rounding can pass for evenly spaced values, so
//    that the transforms of 1 - W stay defined; for m of 4 to 6 a W at or
//    below the least value the weights allow gives p = 0.
//  - The weights z_i come from the normal quantile to working accuracy
//    (zorvs::dist::normal_quantile): the seven-digit inverse alone would
//    leave W uncertain at 1e-9.
//  - The upper tails 1 - Phi(z) are formed as Phi(-z), which keeps their
//    relative accuracy for small p.
//  - An infinite observation is refused with (4, 20209), its index from 0
//    and value; the moments are taken of the values divided by the largest
//    magnitude, so that finite values near the overflow limit are tested.
//  - A null x is refused with (5, 150); a null output pointer asks for
//    nothing.  After a refusal neither output is written and the result is
//    the missing value.

#include <algorithm>
#include <cmath>
#include <cstdarg>

#include "dist/dist.hpp"
#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "frame/raise.hpp"
#include "frame/twin.hpp"
#include "kernels/sort.hpp"
#include "zorvstat.h"

namespace {

template <class T>
constinit thread_local T lv_normality = 0;

// Shapiro and Wilk's exact weights a(m, i) for m = 3 to 6.
constexpr double small_weights[4][3] = {
    {0.70710678, 0, 0}, {0.6869, 0.1678, 0}, {0.6647, 0.2412, 0}, {0.6431, 0.2806, 0.0875}};
// Royston's approximation of the expected normal order statistics, by
// column i = 1 to 4 (the last serves every i from 4 on).
constexpr double coef_a[4] = {0.419885, 0.450536, 0.456936, 0.468488};
constexpr double coef_b[4] = {0.112063, 0.12177, 0.239299, 0.215159};
constexpr double coef_c[4] = {0.080122, 0.111348, -0.211867, -0.115049};
constexpr double coef_d[4] = {0.474798, 0.469051, 0.208597, 0.259784};
constexpr double coef_e[4] = {0.282765, 0.304856, 0.407708, 0.414093};
constexpr double coef_f = -0.283833, coef_g = -0.106136;
// The small-sample correction delta, i = 1 to 7.
constexpr double delta_p[7] = {9.5, 28.7, 1.9, 0, -7, -6.2, -1.6};
constexpr double delta_q[7] = {-6195, -9569, -6728, -17614, -8278, -3570, 1075};
constexpr double delta_r[7] = {93380, 175160, 410400, 2157000, 2376000, 2065000, 2065000};
// Significance polynomials, coefficients in rising powers.
constexpr double sig_c1_small[4] = {0.118898, 0.133414, 0.327907, 0};
constexpr double sig_c2_small[4] = {-0.37542, -0.492145, -1.124332, -0.199422};
constexpr double sig_c3_small[4] = {-3.15805, 0.729399, 3.01855, 1.558776};
constexpr double sig_c1_large[7] = {0.480385, 0.318828, 0, -0.0241665, 0.00879701, 0.002989646, 0};
constexpr double sig_c2_large[7] = {-1.91487, -1.37888, -0.04183209, 0.1066339, -0.03513666, -0.01504614, 0};
constexpr double sig_c3_large[7] = {-3.73538,    -1.015807,   -0.331885,  0.1773538,
                                    -0.01638782, -0.03215018, 0.003852646};
// For m = 4 to 6: [m - 4][0] after the log branch (y above 1.4), [1] otherwise.
constexpr double sig_small_m[3][2][5] = {
    {{-0.287696, 1.78953, -0.180114, 0, 0}, {-1.26233, 1.87969, 0.0649583, -0.0475604, -0.0139682}},
    {{-1.63638, 5.60924, -3.63738, 1.08439, 0}, {-2.28135, 2.26186, 0, 0, -0.00865763}},
    {{-5.991908, 21.04575, -24.58061, 13.78661, -2.835295}, {-3.30623, 2.76287, -0.83484, 1.20857, -0.50759}}};
// 6 / pi and pi / 3, as the p-value transforms of m below 7 write them.
constexpr double six_over_pi = 1.90985932, pi_over_3 = 1.04719755;

double polynomial(const double *c, int terms, double u) {
    double s = c[terms - 1];
    for (int k = terms - 2; k >= 0; --k) s = s * u + c[k];
    return s;
}

// Mean and sum of squares about it of the n ascending values x, each divided
// by the power of two of the larger extreme magnitude (returned), so that the squares
// of values near the overflow limit stay finite; both tests are invariant
// under the scale.
template <class T>
double l_scaled_moments(int n, const T *x, double *mean, double *ss) {
    const double largest = std::max(std::fabs(static_cast<double>(x[0])), std::fabs(static_cast<double>(x[n - 1])));
    const double scale = largest > 0 ? std::ldexp(1.0, std::ilogb(largest)) : 1.0;  // exact divisions
    double sum = 0;
    for (int i = 0; i < n; ++i) sum += x[i] / scale;
    *mean = sum / n;
    double squares = 0;
    for (int i = 0; i < n; ++i) squares += (x[i] / scale - *mean) * (x[i] / scale - *mean);
    *ss = squares;
    return scale;
}

// Shapiro-Wilk W and its p-value of the m ascending values x.
template <class T>
void l_shapiro_wilk(int m, const T *x, T *w_out, T *p_out) {
    double mean, ss;
    const double scale = l_scaled_moments(m, x, &mean, &ss);
    if (x[0] == x[m - 1] || ss == 0) {
        zorvs_ermes(3, 20201);
        *w_out = 0;
        *p_out = 1;
        return;
    }
    const double dm = m;
    double b = 0, s = 0;
    for (int i = 2; i <= m / 2; ++i) {
        double z;
        if (m < 7) {
            z = small_weights[m - 3][i - 1];
        } else {
            const int j = std::min(i, 4) - 1;
            const double base = (i - coef_a[j]) / (dm + coef_d[j]);
            const double e = i <= 3 ? coef_e[j] : coef_e[3] + coef_f / (i + coef_g);
            const double t = std::pow(base, e);
            double delta = 0;
            if (i <= 7 && m <= 40 && (i == 4 || m <= 20))
                delta = (delta_p[i - 1] + (delta_q[i - 1] + delta_r[i - 1] / (dm * dm)) / (dm * dm)) * 1e-6;
            const double p = base + t * (coef_b[j] + t * coef_c[j]) / dm - delta;
            z = -static_cast<double>(zorvs::dist::normal_quantile(static_cast<T>(p), static_cast<T>(1 - p)));
            s += z * z;
        }
        b += z * (x[m - i] / scale - x[i - 1] / scale);
    }
    double a1, h;
    if (m < 7) {
        a1 = small_weights[m - 3][0];
        h = 0.5;
    } else {
        const double q = m < 21 ? dm - 1 : dm;
        const double f = 2 * (6 * q + 7) / (6 * q + 13) *
                         std::sqrt(std::exp(1.0) / (q + 2) * std::pow((q + 1) / (q + 2), q - 2));
        a1 = std::sqrt(f * s / (1 - f));
        h = s + a1 * a1;
    }
    b += a1 * (x[m - 1] / scale - x[0] / scale);
    const double w = std::min(b * b / (2 * h * ss), 1.0);
    double p;
    if (m == 3) {  // the eight-digit constants can leave p a hair below 0
        p = std::max(0.0, six_over_pi * (std::atan(std::sqrt(w / (1 - w))) - pi_over_3));
    } else if (m < 7) {
        const double e = a1 * a1 * dm / (dm - 1);
        if (w <= e) {
            p = 0;
        } else if (w >= 1) {
            p = 1;
        } else {
            const double y = std::log((w - e) / (1 - w));
            const bool log_branch = y > 1.4;
            const double v = log_branch ? std::log(y) : y;
            double hh = polynomial(sig_small_m[m - 4][log_branch ? 0 : 1], 5, v);
            if (log_branch) hh = std::exp(hh);
            const double g = std::exp(hh);
            p = std::clamp(six_over_pi * (std::asin(std::sqrt((g + 0.75) / (g + 1))) - pi_over_3), 0.0, 1.0);
        }
    } else {
        const bool small = m <= 20;
        const double u = std::log(dm) - (small ? 3.0 : 5.0);
        const int terms = small ? 4 : 7;
        const double lambda = polynomial(small ? sig_c1_small : sig_c1_large, terms, u);
        const double mu = std::exp(polynomial(small ? sig_c2_small : sig_c2_large, terms, u));
        const double sigma = std::exp(polynomial(small ? sig_c3_small : sig_c3_large, terms, u));
        const double z = (std::pow(1 - w, lambda) - mu) / sigma;
        p = zorvs::dist::normal_cdf(static_cast<T>(-z));
    }
    *w_out = static_cast<T>(w);
    *p_out = static_cast<T>(p);
}

// Lilliefors D and its p-value of the n ascending values x (n of 5 or more);
// false when all values are equal.
template <class T>
bool l_lilliefors(int n, const T *x, T *d_out, T *p_out) {
    if (x[0] == x[n - 1]) {
        zorvs_ermes(4, 20204);
        return false;
    }
    double mean, ss;
    const double scale = l_scaled_moments(n, x, &mean, &ss);
    const double sd = std::sqrt(ss / (n - 1));
    // The values are standardised as they are read, in the precision of the
    // twin, and grouped by their standardised values.
    auto standard = [&](int i) { return static_cast<T>((x[i] / scale - mean) / sd); };
    double d_plus = 0, d_minus = 0, e0 = 0;
    bool tied = false;
    for (int i = 0; i < n;) {
        const T z = standard(i);
        int end = i + 1;
        while (end < n && !(standard(end) > z)) ++end;
        if (end - i > 1) tied = true;
        const double f = zorvs::dist::normal_cdf(z);
        const double e = static_cast<double>(end) / n;
        d_plus = std::max({d_plus, e - f, e0 - f});
        d_minus = std::max({d_minus, f - e, f - e0});
        e0 = e;
        i = end;
    }
    if (tied) zorvs_ermes(6, 20208);
    const double d = std::max(d_plus, d_minus);
    const double n_eff = std::min(n, 100);
    const double ds = n > 100 ? d * std::pow(std::floor(n / 100.0), 0.49) : d;
    double p = std::exp(-7.01256 * ds * ds * (n_eff + 2.78019) + 2.99587 * ds * std::sqrt(n_eff + 2.78019) -
                        0.122119 + 0.974598 / std::sqrt(n_eff) + 1.67997 / n_eff);
    if (p < 0.01) {
        p = 0.01;
        zorvs_ermes(1, 20205);
    } else if (p > 0.1) {
        p = 0.5;
        zorvs_ermes(1, 20206);
    }
    *d_out = static_cast<T>(d);
    *p_out = static_cast<T>(p);
    return true;
}

template <class T>
void l_normality_test(int n_observations, const T *x, va_list *list) {
    lv_normality<T> = zorvs::missing<T>();
    zorvs::KeywordReader kw(list, 2);
    T *w_out = nullptr, *d_out = nullptr;
    bool lilliefors = false;
    for (int key = kw.keyword(); key != 0; key = kw.keyword()) {
        switch (key) {
        case ZORVS_LILLIEFORS: d_out = kw.pointer<T>(), lilliefors = true; break;
        case ZORVS_SHAPIRO_WILK: w_out = kw.pointer<T>(); break;
        default: kw.unknown(key); return;
        }
    }
    int arg_no = 0;
    if (lilliefors) zorvs_c1iarg(n_observations, "n_observations", 5, 0, &arg_no);
    else zorvs_c1iarg(n_observations, "n_observations", 3, 2000, &arg_no);
    zorvs_null_pointer("x", -1, x);
    if (zorvs_error_n1rty[0] > 3) return;

    // In place if ascending with every NaN at the end; else a sorted copy.
    int valid = 0;
    while (valid < n_observations && !zorvs::is_missing(x[valid])) ++valid;
    bool in_place = true;
    for (int i = valid; i < n_observations && in_place; ++i) in_place = zorvs::is_missing(x[i]);
    for (int i = 1; i < valid && in_place; ++i) in_place = !(x[i] < x[i - 1]);
    const T *sorted = x;
    if (!in_place) {
        T *work = zorvs::workspace<T>(n_observations, "n_observations");
        if (!work) return;
        valid = 0;
        for (int i = 0; i < n_observations; ++i)
            if (!zorvs::is_missing(x[i])) work[valid++] = x[i];
        if (valid > 0) zorvs::sort::svrgn(valid, work, work);
        sorted = work;
    }

    if (valid > 0 && (std::isinf(sorted[0]) || std::isinf(sorted[valid - 1]))) {
        int at = 0;
        while (!std::isinf(x[at])) ++at;
        zorvs::raise(4, 20209, at, x[at]);
        return;
    }
    T statistic = 0, p = 0;
    if (lilliefors) {
        if (valid <= 4) {
            zorvs::raise(4, 20202, valid);
            return;
        }
        if (!l_lilliefors<T>(valid, sorted, &statistic, &p)) return;
        if (d_out) *d_out = statistic;
    } else {
        if (valid < 3) {
            zorvs::raise(5, 20200, valid);
            return;
        }
        l_shapiro_wilk<T>(valid, sorted, &statistic, &p);
        if (w_out) *w_out = statistic;
    }
    lv_normality<T> = p;
}

}  // namespace

extern "C" {

float zorvs_f_normality_test(int n_observations, float x[], ...) {
    ZORVS_KEYWORD_ENTRY(x, "zorvs_f_normality_test", lv_normality<float>,
                        l_normality_test<float>(n_observations, x, &list));
}

double zorvs_d_normality_test(int n_observations, double x[], ...) {
    ZORVS_KEYWORD_ENTRY(x, "zorvs_d_normality_test", lv_normality<double>,
                        l_normality_test<double>(n_observations, x, &list));
}

}  // extern "C"
