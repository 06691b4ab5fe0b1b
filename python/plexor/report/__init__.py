# SPDX-License-Identifier: MIT
"""The report page: one self-contained HTML file with the results of a run."""
from __future__ import annotations

import os
from collections.abc import Callable, Iterable
from dataclasses import dataclass
from pathlib import PurePath
from typing import TYPE_CHECKING

from .data import build_blocks
from .page import assemble, write_whole

if TYPE_CHECKING:
    from plexor.results import Result

MAX_BYTES = 20_000_000

__all__ = ["MAX_BYTES", "Report", "make_report", "write_report"]


@dataclass(frozen=True)
class Report:
    """A page that was made. left_out: what it does not hold, a sentence each; empty if it holds all."""

    content: bytes
    left_out: tuple[str, ...]


def make_report(result: Result, *, title: str | None = None, ks: Iterable[int] | None = None,
                unescape: bool | None = None, max_bytes: int = MAX_BYTES,
                progress: Callable[[str], None] | None = None) -> Report:
    """The report page of a result, as bytes. The same result gives the same bytes.

    title: heading of the page; the name of the run's link file if None.
    ks: the levels to show; all if None. KeyError if one is not in the result.
    unescape: whether %XX in names stands for a character; None: if the run's input says so.
    max_bytes: the largest size of the page. What does not fit is left out and said, on the page too:
        links first, then whole levels from the smallest k up.
    progress: called with a few words before each level.
    """
    chosen = None if ks is None else sorted(set(ks))
    if chosen is not None:
        missing = [k for k in chosen if k not in result.ks]
        if missing:
            raise KeyError(f"no results at k={missing[0]}; there are k = {', '.join(map(str, sorted(result.ks)))}")
    name = PurePath(result.parameters.input).name or "Communities"
    empty = len(assemble("report", title or name, []))
    blocks, left_out = build_blocks(result, title=title or name, unescape=unescape,
                                    room=max_bytes - empty, ks=chosen, progress=progress)
    return Report(assemble("report", f"{title or name}: communities", blocks), tuple(left_out))


def write_report(result: Result, path: str | os.PathLike[str], *, title: str | None = None,
                 ks: Iterable[int] | None = None, unescape: bool | None = None,
                 max_bytes: int = MAX_BYTES,
                 progress: Callable[[str], None] | None = None) -> Report:
    """Writes the report page of a result to path, replacing what is there once the page is whole.

    The arguments are those of make_report. OSError if the page cannot be written.
    """
    report = make_report(result, title=title, ks=ks, unescape=unescape, max_bytes=max_bytes,
                         progress=progress)
    write_whole(path, report.content)
    return report
