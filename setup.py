"""Builds the pelinor extension with the project's own CMake build.

pip runs this through pyproject.toml; the extension is the CMake target
pelinor_python, built for the interpreter that runs pip, in a release
configuration without the program, tests, benchmarks or fuzz targets.
Needs cmake, a C++20 compiler, pybind11 and the Python headers (Debian:
bash scripts/setup.sh).
"""

import os
import pathlib
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent


class CMakeBuild(build_ext):
    def build_extension(self, ext):
        build = pathlib.Path(self.build_temp).resolve() / "cmake"
        configure = [
            "cmake", "-S", str(ROOT), "-B", str(build),
            "-DCMAKE_BUILD_TYPE=Release",
            "-DPython3_EXECUTABLE=" + sys.executable,
            "-DPELINOR_BUILD_PYTHON=ON",
            "-DPELINOR_BUILD_CLI=OFF",
            "-DPELINOR_BUILD_TESTS=OFF",
            "-DPELINOR_BUILD_BENCH=OFF",
            "-DPELINOR_BUILD_FUZZ=OFF",
        ]
        if shutil.which("ninja"):
            configure += ["-G", "Ninja"]
        subprocess.run(configure, check=True)
        jobs = os.environ.get("CMAKE_BUILD_PARALLEL_LEVEL", str(os.cpu_count() or 1))
        subprocess.run(["cmake", "--build", str(build), "--target",
                        "pelinor_python", "-j", jobs], check=True)
        built = sorted((build / "python" / "pelinor").glob("_pelinor*.so"))
        if not built:
            sys.exit("setup.py: CMake did not build the pelinor module; are "
                     "pybind11 and the Python headers installed "
                     "(pybind11-dev, python3-dev)?")
        target = pathlib.Path(self.get_ext_fullpath(ext.name))
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(built[0], target)


setup(ext_modules=[Extension("pelinor._pelinor", sources=[])],
      cmdclass={"build_ext": CMakeBuild})
