// oneway.cpp - one-way analysis of variance: zorvs_f_anova_oneway and its
// double twin.
//
// The groups lie one after another in y, group i holding n[i] responses; a
// NaN is a missing response and is passed over.  The return value is the
// p-value of the F test; keywords give out the analysis of variance table
// (the 15 entries of zorvs_g1aov, between groups in the place of
// regression, within groups in the place of error, entry 13 the grand
// mean), the non-missing counts, means and standard deviations of the
// groups, and simultaneous confidence intervals on all differences of two
// means by one of five methods (Tukey, Dunn-Sidak, Bonferroni, Scheffe, one
// at a time).
//
// Sums of squares.  Every response is taken less the first non-missing
// response of all (the shift): for responses that share their leading
// digits, as in the NIST StRD one-way sets built on 1e12 or 1e13, these
// differences are exact, so the group sums carry no rounding of the common
// part and the means and squares lose nothing to it.  The within-group sum
// of a group is the corrected two-pass sum  sum (d - dbar)^2 - (sum (d -
// dbar))^2 / n  (T. F. Chan, G. H. Golub and R. J. LeVeque 1983, "Algorithms
// for computing the sample variance", Amer. Statist. 37, 242-247), and the
// between-group sum is  sum n_i (dbar_i - dbar)^2.  The single twin adds in
// double.
//
// Settled here:
// - A group with no non-missing response (all NaN, or a size of 0) is not
//   a group for the degrees of freedom; its mean and standard deviation are
//   NaN by the guarded division.  A comparison keyword then refuses it with
//   (5, 11157), since its count is below 1.
// - A group of one non-missing response has a NaN standard deviation (0 / 0
//   by the guarded division), and adds nothing within groups.
// - A confidence level given with no comparison keyword has no effect.
// - A refused call (two comparison keywords, a negative group size, n_groups
//   below 1) returns NaN, not 0, which would read as a significant test.
// - The confidence level is checked before the other conditions of the
//   comparisons, so that a warning about a low level (6, 20404) never
//   stands in the place of a refusal raised after it.  A level of 0 gives
//   intervals of width 0 by every method but Bonferroni's (the 0 quantile
//   of F is taken as 0 rather than asked of the F inverse, which refuses it).
// - Outputs are failed by a type above 3 other than 6: the warning about a
//   low level leaves the intervals delivered.  On a failure the addresses
//   given with the pointer keywords are set to null; the caller's own
//   arrays keep what was written into them, so that after (5, 11220) (a
//   comparison asked for with missing responses) a table in the caller's
//   storage still stands, as does the p-value returned.
// - The comparison table is written row by row as it is computed, the same
//   table as one built by columns and transposed.
#include <cmath>
#include <cstddef>
#include <type_traits>

#include "dist/dist.hpp"
#include "frame/checks.hpp"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "stat/multivariate/failed_addresses.hpp"
#include "stat/regress/regress.hpp"
#include "zorvstat.h"

namespace {

template <class T>
constinit thread_local T lv_p_value = T(0);

// The accumulators: double for both twins.
template <class T>
using Wide = std::conditional_t<std::is_same_v<T, float>, double, T>;

enum Method { tukey = 0, dunn_sidak = 1, bonferroni = 2, scheffe = 3, one_at_a_time = 4 };
// The keyword pair of each method, in the order of Method.
constexpr int comparison_keys[5][2] = {{ZORVS_TUKEY, ZORVS_TUKEY_USER},
                                       {ZORVS_DUNN_SIDAK, ZORVS_DUNN_SIDAK_USER},
                                       {ZORVS_BONFERRONI, ZORVS_BONFERRONI_USER},
                                       {ZORVS_SCHEFFE, ZORVS_SCHEFFE_USER},
                                       {ZORVS_ONE_AT_A_TIME, ZORVS_ONE_AT_A_TIME_USER}};

// l_aonew: the table of 15 (aov) and the work table of four columns of k
// (group number from 1, non-missing count, mean, standard deviation).
// Returns the number of missing responses, or -1 after a refusal.
template <class T>
long l_aonew(int k, const int *n, const T *y, T *work, T *aov) {
    static const char *const name = "l_aonew ";
    zorvs_e1psh(name);
    bool refused = false;
    for (int i = 0; i < k; ++i) {
        if (n[i] >= 0) continue;
        zorvs_e1sti(1, i);
        zorvs_e1sti(2, n[i]);
        zorvs_e1sti(3, i + 1);
        zorvs_ermes(5, 11127);
        refused = true;
    }
    if (refused) {
        zorvs_e1pop(name);
        return -1;
    }
    using W = Wide<T>;
    T *number = work, *count = work + k, *mean = work + 2 * k, *sd = work + 3 * k;
    const T nan = zorvs::missing<T>();
    auto divide = [](W a, W b) { return zorvs::check::divide(a, b); };
    W *shifted_mean = zorvs::workspace<W>(static_cast<std::size_t>(k));  // freed at this frame's pop
    if (!shifted_mean) {
        zorvs_e1pop(name);
        return -1;
    }

    // Pass 1: group sums of the shifted responses, and the missing ones.
    W shift = 0, total = 0, total_n = 0;
    bool have_shift = false, differ = false;
    long missing = 0;
    int groups = 0;
    const T *g = y;
    for (int i = 0; i < k; ++i) {
        W sum = 0;
        long nans = 0;
        for (int j = 0; j < n[i]; ++j) {
            const T v = g[j];
            if (zorvs::is_missing(v)) {
                ++nans;
                continue;
            }
            if (!have_shift) {
                shift = v;
                have_shift = true;
            }
            differ = differ || W(v) != shift;
            sum += W(v) - shift;
        }
        const W ni = W(n[i] - nans);
        number[i] = T(i + 1);
        count[i] = T(ni);
        shifted_mean[i] = divide(sum, ni);
        if (ni > 0) ++groups;
        missing += nans;
        total += sum;
        total_n += ni;
        g += n[i];
    }
    const W grand = divide(total, total_n);

    // Pass 2: the sums of squares and the standard deviations.
    W between = 0, within = 0;
    g = y;
    for (int i = 0; i < k; ++i) {
        const W ni = W(count[i]), dbar = shifted_mean[i], df = ni > 1 ? ni - 1 : W(0);
        if (differ && ni > 0) {
            W ss = 0, residual = 0;
            for (int j = 0; j < n[i]; ++j) {
                if (zorvs::is_missing(g[j])) continue;
                const W d = (W(g[j]) - shift) - dbar;
                residual += d;
                ss += d * d;
            }
            ss -= residual * residual / ni;
            if (ss < 0) ss = 0;
            within += ss;
            between += ni * (dbar - grand) * (dbar - grand);
            const T variance = T(divide(ss, df));
            sd[i] = zorvs::is_missing(variance) ? nan : std::sqrt(variance);
        } else {
            sd[i] = df > 0 ? T(0) : nan;
        }
        mean[i] = T(shift + dbar);
        g += n[i];
    }
    if (!differ) between = within = 0;
    const W dfb = groups < 1 ? W(0) : W(groups - 1), dfw = groups < 1 ? W(0) : total_n - dfb - 1;
    zorvs::regress::g1aov(T(dfb), T(dfw), T(within), T(between + within), T(shift + grand), aov);
    zorvs_e1pop(name);
    return missing;
}

// The quantile that sets the half widths: q of the studentized range
// (Tukey), t (Dunn-Sidak, Bonferroni, one at a time) or F (Scheffe).
template <class T>
T comparison_quantile(int method, T p, T df, int k, double m) {
    switch (method) {
    case tukey: return zorvs::dist::srin(p, df, T(k));
    case dunn_sidak:
        // 0.5 + 0.5 p^(1/m), by expm1 so that p near 1 keeps its digits
        return p > 0 ? zorvs::dist::t_inverse_cdf(T(1 + 0.5 * std::expm1(std::log(double(p)) / m)), df)
                     : T(0);
    case bonferroni: return zorvs::dist::t_inverse_cdf(T(1 - (1 - double(p)) / (2 * m)), df);
    case scheffe: return p > 0 ? zorvs::dist::F_inverse_cdf(p, T(k - 1), df) : T(0);
    default: return zorvs::dist::t_inverse_cdf(T(1 - (1 - double(p)) / 2), df);
    }
}

// l_s2ipm: the k (k - 1) / 2 rows (i, j, mean_i - mean_j, lower, upper) of
// the pairs i < j, row-major, groups numbered from 1; c the level in per cent.
template <class T>
void l_s2ipm(int k, const int *counts, const T *means, T s2, T df, T c, int method, T *rows) {
    static const char *const name = "l_s2ipm ";
    zorvs_e1psh(name);
    bool refused = false;
    auto refuse = [&](int code) {
        zorvs_ermes(5, code);
        refused = true;
    };
    int arg = 0;
    if (method == tukey) {
        if (!(c >= T(90) && c <= T(99))) {
            zorvs_e1str(1, c);
            refuse(11159);
        }
    } else {
        zorvs::check::c1cip("CONPER", c, &arg, &arg);
        refused = refused || zorvs_error_n1rty[0] == 5;
    }
    if (k < 2) {
        zorvs_e1sti(1, k);
        refuse(11150);
    }
    for (int i = 0; i < k; ++i) {
        if (counts[i] >= 1) continue;
        zorvs_e1sti(1, i + 1);
        zorvs_e1sti(2, counts[i]);
        refuse(11157);
    }
    if (s2 < 0) {
        zorvs_e1str(1, s2);
        refuse(11158);
    }
    if (!(df > 0)) {
        zorvs_e1str(1, df);
        refuse(11160);
    }
    if (refused) {
        zorvs_e1pop(name);
        return;
    }
    const double m = 0.5 * double(k) * double(k - 1);
    const T p = c / T(100), quantile = comparison_quantile(method, p, df, k, m);
    T *row = rows;
    for (int i = 0; i < k; ++i)
        for (int j = i + 1; j < k; ++j, row += 5) {
            const T v = s2 / T(counts[i]) + s2 / T(counts[j]), difference = means[i] - means[j];
            T w;
            if (method == tukey)
                w = quantile * std::sqrt(T(0.5) * v);
            else if (method == scheffe)
                w = std::sqrt(T(k - 1) * quantile * v);
            else
                w = quantile * std::sqrt(v);
            row[0] = T(i + 1);
            row[1] = T(j + 1);
            row[2] = difference;
            row[3] = difference - w;
            row[4] = difference + w;
        }
    zorvs_e1pop(name);
}

template <class T>
void l_anova_oneway(int n_groups, int *n, T *y, va_list *list) {
    constexpr auto rule = zorvs::Failure::above_warning_but_immediate;
    lv_p_value<T> = zorvs::missing<T>();
    zorvs::KeywordReader kw(list, 3);
    zorvs::OutputPair<T> table(rule), means(rule), sds(rule), comparisons(rule);
    zorvs::OutputPair<int> counts(rule);
    // The addresses given with the pointer keywords, nulled when the call fails.
    T **table_address = nullptr, **means_address = nullptr, **sds_address = nullptr, **comparisons_address = nullptr;
    int **counts_address = nullptr;
    T confidence = T(95);
    int method = -1, n_methods = 0;
    auto pointer_form = [&](zorvs::OutputPair<T> &out, T **&address) {
        address = kw.pointer<T *>();
        out.take_address(address);
    };
    auto user_form = [&](zorvs::OutputPair<T> &out, T **&address) {
        address = nullptr;
        out.take_user(kw.pointer<T>());
    };
    for (int key = kw.keyword(); key != 0; key = kw.keyword()) {
        switch (key) {
        case ZORVS_ANOVA_TABLE: pointer_form(table, table_address); break;
        case ZORVS_ANOVA_TABLE_USER: user_form(table, table_address); break;
        case ZORVS_GROUP_COUNTS:
            counts_address = kw.pointer<int *>();
            counts.take_address(counts_address);
            break;
        case ZORVS_GROUP_COUNTS_USER:
            counts_address = nullptr;
            counts.take_user(kw.pointer<int>());
            break;
        case ZORVS_GROUP_MEANS: pointer_form(means, means_address); break;
        case ZORVS_GROUP_MEANS_USER: user_form(means, means_address); break;
        case ZORVS_GROUP_STD_DEVS: pointer_form(sds, sds_address); break;
        case ZORVS_GROUP_STD_DEVS_USER: user_form(sds, sds_address); break;
        case ZORVS_CONFIDENCE: confidence = kw.real<T>(); break;
        case ZORVS_CONFIDENCE_ADR: confidence = *kw.pointer<T>(); break;
        default: {
            int form = -1;  // the method's keyword pair: 0 pointer, 1 caller's storage
            for (int m = 0; m < 5 && form < 0; ++m)
                for (int f = 0; f < 2; ++f)
                    if (key == comparison_keys[m][f]) method = m, form = f;
            if (form < 0) {
                kw.unknown(key);
                return;
            }
            ++n_methods;
            if (form == 0)
                pointer_form(comparisons, comparisons_address);
            else
                user_form(comparisons, comparisons_address);
        }
        }
    }
    auto finish = [&] {
        zorvs::null_failed_addresses(table_address, means_address, sds_address, comparisons_address,
                                     counts_address);
    };
    if (n_methods > 1) {
        zorvs_e1stl(1, "ZORVS_TUKEY, ZORVS_DUNN_SIDAK, ZORVS_BONFERRONI, ZORVS_SCHEFFE, and ZORVS_ONE_AT_A_TIME");
        zorvs_ermes(5, 11117);
        return finish();
    }
    int arg = 0;
    zorvs_c1iarg(n_groups, "n_groups", 1, 0, &arg);
    if (zorvs_error_n1rty[0] > 3) return finish();
    zorvs_null_pointer("n", -1, n);
    zorvs_null_pointer("y", -1, y);
    if (zorvs_error_n1rty[0] > 3) return finish();

    if (!table.obtain(15)) return finish();
    T *aov = table.data() ? table.data() : zorvs::workspace<T>(15);
    T *work = aov ? zorvs::workspace<T>(static_cast<std::size_t>(n_groups) * 4) : nullptr;
    if (!work) return finish();
    const long missing = l_aonew(n_groups, n, y, work, aov);
    if (missing < 0) return finish();
    lv_p_value<T> = aov[9];

    const T *count = work + n_groups, *mean = work + 2 * n_groups, *sd = work + 3 * n_groups;
    if (!counts.obtain(n_groups, "n_groups") || !means.obtain(n_groups, "n_groups") ||
        !sds.obtain(n_groups, "n_groups"))
        return finish();
    for (int i = 0; i < n_groups; ++i) {
        if (counts.data()) counts.data()[i] = static_cast<int>(count[i]);
        if (means.data()) means.data()[i] = mean[i];
        if (sds.data()) sds.data()[i] = sd[i];
    }
    if (method < 0) return finish();
    if (missing > 0) {
        zorvs_ermes(5, 11220);
        return finish();
    }
    const std::size_t pairs = static_cast<std::size_t>(n_groups) * static_cast<std::size_t>(n_groups - 1) / 2;
    int *whole = zorvs::workspace<int>(static_cast<std::size_t>(n_groups));
    if (!whole || !comparisons.obtain(pairs * 5)) return finish();
    for (int i = 0; i < n_groups; ++i) whole[i] = static_cast<int>(count[i]);
    T *rows = comparisons.data();
    for (std::size_t i = 0; i < pairs * 5; ++i) rows[i] = zorvs::missing<T>();
    l_s2ipm(n_groups, whole, mean, zorvs::check::divide(aov[4], aov[1]), aov[1], confidence, method, rows);
    finish();
}

}  // namespace

extern "C" {

float zorvs_f_anova_oneway(int n_groups, int n[], float y[], ...) {
    ZORVS_KEYWORD_ENTRY(y, "zorvs_f_anova_oneway", lv_p_value<float>,
                        l_anova_oneway<float>(n_groups, n, y, &list));
}
double zorvs_d_anova_oneway(int n_groups, int n[], double y[], ...) {
    ZORVS_KEYWORD_ENTRY(y, "zorvs_d_anova_oneway", lv_p_value<double>,
                        l_anova_oneway<double>(n_groups, n, y, &list));
}

}  // extern "C"
