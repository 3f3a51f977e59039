// simple_statistics.cpp - univariate summary statistics of the columns of a
// data matrix: mean, variance, standard deviation, skewness, excess
// kurtosis, extremes, range, coefficient of variation, count, confidence
// limits of the mean and the variance, and on request the median and the
// median absolute deviation with its normal-consistent scale.
//
// Method: one weighted updating pass per observation for the mean and the
// centred sums M2, M3, M4 (West 1979, "Updating mean and variance estimates:
// an improved method", CACM 22; extended to third and fourth moments as in
// Spicer 1972, Applied Statistics algorithm AS 52), so that data with a
// large offset and a small spread keep their digits.  Confidence limits use
// Student's t for the mean and chi-squared for the variance.  The median
// rows sort each column's values once and walk their truncated integer
// frequencies to the middle, so a frequency of billions costs no memory.
//
// The pass runs on each column less its first value seen.  The centred sums
// do not change under a shift, and the running mean of the shifted values is
// small, so its rounding no longer swamps a small spread about a large offset
// (values near 1e9 that differ in the first decimal keep 9 digits of their
// standard deviation this way, against 7 without the shift).
//
// The caller's matrix is read in place, row by row, in the same order as a
// column-major worker would see it after a transposition, so the numbers are
// the same and `x` is never written.  The table is built directly in its
// row-major layout.

#include <cmath>
#include <cstdarg>
#include <cstdlib>
#include <initializer_list>
#include <limits>

#include "dist/dist.hpp"
#include "frame/checks.h"
#include "frame/checks.hpp"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "kernels/sort.hpp"
#include "stat/describe/describe.hpp"
#include "zorvstat.h"

namespace {

// Rows of the table.
enum Row {
    MEAN = 0, VARIANCE, STD_DEV, SKEWNESS, KURTOSIS, MINIMUM, MAXIMUM, RANGE, COEF_VARIATION, COUNT,
    MEAN_LOWER, MEAN_UPPER, VARIANCE_LOWER, VARIANCE_UPPER, MEDIAN, MAD, ROBUST_SCALE
};

// Everything one call needs, kept together so the worker sees one object.
template <class T>
struct Summary {
    // Input.
    int n_observations;
    int n_variables;
    const T *x;
    int x_col_dim;
    const T *frequencies;
    const T *weights;
    bool listwise;
    T confidence_means;
    T confidence_variances;
    // The table, row-major with leading dimension ld.
    T *table;
    int ld;
    // Work: the running sums, one array per kind of sum with one entry per
    // variable, so that the update of a row runs along contiguous arrays
    // and vectorises across the variables; and the weight sum per variable.
    T *running;
    T *weight_sum;
    // Pass state.
    T sum_f;
    T sum_wf;
    int n_missing;
    bool failed;

    T &cell(int row, int j) { return table[static_cast<long>(row) * ld + j]; }
    // The kinds of running sums: mean, M2, M3, M4, minimum, maximum, count,
    // the first value seen (NaN before one), and the flag "a value differs
    // from the first".
    enum Slot { R_MEAN, R_M2, R_M3, R_M4, R_MIN, R_MAX, R_COUNT, R_FIRST, R_DIFFERS, R_SLOTS };
    T *sums(Slot k) { return running + static_cast<long>(k) * n_variables; }
    T &sum(Slot k, int j) { return running[static_cast<long>(k) * n_variables + j]; }
    T &first_of(int j) { return sum(R_FIRST, j); }
    T &differs_of(int j) { return sum(R_DIFFERS, j); }
    T value(long i, int j) const { return x[i * x_col_dim + j]; }
};

// The moment update of one value d, already less the variable's first value
// and its running mean, with r = f*w over the new weight total, t = f*w*q,
// q = 1 - r, c4 = 1 - 3*r*q and c3 = 1 - 2*r.  Each line uses the old values
// of the sums below it.
// V is T, or a vector of T whose lanes are updated alike.
template <class V, class T>
inline void moments_step(V d, T r, T t, T c4, T c3, V &mean, V &m2, V &m3, V &m4) {
    const V dr = d * r;
    const V d2 = d * d;
    m4 += T(-4) * dr * m3 + T(6) * dr * dr * m2 + t * (d2 * d2) * c4;
    m3 += T(-3) * dr * m2 + t * (d2 * d) * c3;
    m2 += t * d2;
    mean += dr;
}

// The update of one variable by one value of frequency f and weight w.
// r is f*w over the new weight total, q = 1 - r, t = f*w*q.
template <class T>
void update_moments(Summary<T> &s, int j, T v, T w, T r, T q, T t) {
    using S = Summary<T>;
    T &mn = s.sum(S::R_MIN, j);
    T &mx = s.sum(S::R_MAX, j);
    T &first = s.sum(S::R_FIRST, j);
    if (zorvs::is_missing(first)) {
        first = v;
        mn = v;
        mx = v;
    } else {
        if (v < mn) mn = v;
        if (v > mx) mx = v;
        if (v != first) s.sum(S::R_DIFFERS, j) = T(1);
    }
    if (w > T(0)) {
        T &mean = s.sum(S::R_MEAN, j);
        moments_step(v - first - mean, r, t, T(1) - T(3) * r * q, T(1) - T(2) * r, mean, s.sum(S::R_M2, j),
                     s.sum(S::R_M3, j), s.sum(S::R_M4, j));
    }
}

// Reset the running sums of one variable when its total falls to 0.
template <class T>
void reset_variable(Summary<T> &s, int j) {
    using S = Summary<T>;
    s.sum(S::R_MEAN, j) = s.sum(S::R_M2, j) = s.sum(S::R_M3, j) = s.sum(S::R_M4, j) = T(0);
    if (s.weight_sum) s.weight_sum[j] = T(0);
}

// One observation (row i, already known to have a usable frequency and
// weight) into the pass.
template <class T>
void add_observation(Summary<T> &s, long i, T f, T w) {
    const int nv = s.n_variables;
    if (s.listwise) {
        for (int j = 0; j < nv; ++j) {
            if (zorvs::is_missing(s.value(i, j))) {
                ++s.n_missing;
                return;
            }
        }
        s.sum_f += f;
        s.sum_wf += f * w;
        if (s.sum_f < T(0)) {
            zorvs_ermes(5, 11066);
            s.failed = true;
            return;
        }
        if (s.sum_f == T(0)) {
            for (int j = 0; j < nv; ++j) reset_variable(s, j);
            s.sum_wf = T(0);
            return;
        }
        T r = 0, q = 0, t = 0;
        if (w > T(0)) {
            r = f * w / s.sum_wf;
            q = T(1) - r;
            t = f * w * q;
        }
        for (int j = 0; j < nv; ++j) update_moments(s, j, s.value(i, j), w, r, q, t);
        return;
    }
    // Element-wise: a NaN drops the element; the row counts once as missing.
    bool missing_seen = false;
    for (int j = 0; j < nv; ++j) {
        T v = s.value(i, j);
        if (zorvs::is_missing(v)) {
            missing_seen = true;
            continue;
        }
        T &count = s.sum(Summary<T>::R_COUNT, j);
        T old_total = s.weight_sum ? s.weight_sum[j] : count;
        count += f;
        T new_total = old_total + f * w;
        if (s.weight_sum) s.weight_sum[j] = new_total;
        if (count < T(0)) {
            zorvs_ermes(5, 11066);
            s.failed = true;
            return;
        }
        if (count == T(0)) {
            reset_variable(s, j);
            continue;
        }
        T r = 0, q = 0, t = 0;
        if (w > T(0)) {
            r = f * w / new_total;
            q = T(1) - r;
            t = f * w * q;
        }
        update_moments(s, j, v, w, r, q, t);
    }
    if (missing_seen) ++s.n_missing;
}

// Frequency and weight of row i, with the missing-value and sign rules of
// the library's frequency reader.  Returns false if the row does not count.
template <class T>
bool row_frequency_and_weight(Summary<T> &s, long i, T &f, T &w) {
    const int status = zorvs::describe::frequency_and_weight(s.frequencies, s.weights, i, f, w, &s.n_missing);
    if (status == 3) s.failed = true;
    return status == 0;
}

// The pass of the common case, list-wise with neither frequencies nor
// weights, from a fresh start.  Every observation has f = w = 1, so
// r = 1/sumwf, q = 1 - r and t = q; the arithmetic of each value is that of
// update_moments in the same order, so the sums are the same to the bit.
// The inner loops run along the variables and carry no branches, so they
// vectorise; the rounding of each operation does not depend on the vector
// width.  Rows holding a NaN are counted and passed over.
struct PlainPass {
    long n;
    int nv;
    long ld;
};
// One row of the common-case pass, along the variables.
template <class T, int NV>
__attribute__((always_inline)) inline void plain_row(const T *__restrict row, int nv, T r, T t, T c4, T c3,
                                                     T *__restrict mean, T *__restrict m2, T *__restrict m3,
                                                     T *__restrict m4, T *__restrict mn, T *__restrict mx,
                                                     const T *__restrict first, T *__restrict differs) {
    if constexpr (NV > 0) nv = NV;
    for (int j = 0; j < nv; ++j) {
        const T v = row[j];
        mn[j] = v < mn[j] ? v : mn[j];
        mx[j] = v > mx[j] ? v : mx[j];
        differs[j] = v != first[j] ? T(1) : differs[j];
        // moments_step's arithmetic, written on the arrays: through
        // references the loop no longer vectorises.
        const T d = v - first[j] - mean[j];
        const T dr = d * r;
        const T d2 = d * d;
        m4[j] += T(-4) * dr * m3[j] + T(6) * dr * dr * m2[j] + t * (d2 * d2) * c4;
        m3[j] += T(-3) * dr * m2[j] + t * (d2 * d) * c3;
        m2[j] += t * d2;
        mean[j] += dr;
    }
}

template <class T, int NV>
__attribute__((always_inline)) inline void plain_pass_rows(const PlainPass &p, const T *x, T *__restrict run,
                                                           T &sum_f, T &sum_wf, int &n_missing) {
    const int nv = NV > 0 ? NV : p.nv;
    using S = Summary<T>;
    T *__restrict mean = run + static_cast<long>(S::R_MEAN) * nv;
    T *__restrict m2 = run + static_cast<long>(S::R_M2) * nv;
    T *__restrict m3 = run + static_cast<long>(S::R_M3) * nv;
    T *__restrict m4 = run + static_cast<long>(S::R_M4) * nv;
    T *__restrict mn = run + static_cast<long>(S::R_MIN) * nv;
    T *__restrict mx = run + static_cast<long>(S::R_MAX) * nv;
    T *__restrict first = run + static_cast<long>(S::R_FIRST) * nv;
    T *__restrict differs = run + static_cast<long>(S::R_DIFFERS) * nv;
    bool started = false;
    for (long i = 0; i < p.n; ++i) {
        const T *__restrict row = x + i * p.ld;
        int bad = 0;
        for (int j = 0; j < nv; ++j) bad |= row[j] != row[j];
        if (bad) {
            ++n_missing;
            continue;
        }
        if (!started) {
            for (int j = 0; j < nv; ++j) first[j] = mn[j] = mx[j] = row[j];
            started = true;
        }
        sum_f += T(1);
        sum_wf += T(1);
        const T r = T(1) / sum_wf;
        const T q = T(1) - r;
        const T t = q;
        const T c4 = T(1) - T(3) * r * q;
        const T c3 = T(1) - T(2) * r;
        plain_row<T, NV>(row, nv, r, t, c4, c3, mean, m2, m3, m4, mn, mx, first, differs);
    }
}

// Up to one vector of variables (4 doubles or 8 floats in 32 bytes): the
// running sums stay in vector registers for the whole pass, so the chain
// from one row to the next carries no store and reload.  Lanes past the
// last variable hold 0.0 and compute harmless zeros.
template <class T>
__attribute__((always_inline)) inline void plain_pass_short(const PlainPass &p, const T *x, T *run, T &sum_f,
                                                            T &sum_wf, int &n_missing) {
    constexpr int W = 32 / sizeof(T);
    typedef T V __attribute__((vector_size(32)));
    const int nv = p.nv;
    V mean{}, m2{}, m3{}, m4{}, mn{}, mx{}, first{}, differs{};
    const V one = V{} + T(1);
    bool started = false;
    for (long i = 0; i < p.n; ++i) {
        const T *row = x + i * p.ld;
        V v{};
        int bad = 0;
        for (int j = 0; j < nv; ++j) {
            v[j] = row[j];
            bad |= row[j] != row[j];
        }
        if (bad) {
            ++n_missing;
            continue;
        }
        if (!started) {
            first = mn = mx = v;
            started = true;
        }
        sum_f += T(1);
        sum_wf += T(1);
        const T r = T(1) / sum_wf;
        const T q = T(1) - r;
        const T t = q;
        const T c4 = T(1) - T(3) * r * q;
        const T c3 = T(1) - T(2) * r;
        mn = v < mn ? v : mn;
        mx = v > mx ? v : mx;
        differs = v != first ? one : differs;
        moments_step(V(v - first - mean), r, t, c4, c3, mean, m2, m3, m4);
    }
    if (!started) return;
    using S = Summary<T>;
    for (int j = 0; j < nv && j < W; ++j) {
        run[S::R_MEAN * nv + j] = mean[j];
        run[S::R_M2 * nv + j] = m2[j];
        run[S::R_M3 * nv + j] = m3[j];
        run[S::R_M4 * nv + j] = m4[j];
        run[S::R_MIN * nv + j] = mn[j];
        run[S::R_MAX * nv + j] = mx[j];
        run[S::R_FIRST * nv + j] = first[j];
        run[S::R_DIFFERS * nv + j] = differs[j];
    }
}

template <class T>
__attribute__((always_inline)) inline void plain_pass_body(const PlainPass &p, const T *x, T *run, T &sum_f,
                                                           T &sum_wf, int &n_missing) {
    if (p.nv <= static_cast<int>(32 / sizeof(T)))
        plain_pass_short<T>(p, x, run, sum_f, sum_wf, n_missing);
    else
        plain_pass_rows<T, 0>(p, x, run, sum_f, sum_wf, n_missing);
}

// The same body built for the vector units in use: AVX2 where the processor
// has it (no fused multiply-add, so the rounding is that of the plain
// build), and the baseline instruction set otherwise.
#define ZORVS_PLAIN_PASS(T, suffix)                                                                            \
    __attribute__((target("avx2"))) void plain_pass_avx2_##suffix(const PlainPass &p, const T *x, T *run,    \
                                                                   T &sum_f, T &sum_wf, int &n_missing) {  \
        plain_pass_body<T>(p, x, run, sum_f, sum_wf, n_missing);                                             \
    }                                                                                                        \
    void plain_pass_base_##suffix(const PlainPass &p, const T *x, T *run, T &sum_f, T &sum_wf,              \
                                  int &n_missing) {                                                          \
        plain_pass_body<T>(p, x, run, sum_f, sum_wf, n_missing);                                             \
    }                                                                                                        \
    void plain_pass(const PlainPass &p, const T *x, T *run, T &sum_f, T &sum_wf, int &n_missing) {           \
        if (__builtin_cpu_supports("avx2"))                                                                  \
            plain_pass_avx2_##suffix(p, x, run, sum_f, sum_wf, n_missing);                                   \
        else                                                                                                 \
            plain_pass_base_##suffix(p, x, run, sum_f, sum_wf, n_missing);                                   \
    }
ZORVS_PLAIN_PASS(float, f)
ZORVS_PLAIN_PASS(double, d)
#undef ZORVS_PLAIN_PASS

// The whole pass over the observations.
template <class T>
void run_pass(Summary<T> &s) {
    if (s.listwise && !s.frequencies && !s.weights)
        plain_pass(PlainPass{s.n_observations, s.n_variables, s.x_col_dim}, s.x, s.running, s.sum_f, s.sum_wf,
                   s.n_missing);
    else
        for (long i = 0; i < s.n_observations && !s.failed; ++i) {
            T f, w;
            if (!row_frequency_and_weight(s, i, f, w)) continue;
            add_observation(s, i, f, w);
        }
    if (s.failed) return;
    for (int j = 0; j < s.n_variables; ++j) {
        using S = Summary<T>;
        if (s.listwise) {
            s.sum(S::R_COUNT, j) = s.sum_f;
            if (s.weight_sum) s.weight_sum[j] = s.sum_wf;
        }
        s.cell(MEAN, j) = s.sum(S::R_MEAN, j);
        s.cell(VARIANCE, j) = s.sum(S::R_M2, j);
        s.cell(SKEWNESS, j) = s.sum(S::R_M3, j);
        s.cell(KURTOSIS, j) = s.sum(S::R_M4, j);
        s.cell(MINIMUM, j) = s.sum(S::R_MIN, j);
        s.cell(MAXIMUM, j) = s.sum(S::R_MAX, j);
        s.cell(COUNT, j) = s.sum(S::R_COUNT, j);
    }
    if (s.n_missing > 0) zorvs_ermes(6, s.listwise ? 11062 : 11288);
}

// Set the rows of spread, shape, variation and the confidence rows in use
// of variable j to NaN.
template <class T>
void spread_unknown(Summary<T> &s, int j, bool also_mean) {
    const T nan = zorvs::missing<T>();
    if (also_mean) s.cell(MEAN, j) = nan;
    for (int row : {VARIANCE, STD_DEV, SKEWNESS, KURTOSIS, COEF_VARIATION}) s.cell(row, j) = nan;
    if (s.confidence_means > T(0)) s.cell(MEAN_LOWER, j) = s.cell(MEAN_UPPER, j) = nan;
    if (s.confidence_variances > T(0)) s.cell(VARIANCE_LOWER, j) = s.cell(VARIANCE_UPPER, j) = nan;
}

// Confidence limits of the mean (rows 10, 11) and of the variance (12, 13).
template <class T>
void confidence_limits(Summary<T> &s, int j) {
    const T nan = zorvs::missing<T>();
    const T count = s.cell(COUNT, j);
    const T variance = s.cell(VARIANCE, j);
    const T sd = s.cell(STD_DEV, j);
    const T df = count - T(1);
    zorvs_e1sti(1, j + 1);
    if (s.confidence_means > T(0)) {
        T lower = nan, upper = nan;
        if (sd < T(0)) {
            zorvs_ermes(6, 11079);
        } else {
            T p = T(0.5) + s.confidence_means / T(200);
            T t = zorvs::dist::t_inverse_cdf(p, df);
            if (zorvs_error_n1rty[0] >= 5) {
                zorvs_e1sti(1, j + 1);
                zorvs_ermes(6, 11080);
            } else if (!zorvs::is_missing(variance)) {
                T half = t * sd / std::sqrt(count);
                lower = s.cell(MEAN, j) - half;
                upper = s.cell(MEAN, j) + half;
            }
        }
        s.cell(MEAN_LOWER, j) = lower;
        s.cell(MEAN_UPPER, j) = upper;
    }
    if (s.confidence_variances > T(0)) {
        T p = T(0.5) * (T(1) - s.confidence_variances / T(100));
        T q = T(1) - p;
        T lower = nan, upper = nan;
        if (variance < T(0)) {
            zorvs_e1sti(1, j + 1);
            zorvs_ermes(6, 11081);
        } else if (!zorvs::is_missing(variance)) {
            T chi_upper = zorvs::dist::chi_squared_inverse_cdf(q, df);
            if (zorvs_error_n1rty[0] >= 4) {
                zorvs_e1sti(1, j + 1);
                zorvs_ermes(6, 11082);
            } else {
                lower = variance * df / chi_upper;
            }
            T chi_lower = zorvs::dist::chi_squared_inverse_cdf(p, df);
            if (zorvs_error_n1rty[0] >= 4) {
                zorvs_e1sti(1, j + 1);
                zorvs_ermes(6, 11082);
            } else {
                upper = variance * df / chi_lower;
            }
        }
        s.cell(VARIANCE_LOWER, j) = lower;
        s.cell(VARIANCE_UPPER, j) = upper;
    }
}

// Turn the running sums into the table.
template <class T>
void finish(Summary<T> &s) {
    const T nan = zorvs::missing<T>();
    const int nv = s.n_variables;

    // Undo the shift of the pass.
    for (int j = 0; j < nv; ++j)
        if (!zorvs::is_missing(s.first_of(j))) s.cell(MEAN, j) += s.first_of(j);

    T largest_count = s.cell(COUNT, 0);
    for (int j = 1; j < nv; ++j)
        if (s.cell(COUNT, j) > largest_count) largest_count = s.cell(COUNT, j);
    if (largest_count <= T(1)) {
        for (int j = 0; j < nv; ++j) spread_unknown(s, j, false);
        zorvs_ermes(6, 11067);
        return;
    }
    if (s.weight_sum) {
        T largest_weight = s.weight_sum[0];
        for (int j = 1; j < nv; ++j)
            if (s.weight_sum[j] > largest_weight) largest_weight = s.weight_sum[j];
        if (largest_weight < T(10) * zorvs::epsilon<T>()) {
            for (int j = 0; j < nv; ++j) spread_unknown(s, j, true);
            zorvs_ermes(6, 11068);
            return;
        }
    }
    // Variables whose weights vanish while others' do not.
    bool any_weightless = false;
    if (s.weight_sum) {
        for (int j = 0; j < nv; ++j) {
            if (s.cell(COUNT, j) > T(1) && s.weight_sum[j] < T(10) * zorvs::epsilon<T>()) {
                spread_unknown(s, j, true);
                zorvs_e1sti(1, j + 1);
                zorvs_ermes(6, 11069);
                any_weightless = true;
            }
        }
    }

    const T sqrt_tiny = std::sqrt(zorvs::smallest<T>());
    const T cbrt_tiny = std::cbrt(zorvs::smallest<T>());
    const T fourth_root_tiny = std::sqrt(sqrt_tiny);
    const T log_tiny = std::log(zorvs::smallest<T>());

    for (int j = 0; j < nv; ++j) {
        T &mn = s.cell(MINIMUM, j);
        T &mx = s.cell(MAXIMUM, j);
        T range = (zorvs::is_missing(mn) || zorvs::is_missing(mx)) ? T(0) : mx - mn;
        s.cell(RANGE, j) = range;
    }

    for (int j = 0; j < nv; ++j) {
        if (any_weightless && s.cell(COUNT, j) > T(1) && s.weight_sum[j] < T(10) * zorvs::epsilon<T>()) continue;
        const T count = s.cell(COUNT, j);
        zorvs_e1sti(1, j + 1);
        if (count <= T(1)) {
            spread_unknown(s, j, false);
            zorvs_ermes(6, 11072);
            continue;
        }
        T &variance = s.cell(VARIANCE, j);
        T &sd = s.cell(STD_DEV, j);
        T &skew = s.cell(SKEWNESS, j);
        T &kurt = s.cell(KURTOSIS, j);
        const T range = s.cell(RANGE, j);
        if (s.differs_of(j) == T(0)) {
            zorvs_ermes(6, 11076);
            variance = sd = skew = kurt = T(0);
        } else if (variance > T(0)) {
            const T m2 = variance, m3 = skew, m4 = kurt;
            const T v = m2 / count;
            const T sv = std::sqrt(v);
            if (range < sqrt_tiny) {
                variance = sd = T(0);
                skew = kurt = nan;
                zorvs_ermes(6, 11073);
            } else {
                variance = m2 / (count - T(1));
                sd = std::sqrt(variance);
                if (range < cbrt_tiny) {
                    skew = kurt = nan;
                    zorvs_e1sti(1, j + 1);
                    zorvs_ermes(6, 11074);
                } else if (T(3) * std::log(sv) >= log_tiny) {
                    skew = m3 / (count * (sv * sv * sv));
                } else {
                    skew = m3 / (count * sv) / sv / sv;
                }
                if (range < fourth_root_tiny) {
                    kurt = nan;
                    zorvs_e1sti(1, j + 1);
                    zorvs_ermes(6, 11075);
                } else if (T(2) * std::log(v) >= log_tiny) {
                    kurt = m4 / (count * (v * v)) - T(3);
                } else {
                    kurt = m4 / (count * v) / v - T(3);
                }
            }
        } else {
            sd = variance;
            zorvs_ermes(6, 11077);
        }

        // Coefficient of variation.
        T &cv = s.cell(COEF_VARIATION, j);
        if (!zorvs::is_missing(cv)) {
            const T mean = s.cell(MEAN, j);
            if (zorvs::is_missing(mean) || std::fabs(mean) < zorvs::epsilon<T>())
                cv = nan;
            else
                cv = zorvs::check::divide(sd, mean);
            if (zorvs::is_missing(cv)) {
                zorvs_e1sti(1, j + 1);
                zorvs_ermes(6, 11078);
            }
        }
        confidence_limits(s, j);
    }
}

// How many times row i counts in the median of variable j: 0 for a row left
// out (a missing value, frequency or weight where the pass saw any; a
// frequency below 1), else the whole part of its frequency, at most 2^53 (a
// float or double above that is a whole number already and the sums below
// stay exact).
template <class T>
long long repeats_of(const Summary<T> &s, long i, int j) {
    if (s.n_missing > 0) {
        if (s.frequencies && (zorvs::is_missing(s.frequencies[i]) || s.frequencies[i] == T(0))) return 0;
        if (s.weights && zorvs::is_missing(s.weights[i])) return 0;
        if (s.listwise) {
            for (int k = 0; k < s.n_variables; ++k)
                if (zorvs::is_missing(s.value(i, k))) return 0;
        } else if (zorvs::is_missing(s.value(i, j))) {
            return 0;
        }
    }
    if (!s.frequencies) return 1;
    const T f = s.frequencies[i];
    if (!(f >= T(1))) return 0;
    if (f >= T(0x1p53)) return 1LL << 53;
    return static_cast<long long>(f);
}

// The middle of variable j's values as given by value(i), each repeated by
// its row's count, or the mean of the two middle values: the rows' values
// are sorted once with their row numbers and the counts walked to the middle
// positions, so that memory and time follow the number of rows, not the sum
// of the frequencies.  `values` and `rows` hold n_observations elements.
template <class T, class Value>
T weighted_middle(const Summary<T> &s, int j, T *values, int *rows, Value value) {
    int m = 0;
    unsigned __int128 total = 0;  // up to 2^31 rows of 2^53 each
    for (long i = 0; i < s.n_observations; ++i) {
        const long long r = repeats_of(s, i, j);
        if (r == 0) continue;
        values[m] = value(i);
        rows[m++] = static_cast<int>(i);
        total += static_cast<unsigned long long>(r);
    }
    if (m == 0) return zorvs::missing<T>();
    zorvs::sort::svrgp(m, values, values, rows);
    // One walk of the counts to the 0-based positions (total - 1) / 2 and
    // total / 2 of the repeated, sorted values: the same position when the
    // total is odd.
    const unsigned __int128 lower = (total - 1) / 2, upper = total / 2;
    int k = 0;
    unsigned __int128 seen = static_cast<unsigned long long>(repeats_of(s, rows[0], j));
    while (lower >= seen) seen += static_cast<unsigned long long>(repeats_of(s, rows[++k], j));
    const T low = values[k];
    while (upper >= seen) seen += static_cast<unsigned long long>(repeats_of(s, rows[++k], j));
    return lower == upper ? low : (low + values[k]) / T(2);
}

// Rows 14 to 16: median, median absolute deviation, and robust scale.
template <class T>
void median_rows(Summary<T> &s, bool with_scale) {
    const T nan = zorvs::missing<T>();
    const std::size_t n = static_cast<std::size_t>(s.n_observations);
    T *values = zorvs::workspace<T>(n);
    int *rows = values ? zorvs::workspace<int>(n) : nullptr;
    if (!rows) return;
    // Phi^-1(0.75), once per call, in the routine's precision.
    T scale_divisor = T(1);
    if (with_scale) scale_divisor = zorvs::dist::normal_inverse_cdf(T(0.75));
    for (int j = 0; j < s.n_variables; ++j) {
        T median = nan;
        if (s.cell(COUNT, j) != T(0)) median = weighted_middle(s, j, values, rows, [&](long i) { return s.value(i, j); });
        s.cell(MEDIAN, j) = median;
        if (!with_scale) continue;
        T mad = nan;
        if (s.cell(COUNT, j) != T(0) && !zorvs::is_missing(median))
            mad = weighted_middle(s, j, values, rows, [&](long i) { return std::fabs(s.value(i, j) - median); });
        s.cell(MAD, j) = mad;
        s.cell(ROBUST_SCALE, j) = zorvs::is_missing(mad) ? nan : mad / scale_divisor;
    }
}

template <class T>
constinit thread_local T *lv_simple_statistics = nullptr;

template <class T>
void l_simple_statistics(int n_observations, int n_variables, T *x, va_list *list) {
    // A WARNING_IMMEDIATE does not cost the table; anything else above 3 does.
    zorvs::OutputPair<T> table(lv_simple_statistics<T>, zorvs::Failure::above_warning_but_immediate);
    zorvs::KeywordReader kw(list, 3);
    T confidence_means = T(95), confidence_variances = T(95);
    const T *frequencies = nullptr;
    const T *weights = nullptr;
    int median_keywords = 0;
    bool with_scale = false;
    bool listwise = true;
    int x_col_dim = n_variables;
    int stat_col_dim = n_variables;
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        switch (k) {
            case ZORVS_CONFIDENCE_MEANS: confidence_means = kw.real<T>(); break;
            case ZORVS_CONFIDENCE_MEANS_ADR: {
                const T *p = kw.pointer<T>();
                if (p) confidence_means = *p;
                else zorvs_null_pointer("ZORVS_CONFIDENCE_MEANS_ADR", -1, nullptr);
                break;
            }
            case ZORVS_CONFIDENCE_VARIANCES: confidence_variances = kw.real<T>(); break;
            case ZORVS_CONFIDENCE_VARIANCES_ADR: {
                const T *p = kw.pointer<T>();
                if (p) confidence_variances = *p;
                else zorvs_null_pointer("ZORVS_CONFIDENCE_VARIANCES_ADR", -1, nullptr);
                break;
            }
            case ZORVS_FREQUENCIES: frequencies = kw.pointer<T>(); break;
            case ZORVS_WEIGHTS: weights = kw.pointer<T>(); break;
            case ZORVS_MEDIAN: ++median_keywords; break;
            case ZORVS_MEDIAN_AND_SCALE:
                ++median_keywords;
                with_scale = true;
                break;
            case ZORVS_MISSING_LISTWISE: listwise = true; break;
            case ZORVS_MISSING_ELEMENTWISE: listwise = false; break;
            case ZORVS_X_COL_DIM: x_col_dim = kw.integer(); break;
            case ZORVS_STAT_COL_DIM: stat_col_dim = kw.integer(); break;
            case ZORVS_RETURN_USER: table.take_user(kw.pointer<T>()); break;
            default: kw.unknown(k); return;
        }
    }
    if (zorvs_error_n1rty[0] > 0) return;

    int arg_no = 0;
    zorvs_c1iarg(n_variables, "n_variables", 1, 0, &arg_no);
    zorvs_c1iarg(n_observations, "n_observations", 1, 0, &arg_no);
    if (zorvs_error_n1rty[0] >= 4) return;
    zorvs_c12ile(n_variables, "n_variables", x_col_dim, "x_col_dim", &arg_no);
    zorvs_c12ile(n_variables, "n_variables", stat_col_dim, "stat_col_dim", &arg_no);
    if (!x) zorvs_null_pointer("x", -1, nullptr);
    if (confidence_means >= T(100)) {
        zorvs_e1str(1, confidence_means);
        zorvs_ermes(5, 11064);
    }
    if (confidence_variances >= T(100)) {
        zorvs_e1str(1, confidence_variances);
        zorvs_ermes(5, 11065);
    }
    if (zorvs_error_n1rty[0] >= 4) return;
    if (median_keywords > 1) {
        zorvs_e1stl(1, "ZORVS_MEDIAN and ZORVS_MEDIAN_AND_SCALE");
        zorvs_ermes(5, 11117);
        return;
    }
    const int n_rows = median_keywords == 0 ? 14 : (with_scale ? 17 : 15);
    if ((frequencies || weights) && n_observations == 1) {
        zorvs_e1sti(1, 0);
        zorvs_e1sti(2, 1);
        zorvs_ermes(5, 11063);
        return;
    }

    Summary<T> s{};
    s.n_observations = n_observations;
    s.n_variables = n_variables;
    s.x = x;
    s.x_col_dim = x_col_dim;
    s.frequencies = frequencies;
    s.weights = weights;
    s.listwise = listwise;
    s.confidence_means = confidence_means;
    s.confidence_variances = confidence_variances;
    s.ld = stat_col_dim;

    const int per_variable = Summary<T>::R_SLOTS + (weights ? 1 : 0);
    T *work = n_variables <= std::numeric_limits<int>::max() / per_variable
                  ? zorvs::workspace<T>(per_variable * n_variables, "n_variables")
                  : nullptr;
    if (!work) {
        if (n_variables > std::numeric_limits<int>::max() / per_variable) {
            zorvs_e1sti(1, n_variables);
            zorvs_e1stl(1, "n_variables");
            zorvs_ermes(5, 201);
        }
        return;
    }
    s.running = work;
    s.weight_sum = weights ? work + static_cast<long>(Summary<T>::R_SLOTS) * n_variables : nullptr;
    if (!table.obtain(n_rows, "n_variables", stat_col_dim, "stat_col_dim") || !table.data()) return;
    s.table = table.data();

    // Cells that no step writes stay NaN.
    const T nan = zorvs::missing<T>();
    for (int row = 0; row < n_rows; ++row)
        for (int j = 0; j < n_variables; ++j) s.cell(row, j) = nan;
    for (int j = 0; j < n_variables; ++j) {
        for (int row : {MEAN, VARIANCE, SKEWNESS, KURTOSIS, COUNT, COEF_VARIATION}) s.cell(row, j) = T(0);
        for (int k = 0; k < Summary<T>::R_SLOTS; ++k) s.sum(static_cast<typename Summary<T>::Slot>(k), j) = T(0);
        s.sum(Summary<T>::R_MIN, j) = s.sum(Summary<T>::R_MAX, j) = s.sum(Summary<T>::R_FIRST, j) = nan;
        if (s.weight_sum) s.weight_sum[j] = T(0);
    }

    run_pass(s);
    int type = zorvs_error_type();  // the highest type this call's frame holds
    if (!s.failed && (type < 4 || type == 6)) {
        finish(s);
        if (median_keywords) median_rows(s, with_scale);
    }
}

}  // namespace

extern "C" {

float *zorvs_f_simple_statistics(int n_observations, int n_variables, float x[], ...) {
    ZORVS_KEYWORD_ENTRY(x, "zorvs_f_simple_statistics", lv_simple_statistics<float>,
                        l_simple_statistics<float>(n_observations, n_variables, x, &list));
}

double *zorvs_d_simple_statistics(int n_observations, int n_variables, double x[], ...) {
    ZORVS_KEYWORD_ENTRY(x, "zorvs_d_simple_statistics", lv_simple_statistics<double>,
                        l_simple_statistics<double>(n_observations, n_variables, x, &list));
}

}  // extern "C"
