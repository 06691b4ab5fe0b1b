# SPDX-License-Identifier: MIT
"""Files of networks: what they are, what links they hold, and the clean link file made of them."""

from __future__ import annotations

from dataclasses import dataclass, replace

from plexor.formats.edge_list import LONGEST_LINE, Dialect, read_edge_list
from plexor.formats.escape import MARKER, carries_marker, escape, unescape
from plexor.formats.link_file import write_link_file
from plexor.formats.options import DELIMITERS, FORMATS, ReadOptions
from plexor.formats.recognise import Recognition, recognise, refuse_metis_lookalike
from plexor.formats.source import Source, open_source
from plexor.formats.table import FormatError, LinkTable

__all__ = [
    "DELIMITERS",
    "FORMATS",
    "MARKER",
    "Dialect",
    "FormatError",
    "LinkTable",
    "ReadOptions",
    "Reading",
    "Recognition",
    "Source",
    "carries_marker",
    "escape",
    "open_source",
    "read",
    "recognise",
    "unescape",
    "write_link_file",
]


@dataclass
class Reading:
    """An input that was read: where from, what it is, the links."""

    source: Source
    recognition: Recognition
    table: LinkTable


def read(name: str, options: ReadOptions | None = None) -> Reading:
    """Reads the links of a file (``-``: standard input) in any of FORMATS, plain or gzipped.

    ``table.said`` tells all that was recognised and skipped. Raises OSError when the file
    cannot be opened or read, FormatError when it is damaged, none of the formats, or could be
    read in more than one way.
    """
    options = options or ReadOptions()
    source = open_source(name)
    recognition = recognise(source, options)
    table = recognition.format in ("edges", "links")
    data = source.read(LONGEST_LINE if table else None)
    if b"\0" in data:
        line = data[: data.index(b"\0")].count(b"\n") + 1
        raise FormatError(f"'{name}' is no text: there is a zero byte", line)
    if recognition.format == "edges" and options.format is None and not source.whole:
        refuse_metis_lookalike(data)
    links = _read_as(recognition, data, options)
    links.said[:0] = source.said + recognition.said
    return Reading(source, recognition, links)


def _read_as(recognition: Recognition, data: bytes, options: ReadOptions) -> LinkTable:
    # The readers for what most files are not are imported when they are needed.
    if recognition.format in ("edges", "links"):
        return replace(
            read_edge_list(data, recognition.dialect), directed=recognition.directed
        )
    if recognition.format == "sif":
        from plexor.formats.sif import read_sif

        return read_sif(data)
    if recognition.format == "metis":
        from plexor.formats.metis import read_metis

        return read_metis(data)
    if recognition.format == "mtx":
        from plexor.formats.matrix_market import read_matrix_market

        table = read_matrix_market(data)
        return replace(table, weight=None) if options.weight_column == "none" else table
    from plexor.formats import graph_files

    readers = {
        "graphml": graph_files.read_graphml,
        "gexf": graph_files.read_gexf,
        "gml": graph_files.read_gml,
        "pajek": graph_files.read_pajek,
    }
    return readers[recognition.format](data, options)
