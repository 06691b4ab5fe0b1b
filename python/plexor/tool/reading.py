# SPDX-License-Identifier: MIT
"""The options of a command that reads a network, and saying what was read."""

from __future__ import annotations

import argparse

import numpy as np

from plexor.formats import DELIMITERS, FORMATS, LinkTable, Reading, ReadOptions, read
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
