# SPDX-License-Identifier: MIT
"""`plexor-tool run` beside the program on larger networks, where they are at hand.

PLEXOR_DATA names their folder (else `data` beside the checkout). The small ones are always run, the
others with PLEXOR_TOOL_LONG=1. Four have more cliques than a test has time for, and are not run.
"""

from __future__ import annotations

import gzip
import hashlib
import os
import shutil
import subprocess
from pathlib import Path

import pytest

from conftest import ROOT, run_tool

DATA = Path(os.environ.get("PLEXOR_DATA", ROOT.parent / "data"))
LONG = bool(os.environ.get("PLEXOR_TOOL_LONG"))

SMALL = ["karate", "dolphins", "lesmis", "netscience", "celegansneural", "collins2007", "power"]
SMALL += ["email-Eu-core", "ca-GrQc", "ca-HepTh", "uk-faculty", "us-airports"]
LARGE = ["ca-CondMat", "ca-AstroPh", "cond-mat-2005", "wiki-Vote", "p2p-Gnutella31", "github"]
LARGE += ["biogrid-yeast", "email-Enron", "dblp-2010", "soc-Slashdot0902", "cnr-2000"]

RUNS: list[tuple[str, list[str]]] = [(name, []) for name in SMALL + LARGE]
RUNS += [(name, ["-D"]) for name in ("celegansneural", "email-Eu-core", "wiki-Vote", "lesmis")]
RUNS += [
    ("lesmis", ["-w", "1", "-W", "20"]),
    ("collins2007", ["-w", "0.5"]),
    ("cond-mat-2005", ["-w", "0.5", "-d", "3"]),
    ("celegansneural", ["-W", "10", "-D"]),
    ("lesmis", ["-I", "3"]),
    ("celegansneural", ["-I", "4"]),
    ("netscience", ["-I", "0.5", "-k", "4"]),
    ("cond-mat-2005", ["-w", "0.3", "-I", "1"]),
    ("ca-HepTh", ["-t", "1000"]),
    ("email-Eu-core", ["-t", "1000", "-D", "-k", "4"]),
]


def sums(directory: Path) -> dict[str, str]:
    return {
        str(path.relative_to(directory)): hashlib.sha256(path.read_bytes()).hexdigest()
        for path in directory.rglob("*")
        if path.is_file()
    }


@pytest.mark.parametrize(
    "name, switches", RUNS, ids=[" ".join([name, *switches]) for name, switches in RUNS]
)
def test_run_leaves_the_files_of_the_program(
    name: str, switches: list[str], program: Path, tmp_path: Path
) -> None:
    files = [path for ending in ("txt", "txt.gz") if (path := DATA / f"{name}.{ending}").exists()]
    if not files:
        pytest.skip(f"no {name} in {DATA} (PLEXOR_DATA names the folder)")
    if name not in SMALL and not LONG:
        pytest.skip("long: PLEXOR_TOOL_LONG=1 runs it")
    links = tmp_path / "net.txt"
    data = files[0].read_bytes()
    links.write_bytes(gzip.decompress(data) if files[0].suffix == ".gz" else data)
    subprocess.run([program, "-i", links, *switches], check=True, stdout=subprocess.DEVNULL)
    (directory,) = tmp_path.glob("net.txt_files*")
    by_program = sums(directory)
    shutil.rmtree(directory)
    outcome = run_tool("run", links, "-q", *switches)
    assert (outcome.status, outcome.said) == (0, "")
    assert list(tmp_path.glob("net.txt_files*")) == [directory]
    assert sums(directory) == by_program
    shutil.rmtree(tmp_path)
