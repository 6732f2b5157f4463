"""Shared set-up: a settings home of the test run (before the package starts), the command-line
host built beside the package, and the built-in sample data written by `tavrin demo`."""

import os
import pathlib
import shutil
import subprocess
import tempfile

import pytest

HOME = tempfile.mkdtemp(prefix="tavrin-pytest-home-")
os.environ["TAVRIN_HOME"] = HOME
os.environ["TAVRIN_DATA"] = HOME

import tavrin  # noqa: E402  (the home must be set before the library starts)

ROOT = pathlib.Path(__file__).resolve().parents[2]


def host_binary():
    path = pathlib.Path(os.environ.get("TAVRIN_HOST", ROOT / "build" / "bin" / "tavrin")).resolve()
    if not path.is_file():
        raise RuntimeError(f"the command-line host is not built: {path} (set TAVRIN_HOST)")
    return str(path)


def run_host(*args, home=None, stdin=None):
    """Runs the command-line host with a settings home of its own; answers the completed process."""
    env = dict(os.environ)
    env["TAVRIN_HOME"] = home or tempfile.mkdtemp(prefix="host-", dir=HOME)
    # The host is not built with the sanitizers' preload of this process.
    env.pop("LD_PRELOAD", None)
    return subprocess.run([host_binary(), *args], input=stdin, capture_output=True, text=True, env=env, timeout=300)


def pytest_unconfigure(config):
    shutil.rmtree(HOME, ignore_errors=True)


@pytest.fixture(scope="session")
def demo_dir(tmp_path_factory):
    folder = tmp_path_factory.mktemp("demo")
    done = run_host("demo", "--out", str(folder))
    assert done.returncode == 0, done.stderr
    return folder


@pytest.fixture(autouse=True)
def empty_list():
    """Each test starts with an empty data list and the default answers, and leaves none."""
    tavrin.answers(None)
    for item in tavrin.items():
        item.close()
    yield
    tavrin.answers(None)
    for item in tavrin.items():
        item.close()
