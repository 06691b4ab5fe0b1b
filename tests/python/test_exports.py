# SPDX-License-Identifier: MIT
"""What results become: dictionaries, data frames, graphs, numbers, tables."""

from __future__ import annotations

from pathlib import Path

import networkx as nx
import pytest
from conftest import Run

import plexor

# Two triangles that share a node, and one apart; "<b>" would be markup.
LINKS = [("a", "b"), ("b", "c"), ("a", "c"), ("c", "d"), ("d", "<b>"), ("c", "<b>"), ("d", "x")]
APART = [("p", "q"), ("q", "r"), ("p", "r")]


@pytest.fixture(params=["memory", "files"])
def result(request: pytest.FixtureRequest, tmp_path: Path, run_plexor: Run) -> plexor.Result:
    text = "".join(f"{a} {b}\n" for a, b in LINKS + APART)
    (tmp_path / "network").write_text(text)
    if request.param == "files":
        return plexor.load(run_plexor(tmp_path / "network"))
    return plexor.find_communities(plexor.Network.read(tmp_path / "network"))


def test_memberships(result: plexor.Result) -> None:
    level = result[3]
    assert [set(community) for community in level] == [set("abc"), {"c", "d", "<b>"}, set("pqr")]
    found = level.memberships()
    assert found["c"] == [0, 1] and found["a"] == [0] and found["p"] == [2]
    assert "x" not in found and len(found) == 8
    assert list(found) == [name for name in result.names if name != "x"]


def test_to_pandas(result: plexor.Result) -> None:
    frame = result[3].to_pandas()
    assert list(frame.columns) == ["community", "node", "exact"]
    assert len(frame) == 9 and frame["exact"].all()
    assert set(frame[frame.node == "c"].community) == {0, 1}
    whole = result.to_pandas()
    assert list(whole.columns) == ["k", "community", "node", "exact"]
    assert (whole.k == 3).all() and len(whole) == 9
    nothing = plexor.find_communities(plexor.Network([], [])).to_pandas()
    assert list(nothing.columns) == list(whole.columns) and len(nothing) == 0


def test_to_networkx(result: plexor.Result) -> None:
    graph = result[3].to_networkx()
    assert not graph.is_directed()
    assert nx.utils.graphs_equal(nx.Graph(graph.edges), nx.Graph(LINKS + APART))
    assert graph.nodes["c"]["communities"] == [0, 1]
    assert graph.nodes["x"]["communities"] == []


def test_to_networkx_with_weights_and_directions() -> None:
    network = plexor.Network([0, 1, 1, 0], [1, 0, 2, 2], [1.5, 2, 4, 8], "abc")
    level = plexor.find_communities(network, 3, weights=(0, None))
    assert level.to_networkx().edges["a", "b"]["weight"] == 3.5
    graph = plexor.find_communities(network, 3, weights=(0, None), directed=True).to_networkx()
    assert graph.is_directed()
    assert (graph.edges["a", "b"]["weight"], graph.edges["b", "a"]["weight"]) == (1.5, 2)


def test_community_graph(result: plexor.Result) -> None:
    graph = result[3].community_graph()
    assert dict(graph.nodes(data="size")) == {0: 3, 1: 3, 2: 3}
    assert list(graph.edges(data="shared")) == [(0, 1, 1)]
    assert all(exact for _, exact in graph.nodes(data="exact"))


def test_summary(result: plexor.Result) -> None:
    assert result.summary() == {
        "nodes": 9,
        "links": 10,
        "cliques": 3,
        "exact_cliques": 3,
        "largest_clique": 3,
        "levels": [
            {
                "k": 3,
                "communities": 3,
                "exact": 3,
                "largest": 3,
                "second": 3,
                "covered": 8,
                "shared": 1,
            }
        ],
    }
    none = plexor.find_communities(plexor.Network([], []), 5)
    assert none.summary() == dict.fromkeys(none.summary(), 0) | {"k": 5}


def test_html(result: plexor.Result) -> None:
    table = result._repr_html_()
    assert "<td>3</td>" in table and "9 nodes, 10 links" in table
    table = result[3]._repr_html_()
    assert "&lt;b&gt;" in table and "<b>" not in table
    many = plexor.Network(range(0, 60, 1), [i + 1 if i % 3 < 2 else i - 2 for i in range(60)])
    assert "and 10 more" in plexor.find_communities(many, 3)._repr_html_()


def test_reprs(result: plexor.Result) -> None:
    assert "k = 3" in repr(result)
    assert repr(result[3]) == "<Level k=3: 3 communities>"
    assert repr(result[3][0]) == "<Community 0 at k=3: 3 nodes>"
    assert repr(result.cliques) == "<SetList: 3 sets, 9 members>"
    assert repr(result[3].links) == "<LinkList: 3 communities, 9 links>"
