#!/usr/bin/env python3
"""scipy.ndimage on the input of bench_filters (the same 4096 by 4096 u16 codes): median_filter
with the cross and 3x3 footprints, correlate with the same integer kernels, and the ratio of
scipy's time to the filters' best times on one and on two threads."""
import numpy as np
from scipy import ndimage

from bench_common import best_of, input_path, load_codes, read_times

path = input_path("TAVRIN_FILTER_INPUT", "/tmp/tavrin-filters-4096.u16")
image = load_codes(path, "bench_filters")

cross = np.array([[0, 1, 0], [1, 1, 1], [0, 1, 0]], dtype=bool)
medium5 = np.array([[1, 2, 4, 2, 1], [2, 4, 8, 4, 2], [4, 8, 16, 8, 4], [2, 4, 8, 4, 2], [1, 2, 4, 2, 1]])
laplace = np.array([[-1, -1, -1], [-1, 8, -1], [-1, -1, -1]])
work = {
    "median5": lambda: ndimage.median_filter(image, footprint=cross),
    "median9": lambda: ndimage.median_filter(image, footprint=np.ones((3, 3), dtype=bool)),
    "low3": lambda: ndimage.correlate(image, np.ones((3, 3), dtype=np.int64)),
    "low5": lambda: ndimage.correlate(image, np.ones((5, 5), dtype=np.int64)),
    "med5": lambda: ndimage.correlate(image, medium5),
    "laplace": lambda: ndimage.correlate(image, laplace),
}


ours = read_times(path)

print(f"{'filter':10} {'scipy ms':>10} {'1 thread ms':>12} {'ratio':>7} {'2 threads ms':>13} {'ratio':>7}")
for name, fn in work.items():
    s = best_of(fn)
    row = f"{name:10} {s * 1e3:10.1f}"
    for threads in (1, 2):
        t = ours.get(f"{name}/{threads}")
        row += f" {t * 1e3:12.1f} {s / t:7.1f}" if t else f" {'-':>12} {'-':>7}"
    print(row)
