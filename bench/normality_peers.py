"""Normality tests on normal samples: this library against SciPy's shapiro
and statsmodels' lilliefors on the same values, in one run (best of 5).

  - zorvs_d_normality_test, Lilliefors on 10^6 and Shapiro-Wilk on 2000
    (its largest n), called through the shared library with ctypes;
  - scipy.stats.shapiro on 2000 and on 10^6 (SciPy accepts any n and warns
    that its p-value may be inaccurate beyond 5000);
  - statsmodels.stats.diagnostic.lilliefors(pvalmethod = "approx"), the
    Dallal-Wilkinson p-value, on 10^6.

    /usr/bin/python3 bench/normality_peers.py build-bench/libzorvstat.so
"""
import ctypes
import os
import sys
import time
import warnings

import numpy as np
from scipy import stats
from statsmodels.stats.diagnostic import lilliefors

LIB = sys.argv[1] if len(sys.argv) > 1 else "build-bench/libzorvstat.so"
os.environ.setdefault("ZORVSERRPATH", os.path.dirname(os.path.abspath(LIB)) + "/")
LILLIEFORS, SHAPIRO_WILK = 12780, 14550

lib = ctypes.CDLL(LIB)
lib.zorvs_d_normality_test.restype = ctypes.c_double
rng = np.random.default_rng(24)
big = np.ascontiguousarray(rng.normal(10.0, 2.0, 1_000_000))
small = np.ascontiguousarray(big[:2000])


def timed(f, repeats=5):
    best, out = None, None
    for _ in range(repeats):
        t0 = time.perf_counter()
        out = f()
        dt = time.perf_counter() - t0
        best = dt if best is None else min(best, dt)
    return best, out


def zorvs(x, keyword):
    stat = ctypes.c_double()
    p = lib.zorvs_d_normality_test(ctypes.c_int(len(x)), x.ctypes.data_as(ctypes.POINTER(ctypes.c_double)),
                                   ctypes.c_int(keyword), ctypes.byref(stat), ctypes.c_int(0))
    return stat.value, p


warnings.simplefilter("ignore")
rows = [
    ("zorvs Shapiro-Wilk, n = 2000", *timed(lambda: zorvs(small, SHAPIRO_WILK))),
    ("scipy shapiro, n = 2000", *timed(lambda: tuple(stats.shapiro(small)))),
    ("scipy shapiro, n = 10^6", *timed(lambda: tuple(stats.shapiro(big)))),
    ("zorvs Lilliefors, n = 10^6", *timed(lambda: zorvs(big, LILLIEFORS))),
    ("statsmodels lilliefors, n = 10^6", *timed(lambda: lilliefors(big, dist="norm", pvalmethod="approx"))),
]
print("Normality tests on a normal sample (best of 5); statistic and p-value")
for name, t, (stat, p) in rows:
    print(f"  {name:34s} {t * 1e3:10.2f} ms   {stat:.8f}  {p:.6g}")
