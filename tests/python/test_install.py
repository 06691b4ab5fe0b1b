# SPDX-License-Identifier: MIT
"""The package as users install it."""

from __future__ import annotations

import os
import re
import subprocess
import sys
from pathlib import Path

import pytest
from conftest import ROOT


@pytest.fixture(scope="module")
def venv(tmp_path_factory: pytest.TempPathFactory) -> Path:
    """The commands of docs/python.md, in a folder of its own; CMake's build is that of the tests,
    or a new one with PLEXOR_PYTHON_LONG."""
    folder = tmp_path_factory.mktemp("installed")
    environment = dict(os.environ)
    environment.pop("PYTHONPATH", None)
    if not os.environ.get("PLEXOR_PYTHON_LONG"):
        environment["PLEXOR_BUILD_DIR"] = str(ROOT / "build" / "test")

    def run(*command: object) -> None:
        subprocess.run(command, check=True, cwd=ROOT, env=environment, stdout=subprocess.DEVNULL)

    run(sys.executable, "-m", "venv", "--system-site-packages", folder / "venv")
    run(folder / "venv/bin/pip", "install", "-q", "--no-index", "--no-build-isolation", "--no-deps", ".")
    return folder / "venv"


def test_installed_package(venv: Path) -> None:
    script = """
import plexor
from importlib.metadata import entry_points, version
assert plexor.__file__.startswith(%r), plexor.__file__
assert plexor.__version__ == version("plexor")
network = plexor.Network([0, 1, 0, 2], [1, 2, 2, 3])
print([community.nodes for community in plexor.find_communities(network, 3)], version("plexor"))
for group in ("networkx.backends", "networkx.backend_info"):
    (point,) = (point for point in entry_points(group=group) if point.name == "plexor")
    assert point.load()
""" % str(venv)
    done = subprocess.run(
        [venv / "bin/python", "-I", "-c", script], capture_output=True, text=True, cwd="/"
    )
    version = re.search(r"^    VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text(), re.MULTILINE)[1]
    assert done.stdout == f"[[0, 1, 2]] {version}\n", done.stderr


def test_installed_tool(venv: Path, program: Path, tmp_path: Path) -> None:
    tool = venv / "bin" / "plexor-tool"
    environment = {**os.environ, "PYTHONPATH": ""}
    links = ROOT / "examples" / "us-airports.txt"

    def run(*words: object) -> str:
        done = subprocess.run(
            [tool, *map(str, words)],
            capture_output=True,
            text=True,
            cwd=tmp_path,
            env=environment,
        )
        assert done.returncode == 0, done.stderr
        return done.stdout

    subprocess.run(
        [program, "-i", links, "-o", tmp_path / "found"], check=True, stdout=subprocess.DEVNULL
    )
    run("report", "found", "-k", 6)
    page = (tmp_path / "found.html").read_text(encoding="utf-8")
    script = ROOT / "python" / "plexor" / "report" / "static" / "report.js"
    assert script.read_text(encoding="utf-8").strip() in page and '"BET"' in page
    assert "NMI (maximum)  1.000000" in run("compare", "found", "found", "-k", 6)
    assert " 27000" in run("sweep", links, "-w", "26000,27000", "-k", 7, "-o", "sweep")
    assert {path.name for path in (tmp_path / "sweep").iterdir()} >= {"sweep.csv", "sweep.html"}
    assert re.fullmatch(r"plexor-tool [0-9.]+\n", run("--version"))


def test_installed_files(venv: Path) -> None:
    (folder,) = venv.glob("lib/python*/site-packages/plexor")
    installed = {
        str(path.relative_to(folder)) for path in folder.rglob("*") if "__pycache__" not in path.parts
    }
    sources = ROOT / "python" / "plexor"
    expected = {str(path.relative_to(sources)) for path in sources.rglob("*.py")}
    assert expected <= installed
    assert {"py.typed", "_engine.pyi"} <= installed
    static = sources / "report" / "static"
    assert {f"report/static/{path.name}" for path in static.iterdir()} <= installed
    (module,) = folder.glob("_engine*.so")
    # Nothing of Plexor is needed beside it, and nothing but the module's entry is seen from outside.
    needed = subprocess.run(["ldd", module], capture_output=True, text=True, check=True).stdout
    assert "plexor" not in needed.replace(str(folder), "")
    symbols = subprocess.run(
        ["nm", "-D", "--defined-only", "-C", module], capture_output=True, text=True, check=True
    ).stdout
    assert "PyInit__engine" in symbols and "cpm::" not in symbols
