// contingency_table.cpp - analysis of a two-way table of non-negative counts:
// Pearson's chi-squared test and the likelihood-ratio test G^2, expected
// counts and cell contributions, the exact mean and standard deviation of
// Pearson's statistic given the margins, phi, the contingency coefficient,
// Cramer's V, and a table of 23 measures of association (statistic,
// asymptotic standard error, standard error under independence, standardised
// value, p-value).  The result is the p-value of Pearson's test.
//
// Methods and references:
// - Exact moments of X^2 given both margins: Haldane (1940), "The mean and
//   variance of chi^2, when used as a test of homogeneity, when expectations
//   are small", Biometrika 31; Dawson (1954), Biometrika 41.
// - Concordance measures (gamma, Kendall's tau-b, Stuart's tau-c, Somers' D)
//   with their asymptotic standard errors: Goodman and Kruskal (1972), JASA
//   67; Brown and Benedetti (1977), "Sampling behavior of tests for
//   correlation in two-way contingency tables", JASA 72.  The counts of
//   concordant and discordant cells, C_ij and D_ij, come from four running
//   quadrant sums (above-left, above-right, below-left, below-right), so the
//   whole block costs O(r c) and not the O(r^2 c^2) of the definition; with
//   integer counts the quadrant sums are exact.
// - Goodman-Kruskal tau, lambda and lambda-star, uncertainty coefficients:
//   Goodman and Kruskal (1954, 1963, 1972); Theil (1970).
// - Spearman's correlation from midranks and its standard error: Brown and
//   Benedetti (1977).  The term of v_ij that runs over a row (over a column)
//   depends on i (on j) alone and is formed once per row (per column).
// - Cochran-Armitage slope for a two-level margin with its standard error
//   under no trend, sqrt(p1 (1 - p1) / Sxx); Kruskal-Wallis with the table's
//   margins as tied groups; Cohen's (1960) kappa with his large-sample
//   errors sqrt(po (1 - po) / N) / (1 - pe) and, under independence,
//   sqrt(pe / (N (1 - pe))); Bowker's (1948) symmetry test and its sign form.
// - The error of Goodman-Kruskal tau (row 7) is 2 sqrt(sum_i SS_i / r_i) / Dc
//   with SS_i the corrected sum of squares over j of N T_ij + (tau - 1) c_j r_i,
//   weights T_ij / r_i (row 8 the mirror).  It is not the delta-method error
//   of tau: the two differ by a few per cent on real tables.
// Every weighted mean and corrected sum of squares is the streaming update
// of zorvs_s1msq (West 1979).
//
// Scaling: every measure of rows 0 to 17 and 20 is unchanged when all counts
// are multiplied by one factor, and each of its standard errors scales as
// 1/sqrt(N).  Those rows are therefore computed on the proportions T/N and
// their standard errors divided by sqrt(N): the sums of the definitions grow
// like N^7 (the gamma error) and would leave the range of double from N of
// about 1e44 on.  The chi-squared, Kruskal-Wallis and symmetry rows use the
// counts as given.  Both twins compute in double and the single twin rounds
// its results: in single precision the sums over a 1000 x 1000 table lose
// the small measures of a table with little association altogether.
//
// Choices made here:
// - The table is read where it lies, row-major, and never written: a trap
//   leaves it as the caller passed it.  The computation takes its sizes and
//   switches from this routine alone, so there is no leading dimension or
//   flag of its own to refuse.
// - A NaN count is refused as a negative one is ((5, 11140), r1 the NaN); an
//   infinite count passes the checks and makes the results NaN.
// - The checks (dimensions, counts, margins) and every allocation come before
//   the computation (l_ctchi) and before anything is written: after a
//   message of type 4 or 5 no output, caller's storage included, has been
//   touched, the addresses given with the allocating keywords are left as
//   the caller had them, and the result is 0.
// - A zero divisor of a standardised value leaves columns 3 and 4 of the row
//   missing.  The null standard error of kappa, sqrt(pe / (N (1 - pe))), is
//   positive whenever the margins are, so (6, 11135) is not reached by a
//   table that passes the checks.
// - P-values are 1 minus the distribution function, so they have an absolute
//   and not a relative accuracy: a p-value below about 1e-16 comes out as 0
//   or as a rounding error.
// - The exact two-sided binomial p-value of the sign form is 2 F(a) when the
//   binomial distribution function F at a (nearest integer) is at most 0.5,
//   else 2 (1 - F(a)); with fractional counts the nearest integers of a and
//   n round halves away from zero.
#include <climits>
#include <cmath>
#include <cstdarg>
#include <type_traits>

#include "dist/dist.hpp"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "frame/raise.hpp"
#include "frame/twin.hpp"
#include "stat/regress/regress.hpp"
#include "zorvstat.h"

namespace {

template <class T>
constinit thread_local T lv_p_value = T(0);

constexpr int n_measures = 23;
constexpr int n_columns_of_measures = 5;

// A row-major table.
template <class T>
struct Cells {
    const T *t;
    int r, c;
    T operator()(int i, int j) const { return t[static_cast<long>(i) * c + j]; }
};

// Weighted means and corrected sums of squares of K variables, one
// observation at a time.
template <class T, int K>
struct Running {
    T weight = 0, mean[K] = {}, ss[K] = {};
    void add(T w, const T *x) {
        const int n = K, inc = 1;
        zorvs::regress::s1msq(&n, x, &inc, &w, &weight, mean, &inc, ss, &inc);
    }
};

// Argument checks that need the counts: every count at least 0 (columns
// outermost, the first offender reported), then every margin above 0.001.
// Fills the row and column totals and N; false after a message.
template <class T>
bool l_counts_valid(const Cells<T> &t, T *row, T *col, T &n) {
    for (int j = 0; j < t.c; ++j)
        for (int i = 0; i < t.r; ++i)
            if (!(t(i, j) >= T(0))) {
                zorvs::raise(5, 11140, i + 1, j + 1, t(i, j));
                return false;
            }
    n = 0;
    for (int j = 0; j < t.c; ++j) col[j] = 0;
    for (int i = 0; i < t.r; ++i) {
        T s = 0;
        for (int j = 0; j < t.c; ++j) {
            s += t(i, j);
            col[j] += t(i, j);
        }
        row[i] = s;
        n += s;
    }
    T smallest = row[0];
    for (int i = 1; i < t.r; ++i) smallest = std::fmin(smallest, row[i]);
    for (int j = 0; j < t.c; ++j) smallest = std::fmin(smallest, col[j]);
    if (smallest <= T(0.001)) {
        zorvs_ermes(5, 11141);
        return false;
    }
    return true;
}

template <class T>
T upper_chi_squared(T x, T df) {
    return T(1) - zorvs::dist::chi_squared_cdf(x, df);
}

template <class T>
T two_sided_normal(T z) {
    return T(2) - T(2) * zorvs::dist::normal_cdf(std::fabs(z));
}

// Expected counts, contributions, the two tests, the exact moments and the
// chi-squared based measures.  e and q are row-major (r+1) x (c+1).
template <class T>
void l_chi_squared_block(const Cells<T> &t, const T *row, const T *col, T n, T *e, T *q, T *chi,
                         bool association) {
    const int r = t.r, c = t.c;
    const long ld = c + 1;
    for (long k = 0; k < (r + 1) * ld; ++k) q[k] = 0;
    T x2 = 0, g2 = 0;
    int small = 0;
    bool below2 = false, below1 = false;
    for (int i = 0; i < r; ++i) {
        for (int j = 0; j < c; ++j) {
            const T x = t(i, j), expected = row[i] * col[j] / n, d = x - expected, part = d * d / expected;
            e[i * ld + j] = expected;
            q[i * ld + j] = part;
            q[i * ld + c] += part;
            q[r * ld + j] += part;
            x2 += part;
            if (x > T(0)) g2 += x * std::log(x / expected);
            if (expected < T(5)) {
                ++small;
                below2 = below2 || expected < T(2);
                below1 = below1 || expected < T(1);
            }
        }
        e[i * ld + c] = row[i];
    }
    for (int j = 0; j < c; ++j) e[r * ld + j] = col[j];
    e[r * ld + c] = n;
    q[r * ld + c] = x2;
    const T df = static_cast<T>(r - 1) * static_cast<T>(c - 1);
    chi[0] = x2;
    chi[2] = df;
    chi[3] = T(2) * g2;
    if (small > T(0.2) * static_cast<T>(r) * static_cast<T>(c)) {
        if (df > T(30)) zorvs_ermes(3, 11145);
        else if (!below2) zorvs_ermes(3, 11147);
        else zorvs::raise(3, 11146, below1 ? 1 : 2);
    }
    if (n > T(3)) {
        T sr = 0, sc = 0;
        for (int i = 0; i < r; ++i) sr += T(1) / row[i];
        for (int j = 0; j < c; ++j) sc += T(1) / col[j];
        const T rr = static_cast<T>(r), cc = static_cast<T>(c), rc = rr * cc, s = rr + cc;
        const T a = (((T(2) * df * n + rc * rc + T(2) * (s - T(2))) * n - T(2) * (rc * df + s * (s - T(2)))) * n -
                     rc * (rr - T(2)) * (cc - T(2))) /
                    ((n - T(1)) * (n - T(1)) * (n - T(2)));
        const T b = ((sr * sc * n - ((rr + T(1)) * (rr + T(1)) - T(3)) * sc -
                      ((cc + T(1)) * (cc + T(1)) - T(3) - sc) * sr) *
                         n +
                     rr * (rr - T(2)) * sc + cc * (cc - T(2)) * sr) *
                    n / ((n - T(1)) * (n - T(2)));
        const T v = a + b < T(0) ? T(0) : a + b;
        chi[5] = df * n / (n - T(1));
        chi[6] = std::sqrt(n / (n - T(3)) * v);
    } else {
        zorvs_ermes(6, 11148);
    }
    chi[1] = upper_chi_squared(chi[0], df);
    chi[4] = upper_chi_squared(chi[3], df);
    if (!association) return;
    const T m = static_cast<T>(r < c ? r : c);
    chi[7] = std::sqrt(x2 / n);
    chi[8] = std::sqrt(x2 / (n + x2));
    chi[9] = std::sqrt(x2 / (n * (m - T(1))));
}

// Concordant (C) and discordant (D) sums of every cell, r x c row-major,
// from running quadrant sums; acc holds c reals.
template <class T>
void l_concordance(const Cells<T> &p, T *cc, T *dd, T *acc) {
    const int r = p.r, c = p.c;
    for (int j = 0; j < c; ++j) acc[j] = 0;
    for (int i = 0; i < r; ++i) {  // acc[j]: column j summed over the rows above i
        T run = 0;
        for (int j = 0; j < c; ++j) {
            cc[static_cast<long>(i) * c + j] = run;  // above and left
            run += acc[j];
        }
        run = 0;
        for (int j = c - 1; j >= 0; --j) {
            dd[static_cast<long>(i) * c + j] = run;  // above and right
            run += acc[j];
        }
        for (int j = 0; j < c; ++j) acc[j] += p(i, j);
    }
    for (int j = 0; j < c; ++j) acc[j] = 0;
    for (int i = r - 1; i >= 0; --i) {  // acc[j]: column j summed over the rows below i
        T run = 0;
        for (int j = c - 1; j >= 0; --j) {
            cc[static_cast<long>(i) * c + j] += run;  // below and right
            run += acc[j];
        }
        run = 0;
        for (int j = 0; j < c; ++j) {
            dd[static_cast<long>(i) * c + j] += run;  // below and left
            run += acc[j];
        }
        for (int j = 0; j < c; ++j) acc[j] += p(i, j);
    }
}

// Index of the first largest of n values with stride inc.
template <class T>
int first_max(int n, const T *x, int inc) {
    int k = 0;
    for (int i = 1; i < n; ++i)
        if (x[i * inc] > x[k * inc]) k = i;
    return k;
}

// Work arrays of the measures.
template <class T>
struct Work {
    T *p;           // r x c: the proportions T / N
    T *pr, *pc;     // their margins
    T *cc, *dd;     // r x c: concordant and discordant sums
    T *ri, *cj;     // centred midranks of the rows and the columns
    T *gi, *hj;     // the row and column parts of Spearman's v
    T *log_pr;      // logarithms of the row and column proportions
    T *log_pc;
    T *acc;         // max(r, c) running sums
    int *amax;      // r: first largest cell of each row
    int *bmax;      // c: first largest cell of each column
};

// The sums of the errors of Goodman-Kruskal tau and lambda-star over the
// rows (rows 8 and 16: over the columns, with p read transposed): for each
// row i the corrected sums of squares, weights p_ij / pr_i, of the tau term
// p_ij + (tau - 1) pc_j pr_i and of the indicator term a + (star - 1) g,
// each divided by pr_i and summed.
template <class T, class Cell>
void l_within_rows(int r, int c, Cell p, const T *pr, const T *pc, const int *amax, int gstar, T tau, T star,
                   T &ss_tau, T &ss_star) {
    ss_tau = ss_star = 0;
    for (int i = 0; i < r; ++i) {
        Running<T, 2> one;
        for (int j = 0; j < c; ++j) {
            const T x[2] = {p(i, j) + (tau - T(1)) * pc[j] * pr[i],
                            (amax[i] == j ? T(1) : T(0)) + (star - T(1)) * (j == gstar ? T(1) : T(0))};
            one.add(p(i, j) / pr[i], x);
        }
        ss_tau += one.ss[0] / pr[i];
        ss_star += one.ss[1] / pr[i];
    }
}

// Rows 0 to 17 and 20 of the measures, columns 0 to 2, on the proportions
// p (total 1) with margins pr and pc.  s is the 23 x 5 row-major table.
template <class T>
void l_scale_free_measures(const Cells<T> &p, const T *pr, const T *pc, const Work<T> &w, T *s) {
    const int r = p.r, c = p.c;
    auto cell = [s](int row, int col) -> T & { return s[row * n_columns_of_measures + col]; };

    // Concordance, rows 0 to 4.
    l_concordance(p, w.cc, w.dd, w.acc);
    T pp = 0, qq = 0;
    for (int i = 0; i < r; ++i)
        for (int j = 0; j < c; ++j) {
            pp += p(i, j) * w.cc[static_cast<long>(i) * c + j];
            qq += p(i, j) * w.dd[static_cast<long>(i) * c + j];
        }
    T dr = 1, dc = 1;
    for (int i = 0; i < r; ++i) dr -= pr[i] * pr[i];
    for (int j = 0; j < c; ++j) dc -= pc[j] * pc[j];
    const T wroot = std::sqrt(dr * dc), m = static_cast<T>(r < c ? r : c), diff = pp - qq;
    const T gamma = diff / (pp + qq), tau_b = diff / wroot;

    // Scores, rows 5 and 6: weighted means and sums of squares of the
    // integer scores and of the centred midranks.
    Running<T, 2> rows, cols;
    T before = 0;
    for (int i = 0; i < r; ++i) {
        w.ri[i] = before + pr[i] / T(2) - T(0.5);
        before += pr[i];
        const T x[2] = {static_cast<T>(i + 1), w.ri[i]};
        rows.add(pr[i], x);
    }
    before = 0;
    for (int j = 0; j < c; ++j) {
        w.cj[j] = before + pc[j] / T(2) - T(0.5);
        before += pc[j];
        const T x[2] = {static_cast<T>(j + 1), w.cj[j]};
        cols.add(pc[j], x);
    }
    const T a = rows.mean[0], b = cols.mean[0], ur = rows.ss[0], uc = cols.ss[0];
    const T wr = rows.ss[1], wc = cols.ss[1], uroot = std::sqrt(ur * uc), wrc = std::sqrt(wr * wc);
    T xs = 0, ys = 0;
    for (int i = 0; i < r; ++i)
        for (int j = 0; j < c; ++j) {
            xs += p(i, j) * (T(i + 1) - a) * (T(j + 1) - b);
            ys += p(i, j) * w.ri[i] * w.cj[j];
        }
    const T rho = xs / uroot, rho_s = ys / wrc;
    // g_i = sum_k C_k (p_ik/2 + column k below row i); h_j the mirror.
    for (int j = 0; j < c; ++j) w.acc[j] = 0;
    for (int i = r - 1; i >= 0; --i) {
        T g = 0;
        for (int k = 0; k < c; ++k) {
            g += w.cj[k] * (p(i, k) / T(2) + w.acc[k]);
            w.acc[k] += p(i, k);
        }
        w.gi[i] = g;
    }
    for (int j = 0; j < c; ++j) w.hj[j] = 0;
    for (int l = 0; l < r; ++l) {
        T right = 0;
        for (int j = c - 1; j >= 0; --j) {
            w.hj[j] += w.ri[l] * (p(l, j) / T(2) + right);
            right += p(l, j);
        }
    }

    // Lambda, rows 12 to 16: first maxima of rows, columns and margins.
    T sum_a = 0, sum_b = 0, l1 = 0, l2 = 0;
    for (int i = 0; i < r; ++i) {
        w.amax[i] = first_max(c, p.t + static_cast<long>(i) * c, 1);
        sum_a += p(i, w.amax[i]);
        l1 += p(i, w.amax[i]) / pr[i];
    }
    for (int j = 0; j < c; ++j) {
        w.bmax[j] = first_max(r, p.t + j, c);
        sum_b += p(w.bmax[j], j);
        l2 += p(w.bmax[j], j) / pc[j];
    }
    const int istar = first_max(r, pr, 1), jstar = first_max(c, pc, 1);
    const T rm = pr[istar], cm = pc[jstar];
    // M1 = max_j sum_i p_ij / pr_i and M2 the mirror.
    for (int j = 0; j < c; ++j) w.acc[j] = 0;
    for (int i = 0; i < r; ++i)
        for (int j = 0; j < c; ++j) w.acc[j] += p(i, j) / pr[i];
    const int gstar = first_max(c, w.acc, 1);
    const T m1 = w.acc[gstar];
    T m2 = 0;
    int hstar = 0;
    for (int i = 0; i < r; ++i) {
        T v = 0;
        for (int j = 0; j < c; ++j) v += p(i, j) / pc[j];
        if (i == 0 || v > m2) {
            m2 = v;
            hstar = i;
        }
    }
    const T lambda = (sum_a + sum_b - rm - cm) / (T(2) - rm - cm);
    const T lambda_c = (sum_a - cm) / (T(1) - cm), lambda_r = (sum_b - rm) / (T(1) - rm);
    const T star_r = (l1 - m1) / (static_cast<T>(r) - m1), star_c = (l2 - m2) / (static_cast<T>(c) - m2);

    // Goodman-Kruskal tau, rows 7 and 8.
    T sq = 0;
    for (int i = 0; i < r; ++i) {
        T v = 0;
        for (int j = 0; j < c; ++j) v += p(i, j) * p(i, j);
        sq += v / pr[i];
    }
    const T tau_c_given_r = (sq - (T(1) - dc)) / dc;
    sq = 0;
    for (int j = 0; j < c; ++j) {
        T v = 0;
        for (int i = 0; i < r; ++i) v += p(i, j) * p(i, j);
        sq += v / pc[j];
    }
    const T tau_r_given_c = (sq - (T(1) - dr)) / dr;

    // Entropies, rows 9 to 11 (sums of p log p, so each is at most 0).
    T hr = 0, hc = 0, hrc = 0;
    for (int i = 0; i < r; ++i) {
        w.log_pr[i] = std::log(pr[i]);
        hr += pr[i] * w.log_pr[i];
    }
    for (int j = 0; j < c; ++j) {
        w.log_pc[j] = std::log(pc[j]);
        hc += pc[j] * w.log_pc[j];
    }
    for (int i = 0; i < r; ++i)
        for (int j = 0; j < c; ++j)
            if (p(i, j) > T(0)) hrc += p(i, j) * std::log(p(i, j));
    const T info = hc + hr - hrc, hsum = hr + hc;

    // One pass over the cells for the standard errors with weights p.
    // Streamed: 0 C-D, 1 tau-b, 2 the score products, 3 and 4 Spearman's
    // null and non-null terms, 5 to 7 the lambdas.
    Running<T, 8> cells;
    T sum_gamma = 0, sum_row = 0, sum_col = 0, sum_rho = 0, sum_u = 0, sum_uc = 0, sum_ur = 0;
    for (int i = 0; i < r; ++i)
        for (int j = 0; j < c; ++j) {
            const T x = p(i, j);
            if (!(x > T(0))) continue;
            const T cij = w.cc[static_cast<long>(i) * c + j], dij = w.dd[static_cast<long>(i) * c + j], cd = cij - dij;
            const T di = T(i + 1) - a, dj = T(j + 1) - b;
            const T v = w.ri[i] * w.cj[j] + w.gi[i] + w.hj[j];
            const T z = -(wr * pc[j] * pc[j] + wc * pr[i] * pr[i]) / (T(8) * wrc);
            const T ea = w.amax[i] == j ? T(1) : T(0), eb = w.bmax[j] == i ? T(1) : T(0);
            const T ee = j == jstar ? T(1) : T(0), ef = i == istar ? T(1) : T(0);
            const T xs8[8] = {cd,
                              T(2) * wroot * cd + tau_b * (pc[j] * dr + pr[i] * dc),
                              di * dj,
                              v / wrc,
                              (wrc * v - ys * z) / (wr * wc),
                              ea + eb + (lambda - T(1)) * (ee + ef),
                              ea + (lambda_c - T(1)) * ee,
                              eb + (lambda_r - T(1)) * ef};
            cells.add(x, xs8);
            const T g = qq * cij - pp * dij, sr = dr * cd - (T(1) - pr[i]) * diff,
                    sc = dc * cd - (T(1) - pc[j]) * diff;
            const T h = uroot * di * dj - rho * (di * di * uc + dj * dj * ur) / T(2);
            const T lp = std::log(x);
            const T u = hsum * lp - hrc * (w.log_pr[i] + w.log_pc[j]);
            const T uc_term = hc * (lp - w.log_pr[i]) + (hr - hrc) * w.log_pc[j];
            const T ur_term = hr * (lp - w.log_pc[j]) + (hc - hrc) * w.log_pr[i];
            sum_gamma += x * g * g;
            sum_row += x * sr * sr;
            sum_col += x * sc * sc;
            sum_rho += x * h * h;
            sum_u += x * u * u;
            sum_uc += x * uc_term * uc_term;
            sum_ur += x * ur_term * ur_term;
        }
    const T root_v = std::sqrt(cells.ss[0]);

    // Rows 7, 15 over the rows of the table and 8, 16 over its columns.
    T ss7, ss15, ss8, ss16;
    l_within_rows(r, c, [&](int i, int j) { return p(i, j); }, pr, pc, w.amax, gstar, tau_c_given_r, star_r, ss7,
                  ss15);
    l_within_rows(c, r, [&](int j, int i) { return p(i, j); }, pc, pr, w.bmax, hstar, tau_r_given_c, star_c, ss8,
                  ss16);

    const T mm = m / (m - T(1));
    const T values[17][3] = {
        {gamma, T(4) * std::sqrt(sum_gamma) / ((pp + qq) * (pp + qq)), T(2) * root_v / (pp + qq)},
        {tau_b, std::sqrt(cells.ss[1]) / (wroot * wroot), T(2) * root_v / wroot},
        {diff * mm, T(2) * mm * root_v, zorvs::missing<T>()},
        {diff / dr, T(2) * std::sqrt(sum_row) / (dr * dr), T(2) * root_v / dr},
        {diff / dc, T(2) * std::sqrt(sum_col) / (dc * dc), T(2) * root_v / dc},
        {rho, std::sqrt(sum_rho) / (uc * ur), std::sqrt(cells.ss[2]) / uroot},
        {rho_s, std::sqrt(cells.ss[4]), std::sqrt(cells.ss[3])},
        {tau_c_given_r, T(2) * std::sqrt(ss7) / dc, zorvs::missing<T>()},
        {tau_r_given_c, T(2) * std::sqrt(ss8) / dr, zorvs::missing<T>()},
        {T(2) * info / hsum, T(2) * std::sqrt(sum_u) / (hsum * hsum), zorvs::missing<T>()},
        {info / hc, std::sqrt(sum_uc) / (hc * hc), zorvs::missing<T>()},
        {info / hr, std::sqrt(sum_ur) / (hr * hr), zorvs::missing<T>()},
        {lambda, std::sqrt(cells.ss[5]) / (T(2) - rm - cm), zorvs::missing<T>()},
        {lambda_c, std::sqrt(cells.ss[6]) / (T(1) - cm), zorvs::missing<T>()},
        {lambda_r, std::sqrt(cells.ss[7]) / (T(1) - rm), zorvs::missing<T>()},
        {star_r, std::sqrt(ss15) / (static_cast<T>(r) - m1), zorvs::missing<T>()},
        {star_c, std::sqrt(ss16) / (static_cast<T>(c) - m2), zorvs::missing<T>()},
    };
    for (int row = 0; row < 17; ++row)
        for (int col = 0; col < 3; ++col) cell(row, col) = values[row][col];

    // Row 17: Cochran-Armitage slope of the first level over the scores of
    // the other margin.
    if (r == 2 || c == 2) {
        const bool by_columns = r == 2;
        const int levels = by_columns ? c : r;
        const T p1 = by_columns ? pr[0] : pc[0];
        Running<T, 1> scores;
        for (int k = 0; k < levels; ++k) {
            const T x[1] = {static_cast<T>(k + 1)};
            scores.add(by_columns ? pc[k] : pr[k], x);
        }
        T slope = 0;
        for (int k = 0; k < levels; ++k) {
            const T nk = by_columns ? pc[k] : pr[k], tk = by_columns ? p(0, k) : p(k, 0);
            slope += (tk - p1 * nk) * (static_cast<T>(k + 1) - scores.mean[0]);
        }
        cell(17, 0) = slope / scores.ss[0];
        cell(17, 1) = std::sqrt(p1 * (T(1) - p1) / scores.ss[0]);
    }
    // Row 20: Cohen's kappa.
    if (r == c) {
        T po = 0, pe = 0;
        for (int i = 0; i < r; ++i) {
            po += p(i, i);
            pe += pr[i] * pc[i];
        }
        cell(20, 0) = (po - pe) / (T(1) - pe);
        cell(20, 1) = std::sqrt(po * (T(1) - po)) / (T(1) - pe);
        cell(20, 2) = std::sqrt(pe / (T(1) - pe));
    }
}

// Kruskal-Wallis statistic with the groups along one margin and the other
// margin's levels as tied values: groups of totals g (n_groups), values with
// totals v, count(group, level).
template <class T, class Count>
T l_kruskal_wallis(int n_groups, const T *g, int n_levels, const T *v, T n, T *rank, Count count) {
    // Centred midranks of the levels: midrank - (N+1)/2.
    T before = 0, spread = 0;
    for (int k = 0; k < n_levels; ++k) {
        rank[k] = before + v[k] / T(2) - n / T(2);
        before += v[k];
        spread += v[k] * rank[k] * rank[k];
    }
    // sum R_i^2 / g_i - N ((N+1)/2)^2 = sum g_i (mean centred rank of group i)^2.
    T between = 0;
    for (int i = 0; i < n_groups; ++i) {
        T sum = 0;
        for (int k = 0; k < n_levels; ++k) sum += count(i, k) * rank[k];
        between += sum * sum / g[i];
    }
    return between * (n - T(1)) / spread;
}

// Rows 18, 19, 21 and 22 on the counts as given.
template <class T>
void l_count_measures(const Cells<T> &t, const T *row, const T *col, T n, T *rank, T *s) {
    const int r = t.r, c = t.c;
    auto cell = [s](int k, int col_) -> T & { return s[k * n_columns_of_measures + col_]; };
    const T kw_rows = l_kruskal_wallis(r, row, c, col, n, rank, [&](int i, int k) { return t(i, k); });
    cell(18, 0) = kw_rows;
    cell(18, 1) = static_cast<T>(r - 1);
    cell(18, 4) = upper_chi_squared(kw_rows, static_cast<T>(r - 1));
    const T kw_cols = l_kruskal_wallis(c, col, r, row, n, rank, [&](int j, int k) { return t(k, j); });
    cell(19, 0) = kw_cols;
    cell(19, 1) = static_cast<T>(c - 1);
    cell(19, 4) = upper_chi_squared(kw_cols, static_cast<T>(c - 1));
    if (r != c) return;

    T bowker = 0, above = 0, pairs = 0;
    bool empty_pair = false;
    for (int i = 0; i < r; ++i)
        for (int j = i + 1; j < r; ++j) {
            const T sum = t(i, j) + t(j, i), d = t(i, j) - t(j, i);
            if (sum == T(0)) empty_pair = true;
            else bowker += d * d / sum;
            above += t(i, j);
            pairs += sum;
        }
    if (empty_pair) {
        zorvs::raise(6, 11131, 21);
    } else {
        const T df = static_cast<T>(r) * static_cast<T>(r - 1) / T(2);
        cell(21, 0) = bowker;
        cell(21, 1) = df;
        cell(21, 4) = upper_chi_squared(bowker, df);
    }
    if (pairs == T(0)) {
        zorvs::raise(6, 11132, 22);
        return;
    }
    const T d = T(2) * (above - pairs / T(2));
    cell(22, 0) = d * d / pairs;
    cell(22, 1) = T(1);
    const long k = std::lround(above), total = std::lround(pairs);
    T exact = 0;
    if (total >= 1) {
        // Beyond the int range of the binomial's number of trials, the same
        // distribution function in its incomplete beta form, I_1/2(n - k, k + 1).
        const T f = total <= INT_MAX ? zorvs::dist::binomial_cdf(static_cast<int>(k), static_cast<int>(total), T(0.5))
                    : k >= total     ? T(1)
                                     : zorvs::dist::beta_cdf(T(0.5), static_cast<T>(total - k), static_cast<T>(k + 1));
        exact = f > T(0.5) ? T(2) * (T(1) - f) : T(2) * f;
    }
    cell(22, 3) = exact;
    cell(22, 4) = upper_chi_squared(cell(22, 0), T(1));
}

// Standardised values and p-values of rows 0 to 6 and 20; a zero divisor
// leaves them missing with a note.
template <class T>
void l_standardise(T *s) {
    static const char *const labels[5] = {"Gamma", "Kendall", "Stuart", "Somer(row)", "Somer(col)"};
    const int rows[8] = {0, 1, 2, 3, 4, 5, 6, 20};
    for (int row : rows) {
        T *x = s + row * n_columns_of_measures;
        if (std::isnan(x[0])) continue;  // a square-table row of another table
        const T divisor = row == 2 ? x[1] : x[2];
        if (divisor == T(0)) {
            if (row < 5) {
                zorvs_e1stl(1, "table");
                zorvs_e1stl(2, labels[row]);
                zorvs::raise(6, 11149, row, 3, row, 4);
            } else {
                zorvs_ermes(6, row == 5 ? 11134 : row == 6 ? 11133 : 11135);
            }
            continue;
        }
        x[3] = x[0] / divisor;
        x[4] = two_sided_normal(x[3]);
    }
    T *trend = s + 17 * n_columns_of_measures;
    if (!std::isnan(trend[0]) && trend[1] != T(0)) {
        trend[3] = trend[0] / trend[1];
        trend[4] = two_sided_normal(trend[3]);
    }
}

// The computation on a checked table with its totals: chi (10 reals), the
// expected and contributions tables e and q, and, unless s is null, the
// 23 x 5 statistics s with the chi-squared based measures.
template <class T>
void l_ctchi(const Cells<T> &t, const T *row, const T *col, T n, T *e, T *q, T *chi, T *s, const Work<T> &w) {
    const int r = t.r, c = t.c;
    for (int k = 0; k < 10; ++k) chi[k] = zorvs::missing<T>();
    l_chi_squared_block(t, row, col, n, e, q, chi, s != nullptr);
    if (!s) return;
    for (int k = 0; k < n_measures * n_columns_of_measures; ++k) s[k] = zorvs::missing<T>();
    // Proportions and their margins: the counts divided by N.
    for (int i = 0; i < r; ++i)
        for (int j = 0; j < c; ++j) w.p[static_cast<long>(i) * c + j] = t(i, j) / n;
    for (int i = 0; i < r; ++i) w.pr[i] = row[i] / n;
    for (int j = 0; j < c; ++j) w.pc[j] = col[j] / n;
    l_scale_free_measures(Cells<T>{w.p, r, c}, w.pr, w.pc, w, s);
    // Standard errors of the proportions' measures scale as 1/sqrt(N).
    const T root_n = std::sqrt(n);
    for (int k = 0; k < n_measures; ++k)
        if (k <= 17 || k == 20)
            for (int col_ = 1; col_ <= 2; ++col_) s[k * n_columns_of_measures + col_] /= root_n;
    l_count_measures(t, row, col, n, w.acc, s);
    l_standardise(s);
}

template <class T>
void l_contingency_table(int n_rows, int n_columns, T *table, va_list *list) {
    zorvs::KeywordReader kw(list, 3);
    zorvs::OutputPair<T> expected, contributions, chi_statistics, statistics;
    int *df_out[2] = {};
    T *statistic_out[2] = {}, *p_out[2] = {};
    bool triple = false;
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        switch (k) {
        case ZORVS_CHI_SQUARED:
        case ZORVS_LRT: {
            const int which = k == ZORVS_LRT ? 1 : 0;
            df_out[which] = kw.pointer<int>();
            statistic_out[which] = kw.pointer<T>();
            p_out[which] = kw.pointer<T>();
            triple = true;
            break;
        }
        case ZORVS_EXPECTED: expected.take_address(kw.pointer<T *>()); break;
        case ZORVS_EXPECTED_USER: expected.take_user(kw.pointer<T>()); break;
        case ZORVS_CHI_SQUARED_CONTRIBUTIONS: contributions.take_address(kw.pointer<T *>()); break;
        case ZORVS_CHI_SQUARED_CONTRIBUTIONS_USER: contributions.take_user(kw.pointer<T>()); break;
        case ZORVS_CHI_SQUARED_STATISTICS: chi_statistics.take_address(kw.pointer<T *>()); break;
        case ZORVS_CHI_SQUARED_STATISTICS_USER: chi_statistics.take_user(kw.pointer<T>()); break;
        case ZORVS_STATISTICS: statistics.take_address(kw.pointer<T *>()); break;
        case ZORVS_STATISTICS_USER: statistics.take_user(kw.pointer<T>()); break;
        default: kw.unknown(k); return;
        }
    }
    if (n_rows < 2 || n_columns < 2) {
        zorvs_e1stl(1, n_rows < 2 ? "n_rows" : "n_columns");
        zorvs::raise(5, 11136, n_rows < 2 ? n_rows : n_columns);
        return;
    }
    zorvs_null_pointer("table", -1, table);
    if (zorvs_error_n1rty[0] > 3) return;
    const int r = n_rows, c = n_columns, most = r > c ? r : c;
    // Both twins compute in double (W): the measures are sums over up to
    // r c cells and differences of such sums, which single precision loses
    // on a large table with little association.  The single twin rounds
    // its results.
    using W = double;
    constexpr bool wide = std::is_same_v<T, W>;
    const W *counts = nullptr;
    if constexpr (wide) {
        counts = table;
    } else {
        W *copy = zorvs::workspace<W>(r, "n_rows", c, "n_columns");
        if (!copy) return;
        for (long k = 0; k < static_cast<long>(r) * c; ++k) copy[k] = table[k];
        counts = copy;
    }
    const Cells<W> t{counts, r, c};
    W *row = zorvs::workspace<W>(r, "n_rows");
    W *col = row ? zorvs::workspace<W>(c, "n_columns") : nullptr;
    if (!col) return;
    W n = 0;
    if (!l_counts_valid(t, row, col, n)) return;

    // Every output and work array is had before anything is written.
    const bool association = statistics.wanted() || chi_statistics.wanted() || !triple;
    if (!expected.obtain(r + 1, "n_rows", c + 1, "n_columns")) return;
    if (!contributions.obtain(r + 1, "n_rows", c + 1, "n_columns")) return;
    if (!chi_statistics.obtain(5)) return;
    if (!statistics.obtain(n_measures, "n_statistics", n_columns_of_measures, "n_statistic_columns")) return;
    // An output of the routine's own type where W is that type, else work space.
    auto storage = [](zorvs::OutputPair<T> &out, int n1, const char *name1, int n2, const char *name2) -> W * {
        if constexpr (wide)
            if (out.data()) return out.data();
        return zorvs::workspace<W>(n1, name1, n2, name2);
    };
    W *e = storage(expected, r + 1, "n_rows", c + 1, "n_columns");
    W *q = e ? storage(contributions, r + 1, "n_rows", c + 1, "n_columns") : nullptr;
    W *chi = q ? zorvs::workspace<W>(10) : nullptr;
    if (!chi) return;
    W *s = nullptr;
    Work<W> w{};
    if (association) {
        s = storage(statistics, n_measures, "n_statistics", n_columns_of_measures, "n_statistic_columns");
        w.p = s ? zorvs::workspace<W>(r, "n_rows", c, "n_columns") : nullptr;
        w.cc = w.p ? zorvs::workspace<W>(r, "n_rows", c, "n_columns") : nullptr;
        w.dd = w.cc ? zorvs::workspace<W>(r, "n_rows", c, "n_columns") : nullptr;
        W *reals = w.dd ? zorvs::workspace<W>(4 * r + 4 * c + most) : nullptr;
        w.amax = reals ? zorvs::workspace<int>(r + c) : nullptr;
        if (!w.amax) return;
        w.bmax = w.amax + r;
        w.ri = reals;
        w.cj = w.ri + r;
        w.gi = w.cj + c;
        w.hj = w.gi + r;
        w.acc = w.hj + c;
        w.pr = w.acc + most;
        w.pc = w.pr + r;
        w.log_pr = w.pc + c;
        w.log_pc = w.log_pr + r;
    }

    l_ctchi(t, row, col, n, e, q, chi, s, w);
    if (zorvs_error_n1rty[0] > 3) return;
    if constexpr (!wide) {
        auto round = [](const W *from, T *to, long count) {
            if (to)
                for (long k = 0; k < count; ++k) to[k] = static_cast<T>(from[k]);
        };
        const long cells = static_cast<long>(r + 1) * (c + 1);
        round(e, expected.data(), cells);
        round(q, contributions.data(), cells);
        if (s) round(s, statistics.data(), n_measures * n_columns_of_measures);
    }
    if (T *v = chi_statistics.data())
        for (int k = 0; k < 5; ++k) v[k] = static_cast<T>(chi[5 + k]);
    for (int which = 0; which < 2; ++which) {
        if (df_out[which]) *df_out[which] = static_cast<int>(chi[2]);
        if (statistic_out[which]) *statistic_out[which] = static_cast<T>(chi[which == 0 ? 0 : 3]);
        if (p_out[which]) *p_out[which] = static_cast<T>(chi[which == 0 ? 1 : 4]);
    }
    lv_p_value<T> = static_cast<T>(chi[1]);
}

}  // namespace

extern "C" {

float zorvs_f_contingency_table(int n_rows, int n_columns, float table[], ...) {
    ZORVS_KEYWORD_ENTRY(table, "zorvs_f_contingency_table", lv_p_value<float>,
                        l_contingency_table<float>(n_rows, n_columns, table, &list));
}
double zorvs_d_contingency_table(int n_rows, int n_columns, double table[], ...) {
    ZORVS_KEYWORD_ENTRY(table, "zorvs_d_contingency_table", lv_p_value<double>,
                        l_contingency_table<double>(n_rows, n_columns, table, &list));
}

}  // extern "C"
