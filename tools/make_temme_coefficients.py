#!/usr/bin/python3
"""The coefficients d_n of Temme's uniform expansion of the incomplete beta
ratio (lib/dist/large_shapes.cpp) as polynomials in h = min(a, b)/max(a, b),
worked out in exact rational arithmetic and written as a C++ table.

d_n follows from the series a0 of the exponent in h, its powers b0 and the
series c by the recurrences of DiDonato and Morris (ACM TOMS 708, BASYM),
with r0 = 1/(1 + h) and r1 = 1 - h (a < b).  Every a0[k] is a polynomial in
h (r0 enters as (1 + h^(k+2))/(1 + h) with k + 2 odd), so every d_n is one:
for odd n of degree n + 1, for even n the factor r1 times a polynomial of
degree n, each with coefficients of one sign, so that Horner's rule on
[0, 1] adds no cancellation.  For a > b, r1 = (b - a)/a = -(1 - h) and the
same polynomials hold (the odd d_n do not depend on the sign of r1, the even
ones are odd in it), so one table serves both.  The script checks both
facts and the single signs.

    /usr/bin/python3 tools/make_temme_coefficients.py > lib/dist/temme_coefficients.inc
"""
from fractions import Fraction as Q

TERMS = 20


def add(p, q):
    n = max(len(p), len(q))
    return [(p[i] if i < len(p) else 0) + (q[i] if i < len(q) else 0) for i in range(n)]


def scale(p, c):
    return [c * x for x in p]


def mul(p, q):
    r = [Q(0)] * (len(p) + len(q) - 1)
    for i, x in enumerate(p):
        for j, y in enumerate(q):
            r[i + j] += x * y
    return r


def trim(p):
    while len(p) > 1 and p[-1] == 0:
        p = p[:-1]
    return p


def coefficients(sign):
    """d_0 ... d_TERMS as polynomials in h, r1 = sign (1 - h)."""
    r1 = [Q(sign), Q(-sign)]
    a0 = [None] * (TERMS + 1)
    c = [None] * (TERMS + 1)
    d = [None] * (TERMS + 1)
    a0[0] = scale(r1, Q(2, 3))
    c[0] = scale(a0[0], Q(-1, 2))
    d[0] = scale(c[0], -1)
    for n in range(2, TERMS + 1, 2):
        a0[n - 1] = [Q(2 * (-1) ** k, n + 2) for k in range(n + 1)]  # 2 r0 (1 + h^(n+1))/(n + 2)
        evens = [Q(1 - k % 2) for k in range(n + 1)]  # 1 + h^2 + ... + h^n
        a0[n] = scale(mul(r1, evens), Q(2, n + 3))
        for i in (n, n + 1):
            r = Q(-(i + 1), 2)
            b0 = [None] * (TERMS + 1)
            b0[0] = scale(a0[0], r)
            for m in range(2, i + 1):
                acc = [Q(0)]
                for j in range(1, m):
                    acc = add(acc, scale(mul(a0[j - 1], b0[m - j - 1]), j * (r + 1) - m))
                b0[m - 1] = add(scale(a0[m - 1], r), scale(acc, Q(1, m)))
            c[i - 1] = scale(b0[i - 1], Q(1, i + 1))
            s = [Q(0)]
            for j in range(1, i):
                s = add(s, mul(d[i - j - 1], c[j - 1]))
            d[i - 1] = scale(add(s, c[i - 1]), -1)
    return [trim(p) for p in d]


def over_r1(p):
    """p / (1 - h), which must divide."""
    q, acc = [], Q(0)
    for x in p[:-1]:
        acc += x
        q.append(acc)
    assert acc + p[-1] == 0
    return q


def main():
    plus, minus = coefficients(1), coefficients(-1)
    polys = []
    for n, (p, m) in enumerate(zip(plus, minus)):
        assert m == [(-1) ** (n + 1) * x for x in p]
        poly = over_r1(p) if n % 2 == 0 else p
        assert len(poly) == (n + 1 if n % 2 == 0 else n + 2)
        assert all(x >= 0 for x in poly) or all(x <= 0 for x in poly)
        polys.append(poly)
    print("// temme_coefficients.inc - written by tools/make_temme_coefficients.py;")
    print("// d_n of Temme's uniform expansion as polynomials in h, lowest power first:")
    print("// d_n = sum_k kTemme[kTemmeStart[n] + k] h^k for odd n, r1 times that for even n.")
    starts, at = [], 0
    for p in polys:
        starts.append(at)
        at += len(p)
    starts.append(at)
    print("constexpr int kTemmeStart[%d] = {%s};" % (len(starts), ", ".join(map(str, starts))))
    print("constexpr double kTemme[%d] = {" % at)
    for n, p in enumerate(polys):
        values = [float(x).hex() for x in p]
        for i in range(0, len(values), 4):
            print("    " + ", ".join(values[i:i + 4]) + ",")
    print("};")


if __name__ == "__main__":
    main()
