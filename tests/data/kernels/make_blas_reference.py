#!/usr/bin/python3
"""Reference results of the vector and matrix kernels, in float and double.

    /usr/bin/python3 tests/data/kernels/make_blas_reference.py > tests/data/kernels/blas_reference.inc

Every operation is done one at a time in numpy's float32 or float64 scalars,
so each result is rounded as the type rounds it, with the additions in
ascending element order in one accumulator (the order the kernels promise).
The norms (kind 7) are the exact ones, correctly rounded to double.  The
inputs are the same integer formula as the test's: element k of input
array s is ((k * 7919 + s * 104729) % 4001 - 2000) / 1000, rounded to the
type.  Each case lists the expected values it consumes, in the order the
test reads them; the float and double values share one layout.
"""
from decimal import Decimal, getcontext
from fractions import Fraction

import numpy as np

STRIDES = [1, 2, 3, -1, -2, -3]
FLAGS = [[-2, 9, 9, 9, 9], [0, 9, 2, 3, 9], [1, 2, 9, 9, 3], [-1, 2, 3, 4, 5]]
# (alpha, beta) pairs of the matrix product; beta 0 must not read C.
PRODUCT_SCALARS = [(0, 0), (1, 1), (-0.75, -1), (1, 2.5), (-0.75, 0)]


def inputs(T, s, size):
    return [T((((k * 7919 + s * 104729) % 4001) - 2000) / 1000.0) for k in range(size)]


def at(n, inc, i):
    """Storage offset of logical element i under the far-end rule."""
    return ((1 - n) * inc if inc < 0 else 0) + i * inc


def level_one(T, n, incx, incy, incz, flag):
    x, y, z = inputs(T, 1, n * abs(incx) + 1), inputs(T, 2, n * abs(incy) + 1), inputs(T, 3, n * abs(incz) + 1)
    X = [x[at(n, incx, i)] for i in range(n)]
    Y = [y[at(n, incy, i)] for i in range(n)]
    Z = [z[at(n, incz, i)] for i in range(n)]
    d, a, t = T(0), T(0), T(0)
    for i in range(n):
        d = d + X[i] * Y[i]
        a = a + abs(X[i] * Y[i])
        t = t + (X[i] * Y[i]) * Z[i]
    c, s = T(0.6), T(0.8)
    p = [T(v) for v in FLAGS[flag]]
    rx, ry, mx, my = [], [], [], []
    for w, v in zip(X, Y):
        rx.append(c * w + s * v)
        ry.append(c * v - s * w)
        if p[0] == -2:
            mx.append(w), my.append(v)
        elif p[0] == 0:
            mx.append(w + v * p[3]), my.append(w * p[2] + v)
        elif p[0] > 0:
            mx.append(w * p[1] + v), my.append(-w + p[4] * v)
        else:
            mx.append(w * p[1] + v * p[3]), my.append(w * p[2] + v * p[4])
    return [d, a, t] + X + [X[i] * Y[i] for i in range(n)] + rx + ry + mx + my


def count_rule(T, n, inc):
    x = inputs(T, 1, n * max(inc, 1) + 2)
    X = [x[i * inc] for i in range(n)] if inc > 0 else []
    s, a = T(0), T(0)
    for v in X:
        s = s + v
        a = a + abs(v)
    return [s, a] + [T(1.5) * v for v in X] + [T(4)] * len(X)


def walk_rule(T, n, inc):
    x = inputs(T, 1, 2 * n + 2)
    start = 0 if inc > 0 else 2 * n
    return [T(-3) * x[i] for i in range(n)] + [x[start + i * inc] + T(0.25) for i in range(n)]


def gemm(T, m, n, k, ta, tb, scalars):
    tra, trb = ta != 0, tb != 0
    lda, ldb, ldc = (k if tra else m) + 2, (n if trb else k) + 1, m + 3
    a, b, c = inputs(T, 1, lda * (m if tra else k)), inputs(T, 2, ldb * (k if trb else n)), inputs(T, 3, ldc * n)
    alpha, beta = T(PRODUCT_SCALARS[scalars][0]), T(PRODUCT_SCALARS[scalars][1])
    out = []
    for j in range(n):
        for i in range(m):
            e = c[j * ldc + i]
            out.append(T(0) if beta == 0 else -e if beta == -1 else e if beta == 1 else beta * e)
    for l in range(k if alpha != 0 else 0):
        for j in range(n):
            t = alpha * (b[l * ldb + j] if trb else b[j * ldb + l])
            for i in range(m):
                out[j * m + i] = out[j * m + i] + t * (a[i * lda + l] if tra else a[l * lda + i])
    return out


def gemv(T, m, n, trans, incx, incy):
    t = trans != 0
    lda, lx, ly = m + 1, (m if t else n), (n if t else m)
    a, x, y = inputs(T, 1, lda * n), inputs(T, 2, lx * abs(incx)), inputs(T, 3, ly * abs(incy))
    alpha, beta = T(1.25), T(0) if incx == incy else T(-0.5)
    X = [x[at(lx, incx, i)] for i in range(lx)]
    Y = [T(0) if beta == 0 else beta * y[at(ly, incy, i)] for i in range(ly)]
    for j in range(n):
        if t:
            d = T(0)
            for i in range(m):
                d = d + a[j * lda + i] * X[i]
            Y[j] = Y[j] + alpha * d
        else:
            d = alpha * X[j]
            for i in range(m):
                Y[i] = Y[i] + d * a[j * lda + i]
    return Y


def ger(T, m, n, incx, incy):
    lda = m + 1
    a, x, y = inputs(T, 1, lda * n), inputs(T, 2, m * abs(incx)), inputs(T, 3, n * abs(incy))
    return [a[j * lda + i] + x[at(m, incx, i)] * (T(0.5) * y[at(n, incy, j)]) for j in range(n) for i in range(m)]


def trsv(T, n, form, incx):
    up, tr, nonunit = form & 4 == 0, form & 2 != 0, form & 1 == 0
    back, lda = up != tr, n + 2
    a = inputs(T, 1, lda * n)
    for i in range(n):
        a[i * lda + i] = T(3 + i % 3)
    x = inputs(T, 2, n * abs(incx))
    X = [x[at(n, incx, i)] for i in range(n)]
    A = lambda i, j: a[j * lda + i]
    for s in range(n):
        i = n - 1 - s if back else s
        d = T(0)
        for j in range(i + 1 if back else 0, n if back else i):
            d = d + (A(i, j) if up == back else A(j, i)) * X[j]
        X[i] = (X[i] - d) / A(i, i) if nonunit else X[i] - d
    return X


def norm(T, n, power):
    """The Euclidean norm, correctly rounded, of n inputs scaled by 2^power
    (squares that overflow or underflow the type); 0 where the type cannot
    hold the scaled inputs (the test skips those)."""
    if T is np.float32 and abs(power) > 120:
        return [0.0]
    x = [Fraction(float(v)) * Fraction(2) ** power for v in inputs(T, 1, n)]
    getcontext().prec = 60
    total = sum(v * v for v in x)
    return [float((Decimal(total.numerator) / Decimal(total.denominator)).sqrt())]


def cases():
    """(kind, n, m, k, incx, incy, incz, option) and the function giving its values."""
    for n in (0, 1, 5, 17):
        for i, incx in enumerate(STRIDES):
            for j, incy in enumerate(STRIDES):
                incz, flag = STRIDES[(i + 2 * j + n) % 6] if i or j else 1, (i + j + n) % 4
                yield (0, n, 0, 0, incx, incy, incz, flag), lambda T, a=(n, incx, incy, incz, flag): level_one(T, *a)
        for inc in (1, 2, 3, 0, -1):
            yield (1, n, 0, 0, inc, 0, 0, 0), lambda T, a=(n, inc): count_rule(T, *a)
        for inc in (2, -2):
            yield (2, n, 0, 0, inc, 0, 0, 0), lambda T, a=(n, inc): walk_rule(T, *a)
    for m, n, k in ((1, 1, 1), (3, 4, 2), (7, 5, 9)):
        for ta in range(3):
            for tb in range(2):
                for sc in range(len(PRODUCT_SCALARS)):
                    yield (3, n, m, k, ta, tb, sc, 0), lambda T, a=(m, n, k, ta, tb, sc): gemm(T, *a)
    for m, n in ((1, 1), (4, 3), (7, 9)):
        for incx in STRIDES:
            for incy in STRIDES:
                for trans in range(3):
                    yield (4, n, m, 0, incx, incy, 0, trans), lambda T, a=(m, n, trans, incx, incy): gemv(T, *a)
                yield (5, n, m, 0, incx, incy, 0, 0), lambda T, a=(m, n, incx, incy): ger(T, *a)
    for power in (-1000, -100, -66, 0, 66, 100, 1000):
        for n in (1, 2, 5, 100):
            yield (7, n, 0, 0, power, 0, 0, 0), lambda T, a=(n, power): norm(T, *a)
    for n in (1, 2, 5, 17):
        for form in range(8):
            for incx in STRIDES:
                yield (6, n, 0, 0, incx, 0, 0, form), lambda T, a=(n, form, incx): trsv(T, *a)


def main():
    rows, values = [], {np.float32: [], np.float64: []}
    for key, f in cases():
        at_ = len(values[np.float32])
        for T in values:
            values[T] += [float(v) for v in f(T)]
        rows.append('{%s, %d},' % (', '.join(str(v) for v in key), at_))
    print('// Generated by /usr/bin/python3 tests/data/kernels/make_blas_reference.py; do not edit.')
    print('struct BlasCase { int kind, n, m, k, incx, incy, incz, option, first; };')
    print('static const BlasCase blas_cases[] = {')
    print('\n'.join(rows))
    print('};')
    print('static const double blas_expected[2][%d] = {' % len(values[np.float32]))
    for T in values:
        vals = ['%.9g' % v if T is np.float32 else repr(v) for v in values[T]]
        print('{' + ',\n'.join(', '.join(vals[i:i + 8]) for i in range(0, len(vals), 8)) + '},')
    print('};')


main()
