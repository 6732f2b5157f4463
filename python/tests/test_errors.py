"""Numbered errors, warnings, questions and the lifetime of items."""

import warnings

import numpy as np
import pytest

import tavrin


def test_a_missing_file_raises_its_numbered_error(tmp_path):
    with pytest.raises(tavrin.Error) as raised:
        tavrin.open(tmp_path / "nothing-here.tif")
    assert raised.value.code > 0
    assert "nothing-here.tif" in raised.value.text
    assert tavrin.items() == []


def test_a_failed_call_changes_nothing_in_the_data_list():
    spectrum = tavrin.new_spectrum(np.arange(8.0), np.arange(8.0) ** 2)
    before = tavrin.items()
    with pytest.raises(tavrin.Error) as raised:
        tavrin.call("ImageMirrorX")
    assert raised.value.code > 0 and raised.value.text
    assert tavrin.items() == before
    assert tavrin.current() == spectrum
    np.testing.assert_array_equal(spectrum.y, np.arange(8.0) ** 2)


def test_a_truncated_file_raises_and_leaves_the_list(tmp_path):
    good = tavrin.new_image(np.eye(32), size_nm=3.0)
    path = tmp_path / "cut.tif"
    data = open(good.save(tmp_path / "whole.tif"), "rb").read()
    path.write_bytes(data[: len(data) // 2])
    with pytest.raises(tavrin.Error) as raised:
        tavrin.open(path)
    assert raised.value.code > 0
    assert tavrin.items() == [good]


def test_revision_650_warns_and_opens(tmp_path):
    item = tavrin.new_image(np.random.default_rng(650).uniform(size=(16, 16)), size_nm=2.0)
    data = bytearray(open(item.save(tmp_path / "new.tif"), "rb").read())
    # The record's revision number follows the 10 bytes of the TIFF signature.
    assert int.from_bytes(data[10:12], "little") == 700
    data[10:12] = (650).to_bytes(2, "little")
    old = tmp_path / "rev650.tif"
    old.write_bytes(bytes(data))
    with pytest.warns(tavrin.TavrinWarning, match="UpdateOldImageHeader 650") as caught:
        opened = tavrin.open(old)
    assert caught[0].message.code == 32771
    np.testing.assert_array_equal(opened.codes, item.codes)


def test_default_answer_is_the_default_button():
    tavrin.new_image(np.zeros((16, 16)), size_nm=1.0)
    tavrin.call("EraseAllData")            # "Close all data ?" defaults to No
    assert len(tavrin.items()) == 1


def test_answer_yes_to_everything():
    tavrin.new_image(np.zeros((16, 16)), size_nm=1.0)
    tavrin.answers("yes")
    tavrin.call("EraseAllData")
    assert tavrin.items() == []


def test_a_list_of_answers_in_turn():
    a = tavrin.new_image(np.zeros((16, 16)), size_nm=1.0)
    b = tavrin.new_image(np.ones((16, 16)), size_nm=1.0)
    tavrin.answers(["no", "yes"])
    tavrin.call("EraseAllData")            # no
    assert tavrin.items() == [a, b]
    tavrin.call("EraseAllData")            # yes
    assert tavrin.items() == []
    c = tavrin.new_image(np.zeros((16, 16)), size_nm=1.0)
    tavrin.call("EraseAllData")            # the list is used up: the default, No
    assert tavrin.items() == [c]


def test_a_callable_answers_with_the_text_and_buttons():
    tavrin.new_image(np.zeros((16, 16)), size_nm=1.0)
    asked = []

    def policy(text, buttons):
        asked.append((text, buttons))
        return "yes"

    tavrin.answers(policy)
    tavrin.call("EraseAllData")
    assert asked == [("Close all data ?  ", ("yes", "no"))]
    assert tavrin.items() == []


def test_answers_refuses_unknown_policies():
    with pytest.raises(ValueError, match="maybe"):
        tavrin.answers("maybe")
    with pytest.raises(TypeError):
        tavrin.answers(3.5)


def test_erased_items_raise_and_their_arrays_stay():
    item = tavrin.new_image(np.arange(256.0).reshape(16, 16), size_nm=1.0)
    codes = item.codes
    item.close()
    assert not item.alive
    for touch in (lambda: item.codes, lambda: item.values, lambda: item.title, lambda: item.header,
                  lambda: item.x_nm, lambda: item.save("x.tif"), lambda: tavrin.render(item), item.close):
        with pytest.raises(tavrin.ItemErased, match="no longer on the data list"):
            touch()
    assert isinstance(tavrin.ItemErased("x"), ReferenceError)
    # The arrays taken before are numpy's own copies.
    assert int(codes.sum()) == int(np.round(np.arange(256.0) / 255 * 65535).sum())
    assert "erased" in repr(item)


def test_items_erased_by_an_entry_point_raise_too():
    a = tavrin.new_image(np.zeros((16, 16)), size_nm=1.0)
    tavrin.answers("yes")
    tavrin.call("EraseAllData")
    with pytest.raises(tavrin.ItemErased):
        a.values


def test_log_lines():
    tavrin.new_image(np.zeros((16, 16)), size_nm=1.0)
    tavrin.call("ImageMirrorX")
    assert any("Mirror" in line or "mirror" in line for line in tavrin.log)


def test_errors_pickle_for_worker_processes():
    import pickle
    e = pickle.loads(pickle.dumps(tavrin.Error(32776, "Unable to open file")))
    assert (e.code, e.text) == (32776, "Unable to open file")
    with warnings.catch_warnings():
        w = pickle.loads(pickle.dumps(tavrin.TavrinWarning(32771, "x")))
    assert w.code == 32771
