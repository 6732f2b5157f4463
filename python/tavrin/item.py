"""Items of the data list as Python objects."""

import io
import json
import os
import tempfile

import numpy as np

from . import _core
from ._core import native


class Item:
    """An item of the library's data list, known by its number (``id``).

    Every property reads the item anew; once the item is erased (``close()``, or an entry
    point that erases it) touching the object raises ``tavrin.ItemErased``. Arrays are
    read-only copies, so they stay valid after the item is gone.
    """

    __slots__ = ("id",)

    def __init__(self, item_id):
        self.id = int(item_id)

    def __eq__(self, other):
        return isinstance(other, Item) and other.id == self.id

    def __hash__(self):
        return hash(self.id)

    def __repr__(self):
        if not self.alive:
            return f"<tavrin.Item {self.id} (erased)>"
        return f"<tavrin.Item {self.id} {self.kind} {self.title!r}>"

    @property
    def alive(self):
        """True while the item is on the data list."""
        with _core.lock:
            return self.id in native.item_ids()

    @property
    def kind(self):
        """"image", "fft", "mapping", "spectrum", "profile", "histogram", ..."""
        return _core.run(native.kind, self.id)

    @property
    def title(self):
        """The title of the values, as the library names them ("Topography", ...); the record's
        own text is ``header["header"]["Title"]``."""
        return _core.run(native.title, self.id)

    @property
    def unit(self):
        """The unit of ``values`` (the physical unit at exponent 0)."""
        return _core.run(native.unit, self.id)

    @property
    def header(self):
        """The item as ``tavrin info --json`` prints it: class, title, type, unit, the record's
        fields under "header", and the processing history."""
        return json.loads(_core.run(native.info_json, self.id))

    @property
    def codes(self):
        """The pixel codes of an image, uint16 of shape (ny, nx), row 0 first."""
        return _core.run(native.codes, self.id)

    @property
    def values(self):
        """The physical values (float64, in ``unit``): of an image each pixel, of a spectrum each
        y sample, through the library's own conversion and calibration."""
        return _core.run(native.values, self.id)

    def _geometry(self):
        return _core.run(native.geometry, self.id)

    @property
    def x_nm(self):
        """The x position of each pixel column in nm (the pixel's corner)."""
        nx, _, size_x, _ = self._geometry()
        return np.arange(nx) * (size_x / nx)

    @property
    def y_nm(self):
        """The y position of each pixel row in nm (the pixel's corner)."""
        _, ny, _, size_y = self._geometry()
        return np.arange(ny) * (size_y / ny)

    @property
    def x(self):
        """The x samples of a spectrum, as stored."""
        return _core.run(native.samples, self.id)[0]

    @property
    def y(self):
        """The y samples of a spectrum, as stored."""
        return _core.run(native.samples, self.id)[1]

    @property
    def sweep(self):
        """The sweep value of each image of the item's SPS Mapping set (volts, or nm for a
        displacement sweep: see ``sweep_unit``), float64 of shape (ni,)."""
        return _core.run(native.sweep, self.id)

    @property
    def sweep_unit(self):
        """The unit of ``sweep``: "V" for a voltage sweep, else "nm"."""
        return _core.run(native.sweep_unit, self.id)

    def cube(self, values=True):
        """The item's SPS Mapping set as one array of shape (ni, cy, cx), image k the curve's
        k-th sample at every pixel: float32 physical values through the library's decoding, or
        with ``values=False`` the uint16 codes as stored."""
        return _core.run(native.cube, self.id, bool(values))

    def save(self, path, type=None):
        """Saves the item; the file type follows the extension as in ``tavrin convert``
        (.tif .bin .bft .asc .aft .spc .dat .hdr), or ``type`` (such an extension, "tif8" for an
        8-bit TIFF file, or the library's save type number)."""
        path = os.fspath(path)
        code = _save_type(path, type)
        status = _core.run(native.save, self.id, path, code)
        if status != 0:
            raise _core.Error(0, f"{path}: not saved")
        return path

    def close(self):
        """Erases the item from the data list (with its pixels or samples)."""
        _core.run(native.erase, self.id)

    def render(self, mode=0, table=0, size=512, full=False):
        return render(self, mode=mode, table=table, size=size, full=full)

    def _repr_png_(self):
        if self.kind not in ("image", "fft", "mapping"):
            return None
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "item.png")
            _core.run(native.render_png, self.id, 0, 0, 512, False, path)
            with io.open(path, "rb") as f:
                return f.read()


def _save_type(path, type):
    if type is None:
        return 0
    if isinstance(type, int):
        return type
    word = str(type).lower().lstrip(".")
    if word == "tif8":
        return native.save_type_8bit()
    code = native.save_type("x." + word)
    if code == 0:
        raise ValueError(f"save: {type!r} names no file type (.tif .bin .bft .asc .aft .spc .dat .hdr, tif8)")
    return code


def open(path):
    """Opens a measurement file into the data list. Answers its Item, or a list of Items when
    the file brought several. An error the library reported raises ``tavrin.Error`` when no item
    came; when the item came, it is a warning."""
    path = os.fspath(path)
    with _core.lock:
        _core.take_errors()
        ids = native.open(path)
        errors = _core.take_errors()
    if not ids:
        code, text = errors[0] if errors else (0, "not opened")
        raise _core.Error(code, f"{path}: {text}", errors)
    _core.warn(errors, path)
    items = [Item(i) for i in ids]
    return items[0] if len(items) == 1 else items


def items():
    """Every item of the data list, in list order."""
    with _core.lock:
        return [Item(i) for i in native.item_ids()]


def current():
    """The current item, or None."""
    with _core.lock:
        item_id = native.current_id()
    return None if item_id is None else Item(item_id)


def _made(item_id):
    if item_id is None:
        raise _core.Error(0, "no item made")
    return Item(item_id)


def new_image(values, size_nm=(100.0, 100.0), unit="nm", title=""):
    """A new image item from a square 2-D array of a power of two from 16 to 4096 pixels (row 0
    first), its values in ``unit``: the codes span the lowest to the highest value (Zlo to Zhi),
    as the library packs its own results. ``size_nm``: (width, height), or one size; ``title``
    the record's text. The item becomes current."""
    if np.isscalar(size_nm):
        size_nm = (size_nm, size_nm)
    width, height = (float(s) for s in size_nm)
    array = np.asarray(values, dtype=np.float64)
    return _made(_core.run(native.new_image, array, width, height, unit, title))


def new_spectrum(x, y, title="", x_title="", y_title="", unit="V"):
    """A new spectrum item from x and y samples (3 to 8192 points), y in ``unit``."""
    xs = np.asarray(x, dtype=np.float64)
    ys = np.asarray(y, dtype=np.float64)
    return _made(_core.run(native.new_spectrum, xs, ys, title, x_title, y_title, unit))


def render(item, mode=0, table=0, size=512, full=False):
    """The picture of an image as the host's window shows it: uint8 of shape (h, w, 3).

    ``mode`` 0 plain, 1 shaded, 2 contour, 3 and 4 image with contours; ``table`` the colour
    table 0 to 7; ``size`` the display size; ``full`` the full display (colour bar, ruler,
    text, histogram)."""
    if not isinstance(item, Item):
        raise TypeError(f"render takes an Item, not {type(item).__name__}")
    return _core.run(native.render, item.id, int(mode), int(table), int(size), bool(full))
