# SPDX-License-Identifier: MIT
"""The options of a command that reads a network, and saying what was read."""

from __future__ import annotations

import argparse

import numpy as np

from plexor.formats import DELIMITERS, FORMATS, LinkTable, Reading, ReadOptions, escape, read
from plexor.formats.escape import needs_escape
from plexor.formats.link_file import Written
from plexor.tool.console import Console


def add_reading_arguments(parser: argparse.ArgumentParser, short: bool = True) -> None:
    """Adds what decides how a network is read; `short` gives --format its short name."""
    group = parser.add_argument_group(
        "how to read the file", "All of this is recognised, and asked for where it is not sure."
    )
    group.add_argument(
        *(["-f"] if short else []),
        "--format",
        choices=list(FORMATS),
        help="; ".join(f"{name}: {what}" for name, what in FORMATS.items()),
    )
    group.add_argument("--delimiter", choices=list(DELIMITERS), help="what separates fields")
    group.add_argument("--header", choices=["yes", "no"], help="whether the first line names columns")
    group.add_argument("--source-column", metavar="COLUMN", help="where links begin: number or name")
    group.add_argument("--target-column", metavar="COLUMN", help="where links end: number or name")
    group.add_argument(
        "--weight-column",
        metavar="COLUMN",
        help="weights: number, name (of an attribute in formats that have them), or none",
    )
    group.add_argument(
        "--comment", metavar="SIGNS", help="a line that begins with one is a comment; none: none is"
    )
    group.add_argument("--decimal", choices=[".", ","], help="the decimal sign of weights")
    group.add_argument(
        "--quotes", choices=["yes", "no"], help='whether "..." encloses fields (tables)'
    )
    group.add_argument(
        "--name-attribute", metavar="NAME", help="the node attribute that names nodes"
    )


def _yes(choice: str | None) -> bool | None:
    return None if choice is None else choice == "yes"


def read_options(arguments: argparse.Namespace) -> ReadOptions:
    """The choices of the command line."""
    return ReadOptions(
        format=arguments.format,
        delimiter=arguments.delimiter,
        header=_yes(arguments.header),
        source_column=arguments.source_column,
        target_column=arguments.target_column,
        weight_column=arguments.weight_column,
        comment=arguments.comment,
        decimal=arguments.decimal,
        quotes=_yes(arguments.quotes),
        name_attribute=arguments.name_attribute,
    )


def plural(count: int, one: str, many: str | None = None) -> str:
    """'1 link', '2,000 links'."""
    return f"{count:,} {one if count == 1 else many or one + 's'}"


def read_network(file: str, arguments: argparse.Namespace, console: Console) -> Reading:
    """Reads the file as the command line says, and tells the user what was recognised."""
    reading = read(file, read_options(arguments))
    shown = "standard input" if file == "-" else file
    for sentence in reading.table.said:
        console.say(f"{shown}: {sentence}")
    return reading


def say_written(table: LinkTable, written: Written, console: Console) -> None:
    """Tells what became of the links in the link file."""
    console.say(
        f"{plural(written.links, 'link')} written"
        + (" with weights" if table.weight is not None else "")
    )
    if written.self_links:
        console.say(f"{plural(written.self_links, 'link')} of a node with itself dropped")
    if written.isolated:
        console.say(f"{plural(written.isolated, 'node')} without a link to another dropped")
    if "" in table.names:
        console.say("an empty name is a node's name here; it is written as %")
    if written.escaped:
        console.say(
            "names that a link file cannot hold are written with %XX for their bytes; "
            "'plexor-tool export' brings them back"
        )


def repeated_links(table: LinkTable) -> tuple[int, int, int]:
    """Of the links between different nodes: different ones, those whose reverse is there as well
    (both counted), and different pairs."""
    other = table.source != table.target
    source = table.source[other].astype(np.uint64)
    target = table.target[other].astype(np.uint64)
    size = np.uint64(max(1, len(table.names)))
    links = np.unique(source * size + target)
    pairs = np.unique(np.minimum(source, target) * size + np.maximum(source, target))
    return len(links), 2 * (len(links) - len(pairs)), len(pairs)


def reasons_to_convert(reading: Reading) -> list[str]:
    """What stands between the file and `plexor`, one sentence each; empty when nothing does."""
    source, table = reading.source, reading.table
    reasons = []
    if source.name == "-":
        reasons.append("it reads files only, not standard input")
    if source.packed:
        reasons.append("the file is packed by gzip")
    if source.byte_order_mark:
        reasons.append("the byte order mark would become part of the first name")
    if reading.recognition.format not in ("edges", "links"):
        reasons.append(f"the format is {table.format}: lines would be refused, or taken for links")
        return reasons
    dialect = reading.recognition.dialect
    if dialect.header:
        reasons.append("the header would become a link")
    if dialect.delimiter is not None and dialect.delimiter != b"\t":
        sign = dialect.delimiter.decode()
        reasons.append(f"fields are separated by '{sign}', which it takes for a part of names")
    columns = (dialect.source, dialect.target, dialect.weight)
    if columns[:2] != (0, 1) or columns[2] not in (None, 2):
        shown = ", ".join(str(column + 1) for column in columns if column is not None)
        reasons.append(f"it reads the columns 1, 2 and 3; the network is in {shown}")
    if b"%" in dialect.comment and not dialect.escaped:
        reasons.append("comment lines that begin with % would become links")
    elif dialect.comment != b"#":
        reasons.append("it takes lines that begin with # for comments, and no others")
    if dialect.quotes and b'"' in source.head:
        reasons.append("quotation marks would become parts of names")
    if dialect.decimal_comma:
        reasons.append("of weights with a decimal comma it reads what stands before the comma")
    if not dialect.escaped:
        awkward = [name for name in table.names if needs_escape(name)]
        if awkward:
            reasons.append(
                f"{plural(len(awkward), 'name')} cannot stand in a link file, the first is "
                f"'{awkward[0]}' (written as {escape(awkward[0])})"
            )
    if table.passed_over_here_alone and dialect.comment == b"#":
        reasons.append(
            "a blank line, or a single character before a carriage return, ends its reading with "
            "an error"
        )
    return reasons
