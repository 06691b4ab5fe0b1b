# SPDX-License-Identifier: MIT
"""The bytes of an input: a file or standard input, plain or gzipped."""

from __future__ import annotations

import gzip
import io
import os
import stat
import sys
import zlib
from dataclasses import dataclass
from typing import BinaryIO, cast

from plexor.formats.table import FormatError, long_line

#: How much of a file is looked at to recognise its format.
HEAD_SIZE = 1 << 20
_PIECE = 1 << 22

_OTHER_PACKINGS = {
    b"PK\x03\x04": "a zip archive",
    b"BZh": "packed by bzip2",
    b"\xfd7zXZ\x00": "packed by xz",
    b"\x28\xb5\x2f\xfd": "packed by zstd",
    b"7z\xbc\xaf": "a 7z archive",
    b"\x89PNG": "a picture",
    b"%PDF": "a PDF document",
}


@dataclass
class Source:
    """An input whose beginning has been read.

    ``name`` is what the user wrote (``-`` is standard input), ``head`` the first bytes (all of
    them when ``whole``), unpacked and without a byte order mark; ``said`` what was done to them.
    """

    name: str
    head: bytes
    whole: bool
    packed: bool
    byte_order_mark: bool
    said: list[str]
    _stream: BinaryIO

    def read(self, longest_line: int | None = None) -> bytes:
        """All bytes of the input, the head among them.

        Raises FormatError when it is broken, or as soon as a line goes on and on beyond
        `longest_line`: such a file need not be read to its end to be refused.
        """
        if self.whole:
            return self.head
        if longest_line is None:
            return self.head + _read(self._stream, -1, self.name)
        pieces = [self.head]
        line = 1
        so_far = 0  # of this line
        while pieces[-1]:
            line += pieces[-1].count(b"\n")
            last = pieces[-1].rfind(b"\n")
            so_far = so_far + len(pieces[-1]) if last < 0 else len(pieces[-1]) - last - 1
            if so_far > longest_line + _PIECE:
                raise long_line(longest_line, line)
            pieces.append(_read(self._stream, _PIECE, self.name))
        return b"".join(pieces)

    @property
    def suffixes(self) -> list[str]:
        """The endings of the name in lower case, without that of gzip: ['.graph']."""
        parts = os.path.basename(self.name).lower().split(".")[1:]
        return ["." + part for part in parts if part != "gz"]


def _read(stream: BinaryIO, size: int, name: str) -> bytes:
    try:
        if size < 0:
            return stream.read()
        pieces = []
        while size > 0:
            piece = stream.read(size)
            if not piece:
                break
            pieces.append(piece)
            size -= len(piece)
        return b"".join(pieces)
    except (EOFError, zlib.error, gzip.BadGzipFile) as error:
        raise FormatError(f"'{name}' is a broken gzip file: {error}") from error


def open_source(name: str) -> Source:
    """Opens an input and reads its head.

    Raises OSError when it cannot be opened, FormatError when it is a broken gzip file, packed in
    another way, text in 16 or 32 bits a character, or no text at all.
    """
    if name == "-":
        raw: BinaryIO = sys.stdin.buffer
    else:
        if stat.S_ISDIR(os.stat(name).st_mode):
            raise FormatError(f"'{name}' is a directory; name a file of links")
        raw = open(name, "rb")
    # A pipe may give a few bytes at a time: peek() on a buffered reader does not block for more.
    buffered = raw if hasattr(raw, "peek") else io.BufferedReader(cast(io.RawIOBase, raw))
    said: list[str] = []
    packed = buffered.peek(2)[:2] == b"\x1f\x8b"  # type: ignore[attr-defined]
    stream: BinaryIO = buffered
    if packed:
        stream = cast(BinaryIO, gzip.GzipFile(fileobj=buffered, mode="rb"))
        said.append("unpacked by gzip")
    head = _read(stream, HEAD_SIZE, name)
    whole = len(head) < HEAD_SIZE
    for magic, what in _OTHER_PACKINGS.items():
        if head.startswith(magic):
            raise FormatError(f"'{name}' is {what}; unpack it first (gzip alone is read as it is)")
    if head.startswith((b"\xff\xfe", b"\xfe\xff")):
        raise FormatError(
            f"'{name}' is text in 16 bits a character; make it UTF-8 first: "
            "iconv -f UTF-16 -t UTF-8"
        )
    mark = head.startswith(b"\xef\xbb\xbf")
    if mark:
        head = head[3:]
        said.append("the byte order mark at the beginning was skipped")
    if b"\0" in head:
        line = head[: head.index(b"\0")].count(b"\n") + 1
        raise FormatError(f"'{name}' is no text: there is a zero byte", line)
    return Source(name, head, whole, packed, mark, said, stream)
