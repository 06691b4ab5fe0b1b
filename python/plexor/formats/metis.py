# SPDX-License-Identifier: MIT
"""Reads METIS graphs: a line of counts, then for each node a line with its neighbours.

    n m [fmt [ncon]]
    [size] [ncon weights] neighbour [weight] neighbour [weight] ...

``fmt`` has three digits: sizes of nodes, weights of nodes, weights of links are given. Lines that
begin with % are comments; a blank line is a node without links. Each link stands twice.
"""

from __future__ import annotations

import re

from plexor.formats.table import FormatError, LinkTable, table_of_edges


def read_metis(data: bytes) -> LinkTable:
    """The links of a METIS graph, each once; nodes are named by their numbers from 1.

    Raises FormatError with the line when counts, ranges or the two directions disagree.
    """
    lines = [
        (number, line)
        for number, line in enumerate(data.removesuffix(b"\n").split(b"\n"), 1)
        if not line.lstrip().startswith(b"%")
    ]
    while lines and not lines[0][1].strip():
        lines.pop(0)
    if not lines:
        raise FormatError("METIS: there is no line of counts")
    at, head = lines[0]
    counts = head.split()
    if not 2 <= len(counts) <= 4 or not all(re.fullmatch(rb"[0-9]{1,12}", c) for c in counts):
        raise FormatError("METIS: the first line has two to four numbers", at)
    n_nodes, n_links = int(counts[0]), int(counts[1])
    flags = counts[2].rjust(3, b"0") if len(counts) > 2 else b"000"
    if len(flags) != 3 or set(flags) - set(b"01"):
        raise FormatError(f"METIS: the format '{counts[2].decode()}' is not of 0 and 1", at, 3)
    has_size, has_node_weight, weighted = (flag == ord("1") for flag in flags)
    n_weights = int(counts[3]) if len(counts) > 3 else 1
    skipped = has_size + (n_weights if has_node_weight else 0)
    rows = lines[1:]
    while len(rows) > n_nodes and not rows[-1][1].strip():
        rows.pop()
    if len(rows) != n_nodes:
        raise FormatError(f"METIS: {len(rows):,} lines of nodes where {n_nodes:,} are announced", at)
    names = [str(node) for node in range(1, n_nodes + 1)]
    seen: dict[tuple[int, int], tuple[bytes, int]] = {}
    edges, weights = [], []
    for node, (number, line) in enumerate(rows):
        fields = line.split()
        step = 2 if weighted else 1
        if len(fields) < skipped or (len(fields) - skipped) % step:
            raise FormatError(f"METIS: {len(fields)} numbers do not fit the format", number)
        for place in range(skipped, len(fields), step):
            text = fields[place]
            if not re.fullmatch(rb"[0-9]{1,12}", text) or not 1 <= int(text) <= n_nodes:
                shown = text[:30].decode("utf-8", "replace")
                raise FormatError(
                    f"METIS: '{shown}' is no node from 1 to {n_nodes}", number, place + 1
                )
            other = int(text) - 1
            weight = fields[place + 1] if weighted else b"1"
            if not re.fullmatch(rb"[0-9]+(\.[0-9]+)?", weight):
                raise FormatError("METIS: a weight is no number", number, place + 2)
            if other == node:
                raise FormatError("METIS: a node is its own neighbour", number, place + 1)
            if (node, other) in seen:
                raise FormatError(f"METIS: the neighbour {other + 1} stands twice", number)
            seen[node, other] = (weight, number)
            if node < other:
                edges.append((node, other))
                weights.append(float(weight))
    for (node, other), (weight, number) in seen.items():
        back = seen.get((other, node))
        if back is None or back[0] != weight:
            raise FormatError(
                f"METIS: the link {node + 1} - {other + 1} stands in one of its two lines only, "
                "or with another weight",
                number,
            )
    if len(edges) != n_links:
        raise FormatError(f"METIS: {len(edges):,} links where {n_links:,} are announced", at, 2)
    said = [f"METIS: {n_nodes:,} nodes by number from 1, each link once"]
    if skipped:
        said.append("sizes and weights of nodes skipped")
    return table_of_edges("METIS", names, edges, weights if weighted else None, False, said)
