# SPDX-License-Identifier: MIT
"""The module against the program on larger networks, where they are at hand.

PLEXOR_DATA names their folder (else `data` beside the checkout). The small ones are always run,
the others with PLEXOR_PYTHON_LONG=1. Two have cliques without end and are in neither list.
"""

from __future__ import annotations

import gzip
import os
import shutil
import subprocess
from pathlib import Path

import pytest
from conftest import ROOT
from same import assert_same

import plexor

DATA = Path(os.environ.get("PLEXOR_DATA", ROOT.parent / "data"))

SMALL = ["karate", "dolphins", "lesmis", "netscience", "celegansneural", "collins2007", "power"]
SMALL += ["email-Eu-core", "ca-GrQc", "ca-HepTh"]
LARGE = ["ca-CondMat", "ca-AstroPh", "cond-mat-2005", "wiki-Vote", "p2p-Gnutella31"]
LARGE += ["biogrid-yeast", "email-Enron", "dblp-2010", "soc-Slashdot0902", "cnr-2000"]
# 11 and 29 million cliques.
HUGE = ["fb100-Cornell5", "ego-twitter"]

RUNS: list[tuple[str, list[str], dict]] = [(name, [], {}) for name in SMALL + LARGE + HUGE]
RUNS += [
    (name, ["-D"], {"directed": True})
    for name in ["celegansneural", "email-Eu-core", "wiki-Vote", "p2p-Gnutella31"]
    + ["soc-Slashdot0902", "lesmis", "ca-HepTh"]
]
RUNS += [
    ("lesmis", ["-w", "1", "-W", "20"], {"weights": (1, 20)}),
    ("collins2007", ["-w", "0.5"], {"weights": (0.5, None)}),
    ("cond-mat-2005", ["-w", "0.5"], {"weights": (0.5, None)}),
    ("lesmis", ["-I", "3"], {"intensity": 3}),
    ("netscience", ["-I", "0.5", "-k", "4"], {"intensity": 0.5, "k": [4]}),
    ("celegansneural", ["-I", "4"], {"intensity": 4}),
    ("ca-HepTh", ["-t", "1000"], {"time_limit": 1000}),
]
LONG = os.environ.get("PLEXOR_PYTHON_LONG", "")


@pytest.mark.parametrize("name, switches, question", RUNS, ids=lambda x: str(x))
def test_same_as_the_program(
    name: str, switches: list[str], question: dict, program: Path, tmp_path: Path
) -> None:
    files = [path for ending in ("txt", "txt.gz") if (path := DATA / f"{name}.{ending}").exists()]
    if not files:
        pytest.skip(f"no {name} in {DATA} (PLEXOR_DATA names the folder)")
    if name not in SMALL and LONG not in ("1", "2") or name in HUGE and LONG != "2":
        pytest.skip("long: PLEXOR_PYTHON_LONG=1 (2: with the two largest) runs it")
    links = files[0]
    if links.suffix == ".gz":
        links = tmp_path / f"{name}.txt"
        links.write_bytes(gzip.decompress(files[0].read_bytes()))
    directory = tmp_path / "result"
    subprocess.run(
        [program, "-i", links, "-o", directory, *switches], check=True, stdout=subprocess.DEVNULL
    )
    (directory,) = tmp_path.glob("result*")
    weighted = "weights" in question or "intensity" in question
    network = plexor.Network.read(files[0], weighted=weighted)
    assert_same(plexor.find_communities(network, **question), plexor.load(directory))
    shutil.rmtree(tmp_path)
