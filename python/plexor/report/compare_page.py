# SPDX-License-Identifier: MIT
"""The page of a comparison."""
from __future__ import annotations

import math
import os
from collections.abc import Sequence

from plexor.comparison import Comparison, Timeline

from .page import assemble, json_block, write_whole

__all__ = ["make_compare_page", "write_compare_page"]


def make_compare_page(timeline: Timeline, comparisons: Sequence[Comparison], *, over_time: bool,
                      threshold: float, title: str | None = None) -> bytes:
    """The page as bytes. comparisons: of each result with the next, one fewer than timeline has labels."""

    def number(value: float) -> float | None:
        return None if math.isnan(value) else value

    heading = title or (f"{timeline.labels[0]} to {timeline.labels[-1]}" if over_time
                        else f"{timeline.labels[0]} and {timeline.labels[1]}")
    value = {
        "title": heading,
        "overTime": over_time,
        "threshold": threshold,
        "labels": timeline.labels,
        "sizes": timeline.sizes,
        "lines": timeline.lines,
        "shared": timeline.shared,
        "events": [{"step": e.step, "kind": e.kind, "before": e.before, "after": e.after,
                    "sizeBefore": e.size_before, "sizeAfter": e.size_after} for e in timeline.events] if over_time else [],
        "scores": [{"nmi": number(c.nmi), "omega": number(c.omega), "common": c.n_common_nodes, "nodes": c.n_nodes}
                   for c in comparisons],
        "matches": [] if over_time else [
            [[m.number, m.size, m.other, m.other_size, m.shared, round(m.jaccard, 9)] for m in side]
            for side in comparisons[0].matches],
    }
    return assemble("compare", f"{heading}: comparison", [json_block("compare", value)])


def write_compare_page(path: str | os.PathLike[str], timeline: Timeline, comparisons: Sequence[Comparison], *,
                       over_time: bool, threshold: float, title: str | None = None) -> None:
    """Writes the page to path, replacing what is there once it is whole. OSError if it cannot be written."""
    write_whole(path, make_compare_page(timeline, comparisons, over_time=over_time, threshold=threshold, title=title))
