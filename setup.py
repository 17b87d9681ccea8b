"""Builds the core module zelmath._core with the project's CMake build.

The libraries are linked statically into the module, so that the installed
package needs nothing of the build tree. Needs CMake, a C++17 compiler,
pybind11 (Debian pybind11-dev), pugixml and the interpreter's headers.
ZEL_CMAKE_ARGS adds arguments to the CMake configuration.
"""

import os
import pathlib
import shlex
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent
# Parallel compile jobs of the CMake build.
BUILD_JOBS = os.environ.get("CMAKE_BUILD_PARALLEL_LEVEL", "2")


class CMakeExtension(Extension):
    def __init__(self, name):
        super().__init__(name, sources=[])


class CMakeBuild(build_ext):
    def build_extension(self, ext):
        build_dir = pathlib.Path(self.build_temp).resolve() / "cmake"
        configure = [
            "cmake", "-S", str(ROOT), "-B", str(build_dir),
            "-DCMAKE_BUILD_TYPE=Release",
            "-DBUILD_SHARED_LIBS=OFF",
            "-DZEL_BUILD_PYTHON=ON",
            "-DZEL_BUILD_TESTS=OFF",
            "-DZEL_BUILD_EXAMPLES=OFF",
            "-DZEL_BUILD_TOOLS=OFF",
            f"-DPython3_EXECUTABLE={sys.executable}",
        ] + shlex.split(os.environ.get("ZEL_CMAKE_ARGS", ""))
        subprocess.run(configure, check=True)
        subprocess.run(["cmake", "--build", str(build_dir), "--target", "zelmath_python", "-j", BUILD_JOBS],
                       check=True)
        built = list((build_dir / "python" / "zelmath").glob("_core*.so"))
        if len(built) != 1:
            raise RuntimeError(f"expected one core module in {build_dir}, found {built}")
        target = pathlib.Path(self.get_ext_fullpath(ext.name))
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(built[0], target)


# setuptools' own build folder, apart from the project's usual CMake build folder.
SETUPTOOLS_BUILD_BASE = "build-pip"

setup(
    ext_modules=[CMakeExtension("zelmath._core")],
    cmdclass={"build_ext": CMakeBuild},
    options={"build": {"build_base": SETUPTOOLS_BUILD_BASE}},
)
