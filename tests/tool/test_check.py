# SPDX-License-Identifier: MIT
"""What `plexor-tool check` says is so."""

from __future__ import annotations

import itertools
import random
import subprocess
from collections.abc import Callable
from pathlib import Path

import igraph
import networkx
import numpy as np
import pytest
from hypothesis import given, settings
from hypothesis import strategies as st
from plexor.formats import read
from plexor.tool.check import _advice, _threshold
from plexor.tool.cost import Cost, different_pairs, estimate
from plexor.tool.reading import reasons_to_convert

from conftest import ROOT, Outcome

Tool = Callable[..., Outcome]


def edges_of(graph: networkx.Graph) -> tuple[np.ndarray, np.ndarray]:
    pairs = np.array(graph.edges, dtype=np.int64).reshape(-1, 2)
    return different_pairs(pairs[:, 0], pairs[:, 1], graph.number_of_nodes())


@settings(deadline=None, max_examples=60)
@given(st.integers(0, 10**6), st.integers(3, 14), st.integers(1, 9))
def test_bounds_hold(seed: int, n_nodes: int, tenths: int) -> None:
    graph = networkx.gnp_random_graph(n_nodes, tenths / 10, seed=seed)
    a, b = edges_of(graph)
    cost = estimate(n_nodes, a, b)
    cliques = list(networkx.find_cliques(graph))
    largest = max(map(len, cliques))
    assert cost.clique_found <= largest <= cost.clique_bound or cost.pairs == 0
    if cost.pairs:
        assert cost.core_number == max(networkx.core_number(graph).values())


@pytest.mark.parametrize("seed", range(5))
def test_the_estimate_is_near(seed: int) -> None:
    graph = networkx.gnp_random_graph(60, 0.4, seed=seed)
    a, b = edges_of(graph)
    exact = sum(len(clique) > 2 for clique in networkx.find_cliques(graph))
    assert exact / 2 < estimate(60, a, b).cliques < exact * 2


def test_the_estimate_of_a_real_network() -> None:
    table = read(str(ROOT / "examples" / "us-airports.txt")).table
    a, b = different_pairs(table.source, table.target, len(table.names))
    cost = estimate(len(table.names), a, b)
    exact = igraph.Graph(n=len(table.names), edges=np.stack([a, b], axis=1)).maximal_cliques(3, 0)
    assert len(exact) / 2 < cost.cliques < len(exact) * 2
    assert cost.clique_found <= max(map(len, exact)) <= cost.clique_bound


def test_many_cliques_are_seen_and_a_threshold_is_found() -> None:
    # Every choice of one node from each of 17 triples is a clique: 3 ** 17 of them.
    chooser = random.Random(1)
    links = [
        (i, j, 1.0 if chooser.random() < 0.8 else 5.0)
        for i, j in itertools.combinations(range(51), 2)
        if i // 3 != j // 3
    ]
    source, target, weight = (np.array(column) for column in zip(*links))
    a, b = different_pairs(source, target, 51)
    cost = estimate(51, a, b)
    assert cost.cliques == pytest.approx(3.0**17, rel=0.2)
    from plexor.formats import LinkTable

    table = LinkTable(
        "x", [str(i) for i in range(51)], source.astype(np.uint32), target.astype(np.uint32), weight
    )
    threshold = _threshold(table)
    assert threshold is not None and threshold[0] == 1.0
    advice = " ".join(_advice(table, cost))
    assert "may not end" in advice and "-t 0.01 -k 4" in advice and "-w 1 keeps" in advice


def test_advice_grows_with_the_cliques() -> None:
    from plexor.formats import LinkTable

    none = np.zeros(0, dtype=np.uint32)
    table = LinkTable("x", [], none, none, None)
    assert "seconds" in _advice(table, Cost(9, 9, 3, 4, 4, 4, 100.0))[0]
    assert "-k 4" in _advice(table, Cost(9, 9, 3, 4, 4, 4, 1e7))[0]
    assert "no triangle" in _advice(table, Cost(9, 9, 1, 4, 2, 2, 0.0))[0]


CASES = {
    "plain": (b"ann bob\nbob cid\ncid ann\n", True),
    "weights": (b"# c\nann\tbob\t1\nbob\tcid\t2\ncid\tann\t3\n", True),
    "windows": (b"ann bob\r\nbob cid\r\ncid ann\r\n", True),
    "single": (b"ann bob\nx\nbob cid\ncid ann\n", True),
    "escaped": (b"# plexor: names are escaped as %XX\na%20b c\nc d\nd a%20b\n", True),
    "comma": (b"ann,bob\nbob,cid\ncid,ann\n", False),
    "header": (b"source target\nann bob\nbob cid\ncid ann\n", False),
    "blank line": (b"ann bob\n\nbob cid\ncid ann\n", False),
    "blank line of windows": (b"ann bob\r\n\r\nbob cid\r\ncid ann\r\n", True),
    "single of windows": (b"ann bob\r\nx\r\nbob cid\r\ncid ann\r\n", False),
    "byte order mark": (b"\xef\xbb\xbfann bob\nbob cid\ncid ann\n", False),
    "konect": (b"% sym\nann bob\nbob cid\ncid ann\n", False),
    "names with blanks": (b"ann x\tbob\nbob\tcid\ncid\tann x\n", False),
    "four columns": (b"id source target w\n1 ann bob 2\n2 bob cid 2\n3 cid ann 2\n", False),
}


@pytest.mark.parametrize("case", CASES)
def test_whether_the_program_reads_it_is_so(
    case: str, tmp_path: Path, program: Path, in_process: Tool
) -> None:
    data, good = CASES[case]
    path = tmp_path / "net.txt"
    path.write_bytes(data)
    options = ["--weight-column", "w"] if case == "four columns" else []
    outcome = in_process("check", path, *options)
    assert outcome.status == 0, outcome.said
    text = outcome.out.decode()
    assert ("reads this file as it is" in text) == good
    assert ("would not read" in text) != good
    # The program agrees.
    subprocess.run([program, "-i", path, "-o", tmp_path / "out"], stdout=subprocess.DEVNULL)
    graph = tmp_path / "out" / "graph"
    read_links = set()
    if graph.exists():
        body = graph.read_bytes().split(b"\n\n", 1)[1]
        ends = [line.split()[:2] for line in body.splitlines()]
        read_links = {(a.replace(b"%20", b" "), b.replace(b"%20", b" ")) for a, b in ends}
    from plexor.formats import ReadOptions

    table = read(str(path), ReadOptions(weight_column="w" if options else None)).table
    mine = {
        (table.names[a].encode(), table.names[b].encode())
        for a, b in zip(table.source.tolist(), table.target.tolist())
    }
    assert (read_links == mine) == good
    if good:
        assert not reasons_to_convert(read(str(path)))


def test_links_in_both_directions_are_told(tmp_path: Path, in_process: Tool) -> None:
    path = tmp_path / "string.txt"
    path.write_bytes(
        b"protein1 protein2 combined_score\na1 b1 900\nb1 a1 900\nb1 c1 300\nc1 b1 300\n"
    )
    text = in_process("check", path, "--no-cost").out.decode()
    assert "every link stands in both directions with the same weight" in text
    path.write_bytes(
        b"protein1 protein2 combined_score\na1 b1 900\nb1 a1 800\nb1 c1 300\nc1 b1 300\n"
    )
    assert "every link stands" not in in_process("check", path, "--no-cost").out.decode()


def test_counts(tmp_path: Path, in_process: Tool) -> None:
    path = tmp_path / "net.txt"
    path.write_bytes(b"a1 b1 1\na1 b1 2\nb1 a1 -1\nc1 c1 5\nb1 c1 0\n")
    text = in_process("check", path).out.decode()
    for row in (
        "nodes with links       3",
        "links as written       5",
        "self-links             1, dropped",
        "repeated               1, their weights are added up",
        "links with direction   3 (with -D)",
        "links without          2 (without -D)",
        "with their reverse     2",
        "weights                -1 to 2, median 0.5",
        "2 are not positive",
        "there is no triangle",
    ):
        assert row in text, row


def test_a_file_that_cannot_be_read_has_status_1(tmp_path: Path, in_process: Tool) -> None:
    path = tmp_path / "net.txt"
    path.write_bytes(b"abc\n")
    outcome = in_process("check", path)
    assert (outcome.status, outcome.out) == (1, b"")
