# SPDX-License-Identifier: MIT
"""The backend of NetworkX: its answers, what it declines, and NetworkX's own tests through it."""

from __future__ import annotations

import os
import random
import re
import subprocess
import sys
from pathlib import Path

import networkx as nx
import newer_networkx
import pytest
from conftest import ROOT

from plexor.networkx_backend import BackendInterface, PlexorGraph, find_cliques, get_info
from plexor.networkx_backend import k_clique_communities


def as_sets(sets: object) -> list[frozenset]:
    return sorted(map(frozenset, sets), key=lambda s: sorted(map(repr, s)))  # type: ignore[call-overload]


def graphs() -> list[nx.Graph]:
    rng = random.Random(1)
    made = [nx.empty_graph(0), nx.empty_graph(3), nx.path_graph(4), nx.complete_graph(6)]
    made += [nx.karate_club_graph(), nx.les_miserables_graph(), nx.caveman_graph(3, 4)]
    for _ in range(60):
        graph = nx.gnp_random_graph(rng.randint(1, 16), rng.random(), seed=rng.randint(0, 10**6))
        graph.add_edges_from((v, v) for v in list(graph) if rng.random() < 0.2)
        made.append(nx.relabel_nodes(graph, str) if rng.random() < 0.5 else graph)
    return made


def test_answers_are_those_of_networkx() -> None:
    for graph in graphs():
        assert as_sets(find_cliques(PlexorGraph(graph))) == as_sets(nx.find_cliques(graph))
        one = PlexorGraph(graph)
        for k in (3, 4, 5, 3):
            expected = as_sets(nx.community.k_clique_communities(graph, k))
            assert as_sets(k_clique_communities(one, k)) == expected


def test_kinds_of_answers() -> None:
    graph = PlexorGraph(nx.karate_club_graph())
    assert all(type(clique) is list for clique in find_cliques(graph))
    assert all(type(nodes) is frozenset for nodes in k_clique_communities(graph, 3))


def test_what_is_declined() -> None:
    graph = nx.karate_club_graph()

    def can(name: str, *args: object, **kwargs: object) -> bool:
        return BackendInterface.can_run(name, args, kwargs) is True

    assert can("k_clique_communities", graph, 3)
    assert can("k_clique_communities", G=graph, k=4, cliques=None)
    assert can("find_cliques", graph) and can("find_cliques", graph, nodes=None)
    assert not can("k_clique_communities", graph, 2)
    assert not can("k_clique_communities", graph, 1)
    assert not can("k_clique_communities", graph, 3.5)
    assert not can("k_clique_communities", graph, 3, [[1, 2, 3]])
    assert not can("k_clique_communities", graph, k=3, cliques=[])
    assert not can("find_cliques", graph, [0])
    assert not can("find_cliques", nx.MultiGraph(graph))
    assert not can("find_cliques", nx.DiGraph(graph))
    assert not can("k_clique_communities", nx.MultiGraph(graph), 3)
    assert not can("pagerank", graph)


def test_conversions_and_info() -> None:
    graph = nx.path_graph(3)
    converted = BackendInterface.convert_from_nx(graph, name="find_cliques")
    assert isinstance(converted, PlexorGraph) and converted.__networkx_backend__ == "plexor"
    assert BackendInterface.convert_to_nx(converted) is graph
    assert BackendInterface.convert_to_nx(3) == 3
    assert set(get_info()["functions"]) == {"find_cliques", "k_clique_communities"}


@pytest.fixture(scope="module")
def newer(tmp_path_factory: pytest.TempPathFactory) -> tuple[str, str]:
    """A PYTHONPATH with a NetworkX that knows backends, and its version."""
    found = newer_networkx.find()
    if found is None:
        pytest.skip(
            f"NetworkX {nx.__version__} has no backends, and no newer one was found "
            "(a python3 in PATH that has one, or its folder in PLEXOR_NETWORKX)"
        )
    return newer_networkx.make_path(tmp_path_factory.mktemp("newer"), found), found[2]


def run_python(path: str, *arguments: str, **environment: str) -> subprocess.CompletedProcess[str]:
    return subprocess.run(
        [sys.executable, *arguments],
        env={**os.environ, "PYTHONPATH": path, **environment},
        capture_output=True,
        text=True,
        cwd="/",
    )


SCRIPT = """
import networkx as nx, logging
from plexor.networkx_backend import PlexorGraph
graph = nx.karate_club_graph()
plain = sorted(map(sorted, nx.community.k_clique_communities(graph, 3, backend="networkx")))
asked = sorted(map(sorted, nx.community.k_clique_communities(graph, 3{backend})))
assert asked == plain, (asked, plain)
kept = [v for v in graph.__networkx_cache__["backends"]["plexor"].values()]
assert len(kept) == 1 and isinstance(kept[0], PlexorGraph)
graph.remove_edge(0, 1)
plain = sorted(map(sorted, nx.community.k_clique_communities(graph, 3, backend="networkx")))
assert sorted(map(sorted, nx.community.k_clique_communities(graph, 3{backend}))) == plain != asked
# What Plexor declines is NetworkX's.
assert [sorted(c) for c in nx.community.k_clique_communities(nx.path_graph(3), 2)] == [[0, 1, 2]]
assert sorted(nx.find_cliques(graph, [33, 32, 31])) == [[33, 32, 31]]
print("good")
"""


@pytest.mark.parametrize("way", ["by name", "by priority"])
def test_with_a_newer_networkx(way: str, newer: tuple[str, str]) -> None:
    path, _ = newer
    if way == "by name":
        done = run_python(path, "-c", SCRIPT.replace("{backend}", ', backend="plexor"'))
    else:
        script = SCRIPT.replace("{backend}", "")
        done = run_python(path, "-c", script, NETWORKX_BACKEND_PRIORITY="plexor")
    assert (done.returncode, done.stdout) == (0, "good\n"), done.stderr


def test_importing_networkx_does_not_import_numpy(newer: tuple[str, str]) -> None:
    path, _ = newer
    script = "import sys, networkx as nx; print('numpy' in sys.modules, 'plexor' in nx.config.backends)"
    done = run_python(path, "-c", script)
    assert done.stdout == "False True\n", done.stderr


def test_networkx_own_tests(newer: tuple[str, str], tmp_path: Path) -> None:
    """NetworkX's tests of these functions, with the backend switched on as users do it. (Its own
    mode for testing backends needs a SciPy newer than Debian's.)"""
    path, version = newer
    calls = tmp_path / "calls"
    done = run_python(
        f"{path}:{ROOT / 'tests' / 'python'}",
        *("-m", "pytest", "-q", "-p", "no:cacheprovider", "-p", "count_calls", "-rA"),
        *("-c", os.devnull, "--rootdir", path, "--pyargs"),
        *("networkx.algorithms.community.tests.test_kclique", "networkx.algorithms.tests.test_clique"),
        PLEXOR_CALLS=str(calls),
        NETWORKX_BACKEND_PRIORITY="plexor",
    )
    assert done.returncode == 0, done.stdout + done.stderr
    passed = re.findall(r"^PASSED (.*)$", done.stdout, re.MULTILINE)
    counts = dict(line.split() for line in calls.read_text().splitlines())
    print(f"NetworkX {version}: {len(passed)} tests passed; calls answered by Plexor: {counts}")
    assert sum("test_kclique" in name for name in passed) >= 6
    assert sum("test_find_cliques" in name for name in passed) >= 3
    assert " skipped" not in done.stdout and " xfailed" not in done.stdout
    assert int(counts["k_clique_communities"]) >= 3 and int(counts["find_cliques"]) >= 3
