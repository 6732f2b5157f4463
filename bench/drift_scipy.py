#!/usr/bin/env python3
"""scipy.ndimage.map_coordinates (order 1) on the input of bench_regions: the same 4096 by 4096
u16 codes and the same coordinates as DriftResample (result pixel (i, j) at
X = P0.x + t ux - j uy, Y = P0.y + j ux + t uy, t = i + j C / S), and the ratio of scipy's time
to DriftResample's best time."""
import os
import sys
import time

import numpy as np
from scipy import ndimage

SIZE = 4096
path = os.environ.get("TAVRIN_DRIFT_INPUT", "/tmp/tavrin-drift-4096.u16")
if not os.path.exists(path) or not os.path.exists(path + ".frame"):
    sys.exit(f"{path} or its .frame is missing: run bench_regions first")
image = np.fromfile(path, dtype=np.uint16).reshape(SIZE, SIZE)
with open(path + ".frame") as f:
    x0, y0, ux, uy, c, s, w, h = f.read().split()
x0, y0, ux, uy, c, s, w, h = int(x0), int(y0), float(ux), float(uy), float(c), float(s), int(w), int(h)

j, i = np.mgrid[0:h, 0:w].astype(np.float64)
t = i + j * (c / s)
coords = np.array([y0 + j * ux + t * uy, x0 + t * ux - j * uy])
del i, j, t


# Processor time of this thread, as bench_regions takes it: the machine may be shared.
def best_of(fn, runs=3):
    best = float("inf")
    for _ in range(runs):
        start = time.thread_time()
        fn()
        best = min(best, time.thread_time() - start)
    return best


scipy_s = best_of(lambda: ndimage.map_coordinates(image, coords, order=1, mode="constant", cval=0.0))
ours = None
if os.path.exists(path + ".times"):
    with open(path + ".times") as f:
        for line in f:
            name, seconds = line.split()
            if name == "DriftResample":
                ours = float(seconds)
print(f"{'resample':16} {'scipy ms':>10} {'ours ms':>10} {'scipy / ours':>13}")
print(f"{'drift ' + str(w) + 'x' + str(h):16} {scipy_s * 1e3:10.1f} " +
      (f"{ours * 1e3:10.1f} {scipy_s / ours:13.2f}" if ours else f"{'-':>10} {'-':>13}"))
