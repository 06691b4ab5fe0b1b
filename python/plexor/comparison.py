# SPDX-License-Identifier: MIT
"""How alike two sets of communities are, and what becomes of communities over time.

A cover is a list of node sets; nodes may be in several sets or in none. `compare` says how alike
two covers are: overlapping normalized mutual information with the maximum norm (McDaid, Greene and
Hurley 2011, arXiv:1110.2515) after Lancichinetti, Fortunato and Kertész (2009, New J. Phys. 11,
033015), the omega index (Collins and Dent 1988, Multivar. Behav. Res. 23, 231), and for each
community the one of the other cover that is most alike by the Jaccard index. `compare_over_time`
says of a series of covers which communities were born, died, grew, shrank, split and merged.
"""
from __future__ import annotations

import math
from collections.abc import Hashable, Iterable, Sequence
from dataclasses import dataclass
from typing import TYPE_CHECKING, Any

import numpy as np
import numpy.typing as npt

if TYPE_CHECKING:
    from plexor.results import Level, Result

__all__ = ["Comparison", "Cover", "Event", "Match", "Timeline", "compare", "compare_over_time",
           "cover_of", "nmi", "omega"]

Ints = npt.NDArray[np.int64]

#: Of the nodes of a community so large a part must be found again, for it to have gone on or joined another.
DEFAULT_THRESHOLD = 0.5


@dataclass(frozen=True)
class Cover:
    """Communities by node names. nodes: all nodes that could be in one, also those in none."""

    sets: tuple[frozenset[Hashable], ...]
    nodes: frozenset[Hashable]
    label: str = ""


@dataclass(frozen=True)
class Match:
    """The community of the other cover that is most alike. other: None when none shares a node."""

    number: int
    size: int
    other: int | None
    other_size: int
    shared: int
    jaccard: float


@dataclass(frozen=True)
class Comparison:
    """How alike two covers are. nmi and omega are 1 for equal covers; nan where they say nothing."""

    labels: tuple[str, str]
    n_nodes: int
    n_common_nodes: int
    n_communities: tuple[int, int]
    nmi: float
    omega: float
    matches: tuple[tuple[Match, ...], tuple[Match, ...]]
    shared: tuple[tuple[int, int, int], ...]


@dataclass(frozen=True)
class Event:
    """What became of communities between two times.

    kind: "born", "died", "same" (the same nodes), "grew", "shrank", "changed" (as many nodes, not the same),
    "split", "merged".  before, after: numbers of communities at the first and at the second time.
    """

    step: int
    kind: str
    before: tuple[int, ...]
    after: tuple[int, ...]
    size_before: int
    size_after: int


@dataclass(frozen=True)
class Timeline:
    """A series of covers: their labels, community sizes, shared nodes of neighbouring times, events, and each
    community's line: those that carry on from each other have one number."""

    labels: tuple[str, ...]
    sizes: tuple[tuple[int, ...], ...]
    lines: tuple[tuple[int, ...], ...]
    shared: tuple[tuple[tuple[int, int, int], ...], ...]
    events: tuple[Event, ...]


def cover_of(source: Cover | Level | Iterable[Iterable[Hashable]], nodes: Iterable[Hashable] | None = None,
             label: str = "") -> Cover:
    """A cover from a level of a result (all nodes of its network count) or from any iterable of node sets.

    nodes: all nodes, for an iterable of sets; None: those that are in a set. ValueError if a set holds a node
    that is not among them, or is empty.
    """
    if isinstance(source, Cover):
        return source
    if hasattr(source, "nodes") and hasattr(source, "names"):
        level: Any = source
        names = level.names
        sets = tuple(frozenset(names[i] for i in members.tolist()) for members in level.nodes)
        return Cover(sets, frozenset(names), label or f"k={level.k}")
    sets = tuple(frozenset(one) for one in source)
    inside: frozenset[Hashable] = frozenset().union(*sets)
    every = inside if nodes is None else frozenset(nodes)
    if not inside <= every:
        raise ValueError("a community holds a node that is not among the nodes")
    if any(not one for one in sets):
        raise ValueError("a community without nodes")
    return Cover(sets, every, label)


class _Crossing:
    """Two covers by numbers: sizes, and for each pair of communities that share nodes how many."""

    def __init__(self, first: Cover, second: Cover) -> None:
        owners: dict[Hashable, list[int]] = {}
        for i, members in enumerate(first.sets):
            for node in members:
                owners.setdefault(node, []).append(i)
        shared: dict[tuple[int, int], int] = {}
        for j, members in enumerate(second.sets):
            for node in members:
                for i in owners.get(node, ()):
                    shared[i, j] = shared.get((i, j), 0) + 1
        keys = sorted(shared)
        self.i: Ints = np.array([i for i, _ in keys], dtype=np.int64)
        self.j: Ints = np.array([j for _, j in keys], dtype=np.int64)
        self.shared: Ints = np.array([shared[key] for key in keys], dtype=np.int64)
        self.size_a: Ints = np.array([len(s) for s in first.sets], dtype=np.int64)
        self.size_b: Ints = np.array([len(s) for s in second.sets], dtype=np.int64)
        self.n = len(first.nodes | second.nodes)


def _h(counts: npt.NDArray[Any], n: int) -> npt.NDArray[np.float64]:
    """-p log2 p for p = counts / n; 0 for 0."""
    p = counts / n
    result = np.zeros(p.shape)
    some = p > 0
    result[some] = -p[some] * np.log2(p[some])
    return result


def _conditional(sizes: Ints, others: Ints, i: Ints, j: Ints, shared: Ints, n: int) -> float:
    """Sum over the sets i of the first cover of the least H(X_i | Y_j) over the sets j of the second.

    A j counts only where the sets are rather alike than opposite: h(both) + h(neither) >= h(only i) + h(only j).
    Pairs that share nothing never qualify with less than H(X_i): they need no look, except that
    h(neither) alone may be large, and then H(X_i | Y_j) is worked out for the sizes that occur.
    """
    own = _h(sizes, n) + _h(n - sizes, n)
    best = own.copy()

    def offer(rows: Ints, both: Ints, size_i: Ints, size_j: Ints) -> None:
        only_i, only_j = size_i - both, size_j - both
        neither = n - size_i - only_j
        h_both, h_i, h_j, h_neither = (_h(x, n) for x in (both, only_i, only_j, neither))
        alike = h_both + h_neither >= h_i + h_j
        given = h_both + h_i + h_j + h_neither - _h(size_j, n) - _h(n - size_j, n)
        np.minimum.at(best, rows[alike], given[alike])

    offer(i, shared, sizes[i], others[j])
    # Sets without a common node: H depends on the two sizes alone, so each size is tried once.
    if len(others):
        meets: dict[int, dict[int, int]] = {}
        for row, size in zip(i.tolist(), others[j].tolist()):
            counted = meets.setdefault(row, {})
            counted[size] = counted.get(size, 0) + 1
        every = dict(zip(*(part.tolist() for part in np.unique(others, return_counts=True))))
        rows, sizes_j = [], []
        for row in range(len(sizes)):
            met = meets.get(row, {})
            for size, times in every.items():
                if met.get(size, 0) < times:
                    rows.append(row)
                    sizes_j.append(size)
        row_array = np.array(rows, dtype=np.int64)
        offer(row_array, np.zeros(len(rows), dtype=np.int64), sizes[row_array], np.array(sizes_j, dtype=np.int64))
    return float(np.maximum(best, 0.0).sum())


def _nmi(crossing: _Crossing) -> float:
    n, a, b = crossing.n, crossing.size_a, crossing.size_b
    if n == 0:
        return math.nan
    h_a = float((_h(a, n) + _h(n - a, n)).sum())
    h_b = float((_h(b, n) + _h(n - b, n)).sum())
    if max(h_a, h_b) == 0.0:
        # No information on either side: equal covers are alike, of others nothing can be said.
        return 1.0 if sorted(a.tolist()) == sorted(b.tolist()) else math.nan
    given_b = _conditional(a, b, crossing.i, crossing.j, crossing.shared, n)
    given_a = _conditional(b, a, crossing.j, crossing.i, crossing.shared, n)
    information = 0.5 * (h_a - given_b + h_b - given_a)
    return information / max(h_a, h_b)


def nmi(first: Cover | Level | Iterable[Iterable[Hashable]], second: Cover | Level | Iterable[Iterable[Hashable]]) -> float:
    """Overlapping normalized mutual information with the maximum norm, 0 to 1; 1 for equal covers.

    Nodes are those of both covers together. nan if neither cover holds information (no communities, or only
    communities of all nodes) and they differ.
    """
    return _nmi(_Crossing(cover_of(first), cover_of(second)))


def omega(first: Cover | Level | Iterable[Iterable[Hashable]], second: Cover | Level | Iterable[Iterable[Hashable]]) -> float:
    """The omega index: the share of node pairs that are together in equally many communities of both covers,
    corrected for chance; 1 where all pairs agree, about 0 for independent covers.

    Nodes are those of both covers together. Time and memory: the pairs of nodes within communities.
    """
    a, b = cover_of(first), cover_of(second)
    every = sorted(a.nodes | b.nodes, key=lambda node: (str(type(node)), str(node)))
    position = {node: i for i, node in enumerate(every)}
    n = len(every)
    pairs = n * (n - 1) // 2
    keys_a, times_a = _pair_times(a, position, n)
    keys_b, times_b = _pair_times(b, position, n)
    if len(keys_a) == len(keys_b) and np.array_equal(keys_a, keys_b) and np.array_equal(times_a, times_b):
        return 1.0
    common, at_a, at_b = np.intersect1d(keys_a, keys_b, assume_unique=True, return_indices=True)
    agree = int((times_a[at_a] == times_b[at_b]).sum()) + pairs - len(keys_a) - len(keys_b) + len(common)
    most = int(max(times_a.max(initial=0), times_b.max(initial=0)))
    count_a = np.bincount(times_a, minlength=most + 1)
    count_b = np.bincount(times_b, minlength=most + 1)
    count_a[0], count_b[0] = pairs - len(keys_a), pairs - len(keys_b)
    # Whole numbers of any size until the last division.
    chance: int = sum(x * y for x, y in zip(count_a.tolist(), count_b.tolist()))
    # Below pairs * pairs: only where all pairs are together equally often in both would it be that many.
    return (agree * pairs - chance) / (pairs * pairs - chance)


def _pair_times(cover: Cover, position: dict[Hashable, int], n: int) -> tuple[Ints, Ints]:
    """The pairs of nodes that are together somewhere, a * n + b with a < b ascending, and in how many sets."""
    parts: list[Ints] = []
    for members in cover.sets:
        own = np.array(sorted(position[node] for node in members), dtype=np.int64)
        upper, lower = np.triu_indices(len(own), 1)
        parts.append(own[upper] * n + own[lower])
    if not parts:
        return np.zeros(0, dtype=np.int64), np.zeros(0, dtype=np.int64)
    keys, times = np.unique(np.concatenate(parts), return_counts=True)
    return keys, times.astype(np.int64)


def _matches(sizes: Ints, others: Ints, i: Ints, j: Ints, shared: Ints) -> tuple[Match, ...]:
    best: dict[int, tuple[float, int, int]] = {}
    for row, other, both in zip(i.tolist(), j.tolist(), shared.tolist()):
        jaccard = both / (int(sizes[row]) + int(others[other]) - both)
        # Of equally alike ones the one with the smaller number.
        if row not in best or (jaccard, -other) > (best[row][0], -best[row][1]):
            best[row] = (jaccard, other, both)
    result = []
    for row in range(len(sizes)):
        if row in best:
            jaccard, other, both = best[row]
            result.append(Match(row, int(sizes[row]), other, int(others[other]), both, jaccard))
        else:
            result.append(Match(row, int(sizes[row]), None, 0, 0, 0.0))
    return tuple(result)


def compare(first: Cover | Level | Iterable[Iterable[Hashable]], second: Cover | Level | Iterable[Iterable[Hashable]],
            ) -> Comparison:
    """How alike two covers are. Arguments: covers, levels of results, or iterables of node sets."""
    a, b = cover_of(first), cover_of(second)
    crossing = _Crossing(a, b)
    return Comparison(
        labels=(a.label, b.label),
        n_nodes=crossing.n,
        n_common_nodes=len(a.nodes & b.nodes),
        n_communities=(len(a.sets), len(b.sets)),
        nmi=_nmi(crossing),
        omega=omega(a, b),
        matches=(_matches(crossing.size_a, crossing.size_b, crossing.i, crossing.j, crossing.shared),
                 _matches(crossing.size_b, crossing.size_a, crossing.j, crossing.i, crossing.shared)),
        shared=tuple(zip(crossing.i.tolist(), crossing.j.tolist(), crossing.shared.tolist())),
    )


def compare_over_time(covers: Sequence[Cover | Level | Iterable[Iterable[Hashable]]],
                      threshold: float = DEFAULT_THRESHOLD) -> Timeline:
    """What becomes of communities from each cover of a series to the next.

    First, pairs are formed, the most alike by the Jaccard index first, each community in one pair at most, where
    more than `threshold` of the smaller one's nodes are shared: the earlier one goes on as the later one, although
    both may overlap others just as much. Then an earlier community that is left over joins the later one with
    most of its nodes, if these are more than `threshold` of it; a later one that is left over comes from an
    earlier one in the same way.
      merged  a later community that went on and that others joined
      split   an earlier community that went on and from which others come
      same, grew, shrank, changed  a community that went on, without either
      died    an earlier community that neither went on nor joined one;  born  a later one from nowhere
    A community can merge and split in one step. ValueError for fewer than two covers or a threshold outside of
    0 to 1.
    """
    series = [cover_of(cover) for cover in covers]
    if len(series) < 2:
        raise ValueError("a comparison over time needs two results or more")
    if not 0 <= threshold < 1:
        raise ValueError("the threshold must be at least 0 and below 1")
    events: list[Event] = []
    lines: list[tuple[int, ...]] = [tuple(range(len(series[0].sets)))]
    n_lines = len(series[0].sets)
    all_shared = []
    for step, (a, b) in enumerate(zip(series, series[1:])):
        crossing = _Crossing(a, b)
        shared = list(zip(crossing.i.tolist(), crossing.j.tolist(), crossing.shared.tolist()))
        all_shared.append(tuple(shared))
        goes_on = _pairs(a, b, shared, threshold)
        comes_from = {j: i for i, j in goes_on.items()}
        before: dict[int, list[int]] = {j: [i] for i, j in goes_on.items()}
        after: dict[int, list[int]] = {i: [j] for i, j in goes_on.items()}
        joins = _largest_parts([(i, j, both) for i, j, both in shared if i not in goes_on], a, threshold)
        splits_off = _largest_parts([(j, i, both) for i, j, both in shared if j not in comes_from], b, threshold)
        for i, j in joins.items():
            before.setdefault(j, []).append(i)
        for j, i in splits_off.items():
            after.setdefault(i, []).append(j)
        for i, members in enumerate(a.sets):
            parts = sorted(after.get(i, ()))
            if len(parts) > 1:
                events.append(Event(step, "split", (i,), tuple(parts), len(members),
                                    len(frozenset().union(*(b.sets[j] for j in parts)))))
            elif parts and len(before[parts[0]]) == 1:
                other = b.sets[parts[0]]
                kind = ("same" if members == other else "grew" if len(other) > len(members)
                        else "shrank" if len(other) < len(members) else "changed")
                events.append(Event(step, kind, (i,), (parts[0],), len(members), len(other)))
            elif not parts and i not in joins:
                events.append(Event(step, "died", (i,), (), len(members), 0))
        for j, members in enumerate(b.sets):
            parts = sorted(before.get(j, ()))
            if len(parts) > 1:
                events.append(Event(step, "merged", tuple(parts), (j,),
                                    len(frozenset().union(*(a.sets[i] for i in parts))), len(members)))
            elif not parts and j not in splits_off:
                events.append(Event(step, "born", (), (j,), 0, len(members)))
        own = []
        for j in range(len(b.sets)):
            if j in comes_from:
                own.append(lines[-1][comes_from[j]])
            else:
                own.append(n_lines)
                n_lines += 1
        lines.append(tuple(own))
    return Timeline(
        labels=tuple(cover.label for cover in series),
        sizes=tuple(tuple(len(s) for s in cover.sets) for cover in series),
        lines=tuple(lines), shared=tuple(all_shared), events=tuple(events))


def _pairs(a: Cover, b: Cover, shared: list[tuple[int, int, int]], threshold: float) -> dict[int, int]:
    """Which community goes on as which: the most alike first, of equally alike ones the smaller numbers."""
    candidates = []
    for i, j, both in shared:
        size_i, size_j = len(a.sets[i]), len(b.sets[j])
        if both > threshold * min(size_i, size_j):
            candidates.append((-both / (size_i + size_j - both), i, j))
    goes_on: dict[int, int] = {}
    taken: set[int] = set()
    for _, i, j in sorted(candidates):
        if i not in goes_on and j not in taken:
            goes_on[i] = j
            taken.add(j)
    return goes_on


def _largest_parts(pairs: list[tuple[int, int, int]], own: Cover, threshold: float) -> dict[int, int]:
    """For each first of the pairs (it, other, shared nodes) the other with most of its nodes, if these are
    more than threshold of it; of equal ones the smaller number."""
    best: dict[int, tuple[int, int]] = {}
    for it, other, both in pairs:
        if both > threshold * len(own.sets[it]) and (it not in best or (both, -other) > (best[it][0], -best[it][1])):
            best[it] = (both, other)
    return {it: other for it, (_, other) in best.items()}


def result_cover(result: Result, k: int, label: str) -> Cover:
    """The cover of a result at k; KeyError if it has no such level."""
    if k not in result.ks:
        raise KeyError(f"{label} has no results at k={k}")
    return cover_of(result[k], label=label)
