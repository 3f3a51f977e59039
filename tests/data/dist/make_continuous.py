#!/usr/bin/python3
"""Reference values for the continuous distribution tests.

Every argument is a number exactly representable in single precision, so the
single and the double twin are fed the same binary values; each reference is
computed from those exact values with mpmath at 25 digits:

  gamma_incomplete(a, x)   gammainc(a, 0, x)
  gamma_cdf(x, a)          gammainc(a, 0, x, regularized)
  chi_squared_cdf(c, df)   gammainc(df/2, 0, c/2, regularized)
  beta_incomplete(x, a, b) betainc(a, b, 0, x, regularized), also beta_cdf
  t_cdf(t, df)             I_{df/(df+t^2)}(df/2, 1/2)/2, or 1 minus it for t > 0
  F_cdf(f, d1, d2)         I_{d1 f/(d1 f+d2)}(d1/2, d2/2)

With each value goes its condition number kappa = sum |x_i df/dx_i| / |f|
(numerical derivatives at 25 digits), so that a test can allow the error
that rounding the arguments alone causes, and the branch of the library's
method that the point takes.

Quantiles for the inverse tests start from SciPy's and are polished by
Newton steps on the mpmath distribution function; with each goes x times the
density at x, the scale of a round-trip residual.

Run from this directory:

    /usr/bin/python3 make_continuous.py > continuous_ref.inc
"""
import math

import mpmath
import numpy as np
from scipy import special

mpmath.mp.dps = 25
mpf = mpmath.mpf


def f32(v):
    return float(np.float32(v))


def cond(fun, args):
    val = fun(*args)
    s = mpf(0)
    for i in range(len(args)):
        def g(t, i=i):
            a = list(args)
            a[i] = t
            return fun(*a)
        h = args[i] * mpf(10) ** -10
        d = (g(args[i] + h) - g(args[i] - h)) / (2 * h)
        s += abs(args[i] * d)
    return val, (s / abs(val) if val != 0 else mpf(0))


def gi(a, x):
    return mpmath.gammainc(a, 0, x)


def gp(x, a):
    return mpmath.gammainc(a, 0, x, regularized=True)


def chi(c, df):
    return mpmath.gammainc(df / 2, 0, c / 2, regularized=True)


def bi(x, a, b):
    return mpmath.betainc(a, b, 0, x, regularized=True)


def tcdf(t, df):
    # The lower tail I_{df/(df+t^2)}(df/2, 1/2)/2 is taken directly: forming
    # it as (1 - I_{t^2/(df+t^2)}(1/2, df/2))/2 would cancel away all 25
    # digits far out in the tail.
    if t == 0:
        return mpf(1) / 2
    low = mpmath.betainc(df / 2, mpf(1) / 2, 0, df / (df + t * t), regularized=True) / 2
    return 1 - low if t > 0 else low


def fcdf(f, d1, d2):
    return mpmath.betainc(d1 / 2, d2 / 2, 0, d1 * f / (d1 * f + d2), regularized=True)


EPS = 2.0 ** -52


# Branch names follow the library's method.
def br_gi(a, x):
    return "series" if x <= 1 else ("complement" if a < x else "perron")


def br_gp(x, a):
    return "series" if (x <= 1 or x < a) else "fraction"


def br_chi(c, df):
    if c <= 1e-12:
        return "cut"
    if df > 65:
        if c < 2:
            return "cut"
        h = 2.0 / (9 * df)
        z = ((c / df) ** (1.0 / 3) - (1 - h)) / h ** 0.5
        if z < -18.8055:
            return "cut"
        # The cube-root normal approximation loses its relative accuracy in
        # the lower tail; the rows there are measured apart.
        return "wilson_hilferty_lower_tail" if z < -2 else "wilson_hilferty"
    if c > 200:
        return "cut"
    x, h = c / 2, df / 2
    if x < max(h / 2, 13):
        return "cut" if (df > 25 and c < 2) else "series"
    return "asymptotic"


def br_bi(x, a, b):
    y, p, q = x, a, b
    if not (b <= a and x < 0.8) and x >= 0.2:
        y, p, q = 1 - x, b, a
        sw = "swap"
    else:
        sw = "direct"
    if (p + q) * y / (p + 1) < EPS / 2:
        return "first_term"
    return sw


def br_t(t, df):
    t2 = t * t
    if df <= t2:
        return "beta"
    if float(df).is_integer() and not (df >= 20 and t2 < df) and not df > 200:
        return "finite_sum" if (df < 20 and t2 < 4) else "tail_series"
    # Hill's normal approximation: 0 where its deviate reaches 18.8125; its
    # accuracy falls steeply with df, so it is measured in three bands.
    y = t2 / df
    b = 1 + y
    if (1 + y) - 1 != 0:
        y = y * math.log(b) / ((1 + y) - 1)
    a = df - 0.5
    b = 48 * a * a
    y = a * y
    Y = (((((-0.4 * y - 3.3) * y - 24) * y - 85.5) / (0.8 * y * y + 100 + b) + y + 3) / b + 1) * math.sqrt(y)
    if Y >= 18.8125:
        return "cut"
    return "normal_low_df" if df < 4 else ("normal_mid_df" if df < 10 else "normal")


rows = []


def add(kind, fun, args, branch):
    args = [f32(a) for a in args]
    val, k = cond(fun, [mpf(a) for a in args])
    rows.append((kind, args, val, k, branch))


# Incomplete gamma: a and x on both sides of 1 and of each other.
for a in [0.1, 0.5, 1, 2.5, 7, 20, 50.5, 100, 150]:
    for x in [0.01, 0.3, 1, 2, 5, 10, 30, 80, 150]:
        add("gamma_incomplete", gi, [a, x], br_gi(a, x))

# Gamma distribution function.
for a in [0.2, 0.5, 1, 3, 10.5, 40, 200]:
    for x in [0.05, 0.5, 1, 2.5, 8, 20, 45, 150, 260]:
        add("gamma_cdf", gp, [x, a], br_gp(x, a))

# Chi-squared: df below and above 20, 25, 65, 200, non-integer df; chi2 at
# quantiles from 1e-10 to 1 - 1e-10 and on both sides of 2, 26 and 200.
for df in [0.5, 1, 2, 3, 5.5, 10, 19, 20, 21, 25, 26, 40.5, 64, 65, 66, 100, 200, 250]:
    cs = set()
    for p in [1e-10, 1e-3, 0.1, 0.5, 0.9, 0.999, 1 - 1e-10]:
        cs.add(f32(special.chdtri(df, 1 - p)))
    for c in [1.5, 2.5, 25, 27, 150, 199, 201]:
        cs.add(f32(c))
    for c in sorted(cs):
        if c <= 0:
            continue
        add("chi_squared_cdf", chi, [c, df], br_chi(c, df))
# The asymptotic branch where P is smallest: at its lower edge, x = h/2 or 13,
# with a non-integer h (the largest errors of a sweep of df by 0.5).
for c, df in [(26, 51.5), (26.75, 53.5), (30.5, 61), (32.25, 64.5)]:
    add("chi_squared_cdf", chi, [c, df], br_chi(c, df))
# Wilson-Hilferty just above its lower-tail band, z = -1.99, at the smallest
# df it serves: the largest error of a sweep over df and z in [-2, 5].
for c, df in [(44.75, 65.5), (45.125, 66)]:
    add("chi_squared_cdf", chi, [c, df], br_chi(c, df))

# Incomplete beta: x against 0.2 and 0.8, a against b, small and large shapes.
shapes = [0.3, 1, 2.5, 30.5]
for a in shapes:
    for b in shapes:
        for x in [1e-4, 0.05, 0.19, 0.21, 0.5, 0.79, 0.81, 0.9999]:
            add("beta_incomplete", bi, [x, a, b], br_bi(f32(x), f32(a), f32(b)))
add("beta_incomplete", bi, [1e-9, 2, 3], br_bi(f32(1e-9), 2, 3))
add("beta_incomplete", bi, [1 - 2 ** -20, 3, 2], br_bi(f32(1 - 2 ** -20), 3, 2))

# Student's t: df about 20 and 200, t^2 against df and 4, non-integer df.
for df in [1, 2, 3, 10, 19, 20, 21, 199, 201, 1.5, 10.5, 30.7]:
    for t in [-50, -6, -1.9, -0.3, 0.3, 1.9, 2.5, 4.4, 14.5]:
        add("t_cdf", tcdf, [t, df], br_t(f32(t), f32(df)))

# Hill's normal form where a sweep of df and t found its largest error in
# each band of df, and beyond its cut-off.
for t, df in [(-1.02367, 1.05), (-2.05949, 4.25), (-3.19836, 10.25), (-5.21493, 27.25), (-30.0116, 1000)]:
    add("t_cdf", tcdf, [t, df], br_t(f32(t), f32(df)))

# F: small and large degrees of freedom, both tails.
for d1, d2 in [(1, 1), (2, 3), (5, 10), (10.5, 3.5), (30, 60), (100, 4), (3, 300)]:
    for f in [0.01, 0.2, 0.5, 1, 2, 5, 20, 100]:
        add("F_cdf", fcdf, [f, d1, d2], "beta")


# Quantiles.
def polish(cdf, dens, p, x0, lo=None):
    x = mpf(x0)
    for _ in range(2):
        d = dens(x)
        if d == 0:
            break
        x = x - (cdf(x) - p) / d
        if lo is not None and x <= lo:
            x = mpf(x0) / 2
    return x


qrows = []
PS = [1e-10, 1e-3, 0.025, 0.5, 0.7, 0.975, 1 - 1e-6]


def addq(kind, args, p, x, scale):
    qrows.append((kind, args, p, x, scale))


for df in [0.5, 1, 3, 5.5, 10, 30, 64, 66, 100, 250]:
    dfm = mpf(f32(df))
    for p in PS:
        pf = f32(p)
        pm = mpf(pf)
        dens = lambda x: mpmath.exp((dfm / 2 - 1) * mpmath.log(x) - x / 2 - mpmath.loggamma(dfm / 2)) / 2 ** (dfm / 2)
        x = polish(lambda v: chi(v, dfm), dens, pm, special.chdtri(f32(df), 1 - pf), 0)
        addq("chi_squared", [f32(df)], pf, x, x * dens(x))

beta_pairs = [(0.5, 0.5), (0.3, 4), (2, 3), (4, 0.7), (5, 30), (15, 20)]
for a, b in beta_pairs:
    am, bm = mpf(f32(a)), mpf(f32(b))
    lb = mpmath.log(mpmath.beta(am, bm))
    for p in PS:
        pf = f32(p)
        pm = mpf(pf)
        dens = lambda x: mpmath.exp((am - 1) * mpmath.log(x) + (bm - 1) * mpmath.log(1 - x) - lb)
        x = polish(lambda v: bi(v, am, bm), dens, pm, special.betaincinv(f32(a), f32(b), pf), 0)
        addq("beta", [f32(a), f32(b)], pf, x, x * dens(x))

for df in [1, 2, 1.5, 3, 4.5, 10, 30, 200]:
    dfm = mpf(f32(df))
    c = mpmath.gamma((dfm + 1) / 2) / (mpmath.sqrt(dfm * mpmath.pi) * mpmath.gamma(dfm / 2))
    for p in PS:
        pf = f32(p)
        if pf == 0.5:
            continue
        pm = mpf(pf)
        dens = lambda t: c * (1 + t * t / dfm) ** (-(dfm + 1) / 2)
        x = polish(lambda v: tcdf(v, dfm), dens, pm, special.stdtrit(f32(df), pf))
        addq("t", [f32(df)], pf, x, abs(x) * dens(x))

for d1, d2 in [(1, 1), (2, 3), (5, 10), (10.5, 3.5), (30, 60), (4, 200)]:
    m1, m2 = mpf(f32(d1)), mpf(f32(d2))
    lb = mpmath.log(mpmath.beta(m1 / 2, m2 / 2))
    for p in PS:
        pf = f32(p)
        pm = mpf(pf)
        dens = lambda f: mpmath.exp((m1 / 2) * mpmath.log(m1 / m2) + (m1 / 2 - 1) * mpmath.log(f)
                                    - ((m1 + m2) / 2) * mpmath.log(1 + m1 * f / m2) - lb)
        x = polish(lambda v: fcdf(v, m1, m2), dens, pm, special.fdtri(f32(d1), f32(d2), pf), 0)
        addq("F", [f32(d1), f32(d2)], pf, x, x * dens(x))


def num(v):
    if abs(v) < mpf(10) ** -300:
        return "0.0"  # below the double range: not compared
    return mpmath.nstr(mpf(v), 25, min_fixed=-5, max_fixed=5).replace("'", "")


print("// Generated by make_continuous.py: distribution function values at exact")
print("// single-precision arguments, with condition number and branch.")
print("#ifdef ZORVS_CDF_ROWS")
for kind, args, val, k, br in rows:
    a = list(args) + [0.0] * (3 - len(args))
    print('{"%s", {%s}, %s, %s, "%s"},' % (kind, ", ".join(repr(x) for x in a), num(val), mpmath.nstr(k, 6), br))
print("#endif")
print("#ifdef ZORVS_QUANTILE_ROWS")
for kind, args, p, x, scale in qrows:
    a = list(args) + [0.0] * (2 - len(args))
    print('{"%s", {%s}, %r, %s, %s},' % (kind, ", ".join(repr(v) for v in a), p, num(x), mpmath.nstr(scale, 8)))
print("#endif")
