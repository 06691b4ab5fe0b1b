# SPDX-License-Identifier: MIT
"""What the tests share: the program, runs of it, networks."""

from __future__ import annotations

import gzip
import os
import signal
import subprocess
from collections.abc import Callable
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
PROGRAM = Path(os.environ.get("PLEXOR_PROGRAM", ROOT / "build" / "test" / "plexor"))

# A shell starts what is in the background deaf to interrupts, and children inherit that.
signal.signal(signal.SIGINT, signal.default_int_handler)

Run = Callable[..., Path]


@pytest.fixture(scope="session")
def program() -> Path:
    if not PROGRAM.exists():
        pytest.fail(f"no program at {PROGRAM}: build it, or name it in PLEXOR_PROGRAM")
    return PROGRAM


@pytest.fixture(scope="session")
def examples(tmp_path_factory: pytest.TempPathFactory) -> Path:
    """A folder with the shipped networks, unpacked."""
    folder = tmp_path_factory.mktemp("networks")
    for source in (ROOT / "examples").glob("*.txt*"):
        data = source.read_bytes()
        if source.suffix == ".gz":
            data = gzip.decompress(data)
        (folder / source.name.removesuffix(".gz")).write_bytes(data)
    return folder


@pytest.fixture(scope="session")
def run_plexor(program: Path, tmp_path_factory: pytest.TempPathFactory) -> Run:
    """Runs the program on a link file and gives the result directory; once for each question."""
    done: dict[tuple[str, ...], Path] = {}

    def run(links: Path | str, *switches: str) -> Path:
        question = (str(links), *switches)
        if question not in done:
            target = tmp_path_factory.mktemp("run") / "result"
            subprocess.run(
                [program, "-i", str(links), "-o", str(target), *switches],
                check=True,
                stdout=subprocess.DEVNULL,
            )
            # The intensity goes after the name.
            (made,) = target.parent.iterdir()
            done[question] = made
        return done[question]

    return run
