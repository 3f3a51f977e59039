// cluster_k_means.cpp - k-means clustering from the caller's seed means by
// the optimal-transfer and quick-transfer method of Hartigan and Wong
// (Applied Statistics algorithm AS 136, 1979, 28: 100-108), extended to
// frequencies, weights and missing values.
//
// Method.  Each observation starts in the cluster of its nearest seed (ties
// to the lower cluster number), the means are the means of that assignment,
// and passes of the optimal-transfer stage (every observation tried against
// every cluster of the live set) alternate with the quick-transfer stage
// (each observation tried against its second-nearest cluster only) until a
// whole optimal-transfer pass moves nothing.  With w the frequency times the
// weight of observation i and s the summed w of a cluster, removing i from
// its cluster l1 saves d(i, l1) s1 / (s1 - w), adding it to l costs
// d(i, l) s / (s + w); i moves where the cost is below the saving.  With
// unit frequencies and weights these are the factors of AS 136, formed the
// same way (the factor first, then the product), so that the steps, the
// assignments and the means are those of the published algorithm.
//
// Missing values (NaN) are left out of everything they touch: a distance
// sums over the variables where both the observation and the mean are
// present, and each mean is kept over the non-missing values of its
// variable, with the summed w of those values per variable and cluster.  A
// mean with no values behind it is NaN.  An observation with every variable
// missing is at distance 0 from every mean; it stays in cluster 1 unless a
// transfer has a positive saving, so in practice where it started.
//
// Against R's kmeans(algorithm = "Hartigan-Wong"), which runs AS 136 too:
// the same assignments, counts and means from the same seeds (tested on
// iris, USArrests, faithful and scaled mtcars, and on 10^6 points in the
// benchmark).  Where the rules here differ from R's: one cluster is refused
// (R allows it); seeds need not be distinct (R refuses repeated ones; here
// the higher-numbered copy of a seed ends empty, (5, 20083)); the default
// limit is 30 passes (R's 10); missing values, frequencies and weights are
// accepted (R has none of them); R's stop at 50 n quick-transfer steps is
// kept, as a warning (3, 20085) where R warns with ifault 4.
//
// Choices made here:
//  - The live set and the step counters (ncp) are kept as in AS 136.
//  - The quick-transfer stage is bounded, as in R's version of AS 136, by
//    50 n_observations steps; beyond that (rounding can make two
//    observations trade places for ever) the clustering stops with the
//    present assignment and (3, 20085).
//  - Counts are numbers of observations (rows), whatever their frequencies;
//    the within-cluster sums of squares and the means are weighted by
//    frequency times weight.  A row of frequency f therefore gives the means
//    and sums of squares of f copies of the row whenever the copies end in
//    the same cluster, but it moves as one.
//  - An entry of ZORVS_X_COLUMNS outside the data's columns that is not the
//    frequency or weight column is (5, 602) with the name "x_columns".
//  - The worker reads its private copy of the data as the transpose of a
//    column-major table: observation by observation, each observation's
//    variables side by side, so that a distance walks contiguous memory (on
//    10^6 x 10 data about a third faster than the column-major walk of
//    AS 136; the sums and their order are the same).  The copy holds the
//    columns in use only, and the frequencies and weights beside it; columns
//    of x that no variable uses are not read.  The worker numbers the
//    columns as the caller does: x_col_dim data columns, then the frequency
//    column, then the weight column.  The means are kept the same way.
//  - The within-cluster sums of squares and the cluster numbers are written
//    only when the clustering succeeded.

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <limits>
#include <utility>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "stat/multivariate/failed_addresses.hpp"
#include "zorvstat.h"

namespace {

template <class T>
constinit thread_local int *lv_clusters = nullptr;

// The worker's state: the table and the means, one row of nv values per
// observation or cluster, and the per-observation and per-cluster arrays of
// AS 136.  Indices
// here count from 0; step numbers (ncp, live) count from 1 as in AS 136.
template <class T>
struct KMeans {
    int m = 0, nv = 0, k = 0;
    const T *x = nullptr;              // x[i * nv + j]: variable j of observation i
    const T *frq = nullptr, *wgt = nullptr;  // the frequency and weight columns, or null
    T *w = nullptr;                    // frequency times weight, or null for all 1
    bool missing = false;              // a NaN among the data or the means
    T *c = nullptr;                    // means, c[l * nv + j]
    T *wsum = nullptr;                 // per cluster and variable, the w of present values (missing only)
    T *s = nullptr;                    // summed w of each cluster
    T *an1 = nullptr, *an2 = nullptr;  // s / (s - 1) and s / (s + 1), for unit w
    T *d = nullptr;                    // removal cost of each observation
    int *ic1 = nullptr, *ic2 = nullptr, *nc = nullptr, *ncp = nullptr, *itran = nullptr, *live = nullptr;

    T weight(int i) const { return w ? w[i] : T(1); }
    T value(int i, int j) const { return x[static_cast<long>(i) * nv + j]; }
    T &mean(int l, int j) { return c[static_cast<long>(l) * nv + j]; }
    T *present(int l, int j) { return &wsum[static_cast<long>(l) * nv + j]; }
    // The cost factors, for observation i of weight wi.
    T removal(int l, T wi) const { return w ? s[l] / (s[l] - wi) : an1[l]; }
    T addition(int l, T wi) const { return w ? s[l] / (s[l] + wi) : an2[l]; }

    // Squared distance of observation i from mean l over the variables
    // where both are present, summed in the order of the variables.  The
    // sum may stop once it reaches bound: it is then known to be at least
    // the bound, and the caller compares it with the bound only.  The test
    // is made after each block of 16 terms rather than after each term as
    // in AS 136: the partial sums only grow, so the decisions are the same,
    // and on few variables a test per term costs more in mispredicted
    // branches (on 10 variables, more than half the time of the whole
    // clustering) than the terms it saves.
    T distance(int i, int l, T bound = std::numeric_limits<T>::infinity()) const {
        constexpr int block = 16;
        T sum = 0;
        const T *xi = x + static_cast<long>(i) * nv;
        const T *cl = c + static_cast<long>(l) * nv;
        for (int start = 0; start < nv; start += block) {
            const int stop = std::min(nv, start + block);
            if (!missing) {
                for (int j = start; j < stop; ++j) {
                    const T diff = xi[j] - cl[j];
                    sum += diff * diff;
                }
            } else {
                for (int j = start; j < stop; ++j) {
                    const T diff = xi[j] - cl[j];
                    if (diff == diff) sum += diff * diff;
                }
            }
            if (sum >= bound) return sum;
        }
        return sum;
    }
};

// l_k7ean: the means, sizes and counts of the present assignment.
template <class T>
void l_k7ean(KMeans<T> &g) {
    const long kv = static_cast<long>(g.k) * g.nv;
    for (long q = 0; q < kv; ++q) {
        g.c[q] = 0;
        if (g.wsum) g.wsum[q] = 0;
    }
    for (int l = 0; l < g.k; ++l) {
        g.s[l] = 0;
        g.nc[l] = 0;
    }
    for (int i = 0; i < g.m; ++i) {
        const int l = g.ic1[i];
        const T wi = g.weight(i);
        g.s[l] += wi;
        ++g.nc[l];
        for (int j = 0; j < g.nv; ++j) {
            const T x = g.value(i, j);
            if (g.wsum) {
                if (zorvs::is_missing(x)) continue;
                *g.present(l, j) += wi;
            }
            g.mean(l, j) += wi * x;
        }
    }
    const T nan = zorvs::missing<T>();
    for (int j = 0; j < g.nv; ++j)
        for (int l = 0; l < g.k; ++l) {
            const T total = g.wsum ? *g.present(l, j) : g.s[l];
            g.mean(l, j) = total > T(0) ? g.mean(l, j) / total : nan;
        }
}

// Move observation i from its cluster l1 to l2, updating the means over the
// variables it has, the sizes and the factors.
template <class T>
void transfer(KMeans<T> &g, int i, int l1, int l2) {
    const T wi = g.weight(i);
    const T nan = zorvs::missing<T>();
    for (int j = 0; j < g.nv; ++j) {
        const T x = g.value(i, j);
        T *w1 = g.wsum ? g.present(l1, j) : &g.s[l1];
        T *w2 = g.wsum ? g.present(l2, j) : &g.s[l2];
        if (g.wsum && zorvs::is_missing(x)) continue;
        const T a1 = *w1, a2 = *w2;
        const T rest = a1 - wi, joined = a2 + wi;
        T &m1 = g.mean(l1, j), &m2 = g.mean(l2, j);
        m1 = rest > T(0) ? (m1 * a1 - wi * x) / rest : nan;
        m2 = a2 > T(0) ? (m2 * a2 + wi * x) / joined : x;
        if (g.wsum) {
            *w1 = rest;
            *w2 = joined;
        }
    }
    g.s[l1] -= wi;
    g.s[l2] += wi;
    --g.nc[l1];
    ++g.nc[l2];
    if (!g.w) {
        const T big = T(1e30);
        const T left = g.s[l1], grown = g.s[l2];
        g.an2[l1] = left / (left + T(1));
        g.an1[l1] = left > T(1) ? left / (left - T(1)) : big;
        g.an1[l2] = grown / (grown - T(1));
        g.an2[l2] = grown / (grown + T(1));
    }
    g.ic1[i] = l2;
    g.ic2[i] = l1;
}

// l_k6ean: the optimal-transfer stage.  indx counts the observations passed
// since the last transfer.
template <class T>
void l_k6ean(KMeans<T> &g, int &indx) {
    const int m = g.m;
    for (int l = 0; l < g.k; ++l)
        if (g.itran[l] == 1) g.live[l] = m + 1;
    for (int i = 0; i < m; ++i) {
        const int step = i + 1;
        ++indx;
        const int l1 = g.ic1[i];
        if (g.nc[l1] != 1) {
            const T wi = g.weight(i);
            // The removal cost is reworked only if l1 changed in this stage.
            if (g.ncp[l1] != 0) g.d[i] = g.distance(i, l1) * g.removal(l1, wi);
            const int ll = g.ic2[i];
            int l2 = ll;
            T r2 = g.distance(i, ll) * g.addition(ll, wi);
            for (int l = 0; l < g.k; ++l) {
                // Outside the live set both ways, or a cluster already tried.
                if ((step >= g.live[l1] && step >= g.live[l]) || l == l1 || l == ll) continue;
                const T an = g.addition(l, wi);
                const T rr = r2 / an;
                const T dc = g.distance(i, l, rr);
                if (dc >= rr) continue;
                r2 = dc * an;
                l2 = l;
            }
            if (r2 >= g.d[i]) {
                g.ic2[i] = l2;
            } else {
                indx = 0;
                g.live[l1] = m + step;
                g.live[l2] = m + step;
                g.ncp[l1] = step;
                g.ncp[l2] = step;
                transfer(g, i, l1, l2);
            }
        }
        if (indx == m) return;
    }
    for (int l = 0; l < g.k; ++l) {
        g.itran[l] = 0;
        g.live[l] -= m;
    }
}

// l_k3ean: the quick-transfer stage.  False when it ran past its bound.
template <class T>
bool l_k3ean(KMeans<T> &g, int &indx) {
    const int m = g.m;
    const long limit = 50L * m;
    int icoun = 0;
    long istep = 0;
    for (;;) {
        for (int i = 0; i < m; ++i) {
            ++icoun;
            ++istep;
            if (istep >= limit) return false;
            const int l1 = g.ic1[i], l2 = g.ic2[i];
            if (g.nc[l1] != 1) {
                const T wi = g.weight(i);
                // ncp holds the step of the last update plus m.
                if (istep <= g.ncp[l1]) g.d[i] = g.distance(i, l1) * g.removal(l1, wi);
                if (istep < g.ncp[l1] || istep < g.ncp[l2]) {
                    const T r2 = g.d[i] / g.addition(l2, wi);
                    if (g.distance(i, l2, r2) < r2) {
                        icoun = 0;
                        indx = 0;
                        g.itran[l1] = 1;
                        g.itran[l2] = 1;
                        g.ncp[l1] = static_cast<int>(istep + m);
                        g.ncp[l2] = static_cast<int>(istep + m);
                        transfer(g, i, l1, l2);
                    }
                }
            }
            if (icoun == m) return true;
        }
    }
}

// l_k2ean: the worker.  The table holds ncol columns of ldx observations:
// the data, then the frequencies (column ifrq, from 1; 0 for none) and the
// weights (column iwt).  columns[j] (from 0) is the column of variable j;
// g.x, g.frq and g.wgt hold the copy of the columns in use.  seeds and means
// hold a row of nv values per cluster; result receives the clusters from 1.
template <class T>
void l_k2ean(int m, int nv, int ldx, int ncol, int ifrq, int iwt, const int *columns, int k, const T *seeds,
             int max_iterations, int *result, T *means, T *ssq, int *counts, KMeans<T> &g) {
    static const char *const name = "l_k2ean ";
    zorvs_e1psh(name);
    auto done = [&] { zorvs_e1pop(name); };
    int arg_no = 0;
    if (k < 2 || k > m) {
        zorvs_e1sti(1, k);
        zorvs_e1sti(2, m);
        zorvs_ermes(5, 20080);
    }
    const int data_columns = ncol - (ifrq ? 1 : 0) - (iwt ? 1 : 0);
    zorvs_c1iarg(ldx, "LDX", m, 0, &arg_no);
    if (nv > data_columns) {
        zorvs_e1sti(1, nv);
        zorvs_e1sti(2, data_columns);
        zorvs_e1sti(3, ifrq - 1);
        zorvs_e1sti(4, iwt - 1);
        zorvs_ermes(5, ifrq && iwt ? 20092 : (ifrq || iwt ? 20093 : 20094));
    }
    for (int j = 0; j < nv; ++j) {
        const int col = columns[j] + 1;  // from 1, as ifrq and iwt
        zorvs_e1sti(1, columns[j]);
        zorvs_e1sti(2, j);
        if (iwt && col == iwt) {
            zorvs_ermes(5, 20090);
        } else if (ifrq && col == ifrq) {
            zorvs_ermes(5, 20091);
        } else if (col < 1 || col > data_columns) {
            zorvs_c1iarg(columns[j], "x_columns", 0, data_columns - 1, &arg_no);
        }
    }
    if (zorvs_n1rcd(0) != 0) return done();
    const T *frq = g.frq, *wgt = g.wgt;
    for (int i = 0; i < m; ++i) {
        if (frq && !(frq[i] > T(0))) {
            zorvs_e1sti(1, i);
            zorvs_ermes(5, 20081);
            return done();
        }
        if (wgt && !(wgt[i] > T(0))) {
            zorvs_e1sti(1, i);
            zorvs_ermes(5, 20082);
            return done();
        }
    }
    g.m = m;
    g.nv = nv;
    g.k = k;
    g.c = means;
    if (frq || wgt) {
        for (int i = 0; i < m; ++i) g.w[i] = (frq ? frq[i] : T(1)) * (wgt ? wgt[i] : T(1));
    } else {
        g.w = nullptr;
    }
    g.missing = false;
    for (int j = 0; j < nv && !g.missing; ++j)
        for (int i = 0; i < m; ++i)
            if (zorvs::is_missing(g.value(i, j))) {
                g.missing = true;
                break;
            }
    for (long q = 0; q < static_cast<long>(k) * nv && !g.missing; ++q)
        if (zorvs::is_missing(seeds[q])) g.missing = true;
    if (!g.missing) g.wsum = nullptr;

    // First assignment: the nearest and second-nearest seeds.
    for (long q = 0; q < static_cast<long>(k) * nv; ++q) g.c[q] = seeds[q];
    for (int i = 0; i < m; ++i) {
        T dt1 = g.distance(i, 0), dt2 = g.distance(i, 1);
        int best = 0, second = 1;
        if (dt1 > dt2) {
            std::swap(dt1, dt2);
            std::swap(best, second);
        }
        for (int l = 2; l < k; ++l) {
            const T db = g.distance(i, l, dt2);
            if (db >= dt2) continue;
            if (db < dt1) {
                dt2 = dt1;
                second = best;
                dt1 = db;
                best = l;
            } else {
                dt2 = db;
                second = l;
            }
        }
        g.ic1[i] = best;
        g.ic2[i] = second;
    }
    l_k7ean(g);
    for (int l = 0; l < k; ++l) {
        if (g.s[l] > T(0)) continue;
        zorvs_e1sti(1, l + 1);
        zorvs_ermes(5, 20083);
        return done();
    }
    for (int l = 0; l < k; ++l) {
        if (!g.w) {
            const T aa = g.s[l];
            g.an2[l] = aa / (aa + T(1));
            g.an1[l] = aa > T(1) ? aa / (aa - T(1)) : T(1e30);
        }
        g.itran[l] = 1;
        g.ncp[l] = -1;
    }
    int indx = 0;
    bool converged = false;
    for (int pass = 0; pass < max_iterations; ++pass) {
        l_k6ean(g, indx);
        if (indx == m) {
            converged = true;
            break;
        }
        if (!l_k3ean(g, indx)) {
            zorvs_e1sti(1, static_cast<int>(std::min(50L * m, static_cast<long>(std::numeric_limits<int>::max()))));
            zorvs_ermes(3, 20085);
            converged = true;  // reported already
            break;
        }
        if (k == 2) {
            converged = true;
            break;
        }
        for (int l = 0; l < k; ++l) g.ncp[l] = 0;
    }
    if (!converged) {
        zorvs_e1sti(1, max_iterations);
        zorvs_ermes(3, 20084);
    }
    // Final means from scratch, then the weighted sums of squares, each
    // summed variable by variable over the observations in order.
    l_k7ean(g);
    for (int l = 0; l < k; ++l) {
        ssq[l] = 0;
        counts[l] = g.nc[l];
    }
    for (int j = 0; j < nv; ++j) {
        for (int i = 0; i < m; ++i) {
            const int l = g.ic1[i];
            const T diff = g.value(i, j) - g.mean(l, j);
            if (g.missing && diff != diff) continue;
            ssq[l] += g.w ? g.w[i] * (diff * diff) : diff * diff;
        }
    }
    for (int i = 0; i < m; ++i) result[i] = g.ic1[i] + 1;
    done();
}

template <class T>
void l_cluster_body(int n_observations, int n_variables, T *x, int n_clusters, T *cluster_seeds, int max_iterations,
                    int x_col_dim, int seeds_col_dim, int means_col_dim, const T *frequencies, const T *weights,
                    const int *x_columns, zorvs::OutputPair<int> &clusters, zorvs::OutputPair<T> &means,
                    zorvs::OutputPair<T> &ssq, zorvs::OutputPair<int> &counts) {
    const int m = n_observations, nv = n_variables;
    // A count of clusters out of range is the worker's to report; the
    // arrays are sized within range meanwhile.
    const int k = std::clamp(n_clusters, 1, m);
    // The table as the worker numbers it: the caller's x_col_dim columns,
    // then frequencies, then weights.  The copy holds only the columns in
    // use, then the frequencies and the weights.
    const int ncol = x_col_dim + (frequencies ? 1 : 0) + (weights ? 1 : 0);
    const int ifrq = frequencies ? x_col_dim + 1 : 0, iwt = weights ? ncol : 0;
    T *table = zorvs::workspace<T>(m, "n_observations", nv + 2, "n_variables");
    if (!table) return;
    int *columns = zorvs::workspace<int>(nv, "n_variables");
    if (!columns) return;
    int *ic1 = zorvs::workspace<int>(m, "n_observations");
    if (!ic1) return;
    T *seeds = zorvs::workspace<T>(k, "n_clusters", nv, "n_variables");
    if (!seeds) return;
    T *centres = zorvs::workspace<T>(k, "n_clusters", nv, "n_variables");
    if (!centres) return;
    T *per_obs = zorvs::workspace<T>(m, "n_observations", 2, "n_observations");  // d and w
    if (!per_obs) return;
    T *per_cluster = zorvs::workspace<T>(k, "n_clusters", 3, "n_clusters");  // s, an1, an2
    if (!per_cluster) return;
    T *wsum = zorvs::workspace<T>(k, "n_clusters", nv, "n_variables");
    if (!wsum) return;
    int *ic2 = zorvs::workspace<int>(m, "n_observations");
    if (!ic2) return;
    int *per_cluster_int = zorvs::workspace<int>(k, "n_clusters", 4, "n_clusters");
    if (!per_cluster_int) return;
    if (!clusters.obtain(m, "n_observations")) return;
    // An output not asked for is still filled, in a work array.
    if (!means.obtain(k, "n_clusters", means_col_dim, "n_variables")) return;
    T *means_data = means.data() ? means.data() : zorvs::workspace<T>(k, "n_clusters", means_col_dim, "n_variables");
    if (!means_data) return;
    if (!ssq.obtain(k, "n_clusters")) return;
    T *ssq_data = ssq.data() ? ssq.data() : zorvs::workspace<T>(k, "n_clusters");
    if (!ssq_data) return;
    if (!counts.obtain(k, "n_clusters")) return;
    int *counts_data = counts.data() ? counts.data() : zorvs::workspace<int>(k, "n_clusters");
    if (!counts_data) return;
    // A variable whose column lies outside the data is the worker's to
    // report; the data are not copied then.
    bool all_inside = true;
    for (int j = 0; j < nv; ++j) {
        columns[j] = x_columns ? x_columns[j] : j;
        all_inside = all_inside && columns[j] >= 0 && columns[j] < x_col_dim;
    }
    if (all_inside)
        for (int i = 0; i < m; ++i)
            for (int j = 0; j < nv; ++j)
                table[static_cast<long>(i) * nv + j] = x[static_cast<long>(i) * x_col_dim + columns[j]];
    T *frq = table + static_cast<long>(nv) * m, *wgt = frq + m;
    if (frequencies)
        for (int i = 0; i < m; ++i) frq[i] = frequencies[i];
    if (weights)
        for (int i = 0; i < m; ++i) wgt[i] = weights[i];
    if (n_clusters >= 2 && n_clusters <= m)
        for (int l = 0; l < k; ++l)
            for (int j = 0; j < nv; ++j)
                seeds[static_cast<long>(l) * nv + j] = cluster_seeds[static_cast<long>(l) * seeds_col_dim + j];
    KMeans<T> g;
    g.x = table;
    g.frq = frequencies ? frq : nullptr;
    g.wgt = weights ? wgt : nullptr;
    g.ic1 = ic1;
    g.w = per_obs + m;
    g.d = per_obs;
    g.s = per_cluster;
    g.an1 = per_cluster + k;
    g.an2 = per_cluster + 2 * k;
    g.wsum = wsum;
    g.ic2 = ic2;
    g.nc = per_cluster_int;
    g.ncp = per_cluster_int + k;
    g.itran = per_cluster_int + 2 * k;
    g.live = per_cluster_int + 3 * k;
    l_k2ean(m, nv, m, ncol, ifrq, iwt, columns, n_clusters, seeds, max_iterations, clusters.data(), centres,
            ssq_data, counts_data, g);
    if (zorvs_error_n1rty[0] < 4)
        for (int l = 0; l < k; ++l)
            for (int j = 0; j < nv; ++j)
                means_data[static_cast<long>(l) * means_col_dim + j] = centres[static_cast<long>(l) * nv + j];
}

template <class T>
void l_cluster_k_means(int n_observations, int n_variables, T *x, int n_clusters, T *cluster_seeds,
                       va_list *list) {
    zorvs::OutputPair<int> clusters(lv_clusters<T>);
    zorvs::KeywordReader kw(list, 5);
    int max_iterations = 30, x_col_dim = n_variables, seeds_col_dim = n_variables, means_col_dim = n_variables;
    const T *frequencies = nullptr, *weights = nullptr;
    const int *x_columns = nullptr;
    zorvs::OutputPair<T> means, ssq;
    zorvs::OutputPair<int> counts;
    // The addresses given with ZORVS_X, nulled when the call fails.
    T **means_address = nullptr, **ssq_address = nullptr;
    int **counts_address = nullptr;
    for (int key = kw.keyword(); key != 0; key = kw.keyword()) {
        switch (key) {
        case ZORVS_RETURN_USER: clusters.take_user(kw.pointer<int>()); break;
        case ZORVS_MAX_ITERATIONS: max_iterations = kw.integer(); break;
        case ZORVS_WEIGHTS: weights = kw.pointer<T>(); break;
        case ZORVS_FREQUENCIES: frequencies = kw.pointer<T>(); break;
        case ZORVS_X_COL_DIM: x_col_dim = kw.integer(); break;
        case ZORVS_CLUSTER_SEEDS_COL_DIM: seeds_col_dim = kw.integer(); break;
        case ZORVS_CLUSTER_MEANS_COL_DIM: means_col_dim = kw.integer(); break;
        case ZORVS_CLUSTER_MEANS:
            means_address = kw.pointer<T *>();
            means.take_address(means_address);
            break;
        case ZORVS_CLUSTER_MEANS_USER:
            means_address = nullptr;
            means.take_user(kw.pointer<T>());
            break;
        case ZORVS_CLUSTER_SSQ:
            ssq_address = kw.pointer<T *>();
            ssq.take_address(ssq_address);
            break;
        case ZORVS_CLUSTER_SSQ_USER:
            ssq_address = nullptr;
            ssq.take_user(kw.pointer<T>());
            break;
        case ZORVS_CLUSTER_COUNTS:
            counts_address = kw.pointer<int *>();
            counts.take_address(counts_address);
            break;
        case ZORVS_CLUSTER_COUNTS_USER:
            counts_address = nullptr;
            counts.take_user(kw.pointer<int>());
            break;
        case ZORVS_X_COLUMNS: x_columns = kw.pointer<int>(); break;
        default: kw.unknown(key); return;
        }
    }
    int arg_no = 0;
    zorvs_c1iarg(n_observations, "n_observations", 1, 0, &arg_no);
    zorvs_c1iarg(n_variables, "n_variables", 1, 0, &arg_no);
    zorvs_c1iarg(max_iterations, "max_iterations", 1, 0, &arg_no);
    zorvs_c1iarg(x_col_dim, "x_col_dim", 1, 0, &arg_no);
    zorvs_c1dim(1, n_variables, "*n_variables", seeds_col_dim, "cluster_seeds_col_dim", &arg_no);
    zorvs_c1dim(1, n_variables, "*n_variables", means_col_dim, "cluster_means_col_dim", &arg_no);
    zorvs_null_pointer("x", -1, x);
    zorvs_null_pointer("cluster_seeds", -1, cluster_seeds);
    if (zorvs_error_n1rty[0] < 4)
        l_cluster_body(n_observations, n_variables, x, n_clusters, cluster_seeds, max_iterations, x_col_dim,
                       seeds_col_dim, means_col_dim, frequencies, weights, x_columns, clusters, means, ssq, counts);
    zorvs::null_failed_addresses(means_address, ssq_address, counts_address);
}

}  // namespace

extern "C" {

int *zorvs_f_cluster_k_means(int n_observations, int n_variables, float x[], int n_clusters, float cluster_seeds[],
                             ...) {
    ZORVS_KEYWORD_ENTRY(cluster_seeds, "zorvs_f_cluster_k_means", lv_clusters<float>,
                        l_cluster_k_means<float>(n_observations, n_variables, x, n_clusters, cluster_seeds, &list));
}
int *zorvs_d_cluster_k_means(int n_observations, int n_variables, double x[], int n_clusters,
                             double cluster_seeds[], ...) {
    ZORVS_KEYWORD_ENTRY(cluster_seeds, "zorvs_d_cluster_k_means", lv_clusters<double>,
                        l_cluster_k_means<double>(n_observations, n_variables, x, n_clusters, cluster_seeds,
                                                  &list));
}

}  // extern "C"
