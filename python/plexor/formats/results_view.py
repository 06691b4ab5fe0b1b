# SPDX-License-Identifier: MIT
"""What the exports have in common: names as they shall be written, and who belongs where."""

from __future__ import annotations

from dataclasses import dataclass
from functools import cached_property

import numpy as np
import numpy.typing as npt

from plexor.formats.escape import unescape
from plexor.results import Level, Result

Ints = npt.NDArray[np.int64]


@dataclass
class Membership:
    """The communities of one k seen from the nodes.

    Those of node i are ``communities[first[i]:first[i + 1]]``, ascending. ``primary[i]`` is the
    one in which the node has most links (of equal ones the larger, then that of the smaller
    number), -1 without any. ``approximated[c]`` tells the kind of community c.
    """

    k: int
    first: Ints
    communities: Ints
    primary: Ints
    approximated: npt.NDArray[np.bool_]

    def of(self, node: int) -> list[int]:
        """The communities of a node."""
        own: list[int] = self.communities[self.first[node] : self.first[node + 1]].tolist()
        return own


class View:
    """A result as an export shows it: the names, and the levels at the wanted k."""

    def __init__(self, result: Result, ks: list[int], names: list[str]) -> None:
        self.result = result
        self.ks = ks
        self.names = names
        self._memberships: dict[int, Membership] = {}

    @property
    def directed(self) -> bool:
        """Whether the run took links as directed."""
        return self.result.parameters.directed

    def membership(self, k: int) -> Membership:
        """Who belongs where at k."""
        if k not in self._memberships:
            self._memberships[k] = _membership(self.result[k], len(self.names))
        return self._memberships[k]

    @cached_property
    def links(self) -> tuple[Ints, Ints, npt.NDArray[np.float64] | None]:
        """The links of the network: of an undirected run each pair once, in the direction and at
        the place of its first link, with the sum of the weights of both directions."""
        source = self.result.links.source.astype(np.int64)
        target = self.result.links.target.astype(np.int64)
        weight = self.result.links.weight
        if self.directed:
            return source, target, weight
        _, first, of = np.unique(
            self._pair_keys(source, target), return_index=True, return_inverse=True
        )
        order = np.sort(first)
        if weight is not None:
            sums = np.bincount(of, weights=weight, minlength=len(first)).astype(np.float64)
            weight = sums[np.argsort(first, kind="stable")]
        return source[order], target[order], weight

    def _pair_keys(self, source: Ints, target: Ints) -> Ints:
        """A number for each link, the same for both directions."""
        size = np.int64(max(1, len(self.names)))
        keys: Ints = np.minimum(source, target) * size + np.maximum(source, target)
        return keys

    def link_communities(self, k: int) -> list[list[int]]:
        """For each of `links` the communities at k that hold it. Of a pair that is linked both ways
        result files name one direction; both are in the community."""
        links = self.result[k].links
        of = np.repeat(np.arange(len(links)), np.diff(links.offsets))
        keys = self._pair_keys(links.source.astype(np.int64), links.target.astype(np.int64))
        # Intensity runs repeat links.
        pairs = np.unique(np.stack([keys, of], axis=1), axis=0) if len(keys) else np.zeros((0, 2))
        found: dict[int, list[int]] = {}
        for key, community in pairs.astype(np.int64).tolist():
            found.setdefault(key, []).append(community)
        own = self._pair_keys(self.links[0], self.links[1]).tolist()
        return [found.get(key, []) for key in own]


def _membership(level: Level, n_nodes: int) -> Membership:
    members = level.nodes.members.astype(np.int64)
    owners = level.nodes.owners()
    order = np.lexsort((owners, members))
    sorted_members, communities = members[order], owners[order]
    first = np.searchsorted(sorted_members, np.arange(n_nodes + 1))
    # Links of each node in each community.
    links = level.links
    of = np.repeat(np.arange(len(links)), np.diff(links.offsets))
    ends = np.stack([of, links.source, links.target], axis=1).astype(np.int64)
    if len(ends):
        ends = np.unique(ends, axis=0)  # intensity runs repeat links
    size = np.int64(max(1, n_nodes))
    keys = np.concatenate([ends[:, 0] * size + ends[:, 1], ends[:, 0] * size + ends[:, 2]])
    key_values, key_counts = np.unique(keys, return_counts=True)
    n_links = np.zeros(len(members), dtype=np.int64)
    if len(key_values):
        place = np.searchsorted(key_values, communities * size + sorted_members)
        place = np.minimum(place, len(key_values) - 1)
        there = key_values[place] == communities * size + sorted_members
        n_links = np.where(there, key_counts[place], 0)
    sizes = level.nodes.sizes[communities] if len(communities) else np.zeros(0, dtype=np.int64)
    best = np.lexsort((communities, -sizes, -n_links, sorted_members))
    primary = np.full(n_nodes, -1, dtype=np.int64)
    # Written from the last to the first, so that the best one of each node stays.
    primary[sorted_members[best][::-1]] = communities[best][::-1]
    return Membership(
        level.k, first, communities, primary, np.arange(len(level)) >= level.n_exact
    )


def shown_names(result: Result, unescaped: bool) -> list[str]:
    """The names of the nodes. Raises ValueError when they cannot be unescaped."""
    names = [str(name) for name in result.names]
    return [unescape(name) for name in names] if unescaped else names
