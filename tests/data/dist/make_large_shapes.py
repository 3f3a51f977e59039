#!/usr/bin/python3
"""Reference values for tests/dist/large_shapes_test.cpp: the incomplete beta
ratio, the beta, F and t distribution functions, the F and two-sided t upper
tails, the incomplete gamma integral and the gamma and chi-squared
distribution functions at shapes and degrees of freedom from 1e4 to 1e15,
with x across the bulk and far into both tails (down to about 1e-300), and
the quantiles of the beta, F and t distributions there.

mpmath's betainc and gammainc do not converge at such shapes (their
hypergeometric series need millions of terms), so every value here is an
integral of the density at 60 digits: the smaller tail is integrated from
its end of the range, by tanh-sinh quadrature over pieces that double in
width away from x (starting at the scale on which the log density changes
by one, at most a standard deviation) until the log density is 160 below
its largest value; the other tail is 1 minus it.  The normalising log beta
and log gamma functions come from mpmath's loggamma.  (Checked against mpmath's betainc where it converges, a shape of 5e7 with
1.5: 57 digits.)  Every argument is a
double used exactly; the positions are chosen from normal (both shapes
large) or gamma (one shape small) approximations to the quantiles.

With each value goes its condition number kappa = sum |x_i df/dx_i| / |f|
over the function's arguments (central differences, relative step 1e-25).
Quantile rows give p, the 60-digit root x of the distribution function, and
x f(x)/p, the scale of a round-trip residual relative to p.

Run from this directory (about half an hour; the arguments `cdf` and
`quantiles` run one part):

    /usr/bin/python3 make_large_shapes.py > large_shapes_ref.inc
"""
import math
import sys

import mpmath
from scipy import special

mp = mpmath.mp
mp.dps = 60
mpf = mpmath.mpf


def tail_integral(logf, x, lo, hi, scale):
    """Integral of exp(logf) from x towards lo (lo < x) or hi (hi > x).

    The integrand is scaled by exp(-peak), and each piece mapped onto [0, 1],
    so that quad's absolute error test is a relative one (unscaled, an
    integral of 1e-300 passes it at once)."""
    ends = [x]
    peak = logf(x)
    h = scale
    direction = -1 if lo is not None else 1
    stop = lo if lo is not None else hi
    while True:
        t = ends[-1] + direction * h
        if stop is not None and ((direction < 0 and t <= stop) or (direction > 0 and t >= stop)):
            ends.append(stop)
            break
        ends.append(t)
        v = logf(t)
        peak = max(peak, v)
        if v < peak - 160:
            break
        h *= 2
    ends.sort()
    val = mpf(0)
    for lo_end, hi_end in zip(ends[:-1], ends[1:]):
        w = hi_end - lo_end
        piece, err = mpmath.quad(lambda s: mpmath.exp(logf(lo_end + s * w) - peak), [0, 1], error=True, maxdegree=10)
        if err > abs(piece) * mpf(10) ** -45 and err > mpf(10) ** -80:
            print('quadrature error', err, 'of', piece, file=sys.stderr)
        val += w * piece
    return val * mpmath.exp(peak)


def beta_tails(x, a, b):
    """(I_x(a, b), 1 - I_x(a, b)) for mpf arguments."""
    x, a, b = mpf(x), mpf(a), mpf(b)
    if x <= 0 or x >= 1:
        return (mpf(0), mpf(1)) if x <= 0 else (mpf(1), mpf(0))
    lnb = mpmath.loggamma(a) + mpmath.loggamma(b) - mpmath.loggamma(a + b)

    def logf(t):
        if t <= 0 or t >= 1:
            return mpf(-10) ** 10
        return (a - 1) * mpmath.log(t) + (b - 1) * mpmath.log1p(-t) - lnb

    n = a + b
    sd = mpmath.sqrt(a * b / (n * n * (n + 1)))
    slope = abs((a - 1) / x - (b - 1) / (1 - x))
    scale = min(sd, 1 / slope) if slope > 0 else sd
    scale = min(scale, x / 4, (1 - x) / 4)
    if x <= a / n:
        low = tail_integral(logf, x, mpf(0), None, scale)
        return low, 1 - low
    up = tail_integral(logf, x, None, mpf(1), scale)
    return 1 - up, up


def gamma_tails(x, a, normalised=True):
    """(P(a, x), Q(a, x)), or the integral from 0 to x unnormalised."""
    x, a = mpf(x), mpf(a)
    lng = mpmath.loggamma(a) if normalised else mpf(0)

    def logf(t):
        if t <= 0:
            return mpf(-10) ** 10
        return (a - 1) * mpmath.log(t) - t - lng

    slope = abs((a - 1) / x - 1)
    scale = min(mpmath.sqrt(a), 1 / slope) if slope > 0 else mpmath.sqrt(a)
    scale = min(scale, x / 4)
    if x <= a or not normalised:
        low = tail_integral(logf, x, mpf(0), None, scale)
        return low, 1 - low
    up = tail_integral(logf, x, None, None, scale)
    return 1 - up, up


def beta_lower(x, a, b):
    return beta_tails(x, a, b)[0]


def F_lower(f, d1, d2):
    f, d1, d2 = mpf(f), mpf(d1), mpf(d2)
    return beta_tails(d1 * f / (d1 * f + d2), d1 / 2, d2 / 2)[0]


def F_upper(f, d1, d2):
    f, d1, d2 = mpf(f), mpf(d1), mpf(d2)
    return beta_tails(d2 / (d1 * f + d2), d2 / 2, d1 / 2)[0]


def t_lower(t, df):
    t, df = mpf(t), mpf(df)
    half = beta_tails(df / (df + t * t), df / 2, mpf(0.5))[0] / 2
    return half if t < 0 else 1 - half


def t_two_sided(t, df):
    t, df = mpf(t), mpf(df)
    return beta_tails(df / (df + t * t), df / 2, mpf(0.5))[0]


def gamma_inc(a, x):
    return gamma_tails(x, a, normalised=False)[0]


def gamma_cdf(x, a):
    return gamma_tails(x, a)[0]


def chi2_cdf(c, df):
    return gamma_tails(mpf(c) / 2, mpf(df) / 2)[0]


def cond(fun, args):
    val = fun(*args)
    s = mpf(0)
    for i in range(len(args)):
        a = [mpf(v) for v in args]
        h = a[i] * mpf(10) ** -25
        a[i] += h
        up = fun(*a)
        a[i] -= 2 * h
        dn = fun(*a)
        s += abs(mpf(args[i]) * (up - dn) / (2 * h))
    return val, (s / abs(val) if val != 0 else mpf(0))


def g(v):
    return '%.17g' % float(v)


ROWS = []


def row(kind, fun, args, pad):
    val, kappa = cond(fun, args)
    if not (mpf('1e-306') < abs(val) < mpf('1e306')):
        return
    full = list(args) + [0] * (3 - len(args))
    ROWS.append('{"%s", {%s}, %s, %s},' % (kind, ', '.join(g(v) for v in full), g(val), g(kappa)))
    print(kind, full, float(val), float(kappa), file=sys.stderr)


# Standard normal deviates: bulk, tails, and far tails (about 1e-300).
DEVIATES = [-37, -20, -7.0, -2.0, -0.5, 0.0, 0.5, 2.0, 7.0, 20, 37]


def beta_positions(a, b):
    """x across the beta(a, b) distribution, as doubles."""
    out = []
    if min(a, b) >= 1000:
        n = a + b
        m, sd = a / n, math.sqrt(a * b / (n * n * (n + 1)))
        for z in DEVIATES:
            x = m + z * sd
            if 0 < x < 1 and x != m + (z - 1) * sd:
                out.append(x)
    else:
        # One small shape: the large one times the distance from its end is
        # about gamma with the small shape.
        small, large = min(a, b), max(a, b)
        for p in [1e-300, 1e-100, 1e-12, 1e-3, 0.3, 0.5, 0.7]:
            for gval in (special.gammaincinv(small, p), special.gammainccinv(small, p)):
                d = gval / large
                x = d if a < b else 1 - d
                if 0 < x < 1:
                    out.append(x)
    return sorted(set(out))


BETA_SHAPES = [(1e4, 1e4), (1e4, 3e4), (2e5, 1e5), (1e6, 1e6), (5e7, 5e7), (1e8, 3e8),
               (1e10, 1e10), (1e12, 1e12), (3e12, 1e12), (1e15, 2e15), (5e7, 1.5),
               (1.5, 1e6), (5e11, 0.5), (2.5, 1e13)]
F_DOF = [(3, 1e8), (3, 1e7), (1e4, 1e5), (1e6, 1e6), (10, 1e12), (1e8, 1e8),
         (1e12, 1e15), (2, 1e15), (1e5, 20), (1e15, 5)]
T_DOF = [1e4, 1e6, 1e8, 1e12, 1e15]
GAMMA_SHAPES = [1e4, 1e6, 1e8, 1e10, 1e12, 1e15]


def main(parts):
    if 'cdf' in parts:
        cdf_rows()
    if 'quantiles' in parts:
        quantile_rows()


def cdf_rows():
    print('// Generated by make_large_shapes.py (mpmath %s, 60-digit quadrature); do not edit.' % mpmath.__version__)
    for a, b in BETA_SHAPES:
        for x in beta_positions(a, b):
            row('beta_incomplete', beta_lower, [x, a, b], 3)
    for d1, d2 in F_DOF:
        for x in beta_positions(d1 / 2, d2 / 2):
            f = d2 * x / (d1 * (1 - x))
            row('F_cdf', F_lower, [f, d1, d2], 3)
            row('F_upper', F_upper, [f, d1, d2], 3)
    for df in T_DOF:
        for t in [-37, -20, -7, -2, -0.5, 0.5, 2, 7]:
            row('t_cdf', t_lower, [t * (1 + 1 / df), df], 2)
        for t in [0.5, 2, 7, 20, 37]:
            row('t_two_sided', t_two_sided, [t, df], 2)
    for a in GAMMA_SHAPES:
        for z in DEVIATES:
            x = a + z * math.sqrt(a)
            row('gamma_cdf', gamma_cdf, [x, a], 2)
            row('chi_squared_cdf', chi2_cdf, [2 * x, 2 * a], 2)
        for k in [-600, -50, 0, 300, 600]:
            x = math.exp((k + math.log(a)) / a)
            row('gamma_incomplete', gamma_inc, [a, x], 2)
    print('#ifdef ZORVS_LARGE_CDF_ROWS')
    print('\n'.join(ROWS))
    print('#endif')


def quantile_rows():
    # Quantiles: p from the far lower tail to the upper half.
    QROWS = []
    ps = [1e-300, 1e-100, 1e-12, 1e-3, 0.3, 0.5, 0.9]

    def quantile(kind, args, fun, start, p, step):
        # Two starting points a hundredth of a standard deviation apart: the
        # secant's own second point (start + 1/4) would leave the distribution.
        # The root of log F(x) = log p, which is nearly linear in the tails.
        # Close to 1 the root of the upper tail, log Q(x) = log(1 - p), which
        # keeps its digits where log F(x) is within 1e-9 of 0.
        if kind == 'F' and p >= 0.999:
            x = mpmath.findroot(lambda v: mpmath.log(F_upper(v, *args)) - mpmath.log(1 - mpf(p)),
                                (mpf(start), mpf(start) + step), solver='secant', tol=mpf(10) ** -60)
        else:
            x = mpmath.findroot(lambda v: mpmath.log(fun(v, *args)) - mpmath.log(p), (mpf(start), mpf(start) + step),
                                solver='secant', tol=mpf(10) ** -90)
        h = x * mpf(10) ** -25
        dens = (fun(x + h, *args) - fun(x - h, *args)) / (2 * h)
        QROWS.append('{"%s", {%s, %s}, %s, %s, %s},' % (kind, g(args[0]), g(args[1]), g(p), g(x), g(x * dens / p)))
        print(kind, args, p, float(x), file=sys.stderr)

    for a, b in [(1e4, 3e4), (1e6, 1e6), (1e8, 3e8), (1e12, 1e12)]:
        n = a + b
        m, sd = a / n, math.sqrt(a * b / (n * n * (n + 1)))
        for p in ps:
            quantile('beta', [a, b], beta_lower, m + special.ndtri(p) * sd, p, sd / 100)
    # The upper F quantiles at a small df1 are beta roots within 1e-7 of 1,
    # whose 1 - x the inverse must resolve.
    for d1, d2 in [(3, 1e8), (1e4, 1e5), (1e6, 1e6), (1, 1e10), (5, 1e12)]:
        for p in ps[2:] + ([0.99, 0.999] if d1 < 10 else []):
            scale = math.sqrt(2 / d1 + 2 / d2)
            start = special.fdtri(d1, d2, p) if d1 < 1e3 else math.exp(special.ndtri(p) * scale)
            quantile('F', [d1, d2], F_lower, start, p, start * scale / 100)
    for df in [1e4, 1e8, 1e12]:
        for p in ps[:4]:
            quantile('t', [df, 0], lambda v, d, _: t_lower(v, d), special.ndtri(p), p, 0.01)
    print('#ifdef ZORVS_LARGE_QUANTILE_ROWS')
    print('\n'.join(QROWS))
    print('#endif')


if __name__ == '__main__':
    main(sys.argv[1:] or ['cdf', 'quantiles'])
