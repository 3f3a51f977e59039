"""Reference values of the ARMA estimates.

Method of moments: the autocovariances, the modified Yule-Walker equations
and the moving-average moment equations of Box and Jenkins (appendix A6.2)
solved in 50-digit arithmetic with mpmath (Newton from tau = (sqrt(g0), 0,
..., 0); the root is checked to be invertible).

Least squares: the sum of squares of the backcast residuals, written out
here on its own from its definition, minimised by scipy's least_squares
(trust-region reflective and Levenberg-Marquardt, tolerances 1e-15) from
the moments estimate and from perturbed starts; the best point is kept,
with s^2 (J'J)^-1 there from a central-difference Jacobian.
R's arima(method = "CSS") is reported beside it for information.

    /usr/bin/python3 make_arma.py > arma_ref.inc
"""
import subprocess
import sys

import mpmath as mp
import numpy as np
from scipy.optimize import least_squares

mp.mp.dps = 50


def r_series(expr):
    out = subprocess.run(["Rscript", "-e", f"cat(sprintf('%.17g', as.numeric({expr})), sep=' ')"],
                         capture_output=True, text=True, check=True).stdout
    return [float(v) for v in out.split()]


def simulate(rng, n, phi, theta, mean, burn=200):
    a = rng.standard_normal(n + burn)
    z = np.zeros(n + burn)
    for t in range(n + burn):
        v = a[t]
        for i, f in enumerate(phi):
            if t - i - 1 >= 0:
                v += f * z[t - i - 1]
        for j, th in enumerate(theta):
            if t - j - 1 >= 0:
                v -= th * a[t - j - 1]
        z[t] = v
    return [float(round(v + mean, 6)) for v in z[burn:]]


rng = np.random.default_rng(20261124)
series = {
    "lh": r_series("lh"),
    "log10_lynx": r_series("log10(lynx)"),
    "sunspot": r_series("sunspot.year"),
    "sim_ar2": simulate(rng, 500, [0.5, -0.3], [], 10.0),
    "sim_ma1": simulate(rng, 400, [], [0.6], -2.0),
    "sim_arma11": simulate(rng, 600, [0.7], [0.4], 3.0),
}


def moments(z, p, q):
    """Moments estimate in 50 digits; None for the MA part without a solution."""
    n = len(z)
    zm = [mp.mpf(v) for v in z]
    mean = mp.fsum(zm) / n
    c = [mp.fsum((zm[t] - mean) * (zm[t + k] - mean) for t in range(n - k)) / n for k in range(p + q + 2)]
    phi = []
    if p > 0:
        a = mp.matrix(p, p)
        b = mp.matrix(p, 1)
        for j in range(p):
            for i in range(p):
                a[j, i] = c[abs(q + j - i)]
            b[j] = c[q + j + 1]
        phi = list(mp.lu_solve(a, b))
    coef = [mp.mpf(1)] + [-f for f in phi]
    g = [mp.fsum(coef[i] * coef[j] * c[abs(k + i - j)] for i in range(p + 1) for j in range(p + 1))
         for k in range(q + 1)]
    theta = []
    solved = True
    if q > 0:
        tau = [mp.sqrt(g[0])] + [mp.mpf(0)] * q
        def f(*t):
            return [mp.fsum(t[i] * t[i + k] for i in range(q - k + 1)) - g[k] for k in range(q + 1)]
        try:
            tau = list(mp.findroot(f, tau, tol=mp.mpf(10) ** -40, maxsteps=200))
            roots = mp.polyroots([-t for t in reversed(tau[1:])] + [tau[0]]) if q > 1 else \
                [tau[0] / tau[1]] if tau[1] != 0 else []
            # invertible: the roots of tau_0 + tau_1 B + ... lie outside the unit circle
            inv = all(abs(r) > 1 for r in mp.polyroots(list(reversed(tau)))) if q > 0 else True
            assert inv, "non-invertible root"
        except (ValueError, ZeroDivisionError):
            solved = False
        theta = [-t / tau[0] for t in tau[1:]]
    const = mean * (1 - mp.fsum(phi))
    return [float(v) for v in [const] + phi + theta], float(mean), [float(v) for v in c], solved


def residuals(x, z, p, q, constant, L, ar_lags, ma_lags):
    """Backcast residuals of the model, straight from their definition."""
    n = len(z)
    if constant:
        c, phi, theta = x[0], x[1:1 + p], x[1 + p:]
    else:
        c, phi, theta = 0.0, x[:p], x[p:]
    P = max(ar_lags) if p else 0
    # backward innovations e_t, t = 1..n (index t-1), zero above n - P
    e = [0.0] * n
    for i in range(n - 1 - P, -1, -1):
        v = z[i] - c - sum(phi[j] * z[i + ar_lags[j]] for j in range(p))
        v += sum(theta[j] * e[i + ma_lags[j]] for j in range(q) if i + ma_lags[j] < n)
        e[i] = v
    # backcasts: ext[L + i] is z at index i; i = -1..-L
    ext = [0.0] * L + list(z)
    for i in range(-1, -L - 1, -1):
        v = c + sum(phi[j] * ext[L + i + ar_lags[j]] for j in range(p))
        v -= sum(theta[j] * e[i + ma_lags[j]] for j in range(q) if i + ma_lags[j] >= 0)
        ext[L + i] = v
    m = n + L - P
    a = [0.0] * m
    for s in range(m):
        v = ext[P + s] - c - sum(phi[j] * ext[P + s - ar_lags[j]] for j in range(p))
        v += sum(theta[j] * a[s - ma_lags[j]] for j in range(q) if s - ma_lags[j] >= 0)
        a[s] = v
    return np.array(a)


def least_squares_fit(z, p, q, constant, L, ar_lags, ma_lags, start):
    fun = lambda x: residuals(x, z, p, q, constant, L, ar_lags, ma_lags)
    x0 = np.array(start if constant else start[1:], dtype=float)
    best = None
    starts = [x0, x0 * 0.9, x0 + 0.05]
    for s in starts:
        for method in ("lm", "trf"):
            try:
                fit = least_squares(fun, s, method=method, xtol=1e-15, ftol=1e-15, gtol=1e-15, max_nfev=20000)
            except ValueError:
                continue
            ss = float(np.sum(fun(fit.x) ** 2))
            if np.isfinite(ss) and (best is None or ss < best[1]):
                best = (fit.x.copy(), ss)
    x = list(best[0])
    return ([0.0] + x if not constant else x), best[1]


def r_css(name, p, q, constant):
    expr = {"lh": "lh", "log10_lynx": "log10(lynx)", "sunspot": "sunspot.year"}.get(name)
    if expr is None:
        return None
    code = (f"f <- arima({expr}, order = c({p}, 0, {q}), method = 'CSS', include.mean = {str(constant).upper()});"
            f"m <- if ({str(constant).upper()}) coef(f)[['intercept']] else 0;"
            f"ar <- if ({p} > 0) coef(f)[1:{p}] else numeric(0);"
            f"ma <- if ({q} > 0) coef(f)[{p} + 1:{q}] else numeric(0);"
            f"cat(sprintf('%.17g', c(m * (1 - sum(ar)), ar, -ma, sum(residuals(f)^2))), sep = ' ')")
    out = subprocess.run(["Rscript", "-e", code], capture_output=True, text=True, check=True).stdout
    return [float(v) for v in out.split()]


def emit(name, v):
    print(f"const double {name}[] = {{{', '.join(repr(float(x)) for x in v)}}};")


print("// Generated by make_arma.py: ARMA moments estimates (mpmath), least-squares")
print("// minima (scipy) and R's CSS estimates for information.")
for k, v in series.items():
    emit(f"series_{k}", v)

mom_cases = [("lh", 1, 0), ("lh", 0, 1), ("lh", 1, 1), ("log10_lynx", 2, 0), ("log10_lynx", 2, 1),
             ("sunspot", 2, 0), ("sunspot", 2, 1), ("sunspot", 1, 2), ("sim_ar2", 2, 0), ("sim_ma1", 0, 1),
             ("sim_arma11", 1, 1), ("sim_ma1", 0, 2)]
rows = []
for i, (name, p, q) in enumerate(mom_cases):
    est, mean, c, solved = moments(series[name], p, q)
    emit(f"mom_est_{i}", est)
    emit(f"mom_acv_{i}", c)
    rows.append(f'    {{"{name}", series_{name}, {len(series[name])}, {p}, {q}, {int(solved)}, {mean!r}, '
                f"mom_est_{i}, mom_acv_{i}}},")
print("struct MomentsCase { const char *name; const double *z; int n; int p; int q; int solved; double mean;"
      " const double *est; const double *acv; };")
print("const MomentsCase moments_cases[] = {")
print("\n".join(rows))
print("};")

ls_cases = [("lh", 1, 1, True, 10, [1], [1]), ("lh", 1, 0, True, 0, [1], []),
            ("log10_lynx", 2, 0, True, 0, [1, 2], []), ("log10_lynx", 2, 1, True, 10, [1, 2], [1]),
            ("sunspot", 2, 1, True, 0, [1, 2], [1]), ("sunspot", 2, 1, True, 10, [1, 2], [1]),
            ("sim_arma11", 1, 1, True, 10, [1], [1]), ("sim_ma1", 0, 1, True, 20, [], [1]),
            ("sim_ar2", 2, 0, False, 5, [1, 2], []), ("log10_lynx", 2, 0, True, 10, [1, 9], [])]
rows = []
for i, (name, p, q, constant, L, al, ml) in enumerate(ls_cases):
    z = series[name]
    start, _, _, _ = moments(z, p, q)
    est, ss = least_squares_fit(z, p, q, constant, L, al, ml, start)
    emit(f"ls_est_{i}", est)
    # covariance s^2 (J'J)^-1 at the minimum, J by central differences
    xs = np.array(est if constant else est[1:])
    fun = lambda x: residuals(x, z, p, q, constant, L, al, ml)
    jac = np.column_stack([(fun(xs + h * e) - fun(xs - h * e)) / (2 * h)
                           for e, h in ((np.eye(len(xs))[j], 1e-6 * max(1.0, abs(xs[j]))) for j in range(len(xs)))])
    m = len(fun(xs))
    emit(f"ls_cov_{i}", (ss / (m - len(xs)) * np.linalg.inv(jac.T @ jac)).ravel())
    r = r_css(name, p, q, constant) if L == 0 and al == list(range(1, p + 1)) else None
    emit(f"ls_r_{i}", r if r else [0.0] * (p + q + 2))
    lags = ", ".join(str(v) for v in (al + ml + [0, 0, 0])[:3])
    rows.append(f'    {{"{name}", series_{name}, {len(z)}, {p}, {q}, {int(constant)}, {L}, {{{lags}}}, '
                f"ls_est_{i}, {ss!r}, ls_r_{i}, {int(r is not None)}, ls_cov_{i}}},")
    print(f"// case {i} {name} ({p},{q}) L={L}: SS {ss!r}", file=sys.stderr)
print("struct LeastSquaresCase { const char *name; const double *z; int n; int p; int q; int constant;"
      " int length; int lags[3]; const double *est; double ss; const double *r_css; int has_r; const double *cov; };")
print("const LeastSquaresCase least_squares_cases[] = {")
print("\n".join(rows))
print("};")
