"""SPS Mapping sets through the package: the sweep and the cube against the sample's model and
against the host's `map cube`."""

import numpy as np
import pytest

import tavrin
from conftest import run_host


def test_iv_mapping_cube_follows_the_model(demo_dir):
    item = tavrin.open(demo_dir / "iv-mapping.tif")
    sweep = item.sweep
    assert item.sweep_unit == "V"
    assert sweep.shape == (128,)
    assert sweep[0] == pytest.approx(-1.0) and sweep[-1] == pytest.approx(1.0)
    cube = item.cube()
    assert cube.dtype == np.float32 and cube.shape == (128, 64, 64)
    # I = G (V + 1.5 V^3), G 0.5 nA/V where x + y / 2 < 48, else 1.5 nA/V.
    y, x = np.mgrid[0:64, 0:64]
    g = np.where(x + y / 2 < 48, 0.5, 1.5)
    model = g[None, :, :] * (sweep[:, None, None] + 1.5 * sweep[:, None, None] ** 3)
    step = (model.max() - model.min()) / 65535
    assert np.max(np.abs(cube - model)) <= 1.5 * step
    codes = item.cube(values=False)
    assert codes.dtype == np.uint16 and codes.shape == cube.shape
    assert not cube.flags.writeable and not codes.flags.writeable


@pytest.mark.parametrize("codes", [False, True])
def test_cube_equals_the_hosts_map_cube(demo_dir, tmp_path, codes):
    out = tmp_path / "cube.npy"
    done = run_host("map", "cube", str(demo_dir / "force-mapping.tif"), "-o", str(out), *(["--codes"] if codes else []))
    assert done.returncode == 0, done.stderr
    item = tavrin.open(demo_dir / "force-mapping.tif")
    assert item.sweep_unit == "nm"
    np.testing.assert_array_equal(item.cube(values=not codes), np.load(out))


def test_an_image_without_a_set_has_no_cube(demo_dir):
    item = tavrin.open(demo_dir / "topography.tif")
    with pytest.raises(ValueError, match="holds no SPS Mapping set"):
        item.cube()
    with pytest.raises(ValueError, match="holds no SPS Mapping set"):
        item.sweep
