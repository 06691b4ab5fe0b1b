# SPDX-License-Identifier: MIT
"""Reads SIF, Cytoscape's simple interaction format: ``source type target [target ...]``.

Fields are separated by tabs if a tab occurs in the file, else by blanks. A line with one field is
a node without links.
"""

from __future__ import annotations

from plexor.formats.table import FormatError, LinkTable, table_of_edges


def read_sif(data: bytes) -> LinkTable:
    """The links of a SIF file in its order, without weights. Raises FormatError with the line."""
    tabs = b"\t" in data
    numbers: dict[str, int] = {}
    linked: set[int] = set()
    edges = []
    types: dict[str, int] = {}
    for at, raw in enumerate(data.split(b"\n"), 1):
        line = raw.rstrip(b"\r")
        if not line.strip():
            continue
        text = line.decode("utf-8", "surrogateescape")
        fields = [field.strip(" ") for field in text.split("\t")] if tabs else _words(text)
        while len(fields) > 3 and not fields[-1]:
            fields.pop()  # tabs at the end of a line
        if len(fields) == 2:
            raise FormatError(
                "two fields; SIF has one (a node), or three and more (source, type, targets); "
                "--format edges reads a table",
                at,
            )
        source = numbers.setdefault(fields[0], len(numbers))
        if len(fields) > 2:
            types[fields[1]] = types.get(fields[1], 0) + 1
        for name in fields[2:]:
            target = numbers.setdefault(name, len(numbers))
            edges.append((source, target))
            linked.update((source, target))
    said = []
    if types:
        shown = ", ".join(f"{kind} ({count:,})" for kind, count in list(types.items())[:5])
        more = f" and {len(types) - 5} more" if len(types) > 5 else ""
        said.append(f"SIF: types of links, all read alike: {shown}{more}")
    return table_of_edges("SIF", list(numbers), edges, None, None, said)


def _words(text: str) -> list[str]:
    return [word for word in text.replace("\r", " ").split(" ") if word]
