# SPDX-License-Identifier: MIT
"""Every export, read back by the library of its format, has the communities of the files."""

from __future__ import annotations

import csv
import io
import json
from collections.abc import Callable
from dataclasses import dataclass, field
from pathlib import Path

import igraph
import jsonschema
import networkx
import numpy as np
import pandas
import pytest
from hypothesis import HealthCheck, example, given, settings
from hypothesis import strategies as st
from plexor.formats.exports import EXPORTS, ExportOptions
from plexor.formats.results_view import View

from conftest import ROOT, Outcome, Run

Tool = Callable[..., Outcome]

TRICKY = """# plexor: names are escaped as %XX
New%20York =cmd() 3
New%20York ../x 2.5
=cmd() ../x 1
../x <script>alert(1)</script> 4
<script>alert(1)</script> &amp; 1
../x &amp; 2
Łódź -5 1
Łódź a,"b" 1
-5 a,"b" 7
"""

AIRPORTS = ROOT / "examples" / "us-airports.txt"
FACULTY = ROOT / "examples" / "uk-faculty.txt"


def network(folder: Path, name: str) -> Path:
    """Networks of a few lines, and the shipped ones."""
    if name == "airports":
        return AIRPORTS
    if name == "faculty":
        return FACULTY
    texts = {
        "tricky": TRICKY,
        "no triangle": "a1 b1 1\nb1 c1 1\n",
        "one": "a1 b1 1\nb1 c1 2\nc1 a1 3\n",
        "both ways": "a1 b1 1\nb1 a1 4\nb1 c1 2\nc1 a1 3\n",
        "negative": "a1 b1 -1\nb1 c1 -2\nc1 a1 3\nc1 d1 0\n",
        "apart": "".join(
            f"{c}1 {c}2 1\n{c}2 {c}3 1\n{c}1 {c}3 1\n{c}3 {c}4 1\n{c}2 {c}4 1\n" for c in "abcde"
        ),
        "chain": "".join(f"n{i} n{j} {i + j}\n" for i in range(30) for j in (i + 1, i + 2)),
        "full": "".join(f"n{i} n{j} {i * j + 1}\n" for i in range(9) for j in range(i)),
    }
    path = folder / f"{name.replace(' ', '-')}.txt"
    if not path.exists():
        path.write_text(texts[name], encoding="utf-8")
    return path


CASES = [
    ("airports", "-k", "6"),
    ("airports", "-D", "-k", "4"),
    ("airports", "-I", "60000", "-k", "4"),
    ("airports", "-w", "20000"),
    ("airports", "-t", "0.000000001", "-k", "5"),
    ("faculty",),
    ("faculty", "-D"),
    ("faculty", "-W", "10"),
    ("faculty", "-D", "-t", "0.000000001"),
    ("tricky",),
    ("tricky", "-I", "0.5"),
    ("no triangle",),
    ("no triangle", "-k", "3"),
    ("one", "-w", " 0"),
    ("both ways", "-w", " 0"),
    ("both ways", "-D", "-w", " 0"),
    ("negative", "-w", " -9"),
    ("apart",),
    ("chain", "-I", "20", "-k", "3"),
    ("full", "-W", "30"),
]
# The networks of a few lines in all modes.
MODES: list[tuple[str, ...]] = [(), ("-D",), ("-w", " 0"), ("-I", "0.5"), ("-t", "0.000000001")]
CASES += [
    (name, *mode)
    for name in ("tricky", "no triangle", "one", "both ways", "negative", "apart", "chain", "full")
    for mode in MODES
    if (name, *mode) not in CASES
]


@dataclass
class Files:
    """What the program's files say, read by a few lines of this test."""

    names: list[str] = field(default_factory=list)
    links: dict[tuple[str, str], float | None] = field(default_factory=dict)
    directed: bool = False
    # k -> (nodes, approximated) by number
    levels: dict[int, list[tuple[frozenset[str], bool]]] = field(default_factory=dict)
    # k -> unescaped names of a link -> the communities that hold it
    holders: dict[int, dict[frozenset[str], set[int]]] = field(default_factory=dict)
    # k -> (community, unescaped name) -> how many of its links the node has
    degrees: dict[int, dict[tuple[int, str], int]] = field(default_factory=dict)


def records(path: Path) -> list[list[str]]:
    lines = path.read_text(encoding="utf-8").split("\n\n", 1)[1].split("\n")
    return [line.split() for line in lines if line]


def plain_files(directory: Path) -> Files:
    found = Files(directed=(directory / "directed_graph").exists())
    names: dict[str, None] = {}
    for source, target, *weight in records(next(directory.glob("*graph"))):
        pair = (source, target) if found.directed or source < target else (target, source)
        value = float(weight[0]) if weight else None
        old = found.links.get(pair)
        found.links[pair] = value if old is None or value is None else old + value
        names.update(dict.fromkeys((source, target)))
    found.names = list(names)
    for folder in directory.glob("k=*"):
        k = int(folder.name[2:])
        (path,) = [p for p in folder.glob("*communities") if not p.name.startswith("graph_of")]
        found.levels[k] = [
            (frozenset(row[1:]), row[0].startswith("-")) for row in records(path)
        ]
        holders: dict[frozenset[str], set[int]] = {}
        degrees: dict[tuple[int, str], int] = {}
        number = -1
        for row in records(path.with_name(path.name + "_links")):
            if len(row) == 1 and row[0].endswith(":"):
                number += 1
                continue
            link = frozenset(map(unescaped, row))
            own = holders.setdefault(link, set())
            if number not in own:  # intensity runs repeat links
                own.add(number)
                for name in link:
                    degrees[number, name] = degrees.get((number, name), 0) + 1
        found.holders[k], found.degrees[k] = holders, degrees
    return found


def unescaped(name: str) -> str:
    return name.replace("%20", " ")


@pytest.fixture(scope="session")
def folder(tmp_path_factory: pytest.TempPathFactory) -> Path:
    return tmp_path_factory.mktemp("networks")


@pytest.fixture(params=CASES, ids=" ".join)
def case(request: pytest.FixtureRequest, folder: Path, run_plexor: Run) -> tuple[Path, Files]:
    name, *switches = request.param
    directory = run_plexor(network(folder, name), *switches)
    return directory, plain_files(directory)


def expected_levels(files: Files) -> dict[int, list[tuple[frozenset[str], bool]]]:
    return {
        k: [(frozenset(map(unescaped, nodes)), flag) for nodes, flag in communities]
        for k, communities in files.levels.items()
    }


def from_attributes(
    rows: list[tuple[str, dict[str, object]]], files: Files
) -> dict[int, list[set[str]]]:
    """The communities that the attributes of nodes tell."""
    found: dict[int, list[set[str]]] = {}
    for k, communities in files.levels.items():
        end = "" if len(files.levels) == 1 else f"_k{k}"
        found[k] = [set() for _ in communities]
        for name, data in rows:
            own = [int(number) for number in str(data.get("communities" + end) or "").split()]
            assert int(str(data["n_communities" + end])) == len(own)
            flags = {communities[number][1] for number in own}
            assert str(data["approximated" + end]).lower() == str(True in flags).lower()
            if own:
                primary = int(float(str(data["primary" + end])))
                assert primary in own
                links = [files.degrees[k][c, name] for c in own]
                assert links[own.index(primary)] == max(links)
            for number in own:
                found[k][number].add(name)
    return found


def check_graph(graph: networkx.Graph, names: dict[object, str], files: Files) -> None:
    """Nodes, links, weights, direction, communities of a graph that was read back."""
    assert graph.is_directed() == files.directed
    assert sorted(names.values()) == sorted(map(unescaped, files.names))
    found = {}
    for a, b, data in graph.edges(data=True):
        pair = (names[a], names[b])
        found[pair if files.directed else tuple(sorted(pair))] = data.get("weight")
    expected = {
        ((unescaped(a), unescaped(b)) if files.directed else tuple(sorted((unescaped(a), unescaped(b))))): w
        for (a, b), w in files.links.items()
    }
    weighted = any(weight is not None for weight in expected.values())
    if weighted:
        assert found == pytest.approx(expected)
    else:
        assert set(found) == set(expected)
    rows = [(names[node], data) for node, data in graph.nodes(data=True)]
    levels = {k: [set(nodes) for nodes, _ in level] for k, level in expected_levels(files).items()}
    assert from_attributes(rows, files) == levels
    for k in files.levels:
        end = "" if len(files.levels) == 1 else f"_k{k}"
        for a, b, data in graph.edges(data=True):
            own = {int(c) for c in str(data.get("communities" + end) or "").split()}
            assert own == files.holders[k].get(frozenset((names[a], names[b])), set())


def test_graphml(case: tuple[Path, Files], tmp_path: Path, in_process: Tool) -> None:
    directory, files = case
    target = tmp_path / "x.graphml"
    outcome = in_process("export", directory, "-f", "graphml", "-o", target)
    assert outcome.status == 0, outcome.said
    graph = networkx.read_graphml(target)
    check_graph(graph, {node: data["label"] for node, data in graph.nodes(data=True)}, files)
    other = igraph.Graph.Read_GraphML(str(target))
    assert other.is_directed() == files.directed
    assert sorted(other.vs["label"]) == sorted(map(unescaped, files.names))
    assert other.ecount() == graph.number_of_edges()
    if "weight" in other.es.attributes():
        mine = sorted(data["weight"] for _, _, data in graph.edges(data=True))
        assert sorted(other.es["weight"]) == pytest.approx(mine)


def test_gexf(case: tuple[Path, Files], tmp_path: Path, in_process: Tool) -> None:
    directory, files = case
    target = tmp_path / "x.gexf"
    assert in_process("export", directory, "-f", "gexf", "-o", target).status == 0
    graph = networkx.read_gexf(target)
    assert all(data["label"] == node for node, data in graph.nodes(data=True))
    if not any(weight is not None for weight in files.links.values()):
        for _, _, data in graph.edges(data=True):
            data.pop("weight", None)  # NetworkX adds 1.0
    check_graph(graph, {node: node for node in graph}, files)


def read_csv(path: Path) -> pandas.DataFrame:
    return pandas.read_csv(path, keep_default_na=False, dtype=str)


def test_tables(case: tuple[Path, Files], tmp_path: Path, in_process: Tool) -> None:
    directory, files = case
    arguments = ["--formulas", "keep", "-o", tmp_path / "tables"]
    outcome = in_process(
        "export", directory, "-f", "nodes,edges,memberships,table", *arguments
    )
    assert outcome.status == 0, outcome.said
    folder = tmp_path / "tables"
    nodes, edges = read_csv(folder / "nodes.csv"), read_csv(folder / "edges.csv")
    graph = networkx.DiGraph() if files.directed else networkx.Graph()
    for row in nodes.to_dict("records"):
        assert row["Id"] == row["Label"]
        graph.add_node(row["Id"], **row)
    for row in edges.to_dict("records"):
        assert row["Type"] == ("Directed" if files.directed else "Undirected")
        weight = {"weight": float(row["Weight"])} if "Weight" in row else {}
        columns = {key: value for key, value in row.items() if key.startswith("communities")}
        graph.add_edge(row["Source"], row["Target"], **weight, **columns)
    check_graph(graph, {node: node for node in graph}, files)
    expected = expected_levels(files)
    long = read_csv(folder / "memberships.csv")
    found: dict[int, dict[int, set[str]]] = {k: {} for k in expected}
    for row in long.to_dict("records"):
        k, number = int(row["k"]), int(row["community"])
        found[k].setdefault(number, set()).add(row["node"])
        assert row["approximated"] == str(expected[k][number][1]).lower()
    assert {k: [set(nodes) for nodes, _ in level] for k, level in expected.items()} == {
        k: [found[k][number] for number in range(len(found[k]))] for k in found
    }
    wide = read_csv(folder / "table.csv")
    for k, level in expected.items():
        for number, (members, approximated) in enumerate(level):
            column = wide[f"k{k}_c{number}" + ("_approximated" if approximated else "")]
            assert set(wide["node"][column == "1"]) == members
            assert set(column) <= {"0", "1"}


def test_lists_and_json(case: tuple[Path, Files], tmp_path: Path, in_process: Tool) -> None:
    directory, files = case
    schema = json.loads(
        (ROOT / "python/plexor/formats/plexor-result.schema.json").read_text(encoding="utf-8")
    )
    expected = expected_levels(files)
    for k, level in files.levels.items():
        text = in_process("export", directory, "-f", "communities", "-k", k).out.decode()
        assert [frozenset(line.split()) for line in text.splitlines()] == [m for m, _ in level]
        value = json.loads(in_process("export", directory, "-f", "cdlib", "-k", k).out)
        assert [frozenset(c) for c in value["communities"]] == [m for m, _ in expected[k]]
        assert value["params"]["approximated"] == [n for n, (_, a) in enumerate(level) if a]
        assert (value["overlap"], value["algorithm"]) == (True, "plexor")
        covered = set().union(*(members for members, _ in level)) if level else set()
        assert value["coverage"] == pytest.approx(len(covered) / len(files.names))
    outcome = in_process("export", directory, "-f", "json")
    value = json.loads(outcome.out)
    jsonschema.validate(value, schema)
    names = value["nodes"]
    assert sorted(names) == sorted(map(unescaped, files.names))
    found = {
        level["k"]: [
            (frozenset(names[node] for node in c["nodes"]), c["approximated"])
            for c in level["communities"]
        ]
        for level in value["levels"]
    }
    assert found == expected
    for level in value["levels"]:
        for number, community in enumerate(level["communities"]):
            links = {frozenset((names[a], names[b])) for a, b in community["links"]}
            held = files.holders[level["k"]].items()
            assert links == {link for link, own in held if number in own}


# Options


def test_singletons(folder: Path, run_plexor: Run, in_process: Tool) -> None:
    directory = run_plexor(network(folder, "negative"))
    for format in ("communities", "cdlib"):
        outcome = in_process(
            "export", directory, "-f", format, "-k", 3, "--uncovered", "singletons"
        )
        text = outcome.out.decode()
        if format == "communities":
            assert text == "a1 b1 c1\nd1\n"
        else:
            value = json.loads(text)
            assert value["communities"] == [["a1", "b1", "c1"], ["d1"]]
            assert value["coverage"] == 1
    rows = in_process("export", directory, "-f", "memberships", "--uncovered", "singletons").out
    assert rows.decode().splitlines()[-1] == "d1,3,1,false"
    wide = in_process("export", directory, "-f", "table", "--uncovered", "singletons").out
    assert wide.decode().splitlines() == ["node,k3_c0,k3_c1", "a1,1,0", "b1,1,0", "c1,1,0", "d1,0,1"]
    dropped = in_process("export", directory, "-f", "table").out
    assert dropped.decode().splitlines() == ["node,k3_c0", "a1,1", "b1,1", "c1,1"]
    refused = in_process("export", directory, "-f", "graphml", "--uncovered", "singletons")
    assert refused.status == 2


def test_names_are_unescaped_where_the_link_file_says_so(
    tmp_path: Path, folder: Path, run_plexor: Run, in_process: Tool
) -> None:
    directory = run_plexor(network(folder, "tricky"))
    assert b"New York," in in_process("export", directory, "-f", "nodes").out
    assert b"New%20York," in in_process("export", directory, "-f", "nodes", "--names", "raw").out
    links = tmp_path / "gone.txt"
    links.write_text(TRICKY, encoding="utf-8")
    left = run_plexor(links)
    links.unlink()
    assert b"New%20York," in in_process("export", left, "-f", "nodes").out
    assert b"New York," in in_process("export", left, "-f", "nodes", "--names", "unescape").out
    line = in_process("export", left, "-f", "communities", "-k", 3, "--names", "unescape")
    assert line.status == 1 and "--names raw" in line.said


def test_a_percent_sign_without_the_marker_stays(
    tmp_path: Path, run_plexor: Run, in_process: Tool
) -> None:
    links = tmp_path / "net.txt"
    links.write_text("a%20b c%\nc% d\nd a%20b\n")
    directory = run_plexor(links)
    assert b"a%20b,a%20b" in in_process("export", directory, "-f", "nodes").out
    refused = in_process("export", directory, "-f", "nodes", "--names", "unescape")
    assert refused.status == 1 and "hexadecimal" in refused.said


def test_formulas_do_nothing_in_a_spreadsheet(
    folder: Path, run_plexor: Run, in_process: Tool
) -> None:
    directory = run_plexor(network(folder, "tricky"))
    for format in ("nodes", "edges", "memberships", "table"):
        outcome = in_process("export", directory, "-f", format)
        rows = list(csv.reader(io.StringIO(outcome.out.decode())))
        fields = [field for row in rows for field in row]
        assert "'=cmd()" in fields
        assert "-5" in fields  # a number is no formula
        assert not [field for field in fields if field[:1] in "=+@" and field]
        assert "1 name that a spreadsheet would compute" in outcome.said
        kept = in_process("export", directory, "-f", format, "--formulas", "keep").out.decode()
        assert "=cmd()" in kept and "'=cmd()" not in kept


def test_markup_and_paths_in_names_are_only_names(
    tmp_path: Path, folder: Path, run_plexor: Run, in_process: Tool
) -> None:
    directory = run_plexor(network(folder, "tricky"))
    target = tmp_path / "deep" / "out"
    assert in_process("export", directory, "-f", "all", "-o", f"{target}/").status == 0
    assert {path.parent for path in tmp_path.rglob("*") if path.is_file()} == {target}
    for name in ("network.graphml", "network.gexf"):
        assert "<script>" not in (target / name).read_text(encoding="utf-8")


def test_the_same_results_give_the_same_bytes(
    tmp_path: Path, folder: Path, run_plexor: Run, in_process: Tool
) -> None:
    directory = run_plexor(AIRPORTS, "-k", "5")
    for place in ("one", "two"):
        assert in_process("export", directory, "-f", "all", "-o", tmp_path / place).status == 0
    names = sorted(path.name for path in (tmp_path / "one").iterdir())
    assert names == sorted(format.file for format in EXPORTS.values())
    for name in names:
        assert (tmp_path / "one" / name).read_bytes() == (tmp_path / "two" / name).read_bytes()
    assert "20" not in (tmp_path / "one/network.gexf").read_text().split("<graph")[0].split("<meta")[1]


def test_what_cannot_be_asked_for(
    tmp_path: Path, folder: Path, run_plexor: Run, in_process: Tool
) -> None:
    directory = run_plexor(network(folder, "full"))
    assert in_process("export", directory, "-f", "nothing").status == 2
    assert in_process("export", directory, "-f", "communities").status == 2
    missing = in_process("export", directory, "-f", "nodes", "-k", 77)
    assert missing.status == 1 and "there are: 3, 4, 5" in missing.said
    no_result = in_process("export", tmp_path, "-f", "nodes")
    assert no_result.status == 1 and "input_params.txt" in no_result.said
    assert in_process("export", tmp_path / "none", "-f", "nodes").status == 1
    target = tmp_path / "nodes.csv"
    target.write_text("precious")
    refused = in_process("export", directory, "-f", "nodes", "-o", target)
    assert refused.status == 1 and target.read_text() == "precious"
    (tmp_path / "many").mkdir()
    (tmp_path / "many" / "table.csv").write_text("precious")
    refused = in_process("export", directory, "-f", "all", "-o", tmp_path / "many")
    assert refused.status == 1
    assert [path.name for path in (tmp_path / "many").iterdir()] == ["table.csv"]


def test_a_damaged_result_is_refused(tmp_path: Path, run_plexor: Run, in_process: Tool) -> None:
    links = tmp_path / "net.txt"
    links.write_text("a1 b1\nb1 c1\nc1 a1\n")
    directory = run_plexor(links)
    path = directory / "k=3" / "communities"
    path.write_bytes(path.read_bytes()[:-4])
    target = tmp_path / "x.csv"
    refused = in_process("export", directory, "-f", "nodes", "-o", target)
    assert refused.status == 1 and not target.exists()


# Names of all kinds, without a run


class FakeResult:
    """A result with three nodes in one community, whatever their names."""

    def __init__(self, names: list[str]) -> None:
        from plexor.results import LinkList, Links, Parameters, SetList

        class Data:
            def nodes(self) -> tuple[SetList, int]:
                return SetList(np.arange(3, dtype=np.uint32), np.array([0, 3])), 1

            def links(self) -> LinkList:
                a = np.array([0, 0, 1], dtype=np.uint32)
                b = np.array([1, 2, 2], dtype=np.uint32)
                return LinkList(a, b, np.array([0, 3]))

        from plexor.results import Level

        self.parameters = Parameters(input="x")
        self.names = names
        a = np.array([0, 0, 1], dtype=np.uint32)
        b = np.array([1, 2, 2], dtype=np.uint32)
        self.links = Links(a, b, None)
        self.level = Level(3, names, Data())  # type: ignore[arg-type]

    def __getitem__(self, k: int) -> object:
        return self.level


NAMES = st.lists(
    st.text(st.characters(blacklist_categories=["Cs"]), min_size=1, max_size=6),
    min_size=3,
    max_size=3,
    unique=True,
)


@settings(deadline=None, suppress_health_check=[HealthCheck.too_slow])
@given(names=NAMES)
@example(names=["a", "b", "\r"])
@example(names=["a\rb", "b\n", "c\r\n"])
def test_any_names_come_back(names: list[str]) -> None:
    view = View(FakeResult(names), [3], names)  # type: ignore[arg-type]
    for format in ("graphml", "gexf"):
        stream = io.BytesIO()
        try:
            EXPORTS[format].write(view, stream, ExportOptions())
        except ValueError:
            assert any(ord(c) < 32 or c in "\ufffe\uffff" for name in names for c in name)
            continue
        stream.seek(0)
        read = networkx.read_graphml if format == "graphml" else networkx.read_gexf
        graph = read(stream)
        assert {data["label"] for _, data in graph.nodes(data=True)} == set(names)
    for format in ("nodes", "memberships", "table"):
        stream = io.BytesIO()
        EXPORTS[format].write(view, stream, ExportOptions(guard_formulas=False))
        rows = list(csv.reader(io.StringIO(stream.getvalue().decode(), newline="")))
        assert [row[0] for row in rows[1:]] == names
