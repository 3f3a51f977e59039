"""Least-squares ARMA(2, 1) on 10^6 observations: this library against its
peers on one series, in one run.

  - zorvs_d_arma, ZORVS_LEAST_SQUARES, 10 backcasts and none (CSS), called
    through the shared library with ctypes;
  - R's arima(method = "CSS"), timed inside R (system.time);
  - statsmodels' ARIMA: this statsmodels has no conditional-sum-of-squares
    fit, so its default state-space maximum likelihood stands in as a rough
    peer (and Hannan-Rissanen, its fast regression estimate).

    /usr/bin/python3 bench/arma_peers.py build-bench/libzorvstat.so
"""
import ctypes
import os
import subprocess
import sys
import tempfile
import time

import numpy as np
from statsmodels.tsa.arima.model import ARIMA

LIB = sys.argv[1] if len(sys.argv) > 1 else "build-bench/libzorvstat.so"
N = 1_000_000
os.environ.setdefault("ZORVSERRPATH", os.path.dirname(os.path.abspath(LIB)) + "/")

rng = np.random.default_rng(25)
a = rng.standard_normal(N + 500)
z = np.zeros(N + 500)
for t in range(2, N + 500):  # z(t) = 5 + 0.5 z(t-1) - 0.3 z(t-2) + a(t) - 0.4 a(t-1)
    z[t] = 5 + 0.5 * z[t - 1] - 0.3 * z[t - 2] + a[t] - 0.4 * a[t - 1]
z = np.ascontiguousarray(z[500:])


def timed(f, repeats=3):
    best, out = None, None
    for _ in range(repeats):
        t0 = time.perf_counter()
        out = f()
        dt = time.perf_counter() - t0
        best = dt if best is None else min(best, dt)
    return best, out


lib = ctypes.CDLL(LIB)
lib.zorvs_d_arma.restype = ctypes.POINTER(ctypes.c_double)
libc = ctypes.CDLL(None)
LEAST_SQUARES, BACKCASTING = 12700, 10190


def zorvs(length):
    zz = z.copy()
    p = lib.zorvs_d_arma(ctypes.c_int(N), zz.ctypes.data_as(ctypes.POINTER(ctypes.c_double)), ctypes.c_int(2),
                         ctypes.c_int(1), ctypes.c_int(LEAST_SQUARES), ctypes.c_int(BACKCASTING), ctypes.c_int(length),
                         ctypes.c_double(0.0), ctypes.c_int(0))
    est = [p[i] for i in range(4)]
    libc.free(p)
    return est


rows = []
for length in (10, 0):
    t, est = timed(lambda: zorvs(length))
    rows.append((f"zorvs_d_arma least squares, {length} backcasts", t, est))

with tempfile.NamedTemporaryFile(suffix=".bin", delete=False) as f:
    z.astype("<f8").tofile(f)
    path = f.name
r = subprocess.run(["Rscript", "-e",
                    f"z <- readBin('{path}', 'double', {N}); tm <- system.time(f <- arima(z, order = c(2, 0, 1), "
                    f"method = 'CSS')); cf <- coef(f); cat(tm[['elapsed']], cf[['intercept']] * (1 - cf[[1]] - cf[[2]]),"
                    f" cf[[1]], cf[[2]], -cf[[3]])"], capture_output=True, text=True, check=True).stdout.split()
os.unlink(path)
rows.append(("R arima(method = 'CSS')", float(r[0]), [float(v) for v in r[1:]]))

t, fit = timed(lambda: ARIMA(z, order=(2, 0, 1)).fit(), repeats=1)
c, p1, p2, m1 = fit.params[0], fit.params[1], fit.params[2], fit.params[3]
rows.append(("statsmodels ARIMA fit (state-space ML)", t, [c * (1 - p1 - p2), p1, p2, -m1]))
t, fit = timed(lambda: ARIMA(z, order=(2, 0, 1)).fit(method="hannan_rissanen"), repeats=1)
c, p1, p2, m1 = fit.params[0], fit.params[1], fit.params[2], fit.params[3]
rows.append(("statsmodels ARIMA fit (Hannan-Rissanen)", t, [c * (1 - p1 - p2), p1, p2, -m1]))

print(f"ARMA(2, 1), n = {N}; estimates as (constant, phi1, phi2, theta1), Box-Jenkins signs")
for name, t, est in rows:
    print(f"  {name:42s} {t:8.3f} s   " + " ".join(f"{v:9.5f}" for v in est))
