# SPDX-License-Identifier: MIT
"""`plexor-tool run`: a run of `plexor` on a network of any format.

Takes    a file, and plexor's switches under their short or long names.
Leaves   the result files of `plexor`, byte for byte. The engine works in this process; a file that
         its own reader would not read rightly is read here, and handed over as arrays.
Safety   what replaces earlier results is made in a directory beside the final one and takes its
         place when it is whole.
"""

from __future__ import annotations

import argparse
import contextlib
import ctypes
import importlib
import json
import os
import re
import shutil
import sys
import tempfile
import time
from collections.abc import Iterator
from dataclasses import dataclass, field
from pathlib import Path
from typing import Any

from plexor.errors import PlexorError, ResultError
from plexor.formats import LinkTable
from plexor.formats.link_file import names_for_links
from plexor.results import load
from plexor.tool.console import Console, ToolError, UsageError, output_file
from plexor.tool.reading import (
    add_reading_arguments,
    plural,
    read_network,
    reasons_to_convert,
)

_NOT_EMPTY = "the output directory already exists and it is non-empty"

# What a run leaves.
_FILES = re.compile(r"input_params\.txt|(directed_)?(graph|cliques)")
_LEVEL = re.compile(r"k=[0-9]+")
_LEVEL_FILES = re.compile(
    r"k-cliques|graph_of_(directed_|intensity_)?communities|(directed_|intensity_)?"
    r"(communities(_cliques|_links)?|(membership|size|overlap|degree)_distribution"
    r"(_merged|_exact|_appr)?)"
)


def add_arguments(parser: argparse.ArgumentParser) -> None:
    """The command's arguments: plexor's switches with long names beside them."""
    parser.add_argument("file", metavar="FILE", help="the network; - is standard input, with -o")
    parser.add_argument("-o", "--output", metavar="DIR", help="the output directory")
    parser.add_argument(
        "-O",
        "--overwrite",
        action="store_true",
        help="replace the output directory, if it holds results and nothing else",
    )
    parser.add_argument(
        "-w", "--lower-weight", metavar="WEIGHT", help="take links above this weight"
    )
    parser.add_argument(
        "-W", "--upper-weight", metavar="WEIGHT", help="take links below this weight"
    )
    parser.add_argument(
        "-d", "--digits", metavar="N", help="digits of thresholds in the directory's name"
    )
    parser.add_argument(
        "-t", "--time-limit", metavar="SECONDS", help="processor time a node in the search"
    )
    parser.add_argument("-D", "--directed", action="store_true", help="directed cliques")
    parser.add_argument("-U", "--undirected", action="store_true", help="undirected cliques")
    parser.add_argument(
        "-I", "--intensity", metavar="WEIGHT", help="k-cliques above this intensity only"
    )
    parser.add_argument("-k", "--clique-size", metavar="K", help="communities at this k alone")
    parser.add_argument(
        "--threads",
        metavar="N",
        default="1",
        help="search on so many threads, then make several k at a time, with the same results; "
        "0 is one thread a processor",
    )
    parser.add_argument(
        "--dask",
        metavar="ADDRESS",
        help="make each k on a worker of this Dask scheduler, with the same results",
    )
    parser.add_argument(
        "--shared",
        metavar="DIR",
        help="with --dask: where the cliques lie meanwhile, for all workers to see",
    )
    parser.add_argument(
        "--summary", metavar="FILE", help="write how the run went and what it found as JSON"
    )
    add_reading_arguments(parser, short=False)


def execute(arguments: argparse.Namespace, console: Console) -> int:
    """Runs; status 0 when everything was found and written, else 1, 130 when interrupted."""
    _check(arguments)
    if arguments.summary not in (None, "-"):
        _refuse_summary_inside(arguments)
    summary = _Summary(arguments)
    try:
        status = _run(arguments, summary, console)
    except KeyboardInterrupt:
        summary.status = "interrupted"
        _write_summary(arguments, summary)
        raise
    except (ToolError, ValueError, OSError) as error:
        summary.status, summary.error = "failed", str(error)
        _write_summary(arguments, summary)
        raise
    _write_summary(arguments, summary)
    return status


class _Summary:
    """What --summary writes."""

    def __init__(self, arguments: argparse.Namespace) -> None:
        self.status = "failed"
        self.error: str | None = None
        self.output: str | None = None
        self.not_written: list[str] = []
        self.found: dict[str, Any] | None = None
        self._begin = time.monotonic()
        self._input = arguments.file

    def text(self) -> str:
        """The JSON."""
        value = {
            "status": self.status,
            "error": self.error,
            "input": _utf8(self._input),
            "output": None if self.output is None else _utf8(self.output),
            "seconds": round(time.monotonic() - self._begin, 3),
            "not_written": [_utf8(path) for path in self.not_written],
            "found": self.found,
        }
        return json.dumps(value, indent=2, ensure_ascii=False) + "\n"


def _utf8(text: str) -> str:
    return text.encode("utf-8", "surrogateescape").decode("utf-8", "replace")


def _write_summary(arguments: argparse.Namespace, summary: _Summary) -> None:
    if arguments.summary is not None:
        with output_file(arguments.summary, True) as stream:
            stream.write(summary.text().encode())


def _number(arguments: argparse.Namespace, name: str, switch: str) -> float | None:
    text = getattr(arguments, name)
    if text is None:
        return None
    try:
        value = float(text)
    except ValueError:
        value = float("nan")
    if value != value or abs(value) == float("inf"):
        raise UsageError(f"{switch} takes a number, not '{text}'")
    return value


def _check(arguments: argparse.Namespace) -> None:
    """Refuses what plexor refuses, before anything is read."""
    lower = _number(arguments, "lower_weight", "-w")
    upper = _number(arguments, "upper_weight", "-W")
    limit = _number(arguments, "time_limit", "-t")
    _number(arguments, "intensity", "-I")
    for name, switch in (("digits", "-d"), ("clique_size", "-k")):
        text = getattr(arguments, name)
        if text is not None and not re.fullmatch(r"[0-9]{1,9}", text):
            raise UsageError(f"{switch} takes a whole number, not '{text}'")
    if not re.fullmatch(r"[0-9]{1,4}", arguments.threads) or int(arguments.threads) > 1024:
        raise UsageError(f"--threads takes a whole number up to 1024, not '{arguments.threads}'")
    if arguments.shared is not None and arguments.dask is None:
        raise UsageError("--shared goes with --dask")
    if limit is not None and limit <= 0:
        raise UsageError("-t takes a time above 0")
    if lower is not None and upper is not None and lower >= upper:
        raise UsageError("the threshold of -w must be below that of -W")
    if arguments.intensity is not None and (arguments.directed or limit is not None):
        raise UsageError("-I goes together neither with -D nor with -t")
    if arguments.directed and arguments.undirected:
        raise UsageError("-D and -U do not go together")
    if arguments.file == "-" and arguments.output is None:
        raise UsageError("standard input has no name to call the results after: give -o")
    if arguments.output == "":
        raise UsageError("-o takes the name of a directory")


def _refuse_summary_inside(arguments: argparse.Namespace) -> None:
    final = os.path.abspath(_final_directory(arguments))
    if os.path.abspath(arguments.summary).startswith(final + os.sep):
        raise UsageError("--summary must not be inside the output directory")


def _switches(arguments: argparse.Namespace) -> list[str]:
    """plexor's switches, but for the input and the output."""
    switches = []
    for name, switch in (
        ("lower_weight", "-w"),
        ("upper_weight", "-W"),
        ("digits", "-d"),
        ("time_limit", "-t"),
        ("intensity", "-I"),
        ("clique_size", "-k"),
    ):
        text = getattr(arguments, name)
        if text is not None:
            # A blank keeps a negative number from being taken for a switch.
            switches += [switch, " " + text.strip()]
    if arguments.directed:
        switches.append("-D")
    if arguments.undirected:
        switches.append("-U")
    return switches


def _final_directory(arguments: argparse.Namespace) -> str:
    """Where plexor would put the results."""
    digits = 6 if arguments.digits is None else int(arguments.digits)

    def shown(text: str) -> str:
        return f"{float(text):.{digits}f}"

    name: str = arguments.output
    if name is None:
        name = arguments.file + "_files"
        if arguments.lower_weight is not None:
            name += "_" + shown(arguments.lower_weight)
        if arguments.lower_weight is not None or arguments.upper_weight is not None:
            name += "_w"
        if arguments.upper_weight is not None:
            name += "_" + shown(arguments.upper_weight)
        if arguments.directed:
            name += "-d"
    return name + _intensity_ending(arguments)


def _intensity_ending(arguments: argparse.Namespace) -> str:
    if arguments.intensity is None:
        return ""
    digits = 6 if arguments.digits is None else int(arguments.digits)
    return f"-w-th{float(arguments.intensity):.{digits}f}"


def _run(arguments: argparse.Namespace, summary: _Summary, console: Console) -> int:
    final = Path(_final_directory(arguments))
    summary.output = str(final)
    replaces = _look_at_place(final, arguments.overwrite)
    reading = read_network(arguments.file, arguments, console)
    weighted = any(
        text is not None
        for text in (arguments.lower_weight, arguments.upper_weight, arguments.intensity)
    )
    if weighted and reading.table.weight is None:
        raise ToolError("-w, -W and -I need weights, and none were read from this file")
    links: Any = arguments.file
    if reasons_to_convert(reading):
        links = _network(reading.table)
    del reading
    if not replaces:
        end = _finished(arguments, links, arguments.output, final, console)
        _say_end(end, summary, _left(final, arguments), console)
        if not end.completed or end.not_written:
            return 1
        made = final
    else:
        with _beside(final) as work:
            end = _finished(arguments, links, str(work / "results"), None, console)
            _say_end(end, summary, f"'{final}' is as it was", console)
            if not end.completed or end.not_written:
                return 1
            _put_in_place(work / ("results" + _intensity_ending(arguments)), final)
            made = final
    if arguments.summary is not None:
        summary.found = _found(made)
    return _done(final, summary, console)


def _network(table: LinkTable) -> Any:
    """The links for the engine, with names that its files can hold."""
    from plexor import Network

    names = names_for_links(table)
    return Network(table.source, table.target, table.weight, names)


@dataclass
class _End:
    """How a run ended. ``completed``: to its last file but for those in ``not_written``."""

    completed: bool
    error: str = ""
    not_written: list[str] = field(default_factory=list)


def _finished(
    arguments: argparse.Namespace, links: Any, output: str | None, final: Path | None, console: Console
) -> _End:
    """Runs to the end. `final` is where half a run would be; None when nobody will see it."""
    import plexor

    lower, upper = arguments.lower_weight, arguments.upper_weight
    bounds = (
        None if lower is None else float(lower),
        None if upper is None else float(upper),
    )
    client: Any = None
    try:
        if arguments.dask is not None:
            client = _client(arguments.dask)
        done = plexor.run(
            links,
            output,
            k=None if arguments.clique_size is None else int(arguments.clique_size),
            directed=arguments.directed,
            weights=None if bounds == (None, None) else bounds,
            intensity=None if arguments.intensity is None else float(arguments.intensity),
            time_limit=None if arguments.time_limit is None else float(arguments.time_limit),
            digits=6 if arguments.digits is None else int(arguments.digits),
            threads=int(arguments.threads),
            client=client,
            shared=arguments.shared,
            name=None if isinstance(links, str) else arguments.file,
            progress=not console.quiet and sys.stderr.isatty(),
        )
    except KeyboardInterrupt:
        if final is None:
            console.error("the results of before are as they were")
        else:
            console.error(_left(final, arguments))
        raise
    except PlexorError as error:
        return _End(False, " ".join(str(error).split()))
    finally:
        if client is not None:
            client.close()
    return _End(True, "", [str(path) for path in done.not_written])


def _client(address: str) -> Any:
    """Of Dask's scheduler at the address."""
    try:
        distributed: Any = importlib.import_module("distributed")
    except ImportError as error:
        raise ToolError("--dask needs the Python package distributed (python3-distributed)") from error
    try:
        return distributed.Client(address)
    except (OSError, ValueError) as error:
        raise ToolError(f"no Dask scheduler at {address}: {error}") from error


def _left(final: Path, arguments: argparse.Namespace) -> str:
    """What is on the disk of a run that did not end."""
    if not final.is_dir():
        return f"nothing is in '{final}'"
    there = sorted(entry.name for entry in final.iterdir())
    levels = sum(1 for name in there if _LEVEL.fullmatch(name))
    files = len(there) - levels
    one_by_one = arguments.threads == "1" and arguments.dask is None
    which = "the last of them" if one_by_one else "some of them maybe"
    return (
        f"'{final}' has {plural(files, 'file')} and the folders of {plural(levels, 'k', 'k')}, "
        f"{which} incomplete"
    )


def _say_end(end: _End, summary: _Summary, left: str, console: Console) -> None:
    summary.not_written = end.not_written
    if not end.completed:
        summary.error = end.error
        console.error(f"{end.error}\n{left}")
    elif end.not_written:
        summary.error = "not all files could be written"
        for path in end.not_written:
            console.error(f"could not write '{path}'")


def _done(final: Path, summary: _Summary, console: Console) -> int:
    summary.status = "completed"
    sizes = sorted(int(path.name[2:]) for path in final.iterdir() if _LEVEL.fullmatch(path.name))
    levels = "no communities, as there are no triangles"
    if sizes:
        levels = "communities at " + ", ".join(f"k={k}" for k in dict.fromkeys((sizes[0], sizes[-1])))
    console.say(f"results in {final}: {levels.replace(', k', ' to k')}")
    return 0


def _found(directory: Path) -> dict[str, Any]:
    """The numbers of a result."""
    try:
        result = load(directory)
        return {
            "nodes": len(result.names),
            "links": len(result.links.source),
            "cliques": len(result.cliques),
            "approximated_cliques": len(result.cliques) - result.n_exact_cliques,
            "levels": [
                {
                    "k": level.k,
                    "communities": len(level),
                    "approximated": len(level) - level.n_exact,
                    "largest": int(level.nodes.sizes.max()) if len(level) else 0,
                }
                for level in result
            ],
        }
    except ResultError as error:
        raise ToolError(f"the results cannot be read: {error}") from error


# The place of the results


def _holds_results_only(directory: Path) -> bool:
    if directory.is_symlink() or not (directory / "input_params.txt").is_file():
        return False
    for entry in directory.iterdir():
        if entry.is_symlink():
            return False
        if entry.is_dir():
            if not _LEVEL.fullmatch(entry.name):
                return False
            for file in entry.iterdir():
                plain = file.is_file() and not file.is_symlink()
                if not plain or not _LEVEL_FILES.fullmatch(file.name):
                    return False
        elif not _FILES.fullmatch(entry.name):
            return False
    return True


def _look_at_place(final: Path, overwrite: bool) -> bool:
    """Whether there are results to be replaced. Raises ToolError when the place is not free."""
    if not final.is_dir() or not any(final.iterdir()):
        return False
    if not overwrite:
        raise ToolError(f"{_NOT_EMPTY}: '{final}'; -O replaces results of an earlier run")
    if not _holds_results_only(final):
        raise ToolError(f"'{final}' holds something else than results; it is left as it is")
    return True


@contextlib.contextmanager
def _beside(final: Path) -> Iterator[Path]:
    """A directory beside the final one, gone at the end."""
    parent = final.absolute().parent
    parent.mkdir(parents=True, exist_ok=True)
    work = Path(tempfile.mkdtemp(prefix=f".{final.name[:100]}.", dir=parent))
    try:
        yield work
    finally:
        shutil.rmtree(work, ignore_errors=True)


def _exchange(one: Path, other: Path) -> bool:
    """Swaps two directories in one step; False where the file system cannot."""
    at_cwd, exchange = -100, 2
    try:
        swap = ctypes.CDLL(None, use_errno=True).renameat2
    except (OSError, AttributeError):
        return False
    return bool(swap(at_cwd, os.fsencode(one), at_cwd, os.fsencode(other), exchange) == 0)


def _put_in_place(made: Path, final: Path) -> None:
    """Puts new results in the place of old ones, which go where the new ones were."""
    if _exchange(made, final):
        return
    old = made.with_name("old")
    final.rename(old)
    try:
        made.rename(final)
    except OSError:
        old.rename(final)
        raise
