# SPDX-License-Identifier: MIT
"""`plexor-tool convert`: a clean link file of any network file."""

from __future__ import annotations

import argparse

from plexor.formats import write_link_file
from plexor.tool.console import Console, ToolError, output_file
from plexor.tool.reading import add_reading_arguments, read_network, say_written


def add_arguments(parser: argparse.ArgumentParser) -> None:
    """The command's arguments."""
    parser.add_argument("file", metavar="FILE", help="the network; - is standard input")
    parser.add_argument(
        "-o",
        "--output",
        metavar="FILE",
        default="-",
        help="the link file to write (default: -, standard output)",
    )
    parser.add_argument(
        "-O", "--overwrite", action="store_true", help="replace the output if it is there"
    )
    add_reading_arguments(parser)


def execute(arguments: argparse.Namespace, console: Console) -> int:
    """Converts the file; nothing is written before all of it was read."""
    reading = read_network(arguments.file, arguments, console)
    if not (reading.table.source != reading.table.target).any():
        raise ToolError("there is no link between two different nodes in this file")
    with output_file(arguments.output, arguments.overwrite) as stream:
        written = write_link_file(reading.table, stream)
    say_written(reading.table, written, console)
    if reading.table.directed:
        console.say("the links are directed: plexor needs -D to see that")
    return 0
