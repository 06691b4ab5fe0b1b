# SPDX-License-Identifier: MIT
"""Words of large text files as arrays.

Result files are words, each followed by a blank or the end of a line. A word is found by its place
in the file and read as a number, or looked up as a name, for all words of a block at once. Names
are any bytes but white space, so nothing here decodes text.
"""

from __future__ import annotations

import os
from collections.abc import Iterator, Sequence

import numpy as np
import numpy.typing as npt

from .errors import ResultError

Bytes = npt.NDArray[np.uint8]
Words = npt.NDArray[np.uint64]
Ints = npt.NDArray[np.int64]
Nodes = npt.NDArray[np.uint32]

_BLANK, _NEWLINE, _MINUS = 0x20, 0x0A, 0x2D
# Room before and after the text, so that eight bytes can be read from any place of it.
_MARGIN = 16
# Bytes worked on at once: the arrays made from them stay in the cache, or near it.
_BLOCK = 1 << 20
_EIGHT = np.uint64(8)
_U = np.uint64


class Text:
    """Bytes with a margin, readable eight at a time from any place."""

    def __init__(self, padded: Bytes, size: int) -> None:
        self._padded = padded
        self._words = padded[: len(padded) // 8 * 8].view("<u8")
        self.bytes = padded[_MARGIN : _MARGIN + size]

    @classmethod
    def of(cls, data: bytes) -> Text:
        padded = np.zeros(_room(len(data)), np.uint8)
        padded[_MARGIN : _MARGIN + len(data)] = np.frombuffer(data, np.uint8)
        return cls(padded, len(data))

    @classmethod
    def read(cls, path: str | os.PathLike[str]) -> Text:
        with open(path, "rb", buffering=0) as file:
            size = os.fstat(file.fileno()).st_size
            padded = np.empty(_room(size), np.uint8)
            padded[:_MARGIN] = 0
            padded[_MARGIN + size :] = 0
            view = padded.data[_MARGIN : _MARGIN + size]
            while len(view) > 0:
                got = file.readinto(view)
                if not got:
                    raise ResultError(f"{os.fspath(path)} changed while it was read")
                view = view[got:]
        return cls(padded, size)

    def eight(self, places: Ints) -> Words:
        """The eight bytes from each place on (which may be up to 16 before the text), the first
        one lowest."""
        at = places + _MARGIN
        low = self._words[at >> 3]
        high = self._words[(at >> 3) + 1]
        shift = ((at & 7) << 3).astype(np.uint64)
        # Two shifts, as one by 64 has no meaning.
        words: Words = (low >> shift) | ((high << _U(1)) << (_U(63) - shift))
        return words

    def blocks(self, begin: int = 0) -> Iterator[tuple[int, int]]:
        """Cuts the text from `begin` on into blocks of whole lines."""
        size = len(self.bytes)
        while begin < size:
            end = min(begin + _BLOCK, size)
            while end < size:
                # Back to the end of a line, or on to it where a line is longer than a block.
                ends = np.flatnonzero(self.bytes[begin:end] == _NEWLINE)
                if len(ends) > 0:
                    end = begin + int(ends[-1]) + 1
                    break
                end = min(end + _BLOCK, size)
            yield begin, end
            begin = end


def _room(size: int) -> int:
    return (size + 2 * _MARGIN + 15) // 8 * 8


class Tokens:
    """The words of a block: where each begins and ends, and how it stands in its line."""

    def __init__(self, text: Text, begin: int, end: int) -> None:
        self.text = text
        block = text.bytes[begin:end]
        is_newline = block == _NEWLINE
        gaps = np.flatnonzero((block == _BLANK) | is_newline)
        starts = np.empty_like(gaps)
        if len(gaps) > 0:
            starts[0] = 0
            np.add(gaps[:-1], 1, out=starts[1:])
        whole = gaps > starts
        ends = gaps[whole]
        starts = starts[whole]
        #: Whether a line begins with the word.
        self.first = np.empty(len(starts), bool)
        if len(starts) > 0:
            self.first[0] = True
            self.first[1:] = is_newline[starts[1:] - 1]
        #: Whether the line ends right after it.
        self.last = is_newline[ends]
        self.starts: Ints = starts + begin
        self.ends: Ints = ends + begin

    def __len__(self) -> int:
        return len(self.starts)

    def numbers(self, starts: Ints, ends: Ints) -> tuple[Ints, npt.NDArray[np.bool_]]:
        """Whole numbers in decimal digits and, apart from them, which have a minus sign."""
        negative = self.text.bytes[starts] == _MINUS if len(starts) > 0 else np.zeros(0, bool)
        starts = starts + negative
        return _digits(self.text, starts, ends), negative


def _digits(text: Text, starts: Ints, ends: Ints) -> Ints:
    """The numbers whose digits stand between the places."""
    sizes = ends - starts
    if len(sizes) > 0 and (int(sizes.min()) < 1 or int(sizes.max()) > 18):
        raise ResultError("a number was expected and is not there")
    # The eight bytes that end with the last digit: what stands before the first becomes "0".
    word = text.eight(ends - 8)
    outside = np.maximum(8 - sizes, 0).astype(np.uint64) * _EIGHT
    keep = ~_U(0) << np.minimum(outside, _U(63))
    digits = (word ^ _U(0x3030303030303030)) & keep
    if np.any((digits + _U(0x7676767676767676)) & _U(0x8080808080808080)):
        raise ResultError("a number was expected and is not there")
    # Neighbours are joined: eight digits to four pairs, to two fours, to one number.
    digits = ((digits * _U(1 + (10 << 8))) >> _U(8)) & _U(0x00FF00FF00FF00FF)
    digits = ((digits * _U(1 + (100 << 16))) >> _U(16)) & _U(0x0000FFFF0000FFFF)
    digits = (digits * _U(1 + (10000 << 32))) >> _U(32)
    values = digits.astype(np.int64)
    longer = np.flatnonzero(sizes > 8)
    if len(longer) > 0:
        values[longer] += 100_000_000 * _digits(text, starts[longer], ends[longer] - 8)
    return values


def _keys(text: Text, starts: Ints, ends: Ints) -> Words:
    """A name of up to seven bytes as a number of its own, or the hash of a longer one; the top
    byte keeps the two apart."""
    sizes = ends - starts
    keys = text.eight(starts)
    short = np.minimum(sizes, 7).astype(np.uint64)
    keys &= (_U(1) << (short * _EIGHT)) - _U(1)
    keys |= short << _U(56)
    longer = np.flatnonzero(sizes > 7)
    if len(longer) > 0:
        keys[longer] = _hashes(text, starts[longer], ends[longer])
    return keys


def _hashes(text: Text, starts: Ints, ends: Ints) -> Words:
    hashes = (ends - starts).astype(np.uint64)
    under_way = np.arange(len(starts))
    place = starts.copy()
    while len(under_way) > 0:
        left = np.minimum(ends[under_way] - place, 8).astype(np.uint64)
        word = text.eight(place) & (~_U(0) >> (_U(64) - left * _EIGHT))
        value = (hashes[under_way] ^ word) * _U(0xC2B2AE3D27D4EB4F)
        hashes[under_way] = value ^ (value >> _U(32))
        place = place + 8
        more = place < ends[under_way]
        under_way, place = under_way[more], place[more]
    return hashes | _U(1 << 63)


class Names:
    """The names of the nodes, by which words of result files become node numbers."""

    def __init__(self, names: Sequence[bytes]) -> None:
        sizes = np.fromiter(map(len, names), np.int64, len(names))
        text = Text.of(b" ".join(names))
        ends = np.cumsum(sizes + 1) - 1
        self._names = names
        self._keys = _keys(text, ends - sizes, ends)
        self._by_name: dict[bytes, int] | None = None
        bits = max(4, int(4 * len(names)).bit_length())
        self._shift = _U(64 - bits)
        self._slots = np.full(1 << bits, -1, np.int64)
        self._fill()

    def _home(self, keys: Words) -> Ints:
        # The product's top bits depend on every bit of the key.
        return ((keys * _U(0x9E3779B97F4A7C15)) >> self._shift).astype(np.int64)

    def _fill(self) -> None:
        if len(np.unique(self._keys)) < len(self._keys):
            # Two long names with one hash: then the names themselves are looked up.
            self._by_name = {name: number for number, name in enumerate(self._names)}
            return
        pending = np.arange(len(self._keys))
        places = self._home(self._keys)
        while len(pending) > 0:
            free = self._slots[places] < 0
            # Of several that want one slot the last one gets it; all others go on to the next.
            self._slots[places[free]] = pending[free]
            left = self._slots[places] != pending
            pending, places = pending[left], (places[left] + 1) & (len(self._slots) - 1)

    def numbers(self, text: Text, starts: Ints, ends: Ints) -> Nodes:
        """The numbers of the names that stand between the places. Raises ResultError for a word
        that is no name."""
        if self._by_name is not None:
            return self._one_by_one(text, starts, ends)
        keys = _keys(text, starts, ends)
        places = self._home(keys)
        found = self._slots[places]
        if len(self._keys) == 0 and len(found) > 0:
            raise _unknown(text, starts, ends)
        # Slot -1 compares the last key, which is no harm: `found` tells that it is empty.
        wrong = np.flatnonzero((found < 0) | (self._keys[found] != keys))
        while len(wrong) > 0:
            if np.any(found[wrong] < 0):
                bad = wrong[found[wrong] < 0]
                raise _unknown(text, starts[bad], ends[bad])
            places[wrong] = (places[wrong] + 1) & (len(self._slots) - 1)
            found[wrong] = self._slots[places[wrong]]
            wrong = wrong[(found[wrong] < 0) | (self._keys[found[wrong]] != keys[wrong])]
        return found.astype(np.uint32)

    def _one_by_one(self, text: Text, starts: Ints, ends: Ints) -> Nodes:
        assert self._by_name is not None
        found = np.empty(len(starts), np.uint32)
        for i, (start, end) in enumerate(zip(starts.tolist(), ends.tolist())):
            number = self._by_name.get(text.bytes[start:end].tobytes())
            if number is None:
                raise _unknown(text, starts[i:], ends[i:])
            found[i] = number
        return found


def _unknown(text: Text, starts: Ints, ends: Ints) -> ResultError:
    word = text.bytes[int(starts[0]) : int(ends[0])].tobytes().decode("utf-8", "replace")
    return ResultError(f"{word!r} is no node of the network")
