# SPDX-License-Identifier: MIT
"""Networks from everything that people hold: what goes in comes back, what is odd has an answer."""

from __future__ import annotations

import gzip
from pathlib import Path

import igraph
import networkx as nx
import numpy as np
import pandas as pd
import pytest
from conftest import Run
from same import assert_same
from scipy import sparse

import plexor
from plexor import Network, find_cliques, find_communities

TRIANGLE = ([0, 1, 0], [1, 2, 2])


def communities(network: Network, k: int = 3, **question: object) -> set[frozenset]:
    level = find_communities(network, k, **question)
    return {frozenset(community.nodes) for community in level}


# --- Nodes come back as they went in. ---

NODES = {
    "integers": [7, -3, 10**12],
    "tuples": [(0, 1), (1, 0), ()],
    "strings with blanks": ["New York", "Los Angeles", " "],
    "unicode": ["Zoë", "名前", "🦊"],
    "mixed": ["a", 1, (2, "b")],
    "odd strings": ["\udc80", "", "\ud800"],
    "floats": [0.5, float("inf"), -0.0],
    "frozen sets": [frozenset({1}), frozenset(), frozenset("ab")],
}


@pytest.mark.parametrize("kind", NODES)
def test_nodes_come_back(kind: str) -> None:
    a, b, c = nodes = NODES[kind]
    ways = [Network(*TRIANGLE, names=nodes), Network.from_networkx(nx.Graph([(a, b), (b, c), (a, c)]))]
    for network in ways:
        (community,) = find_communities(network, 3)
        back = community.nodes
        assert len(back) == 3
        for node in nodes:
            (same,) = [other for other in back if other == node]
            assert type(same) is type(node)
        assert {frozenset(link) for link in community.links} == {
            frozenset(pair) for pair in [(a, b), (b, c), (a, c)]
        }


def test_order_of_nodes() -> None:
    """Strings by their bytes, others in the order of `nodes`, then as the sorted links name them."""
    links = ([2, 0, 2], [0, 1, 1])
    assert list(find_communities(Network(*links, names="cab"), 3).names) == ["b", "a", "c"]
    assert list(find_communities(Network(*links, names=[30, 20, 10]), 3).names) == [30, 20, 10]
    assert list(find_communities(Network(*links), 3).names) == [2, 0, 1]
    # By code points the fox comes after U+FF5A, and so it does by bytes.
    names = ["\U0001f98a", "\uff5a", "z"]
    assert list(find_communities(Network(*TRIANGLE, names=names), 3).names)[0] == "\uff5a"


# --- What is odd. ---


def test_empty_networks() -> None:
    for network in (
        Network([], []),
        Network([], [], names=[]),
        Network([], [], [], ["alone"]),
        Network.from_networkx(nx.empty_graph(1)),
        Network.from_networkx(nx.DiGraph()),
        Network.from_igraph(igraph.Graph()),
        Network.from_scipy(sparse.coo_matrix((0, 0))),
        Network.from_scipy(np.zeros((1, 1))),
        Network.from_pandas(pd.DataFrame({"source": [], "target": []})),
    ):
        assert network.n_links == 0
        result = find_communities(network)
        assert (list(result.names), len(result.cliques), result.ks) == ([], 0, [])
        assert len(find_communities(network, 3)) == 0
        assert list(plexor.levels(network)) == []


def test_nodes_without_a_link_are_not_in_results() -> None:
    network = Network(*TRIANGLE, names="abcd")
    assert network.n_nodes == 4
    assert find_communities(network).summary()["nodes"] == 3


def test_self_links_are_passed_over() -> None:
    network = Network([0, 0, 1, 0, 3], [0, 1, 2, 2, 3], names="abcd")
    assert network.n_links == 5
    result = find_communities(network)
    assert list(result.names) == ["a", "b", "c"] and len(result.links.source) == 3


def test_repeated_links_are_one_with_the_sum_of_their_weights() -> None:
    network = Network([0, 1, 1, 0], [1, 0, 2, 2], [1, 2, 5, 5], "abc")
    assert network.n_links == 4
    found = find_communities(network, 3, intensity=4)  # (3 * 5 * 5) ** (1/3) is 4.2
    assert len(found) == 1
    assert len(find_communities(network, 3, intensity=4.3)) == 0
    # Bounds are for each link by itself.
    assert len(find_communities(network, 3, weights=(2.5, None))) == 0


def test_negative_weights() -> None:
    network = Network(*TRIANGLE, [-1, -2, 3], "abc")
    assert len(find_communities(network, 3, weights=(-3, None))) == 1
    assert len(find_communities(network, 3, weights=(-2, None))) == 0  # bounds are strict
    # The product of a negative number has no root: such a link is in no k-clique.
    assert len(find_communities(network, 3, intensity=0)) == 0


@pytest.mark.parametrize("bad", [float("nan"), float("inf"), float("-inf")])
def test_weights_that_are_not_finite_count_only_where_weights_are_asked_for(bad: float) -> None:
    network = Network(*TRIANGLE, [1, bad, 1], "abc")
    assert len(find_communities(network, 3)) == 1
    for question in ({"weights": (0, None)}, {"intensity": 0.5}):
        with pytest.raises(ValueError, match="link 1, from 'b' to 'c', has no finite weight"):
            find_communities(network, 3, **question)


def test_bad_arguments_of_networks() -> None:
    for arguments, message in [
        (([0], [1, 2]), "1 sources and 2 targets"),
        (([0], [1], [1, 2]), "1 links and 2 weights"),
        (([0], [2], None, "ab"), r"target\[0\] is 2"),
        (([0, -1], [1, 1], None, "ab"), r"source\[1\] is -1"),
        (([0], [1], None, "aa"), "'a' is given to two nodes"),
        ((["a"], ["b"]), "not integers"),
        (([0.5], [1.5]), "not integers"),
        (([[0]], [[1]]), "2 dimensions"),
        ((np.array([2**64 - 1], np.uint64), [1]), "63 bits"),
    ]:
        with pytest.raises(ValueError, match=message):
            Network(*arguments)


def test_integers_of_any_size_are_nodes() -> None:
    for nodes in ([5, 6, 7], [-(2**63), 2**63 - 1, 0], [10**15, 3, 10**15 + 1]):
        source, target = [nodes[i] for i in TRIANGLE[0]], [nodes[i] for i in TRIANGLE[1]]
        for dtype in (np.int64, object) if max(nodes) < 100 else (np.int64,):
            network = Network(np.array(source, np.int64).astype(np.int64), np.array(target))
            assert communities(network) == {frozenset(nodes)}
    assert communities(Network(np.array([0, 1, 0], np.uint8), np.array([1, 2, 2], np.int16))) == {
        frozenset({0, 1, 2})
    }


# --- Questions that cannot be asked. ---


def test_questions_that_are_refused() -> None:
    network = Network(*TRIANGLE, [1, 2, 3], "abc", directed=True)
    for question, message in [
        ({"directed": True, "intensity": 1}, "intensity and directed=True"),
        ({"time_limit": 1, "intensity": 1}, "intensity and time_limit"),
        ({"time_limit": 0}, "time_limit is positive"),
        ({"time_limit": float("nan")}, "time_limit is positive"),
        ({"weights": (2, 2)}, "not below"),
        ({"weights": (3, 2)}, "not below"),
        ({"weights": 3}, "a pair"),
        ({"weights": (float("nan"), None)}, "not a number"),
        ({"intensity": float("nan")}, "not a number"),
        ({"k": 1}, "2 or more"),
        ({"k": [3, 0]}, "2 or more"),
        ({"k": 2.5}, ""),
        ({"k": True}, "an integer"),
        ({"k": 2**32}, "2 or more"),
    ]:
        with pytest.raises((ValueError, TypeError), match=message):
            find_communities(network, **question)
    with pytest.raises(ValueError, match="no weights"):
        find_communities(Network(*TRIANGLE), 3, weights=(1, None))
    with pytest.raises(ValueError, match="no direction"):
        find_communities(Network.from_networkx(nx.complete_graph(4)), 3, directed=True)
    with pytest.raises(ValueError, match="no direction"):
        find_cliques(Network.from_igraph(igraph.Graph.Full(3)), directed=True)
    with pytest.raises(TypeError, match="from_networkx"):
        find_communities(nx.complete_graph(4), 3)  # type: ignore[arg-type]
    with pytest.raises(ValueError, match="positive"):
        plexor.levels(network, time_limit=-1)  # at once, not at the first level


def test_what_the_engine_refuses() -> None:
    """Intensities at k=2, where k-cliques share a node and no link."""
    network = Network(*TRIANGLE, [1, 2, 3], "abc")
    with pytest.raises(plexor.PlexorError, match="missing link"):
        find_communities(network, 2, intensity=0.5)
    assert len(find_communities(network, 3, intensity=0.5)) == 1


# --- NetworkX. ---


def test_networkx_kinds() -> None:
    links = [("b", "a", 1), ("a", "b", 2), ("b", "c", 4), ("a", "c", 8)]
    for kind in (nx.Graph, nx.DiGraph, nx.MultiGraph, nx.MultiDiGraph):
        graph = kind()
        graph.add_weighted_edges_from(links)
        network = Network.from_networkx(graph)
        assert network.directed == graph.is_directed()
        assert network.n_links == graph.number_of_edges()
        total = sum(weight for _, _, weight in graph.edges(data="weight"))
        assert network.weight.sum() == total
        names = network.nodes
        pairs = [(names[a], names[b]) for a, b in zip(network.source, network.target)]
        assert sorted(pairs) == sorted(edge[:2] for edge in graph.edges)
        assert communities(network) == {frozenset("abc")}
        if graph.is_directed():
            assert communities(network, directed=True) == {frozenset("abc")}


def test_networkx_weights() -> None:
    graph = nx.Graph([(1, 2, {"weight": 3}), (2, 3, {"cost": 5}), (1, 3)])
    assert Network.from_networkx(nx.Graph([(1, 2)])).weight is None
    assert Network.from_networkx(graph, weight=None).weight is None
    weight = Network.from_networkx(graph).weight
    assert weight[0] == 3 and np.isnan(weight[1:]).all()
    assert np.nansum(Network.from_networkx(graph, weight="cost").weight) == 5
    with pytest.raises(ValueError, match="no finite weight"):
        find_communities(Network.from_networkx(graph), 3, weights=(1, None))


def test_networkx_with_self_links() -> None:
    graph = nx.Graph([("a", "a"), ("a", "b"), ("b", "c"), ("c", "a"), ("z", "z")])
    assert communities(Network.from_networkx(graph)) == {frozenset("abc")}


@pytest.mark.parametrize("directed", [False, True])
def test_networkx_has_the_programs_numbers(
    directed: bool, examples: Path, run_plexor: Run, tmp_path: Path
) -> None:
    kind = nx.DiGraph if directed else nx.Graph
    graph = nx.read_edgelist(
        examples / "us-airports.txt", data=[("weight", float)], create_using=kind
    )
    file = tmp_path / "links"
    file.write_text("".join(f"{a} {b} {w}\n" for a, b, w in graph.edges(data="weight")))
    network = Network.from_networkx(graph)
    switches = ["-D"] if directed else []
    found = find_communities(network, directed=directed, weights=(500, None))
    assert_same(found, plexor.load(run_plexor(file, *switches, "-w", "500")))


# --- igraph, SciPy, pandas. ---


def test_igraph() -> None:
    graph = igraph.Graph([(0, 1), (1, 2), (2, 0), (2, 3)])
    network = Network.from_igraph(graph)
    assert network.directed is False and network.weight is None
    assert communities(network) == {frozenset({0, 1, 2})}
    graph.vs["name"] = ["a", "b", "c", "d"]
    graph.es["weight"] = [1, 2, 3, None]
    network = Network.from_igraph(graph)
    assert communities(network) == {frozenset("abc")}
    assert network.weight[:3].tolist() == [1, 2, 3] and np.isnan(network.weight[3])
    assert Network.from_igraph(graph, weight=None).weight is None
    directed = Network.from_igraph(igraph.Graph([(0, 1), (1, 2), (2, 0)], directed=True))
    assert directed.directed is True
    assert communities(directed, directed=True) == set()  # a cycle
    graph.vs["name"] = ["a", "a", "c", "d"]
    with pytest.raises(ValueError, match="two vertices"):
        Network.from_igraph(graph)


def test_scipy() -> None:
    dense = np.array([[0, 1.5, 2, 0], [1.5, 0, 3, 0], [2, 3, 9, 0], [0, 0, 0, 0]])
    for matrix in (
        dense,
        sparse.csr_matrix(dense),
        sparse.csc_matrix(dense),
        sparse.coo_matrix(dense),
        sparse.csr_array(dense),
    ):
        network = Network.from_scipy(matrix)
        assert network.directed is False
        # Each pair once, not twice with the sum of both entries; the diagonal is a self-link.
        assert sorted(network.weight.tolist()) == [1.5, 2, 3, 9]
        assert network.n_nodes == 4
        assert communities(network) == {frozenset({0, 1, 2})}
    network = Network.from_scipy(dense, directed=True)
    assert network.n_links == 7 and network.directed is True
    network = Network.from_scipy(np.triu(dense), names="abcd")
    assert network.directed is True and communities(network) == {frozenset("abc")}
    stored_zero = sparse.coo_matrix(([0.0, 1.0], ([0, 1], [1, 0])), (2, 2))
    assert Network.from_scipy(stored_zero).n_links == 1
    for arguments, message in [
        ((np.zeros((2, 3)),), "not square"),
        ((np.zeros((2, 2)), "abc"), "2 rows and 3 names"),
        ((np.zeros((2, 2)), "aa"), "two nodes"),
    ]:
        with pytest.raises(ValueError, match=message):
            Network.from_scipy(*arguments)
    with pytest.raises(ValueError, match="not symmetric"):
        Network.from_scipy(np.triu(dense), directed=False)


def test_pandas() -> None:
    frame = pd.DataFrame(
        {"from": ["a", "b", "a"], "to": ["b", "c", "c"], "hours": [1, None, 3]}, index=[10, 20, 30]
    )
    network = Network.from_pandas(frame, "from", "to")
    assert network.directed is None and network.weight is None
    assert communities(network) == {frozenset("abc")}
    network = Network.from_pandas(frame, "from", "to", weight="hours", directed=False)
    assert network.directed is False and np.isnan(network.weight[1])
    assert Network.from_pandas(
        pd.DataFrame({"source": [1, 2], "target": [2, 3]})
    ).nodes == [1, 2, 3]
    with pytest.raises(KeyError):
        Network.from_pandas(frame, "from", "nowhere")
    frame.loc[20, "to"] = None
    with pytest.raises(ValueError, match="row 20 has no to"):
        Network.from_pandas(frame, "from", "to")


def test_pandas_has_the_programs_numbers(examples: Path, run_plexor: Run) -> None:
    path = examples / "uk-faculty.txt"
    frame = pd.read_csv(path, sep=r"\s+", comment="#", names=["a", "b", "w"], dtype={0: str, 1: str})
    network = Network.from_pandas(frame, "a", "b", "w")
    found = find_communities(network, weights=(3, None))
    assert_same(found, plexor.load(run_plexor(path, "-w", "3")))


# --- Link files. ---


def test_read_keeps_lines(tmp_path: Path) -> None:
    path = tmp_path / "links"
    path.write_text("# c\nb a 1\n\ta  b 2 more\na c 3\nx\nc c 9\nb c 4\n")
    network = Network.read(path, weighted=True)
    assert network.nodes == ["a", "b", "c"] and network.input == str(path)
    assert network.source.tolist() == [1, 0, 0, 1]
    assert network.weight.tolist() == [1, 2, 3, 4]
    assert Network.read(path).weight is None
    assert find_communities(network, 3).result.parameters.input == str(path)


@pytest.mark.parametrize("switches", [(), ("-w", "3")])
def test_read_gz(switches: tuple[str, ...], examples: Path, run_plexor: Run, tmp_path: Path) -> None:
    path = examples / "uk-faculty.txt"
    packed = tmp_path / "links.gz"
    packed.write_bytes(gzip.compress(path.read_bytes()))
    network = Network.read(packed, weighted=bool(switches))
    weights = (3, None) if switches else None
    assert_same(find_communities(network, weights=weights), plexor.load(run_plexor(path, *switches)))


def test_read_errors(tmp_path: Path) -> None:
    for name in ("none", "none.gz"):
        with pytest.raises(plexor.LinkFileNotFoundError, match="File not found: '.*none"):
            Network.read(tmp_path / name)
        with pytest.raises(FileNotFoundError):
            Network.read(tmp_path / name)
    with pytest.raises(plexor.LinkFileError, match="Something went wrong"):
        Network.read(tmp_path)
    path = tmp_path / "links"
    for text, weighted, message in [
        (b"a b\nalone\n", False, "Wrong line found in .*\nalone"),
        (b"a b 1\nb c x\n", True, "Wrong line found in .*\nb c x"),
        (b"a b nan\n", True, "Wrong line found"),
        (b"a b\n\n", False, "empty line"),
        (b"a b\n \t \n", False, "empty line"),
        (b"\xff-alone\n", False, "\udcff-alone"),
    ]:
        path.write_bytes(text)
        with pytest.raises(plexor.LinkFileError, match=message) as caught:
            Network.read(path, weighted=weighted)
        assert isinstance(caught.value, ValueError)
    whole = gzip.compress(b"a b\n" * 1000)
    for broken in (whole[:-10], b"no gzip", whole[:20] + b"\0\0\0\0" + whole[24:]):
        (tmp_path / "links.gz").write_bytes(broken)
        with pytest.raises(plexor.LinkFileError, match="cannot be unpacked"):
            Network.read(tmp_path / "links.gz")


def test_reprs() -> None:
    assert repr(Network(*TRIANGLE)) == "<Network: 3 nodes, 3 links as given>"
    network = Network(*TRIANGLE, [1, 2, 3], directed=False)
    assert repr(network) == "<Network: 3 nodes, 3 links as given, undirected, with weights>"
    assert repr(find_cliques(network)) == "<Cliques: 1, the largest of 3 nodes>"
