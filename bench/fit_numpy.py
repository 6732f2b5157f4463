#!/usr/bin/env python3
"""numpy on the input of bench_fit (the same 4096 by 4096 u16 codes): the points that the
surface fit samples (every 16th row and column), the same 16 terms u^b * v^a of degree (3, 3)
with u = (i - 2048) / 4096, lstsq on them, then the surface and residual of every pixel and
its stretch to 0..65535; the ratio of numpy's time to the fit's best times on one and two
threads."""
import numpy as np

from bench_common import SIZE, best_of, input_path, load_codes, read_times

STEP, DEG = 16, 3
path = input_path("TAVRIN_FIT_INPUT", "/tmp/tavrin-fit-4096.u16")
image = load_codes(path, "bench_fit")
u = (np.arange(SIZE) - SIZE // 2) / SIZE


def fit():
    sampled = image[::STEP, ::STEP].astype(np.float64)
    us, vs = np.meshgrid(u[::STEP], u[::STEP])
    design = np.stack([us.ravel() ** b * vs.ravel() ** a for a in range(DEG + 1) for b in range(DEG + 1)], axis=1)
    c, *_ = np.linalg.lstsq(design, sampled.ravel(), rcond=None)
    px = np.stack([u ** b for b in range(DEG + 1)])           # (4, SIZE)
    py = np.stack([u ** a for a in range(DEG + 1)])
    surface = py.T @ c.reshape(DEG + 1, DEG + 1) @ px         # rows y, columns x
    residual = image - surface
    lo, hi = residual.min(), residual.max()
    codes = ((residual - lo) * (65535.0 / (hi - lo))).astype(np.uint16)
    return c, codes


best = best_of(fit)
ours = read_times(path)
row = f"poly33 numpy {best * 1e3:.1f} ms"
for threads in (1, 2):
    t = ours.get(f"poly33/{threads}")
    row += f"; {threads} thread(s) {t * 1e3:.1f} ms, ratio {best / t:.1f}" if t else f"; {threads} thread(s) -"
print(row)
