"""Builds the wheel of orv_h264: /usr/bin/python3 -m pip wheel --no-build-isolation --no-deps ./python -w DIR

CMake makes the extension from the sources above this folder, with the libraries built in, so that the wheel needs no
other shared object of ours. Nothing is fetched.
"""

import os
import pathlib
import re
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent.parent


def version() -> str:
    header = (ROOT / "include/orv-utils-v4/version.h").read_text(encoding="utf-8")
    return ".".join(re.search(rf"_VERSION_{part} (\d+)", header)[1] for part in ("MAJOR", "MINOR", "PATCH"))


class BuildWithCMake(build_ext):
    def build_extension(self, ext: Extension) -> None:
        tree = pathlib.Path(self.build_temp).resolve() / "cmake"
        options = {"CMAKE_BUILD_TYPE": "Release", "BUILD_SHARED_LIBS": "OFF", "ORV_UTILS_V4_PYTHON": "ON",
                   "ORV_UTILS_V4_PYTHON_EXECUTABLE": sys.executable, "ORV_UTILS_V4_TOOLS": "OFF",
                   "ORV_UTILS_V4_TESTS": "OFF", "ORV_UTILS_V4_EXAMPLES": "OFF", "ORV_UTILS_V4_INSTALL": "OFF"}
        subprocess.run(["cmake", "-S", ROOT, "-B", tree, *(f"-D{name}={value}" for name, value in options.items())],
                       check=True)
        jobs = str(len(os.sched_getaffinity(0)))
        subprocess.run(["cmake", "--build", tree, "--target", "orv_h264_python", "--parallel", jobs], check=True)
        [built] = (tree / "python/orv_h264").glob("_core.*")
        to = pathlib.Path(self.get_ext_fullpath(ext.name))
        to.parent.mkdir(parents=True, exist_ok=True)
        self.copy_file(str(built), str(to))


setup(version=version(), ext_modules=[Extension("orv_h264._core", [])], cmdclass={"build_ext": BuildWithCMake})
