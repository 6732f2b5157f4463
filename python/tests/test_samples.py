"""The built-in sample data through the package, and pictures against the host's."""

import json

import numpy as np
import pytest
from PIL import Image

import tavrin
from conftest import run_host


def test_topography(demo_dir):
    item = tavrin.open(demo_dir / "topography.tif")
    assert item.kind == "image"
    assert item.title == item.header["title"] == "Topography(FW)"
    assert item.header["header"]["Title"] == "Au(111) terraces with clusters"
    assert item.unit == "nm"
    assert item.codes.shape == (512, 512)
    np.testing.assert_allclose(item.x_nm[[0, 1, 511]], [0.0, 500.0 / 512, 511 * 500.0 / 512])
    values = item.values
    # Heights of the model: tilt, bow, terraces of 0.235 nm and clusters of 3 nm.
    header = item.header["header"]
    assert values.min() == pytest.approx(header["Zlo"], abs=1e-6)
    assert values.max() == pytest.approx(header["Zhi"], rel=1e-6)
    assert 3.0 < values.max() - values.min() < 8.0


def test_lattice_and_curves(demo_dir):
    lattice = tavrin.open(demo_dir / "lattice.tif")
    assert lattice.codes.shape == (256, 256)
    assert lattice.x_nm[-1] == pytest.approx(255 * 6.0 / 256)
    # Corrugation 0.02 nm with noise: the range is a few hundredths of a nm.
    assert 0.02 < np.ptp(lattice.values) < 0.06

    iv = tavrin.open(demo_dir / "iv-curve.spc")
    assert iv.kind == "spectrum"
    assert iv.x.shape == (256,)
    assert iv.x[0] == pytest.approx(-1.0) and iv.x[-1] == pytest.approx(1.0)
    model = 0.4 * (iv.x + 1.5 * iv.x ** 3)
    assert np.max(np.abs(iv.y - model)) < 0.02          # noise of 0.002 nA

    force = tavrin.open(demo_dir / "force-curve.spc")
    assert force.x[-1] == pytest.approx(200.0)
    in_contact = force.x > 130
    slope = np.polyfit(force.x[in_contact], force.y[in_contact], 1)[0]
    assert slope == pytest.approx(0.05, rel=0.02)
    assert tavrin.items() == [lattice, iv, force]


@pytest.mark.parametrize("name", ["topography.tif", "iv-curve.spc"])
def test_header_is_the_hosts_info_json(demo_dir, name):
    item = tavrin.open(demo_dir / name)
    done = run_host("info", str(demo_dir / name), "--json")
    assert done.returncode == 0, done.stderr
    assert item.header == json.loads(done.stdout)


@pytest.mark.parametrize("mode,table,size,full", [(0, 0, 512, False), (1, 3, 256, False), (2, 0, 512, False),
                                                  (0, 5, 512, True)])
def test_render_matches_the_hosts_render(demo_dir, tmp_path, mode, table, size, full):
    path = demo_dir / "topography.tif"
    item = tavrin.open(path)
    picture = tavrin.render(item, mode=mode, table=table, size=size, full=full)
    assert picture.dtype == np.uint8 and picture.shape == (512, 512, 3)
    out = tmp_path / "host.png"
    args = ["render", str(path), "-o", str(out), "--mode", str(mode), "--table", str(table), "--size", str(size)]
    done = run_host(*args + (["--full"] if full else []))
    assert done.returncode == 0, done.stderr
    host = np.asarray(Image.open(out).convert("RGB"))
    assert host.shape == picture.shape
    np.testing.assert_array_equal(picture, host)
    # The picture is no blank: the image spans many colours.
    assert len(np.unique(picture.reshape(-1, 3), axis=0)) > 10


def test_render_of_a_smaller_image_and_repr_png(demo_dir):
    lattice = tavrin.open(demo_dir / "lattice.tif")
    picture = lattice.render(size=256)
    assert picture.shape == (512, 512, 3)
    png = lattice._repr_png_()
    assert png.startswith(b"\x89PNG\r\n\x1a\n")
    import io
    shown = np.asarray(Image.open(io.BytesIO(png)).convert("RGB"))
    np.testing.assert_array_equal(shown, tavrin.render(lattice))
    spectrum = tavrin.new_spectrum([0, 1, 2], [1, 2, 3])
    assert spectrum._repr_png_() is None
    with pytest.raises(ValueError, match="no image"):
        tavrin.render(spectrum)
