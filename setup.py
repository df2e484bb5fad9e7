"""Builds the package's compiled part with CMake; the rest is in pyproject.toml.

QAL_BUILD_DIR: a CMake build folder to take it from, in place of one of its own.
"""

import os
import re
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = Path(__file__).resolve().parent


class CMakeBuild(build_ext):
    def build_extension(self, ext):
        build = os.environ.get("QAL_BUILD_DIR")
        if build is None:
            build = str(Path(self.build_temp).resolve() / "cmake")
            subprocess.run(
                ["cmake", "-S", str(ROOT), "-B", build, "-DCMAKE_BUILD_TYPE=Release",
                 "-DQAL_BUILD_PYTHON=ON", "-DQAL_BUILD_TOOLS=ON",
                 f"-DPython_EXECUTABLE={sys.executable}"],
                check=True)
        jobs = str(self.parallel or os.cpu_count() or 1)
        subprocess.run(["cmake", "--build", build, "--target", "qal_python", "-j", jobs], check=True)
        target = Path(self.get_ext_fullpath(ext.name))
        target.parent.mkdir(parents=True, exist_ok=True)
        self.copy_file(str(Path(build) / "python" / "qal_kinematics" / target.name), str(target))


version = re.search(r"^project\(\S+ VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text(), re.M)
setup(
    version=version[1],
    ext_modules=[Extension("qal_kinematics._core", [])],
    cmdclass={"build_ext": CMakeBuild},
)
