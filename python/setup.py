"""Builds the compiled module with CMake, from the project around this directory.

OVIK_BUILD_DIR names a build directory of the project, configured with OVIK_PYTHON, to build it in;
without it a new one is made.
"""

import os
import re
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

PROJECT = Path(__file__).resolve().parent.parent


def project_version():
    return re.search(r"project\(ovik VERSION (\S+)", (PROJECT / "CMakeLists.txt").read_text())[1]


class BuildWithCMake(build_ext):
    def build_extension(self, extension):
        build_dir = os.environ.get("OVIK_BUILD_DIR")
        if not build_dir:
            build_dir = os.path.abspath(self.build_temp)
            self.spawn([
                "cmake", "-S", str(PROJECT), "-B", build_dir, "-DCMAKE_BUILD_TYPE=Release",
                "-DOVIK_PYTHON=ON", "-DOVIK_TESTS=OFF", "-DOVIK_BENCH=OFF",
                f"-DPython3_EXECUTABLE={sys.executable}",
            ])
        self.spawn(["cmake", "--build", build_dir, "--target", "ovik_python",
                    "--parallel", str(os.cpu_count())])
        module = Path(self.get_ext_fullpath(extension.name))
        module.parent.mkdir(parents=True, exist_ok=True)
        self.copy_file(str(Path(build_dir, "python", "ovik", module.name)), str(module))


setup(
    version=project_version(),
    ext_modules=[Extension("ovik._core", sources=[])],
    cmdclass={"build_ext": BuildWithCMake},
)
