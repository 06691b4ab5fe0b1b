# SPDX-License-Identifier: MIT
"""What the user decides about an input; everything else is recognised."""

from __future__ import annotations

from dataclasses import dataclass

#: The formats by the names that --format takes.
FORMATS: dict[str, str] = {
    "edges": "edge list: one link per line, in fields between blanks, tabs, commas or semicolons",
    "links": "link file as plexor reads it",
    "sif": "SIF (Cytoscape)",
    "metis": "METIS graph",
    "mtx": "Matrix Market",
    "pajek": "Pajek network",
    "gml": "GML",
    "graphml": "GraphML",
    "gexf": "GEXF",
}

DELIMITERS: dict[str, bytes | None] = {
    "blanks": None,
    "tab": b"\t",
    "comma": b",",
    "semicolon": b";",
}


@dataclass(frozen=True)
class ReadOptions:
    """Choices for reading an input; None leaves the choice to recognition.

    ``format`` and ``delimiter`` are keys of FORMATS and DELIMITERS. Columns are numbers from 1 or
    names of the header; ``weight_column`` may be "none", and is the name of the attribute in
    formats that have attributes. ``comment`` holds comment signs, or "none". ``name_attribute``
    is the node attribute that names nodes.
    """

    format: str | None = None
    delimiter: str | None = None
    header: bool | None = None
    source_column: str | None = None
    target_column: str | None = None
    weight_column: str | None = None
    comment: str | None = None
    decimal: str | None = None
    quotes: bool | None = None
    name_attribute: str | None = None

    @property
    def columns_given(self) -> bool:
        """Whether both ends of a link were named."""
        return self.source_column is not None and self.target_column is not None
