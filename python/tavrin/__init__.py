"""tavrin: the Tavrin Processing library in Python.

Measurements open into numpy arrays, every entry point of the library is callable by name, and
images show themselves in a notebook::

    import tavrin
    item = tavrin.open("topography.tif")
    heights = item.values                 # float64, in item.unit
    tavrin.call("ImageMirrorX")           # on the current item; the result becomes current

The library keeps one state per process: the package starts it at import and ends it at exit,
and calls are serialised by a lock. For parallel batch work use processes
(``concurrent.futures.ProcessPoolExecutor``), each of which starts its own library.
``$TAVRIN_HOME`` (settings and log, default ~/.tavrin/) and ``$TAVRIN_DATA`` (the library's data
directory) are read as the command-line host reads them; relative paths given to the package
stay relative to Python's working directory.
"""

from ._core import Error, ItemErased, TavrinWarning, answers
from .calls import Result, call, entries
from .item import Item, current, items, new_image, new_spectrum, open, render

__all__ = [
    "Error", "ItemErased", "TavrinWarning", "answers", "Result", "call", "entries", "Item", "current",
    "items", "new_image", "new_spectrum", "open", "render", "log",
]


def __getattr__(name):
    # tavrin.log: the log lines of this process, oldest first.
    if name == "log":
        from ._core import log_lines
        return log_lines()
    raise AttributeError(f"module 'tavrin' has no attribute {name!r}")
