# SPDX-License-Identifier: MIT
"""What the tests of plexor-tool share: the command, the program, runs of it."""

from __future__ import annotations

import os
import signal
import subprocess
import sys
from collections.abc import Callable
from dataclasses import dataclass
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
PROGRAM = Path(os.environ.get("PLEXOR_PROGRAM", ROOT / "build" / "test" / "plexor"))

# A shell starts what is in the background deaf to interrupts, and children inherit that.
signal.signal(signal.SIGINT, signal.default_int_handler)


@dataclass
class Outcome:
    """How a command ended."""

    status: int
    out: bytes
    said: str


def tool_environment() -> dict[str, str]:
    path = f"{PROGRAM.parent}:{os.environ['PATH']}"
    return {**os.environ, "PYTHONPATH": str(ROOT / "python"), "PATH": path}


def run_tool(*arguments: str | Path, stdin: bytes = b"", cwd: Path | None = None) -> Outcome:
    """plexor-tool as a process of its own."""
    done = subprocess.run(
        [sys.executable, "-m", "plexor.tool", *map(str, arguments)],
        input=stdin,
        capture_output=True,
        env=tool_environment(),
        cwd=cwd,
        check=False,
    )
    return Outcome(done.returncode, done.stdout, done.stderr.decode("utf-8", "replace"))


@pytest.fixture(scope="session")
def program() -> Path:
    if not PROGRAM.exists():
        pytest.fail(f"no program at {PROGRAM}: build it, or name it in PLEXOR_PROGRAM")
    return PROGRAM


Run = Callable[..., Path]


@pytest.fixture(scope="session")
def run_plexor(program: Path, tmp_path_factory: pytest.TempPathFactory) -> Run:
    """Runs the program on a link file and gives the result directory; once for each question."""
    done: dict[tuple[str, ...], Path] = {}

    def run(links: Path | str, *switches: str) -> Path:
        question = (str(links), *switches)
        if question not in done:
            folder = tmp_path_factory.mktemp("run")
            subprocess.run(
                [program, "-i", str(links), "-o", str(folder / "result"), *switches],
                check=True,
                stdout=subprocess.DEVNULL,
            )
            (done[question],) = folder.iterdir()  # the intensity goes after the name
        return done[question]

    return run


@pytest.fixture
def in_process(
    capsysbinary: pytest.CaptureFixture[bytes], monkeypatch: pytest.MonkeyPatch
) -> Callable[..., Outcome]:
    """plexor-tool without a process of its own: quick."""
    from plexor.tool.cli import main

    monkeypatch.setenv("PATH", tool_environment()["PATH"])

    def run(*arguments: str | Path) -> Outcome:
        capsysbinary.readouterr()
        status = main([str(argument) for argument in arguments])
        out, said = capsysbinary.readouterr()
        return Outcome(status, out, said.decode("utf-8", "replace"))

    return run
