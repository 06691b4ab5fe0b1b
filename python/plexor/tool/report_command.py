# SPDX-License-Identifier: MIT
"""`plexor-tool report`: one page with the results of a run."""
from __future__ import annotations

import argparse
import sys
from pathlib import Path

from plexor.tool.console import Console, ToolError, refuse_existing


def add_arguments(parser: argparse.ArgumentParser) -> None:
    """The options of the command."""
    parser.add_argument("directory", metavar="DIR", help="the result directory of a run")
    parser.add_argument("-o", "--output", metavar="FILE", help="the page; - is standard output (default: DIR.html)")
    parser.add_argument("-O", "--overwrite", action="store_true", help="replace the page if it is there")
    parser.add_argument("-k", type=int, action="append", metavar="K", help="only this k; may be repeated")
    parser.add_argument("--title", help="heading of the page (default: the name of the link file)")
    parser.add_argument("--names", choices=["unescape", "raw"], help="undo %%XX in names, or leave them (default: undo if the link file says that its names are escaped)")


def execute(arguments: argparse.Namespace, console: Console) -> int:
    """Makes the page; returns the exit status. ToolError and OSError say why it could not."""
    import plexor
    from plexor.report import make_report
    from plexor.report.page import write_whole

    directory = Path(arguments.directory)
    output = arguments.output or f"{directory.resolve()}.html"
    if output != "-":
        refuse_existing(Path(output), arguments.overwrite)
    unescape = None if arguments.names is None else arguments.names == "unescape"
    try:
        report = make_report(plexor.load(directory), title=arguments.title, ks=arguments.k, unescape=unescape,
                             progress=console.detail)
    except plexor.PlexorError as error:
        raise ToolError(str(error)) from error
    except KeyError as error:
        raise ToolError(str(error.args[0])) from error
    if output == "-":
        sys.stdout.buffer.write(report.content)
        sys.stdout.buffer.flush()
    else:
        write_whole(output, report.content)
        console.say(f"{output}: {len(report.content):,} bytes; open it with a browser")
    for text in report.left_out:
        console.say(f"left out, as pages hold at most 20 MB: {text}")
    return 0
