"""Builds the extension module cntr._cntr with the project's CMake build, for pip install.

The build (Release, without tests, benchmarks, examples or the tool) goes to build/python-wheel
for the interpreter that runs it. The module and the two libraries it loads are copied beside
the package's Python files; they are linked with the run path $ORIGIN, so each finds the others
in the package directory. CNTR_BUILD_JOBS sets the build's parallel jobs (default 2).
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent
BUILD_DIR = ROOT / "build" / "python-wheel"


def project_version():
    """The version that CMakeLists.txt gives the project."""
    match = re.search(r"project\(cntr VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text())
    return match.group(1)


class CMakeBuild(build_ext):
    def build_extension(self, ext):
        configure = [
            "cmake", "-S", str(ROOT), "-B", str(BUILD_DIR), "-G", "Ninja",
            "-DCMAKE_BUILD_TYPE=Release",
            f"-DPython3_EXECUTABLE={sys.executable}",
            "-DCNTR_PYTHON=ON",
            "-DCNTR_BUILD_TESTS=OFF",
            "-DCNTR_BUILD_BENCH=OFF",
            "-DCNTR_BUILD_EXAMPLES=OFF",
            "-DCNTR_BUILD_TOOLS=OFF",
            "-DCNTR_INSTALL=OFF",
            "-DCMAKE_BUILD_WITH_INSTALL_RPATH=ON",
            "-DCMAKE_INSTALL_RPATH=$ORIGIN",
        ]
        subprocess.run(configure, check=True)
        jobs = os.environ.get("CNTR_BUILD_JOBS", "2")
        subprocess.run(["cmake", "--build", str(BUILD_DIR), "--target", "cntr_python", "-j", jobs],
                       check=True)
        package_dir = pathlib.Path(self.get_ext_fullpath(ext.name)).parent
        package_dir.mkdir(parents=True, exist_ok=True)
        # The module, then the libraries under their sonames (copying follows the symbolic links).
        for built in (BUILD_DIR / "python" / "wheel-files.txt").read_text().split():
            shutil.copy(built, package_dir / pathlib.Path(built).name)


setup(
    version=project_version(),
    ext_modules=[Extension("cntr._cntr", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
)
