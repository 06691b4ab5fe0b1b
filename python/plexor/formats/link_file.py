# SPDX-License-Identifier: MIT
"""Writes link files: what `plexor` reads, without anything that it could take for something else."""

from __future__ import annotations

from dataclasses import dataclass
from typing import BinaryIO

import numpy as np

from plexor.formats.escape import MARKER, escape, needs_escape
from plexor.formats.table import FormatError, LinkTable

_LINKS_AT_ONCE = 1 << 17


@dataclass
class Written:
    """What became of a table in a link file."""

    links: int
    self_links: int
    isolated: int
    escaped: bool


def number_text(value: float) -> str:
    """The shortest text that reads back as the same double; whole numbers without a point."""
    text = repr(float(value))
    return text[:-2] if text.endswith(".0") else text


def names_for_links(table: LinkTable) -> list[str]:
    """The names as a link file has them: all escaped where the name of a linked node needs it."""
    other = table.source != table.target
    used = np.zeros(len(table.names), dtype=bool)
    used[table.source[other]] = True
    used[table.target[other]] = True
    if any(needs_escape(name) for name, is_used in zip(table.names, used) if is_used):
        return [escape(name) for name in table.names]
    # Names that no link has may be anything; the engine wants words.
    return [name if is_used else escape(name) for name, is_used in zip(table.names, used)]


def write_link_file(table: LinkTable, stream: BinaryIO) -> Written:
    """Writes the links in their order, with weights if there are, without self-links.

    Where a name needs it all names are escaped and MARKER comes first. Raises FormatError for a
    weight that `plexor` could not read.
    """
    self_links = table.source == table.target
    kept = ~self_links
    source, target = table.source[kept], table.target[kept]
    used = np.zeros(len(table.names), dtype=bool)
    used[source] = True
    used[target] = True
    escaped = any(needs_escape(name) for name, is_used in zip(table.names, used) if is_used)
    texts = [escape(name) for name in table.names] if escaped else table.names
    names = np.array(
        [text.encode("utf-8", "surrogateescape") for text in texts] or [b""], dtype=object
    )
    if escaped:
        stream.write(MARKER.encode() + b"\n")
    weights = None
    if table.weight is not None:
        weights = table.weight[kept]
        if not np.isfinite(weights).all():
            raise FormatError("a weight is not finite")
    for first in range(0, len(source), _LINKS_AT_ONCE):
        part = slice(first, first + _LINKS_AT_ONCE)
        ends = zip(names[source[part]], names[target[part]])
        if weights is None:
            lines = [b"%b %b\n" % pair for pair in ends]
        else:
            texts_of = [number_text(weight).encode() for weight in weights[part].tolist()]
            lines = [b"%b %b %b\n" % (a, b, w) for (a, b), w in zip(ends, texts_of)]
        stream.write(b"".join(lines))
    return Written(len(source), int(self_links.sum()), int((~used).sum()), escaped)
