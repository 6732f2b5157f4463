#!/usr/bin/env python3
"""numpy on the input of bench_measure (the same 4096 by 4096 u16 codes, 1 pm a code, pixels of
1000 / 4096 nm): min, max, mean, the rms and Ra by the measuring object's rule (deviations from
Zlo against the mean above the raw minimum), the volume above a base plane at 30 nm, and the
surface of the two triangles of every pixel (the first row and column add two flat triangles);
the ratio of numpy's time to the best time of MarkerAreaCalcs, and the largest relative
difference of the seven values."""
import os
import sys
import time

import numpy as np

SIZE = 4096
path = os.environ.get("TAVRIN_MEASURE_INPUT", "/tmp/tavrin-measure-4096.u16")
if not os.path.exists(path):
    sys.exit(f"{path} is missing: run bench_measure first")
codes = np.fromfile(path, dtype=np.uint16).reshape(SIZE, SIZE)
scale = 65.535 / 65535.0
dx = dy = 1000.0 / SIZE
cell = dx * dy


def stats():
    z = codes.astype(np.float64) * scale
    n = z.size
    lo, hi = int(codes.min()), int(codes.max())
    mean = z.sum() / n
    m = mean - lo * scale
    rms = np.sqrt(max(0.0, (z * z).sum() / n - m * m))
    ra = np.abs(z - m).sum() / n
    vol = np.where(z > 30.0, z - 30.0, 0.0).sum() * cell
    p, q, r, s = z[:-1, :-1], z[:-1, 1:], z[1:, :-1], z[1:, 1:]
    t1 = np.sqrt(((q - p) * dx) ** 2 + ((s - q) * dy) ** 2 + cell * cell)
    t2 = np.sqrt(((s - r) * dx) ** 2 + ((r - p) * dy) ** 2 + cell * cell)
    surf = (t1.sum() + t2.sum() + 2 * cell * (2 * SIZE - 1)) / 2
    return lo * scale, hi * scale, mean, rms, ra, surf, vol


best = float("inf")
for _ in range(3):
    start = time.perf_counter()
    values = stats()
    best = min(best, time.perf_counter() - start)

ours, theirs = None, None
if os.path.exists(path + ".times"):
    with open(path + ".times") as f:
        for line in f:
            words = line.split()
            if words[0] == "area":
                ours = float(words[1])
            elif words[0] == "values":
                theirs = [float(w) for w in words[1:]]
row = f"MarkerAreaCalcs numpy {best * 1e3:.1f} ms"
if ours:
    row += f"; ours {ours * 1e3:.1f} ms, ratio {best / ours:.1f}"
if theirs:
    diff = max(abs(a - b) / max(abs(b), 1e-12) for a, b in zip(theirs, values))
    row += f"; largest relative difference {diff:.2e}"
print(row)
