#!/usr/bin/python3
"""Reference values for tests/dist/beta_f_test.cpp beyond the shared grid:
the incomplete beta ratio over small, moderate and large shapes with x from
the far lower tail to near 1, the F distribution function and its upper tail
over wide degrees of freedom, a dense random sweep of both tails of each,
and quantiles of the beta and F distributions from the far tails to near 1.

Every argument is a float32 value used exactly (single and double twins share
the table).  Values come from mpmath at 100 digits (an x within 1e-37
of 1 keeps its complement to 60 digits):

  beta_incomplete(x, a, b)  betainc(a, b, 0, x, regularized)
  F_cdf(f, d1, d2)          betainc(d1/2, d2/2, 0, d1 f/(d1 f + d2), regularized)
  F_upper(f, d1, d2)        betainc(d2/2, d1/2, 0, d2/(d1 f + d2), regularized)

With each value goes its condition number kappa = sum |x_i df/dx_i| / |f|
(central differences at 100 digits).  Quantiles are roots of the mpmath
distribution function found by mpmath's findroot from SciPy's value; with each
goes x times the density at x, the scale of a round-trip residual.

Run from this directory:

    /usr/bin/python3 make_beta_f.py > beta_f_ref.inc
"""
import mpmath
import numpy as np
from scipy import special

mpmath.mp.dps = 100
mpf = mpmath.mpf


def f32(v):
    return float(np.float32(v))


def cond(fun, args):
    val = fun(*args)
    s = mpf(0)
    for i in range(len(args)):
        a = list(args)
        h = args[i] * mpf(10) ** -15
        a[i] = args[i] + h
        up = fun(*a)
        a[i] = args[i] - h
        dn = fun(*a)
        s += abs(args[i] * (up - dn) / (2 * h))
    return val, (s / abs(val) if val != 0 else mpf(0))


def bi(x, a, b):
    return mpmath.betainc(a, b, 0, x, regularized=True)


def fcdf(f, d1, d2):
    return mpmath.betainc(d1 / 2, d2 / 2, 0, d1 * f / (d1 * f + d2), regularized=True)


def fupper(f, d1, d2):
    return mpmath.betainc(d2 / 2, d1 / 2, 0, d2 / (d1 * f + d2), regularized=True)


def num(v):
    if abs(v) < mpf(10) ** -300:
        return "0.0"  # below the double range: not compared
    return mpmath.nstr(mpf(v), 25, min_fixed=-5, max_fixed=5).replace("'", "")


rows = []


def add(kind, fun, args):
    args = [f32(a) for a in args]
    val, k = cond(fun, [mpf(a) for a in args])
    rows.append((kind, args, val, k))


shapes = [0.05, 0.5, 1, 3, 7.5, 17, 45.25, 120, 1000]
for a in shapes:
    for b in shapes:
        for x in [1e-6, 0.01, 0.1, 0.3, 0.6, 0.85, 0.95, 0.99, 0.999]:
            add("beta_incomplete", bi, [x, a, b])

# (1000, 0.001): quantiles far out, where x of the beta inverse is within
# 1e-12 of 1 and above 1 - eps (infinite, not tabulated).
fpairs = [(1, 1), (0.5, 3), (2, 200), (7, 1000), (60, 2), (400, 400), (3.5, 11), (1000, 0.001)]
for d1, d2 in fpairs:
    for f in [1e-4, 0.05, 0.3, 0.9, 1.7, 4, 15, 90, 1e3, 1e5]:
        add("F_cdf", fcdf, [f, d1, d2])
        add("F_upper", fupper, [f, d1, d2])

# A dense sweep where the choice of orientation and of a second sum matters:
# shapes log-uniform from 0.05 to 2000 (every other one a half-integer, as
# half degrees of freedom are), x at the quantile of a tail level from 1e-12
# to 1/2 on a random side, so that the value asked for ranges from a far tail
# to near 1.  The F rows use the degrees of freedom of the benchmark and
# random ones, with both tails.
rng = np.random.default_rng(20261124)


def shape(k):
    v = float(np.exp(rng.uniform(np.log(0.05), np.log(2000))))
    return round(2 * v) / 2 if k % 2 == 0 and v > 0.5 else v


for k in range(300):
    a, b = shape(k), shape(k + 1)
    level = 10 ** rng.uniform(-12, np.log10(0.5))
    p = level if rng.uniform() < 0.5 else 1 - level
    x = f32(special.betaincinv(f32(a), f32(b), p))
    if 0 < x < 1:
        add("beta_incomplete", bi, [x, a, b])

bench_df = [1, 2.5, 4, 7, 10, 15.5, 30, 50]
for k in range(200):
    if k < 128:
        d1, d2 = bench_df[k % 8], bench_df[(k // 8) % 8]
    else:
        d1, d2 = 2 * shape(k), 2 * shape(k + 1)
    level = 10 ** rng.uniform(-12, np.log10(0.5))
    p = level if rng.uniform() < 0.5 else 1 - level
    f = special.fdtri(f32(d1), f32(d2), p)
    if 0 < f < 1e30 and f32(f) > 0:
        add("F_cdf", fcdf, [f, d1, d2])
        add("F_upper", fupper, [f, d1, d2])

PS = [1e-30, 1e-10, 1e-4, 0.01, 0.2, 0.5, 0.8, 0.99, 1 - 2 ** -20]
qrows = []


def solve(cdf, dens, p, x0, lo, hi):
    # Newton in log x from SciPy's value, then a check of the residual.
    x = mpf(x0)
    for _ in range(100):
        d = dens(x)
        step = (cdf(x) - p) / (x * d)
        step = max(min(step, mpf("0.5")), mpf("-0.5"))
        x = x * mpmath.exp(-step)
        if abs(step) < mpf(10) ** -35:
            break
    assert abs(cdf(x) - p) <= mpf(10) ** -30 * max(p, x * dens(x)), (p, x)
    return x


bpairs = [(0.1, 3), (0.5, 50), (50, 0.5), (1, 1), (1, 7), (3, 1), (120, 45.25), (1000, 1000), (2.5, 1000), (0.05, 0.05)]
for a, b in bpairs:
    am, bm = mpf(f32(a)), mpf(f32(b))
    lb = mpmath.log(mpmath.beta(am, bm))
    dens = lambda x: mpmath.exp((am - 1) * mpmath.log(x) + (bm - 1) * mpmath.log(1 - x) - lb)
    for p in PS:
        pf = f32(p)
        pm = mpf(pf)
        x0 = special.betaincinv(f32(a), f32(b), pf)
        if not (1e-300 < x0 < 1 - 1e-15):
            continue
        x = solve(lambda v: bi(v, am, bm), dens, pm, x0, 0, 1)
        if not (mpf(10) ** -290 < x < 1 - mpf(10) ** -15):
            continue
        qrows.append(("beta", [f32(a), f32(b)], pf, x, x * dens(x)))

for d1, d2 in fpairs:
    m1, m2 = mpf(f32(d1)), mpf(f32(d2))
    lb = mpmath.log(mpmath.beta(m1 / 2, m2 / 2))
    dens = lambda f: mpmath.exp((m1 / 2) * mpmath.log(m1 / m2) + (m1 / 2 - 1) * mpmath.log(f)
                                - ((m1 + m2) / 2) * mpmath.log(1 + m1 * f / m2) - lb)
    for p in PS:
        pf = f32(p)
        pm = mpf(pf)
        x0 = special.fdtri(f32(d1), f32(d2), pf)
        if not (1e-290 < x0 < 1e290):
            continue
        if x0 > f32(d2) / (f32(d1) * 2 ** -51):
            continue  # the beta root within 2 eps of 1: infinite in double
        x = solve(lambda v: fcdf(v, m1, m2), dens, pm, x0, 0, mpmath.inf)
        qrows.append(("F", [f32(d1), f32(d2)], pf, x, x * dens(x)))

print("// Generated by make_beta_f.py: incomplete beta and F values at exact")
print("// single-precision arguments with condition numbers; beta and F quantiles.")
print("#ifdef ZORVS_BETA_F_CDF_ROWS")
for kind, args, val, k in rows:
    print('{"%s", {%s}, %s, %s},' % (kind, ", ".join(repr(x) for x in args), num(val), mpmath.nstr(k, 6)))
print("#endif")
print("#ifdef ZORVS_BETA_F_QUANTILE_ROWS")
for kind, args, p, x, scale in qrows:
    print('{"%s", {%s}, %r, %s, %s},' % (kind, ", ".join(repr(v) for v in args), p, num(x), mpmath.nstr(scale, 8)))
print("#endif")
