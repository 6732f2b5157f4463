#!/usr/bin/env python3
"""numpy.fft on the sizes of bench_fft: fft2 and ifft2 of 1024 by 1024 and 4096 by 4096 complex
single-precision data (numpy computes in double), best of a few runs, with the check that
numpy's forward transform with norm="forward" is the library's scaling: X = (1 / N) sum x exp(-2 pi i j k / N)."""
import sys

import numpy as np

from bench_common import best_of

def main():
    rng = np.random.default_rng(1024)
    for n in (1024, 4096):
        data = (rng.uniform(0.0, 1024.0, (n, n))).astype(np.complex64)
        runs = 5 if n == 1024 else 2
        forward = best_of(lambda: np.fft.fft2(data, norm="forward"), runs)
        inverse = best_of(lambda: np.fft.ifft2(data, norm="forward"), runs)
        print(f"numpy forward {n}: {forward * 1e3:9.2f} ms   inverse {n}: {inverse * 1e3:9.2f} ms")
    # The scale and sign: a unit impulse gives 1 / N everywhere, exp(+2 pi i 5 j / 64) bin 5.
    impulse = np.zeros((8, 8), dtype=np.complex64)
    impulse[0, 0] = 1
    assert np.allclose(np.fft.fft2(impulse, norm="forward"), 1 / 64)
    wave = np.exp(2j * np.pi * 5 * np.arange(64) / 64)
    assert abs(np.fft.fft(wave, norm="forward")[5] - 1) < 1e-12
    return 0

if __name__ == "__main__":
    sys.exit(main())
