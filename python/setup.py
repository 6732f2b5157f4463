"""Builds the native module with the project's CMake build (the library, the host's shared part
and the module), so that `pip install --no-build-isolation ./python` needs no other registry:
CMake, a C++20 compiler, libpng and pybind11 come from the system's packages."""

import glob
import os
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)


class CMakeBuild(build_ext):
    def build_extension(self, ext):
        tree = os.path.abspath(os.path.join(self.build_temp, "cmake"))
        subprocess.check_call(["cmake", "-S", ROOT, "-B", tree, "-DCMAKE_BUILD_TYPE=Release", "-DTAVRIN_PYTHON=ON",
                               f"-DPython3_EXECUTABLE={sys.executable}"])
        subprocess.check_call(["cmake", "--build", tree, "--target", "_tavrin", "-j", str(os.cpu_count() or 1)])
        built = glob.glob(os.path.join(tree, "python", "tavrin", "_tavrin*.so"))
        if len(built) != 1:
            raise RuntimeError(f"the native module was not built in {tree}")
        target = self.get_ext_fullpath(ext.name)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        shutil.copyfile(built[0], target)


setup(ext_modules=[Extension("tavrin._tavrin", sources=[])], cmdclass={"build_ext": CMakeBuild})
