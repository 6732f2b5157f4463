"""A batch of files in a loop and in a pool of worker processes."""

import multiprocessing
import time
from concurrent.futures import ProcessPoolExecutor

import numpy as np

import tavrin
from batch_work import summarise


def test_a_pool_of_two_gives_the_loops_results(tmp_path):
    rng = np.random.default_rng(200)
    paths = []
    for i in range(200):
        heights = rng.normal(size=(32, 32)) + i
        item = tavrin.new_image(heights, size_nm=(40.0, 40.0), title=f"frame {i}")
        paths.append(item.save(tmp_path / f"frame-{i:03d}.tif"))
        item.close()
    started = time.perf_counter()
    looped = [summarise(p) for p in paths]
    loop_seconds = time.perf_counter() - started
    assert tavrin.items() == []
    # Each worker starts a library of its own.
    started = time.perf_counter()
    with ProcessPoolExecutor(max_workers=2, mp_context=multiprocessing.get_context("spawn")) as pool:
        pooled = list(pool.map(summarise, paths, chunksize=10))
    pool_seconds = time.perf_counter() - started
    print(f"200 files: loop {loop_seconds:.2f} s, pool of 2 workers {pool_seconds:.2f} s (with start-up)")
    assert pooled == looped
    means = [s[1] for s in looped]
    assert means == sorted(means)                     # the frames rise by 1 nm each
    assert len({s[4] for s in looped}) > 150
