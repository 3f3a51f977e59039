// ranks.cpp - ranks of a sample with a choice of tie rule, and the normal
// and exponential scores of those ranks.
//
// Method: the values that are not missing are sorted with their positions
// (Singleton's quicksort, zorvs::sort::svrgp); a run of sorted values in
// which each differs from the one before by at most the fuzz is one tie
// group, occupying the sorted places a+1..b of the m values present.  The
// score of place r is
//   ranks            r
//   Blom             Phi^-1((r - 3/8) / (m + 1/4))      (Blom 1958)
//   Tukey            Phi^-1((r - 1/3) / (m + 1/3))      (Tukey 1962)
//   Van der Waerden  Phi^-1(r / (m + 1))                (van der Waerden 1952)
//   Savage           sum_(j = m-r+1..m) 1/j             (Savage 1956)
// the Savage score being the expected r-th order statistic of m standard
// exponential values, summed from the smallest term up so that the score
// of place 1, 1/m, keeps its digits, and Phi^-1 being taken to working
// accuracy (zorvs::dist::normal_quantile) from whichever tail is smaller.
// A tie group gets
//   average (default)  the mean of the scores of its places (for ranks,
//                      (a + 1 + b) / 2, as R's rank(ties.method="average"))
//   lowest / highest   the score of place a + 1 / place b ("min" / "max")
//   random             its places' scores in a random order: the group of
//                      k draws k uniforms from the library's generator, in
//                      the order of the sorted values, and the member with
//                      the j-th smallest uniform takes place a + j.
//
// Settled here:
//  - A NaN is a missing value: its result is NaN, and the others are ranked
//    among themselves (m is their number).  When every value is missing the
//    result is all NaN with the warning (3, 21200).
//  - The fuzz (default 0) chains: values 0, 0.6, 1.2 with fuzz 0.6 are one
//    group although 0 and 1.2 differ by more.  A negative or NaN fuzz is
//    refused (5, 11120).
//  - Only a tie group of two or more draws uniforms, so a sample without
//    ties leaves the generator where it was.
//  - Keywords of one group (tie rules; ranks and scores) exclude each other,
//    a keyword given twice included: (5, 11117).

#include <cmath>
#include <cstdarg>

#include "dist/dist.hpp"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "kernels/sort.hpp"
#include "random/random.hpp"
#include "zorvstat.h"

namespace {

template <class T>
constinit thread_local T *lv_ranks = nullptr;

enum class Ties { average, lowest, highest, random };
enum class Score { rank, blom, tukey, van_der_waerden, savage };

// Phi^-1(a / c), with b = c - a given as well.
template <class T>
T quantile(T a, T b, T c) {
    return zorvs::dist::normal_quantile(a / c, b / c);
}

// Score of each place r = 1..m, into f[r - 1].
template <class T>
void place_scores(Score score, int m, T *f) {
    const T n = static_cast<T>(m);
    T tail = 0;
    for (int r = 1; r <= m; ++r) {
        const T rr = static_cast<T>(r);
        switch (score) {
        case Score::rank: f[r - 1] = rr; break;
        // Both tails as quotients of exact numbers, so that the upper tail
        // keeps its digits as well as the lower one.
        case Score::blom:
            f[r - 1] = quantile(rr - T(0.375), n - rr + T(0.625), n + T(0.25));
            break;
        case Score::tukey:
            f[r - 1] = quantile(3 * rr - 1, 3 * (n - rr) + 2, 3 * n + 1);
            break;
        case Score::van_der_waerden: f[r - 1] = quantile(rr, n + 1 - rr, n + 1); break;
        case Score::savage:
            tail += T(1) / static_cast<T>(m - r + 1);
            f[r - 1] = tail;
            break;
        }
    }
}

template <class T>
void l_ranks(int n_observations, const T *x, va_list *list) {
    zorvs::OutputPair<T> result(lv_ranks<T>);
    zorvs::KeywordReader kw(list, 2);
    Ties ties = Ties::average;
    Score score = Score::rank;
    int n_ties = 0, n_scores = 0;
    T fuzz = 0;
    for (int key = kw.keyword(); key != 0; key = kw.keyword()) {
        switch (key) {
        case ZORVS_AVERAGE_TIE: ties = Ties::average, ++n_ties; break;
        case ZORVS_LOWEST: ties = Ties::lowest, ++n_ties; break;
        case ZORVS_HIGHEST: ties = Ties::highest, ++n_ties; break;
        case ZORVS_RANDOM_SPLIT: ties = Ties::random, ++n_ties; break;
        case ZORVS_RANKS: score = Score::rank, ++n_scores; break;
        case ZORVS_BLOM_SCORES: score = Score::blom, ++n_scores; break;
        case ZORVS_TUKEY_SCORES: score = Score::tukey, ++n_scores; break;
        case ZORVS_VAN_DER_WAERDEN_SCORES: score = Score::van_der_waerden, ++n_scores; break;
        case ZORVS_SAVAGE_SCORES: score = Score::savage, ++n_scores; break;
        case ZORVS_FUZZ: fuzz = kw.real<T>(); break;
        case ZORVS_FUZZ_ADR: fuzz = *kw.pointer<T>(); break;
        case ZORVS_RETURN_USER: result.take_user(kw.pointer<T>()); break;
        default: kw.unknown(key); return;
        }
    }
    if (n_ties > 1) {
        zorvs_e1stl(1, "ZORVS_AVERAGE_TIE, ZORVS_LOWEST, ZORVS_HIGHEST and ZORVS_RANDOM_SPLIT");
        zorvs_ermes(5, 11117);
    }
    if (n_scores > 1) {
        zorvs_e1stl(1, "ZORVS_RANKS and the ZORVS_..._SCORES keywords");
        zorvs_ermes(5, 11117);
    }
    if (n_observations < 1) {
        zorvs_e1sti(1, n_observations);
        zorvs_ermes(5, 11002);
    }
    zorvs_null_pointer("x", -1, x);
    if (!(fuzz >= 0)) {
        zorvs_e1str(1, static_cast<double>(fuzz));
        zorvs_ermes(5, 11120);
    }
    if (zorvs_error_n1rty[0] > 3) return;
    if (!result.obtain(n_observations, "n_observations")) return;
    T *out = result.data();

    int m = 0;
    for (int i = 0; i < n_observations; ++i) m += zorvs::is_missing(x[i]) ? 0 : 1;
    if (m == 0) {
        for (int i = 0; i < n_observations; ++i) out[i] = zorvs::missing<T>();
        zorvs_e1sti(1, n_observations);
        zorvs_ermes(3, 21200);
        return;
    }
    // All work space is taken before the first write to the result, so that
    // a failed allocation leaves the caller's storage as it was.
    const bool random = ties == Ties::random;
    T *v = zorvs::workspace<T>(m, "n_observations");
    int *where = zorvs::workspace<int>(m, "n_observations");
    T *f = zorvs::workspace<T>(m, "n_observations");
    T *u = random ? zorvs::workspace<T>(m, "n_observations") : nullptr;
    int *order = random ? zorvs::workspace<int>(m, "n_observations") : nullptr;
    if (!v || !where || !f || (random && (!u || !order))) return;
    for (int i = 0; i < n_observations; ++i) out[i] = zorvs::missing<T>();
    for (int i = 0, k = 0; i < n_observations; ++i) {
        if (!zorvs::is_missing(x[i])) v[k] = x[i], where[k++] = i;
    }
    zorvs::sort::svrgp(m, v, v, where);
    place_scores(score, m, f);

    for (int a = 0, b; a < m; a = b) {
        for (b = a + 1; b < m && (v[b] == v[b - 1] || v[b] - v[b - 1] <= fuzz); ++b) {
        }
        const int k = b - a;
        if (k == 1 || ties == Ties::lowest || ties == Ties::highest) {
            const T s = f[ties == Ties::highest ? b - 1 : a];
            for (int j = a; j < b; ++j) out[where[j]] = s;
        } else if (ties == Ties::average) {
            T s;
            if (score == Score::rank) {
                s = static_cast<T>(a + 1 + b) / 2;
            } else {
                s = 0;
                for (int j = a; j < b; ++j) s += f[j];
                s /= static_cast<T>(k);
            }
            for (int j = a; j < b; ++j) out[where[j]] = s;
        } else {
            zorvs::random::uniforms(k, u);
            for (int j = 0; j < k; ++j) order[j] = j;
            zorvs::sort::svrgp(k, u, u, order);
            for (int j = 0; j < k; ++j) out[where[a + order[j]]] = f[a + j];
        }
    }
}

}  // namespace

extern "C" {

float *zorvs_f_ranks(int n_observations, float x[], ...) {
    ZORVS_KEYWORD_ENTRY(x, "zorvs_f_ranks", lv_ranks<float>, l_ranks<float>(n_observations, x, &list));
}

double *zorvs_d_ranks(int n_observations, double x[], ...) {
    ZORVS_KEYWORD_ENTRY(x, "zorvs_d_ranks", lv_ranks<double>, l_ranks<double>(n_observations, x, &list));
}

}  // extern "C"
