# SPDX-License-Identifier: MIT
"""One run of `plexor`: its arguments, what it prints, how it ended."""

from __future__ import annotations

import contextlib
import os
import re
import shutil
import subprocess
import sys
from collections.abc import Callable, Sequence
from dataclasses import dataclass, field

from plexor.tool.console import ToolError

_BANNER = "_" * 52
_TO_DO = re.compile(r" (\d+) of (\d+) nodes to do \(")
_WARNING = re.compile(r" WARNING: could not write '(.*)'\.$")


@dataclass
class ProgramEnd:
    """How the run ended. ``completed``: to its last file but for those in ``not_written``."""

    completed: bool
    error: str = ""
    not_written: list[str] = field(default_factory=list)


def find_program() -> str:
    """The program `plexor`: beside this command, else in the search path."""
    beside = os.path.join(os.path.dirname(os.path.abspath(sys.argv[0])), "plexor")
    found = beside if os.access(beside, os.X_OK) and os.path.isfile(beside) else None
    found = found or shutil.which("plexor")
    if found is None:
        raise ToolError("the program 'plexor' is neither beside this command nor in the path")
    return found


def run_program(
    arguments: Sequence[str], progress: Callable[[int, int], None] | None = None
) -> ProgramEnd:
    """Runs `plexor` to its end; `progress` hears of start nodes done and their number.

    On KeyboardInterrupt the program is ended before the exception goes on.
    """
    command = [find_program(), *arguments]
    with subprocess.Popen(
        command, stdout=subprocess.PIPE, stdin=subprocess.DEVNULL, encoding="utf-8",
        errors="surrogateescape",
    ) as process:
        assert process.stdout is not None
        end = ProgramEnd(False)
        banners = 0
        last: list[str] = []
        try:
            for line in process.stdout:
                line = line.rstrip("\n")
                if line == _BANNER:
                    banners += 1
                found = _TO_DO.match(line)
                if found:
                    if progress is not None:
                        to_do, total = int(found[1]), int(found[2])
                        progress(total - to_do, total)
                    continue
                warning = _WARNING.match(line)
                if warning:
                    end.not_written.append(warning[1])
                last = [*last[-5:], line]
            status = process.wait()
        except BaseException:
            with contextlib.suppress(OSError):
                process.kill()
            process.wait()
            raise
    end.completed = status == 0 and banners == 2
    if not end.completed:
        end.error = _error(last, status)
    return end


def _error(last: list[str], status: int) -> str:
    """The text of the error among the last lines."""
    if status < 0:
        return f"plexor was ended by signal {-status}"
    for place in range(len(last) - 1, -1, -1):
        if last[place].startswith("ERROR"):
            return " ".join(line.strip() for line in last[place:] if line.strip())
    shown = [line.strip() for line in last if line.strip()]
    return shown[-1] if shown else f"plexor ended with status {status}"
