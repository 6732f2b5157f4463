"""numpy data into items, through the library's files and back."""

import numpy as np
import pytest

import tavrin


def test_image_round_trip_through_tiff(tmp_path):
    rng = np.random.default_rng(27)
    heights = rng.uniform(-3.0, 7.0, size=(64, 64))
    made = tavrin.new_image(heights, size_nm=(120.0, 120.0), unit="nm", title="random heights")
    assert made.kind == "image"
    assert made.unit == "nm"
    assert made.title == "Topography"
    assert made.header["header"]["Title"] == "random heights"
    step = (heights.max() - heights.min()) / 65535
    # Codes span the range; values come back through the library's conversion.
    assert made.codes.min() == 0 and made.codes.max() == 65535
    np.testing.assert_allclose(made.values, heights, rtol=0, atol=step)

    path = made.save(tmp_path / "random.tif")
    loaded = tavrin.open(path)
    assert loaded != made
    assert loaded.codes.dtype == np.uint16 and loaded.codes.shape == (64, 64)
    np.testing.assert_array_equal(loaded.codes, made.codes)
    np.testing.assert_allclose(loaded.values, heights, rtol=0, atol=step)
    np.testing.assert_allclose(loaded.x_nm, np.arange(64) * 120.0 / 64)
    np.testing.assert_allclose(loaded.y_nm, np.arange(64) * 120.0 / 64)


def test_codes_are_rows_first_and_read_only():
    ramp = np.tile(np.arange(16, dtype=float), (16, 1))   # rises along x in every row
    ramp[0, 0] = -1.0                                       # one low pixel in row 0
    item = tavrin.new_image(ramp, size_nm=10.0)
    codes = item.codes
    assert codes[0, 0] == 0
    assert codes[1, 0] < codes[1, 15]
    assert codes[5, 15] == 65535
    with pytest.raises(ValueError):
        codes[0, 0] = 7


def test_values_of_other_units(tmp_path):
    volts = np.linspace(-2.0, 2.0, 32 * 32).reshape(32, 32)
    item = tavrin.new_image(volts, size_nm=50.0, unit="V", title="bias map")
    assert item.unit == "V"
    np.testing.assert_allclose(item.values, volts, atol=4.0 / 65535)
    again = tavrin.open(item.save(tmp_path / "volts.tif"))
    assert again.unit == "V"
    np.testing.assert_array_equal(again.codes, item.codes)


def test_spectrum_round_trip(tmp_path):
    x = np.linspace(-1.0, 1.0, 300)
    y = 0.4 * (x + 1.5 * x ** 3)
    made = tavrin.new_spectrum(x, y, title="IV", x_title="Bias [V]", y_title="Current [nA]", unit="nA")
    assert made.kind == "spectrum"
    assert made.unit == "nA"
    # Samples are single precision in the library.
    np.testing.assert_array_equal(made.x, x.astype(np.float32).astype(np.float64))
    np.testing.assert_array_equal(made.y, y.astype(np.float32).astype(np.float64))
    loaded = tavrin.open(made.save(tmp_path / "iv.spc"))
    assert loaded.kind == "spectrum"
    np.testing.assert_array_equal(loaded.x, made.x)
    np.testing.assert_array_equal(loaded.y, made.y)
    np.testing.assert_allclose(loaded.values, made.y)


@pytest.mark.parametrize("shape", [(32, 64), (48, 48), (8, 8), (16,), (2, 16, 16)])
def test_new_image_takes_square_powers_of_two_only(shape):
    before = tavrin.items()
    with pytest.raises(ValueError, match="new_image"):
        tavrin.new_image(np.zeros(shape))
    assert tavrin.items() == before


def test_new_image_refuses_bad_values_and_units():
    with pytest.raises(ValueError, match="not finite"):
        tavrin.new_image(np.full((16, 16), np.nan))
    with pytest.raises(ValueError, match="unit 'furlong'"):
        tavrin.new_image(np.zeros((16, 16)), unit="furlong")
    with pytest.raises(ValueError, match="size_nm"):
        tavrin.new_image(np.zeros((16, 16)), size_nm=(0, 5))
    with pytest.raises(ValueError, match="3 to 8192"):
        tavrin.new_spectrum([1, 2], [3, 4])
    with pytest.raises(ValueError, match="one length"):
        tavrin.new_spectrum([1, 2, 3], [3, 4])
    assert tavrin.items() == []


def test_save_type_from_extension_and_by_name(tmp_path):
    item = tavrin.new_image(np.eye(16), size_nm=5.0)
    with pytest.raises(ValueError, match="names no file type"):
        item.save(tmp_path / "picture.jpeg")
    eight = item.save(tmp_path / "eight.tif", type="tif8")
    assert tavrin.open(eight).codes.max() > 0
    spectrum = tavrin.new_spectrum([0.0, 1.0, 2.0], [5.0, 6.0, 7.5])
    table = spectrum.save(tmp_path / "table.txt", type="dat")
    assert table.endswith("table.txt")
    assert "7.5" in (tmp_path / "table.txt").read_text()
    with pytest.raises(tavrin.Error, match="SaveSTMData"):
        item.save(tmp_path / "raw.bin")      # the library saves no raw file of an image


def test_items_lists_the_data_list_in_order():
    a = tavrin.new_image(np.zeros((16, 16)), size_nm=1.0)
    b = tavrin.new_spectrum([0, 1, 2], [1, 2, 3])
    assert tavrin.items() == [a, b]
    assert tavrin.current() == b
