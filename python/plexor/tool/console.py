# SPDX-License-Identifier: MIT
"""What a command says, and where its data goes: messages on standard error, data on standard
output or in a file that is there whole or not at all."""

from __future__ import annotations

import contextlib
import os
import sys
import tempfile
from collections.abc import Iterator
from pathlib import Path
from typing import BinaryIO, TextIO


class ToolError(Exception):
    """The data or the run failed: the command ends with status 1 and this text."""


class UsageError(Exception):
    """The arguments do not go together: the command ends with status 2 and this text."""


def printable(text: str) -> str:
    """The text without characters that a terminal would obey, and without lone surrogates."""
    shown = text.encode("utf-8", "backslashreplace").decode("utf-8")
    return "".join(c if c in "\n\t" or c.isprintable() else repr(c)[1:-1] for c in shown)


class Console:
    """Messages to the user. `quiet` leaves out all but errors, `verbose` adds details."""

    def __init__(self, quiet: bool = False, verbose: bool = False, stream: TextIO | None = None):
        self.quiet = quiet
        self.verbose = verbose
        self._stream = stream

    def _write(self, text: str) -> None:
        stream = self._stream if self._stream is not None else sys.stderr
        # A message that cannot be shown is no reason to end the work.
        with contextlib.suppress(OSError, ValueError):
            stream.write(printable(text) + "\n")
            stream.flush()

    def say(self, text: str) -> None:
        """A line that tells what was done."""
        if not self.quiet:
            self._write(text)

    def detail(self, text: str) -> None:
        """A line for those who asked for more."""
        if self.verbose:
            self._write(text)

    def error(self, text: str) -> None:
        """Why the command ends."""
        self._write(f"plexor-tool: {text}")


def refuse_existing(path: Path, overwrite: bool) -> None:
    """Raises ToolError when something is at the path that must not be replaced."""
    if path.is_dir():
        raise ToolError(f"'{path}' is a directory; name a file")
    if not overwrite and os.path.lexists(path):
        raise ToolError(f"'{path}' is there already; -O (--overwrite) replaces it")


@contextlib.contextmanager
def output_file(output: str, overwrite: bool) -> Iterator[BinaryIO]:
    """A binary stream for the data: standard output for ``-``, else a file.

    The file is written beside its place under another name and renamed when it is whole, so that
    a failure leaves what was there before. Raises ToolError when something is there already and
    `overwrite` is not set, OSError when it cannot be written.
    """
    if output == "-":
        yield sys.stdout.buffer
        sys.stdout.buffer.flush()
        return
    path = Path(output)
    refuse_existing(path, overwrite)
    if path.exists() and not path.is_file():
        # A device or a named pipe has no place beside it, and cannot be renamed over.
        with path.open("wb") as stream:
            yield stream
        return
    # A symbolic link stays one: the file that it names is replaced.
    place = path.resolve()
    descriptor, beside = tempfile.mkstemp(prefix=f".{place.name[:100]}.", dir=place.parent)
    try:
        with os.fdopen(descriptor, "wb") as stream:
            yield stream
            stream.flush()
            os.fsync(stream.fileno())
        mask = os.umask(0)
        os.umask(mask)
        os.chmod(beside, 0o666 & ~mask)
        os.replace(beside, place)
    except BaseException:
        with contextlib.suppress(OSError):
            os.unlink(beside)
        raise
