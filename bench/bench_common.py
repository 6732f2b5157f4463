"""What the reference scripts of the benchmarks share: the input image that a benchmark
program wrote, the best time of a few runs, and the program's own best times read back."""
import os
import sys
import time

import numpy as np

SIZE = 4096


def input_path(variable, default):
    """The path of a benchmark program's input image: the environment variable if set, else
    the program's default."""
    return os.environ.get(variable, default)


def load_codes(path, program):
    """The SIZE by SIZE u16 codes of the file at path (raw, row 0 first); stops the script
    with a note when the program that writes them has not run yet."""
    if not os.path.exists(path):
        sys.exit(f"{path} is missing: run {program} first")
    return np.fromfile(path, dtype=np.uint16).reshape(SIZE, SIZE)


def best_of(fn, runs=3):
    """The shortest wall time of runs calls of fn, in seconds."""
    best = float("inf")
    for _ in range(runs):
        start = time.perf_counter()
        fn()
        best = min(best, time.perf_counter() - start)
    return best


def read_times(path):
    """The best times the program wrote beside its input (path + ".times", lines of
    "name seconds"), as a dict; empty when the file is not there."""
    ours = {}
    if os.path.exists(path + ".times"):
        with open(path + ".times") as f:
            for line in f:
                name, seconds = line.split()
                ours[name] = float(seconds)
    return ours
