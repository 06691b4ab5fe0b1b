# SPDX-License-Identifier: MIT
"""Plexor as a backend of NetworkX: the script stays as it is, and two functions get fast.

    NETWORKX_BACKEND_PRIORITY=plexor python3 script.py
    networkx.community.k_clique_communities(graph, 4, backend="plexor")

Calls that Plexor would answer differently, or not at all, are left to NetworkX. This module is
imported whenever NetworkX is, so it imports nothing else until it is used.
"""

from __future__ import annotations

from collections.abc import Iterator
from functools import cached_property
from numbers import Integral
from typing import TYPE_CHECKING, Any

if TYPE_CHECKING:
    from .network import Network
    from .search import _SearchResult

__all__ = ["BackendInterface", "PlexorGraph", "get_info"]


def get_info() -> dict[str, Any]:
    """What NetworkX shows of the backend in its documentation."""
    return {
        "backend_name": "plexor",
        "project": "Plexor",
        "package": "plexor",
        "short_summary": "Clique percolation by a compiled engine.",
        "functions": {
            "k_clique_communities": {
                "additional_docs": "For k of 3 or more and without given cliques."
            },
            "find_cliques": {
                "additional_docs": "All cliques are found before the first one is handed out."
            },
        },
    }


class PlexorGraph:
    """A NetworkX graph, and what has been found in it. NetworkX keeps it with the graph until that
    changes, so that another k costs no other search."""

    __networkx_backend__ = "plexor"

    def __init__(self, graph: Any) -> None:
        self.graph = graph

    def is_directed(self) -> bool:
        directed: bool = self.graph.is_directed()
        return directed

    def is_multigraph(self) -> bool:
        multigraph: bool = self.graph.is_multigraph()
        return multigraph

    @cached_property
    def network(self) -> Network:
        from .network import Network

        return Network.from_networkx(self.graph, weight=None)

    @cached_property
    def found(self) -> _SearchResult:
        from .search import search

        return search(self.network)


def k_clique_communities(graph: PlexorGraph, k: int, cliques: None = None) -> Iterator[frozenset[Any]]:
    """The nodes of each k-clique community."""
    from .results import SetList

    result, search = graph.found
    names = result.names
    for members in SetList(*search.at(int(k)).nodes()):
        yield frozenset([names[i] for i in members.tolist()])


def find_cliques(graph: PlexorGraph, nodes: None = None) -> Iterator[list[Any]]:
    """All maximal cliques, those of one and two nodes too."""
    import numpy as np

    from . import _engine

    result, search = graph.found
    names = result.names
    for members in result.cliques:
        yield [names[i] for i in members.tolist()]
    source, target, _ = search.links()
    alone = _engine.links_outside_triangles(source, target, len(names))
    for a, b in zip(source[alone].tolist(), target[alone].tolist()):
        yield [names[a], names[b]]
    linked = np.zeros(graph.network.n_nodes, bool)
    linked[search.nodes()] = True
    for node in graph.network._in_order(np.flatnonzero(~linked).astype(np.uint32)):
        yield [node]


def _reason_not_to_run(name: str, graph: Any, arguments: dict[str, Any]) -> str | None:
    if graph.is_directed():
        return "the graph is directed"
    if graph.is_multigraph():
        return "the graph is a multigraph"
    if name == "find_cliques" and arguments.get("nodes") is not None:
        return "nodes are given"
    if name == "k_clique_communities":
        if arguments.get("cliques") is not None:
            return "cliques are given"
        k = arguments.get("k")
        # At 2 NetworkX takes connected components; below it raises an error.
        if not isinstance(k, Integral) or not 3 <= int(k) < 1 << 32:
            return "k is not an integer of 3 or more"
    return None


_PARAMETERS = {"k_clique_communities": ("G", "k", "cliques"), "find_cliques": ("G", "nodes")}


class BackendInterface:
    """What NetworkX asks."""

    k_clique_communities = staticmethod(k_clique_communities)
    find_cliques = staticmethod(find_cliques)

    @staticmethod
    def can_run(name: str, args: tuple[Any, ...], kwargs: dict[str, Any]) -> bool | str:
        """True, or why the call is left to NetworkX."""
        if name not in _PARAMETERS:
            return "Plexor has no such function"
        arguments = dict(zip(_PARAMETERS[name], args)) | kwargs
        return _reason_not_to_run(name, arguments["G"], arguments) or True

    should_run = can_run

    @staticmethod
    def convert_from_nx(graph: Any, *_: Any, **__: Any) -> PlexorGraph:
        return graph if isinstance(graph, PlexorGraph) else PlexorGraph(graph)

    @staticmethod
    def convert_to_nx(result: Any, *, name: str | None = None) -> Any:
        return result.graph if isinstance(result, PlexorGraph) else result
