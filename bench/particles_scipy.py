#!/usr/bin/env python3
"""scipy.ndimage on the input of bench_particles (the same 4096 by 4096 bilevel u16 codes):
label with the 4- and 8-neighbour structures, then find_objects and bincount for the boxes
and pixel counts that MeasureAllObjects gives, and the ratio of scipy's time to the best time
of the measurement; then the scaling of erosion and dilation from one thread to two."""
import numpy as np
from scipy import ndimage

from bench_common import best_of, input_path, load_codes, read_times

path = input_path("TAVRIN_PARTICLE_INPUT", "/tmp/tavrin-particles-4096.u16")
image = load_codes(path, "bench_particles") != 0

structures = {4: ndimage.generate_binary_structure(2, 1), 8: ndimage.generate_binary_structure(2, 2)}


def measure(connectivity):
    labels, count = ndimage.label(image, structure=structures[connectivity])
    boxes = ndimage.find_objects(labels)
    pixels = np.bincount(labels.ravel())[1:]
    return count, boxes, pixels


ours = read_times(path)

print(f"{'measure':10} {'objects':>8} {'scipy ms':>10} {'ours ms':>10} {'scipy/ours':>11}")
for connectivity in (4, 8):
    count = measure(connectivity)[0]
    s = best_of(lambda: measure(connectivity))
    t = ours.get(f"measure/{connectivity}")
    row = f"{connectivity:>10} {count:8d} {s * 1e3:10.1f}"
    row += f" {t * 1e3:10.1f} {s / t:11.2f}" if t else f" {'-':>10} {'-':>11}"
    print(row)
for name in ("erode", "dilate"):
    one, two = ours.get(f"{name}/1"), ours.get(f"{name}/2")
    if one and two:
        print(f"{name:10} 1 thread {one * 1e3:.1f} ms, 2 threads {two * 1e3:.1f} ms, scaling {one / two:.2f}")
