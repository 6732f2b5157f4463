"""Opening and closing many items keeps the resident size flat."""

import os

import numpy as np

import tavrin


def resident_bytes():
    with open("/proc/self/statm") as f:
        return int(f.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


def test_open_and_close_a_thousand_items(tmp_path):
    item = tavrin.new_image(np.random.default_rng(5).normal(size=(256, 256)), size_nm=100.0)
    path = item.save(tmp_path / "one.tif")
    item.close()

    def cycle(n):
        for _ in range(n):
            opened = tavrin.open(path)
            opened.values
            opened.close()

    cycle(100)                        # warm up: the allocator's pools and the log
    start = resident_bytes()
    cycle(1000)
    end = resident_bytes()
    print(f"resident size after 100 cycles {start / 2**20:.1f} MiB, after 1100 {end / 2**20:.1f} MiB")
    assert tavrin.items() == []
    assert end <= start * 1.10
