#!/usr/bin/env python3
"""numpy beside bench_poly_regression: the same pool of 1024 quintic curves of 512 points, walked
64 times for 65536 fits of degree 5. Two routes are timed: numpy.linalg.lstsq called once per
curve (what a fit of each curve in turn does), and lstsq on the whole batch at once (one design
matrix, 1024 right sides per call), each followed by the statistics PolyRegression gives
(fitted values, residuals, standard deviation, coefficient errors, correlation). The ratios use
the best time that bench_poly_regression wrote to TAVRIN_POLYREG_TIMES."""
import os
import sys
import time

import numpy as np

POINTS, POOL, CURVES, DEGREE = 512, 1024, 65536, 5
x = -1.0 + 2.0 * np.arange(POINTS) / (POINTS - 1)
V = np.vander(x, DEGREE + 1, increasing=True)
k = np.arange(POINTS)
pool = np.empty((POOL, POINTS))
for s in range(POOL):
    c = np.sin(0.01 * s * (np.arange(DEGREE + 1) + 1) + np.arange(DEGREE + 1))
    pool[s] = V @ c + 0.01 * np.sin(0.37 * k * k + s)
inv_normal_diag = np.diag(np.linalg.inv(V.T @ V))


def statistics(c, Y):
    """Y holds curves in columns, c their coefficients."""
    fitted = V @ c
    residual = fitted - Y
    sse = np.sum(residual * residual, axis=0)
    stddev = np.sqrt(np.abs(sse / (POINTS - DEGREE - 1)))
    errors = np.sqrt(np.abs(inv_normal_diag))[:, None] * stddev
    syy = np.sum(Y * Y, axis=0) - np.sum(Y, axis=0) ** 2 / POINTS
    r = np.sqrt(np.abs(1.0 - sse / syy))
    return fitted, residual, stddev, errors, r


def per_curve():
    for i in range(CURVES):
        y = pool[i % POOL]
        c, *_ = np.linalg.lstsq(V, y, rcond=None)
        statistics(c[:, None], y[:, None])


def batch():
    for _ in range(CURVES // POOL):
        c, *_ = np.linalg.lstsq(V, pool.T, rcond=None)
        statistics(c, pool.T)


def best_of(fn, runs):
    best = 1e30
    for _ in range(runs):
        start = time.perf_counter()
        fn()
        best = min(best, time.perf_counter() - start)
    return best


path = os.environ.get("TAVRIN_POLYREG_TIMES", "/tmp/tavrin-polyreg.times")
if not os.path.exists(path):
    sys.exit(f"{path} is missing: run bench_poly_regression first")
ours = dict(line.split() for line in open(path))["polyreg5"]
ours = float(ours)
loop = best_of(per_curve, 1)
whole = best_of(batch, 3)
print(f"PolyRegression degree 5, {CURVES} curves: {ours * 1e3:.1f} ms")
print(f"numpy lstsq per curve: {loop * 1e3:.1f} ms, ratio {loop / ours:.2f}")
print(f"numpy lstsq on the batch ({POOL} right sides a call): {whole * 1e3:.1f} ms, ratio {whole / ours:.2f}")
