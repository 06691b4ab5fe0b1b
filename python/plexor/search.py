# SPDX-License-Identifier: MIT
"""Cliques and communities of a network in memory."""

from __future__ import annotations

import math
from collections.abc import Callable, Iterable, Iterator, Sequence
from functools import cached_property
from typing import TYPE_CHECKING, Any, overload

import numpy as np

from . import _engine
from .network import Network
from .progress import Progress, Reporter
from .results import (
    CommunityGraph,
    Distributions,
    Level,
    LevelData,
    LinkList,
    Links,
    Parameters,
    Result,
    SetList,
)

__all__ = ["Cliques", "find_cliques", "find_communities", "levels"]

Weights = tuple[float | None, float | None]


class Cliques(Sequence[list[Any]]):
    """Maximal cliques of three nodes or more, each a list of nodes; the exact ones first.

    `sets` has them as arrays of numbers, `names` tells which node a number is, `n_exact` how many
    cliques are exact.
    """

    def __init__(self, result: Result) -> None:
        self.names = result.names
        self.sets = result.cliques
        self.n_exact = result.n_exact_cliques
        self.parameters = result.parameters

    def __len__(self) -> int:
        return len(self.sets)

    @overload
    def __getitem__(self, i: int) -> list[Any]: ...
    @overload
    def __getitem__(self, i: slice) -> list[list[Any]]: ...
    def __getitem__(self, i: int | slice) -> list[Any] | list[list[Any]]:
        names = self.names
        if isinstance(i, slice):
            return [[names[j] for j in members.tolist()] for members in self.sets[i]]
        return [names[j] for j in self.sets[i].tolist()]

    def __iter__(self) -> Iterator[list[Any]]:
        names = self.names
        for members in self.sets:
            yield [names[j] for j in members.tolist()]

    def __repr__(self) -> str:
        return f"<Cliques: {len(self)}, the largest of {self.sets.sizes.max(initial=0)} nodes>"


def find_cliques(
    network: Network,
    *,
    directed: bool = False,
    weights: Weights | None = None,
    time_limit: float | None = None,
    threads: int = 1,
    progress: Progress = False,
) -> Cliques:
    """All maximal cliques of three nodes or more, in the order of the program's file `cliques`.

    In a directed question a clique is a set of nodes that can be put in a line such that each has a
    link to every later one. `weights=(low, high)` leaves out links whose weight is not strictly
    between the bounds; None is no bound. `time_limit` is in seconds of processor time an attempt at
    one node: nodes that take longer are given up, and their cliques approximated. `threads` share
    out the nodes, 0 is one a processor; the result is the same whatever their number. With a time
    limit the search has one.

    Raises ValueError for a question that cannot be asked, KeyboardInterrupt after Ctrl-C.
    """
    question = _question(network, directed, weights, None, time_limit)
    _check_threads(threads)
    with Reporter(progress) as reporter:
        return Cliques(_search(network, question, threads, reporter)[0])


@overload
def find_communities(
    network: Network,
    k: int,
    *,
    directed: bool = ...,
    weights: Weights | None = ...,
    intensity: float | None = ...,
    time_limit: float | None = ...,
    threads: int = ...,
    progress: Progress = ...,
) -> Level: ...
@overload
def find_communities(
    network: Network,
    k: Iterable[int] | None = ...,
    *,
    directed: bool = ...,
    weights: Weights | None = ...,
    intensity: float | None = ...,
    time_limit: float | None = ...,
    threads: int = ...,
    progress: Progress = ...,
) -> Result: ...
def find_communities(
    network: Network,
    k: int | Iterable[int] | None = None,
    *,
    directed: bool = False,
    weights: Weights | None = None,
    intensity: float | None = None,
    time_limit: float | None = None,
    threads: int = 1,
    progress: Progress = False,
) -> Level | Result:
    """The k-clique communities: a Level for one `k`, a Result for several, or for all (from the
    largest clique down to 3) without `k`. They have the order and the numbers of the program.

    `intensity` asks for communities of k-cliques whose link weights have a geometric mean above it.
    `threads` share out the nodes of the search, then work on several `k` at the same time, each
    with an index of the cliques of its own; 0 is one a processor. The result is the same whatever
    their number. The other parameters are those of find_cliques.

    Raises ValueError for a question that cannot be asked (directed with an intensity, an intensity
    with a time limit, a time limit that is not positive, bounds of weights that leave nothing
    between them, a directed question of an undirected network, weights that are not there or not
    finite, k below 2, threads below 0), PlexorError for what the engine refuses (intensities at k=2), and
    KeyboardInterrupt after Ctrl-C.
    """
    question = _question(network, directed, weights, intensity, time_limit)
    _check_threads(threads)
    if k is None:
        ks = None
    elif isinstance(k, (int, np.integer)):
        ks = [_checked_k(k)]
    else:
        ks = sorted({_checked_k(one) for one in k}, reverse=True)
    with Reporter(progress) as reporter:
        result, engine = _search(network, question, threads, reporter)
        if ks is None:
            ks = list(range(engine.largest, 2, -1))
        at = _level_maker(engine, ks, threads)
        for done, one in enumerate(ks):
            reporter("levels", done, len(ks))
            result._add_level(one, _EngineLevel(at(one), question.intensity is not None))
    return result[ks[0]] if isinstance(k, (int, np.integer)) else result


def levels(
    network: Network,
    *,
    directed: bool = False,
    weights: Weights | None = None,
    intensity: float | None = None,
    time_limit: float | None = None,
    threads: int = 1,
    progress: Progress = False,
) -> Iterator[Level]:
    """The levels one by one, from the largest clique down to k=3, each found when it is asked for,
    or with several `threads` a few of them ahead. Parameters and errors are those of
    find_communities; the search begins with the first level."""
    question = _question(network, directed, weights, intensity, time_limit)
    _check_threads(threads)
    return _walk(network, question, threads, progress)


def _walk(
    network: Network, question: Parameters, threads: int, progress: Progress
) -> Iterator[Level]:
    with Reporter(progress) as reporter:
        result, engine = _search(network, question, threads, reporter)
        ks = list(range(engine.largest, 2, -1))
        at = _level_maker(engine, ks, threads)
        for done, k in enumerate(ks):
            reporter("levels", done, len(ks))
            yield Level(k, result, _EngineLevel(at(k), question.intensity is not None))


def _level_maker(
    engine: _engine.Search, ks: list[int], threads: int
) -> Callable[[int], _engine.Level]:
    """What gives the level of each k, asked for these in their order, which is descending."""
    if threads == 1 or len(ks) < 2:
        return engine.at
    ahead = _engine.LevelsAhead(engine, ks, threads)
    return lambda _: ahead.next()


def _check_threads(threads: Any) -> None:
    if isinstance(threads, bool) or not isinstance(threads, (int, np.integer)):
        raise ValueError(f"threads is an integer, not {threads!r}")
    if not 0 <= threads <= 1024:
        raise ValueError(f"threads is between 0 and 1024, not {threads}")


def _checked_k(k: Any) -> int:
    if isinstance(k, bool) or not isinstance(k, (int, np.integer)):
        raise ValueError(f"k is an integer or several, not {k!r}")
    if not 2 <= k < 1 << 32:
        raise ValueError(f"k is 2 or more, not {k}")
    return int(k)


def _question(
    network: Network,
    directed: bool,
    weights: Weights | None,
    intensity: float | None,
    time_limit: float | None,
) -> Parameters:
    """Refuses what the program refuses, and what a network cannot answer."""
    if not isinstance(network, Network):
        raise TypeError(
            f"a plexor.Network is needed, not {type(network).__name__}: Network.from_networkx, "
            "from_igraph, from_scipy, from_pandas and read make one"
        )
    lower, upper = (None, None) if weights is None else _bounds(weights)
    question = Parameters(
        input=network.input,
        directed=bool(directed),
        weights=(lower, upper),
        intensity=None if intensity is None else float(intensity),
        time_limit=None if time_limit is None else float(time_limit),
    )
    if question.time_limit is not None and not question.time_limit > 0:
        raise ValueError(f"time_limit is positive, not {time_limit}")
    if lower is not None and upper is not None and not lower < upper:
        raise ValueError(f"weights=({lower}, {upper}): the lower bound is not below the upper one")
    if question.intensity is not None and question.directed:
        raise ValueError("intensity and directed=True do not go together")
    if question.intensity is not None and question.time_limit is not None:
        raise ValueError("intensity and time_limit do not go together")
    if question.intensity is not None and math.isnan(question.intensity):
        raise ValueError("intensity is not a number")
    if question.directed and network.directed is False:
        raise ValueError("directed=True, and the links of this network have no direction")
    if question.weighted:
        _check_weights(network)
    return question


def _bounds(weights: Weights) -> Weights:
    try:
        lower, upper = weights
    except (TypeError, ValueError):
        raise ValueError(f"weights is a pair (low, high) with None for no bound, not {weights!r}") from None
    bounds = tuple(None if bound is None else float(bound) for bound in (lower, upper))
    if any(bound is not None and math.isnan(bound) for bound in bounds):
        raise ValueError(f"weights={weights!r}: a bound is not a number")
    return bounds[0], bounds[1]


def _check_weights(network: Network) -> None:
    if network.weight is None:
        raise ValueError("weights or intensity are asked for, and this network has no weights")
    finite = np.isfinite(network.weight)
    if not finite.all():
        at = int(np.argmin(finite))
        nodes = network.nodes
        link = f"{nodes[network.source[at]]!r} to {nodes[network.target[at]]!r}"
        raise ValueError(f"link {at}, from {link}, has no finite weight: {network.weight[at]}")


_SearchResult = tuple[Result, _engine.Search]


def search(network: Network) -> _SearchResult:
    """A plain search, and the engine's hold of it for what is to follow."""
    return _search(network, Parameters(), 1, Reporter(False))


def _search(
    network: Network, question: Parameters, threads: int, reporter: Reporter
) -> _SearchResult:
    source, target = network._ends_in_order()
    engine = _engine.Search(
        source,
        target,
        network.weight if question.weighted else None,
        network.n_nodes,
        question.directed,
        *question.weights,
        question.intensity,
        question.time_limit,
        threads,
        reporter.cliques(),
    )
    return Result(question, _EngineResult(network, engine, question), {}), engine


class _EngineResult:
    """A search, as a result has it."""

    def __init__(self, network: Network, search: _engine.Search, question: Parameters) -> None:
        self._network = network
        self._search = search
        self._weighted = question.weighted

    @cached_property
    def _names(self) -> list[Any]:
        return self._network._in_order(self._search.nodes())

    def network(self) -> tuple[Sequence[Any], Links]:
        source, target, weight = self._search.links()
        return self._names, Links(source, target, weight if self._weighted else None)

    def cliques(self) -> tuple[SetList, int]:
        return SetList(*self._search.cliques()), self._search.n_exact_cliques


class _EngineLevel:
    """One k of a search. Links, graph and distributions are made when they are asked for."""

    def __init__(self, level: _engine.Level, by_intensity: bool) -> None:
        self._level = level
        self._by_intensity = by_intensity

    def nodes(self) -> tuple[SetList, int]:
        return SetList(*self._level.nodes()), self._level.n_exact

    def cliques(self) -> SetList | None:
        return None if self._by_intensity else SetList(*self._level.cliques())

    def k_cliques(self) -> SetList | None:
        return SetList(*self._level.k_cliques()) if self._by_intensity else None

    def links(self) -> LinkList:
        return LinkList(*self._level.links())

    def graph(self) -> CommunityGraph:
        return CommunityGraph(*self._level.graph())

    def distributions(self) -> Distributions:
        nodes, n_exact = self.nodes()
        parts = ["all"] if n_exact == len(nodes) else ["merged", "exact", "appr"]
        counts = {part: self._level.count(part) for part in parts}
        return {
            what: {part: counts[part][what] for part in parts}
            for what in ("membership", "size", "overlap", "degree")
        }


if TYPE_CHECKING:
    _level_data: type[LevelData] = _EngineLevel
