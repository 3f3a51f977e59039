#!/usr/bin/python3
"""Reference values of the special functions for tests/dist/special_test.cpp.

Computed with mpmath at 50 significant digits.  Every argument is a float32
value (so the single and double twins share the table) and is used exactly.
Each row holds: arguments, the true value rounded to double, and the
condition number |x f'(x) / f(x)| summed over the arguments (the relative
error that rounding the arguments alone causes, per unit of relative
rounding), or for functions measured in absolute terms |x f'(x)|.

Run: /usr/bin/python3 tests/data/dist/make_special.py > tests/data/dist/special_ref.inc
"""
import numpy as np
import mpmath as mp

mp.mp.dps = 50


def f32(v):
    return float(np.float32(v))


def uniq(xs):
    """Float32 values, except beyond the float range, kept as doubles
    (the single twin skips those rows)."""
    return sorted(set(f32(x) if abs(x) < 1e38 else float(x) for x in xs))


def cond1(f, x):
    x = mp.mpf(x)
    v = f(x)
    d = mp.diff(f, x)
    return v, abs(x * d / v) if v != 0 else mp.mpf(0)


def cond_abs(f, x):
    x = mp.mpf(x)
    v = f(x)
    d = mp.diff(f, x)
    return v, abs(x * d)


def emit(name, rows, nargs):
    print(f"// {len(rows)} rows: {nargs} argument(s), value, condition")
    print(f"static const double {name}[][{nargs + 2}] = {{")
    for r in rows:
        print("    {" + ", ".join(repr(float(v)) for v in r) + "},")
    print("};")


gamma_x = list(np.linspace(-19.95, 19.95, 400)) + list(np.linspace(10.05, 171.6, 300))
gamma_x += [1, 2, 3, 5, 10, 10.0001, 9.9999, 0.5, 1e-30, 1e-10, -1e-10, 1e-37, 171.6, 171.5]
for k in range(1, 40):
    gamma_x += [-k + 0.5, -k + 1e-3, -k - 1e-3, -k + 0.25]
gamma_x += list(np.linspace(-169.95, -20.05, 100))
rows = []
for x in uniq(gamma_x):
    if x <= 0 and x == int(x):
        continue
    v, c = cond1(mp.gamma, x)
    rows.append((x, v, c))
emit("ref_gamma", rows, 1)

lg_x = gamma_x + [1e3, 1e5, 1e10, 1e20, 1e30, 1e36, 3e36, 1e100, 1e200, 1e305, 1.0001, 0.9999, 1.9999, 2.0001]
lg_x += list(np.linspace(-60.05, -10.05, 101))
rows = []
for x in uniq(lg_x):
    if x <= 0 and x == int(x):
        continue
    f = lambda t: mp.log(abs(mp.gamma(t)))
    v = mp.loggamma(x).real if x > 0 else f(x)
    d = mp.digamma(x)
    rows.append((x, v, abs(x * d)))  # absolute measure near the zeros
emit("ref_log_gamma", rows, 1)

ab = uniq([1e-3, 0.01, 0.1, 0.3, 0.5, 1, 1.5, 2, 3, 5, 7.5, 9.9, 10, 10.1, 15, 30, 60, 85, 86, 100, 170, 300, 1e3, 1e4, 1e5])
rows_b, rows_lb = [], []
for a in ab:
    for b in ab:
        a_, b_ = mp.mpf(a), mp.mpf(b)
        lb = mp.log(mp.beta(a_, b_))
        ca = abs(a_ * (mp.digamma(a_) - mp.digamma(a_ + b_)))
        cb = abs(b_ * (mp.digamma(b_) - mp.digamma(a_ + b_)))
        rows_lb.append((a, b, lb, ca + cb))
        bv = mp.beta(a_, b_)
        if bv > mp.mpf('2.3e-308'):
            rows_b.append((a, b, bv, ca + cb))
emit("ref_beta", rows_b, 2)
emit("ref_log_beta", rows_lb, 2)

al_x = list(np.linspace(-0.99, 0.99, 199)) + [-0.375, 0.375, -0.3751, 0.3751, 1e-10, -1e-10, 1e-30, 1, 10, 1e10, 1e30, -0.999999, 0.0]
rows = []
for x in uniq(al_x):
    if x == 0:
        continue
    v, c = cond1(mp.log1p, x)
    rows.append((x, v, c))
emit("ref_alnrel", rows, 1)

erf_x = list(np.linspace(-6, 6, 481)) + [1, -1, 1.0000001, 0.9999999, 2, -2, 1e-10, -1e-10, 1e-30, 5.9, 6.5]
rows = []
for x in uniq(erf_x):
    if x == 0:
        continue
    v, c = cond1(mp.erf, x)
    rows.append((x, v, c))
emit("ref_erf", rows, 1)

erfc_x = list(np.linspace(-6, 26.5, 651)) + [1, -1, 2, -2, 1.0000001, 1e-10, 26.0, 26.4]
rows = []
for x in uniq(erfc_x):
    v, c = cond1(mp.erfc, x)
    rows.append((x, v, c))
emit("ref_erfc", rows, 1)

ncdf = lambda t: mp.ncdf(t)
nc_x = list(np.linspace(-37.5, 9, 931)) + [-1.4142135, 1.4142135, -2.828427, 0.001, -38]
rows = []
for x in uniq(nc_x):
    v = mp.ncdf(x)
    if v < mp.mpf('2.3e-308'):
        continue
    d = mp.npdf(x)
    rows.append((x, v, abs(x * d / v)))
emit("ref_normal_cdf", rows, 1)

p_list = list(np.linspace(0.001, 0.999, 499)) + [1e-30, 1e-20, 1e-10, 1e-7, 1e-5, 0.025, 0.5, 0.975, 1 - 1e-7, 0.07, 0.93, 1e-38]
rows = []
for p in uniq(p_list):
    if not 0 < p < 1:
        continue
    pm = mp.mpf(p)
    lo = pm if p < 0.5 else 1 - pm
    # Solve log Phi(-t) = log(min(p, 1-p)) for t >= 0: well conditioned in the tail.
    t = mp.findroot(lambda t: mp.log(mp.ncdf(-t)) - mp.log(lo), mp.sqrt(-2 * mp.log(lo)) if lo < 0.3 else 0.5)
    x = -t if p < 0.5 else t
    rows.append((p, x, pm / mp.npdf(x)))  # absolute sensitivity to a relative change of p
emit("ref_normal_inverse_cdf", rows, 1)


def bvn(h, k, r):
    h, k, r = mp.mpf(h), mp.mpf(k), mp.mpf(r)
    f = lambda t: mp.exp(-(h * h - 2 * t * h * k + k * k) / (2 * (1 - t * t))) / mp.sqrt(1 - t * t)
    return mp.ncdf(h) * mp.ncdf(k) + mp.quad(f, [0, r]) / (2 * mp.pi)


mp.mp.dps = 30
pts = uniq([-6, -3, -1.5, -0.5, 0, 0.3, 1, 2, 4, 7])
rhos = uniq([-0.99, -0.9, -0.5, -0.1, 0, 0.25, 0.5, 0.8, 0.95, 0.999])
rows = []
for x in pts:
    for y in pts:
        for r in rhos:
            rows.append((x, y, r, bvn(x, y, r), 0))
emit("ref_bivariate", [(a, b, c, d) for a, b, c, d, _ in rows], 2)  # x, y, rho, value
