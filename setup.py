# SPDX-License-Identifier: MIT
"""Builds the compiled module by CMake; pyproject.toml has the rest.

PLEXOR_BUILD_DIR names a folder that CMake has built it in already (with PLEXOR_PYTHON on).
"""

from __future__ import annotations

import os
import re
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = Path(__file__).resolve().parent


def version() -> str:
    """The one version of Plexor stands in CMakeLists.txt."""
    text = (ROOT / "CMakeLists.txt").read_text()
    match = re.search(r"project\(Plexor\s+VERSION\s+([0-9.]+)", text)
    if match is None:
        raise SystemExit("CMakeLists.txt states no version")
    return match[1]


class CMakeBuild(build_ext):
    def build_extension(self, ext: Extension) -> None:
        target = Path(self.get_ext_fullpath(ext.name)).resolve()
        given = os.environ.get("PLEXOR_BUILD_DIR")
        folder = Path(given or self.build_temp).resolve()
        if not (folder / "CMakeCache.txt").exists():
            subprocess.run(
                [
                    "cmake",
                    f"-S{ROOT}",
                    f"-B{folder}",
                    "-DCMAKE_BUILD_TYPE=Release",
                    "-DCMAKE_CXX_FLAGS_RELEASE=-O3 -DNDEBUG",
                    "-DPLEXOR_PYTHON=ON",
                    f"-DPython_EXECUTABLE={sys.executable}",
                    # In this folder, not in that of the sources.
                    f"-DPLEXOR_PYTHON_DIR={folder}/module",
                ],
                check=True,
            )
        jobs = str(os.cpu_count() or 1)
        subprocess.run(
            ["cmake", "--build", folder, "--target", "plexor_python", "-j", jobs], check=True
        )
        # It goes into <prefix>/plexor.
        subprocess.run(
            [
                *("cmake", "--install", folder, "--component", "python_module", "--strip"),
                *("--prefix", target.parent.parent),
            ],
            check=True,
        )


setup(
    version=version(),
    ext_modules=[Extension("plexor._engine", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
)
