# SPDX-License-Identifier: MIT
"""plexor.load: every mode of the program, against a plain reading of the same files."""

from __future__ import annotations

import math
import shutil
import subprocess
from pathlib import Path

import numpy as np
import plain_results as plain
import pytest
from conftest import Run

import plexor
import plexor._text as text_module
from plexor.results import ESCAPE_MARKER

RUNS = {
    "undirected": ("uk-faculty.txt", []),
    "directed": ("uk-faculty.txt", ["-D"]),
    "one k": ("us-airports.txt", ["-k", "5"]),
    "weights": ("us-airports.txt", ["-w", "1000", "-W", "50000"]),
    "directed and weights": ("us-airports.txt", ["-D", "-w", "1000"]),
    "intensity": ("uk-faculty.txt", ["-I", "4.5", "-k", "4"]),
    "intensity, all k": ("uk-faculty.txt", ["-I", "6"]),
    "time limit": ("us-airports.txt", ["-t", "0.0000001", "-k", "4"]),
    "directed and time limit": ("uk-faculty.txt", ["-D", "-t", "0.0000001"]),
    "time limit never reached": ("uk-faculty.txt", ["-t", "1000"]),
    "large": ("github.txt", ["-k", "3"]),
}


def names_of(result: plexor.Result, members: np.ndarray) -> list[str]:
    return [result.names[i] for i in members.tolist()]


def check_level(result: plexor.Result, level: plexor.Level, word: str) -> None:
    folder = result.path / f"k={level.k}"
    communities = plain.records(folder / f"{word}communities")
    assert [c.exact for c in level] == [exact for exact, _ in communities]
    assert [c.nodes for c in level] == [nodes for _, nodes in communities]
    assert level.n_exact == sum(exact for exact, _ in communities)
    expected_links = plain.community_links(folder / f"{word}communities_links")
    assert [c.links for c in level] == expected_links
    assert len(level.links) == len(level)
    if word == "intensity_":
        assert level.cliques is None and level[0].cliques is None
        k_cliques = plain.records(folder / "k-cliques")
        assert [names_of(result, c) for c in level.k_cliques] == [c for _, c in k_cliques]
    else:
        assert level.k_cliques is None
        cliques = plain.records(folder / f"{word}communities_cliques")
        expected = [[int(c.lstrip("-")) for c in numbers] for _, numbers in cliques]
        assert [c.cliques.tolist() for c in level] == expected
    graph = plain.community_graph(folder / f"graph_of_{word}communities")
    assert list(zip(*(column.tolist() for column in level.graph))) == graph
    approximated = level.n_exact < len(level)
    endings = (
        {"merged": "_merged", "exact": "_exact", "appr": "_appr"} if approximated else {"all": ""}
    )
    assert set(level.distributions) == {"membership", "size", "overlap", "degree"}
    for what, parts in level.distributions.items():
        assert set(parts) == set(endings)
        for whose, (values, counts) in parts.items():
            path = folder / f"{word}{what}_distribution{endings[whose]}"
            assert list(zip(values.tolist(), counts.tolist())) == plain.distribution(path)


@pytest.mark.parametrize("run", RUNS)
def test_load_gives_what_the_files_hold(run: str, examples: Path, run_plexor: Run) -> None:
    network, switches = RUNS[run]
    directory = run_plexor(examples / network, *switches)
    result = plexor.load(directory)
    directed, intensity = "-D" in switches, "-I" in switches
    word = "directed_" if directed else ""

    weighted = {"-w", "-W", "-I"} & set(switches)
    links = plain.links(directory / f"{word}graph")
    numbering = dict.fromkeys(end for link in links for end in link[:2])
    assert list(result.names) == list(numbering)
    source, target, weight = result.links
    assert list(zip(names_of(result, source), names_of(result, target))) == [x[:2] for x in links]
    if weighted:
        assert weight.tolist() == [float(x[2]) for x in links]
    else:
        assert weight is None

    cliques = plain.records(directory / f"{word}cliques")
    assert [names_of(result, c) for c in result.cliques] == [nodes for _, nodes in cliques]
    assert result.n_exact_cliques == sum(exact for exact, _ in cliques)

    folders = {p.name for p in directory.glob("k=*")}
    assert {f"k={k}" for k in result.ks} == folders
    assert result.ks == sorted(result.ks, reverse=True) != []
    assert [level.k for level in result] == result.ks
    for level in result:
        check_level(result, level, "intensity_" if intensity else word)


def test_time_limit_leaves_approximated_communities(examples: Path, run_plexor: Run) -> None:
    """The runs above do hold what they are there for."""
    network, switches = RUNS["time limit"]
    result = plexor.load(run_plexor(examples / network, *switches))
    assert result.n_exact_cliques < len(result.cliques)
    level = result[4]
    assert level.n_exact < len(level)
    assert "approximated" in repr(level[-1]) and not level[-1].exact
    assert set(level.distributions["size"]) == {"merged", "exact", "appr"}


PARAMETERS = {
    ("-w", "0.5"): {"weights": (0.5, None)},
    ("-W", "12"): {"weights": (None, math.nan)},
    ("-w", "1", "-W", "12"): {"weights": (1.0, math.nan)},
    ("-I", "2.5"): {"intensity": 2.5},
    ("-D",): {"directed": True},
    ("-t", "3"): {"time_limit": 3.0},
    ("-k", "4"): {"k": 4},
}


@pytest.mark.parametrize("switches", PARAMETERS, ids=" ".join)
def test_parameters(switches: tuple[str, ...], examples: Path, run_plexor: Run) -> None:
    links = examples / "uk-faculty.txt"
    found = plexor.load(run_plexor(links, *switches)).parameters
    expected = plexor.Parameters(input=str(links), **PARAMETERS[switches])
    assert repr(found) == repr(expected)  # NaN is not equal to itself


@pytest.mark.parametrize(
    "switches, weights",
    [
        (["-W", "7.5"], (None, 7.5)),
        (["-w", "1", "-W", "7.5"], (1, 7.5)),
        (["-w", "0.5", "-W", "7.5", "-D"], (0.5, 7.5)),
        (["-W", "7.5", "-I", "1"], (None, 7.5)),
    ],
)
def test_upper_bound_from_the_directory_that_the_program_named(
    switches: list[str], weights: tuple[float, float], program: Path, tmp_path: Path
) -> None:
    links = tmp_path / "a[b_w_3].txt"
    links.write_text("a b 5\n")
    subprocess.run([program, "-i", links, *switches], check=True, stdout=subprocess.DEVNULL)
    (directory,) = tmp_path.glob("*_files*")
    assert plexor.load(directory).parameters.weights == weights


def test_names_are_any_bytes(tmp_path: Path, run_plexor: Run) -> None:
    names = [
        "Zoë".encode(),
        b"\xff\xfe",
        b"a:b",
        b"0:",
        b"-1:",
        b"x#y",
        b"nul\0nul",
        b"\x85\xa0",  # white space elsewhere, not here
        b"a-name-of-more-than-eight-bytes",
        b"a-name-of-more-than-sixteen-bytes-and-then-some",
        b"a-name-of-more-than-sixteen-bytes-and-then-same",
        "名前".encode(),
        b"1234567",
        b"12345678",
    ]
    network = tmp_path / "network"
    network.write_bytes(b"".join(b"%s %s\n" % (a, b) for a in names for b in names if a < b))
    directory = run_plexor(network)
    result = plexor.load(directory)
    assert sorted(map(plain.name, names)) == sorted(result.names)
    assert [c.nodes for c in result[3]] == [
        nodes for _, nodes in plain.records(directory / "k=3" / "communities")
    ]
    assert [c.links for c in result[3]] == plain.community_links(
        directory / "k=3" / "communities_links"
    )
    assert "Zoë" in result[3][0] and "Zoe" not in result[3][0]


def test_names_of_the_same_hash(
    examples: Path, run_plexor: Run, monkeypatch: pytest.MonkeyPatch
) -> None:
    """Then the names themselves are compared: as slow, and as right."""
    directory = run_plexor(examples / "uk-faculty.txt")
    expected = [c.nodes for c in plexor.load(directory)[4]]
    monkeypatch.setattr(text_module, "_keys", lambda text, starts, ends: ends * 0)
    assert [c.nodes for c in plexor.load(directory)[4]] == expected


def test_blocks_of_any_size(
    examples: Path, run_plexor: Run, monkeypatch: pytest.MonkeyPatch
) -> None:
    directory = run_plexor(examples / "uk-faculty.txt")
    whole = plexor.load(directory)
    for size in (1, 7, 100, 4096):
        monkeypatch.setattr(text_module, "_BLOCK", size)
        parts = plexor.load(directory)
        assert parts.cliques == whole.cliques
        for k in whole.ks:
            assert parts[k].nodes == whole[k].nodes
            assert parts[k].links == whole[k].links
            assert parts[k].cliques == whole[k].cliques


def test_networks_with_nothing_in_them(tmp_path: Path, run_plexor: Run) -> None:
    network = tmp_path / "none"
    network.write_text("# nothing\n")
    result = plexor.load(run_plexor(network))
    assert (list(result.names), len(result.cliques), result.ks) == ([], 0, [])
    network = tmp_path / "no-triangle"
    network.write_text("a b\n")
    result = plexor.load(run_plexor(network, "-k", "3"))
    assert (list(result.names), result.ks) == (["a", "b"], [3])
    level = result[3]
    assert (len(level), len(level.links), len(level.graph.a), level.n_exact) == (0, 0, 0, 0)
    assert level.distributions["membership"]["all"][1].tolist() == [2]


def test_a_level_that_is_not_there(examples: Path, run_plexor: Run) -> None:
    result = plexor.load(run_plexor(examples / "us-airports.txt", "-k", "5"))
    assert 5 in result and 4 not in result
    with pytest.raises(KeyError):
        result[4]
    with pytest.raises(IndexError):
        result[5][len(result[5])]
    with pytest.raises(IndexError):
        result.cliques[-len(result.cliques) - 1]
    assert [c.number for c in result[5][-2:]] == [len(result[5]) - 2, len(result[5]) - 1]


def test_marker_of_escaped_names(tmp_path: Path, run_plexor: Run) -> None:
    network = tmp_path / "network"
    network.write_text(f"# from somewhere\n{ESCAPE_MARKER}\na%20b c\n")
    result = plexor.load(run_plexor(network))
    assert result.escaped and "a%20b" in result.names
    network.write_text(f"a%20b c\n{ESCAPE_MARKER}\n")
    assert not plexor.load(run_plexor(network, "-k", "3")).escaped
    network.unlink()
    assert not plexor.load(result.path).escaped


def test_directories_that_are_no_results(tmp_path: Path) -> None:
    with pytest.raises(FileNotFoundError):
        plexor.load(tmp_path / "none")
    with pytest.raises(plexor.ResultError, match="no result directory"):
        plexor.load(tmp_path)
    (tmp_path / "input_params.txt").write_text("# something else\n")
    with pytest.raises(plexor.ResultError, match="does not describe a run"):
        plexor.load(tmp_path)


def test_damaged_files(examples: Path, run_plexor: Run, tmp_path: Path) -> None:
    original = run_plexor(examples / "uk-faculty.txt")
    directory = tmp_path / "result"

    def damaged(name: str, change: object) -> plexor.Result:
        shutil.rmtree(directory, ignore_errors=True)
        shutil.copytree(original, directory)
        data = (directory / name).read_bytes()
        (directory / name).write_bytes(change(data))  # type: ignore[operator]
        return plexor.load(directory)

    cut = lambda data: data[:-3]
    for name, use in {
        "cliques": lambda r: r.cliques,
        "graph": lambda r: r.names,
        "k=4/communities": lambda r: r[4].nodes,
        "k=4/communities_links": lambda r: r[4].links,
        "k=4/communities_cliques": lambda r: r[4].cliques,
        "k=4/graph_of_communities": lambda r: r[4].graph,
        "k=4/size_distribution": lambda r: r[4].distributions,
    }.items():
        with pytest.raises(plexor.ResultError, match="not written to its end"):
            use(damaged(name, cut))
        with pytest.raises(plexor.ResultError, match="no header"):
            use(damaged(name, lambda data: data.partition(b"\n\n")[2] + b"\n"))
        (directory / name).unlink()
        with pytest.raises(FileNotFoundError):
            use(plexor.load(directory))
    with pytest.raises(plexor.ResultError, match="is no node"):
        damaged("cliques", lambda data: data + b"%d: nobody \n" % data.count(b": ")).cliques
    with pytest.raises(plexor.ResultError, match="not numbered"):
        damaged("cliques", lambda data: data.replace(b"\n1: ", b"\n2: ")).cliques
    with pytest.raises(plexor.ResultError, match="a number was expected"):
        damaged("k=4/communities_cliques", lambda data: data.replace(b"\n0: ", b"\n0: x")).__getitem__(4).cliques
    with pytest.raises(plexor.ResultError, match="lacks a field"):
        damaged("k=4/graph_of_communities", lambda data: data + b"1 2\n")[4].graph
