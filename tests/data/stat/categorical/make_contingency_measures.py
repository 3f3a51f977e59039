#!/usr/bin/python3
"""Reference values of the measures of association of the contingency table.

Each statistic and standard error is evaluated from its published formula
(Goodman and Kruskal 1954-1972, Brown and Benedetti 1977, Theil 1970,
Fleiss, Cohen and Everitt 1969, Bowker 1948, Cochran 1954, Armitage 1955,
Kruskal and Wallis 1952) straight from the definitions: concordant and
discordant sums by the O(r^2 c^2) double sums, midranks and Spearman's v_ij
by their sums, all in 50-digit arithmetic (mpmath).  The exact mean and
variance of X^2 given the margins (Haldane 1940, Dawson 1954) are formed in
rational arithmetic and checked here against the moments found by
enumerating every table with the margins of small tables.  The statistics
of the integer tables are checked against SciPy on the expanded data
(kendalltau b and c, somersd, spearmanr, pearsonr, kruskal), and every
asymptotic standard error against the multinomial delta method with
50-digit numerical derivatives; the largest differences go to stderr.

Run:  /usr/bin/python3 make_contingency_measures.py > contingency_measures_ref.inc
(reads contingency_tables.txt, written by Rscript contingency_tables.R)
"""
import itertools
import math
import os
import sys
from fractions import Fraction as Fr

import mpmath as mp

mp.mp.dps = 50
HERE = os.path.dirname(os.path.abspath(__file__))
NAN = None


def wcss(xs, ws):
    sw = sum(ws)
    m = sum(w * x for x, w in zip(xs, ws)) / sw
    return sum(w * (x - m) ** 2 for x, w in zip(xs, ws))


def upper_chi2(x, df):
    return mp.gammainc(mp.mpf(df) / 2, x / 2, mp.inf, regularized=True)


def two_sided(t):
    return mp.erfc(abs(t) / mp.sqrt(2))


def nearest(x):
    """Nearest integer of x >= 0, halves away from zero (Fortran's NINT)."""
    return int(mp.floor(x + mp.mpf(1) / 2))


def first_max(xs):
    k = 0
    for i, x in enumerate(xs):
        if x > xs[k]:
            k = i
    return k


def measures(T):
    """The 23 x 5 statistics table (None for missing) of the table T."""
    r, c = len(T), len(T[0])
    R, C = range(r), range(c)
    ri = [sum(T[i]) for i in R]
    cj = [sum(T[i][j] for i in R) for j in C]
    N = sum(ri)
    S = [[NAN] * 5 for _ in range(23)]
    m = min(r, c)
    cells = [(i, j) for i in R for j in C]
    wt = [T[i][j] for i, j in cells]

    # Concordance.
    def q(i0, i1, j0, j1):
        return sum(T[k][l] for k in range(i0, i1) for l in range(j0, j1))
    Cc = {(i, j): q(i + 1, r, j + 1, c) + q(0, i, 0, j) for i, j in cells}
    Dd = {(i, j): q(0, i, j + 1, c) + q(i + 1, r, 0, j) for i, j in cells}
    P = sum(T[i][j] * Cc[i, j] for i, j in cells)
    Q = sum(T[i][j] * Dd[i, j] for i, j in cells)
    Dr = N ** 2 - sum(x * x for x in ri)
    Dc = N ** 2 - sum(x * x for x in cj)
    w = mp.sqrt(Dr * Dc)
    S2 = sum(T[i][j] * (Cc[i, j] - Dd[i, j]) ** 2 for i, j in cells)
    V = S2 - (P - Q) ** 2 / N
    g = (P - Q) / (P + Q)
    S[0][:3] = [g, 4 * mp.sqrt(sum(T[i][j] * (Q * Cc[i, j] - P * Dd[i, j]) ** 2 for i, j in cells)) / (P + Q) ** 2,
                2 * mp.sqrt(V) / (P + Q)]
    tb = (P - Q) / w
    S[1][:3] = [tb, mp.sqrt(wcss([2 * w * (Cc[i, j] - Dd[i, j]) + tb * (cj[j] * Dr + ri[i] * Dc) for i, j in cells],
                                 wt)) / w ** 2, 2 * mp.sqrt(V) / w]
    S[2][:2] = [(P - Q) * m / (N ** 2 * (m - 1)), 2 * (mp.mpf(m) / (m - 1)) * mp.sqrt(V) / N ** 2]
    S[3][:3] = [(P - Q) / Dr, 2 * mp.sqrt(sum(T[i][j] * (Dr * (Cc[i, j] - Dd[i, j]) - (N - ri[i]) * (P - Q)) ** 2
                                              for i, j in cells)) / Dr ** 2, 2 * mp.sqrt(V) / Dr]
    S[4][:3] = [(P - Q) / Dc, 2 * mp.sqrt(sum(T[i][j] * (Dc * (Cc[i, j] - Dd[i, j]) - (N - cj[j]) * (P - Q)) ** 2
                                              for i, j in cells)) / Dc ** 2, 2 * mp.sqrt(V) / Dc]

    # Integer scores.
    a = sum(ri[i] * (i + 1) for i in R) / N
    b = sum(cj[j] * (j + 1) for j in C) / N
    Ur = sum(ri[i] * (i + 1 - a) ** 2 for i in R)
    Uc = sum(cj[j] * (j + 1 - b) ** 2 for j in C)
    X = sum(T[i][j] * (i + 1 - a) * (j + 1 - b) for i, j in cells)
    rho = X / mp.sqrt(Ur * Uc)
    S[5][:3] = [rho,
                mp.sqrt(sum(T[i][j] * (mp.sqrt(Ur * Uc) * (i + 1 - a) * (j + 1 - b)
                                       - rho * ((i + 1 - a) ** 2 * Uc + (j + 1 - b) ** 2 * Ur) / 2) ** 2
                            for i, j in cells)) / (Uc * Ur),
                mp.sqrt(sum(T[i][j] * (i + 1 - a) ** 2 * (j + 1 - b) ** 2 for i, j in cells) - X ** 2 / N)
                / mp.sqrt(Ur * Uc)]

    # Midranks.
    Ri = [-N / 2 + sum(ri[:i]) + ri[i] / 2 for i in R]
    Cj = [-N / 2 + sum(cj[:j]) + cj[j] / 2 for j in C]
    Wr = sum(ri[i] * Ri[i] ** 2 for i in R)
    Wc = sum(cj[j] * Cj[j] ** 2 for j in C)
    Y = sum(T[i][j] * Ri[i] * Cj[j] for i, j in cells)
    rW = mp.sqrt(Wr * Wc)

    def v(i, j):
        return (Ri[i] * Cj[j]
                + sum(Cj[k] * (T[i][k] / 2 + sum(T[l][k] for l in range(i + 1, r))) for k in C)
                + sum(Ri[l] * (T[l][j] / 2 + sum(T[l][k] for k in range(j + 1, c))) for l in R))

    def z(i, j):
        return -N * (Wr * cj[j] ** 2 + Wc * ri[i] ** 2) / (8 * rW)
    S[6][:3] = [Y / rW, mp.sqrt(wcss([(rW * N * v(i, j) - Y * z(i, j)) / (Wr * Wc) for i, j in cells], wt)) / N,
                mp.sqrt(wcss([N * v(i, j) / rW for i, j in cells], wt)) / N]

    # Goodman-Kruskal tau.
    t7 = (N * sum(sum(T[i][j] ** 2 for j in C) / ri[i] for i in R) - sum(x * x for x in cj)) / Dc
    ss = sum(wcss([N * T[i][j] + (t7 - 1) * cj[j] * ri[i] for j in C], [T[i][j] / ri[i] for j in C]) / ri[i]
             for i in R)
    S[7][:2] = [t7, 2 * mp.sqrt(ss) / Dc]
    t8 = (N * sum(sum(T[i][j] ** 2 for i in R) / cj[j] for j in C) - sum(x * x for x in ri)) / Dr
    ss = sum(wcss([N * T[i][j] + (t8 - 1) * ri[i] * cj[j] for i in R], [T[i][j] / cj[j] for i in R]) / cj[j]
             for j in C)
    S[8][:2] = [t8, 2 * mp.sqrt(ss) / Dr]

    # Entropies.
    Hc = sum(x / N * mp.log(x / N) for x in cj)
    Hr = sum(x / N * mp.log(x / N) for x in ri)
    pos = [(i, j) for i, j in cells if T[i][j] > 0]
    Hrc = sum(T[i][j] / N * mp.log(T[i][j] / N) for i, j in pos)
    I = Hc + Hr - Hrc
    S[9][:2] = [2 * I / (Hc + Hr), 2 * mp.sqrt(sum(T[i][j] * ((Hr + Hc) * mp.log(T[i][j] / N)
                                                              - Hrc * mp.log(ri[i] * cj[j] / N ** 2)) ** 2
                                                   for i, j in pos)) / (N * (Hr + Hc) ** 2)]
    S[10][:2] = [I / Hc, mp.sqrt(sum(T[i][j] * (Hc * mp.log(T[i][j] / ri[i]) + (Hr - Hrc) * mp.log(cj[j] / N)) ** 2
                                     for i, j in pos)) / (N * Hc ** 2)]
    S[11][:2] = [I / Hr, mp.sqrt(sum(T[i][j] * (Hr * mp.log(T[i][j] / cj[j]) + (Hc - Hrc) * mp.log(ri[i] / N)) ** 2
                                     for i, j in pos)) / (N * Hr ** 2)]

    # Lambda.
    am = [first_max(T[i]) for i in R]
    bm = [first_max([T[i][j] for i in R]) for j in C]
    ist, jst = first_max(ri), first_max(cj)
    rm, cm = ri[ist], cj[jst]
    A = sum(T[i][am[i]] for i in R)
    B = sum(T[bm[j]][j] for j in C)
    l12 = (A + B - rm - cm) / (2 * N - rm - cm)
    l13 = (A - cm) / (N - cm)
    l14 = (B - rm) / (N - rm)

    def ind(x):
        return mp.mpf(1) if x else mp.mpf(0)
    S[12][:2] = [l12, mp.sqrt(wcss([ind(am[i] == j) + ind(bm[j] == i) + (l12 - 1) * (ind(j == jst) + ind(i == ist))
                                    for i, j in cells], wt)) / (2 * N - rm - cm)]
    S[13][:2] = [l13, mp.sqrt(wcss([ind(am[i] == j) + (l13 - 1) * ind(j == jst) for i, j in cells], wt)) / (N - cm)]
    S[14][:2] = [l14, mp.sqrt(wcss([ind(bm[j] == i) + (l14 - 1) * ind(i == ist) for i, j in cells], wt)) / (N - rm)]
    L1 = sum(T[i][am[i]] / ri[i] for i in R)
    col_means = [sum(T[i][j] / ri[i] for i in R) for j in C]
    gst = first_max(col_means)
    M1 = col_means[gst]
    l15 = (L1 - M1) / (r - M1)
    ss = sum(wcss([ind(am[i] == j) + (l15 - 1) * ind(j == gst) for j in C], [T[i][j] / ri[i] for j in C]) / ri[i]
             for i in R)
    S[15][:2] = [l15, mp.sqrt(ss) / (r - M1)]
    L2 = sum(T[bm[j]][j] / cj[j] for j in C)
    row_means = [sum(T[i][j] / cj[j] for j in C) for i in R]
    hst = first_max(row_means)
    M2 = row_means[hst]
    l16 = (L2 - M2) / (c - M2)
    ss = sum(wcss([ind(bm[j] == i) + (l16 - 1) * ind(i == hst) for i in R], [T[i][j] / cj[j] for i in R]) / cj[j]
             for j in C)
    S[16][:2] = [l16, mp.sqrt(ss) / (c - M2)]

    # Linear trend in a two-level margin.
    if r == 2 or c == 2:
        if r == 2:
            n_k, t_k, p1 = cj, [T[0][j] for j in C], ri[0] / N
        else:
            n_k, t_k, p1 = ri, [T[i][0] for i in R], cj[0] / N
        x = [k + 1 for k in range(len(n_k))]
        mean = sum(n * s for n, s in zip(n_k, x)) / N
        Sxx = sum(n * (s - mean) ** 2 for n, s in zip(n_k, x))
        slope = sum(n * (t / n - p1) * (s - mean) for n, t, s in zip(n_k, t_k, x)) / Sxx
        n1 = p1 * N
        se = mp.sqrt(n1 * (N - n1) / Sxx) / N
        S[17] = [slope, se, NAN, slope / se, two_sided(slope / se)]

    # Kruskal-Wallis, rows then columns as groups.
    def kruskal(groups, levels, count):
        mr = [sum(levels[:k]) + (levels[k] + 1) / mp.mpf(2) for k in range(len(levels))]
        Sd = sum(levels[k] * (mr[k] - (N + 1) / 2) ** 2 for k in range(len(levels))) / (N - 1)
        Rg = [sum(count(i, k) * mr[k] for k in range(len(levels))) for i in range(len(groups))]
        h = (sum(Rg[i] ** 2 / groups[i] for i in range(len(groups))) - N * ((N + 1) / 2) ** 2) / Sd
        return [h, len(groups) - 1, NAN, NAN, upper_chi2(h, len(groups) - 1)]
    S[18] = kruskal(ri, cj, lambda i, k: T[i][k])
    S[19] = kruskal(cj, ri, lambda j, k: T[k][j])

    if r == c:
        po = sum(T[i][i] for i in R) / N
        pe = sum(ri[i] * cj[i] for i in R) / N ** 2
        k = (po - pe) / (1 - pe)
        se0 = mp.sqrt(pe / (N * (1 - pe)))
        S[20] = [k, mp.sqrt(po * (1 - po) / (N * (1 - pe) ** 2)), se0, k / se0, two_sided(k / se0)]
        pairs = [(i, j) for i in R for j in R if i < j]
        if all(T[i][j] + T[j][i] > 0 for i, j in pairs):
            x = sum((T[i][j] - T[j][i]) ** 2 / (T[i][j] + T[j][i]) for i, j in pairs)
            S[21] = [x, len(pairs), NAN, NAN, upper_chi2(x, len(pairs))]
        aa = sum(T[i][j] for i, j in pairs)
        nn = sum(T[i][j] + T[j][i] for i, j in pairs)
        if nn > 0:
            ka, kn = nearest(aa), nearest(nn)
            F = sum(mp.binomial(kn, s) for s in range(ka + 1)) / mp.mpf(2) ** kn
            exact = 2 * (1 - F) if F > 0.5 else 2 * F
            x = (2 * (aa - nn / 2)) ** 2 / nn
            S[22] = [x, 1, NAN, exact, upper_chi2(x, 1)]

    for row in (0, 1, 3, 4, 5, 6):
        S[row][3] = S[row][0] / S[row][2]
        S[row][4] = two_sided(S[row][3])
    S[2][3] = S[2][0] / S[2][1]
    S[2][4] = two_sided(S[2][3])
    return S


def exact_moments(ri, cj):
    """Exact mean and variance of X^2 given the margins (rational)."""
    r, c = len(ri), len(cj)
    N = Fr(sum(ri))
    df = (r - 1) * (c - 1)
    Sr = sum(Fr(1) / x for x in ri)
    Sc = sum(Fr(1) / x for x in cj)
    rc = r * c
    A = ((((2 * df * N + rc ** 2 + 2 * (r + c - 2)) * N - 2 * (rc * df + (r + c) * (r + c - 2))) * N
          - rc * (r - 2) * (c - 2)) / ((N - 1) ** 2 * (N - 2)))
    B = (((Sr * Sc * N - ((r + 1) ** 2 - 3) * Sc - ((c + 1) ** 2 - 3 - Sc) * Sr) * N + r * (r - 2) * Sc
          + c * (c - 2) * Sr) * N / ((N - 1) * (N - 2)))
    AB = max(A + B, Fr(0))
    return df * N / (N - 1), N / (N - 3) * AB


def enumerated_moments(ri, cj):
    """Mean and variance of X^2 over all tables with these integer margins."""
    r, c = len(ri), len(cj)
    N = sum(ri)
    fact = math.factorial
    const = Fr(math.prod(fact(x) for x in ri) * math.prod(fact(x) for x in cj), fact(N))
    m1 = m2 = Fr(0)

    def rows(k, left):
        if k == r - 1:
            if all(x >= 0 for x in left) and sum(left) == ri[k]:
                yield [list(left)]
            return
        for cells in itertools.product(*[range(min(x, ri[k]) + 1) for x in left]):
            if sum(cells) == ri[k]:
                for rest in rows(k + 1, [x - y for x, y in zip(left, cells)]):
                    yield [list(cells)] + rest
    for t in rows(0, list(cj)):
        p = const / math.prod(fact(x) for row in t for x in row)
        x2 = sum(Fr((t[i][j] * N - ri[i] * cj[j]) ** 2, N * ri[i] * cj[j]) for i in range(r) for j in range(c))
        m1 += p * x2
        m2 += p * x2 * x2
    return m1, m2 - m1 * m1


def check_moments():
    worst = 0.0
    for ri, cj in [((3, 2, 3), (2, 4, 2)), ((2, 3), (1, 2, 2)), ((4, 3), (3, 4)), ((3, 3, 2, 2), (4, 3, 3)),
                   ((5, 2, 3), (2, 2, 3, 3))]:
        mean, var = exact_moments(ri, cj)
        em, ev = enumerated_moments(ri, cj)
        worst = max(worst, abs(mean - em), abs(var - ev) / ev)
    print(f"exact moments against enumeration: largest difference {worst}", file=sys.stderr)


def cross_check(name, T, S):
    """SciPy on the expanded data, and the delta method for the standard errors."""
    import numpy as np
    from scipy import stats
    r, c = len(T), len(T[0])
    worst = {}
    if all(float(x).is_integer() for row in T for x in row):
        xs = np.repeat([i for i in range(r) for j in range(c)], [int(T[i][j]) for i in range(r) for j in range(c)])
        ys = np.repeat([j for i in range(r) for j in range(c)], [int(T[i][j]) for i in range(r) for j in range(c)])
        checks = {1: stats.kendalltau(xs, ys).statistic, 2: stats.kendalltau(xs, ys, variant="c").statistic,
                  3: stats.somersd(xs, ys).statistic, 4: stats.somersd(ys, xs).statistic,
                  5: stats.pearsonr(xs, ys).statistic, 6: stats.spearmanr(xs, ys).statistic,
                  18: stats.kruskal(*[ys[xs == i] for i in range(r)]).statistic,
                  19: stats.kruskal(*[xs[ys == j] for j in range(c)]).statistic}
        for row, value in checks.items():
            worst[f"scipy row {row}"] = abs(float(S[row][0]) - value) / abs(value)
    # Delta method: Var = sum T (d stat / d T)^2 for a measure unchanged by
    # scaling all counts; central differences with step 1e-20.
    h = mp.mpf("1e-20")
    rows = [k for k in list(range(17)) + [17, 20] if S[k][1] is not None]
    grads = {k: [] for k in rows}
    for i in range(r):
        for j in range(c):
            if T[i][j] == 0:
                continue
            up = [list(row) for row in T]
            dn = [list(row) for row in T]
            up[i][j] += h
            dn[i][j] -= h
            su, sd = measures(up), measures(dn)
            for k in rows:
                grads[k].append((T[i][j], (su[k][0] - sd[k][0]) / (2 * h)))
    for k in rows:
        se = mp.sqrt(sum(t * d * d for t, d in grads[k]))
        worst[f"delta row {k}"] = float(abs(se - S[k][1]) / (S[k][1] if S[k][1] else 1))
    bad = {k: v for k, v in worst.items() if v > 1e-12}
    print(f"{name}: agreements below 1e-12 except {bad}", file=sys.stderr)


def rational(x):
    return mp.mpf(x.numerator) / x.denominator


def fmt(x):
    if x is None:
        return "nan"
    return mp.nstr(mp.mpf(x), 20, strip_zeros=False, min_fixed=-4, max_fixed=6)


def main():
    check_moments()
    print("// Generated by: /usr/bin/python3 make_contingency_measures.py > contingency_measures_ref.inc")
    print("// name, n_rows, n_columns, counts (row-major), chi-squared statistics (exact mean and standard")
    print("// deviation of X^2, phi, contingency coefficient, Cramer's V), statistics (23 x 5, row-major)")
    print("struct MeasureRef {")
    print("    const char *name;")
    print("    int r, c;")
    print("    std::vector<double> counts, chi_statistics, statistics;")
    print("};")
    print("const MeasureRef measure_refs[] = {")
    with open(os.path.join(HERE, "contingency_tables.txt")) as f:
        lines = [line.split() for line in f if line.strip()]
    for name, r, c, *counts in lines:
        r, c = int(r), int(c)
        exact = [Fr(x) for x in counts]
        T = [[mp.mpf(counts[i * c + j]) for j in range(c)] for i in range(r)]
        S = measures(T)
        cross_check(name, T, S)
        ri = [sum(exact[i * c:(i + 1) * c]) for i in range(r)]
        cj = [sum(exact[i * c + j] for i in range(r)) for j in range(c)]
        N = sum(ri)
        mean, var = exact_moments(ri, cj) if N > 3 else (None, None)
        x2 = rational(sum((exact[i * c + j] * N - ri[i] * cj[j]) ** 2 / (N * ri[i] * cj[j])
                          for i in range(r) for j in range(c)))
        Nm = rational(N)
        chi = [mean and rational(mean), var and mp.sqrt(rational(var)), mp.sqrt(x2 / Nm), mp.sqrt(x2 / (Nm + x2)),
               mp.sqrt(x2 / (Nm * (min(r, c) - 1)))]
        print(f'{{"{name}", {r}, {c}, {{{", ".join(counts)}}},')
        print(f' {{{", ".join(fmt(x) for x in chi)}}},')
        print(" {" + ",\n  ".join(", ".join(fmt(x) for x in row) for row in S) + "}},")


main()
print("};")
