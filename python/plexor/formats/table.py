# SPDX-License-Identifier: MIT
"""The links of a file, and what goes wrong with reading them."""

from __future__ import annotations

from dataclasses import dataclass, field

import numpy as np
import numpy.typing as npt

Nodes = npt.NDArray[np.uint32]
Weights = npt.NDArray[np.float64]


class FormatError(ValueError):
    """A file that cannot be read, or that could be read in more than one way.

    The text says where (line and column, counted from 1) and which option decides.
    """

    def __init__(self, what: str, line: int | None = None, column: int | None = None) -> None:
        self.what = what
        self.line = line
        self.column = column
        where = "" if line is None else f"line {line}"
        if column is not None:
            where += f", column {column}"
        super().__init__(f"{where}: {what}" if where else what)


def long_line(longest: int, line: int) -> FormatError:
    """What is said of a line that is no line of a table."""
    return FormatError(f"a line of more than {longest:,} bytes; this is no table of links", line)


@dataclass
class LinkTable:
    """Links as the file has them: in its order, repeated ones and self-links among them.

    ``names[i]`` is the name of node i, all different, in order of first appearance where the
    format has an order. Bytes that are not UTF-8 are kept as surrogates ("surrogateescape").
    ``source`` and ``target`` are positions in ``names``; ``weight`` is None without weights.
    ``directed`` is None where the format does not tell. ``said`` are sentences for the user:
    what was recognised, what was skipped and how often. ``passed_over_here_alone`` counts the
    lines among these that the program does not skip.
    """

    format: str
    names: list[str]
    source: Nodes
    target: Nodes
    weight: Weights | None
    directed: bool | None = None
    said: list[str] = field(default_factory=list)
    passed_over_here_alone: int = 0

    def __len__(self) -> int:
        return len(self.source)


def table_of_edges(
    format: str,
    names: list[str],
    edges: list[tuple[int, int]],
    weights: list[float] | None,
    directed: bool | None,
    said: list[str],
) -> LinkTable:
    """A LinkTable of pairs of positions."""
    pairs = np.array(edges, dtype=np.uint32).reshape(-1, 2)
    return LinkTable(
        format,
        names,
        np.ascontiguousarray(pairs[:, 0]),
        np.ascontiguousarray(pairs[:, 1]),
        None if weights is None else np.array(weights, dtype=np.float64),
        directed,
        said,
    )
