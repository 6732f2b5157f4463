"""The work of one file in the batch test, importable by worker processes."""

import numpy as np

import tavrin


def summarise(path):
    """Opens the file, levels it by its mean, mirrors it with the library, and answers numbers
    of both; the data list is left empty."""
    item = tavrin.open(path)
    values = item.values
    mirrored = tavrin.call("ImageMirrorX").item
    codes = mirrored.codes
    summary = (path, float(values.mean()), float(values.std()), int(codes[0].astype(np.int64).sum()),
               int(codes.astype(np.int64).sum()))
    mirrored.close()
    item.close()
    return summary
