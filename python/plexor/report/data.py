# SPDX-License-Identifier: MIT
"""What the report page holds of a result: blocks of JSON, small ones first."""
from __future__ import annotations

import math
from collections.abc import Callable
from pathlib import PurePath
from typing import TYPE_CHECKING, Any
from urllib.parse import unquote

import numpy as np
from numpy.typing import NDArray

from .layout import place
from .page import json_block

if TYPE_CHECKING:
    from plexor.results import Level, Result

MAX_DISCS = 500      # discs and links of a picture together stay below 2,000
MAX_DISC_LINKS = 1400
LARGEST_RADIUS, USUAL_RADIUS, SMALLEST_RADIUS = 105.0, 13.0, 6.0
N_TOP_MEMBERS = 3

Ints = NDArray[np.int64]


def shown_names(result: Result, unescape: bool | None) -> list[str]:
    """The names to show. unescape: undo %XX in names; None: where the run's input says that they are escaped."""
    names = [str(name).encode("utf-8", "surrogateescape").decode("utf-8", "replace") for name in result.names]
    if result.escaped if unescape is None else unescape:
        return [unquote(name, errors="replace") for name in names]
    return names


def build_blocks(result: Result, *, title: str, unescape: bool | None, room: int,
                 ks: list[int] | None, progress: Callable[[str], None] | None,
                 ) -> tuple[list[str], list[str]]:
    """The page's blocks and, in words, what had to be left out to stay within room bytes."""
    left_out: list[str] = []
    names = shown_names(result, unescape)
    link_keys, directions = _merged_links(result)
    levels = [k for k in result.ks if ks is None or k in ks]
    summaries, level_blocks, marks = [], [], []
    for k in levels:
        if progress is not None:
            progress(f"k={k}")
        level = result[k]
        summaries.append(_summary(k, level))
        keys, link_community = _level_link_keys(level, len(names))
        level_blocks.append(_level_block(k, level, keys, link_community, len(names)))
        mark = np.zeros(len(link_keys), dtype=bool)
        if len(keys):
            mark[np.searchsorted(link_keys, np.unique(keys))] = True
        marks.append(mark)

    names_block = json_block("names", names)
    links_block = _links_block(link_keys, directions, levels, marks, len(names))
    room -= 4000 + 200 * len(levels)  # the block "head", which is made when all else is known
    used = len(names_block.encode("utf-8", "replace")) + sum(map(len, level_blocks))
    if used + len(links_block) > room:
        left_out.append(
            f"The {len(link_keys):,} links of the network: pictures show nodes and communities without links.")
        links_block = ""
    n_kept = len(levels)
    # From the smallest k up: its level is the largest and says the least.
    while n_kept and used + len(links_block) > room:
        n_kept -= 1
        used -= len(level_blocks[n_kept])
    if n_kept < len(levels):
        gone = sorted(levels[n_kept:])
        left_out.append(f"All communities at k = {', '.join(map(str, gone))}.")
    if used + len(links_block) > room:
        names_block = json_block("names", [])
        left_out.append("The names of all nodes.")
    parameters = result.parameters
    head = {
        "title": title,
        "input": PurePath(parameters.input).name,
        "directed": parameters.directed,
        "weights": [None if bound is None or math.isnan(bound) else bound for bound in parameters.weights],
        "intensity": parameters.intensity,
        "timeLimit": parameters.time_limit,
        "nodes": len(names),
        "links": len(link_keys),
        "cliques": len(result.cliques),
        "exactCliques": result.n_exact_cliques,
        "levels": summaries,
        "kept": levels[:n_kept],
        "start": _start(summaries[:n_kept]),
        "leftOut": left_out,
    }
    blocks = [json_block("head", head), *level_blocks[:n_kept], names_block]
    if links_block:
        blocks.append(links_block)
    return blocks, left_out


def _start(summaries: list[dict[str, Any]]) -> int | None:
    """The k to open the page with: the one with most communities, from 4 on where there is a choice."""
    if not summaries:
        return None
    usual = [s for s in summaries if s["k"] >= 4 and s["n"] > 1] or summaries
    return int(max(usual, key=lambda s: (s["n"], -s["k"]))["k"])


def _merged_links(result: Result) -> tuple[Ints, Ints]:
    """Links without their direction, ascending: source * n + target, the smaller node first; and for each
    1 (from the smaller node), 2 (to it) or 3 (both)."""
    n = max(1, len(result.names))
    source = result.links.source.astype(np.int64)
    target = result.links.target.astype(np.int64)
    other = source != target
    source, target = source[other], target[other]
    keys = np.minimum(source, target) * n + np.maximum(source, target)
    unique, where = np.unique(keys, return_inverse=True)
    directions = np.zeros(len(unique), dtype=np.int64)
    np.bitwise_or.at(directions, where, np.where(source < target, 1, 2))
    if not result.parameters.directed:
        directions[:] = 3
    return unique, directions


def _level_link_keys(level: Level, n: int) -> tuple[Ints, Ints]:
    """The links inside communities as keys, each once a community, and the community of each."""
    n = max(1, n)
    source, target = level.links.source.astype(np.int64), level.links.target.astype(np.int64)
    community = np.repeat(np.arange(len(level), dtype=np.int64), np.diff(level.links.offsets))
    keys = np.minimum(source, target) * n + np.maximum(source, target)
    order = np.lexsort((keys, community))
    keys, community = keys[order], community[order]
    first = np.ones(len(keys), dtype=bool)
    first[1:] = (keys[1:] != keys[:-1]) | (community[1:] != community[:-1])
    return keys[first], community[first]


def _summary(k: int, level: Level) -> dict[str, Any]:
    sizes = np.diff(level.nodes.offsets)
    _, times = np.unique(level.nodes.members, return_counts=True)
    ordered = np.sort(sizes)[::-1]
    return {
        "k": int(k), "n": len(level), "exact": int(level.n_exact),
        "largest": int(ordered[0]) if len(ordered) else 0,
        "second": int(ordered[1]) if len(ordered) > 1 else 0,
        "covered": len(times), "shared": int((times > 1).sum()),
    }


def _level_block(k: int, level: Level, keys: Ints, community: Ints, n_names: int) -> str:
    offsets = level.nodes.offsets.astype(np.int64)
    sizes = np.diff(offsets)
    owner = np.repeat(np.arange(len(level), dtype=np.int64), sizes)
    members = level.nodes.members.astype(np.int64)
    members = members[np.lexsort((members, owner))]
    # A set is stored as its first member and the differences of the others.
    stored = members.copy()
    stored[1:] -= members[:-1]
    begins = offsets[:-1][sizes > 0]
    stored[begins] = members[begins]
    cliques = level.cliques
    value: dict[str, Any] = {
        "sizes": sizes.tolist(),
        "members": stored.tolist(),
        "links": np.bincount(community, minlength=len(level)).tolist(),
        "cliques": None if cliques is None else np.diff(cliques.offsets).tolist(),
        "top": _top_members(keys, community, len(level), n_names),
        "graph": [np.asarray(part).tolist() for part in level.graph],
        "picture": _picture(level, sizes),
        "distributions": {
            name: {variant: [np.asarray(values).tolist(), np.asarray(counts).tolist()]
                   for variant, (values, counts) in sorted(variants.items())}
            for name, variants in sorted(level.distributions.items())},
    }
    return json_block(f"k{k}", value)


def _top_members(keys: Ints, community: Ints, n_communities: int, n_names: int) -> list[list[int]]:
    """The members of each community that have most links inside it."""
    n = max(1, n_names)
    ends = np.concatenate((community * n + keys // n, community * n + keys % n))
    unique, degree = np.unique(ends, return_counts=True)
    owner, node = unique // n, unique % n
    order = np.lexsort((node, -degree, owner))
    owner, node = owner[order], node[order]
    begins = np.searchsorted(owner, np.arange(n_communities))
    ends_ = np.searchsorted(owner, np.arange(n_communities), side="right")
    return [node[b:min(e, b + N_TOP_MEMBERS)].tolist() for b, e in zip(begins.tolist(), ends_.tolist())]


def _picture(level: Level, sizes: Ints) -> dict[str, Any]:
    """The discs and links that are drawn: the largest communities, the strongest overlaps between them."""
    n = len(sizes)
    drawn = np.lexsort((np.arange(n), -sizes))[:MAX_DISCS]
    a, b, shared = (np.asarray(part).astype(np.int64) for part in level.graph)
    place_of = np.full(n, -1, dtype=np.int64)
    place_of[drawn] = np.arange(len(drawn))
    both = np.flatnonzero((place_of[a] >= 0) & (place_of[b] >= 0)) if len(a) else np.zeros(0, np.int64)
    both = both[np.lexsort((both, -shared[both]))][:MAX_DISC_LINKS]
    both.sort()
    radii = radii_of(sizes[drawn])
    x, y = place(radii, place_of[a[both]], place_of[b[both]])
    return {"of": drawn.tolist(), "r": np.round(radii, 1).tolist(), "x": x.tolist(), "y": y.tolist(),
            "links": both.tolist()}


def radii_of(sizes: Ints) -> NDArray[np.float64]:
    """Radii of discs whose areas are as the sizes, but for the smallest, which could not be seen."""
    if not len(sizes):
        return np.zeros(0)
    scale = min(LARGEST_RADIUS / math.sqrt(int(sizes.max())), USUAL_RADIUS / math.sqrt(int(sizes.min())))
    return np.maximum(np.sqrt(sizes.astype(np.float64)) * scale, SMALLEST_RADIUS)


def _links_block(keys: Ints, directions: Ints, levels: list[int], marks: list[NDArray[np.bool_]], n: int) -> str:
    """All links once. For each the largest k at which it is inside a community, where being inside at k
    means being inside at every smaller one; else the places of the links inside, level by level."""
    n = max(1, n)
    source, target = keys // n, keys % n
    step = source.copy()
    step[1:] -= source[:-1]
    same = np.zeros(len(keys), dtype=bool)
    same[1:] = source[1:] == source[:-1]
    targets = target - source
    targets[1:] -= np.where(same[1:], target[:-1] - source[:-1], 0)
    value: dict[str, Any] = {"source": step.tolist(), "target": targets.tolist()}
    if (directions != 3).any():
        value["direction"] = directions.tolist()
    nested = all(not (upper & ~lower).any() for upper, lower in zip(marks, marks[1:]))
    if nested:
        top = np.zeros(len(keys), dtype=np.int64)
        for k, mark in zip(reversed(levels), reversed(marks)):
            top[mark] = k
        value["top"] = top.tolist()
    else:
        value["inside"] = {str(k): np.flatnonzero(mark).tolist() for k, mark in zip(levels, marks)}
    return json_block("links", value)
