# SPDX-License-Identifier: MIT
"""Finds a NetworkX that knows backends, and puts it and the backend's metadata in front."""

from __future__ import annotations

import os
import shutil
import subprocess
from pathlib import Path

from conftest import ROOT

FINDER = """
import importlib.metadata, networkx, os
print(os.path.dirname(networkx.__file__))
print(importlib.metadata.distribution("networkx")._path)
print(networkx.__version__)
"""


def _ask(python: str, path: str | None = None) -> tuple[Path, Path, str] | None:
    environment = dict(os.environ, PYTHONPATH=path or "", NETWORKX_BACKEND_PRIORITY="")
    done = subprocess.run(
        [python, "-c", FINDER], env=environment, capture_output=True, text=True, cwd="/"
    )
    if done.returncode != 0:
        return None
    package, metadata, version = done.stdout.split("\n")[:3]
    major, minor = (int(part) for part in version.split(".")[:2])
    return (Path(package), Path(metadata), version) if (major, minor) >= (3, 2) else None


def find() -> tuple[Path, Path, str] | None:
    """The folders of the package and of its metadata, and the version; None where there is none.

    PLEXOR_NETWORKX may name the folder that holds both; else any python3 of the path is asked.
    """
    named = os.environ.get("PLEXOR_NETWORKX")
    if named:
        return _ask("/usr/bin/python3", named)
    for folder in os.environ.get("PATH", "").split(os.pathsep):
        python = shutil.which("python3", path=folder)
        if python is not None and (found := _ask(python)) is not None:
            return found
    return None


def make_path(folder: Path, found: tuple[Path, Path, str]) -> str:
    """A PYTHONPATH with that NetworkX, alone out of the place where it is, and with the package of
    this tree as if it were installed."""
    package, metadata, _ = found
    (folder / "networkx").symlink_to(package)
    (folder / metadata.name).symlink_to(metadata)
    (folder / "plexor").symlink_to(ROOT / "python" / "plexor")
    info = folder / "plexor-0.dist-info"
    info.mkdir()
    (info / "METADATA").write_text("Metadata-Version: 2.1\nName: plexor\nVersion: 0\n")
    (info / "entry_points.txt").write_text(_entry_points())
    return str(folder)


def _entry_points() -> str:
    import tomllib

    project = tomllib.loads((ROOT / "pyproject.toml").read_text())["project"]
    return "".join(
        f"[{group}]\n" + "".join(f"{name} = {value}\n" for name, value in entries.items())
        for group, entries in project["entry-points"].items()
    )
