# SPDX-License-Identifier: MIT
"""Every line of docs/python.md, and the five of the README."""

from __future__ import annotations

import doctest
import os
from pathlib import Path

import pytest
from conftest import PROGRAM, ROOT


@pytest.mark.parametrize("page", ["docs/python.md", "README.md"])
def test_sessions(page: str, program: Path, tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    (tmp_path / "examples").symlink_to(ROOT / "examples")
    (tmp_path / "build" / "release").mkdir(parents=True)
    (tmp_path / "build" / "release" / "plexor").symlink_to(PROGRAM)
    monkeypatch.chdir(tmp_path)
    failed, tried = doctest.testfile(
        os.fspath(ROOT / page), module_relative=False, encoding="utf-8"
    )
    assert tried > 0 and failed == 0
