# SPDX-License-Identifier: MIT
"""`plexor-tool check`: what a file is, what `plexor` would make of it, what a run will cost."""

from __future__ import annotations

import argparse
import shlex

import numpy as np

from plexor.formats import LinkTable, Reading
from plexor.formats.link_file import number_text
from plexor.tool.console import Console, output_file, printable
from plexor.tool.cost import Cost, different_pairs, estimate
from plexor.tool.reading import (
    add_reading_arguments,
    plural,
    read_network,
    reasons_to_convert,
    repeated_links,
)

# Estimated numbers of maximal cliques up to which a run is quick, and above which it may not end.
_QUICK, _HOPELESS = 2e6, 6e7


def add_arguments(parser: argparse.ArgumentParser) -> None:
    """The command's arguments."""
    parser.add_argument("file", metavar="FILE", help="the network; - is standard input")
    parser.add_argument(
        "-o", "--output", metavar="FILE", default="-", help="where to write it (default: -)"
    )
    parser.add_argument(
        "-O", "--overwrite", action="store_true", help="replace the output if it is there"
    )
    parser.add_argument(
        "--no-cost", action="store_true", help="do not look at what a run will cost"
    )
    add_reading_arguments(parser)


def execute(arguments: argparse.Namespace, console: Console) -> int:
    """Prints the findings. Status 0 says that the file can be read, by plexor or by convert."""
    quiet = Console(quiet=True)
    reading = read_network(arguments.file, arguments, quiet)
    lines = _file_lines(reading) + _network_lines(reading.table) + _plexor_lines(reading)
    if not arguments.no_cost:
        lines += _cost_lines(reading.table)
    text = "\n".join(printable(line) for line in lines) + "\n"
    with output_file(arguments.output, arguments.overwrite) as stream:
        stream.write(text.encode())
    return 0


def _file_lines(reading: Reading) -> list[str]:
    shown = "standard input" if reading.source.name == "-" else reading.source.name
    return [shown, *(f"  {sentence}" for sentence in reading.table.said)]


def _row(what: str, value: str) -> str:
    return f"  {what:<22} {value}"


def _number(value: float) -> str:
    return f"{value:.6g}"


def _network_lines(table: LinkTable) -> list[str]:
    other = table.source != table.target
    different, mutual, pairs = repeated_links(table)
    n_other = int(other.sum())
    used = np.zeros(len(table.names), dtype=bool)
    used[table.source[other]] = True
    used[table.target[other]] = True
    lines = ["network", _row("nodes with links", f"{int(used.sum()):,}")]
    if not used.all():
        lines.append(_row("nodes without links", f"{int((~used).sum()):,}, dropped"))
    lines.append(_row("links as written", f"{len(table):,}"))
    if n_other < len(table):
        lines.append(_row("self-links", f"{len(table) - n_other:,}, dropped"))
    if different < n_other:
        what = "counted once" if table.weight is None else "their weights are added up"
        lines.append(_row("repeated", f"{n_other - different:,}, {what}"))
    lines.append(_row("links with direction", f"{different:,} (with -D)"))
    lines.append(_row("links without", f"{pairs:,} (without -D)"))
    if mutual:
        lines.append(_row("with their reverse", f"{mutual:,}" + _reverse_advice(table)))
    if table.weight is not None and n_other:
        weights = table.weight[other]
        middle = float(np.median(weights))
        lines.append(
            _row(
                "weights",
                f"{_number(weights.min())} to {_number(weights.max())}, median {_number(middle)}",
            )
        )
        if (weights <= 0).any():
            lines.append(
                _row("", f"{int((weights <= 0).sum()):,} are not positive: mind them with -I")
            )
    return lines


def _reverse_advice(table: LinkTable) -> str:
    if table.weight is None or table.directed:
        return ""
    # Files such as STRING's have each link in both directions with the same weight.
    size = np.uint64(len(table.names))
    source, target = table.source.astype(np.uint64), table.target.astype(np.uint64)
    forward, backward = source * size + target, target * size + source
    if len(np.unique(forward)) != len(forward):
        return ""
    there, back = np.argsort(forward), np.argsort(backward)
    if np.array_equal(forward[there], backward[back]) and np.array_equal(
        table.weight[there], table.weight[back]
    ):
        return (
            ": every link stands in both directions with the same weight. Without -D both are "
            "added up, so -I works on doubled weights; -w and -W judge each line by itself"
        )
    return ""


def _plexor_lines(reading: Reading) -> list[str]:
    """Whether `plexor -i FILE` reads the same links, and if not, why."""
    reasons = reasons_to_convert(reading)
    lines = ["plexor"]
    shown = shlex.quote(reading.source.name)
    if not reasons:
        lines.append(f"  reads this file as it is: plexor -i {shown}")
        return lines
    lines.append("  would not read this network from the file as it is:")
    lines += [f"  - {reason}" for reason in reasons]
    lines.append(f"  plexor-tool convert {shown} -o links.txt   makes a file that it reads")
    return lines


# Costs


def _cost_lines(table: LinkTable) -> list[str]:
    try:
        a, b = different_pairs(table.source, table.target, len(table.names))
        cost = estimate(len(table.names), a, b)
    except ImportError:
        return ["cost", "  not known: this needs igraph (Debian: apt install python3-igraph)"]
    lines = [
        "cost of a run without -D",
        _row("core number", f"{cost.core_number:,}, of {plural(cost.core_nodes, 'node')}"),
        _row("largest clique", _clique_range(cost)),
        _row("maximal cliques", f"about {_rounded(cost.cliques)}, by a sample of the search"),
    ]
    return lines + [f"  {line}" for line in _advice(table, cost)]


def _clique_range(cost: Cost) -> str:
    if cost.clique_found == cost.clique_bound:
        return f"{cost.clique_bound} nodes"
    return f"{cost.clique_found} to {cost.clique_bound} nodes"


def _rounded(value: float) -> str:
    """Two digits: the estimate has no more."""
    if value < 100:
        return f"{value:.0f}"
    return f"{int(float(f'{value:.1e}')):,}"


def _advice(table: LinkTable, cost: Cost) -> list[str]:
    if cost.clique_bound < 3:
        return ["there is no triangle, so there are no communities"]
    if cost.cliques <= _QUICK:
        return ["a run at all k is a matter of seconds or a few minutes"]
    if cost.cliques <= _HOPELESS:
        lines = [
            "a run at all k takes long and gigabytes of memory; -k 4 (one k) takes far less",
        ]
    else:
        lines = [
            "a run may not end: there are too many cliques, not too many links",
            "-t 0.01 -k 4 gives up a node after a hundredth of a second, approximates what is left "
            "and finds the communities of one k; see how many nodes that skips",
        ]
    threshold = _threshold(table)
    if threshold is not None:
        weight, kept, cliques = threshold
        lines.append(
            f"-w {number_text(weight)} keeps {plural(kept, 'link')} with about "
            f"{_rounded(cliques)} maximal cliques"
        )
    elif table.weight is None:
        lines.append("with weights, -w could drop the weak links first")
    return lines


def _threshold(table: LinkTable) -> tuple[float, int, float] | None:
    """The lowest of some weights such that a run on the links above it is quick: the weight, how
    many links are above it, the estimated number of cliques."""
    if table.weight is None or not len(table):
        return None
    shares = [0.0, 0.1, 0.25, 0.5, 0.75, 0.9, 0.95, 0.99]
    weights = sorted({float(w) for w in np.quantile(table.weight, shares, method="lower")})
    for weight in weights:
        kept = table.weight > weight
        a, b = different_pairs(table.source[kept], table.target[kept], len(table.names))
        if len(a) == 0:
            return None
        cost = estimate(len(table.names), a, b)
        if cost.cliques <= _QUICK:
            return weight, int(kept.sum()), cost.cliques
    return None
