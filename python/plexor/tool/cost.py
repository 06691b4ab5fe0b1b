# SPDX-License-Identifier: MIT
"""What a run on a network will cost, before it is started.

Takes    the links of a network, direction and repeats ignored.
Leaves   the core number, bounds on the largest clique, an estimate of the number of maximal
         cliques.
Order    the same for the same links: the samples are drawn with a fixed seed, and the work is
         counted, not timed.
Cost     sorting the links; igraph's core numbers; at most _WORK_LIMIT steps of sampling.

The estimate samples the tree of the search (Bron and Kerbosch with pivot, start nodes in
degeneracy order) by random descents: a leaf that is reached through branchings of b1, b2, ... ways
counts b1 * b2 * ... times (D. E. Knuth 1975). That is right on average, but rare parts with most
of the cliques are easily missed: it is more often too small than too large.
"""

from __future__ import annotations

import random
from dataclasses import dataclass

import numpy as np
import numpy.typing as npt

_SAMPLES = 400
_WORK_LIMIT = 60_000_000  # steps: some seconds

Ints = npt.NDArray[np.int64]


@dataclass(frozen=True)
class Cost:
    """What a search has before it. ``core_number``: the largest c for which there are nodes with
    c links each among themselves; ``core_nodes`` how many these are. ``cliques`` is the estimated
    number of maximal cliques with three nodes or more. A largest clique has from ``clique_found``
    to ``clique_bound`` nodes."""

    nodes: int
    pairs: int
    core_number: int
    core_nodes: int
    clique_found: int
    clique_bound: int
    cliques: float


class _Graph:
    """An undirected graph; neighbours of node v are ``neighbours[first[v]:first[v + 1]]``."""

    def __init__(self, n_nodes: int, a: Ints, b: Ints) -> None:
        import igraph

        self.core: Ints = np.array(
            igraph.Graph(n=n_nodes, edges=np.stack([a, b], axis=1)).coreness(), dtype=np.int64
        )
        ends = np.concatenate([a, b])
        order = np.argsort(ends, kind="stable")
        self.neighbours: Ints = np.concatenate([b, a])[order]
        self.first: Ints = np.searchsorted(ends[order], np.arange(n_nodes + 1))
        # An order in which nodes have few later neighbours: by core number, hubs last of equal ones.
        self.rank: Ints = np.empty(n_nodes, dtype=np.int64)
        self.rank[np.lexsort((np.diff(self.first), self.core))] = np.arange(n_nodes)
        self.later: Ints = np.bincount(np.where(self.rank[a] < self.rank[b], a, b), minlength=n_nodes)
        self._sets: dict[int, set[int]] = {}

    def around(self, node: int) -> set[int]:
        """The neighbours of a node."""
        found = self._sets.get(node)
        if found is None:
            part = self.neighbours[self.first[node] : self.first[node + 1]]
            found = self._sets[node] = set(part.tolist())
        return found


def different_pairs(source: npt.ArrayLike, target: npt.ArrayLike, n_nodes: int) -> tuple[Ints, Ints]:
    """The unordered pairs of different nodes among links, each once."""
    one = np.asarray(source, dtype=np.int64)
    other = np.asarray(target, dtype=np.int64)
    kept = one != other
    low, high = np.minimum(one[kept], other[kept]), np.maximum(one[kept], other[kept])
    keys = np.unique(low * np.int64(n_nodes) + high)
    return keys // n_nodes, keys % n_nodes


def _descend(graph: _Graph, start: int, choose: random.Random) -> tuple[float, int, int]:
    """One random way down the search tree below a start node: how many leaves it stands for (0
    when it ends without a maximal clique), the size of its clique, the work."""
    around = graph.around(start)
    later = {node for node in around if graph.rank[node] > graph.rank[start]}
    candidates, excluded = later, around - later
    factor, size, work = 1.0, 1, len(around)
    while candidates:
        pivot_hits = -1
        outside = candidates
        for pool in (candidates, excluded):
            for node in pool:
                near = graph.around(node)
                work += 10 + min(len(near), len(candidates))
                hits = len(candidates & near)
                if hits > pivot_hits:
                    pivot_hits, outside = hits, candidates - near
        branches = sorted(outside)
        if not branches:
            return 0.0, size, work
        place = choose.randrange(len(branches))
        chosen, done = branches[place], branches[:place]
        factor *= len(branches)
        near = graph.around(chosen)
        excluded = (excluded | set(done)) & near
        candidates = (candidates - set(done)) & near
        size += 1
    return (0.0 if excluded or size < 3 else factor), size, work


def _colours(graph: _Graph, at_least: int) -> int:
    """How many colours the nodes of core number `at_least` or more need at most, taken greedily
    from the innermost outwards. No clique among them has more nodes."""
    inner = np.flatnonzero(graph.core >= at_least)
    colour: dict[int, int] = {}
    most = 0
    for node in inner[np.argsort(-graph.rank[inner])].tolist():
        taken = {colour[other] for other in graph.around(node) if other in colour}
        free = 0
        while free in taken:
            free += 1
        colour[node] = free
        most = max(most, free + 1)
    return most


def estimate(n_nodes: int, a: Ints, b: Ints) -> Cost:
    """The cost of a search in the graph with the pairs (a, b), each once.

    Raises ImportError without igraph (Debian: python3-igraph).
    """
    if len(a) == 0:
        return Cost(n_nodes, 0, 0, 0, 1 if n_nodes else 0, 1 if n_nodes else 0, 0.0)
    graph = _Graph(n_nodes, a, b)
    core_number = int(graph.core.max())
    # Start nodes with many later neighbours have most of the tree below them.
    share = np.minimum(graph.later, graph.core).astype(np.float64) ** 3
    share = share / share.sum() * 0.75 + (graph.later > 0) / np.count_nonzero(graph.later) * 0.25
    starts = np.random.default_rng(1).choice(n_nodes, size=_SAMPLES, p=share)
    choose = random.Random(1)
    total, drawn, work, largest = 0.0, 0, 0, 2
    for start in starts.tolist():
        leaves, size, steps = _descend(graph, start, choose)
        drawn += 1
        total += leaves / share[start]
        largest = max(largest, size)
        work += steps
        if work > _WORK_LIMIT:
            break
    # A larger clique than the largest seen lies where core numbers allow it.
    bound = min(core_number + 1, max(largest, _colours(graph, largest)))
    return Cost(
        n_nodes,
        len(a),
        core_number,
        int((graph.core == core_number).sum()),
        largest,
        bound,
        total / drawn,
    )
