# SPDX-License-Identifier: MIT
"""`plexor-tool export`: the results of a run in the formats of other programs."""

from __future__ import annotations

import argparse
import os
from pathlib import Path

from plexor.errors import ResultError
from plexor.formats.exports import EXPORTS, ExportOptions, is_formula
from plexor.formats.results_view import View, shown_names
from plexor.results import Result, load
from plexor.tool.console import Console, ToolError, UsageError, output_file, refuse_existing
from plexor.tool.reading import plural


def add_arguments(parser: argparse.ArgumentParser) -> None:
    """The command's arguments."""
    parser.add_argument("directory", metavar="DIR", help="the directory that a run has left")
    parser.add_argument(
        "-f",
        "--format",
        metavar="FORMAT[,FORMAT...]",
        required=True,
        help="; ".join(f"{name}: {format.what}" for name, format in EXPORTS.items())
        + "; all: all of these",
    )
    parser.add_argument(
        "-k", type=int, metavar="K", help="the communities at this k alone (default: at all k)"
    )
    parser.add_argument(
        "-o",
        "--output",
        metavar="FILE",
        default="-",
        help="the file to write (default: -, standard output); with several files to write, "
        "or with a / at its end, a directory for them",
    )
    parser.add_argument(
        "-O", "--overwrite", action="store_true", help="replace files that are there"
    )
    parser.add_argument(
        "--names",
        choices=["auto", "raw", "unescape"],
        default="auto",
        help="whether %%XX in names is undone; auto: where the run's link file says that names are "
        "escaped",
    )
    parser.add_argument(
        "--uncovered",
        choices=["drop", "singletons"],
        default="drop",
        help="nodes in no community are left out (drop), or are communities of their own, in "
        "formats that list communities",
    )
    parser.add_argument(
        "--formulas",
        choices=["guard", "keep"],
        default="guard",
        help="names in CSV that a spreadsheet would compute get a ' in front (guard) or stay",
    )


def execute(arguments: argparse.Namespace, console: Console) -> int:
    """Writes the exports; each file is there whole or not at all."""
    formats = _formats(arguments.format)
    singletons = arguments.uncovered == "singletons"
    if singletons and not any(EXPORTS[name].lists_communities for name in formats):
        shown = ", ".join(name for name, format in EXPORTS.items() if format.lists_communities)
        raise UsageError(f"--uncovered singletons is for formats that list communities: {shown}")
    try:
        result = load(arguments.directory)
        ks = _levels(result, arguments.k)
        _write_all(result, ks, formats, arguments, console)
    except ResultError as error:
        raise ToolError(str(error)) from error
    return 0


def _formats(text: str) -> list[str]:
    names = list(EXPORTS) if text == "all" else text.split(",")
    for name in names:
        if name not in EXPORTS:
            raise UsageError(f"there is no format '{name}'; there are: {', '.join(EXPORTS)}, all")
    return list(dict.fromkeys(names))


def _levels(result: Result, k: int | None) -> list[int]:
    if k is None:
        return result.ks
    if k not in result:
        there = ", ".join(map(str, sorted(result.ks))) or "none"
        raise ToolError(f"the run has no communities at k={k}; there are: {there}")
    return [k]


def _unescaped(result: Result, choice: str, format: str) -> bool:
    if choice == "auto":
        # A line of names is cut at blanks, so names stay as the link file has them.
        return result.escaped and format != "communities"
    return choice == "unescape"


def _documents(ks: list[int], formats: list[str]) -> list[tuple[str, list[int], str]]:
    """The files to write: format, levels, name."""
    documents = []
    for name in formats:
        format = EXPORTS[name]
        if not format.one_k:
            documents.append((name, ks, format.file))
            continue
        stem, ending = os.path.splitext(format.file)
        for k in ks:
            documents.append((name, [k], f"{stem}-k{k}{ending}" if len(ks) > 1 else format.file))
    return documents


def _write_all(
    result: Result,
    ks: list[int],
    formats: list[str],
    arguments: argparse.Namespace,
    console: Console,
) -> None:
    documents = _documents(ks, formats)
    if not documents:
        raise ToolError("the run has no communities at any k")
    output = arguments.output
    directory = None
    if output.endswith("/") or (output != "-" and Path(output).is_dir()):
        directory = Path(output)
    elif len(documents) > 1:
        if output == "-" or Path(output).exists():
            raise UsageError(
                f"this makes {len(documents)} files; -o DIRECTORY/ takes them, -k chooses one k"
            )
        directory = Path(output)
    if directory is not None:
        for _, _, name in documents:
            refuse_existing(directory / name, arguments.overwrite)
        directory.mkdir(parents=True, exist_ok=True)
    options = ExportOptions(arguments.uncovered == "singletons", arguments.formulas == "guard")
    views: dict[tuple[bool, tuple[int, ...]], View] = {}
    for name, levels, file in documents:
        unescaped = _unescaped(result, arguments.names, name)
        key = (unescaped, tuple(levels))
        if key not in views:
            try:
                views[key] = View(result, levels, shown_names(result, unescaped))
            except ValueError as error:
                raise ToolError(f"{error}; --names raw leaves names as they are") from error
        target = output if directory is None else str(directory / file)
        with output_file(target, arguments.overwrite) as stream:
            EXPORTS[name].write(views[key], stream, options)
        if target != "-":
            console.say(f"{target} written")
        _say_peculiarities(name, views[key], options, console)


def _say_peculiarities(name: str, view: View, options: ExportOptions, console: Console) -> None:
    if EXPORTS[name].file.endswith(".csv") and options.guard_formulas:
        guarded = sum(map(is_formula, view.names))
        if guarded:
            console.say(
                f"{name}: {plural(guarded, 'name')} that a spreadsheet would compute got a ' in "
                "front; --formulas keep leaves them"
            )
    if name == "communities":
        level = view.result[view.ks[0]]
        approximated = len(level) - level.n_exact
        if approximated:
            console.say(
                f"{name}: the last {plural(approximated, 'community', 'communities')} of "
                f"{len(level):,} at k={level.k} are approximated; the format cannot say so"
            )
