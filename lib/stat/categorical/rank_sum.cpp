// rank_sum.cpp - the Wilcoxon rank-sum (Mann-Whitney) test of two
// independent samples, by the normal approximation under three treatments
// of ties: the rank sum of sample 1 when each tied group gives sample 1 its
// lowest ranks, when it gives it its highest ranks, and with midranks.
//
// The one-sided probabilities of the two extreme treatments carry the
// Edgeworth correction of the normal approximation (Fix and Hodges, Ann.
// Math. Statist. 26 (1955) 301-312): P = Phi(z) + K (z^3 - 3 z) phi(z) with
// K = (n1^2 + n2^2 + n1 n2 + N) / (20 n1 n2 (N + 1)), z continuity-corrected.
// The midrank statistic has the tie-corrected variance
//     Var W = n1 n2 SS / (N (N - 1)),
// SS the sum of squares of the midranks about (N + 1)/2, accumulated group
// by group as a weighted sum (zorvs_s1msq).
//
// Two sorted neighbours whose difference is at most `fuzz` are tied, so a
// chain of small steps forms one group.  The default fuzz is 100 eps M, M
// the largest finite magnitude in either sample, so that negative data get
// a positive tolerance too.
//
// Settled here:
//  - The two-sided p-value 2 (1 - Phi(|z|)) is formed as erfc(|z| / sqrt 2),
//    which keeps its relative accuracy far into the tail.
//  - After an error of type 4 or 5 the result is the missing value (NaN)
//    rather than 0.0, which would read as a highly significant test; the
//    vector of ZORVS_STAT is released (or the caller's left untouched).
//  - The N reals and N sample marks of the work are one block; when it
//    cannot be had, (5, 202) names both sample sizes.
//  - Null sample arrays are refused with (5, 150).

#include <cmath>
#include <cstdarg>
#include <cstddef>

#include "dist/dist.hpp"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "frame/raise.hpp"
#include "frame/twin.hpp"
#include "kernels/sort.hpp"
#include "stat/regress/regress.hpp"
#include "zorvstat.h"

namespace {

template <class T>
constinit thread_local T lv_rank_sum = 0;

// Edgeworth-corrected lower tail of the smaller of a pair of rank sums.
template <class T>
T l_edgeworth_tail(T w, T w_mirror, double n1, double n2) {
    const double n = n1 + n2, centre = n1 * (n + 1) / 2;
    const double m = std::fmin(static_cast<double>(w), static_cast<double>(w_mirror));
    double e = m - centre - 0.5;
    if (m - centre < 0) e += 1.0;
    const T z = static_cast<T>(e / std::sqrt(n1 * n2 * (n + 1) / 12));
    const T phi = T(0.5) * zorvs::dist::erfc(-std::sqrt(T(0.5)) * z);
    const T g = -(z * (z * z - 3)) * std::exp(T(-0.5) * z * z) / std::sqrt(T(2 * M_PI));
    const T k = static_cast<T>((n1 * n1 + n2 * n2 + n1 * n2 + n) * 0.05 / (n1 * n2 * (n + 1)));
    return phi - k * g;
}

// The worker: v holds the N values, sample 1 first, and marks their sample
// as +index / -index; both are sorted here.  stat receives the 10 values.
template <class T>
void l_r2ksm(int n1, int n2, T *v, int *marks, T fuzz, T *stat) {
    const int n = n1 + n2;
    zorvs::sort::svrgp(n, v, v, marks);
    double w_low = 0, w_high = 0, w_mid = 0;
    T sumwt = 0, mean = 0, ss = 0;
    const int one = 1;
    for (int a = 1; a <= n;) {  // ranks count from 1; the group spans a .. b-1
        int b = a + 1, s = marks[a - 1] > 0 ? 1 : 0;
        const bool first_in_1 = marks[a - 1] > 0;
        for (; b <= n && v[b - 1] - v[b - 2] <= fuzz; ++b) {
            const bool in_1 = marks[b - 1] > 0;
            if (in_1) ++s;
            if (in_1 != first_in_1) zorvs_ermes(3, 11123);
        }
        const double ds = s;
        w_low += ds * a + ds * (ds - 1) / 2;
        w_high += ds * (b - 1) - ds * (ds - 1) / 2;
        w_mid += ds * (a + b - 1) / 2;
        const T midrank = static_cast<T>((a + b - 1) / 2.0), weight = static_cast<T>(b - a);
        zorvs::regress::s1msq(&one, &midrank, &one, &weight, &sumwt, &mean, &one, &ss, &one);
        a = b;
    }
    const double dn1 = n1, dn2 = n2, dn = n, total = dn1 * (dn + 1);
    stat[0] = static_cast<T>(w_low);
    stat[1] = static_cast<T>(total - w_low);
    stat[3] = static_cast<T>(w_high);
    stat[4] = static_cast<T>(total - w_high);
    stat[6] = static_cast<T>(w_mid);
    stat[2] = l_edgeworth_tail<T>(stat[0], stat[1], dn1, dn2);
    stat[5] = l_edgeworth_tail<T>(stat[3], stat[4], dn1, dn2);
    stat[7] = static_cast<T>(std::sqrt(static_cast<double>(ss) * dn1 * dn2 / (dn * (dn - 1))));
    if (stat[7] != 0) {
        stat[8] = static_cast<T>((w_mid - total / 2) / stat[7]);
        stat[9] = zorvs::dist::erfc(std::fabs(stat[8]) / std::sqrt(T(2)));
    } else {
        stat[8] = zorvs::infinity<T>();
        stat[9] = 0;
    }
}

template <class T>
void l_wilcoxon_rank_sum(int n1_observations, const T *x, int n2_observations, const T *y, va_list *list) {
    lv_rank_sum<T> = zorvs::missing<T>();
    zorvs::OutputPair<T> stat_out;
    zorvs::KeywordReader kw(list, 4);
    T fuzz = 0;
    bool fuzz_given = false;
    for (int key = kw.keyword(); key != 0; key = kw.keyword()) {
        switch (key) {
        case ZORVS_FUZZ: fuzz = kw.real<T>(), fuzz_given = true; break;
        case ZORVS_FUZZ_ADR: fuzz = *kw.pointer<T>(), fuzz_given = true; break;
        case ZORVS_STAT: stat_out.take_address(kw.pointer<T *>()); break;
        case ZORVS_STAT_USER: stat_out.take_user(kw.pointer<T>()); break;
        default: kw.unknown(key); return;
        }
    }
    if (n1_observations < 1 || n2_observations < 1) {
        zorvs_e1stl(1, "n1_observations");
        zorvs_e1stl(2, "n2_observations");
        zorvs::raise(5, 11118, n1_observations, n2_observations);
    } else if (n1_observations + n2_observations < 3) {
        zorvs::raise(5, 11119, n1_observations, n2_observations);
    }
    if (fuzz_given && !(fuzz >= 0)) zorvs::raise(5, 11120, fuzz);
    zorvs_null_pointer("x", -1, x);
    zorvs_null_pointer("y", -1, y);
    if (stat_out.user()) zorvs_null_pointer("ZORVS_STAT_USER", -1, stat_out.data());
    if (zorvs_error_n1rty[0] > 3) return;
    if (n1_observations < 25 && n2_observations < 25)
        zorvs::raise(3, 11121, n1_observations, n2_observations);

    const std::size_t count = static_cast<std::size_t>(n1_observations) + static_cast<std::size_t>(n2_observations);
    T *v = static_cast<T *>(zorvs::workspace_block(count * (sizeof(T) + sizeof(int))));
    if (!v) {
        zorvs_e1stl(1, "n1_observations");
        zorvs_e1stl(2, "n2_observations");
        zorvs::raise(5, 202, n1_observations, n2_observations);
        return;
    }
    int *marks = reinterpret_cast<int *>(v + count);
    int n1 = 0, n2 = 0;
    T largest = 0;
    for (int i = 0; i < n1_observations; ++i) {
        if (zorvs::is_missing(x[i])) continue;
        if (std::isfinite(x[i])) largest = std::fmax(largest, std::fabs(x[i]));
        v[n1] = x[i];
        marks[n1] = n1 + 1;
        ++n1;
    }
    for (int i = 0; i < n2_observations; ++i) {
        if (zorvs::is_missing(y[i])) continue;
        if (std::isfinite(y[i])) largest = std::fmax(largest, std::fabs(y[i]));
        v[n1 + n2] = y[i];
        marks[n1 + n2] = -(n1 + n2 + 1);
        ++n2;
    }
    if (n1 == 0 || n2 == 0) {
        zorvs_ermes(4, 11122);
        return;
    }
    if (!fuzz_given) fuzz = 100 * zorvs::epsilon<T>() * largest;
    if (!stat_out.obtain(10)) return;
    T stat[10];
    l_r2ksm<T>(n1, n2, v, marks, fuzz, stat);
    if (T *out = stat_out.data())
        for (int i = 0; i < 10; ++i) out[i] = stat[i];
    lv_rank_sum<T> = stat[9];
}

}  // namespace

extern "C" {

float zorvs_f_wilcoxon_rank_sum(int n1_observations, float x[], int n2_observations, float y[], ...) {
    ZORVS_KEYWORD_ENTRY(y, "zorvs_f_wilcoxon_rank_sum", lv_rank_sum<float>,
                        l_wilcoxon_rank_sum<float>(n1_observations, x, n2_observations, y, &list));
}

double zorvs_d_wilcoxon_rank_sum(int n1_observations, double x[], int n2_observations, double y[], ...) {
    ZORVS_KEYWORD_ENTRY(y, "zorvs_d_wilcoxon_rank_sum", lv_rank_sum<double>,
                        l_wilcoxon_rank_sum<double>(n1_observations, x, n2_observations, y, &list));
}

}  // extern "C"
