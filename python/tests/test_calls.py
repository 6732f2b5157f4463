"""Entry points by name through the host's table."""

import os
import pathlib
import subprocess
import sys
import textwrap

import numpy as np
import pytest

import tavrin
from conftest import run_host


def host_entries():
    done = run_host("run", "-", stdin="entries\n")
    assert done.returncode == 0, done.stderr
    return done.stdout.split()


def test_the_package_knows_every_name_the_host_lists():
    listed = host_entries()
    assert len(listed) > 100
    assert "ImageMirrorX" in listed and "SetDisplayParam" in listed
    assert tavrin.entries() == listed


def test_every_entry_is_callable(tmp_path):
    # In a process of its own (settings, log and data list of its own): each name with no
    # arguments either runs or names itself in the TypeError of its missing arguments.
    script = textwrap.dedent("""
        import sys, numpy as np, tavrin
        tavrin.new_image(np.arange(256.0).reshape(16, 16), size_nm=10.0)
        ran = refused = failed = 0
        for name in tavrin.entries():
            try:
                tavrin.call(name)
                ran += 1
            except TypeError as e:
                assert name in str(e), (name, str(e))
                refused += 1
            except tavrin.Error as e:
                assert e.code > 0, (name, e)
                failed += 1
        print(ran, refused, failed)
    """)
    env = dict(os.environ, TAVRIN_HOME=str(tmp_path), TAVRIN_DATA=str(tmp_path), PYTHONPATH=os.pathsep.join(sys.path))
    done = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, env=env, timeout=600,
                          cwd=str(tmp_path))
    assert done.returncode == 0, done.stderr[-3000:]
    ran, refused, failed = (int(w) for w in done.stdout.split()[-3:])
    assert ran + refused + failed == len(tavrin.entries())
    assert ran > 20 and refused > 20


def test_call_runs_a_command_and_answers_the_new_item():
    source = tavrin.new_image(np.random.default_rng(1).uniform(size=(32, 32)), size_nm=20.0)
    result = tavrin.call("ImageMirrorX")
    assert result.item != source
    np.testing.assert_array_equal(result.item.codes, source.codes[:, ::-1])
    assert tavrin.call("dl_ImageMirrorY").item.codes.tolist() == source.codes[::-1, ::-1].tolist()
    assert tavrin.call("GetCurrentImagePtr").value == tavrin.current()
    assert tavrin.call("IsCurrentDataTypeImage").value != 0
    assert tavrin.call("Int2Str", 42).value == "42"


def test_record_fields_keep_the_others():
    before = tavrin.call("GetDisplayParam").outputs[0]
    fields = dict(pair.split("=", 1) for pair in before.split())
    try:
        tavrin.call("SetDisplayParam", DispMode=1)
        after = dict(pair.split("=", 1) for pair in tavrin.call("GetDisplayParam").outputs[0].split())
        assert after["DispMode"] == "1"
        for key in ("ImageDisplaySize", "ContourLevels", "ScaleBarMode", "FullDisplayOn"):
            assert after[key] == fields[key]
    finally:
        tavrin.call("SetDisplayParam", DispMode=int(fields["DispMode"]))


def test_unknown_names_and_bad_arguments():
    tavrin.new_image(np.zeros((16, 16)), size_nm=1.0)
    with pytest.raises(ValueError, match="NoSuchEntry"):
        tavrin.call("NoSuchEntry")
    with pytest.raises(TypeError, match="ImageMirrorX.*too many"):
        tavrin.call("ImageMirrorX", 5)
    with pytest.raises(TypeError, match="UserID.*missing"):
        tavrin.call("UserID")
    with pytest.raises(ValueError, match="SetCurrentImagePtr.*not a number"):
        tavrin.call("SetCurrentImagePtr", "twelve")
    with pytest.raises(ValueError, match="SetCurrentImagePtr.*no item"):
        tavrin.call("SetCurrentImagePtr", 999999)
    with pytest.raises(TypeError, match="SetDisplayParam.*no field 'Colour'"):
        tavrin.call("SetDisplayParam", Colour=3)
    with pytest.raises(TypeError, match="Int2Str"):
        tavrin.call("Int2Str", [1, 2])


def test_host_commands_by_name(tmp_path):
    tavrin.new_image(np.arange(256.0).reshape(16, 16), size_nm=1.0)
    tavrin.call("Log2Disk", "a line from Python")
    log_file = pathlib.Path(os.environ["TAVRIN_HOME"]) / "TavrinProc310.log"
    assert "a line from Python" in log_file.read_text(errors="replace")
    out = tmp_path / "window.png"
    assert tavrin.call("render", str(out)).outputs == [f"render: {out}\n"]
    assert out.stat().st_size > 0
    info = tavrin.call("info").outputs[0]
    assert info.startswith("item:")
