# SPDX-License-Identifier: MIT
"""Twelve files as people hold them, one network in each.

Given to the program as they are, eight of them run on wrong data without a word and four are
refused without a reason. `convert` and `run` take each for what it is.
"""

from __future__ import annotations

import gzip
import re
import subprocess
from collections.abc import Callable
from pathlib import Path

import pytest

from conftest import Outcome

Tool = Callable[..., Outcome]

# Two triangles that share a link, and a tail.
EDGES = [("ann", "bob", 4), ("bob", "cid", 3), ("ann", "cid", 5), ("bob", "dan", 2)]
EDGES += [("cid", "dan", 7), ("dan", "eve", 1)]
NAMES = ["ann", "bob", "cid", "dan", "eve"]
NUMBER = {name: place for place, name in enumerate(NAMES, 1)}
BLANKS = {name: f"{name} of the north" for name in NAMES}


def lines(form: str) -> str:
    """A line a link; a, b are names, i, j numbers, w the weight."""
    return "".join(
        form.format(a=a, b=b, w=w, i=NUMBER[a], j=NUMBER[b], x=BLANKS[a], y=BLANKS[b])
        for a, b, w in EDGES
    )


def metis() -> str:
    rows: dict[str, list[int]] = {name: [] for name in NAMES}
    for a, b, _ in EDGES:
        rows[a].append(NUMBER[b])
        rows[b].append(NUMBER[a])
    return "5 6\n" + "".join(" ".join(map(str, row)) + "\n" for row in rows.values())


GML = "graph [\n" + "".join(f'  node [ id {i} label "{n}" ]\n' for n, i in NUMBER.items())
GML += lines("  edge [ source {i} target {j} value {w} ]\n") + "]\n"
GRAPHML = '<?xml version="1.0" encoding="UTF-8"?>\n'
GRAPHML += '<graphml xmlns="http://graphml.graphdrawing.org/xmlns">\n'
GRAPHML += '<key id="d0" for="edge" attr.name="weight" attr.type="double"/>\n'
GRAPHML += '<graph edgedefault="undirected">\n' + "".join(f'<node id="{n}"/>\n' for n in NAMES)
GRAPHML += lines('<edge source="{a}" target="{b}"><data key="d0">{w}</data></edge>\n')
GRAPHML += "</graph>\n</graphml>\n"
PAJEK = "*Vertices 5\n" + "".join(f'{i} "{n}"\n' for n, i in NUMBER.items())
PAJEK += "*Edges\n" + lines("{i} {j} {w}\n")

# Name of the file, its text, what nodes are called in it, the options that name the weights, whether
# it has any.
FILES: dict[str, tuple[str, str, dict[str, str], list[str], bool]] = {
    "string": (
        "9606.protein.links.v12.0.txt",
        "protein1 protein2 combined_score\n" + lines("{a} {b} {w}\n"),
        {},
        [],
        True,
    ),
    "konect": ("out.friends", "% sym weighted\n" + lines("{a} {b} {w}\n"), {}, [], True),
    "matrix market": (
        "net.mtx",
        "%%MatrixMarket matrix coordinate integer symmetric\n5 5 6\n" + lines("{j} {i} {w}\n"),
        {name: str(i) for name, i in NUMBER.items()},
        [],
        True,
    ),
    "comma and blank": ("net.csv", lines("{a}, {b}, {w}\n"), {}, [], True),
    "sif": ("net.sif", lines("{a} pp {b}\n"), {}, [], False),
    "gml": ("net.gml", GML, {}, ["--weight-column", "value"], True),
    "names with blanks": ("net.tsv", lines("{x}\t{y}\t{w}\n"), BLANKS, [], True),
    "metis": ("net.graph", metis(), {name: str(i) for name, i in NUMBER.items()}, [], False),
    "csv": ("net.csv", "source,target,weight\n" + lines("{a},{b},{w}\n"), {}, [], True),
    "pajek": ("net.net", PAJEK, {}, [], True),
    "graphml": ("net.graphml", GRAPHML, {}, [], True),
    "gz": ("net.txt.gz", lines("{a} {b} {w}\n"), {}, [], True),
}
REFUSED_BY_THE_PROGRAM = {"csv", "pajek", "graphml", "gz"}


def write(case: str, folder: Path) -> Path:
    name, text, *_ = FILES[case]
    path = folder / name
    data = text.encode()
    path.write_bytes(gzip.compress(data) if name.endswith(".gz") else data)
    return path


def expected(case: str) -> set[tuple[frozenset[str], str]]:
    _, _, called, _, weighted = FILES[case]
    return {
        (frozenset((called.get(a, a), called.get(b, b))), str(w) if weighted else "")
        for a, b, w in EDGES
    }


def unescaped(name: str) -> str:
    return re.sub("%([0-9A-F]{2})", lambda found: chr(int(found[1], 16)), name)


@pytest.mark.parametrize("case", FILES)
def test_the_links_are_those_of_the_data(case: str, tmp_path: Path, in_process: Tool) -> None:
    path = write(case, tmp_path)
    outcome = in_process("convert", path, *FILES[case][3])
    assert outcome.status == 0, outcome.said
    found = set()
    for line in outcome.out.decode().splitlines():
        if not line.startswith("#"):
            a, b, *weight = line.split(" ")
            found.add((frozenset((unescaped(a), unescaped(b))), "".join(weight)))
    assert found == expected(case)


@pytest.mark.parametrize("case", FILES)
def test_run_finds_its_communities(case: str, tmp_path: Path, in_process: Tool) -> None:
    path = write(case, tmp_path)
    outcome = in_process("run", path, "-o", tmp_path / "out", "-q", *FILES[case][3])
    assert outcome.status == 0, outcome.said
    text = (tmp_path / "out" / "k=3" / "communities").read_text().rstrip("\n")
    called = FILES[case][2]
    (line,) = [line for line in text.splitlines() if line.startswith("0: ")]
    members = {unescaped(name) for name in line.removeprefix("0: ").split()}
    assert members == {called.get(name, name) for name in ("ann", "bob", "cid", "dan")}
    assert not text.splitlines()[-1].startswith("1: ")


@pytest.mark.parametrize("case", FILES)
def test_what_the_program_makes_of_the_file_as_it_is(
    case: str, program: Path, tmp_path: Path, in_process: Tool
) -> None:
    """Why all this is needed; and `check` says so."""
    path = write(case, tmp_path)
    done = subprocess.run([program, "-i", path, "-o", tmp_path / "out"], capture_output=True)
    assert done.returncode == 0
    refused = b"ERROR" in done.stdout or b"basic_string" in done.stdout
    assert refused == (case in REFUSED_BY_THE_PROGRAM), done.stdout
    if not refused:
        names = (tmp_path / "out" / "graph").read_text().split("\n\n", 1)[1].split()
        called = FILES[case][2]
        right = {frozenset((called.get(a, a), called.get(b, b))) for a, b, _ in EDGES}
        assert {frozenset(pair) for pair in zip(names[0::2], names[1::2])} != right
    said = in_process("check", path, "--no-cost", *FILES[case][3]).out.decode()
    assert "would not read this network from the file as it is" in said
