# SPDX-License-Identifier: MIT
"""`plexor-tool compare`: how alike results are, and what becomes of communities over time."""
from __future__ import annotations

import argparse
import json
import math
import sys
from pathlib import Path
from typing import TYPE_CHECKING

from plexor.tool.console import Console, ToolError, UsageError, refuse_existing

if TYPE_CHECKING:
    from plexor.comparison import Comparison, Cover, Timeline

FORMATS = ["table", "csv", "json", "html"]


def add_arguments(parser: argparse.ArgumentParser) -> None:
    """The options of the command."""
    parser.add_argument("directories", metavar="DIR", nargs="+", help="result directories: two, or more with --over-time")
    parser.add_argument("-k", type=int, metavar="K", action="append",
                        help="the k to compare at; given twice, of the first and of the second (default: the only one common to all)")
    parser.add_argument("--over-time", action="store_true", help="the results are a series in this order")
    parser.add_argument("--threshold", type=float, default=None, metavar="SHARE",
                        help="over time: a community goes on, or joins another, when more than this part of its nodes is found there (default: 0.5)")
    parser.add_argument("-o", "--output", default="-", metavar="FILE", help="where to; - is standard output (default)")
    parser.add_argument("-O", "--overwrite", action="store_true", help="replace the file if it is there")
    parser.add_argument("-f", "--format", choices=FORMATS, help="default: by the ending of FILE, else table")


def execute(arguments: argparse.Namespace, console: Console) -> int:
    """Compares; returns the exit status. UsageError, ToolError and OSError say why it could not."""
    from plexor.comparison import DEFAULT_THRESHOLD, compare, compare_over_time
    from plexor.report.compare_page import make_compare_page
    from plexor.report.page import write_whole

    over_time = arguments.over_time
    if len(arguments.directories) < 2 or (len(arguments.directories) > 2 and not over_time):
        raise UsageError("compare takes two result directories, or more with --over-time")
    if arguments.threshold is not None and not over_time:
        raise UsageError("--threshold belongs to --over-time")
    threshold = DEFAULT_THRESHOLD if arguments.threshold is None else arguments.threshold
    if not 0 <= threshold < 1:
        raise UsageError("--threshold must be at least 0 and below 1")
    to_file = arguments.output != "-"
    if to_file:
        refuse_existing(Path(arguments.output), arguments.overwrite)
    kind = arguments.format or {".html": "html", ".csv": "csv", ".json": "json"}.get(Path(arguments.output).suffix if to_file else "", "table")
    covers = _covers(arguments)
    timeline = compare_over_time(covers, threshold)
    comparisons = [compare(a, b) for a, b in zip(covers, covers[1:])]
    if kind == "html":
        content = make_compare_page(timeline, comparisons, over_time=over_time, threshold=threshold)
    else:
        text = {"table": _table, "csv": _csv, "json": _json}[kind](timeline, comparisons, over_time)
        content = text.encode("utf-8", "replace")
    if to_file:
        write_whole(arguments.output, content)
        console.say(f"{arguments.output}: {len(content):,} bytes")
    else:
        sys.stdout.buffer.write(content)
        sys.stdout.buffer.flush()
    return 0


def _covers(arguments: argparse.Namespace) -> list[Cover]:
    import plexor
    from plexor.comparison import result_cover

    try:
        results = [plexor.load(directory) for directory in arguments.directories]
    except plexor.PlexorError as error:
        raise ToolError(str(error)) from error
    ks = arguments.k
    if ks is None:
        common = set(results[0].ks).intersection(*(result.ks for result in results[1:]))
        if len(common) != 1:
            raise UsageError("-k must say which k to compare at; "
                             + (f"there are k = {', '.join(map(str, sorted(common)))}" if common else "the results have none in common"))
        ks = [common.pop()]
    if len(ks) not in (1, len(results)):
        raise UsageError("-k is given once, or once for each result")
    ks = ks * len(results) if len(ks) == 1 else ks
    names = [Path(directory).resolve().name for directory in arguments.directories]
    labels = []
    for i, (name, k) in enumerate(zip(names, ks)):
        label = name if len(set(ks)) == 1 else f"{name} at k={k}"
        labels.append(label if names.count(name) == 1 or len(set(ks)) > 1 else f"{arguments.directories[i]}")
    try:
        return [result_cover(result, k, label) for result, k, label in zip(results, ks, labels)]
    except KeyError as error:
        raise ToolError(str(error.args[0])) from error


def _number(value: float) -> str:
    return "-" if math.isnan(value) else f"{value:.6f}"


def _table(timeline: Timeline, comparisons: list[Comparison], over_time: bool) -> str:
    lines = []
    for i, one in enumerate(comparisons):
        lines += [f"{one.labels[0]}  and  {one.labels[1]}",
                  f"  communities    {one.n_communities[0]} and {one.n_communities[1]}",
                  f"  nodes          {one.n_nodes}, {one.n_common_nodes} of them in both networks",
                  f"  NMI (maximum)  {_number(one.nmi)}",
                  f"  omega index    {_number(one.omega)}"]
        if over_time:
            lines += ["", "  what      before -> after       nodes"]
            for event in timeline.events:
                if event.step == i:
                    before, after = (" ".join(map(str, part)) or "-" for part in (event.before, event.after))
                    lines.append(f"  {event.kind:<8}  {before} -> {after}".ljust(33) + f" {event.size_before} -> {event.size_after}")
        else:
            lines += ["", "  best matches of the first", "  community  nodes  most alike  its nodes  shared  Jaccard"]
            for m in one.matches[0]:
                other = "-" if m.other is None else str(m.other)
                lines.append(f"  {m.number:>9}  {m.size:>5}  {other:>10}  {m.other_size:>9}  {m.shared:>6}  {m.jaccard:.4f}")
        lines.append("")
    return "\n".join(lines)


def _csv(timeline: Timeline, comparisons: list[Comparison], over_time: bool) -> str:
    if over_time:
        rows = ["step,kind,before,after,nodes_before,nodes_after"]
        rows += [f"{e.step},{e.kind},{' '.join(map(str, e.before))},{' '.join(map(str, e.after))},{e.size_before},{e.size_after}"
                 for e in timeline.events]
    else:
        rows = ["side,community,nodes,most_alike,its_nodes,shared,jaccard"]
        for side, matches in enumerate(comparisons[0].matches, 1):
            rows += [f"{side},{m.number},{m.size},{'' if m.other is None else m.other},{m.other_size},{m.shared},{m.jaccard:.9g}" for m in matches]
    return "\n".join(rows) + "\n"


def _json(timeline: Timeline, comparisons: list[Comparison], over_time: bool) -> str:
    def number(value: float) -> float | None:
        return None if math.isnan(value) else value

    value: dict[str, object] = {
        "results": list(timeline.labels),
        "scores": [{"nmi": number(c.nmi), "omega": number(c.omega), "nodes": c.n_nodes, "common_nodes": c.n_common_nodes,
                    "communities": c.n_communities} for c in comparisons],
    }
    if over_time:
        value["events"] = [e.__dict__ for e in timeline.events]
    else:
        value["matches"] = [[m.__dict__ for m in side] for side in comparisons[0].matches]
    return json.dumps(value, ensure_ascii=False, indent=1) + "\n"
