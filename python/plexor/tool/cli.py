# SPDX-License-Identifier: MIT
"""The command line of `plexor-tool`.

A command is a module with two functions: ``add_arguments(parser)`` and
``execute(arguments, console) -> status``. Its module is imported when the command is used, so that
`plexor-tool check` does not wait for what only another command needs.
"""

from __future__ import annotations

import argparse
import errno
import importlib
import os
import sys
from collections.abc import Sequence

from plexor.formats.table import FormatError
from plexor.tool.console import Console, ToolError, UsageError

#: The commands: name, module, what it does in one line.
COMMANDS: dict[str, tuple[str, str]] = {
    "check": ("plexor.tool.check", "say what a network file is, what is in it, what a run costs"),
    "convert": ("plexor.tool.convert", "make a clean link file of a network file"),
    "run": ("plexor.tool.run", "find the communities of a network, whatever its format"),
    "export": ("plexor.tool.export", "write the results of a run in another format"),
    "report": ("plexor.tool.report_command", "make a page of the results of a run"),
    "sweep": ("plexor.tool.sweep_command", "try thresholds and k, and say where to look"),
    "compare": ("plexor.tool.compare_command", "say how alike results are, or what changes over time"),
}

EXIT_GOOD, EXIT_FAILED, EXIT_USAGE, EXIT_INTERRUPTED = 0, 1, 2, 130


def version() -> str:
    """The version of Plexor that this belongs to."""
    try:
        from importlib.metadata import version as installed

        return installed("plexor")
    except Exception:
        return "(not installed)"


class _Parser(argparse.ArgumentParser):
    """Says errors as the rest of the tool does."""

    def error(self, message: str) -> None:  # type: ignore[override]
        self.print_usage(sys.stderr)
        Console().error(f"{message}\nTry '{self.prog} --help'.")
        raise SystemExit(EXIT_USAGE)


def add_common_arguments(parser: argparse.ArgumentParser) -> None:
    """The options that every command has."""
    parser.add_argument("-q", "--quiet", action="store_true", help="say nothing but errors")
    parser.add_argument("-v", "--verbose", action="store_true", help="say more")


def command_parser(name: str, prog: str = "plexor-tool") -> argparse.ArgumentParser:
    """The parser of one command."""
    module_name, does = COMMANDS[name]
    parser = _Parser(
        prog=f"{prog} {name}",
        description=does[0].upper() + does[1:] + ".",
        formatter_class=argparse.RawDescriptionHelpFormatter,
        allow_abbrev=False,
    )
    add_common_arguments(parser)
    importlib.import_module(module_name).add_arguments(parser)
    return parser


def _overview() -> str:
    width = max(map(len, COMMANDS))
    lines = ["usage: plexor-tool COMMAND ... ", "", "What stands before and after a run of plexor.", ""]
    lines += [f"  {name:<{width}}  {does}" for name, (_, does) in COMMANDS.items()]
    lines += [
        "",
        "'plexor-tool COMMAND --help' lists the options of a command.",
        "",
        "  -h, --help  show this text",
        "  --version   show the version",
    ]
    return "\n".join(lines)


def _run_command(name: str, rest: Sequence[str]) -> int:
    parser = command_parser(name)
    arguments = parser.parse_args(rest)
    console = Console(arguments.quiet, arguments.verbose)
    try:
        status: int = importlib.import_module(COMMANDS[name][0]).execute(arguments, console)
        sys.stdout.flush()
        return status
    except UsageError as error:
        console.error(f"{error}\nTry '{parser.prog} --help'.")
        return EXIT_USAGE
    except (ToolError, FormatError) as error:
        console.error(str(error))
    except BrokenPipeError:
        console.error("standard output was closed before all was written")
    except MemoryError:
        console.error("there is not enough memory for this network")
    except OSError as error:
        # The name of a temporary file beside the output tells nobody anything.
        shown = error.filename if error.errno != errno.ENOSPC else None
        where = f"'{os.fsdecode(shown)}': " if isinstance(shown, (str, bytes)) else ""
        console.error(f"{where}{error.strerror or error}")
    except ImportError as error:
        console.error(
            f"this needs the Python module '{error.name}', which is not there "
            f"(Debian: apt install python3-{(error.name or '').split('.')[0]})"
        )
    except KeyboardInterrupt:
        console.error("interrupted")
        return EXIT_INTERRUPTED
    _silence_stdout()
    return EXIT_FAILED


def _silence_stdout() -> None:
    """Keeps the interpreter from complaining about a closed or full standard output at its end."""
    try:
        sys.stdout.flush()
    except (OSError, ValueError):
        os.dup2(os.open(os.devnull, os.O_WRONLY), 1)


def main(arguments: Sequence[str] | None = None) -> int:
    """Runs the command line (without the program's name); returns the exit status."""
    given = list(sys.argv[1:] if arguments is None else arguments)
    if not given:
        print(_overview(), file=sys.stderr)
        return EXIT_USAGE
    name, *rest = given
    if name in ("-h", "--help", "help"):
        print(_overview())
        return EXIT_GOOD
    if name == "--version":
        print(f"plexor-tool {version()}")
        return EXIT_GOOD
    if name not in COMMANDS:
        Console().error(f"there is no command '{name}'; there are: {', '.join(COMMANDS)}")
        return EXIT_USAGE
    try:
        return _run_command(name, rest)
    except SystemExit as end:  # argparse: help, or wrong arguments
        return end.code if isinstance(end.code, int) else EXIT_USAGE
