# SPDX-License-Identifier: MIT
"""One network in every format gives one link file, and any table of names comes back."""

from __future__ import annotations

import csv
import gzip
import io
from collections.abc import Callable
from pathlib import Path

import networkx
import numpy as np
import pandas
import pytest
import scipy.io
import scipy.sparse
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st
from plexor.formats import ReadOptions, open_source, read, write_link_file
from plexor.formats.edge_list import Dialect, read_edge_list

from conftest import ROOT, Outcome, run_tool

Tool = Callable[..., Outcome]

EDGES = [
    ("Ann Lee", "Bob", 4.0),
    ("Ann Lee", "Łódź", 3.5),
    ("Bob", "Łódź", 0.125),
    ("Łódź", "#4", 1e-05),
    ("Bob", "a,b;c", 2.0),
    ("50%", "Bob", 1e22),
]
LINK_FILE = """# plexor: names are escaped as %XX
Ann%20Lee Bob 4
Ann%20Lee Łódź 3.5
Bob Łódź 0.125
Łódź %234 1e-05
Bob a,b;c 2
50%25 Bob 1e+22
""".encode()


def named(directed: bool = False) -> networkx.Graph:
    graph = networkx.DiGraph() if directed else networkx.Graph()
    graph.add_weighted_edges_from(EDGES)
    return graph


def write_csv(path: Path, separator: str, header: bool) -> None:
    frame = pandas.DataFrame(EDGES, columns=["source", "target", "weight"])
    frame.to_csv(path, sep=separator, header=header, index=False)


# All formats that hold names and weights, by the libraries that people use.
NAMED: dict[str, Callable[[Path], object]] = {
    "comma.csv": lambda path: write_csv(path, ",", True),
    "semicolon.csv": lambda path: write_csv(path, ";", True),
    "tab.tsv": lambda path: write_csv(path, "\t", True),
    "bare.csv": lambda path: write_csv(path, ",", False),
    "x.graphml": lambda path: networkx.write_graphml(named(), path),
    "directed.graphml": lambda path: networkx.write_graphml(named(True), path),
    "x.gexf": lambda path: networkx.write_gexf(named(), path),
    "x.gml": lambda path: networkx.write_gml(named(), path),
    "x.net": lambda path: networkx.write_pajek(named(), path),
}
# Formats with an order of their own: the same links, in another order or direction.
UNORDERED = {"x.graphml", "directed.graphml", "x.gexf", "x.gml", "x.net"}


def as_set(link_file: bytes) -> set[tuple[frozenset[bytes], bytes]]:
    lines = [line.split() for line in link_file.splitlines() if not line.startswith(b"#")]
    return {(frozenset(line[:2]), b" ".join(line[2:])) for line in lines}


@pytest.mark.parametrize("name", NAMED)
@pytest.mark.parametrize("packed", [False, True])
def test_one_network_with_names_and_weights(
    name: str, packed: bool, tmp_path: Path, in_process: Tool
) -> None:
    path = tmp_path / name
    NAMED[name](path)
    if packed:
        path = path.rename(tmp_path / "packed")
        path = path.with_name(name + ".gz")
        path.write_bytes(gzip.compress((tmp_path / "packed").read_bytes()))
    outcome = in_process("convert", path)
    assert outcome.status == 0, outcome.said
    if name in UNORDERED:
        assert as_set(outcome.out) == as_set(LINK_FILE)
        assert outcome.out.startswith(b"# plexor: names are escaped as %XX\n")
    else:
        assert outcome.out == LINK_FILE


PAIRS = [(1, 2), (1, 3), (2, 3), (3, 4), (2, 5)]
PLAIN = b"".join(b"%d %d\n" % pair for pair in PAIRS)


def numbered() -> networkx.Graph:
    return networkx.Graph(PAIRS)


def write_matrix(path: Path) -> None:
    a, b = np.array(PAIRS).T - 1
    matrix = scipy.sparse.coo_matrix((np.ones(len(a)), (b, a)), shape=(5, 5))
    scipy.io.mmwrite(path, matrix + matrix.T, field="pattern", symmetry="symmetric")


def write_metis(path: Path) -> None:
    lines = [" ".join(map(str, sorted(numbered()[node]))) for node in range(1, 6)]
    path.write_text("% a comment\n5 5\n" + "\n".join(lines) + "\n")


PLAIN_FILES: dict[str, Callable[[Path], object]] = {
    "blanks.txt": lambda path: np.savetxt(path, PAIRS, fmt="%d"),
    "networkx.edges": lambda path: networkx.write_edgelist(numbered(), path, data=False),
    "snap.txt": lambda path: path.write_bytes(
        b"# FromNodeId\tToNodeId\n" + PLAIN.replace(b" ", b"\t")
    ),
    "out.konect": lambda path: path.write_bytes(b"% sym unweighted\n% 5 5 5\n" + PLAIN),
    "x.sif": lambda path: path.write_text("".join(f"{a} pp {b}\n" for a, b in PAIRS)),
    "x.mtx": write_matrix,
    "x.graph": write_metis,
    "x.csv": lambda path: pandas.DataFrame(PAIRS).to_csv(path, header=False, index=False),
    "x.graphml": lambda path: networkx.write_graphml(numbered(), path),
    "x.gexf": lambda path: networkx.write_gexf(numbered(), path),
    "x.gml": lambda path: networkx.write_gml(numbered(), path),
}


@pytest.mark.parametrize("name", PLAIN_FILES)
def test_one_network_without_names_and_weights(
    name: str, tmp_path: Path, in_process: Tool
) -> None:
    path = tmp_path / name
    PLAIN_FILES[name](path)
    options = ["--weight-column", "none"] if name == "x.gexf" else []
    outcome = in_process("convert", path, *options)
    assert outcome.status == 0, outcome.said
    if path.suffix in (".txt", ".konect", ".sif", ".csv"):
        assert outcome.out == PLAIN
    assert as_set(outcome.out) == as_set(PLAIN)


@pytest.mark.parametrize("name", ["us-airports.txt", "uk-faculty.txt", "github.txt.gz"])
def test_a_link_file_stays_what_it_is(name: str, in_process: Tool) -> None:
    path = ROOT / "examples" / name
    data = gzip.decompress(path.read_bytes()) if name.endswith("gz") else path.read_bytes()
    links = b"".join(
        line + b"\n"
        for line in data.splitlines()
        if not line.startswith(b"#") and line.split()[0] != line.split()[1]
    )
    assert in_process("convert", path).out == links


def test_a_name_with_a_byte_order_mark_keeps_it(tmp_path: Path, in_process: Tool) -> None:
    path = tmp_path / "net.csv"
    path.write_bytes(b"source,target\n\xef\xbb\xbfann,bob\n")
    written = in_process("convert", path).out
    assert written == b"# plexor: names are escaped as %XX\n%EF%BB%BFann bob\n"
    path.write_bytes(written)
    assert in_process("convert", path).out == written


def test_a_converted_file_converts_to_itself(tmp_path: Path, in_process: Tool) -> None:
    path = tmp_path / "links.txt"
    path.write_bytes(LINK_FILE)
    assert in_process("convert", path).out == LINK_FILE


def test_standard_input_and_output() -> None:
    outcome = run_tool("convert", "-", stdin=b"source;target\na;b\nb;c\n")
    assert (outcome.status, outcome.out) == (0, b"a b\nb c\n")
    packed = run_tool("convert", "-", "-q", stdin=gzip.compress(LINK_FILE))
    assert (packed.status, packed.out, packed.said) == (0, LINK_FILE, "")


def test_an_output_is_replaced_only_when_asked(tmp_path: Path, in_process: Tool) -> None:
    source, target = tmp_path / "net.txt", tmp_path / "links.txt"
    source.write_bytes(b"a b\n")
    target.write_bytes(b"precious\n")
    refused = in_process("convert", source, "-o", target)
    assert refused.status == 1 and "-O" in refused.said
    assert target.read_bytes() == b"precious\n"
    assert in_process("convert", source, "-o", target, "-O").status == 0
    assert target.read_bytes() == b"a b\n"
    assert sorted(entry.name for entry in tmp_path.iterdir()) == ["links.txt", "net.txt"]


# Any table of names and weights

NAMES = st.text(st.characters(blacklist_categories=["Cs"], blacklist_characters="\0"), max_size=8)
WEIGHTS = st.floats(allow_nan=False, allow_infinity=False)
ROWS = st.lists(st.tuples(NAMES, NAMES, WEIGHTS), min_size=1, max_size=12)




@settings(deadline=None, suppress_health_check=[HealthCheck.function_scoped_fixture])
@given(rows=ROWS, separator=st.sampled_from([",", ";", "\t"]))
def test_any_table_comes_back(
    rows: list[tuple[str, str, float]], separator: str, tmp_path: Path
) -> None:
    text = io.StringIO(newline="")
    writer = csv.writer(text, delimiter=separator, quoting=csv.QUOTE_ALL, lineterminator="\n")
    writer.writerow(["source", "target", "weight"])
    for a, b, weight in rows:
        writer.writerow([a, b, repr(weight)])
    table_file, link_file = tmp_path / "table", tmp_path / "links"
    table_file.write_bytes(text.getvalue().encode())
    delimiter = {",": "comma", ";": "semicolon", "\t": "tab"}[separator]
    options = ReadOptions(
        format="edges", delimiter=delimiter, header=True, quotes=True, comment="none"
    )
    table = read(str(table_file), options).table
    with link_file.open("wb") as stream:
        write_link_file(table, stream)
    others = [(a, b, weight) for a, b, weight in rows if a != b]
    if not others:
        return
    back = read(str(link_file), ReadOptions(format="links")).table
    found = [
        (back.names[a], back.names[b], weight)
        for a, b, weight in zip(back.source.tolist(), back.target.tolist(), back.weight.tolist())
    ]
    assert found == others


@settings(deadline=None, suppress_health_check=[HealthCheck.function_scoped_fixture])
@given(data=st.binary(max_size=200))
def test_any_bytes_are_read_or_refused(data: bytes, tmp_path: Path) -> None:
    path = tmp_path / "bytes"
    path.write_bytes(data)
    try:
        table = read(str(path)).table
    except ValueError:
        return
    assert len(table.source) == len(table.target)


# Pieces that files of networks are made of, in any order.
PIECES = st.lists(
    st.sampled_from(
        [b"a", b"b", b"1", b"2", b"3", b"0.5", b"1,5", b" ", b" ", b"\t", b",", b";", b"\n", b"\n"]
        + [b'"', b"#", b"%", b"\r\n", b"*Vertices 2\n", b"graph [", b"node [ id 1 ]", b"]"]
        + [b"source", b"target", b"% sym\n", b"# plexor: names are escaped as %XX\n", b"%41", b"\xff"]
        + [b"%%MatrixMarket matrix coordinate real general\n", b"<graphml>", b"*Edges\n", b"pp"]
    ),
    max_size=30,
).map(b"".join)


@settings(deadline=None, suppress_health_check=[HealthCheck.function_scoped_fixture])
@given(data=PIECES, name=st.sampled_from(["x", "x.sif", "x.graph", "x.net", "x.gml", "x.mtx"]))
def test_any_pieces_are_read_or_refused(data: bytes, name: str, tmp_path: Path) -> None:
    path = tmp_path / name
    path.write_bytes(data)
    try:
        table = read(str(path)).table
        with (tmp_path / "links").open("wb") as stream:
            write_link_file(table, stream)
    except ValueError:
        return
    # Nothing is in the links that is not in the data: each name stands there as it is, or its
    # escapes do; numbers of nodes count lines in some formats.
    for name in {table.names[node] for node in [*table.source.tolist(), *table.target.tolist()]}:
        raw = name.encode("utf-8", "surrogateescape")
        assert raw in data or b"%41" in data or b'""' in data or name.isdigit()


@given(st.lists(st.tuples(st.integers(0, 5), st.integers(0, 5)), max_size=20))
def test_the_reader_keeps_order_and_repeats(pairs: list[tuple[int, int]]) -> None:
    data = b"".join(b"n%d n%d\n" % pair for pair in pairs)
    table = read_edge_list(data, Dialect())
    found = [
        (table.names[a], table.names[b])
        for a, b in zip(table.source.tolist(), table.target.tolist())
    ]
    assert found == [(f"n{a}", f"n{b}") for a, b in pairs]
    assert table.names == list(dict.fromkeys(name for pair in found for name in pair))


def test_a_source_says_what_it_is(tmp_path: Path) -> None:
    path = tmp_path / "a.graph.gz"
    path.write_bytes(gzip.compress(b"a b\n"))
    source = open_source(str(path))
    assert (source.packed, source.whole, source.suffixes) == (True, True, [".graph"])
