# SPDX-License-Identifier: MIT
"""What is told while something long is under way."""

from __future__ import annotations

from collections.abc import Callable
from typing import Any

#: True for a bar on standard error (where tqdm is installed, else nothing), or a function of the
#: stage ("cliques": nodes searched; "levels": values of k), how much of it is done, and how much it
#: is in all. What the function raises ends the search.
Progress = bool | Callable[[str, int, int], None]


_BAR = "{desc}: {percentage:3.0f}%|{bar}| {n:,} of {total:,} {unit} [{elapsed}, {remaining} left]"
_UNITS = {"cliques": "nodes", "levels": "k"}


class Reporter:
    """Shows the progress of one call. To be used in a `with` statement, which closes the bar."""

    def __init__(self, progress: Progress) -> None:
        self._tell = progress if callable(progress) else None
        self._bar: Any = None
        self._stage = ""
        self._tqdm: Any = None
        if progress is True:
            try:
                from tqdm.auto import tqdm
            except ImportError:
                return
            self._tqdm = tqdm

    def __enter__(self) -> Reporter:
        return self

    def __exit__(self, *_: object) -> None:
        self._close()

    @property
    def listening(self) -> bool:
        return self._tell is not None or self._tqdm is not None

    def __call__(self, stage: str, done: int, total: int) -> None:
        if self._tell is not None:
            self._tell(stage, done, total)
        if self._tqdm is not None:
            if stage != self._stage:
                self._close()
                self._bar = self._tqdm(
                    total=total,
                    desc=stage,
                    unit=_UNITS.get(stage, stage),
                    leave=False,
                    dynamic_ncols=True,
                    bar_format=_BAR,
                )
                self._stage = stage
            if done == self._bar.n:
                self._bar.refresh()  # time has passed
            self._bar.update(done - self._bar.n)

    def cliques(self) -> Callable[[int, int], None] | None:
        """What the engine calls during a search."""
        return (lambda done, total: self("cliques", done, total)) if self.listening else None

    def levels(self) -> Callable[[int, int], None] | None:
        """What the engine calls during a whole run, when it comes to another k and then now and
        again."""
        return (lambda done, total: self("levels", done, total)) if self.listening else None

    def _close(self) -> None:
        if self._bar is not None:
            self._bar.close()
            self._bar = None
