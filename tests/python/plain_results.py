# SPDX-License-Identifier: MIT
"""Result files read line by line in the plainest way, to compare with."""

from __future__ import annotations

from pathlib import Path


def lines(path: Path) -> list[bytes]:
    """The records of a file, without its header."""
    header, _, data = path.read_bytes().partition(b"\n\n")
    assert header.startswith(b"#")
    return data.split(b"\n")[:-1]


def name(word: bytes) -> str:
    return word.decode("utf-8", "surrogateescape")


def links(path: Path) -> list[tuple[str, ...]]:
    return [tuple(map(name, line.split(b" "))) for line in lines(path)]


def records(path: Path) -> list[tuple[bool, list[str]]]:
    """Whether each record has no sign, and its words."""
    found = []
    for i, line in enumerate(lines(path)):
        label, *members = line.split(b" ")[:-1]
        assert label.lstrip(b"-") == b"%d:" % i
        found.append((not label.startswith(b"-"), list(map(name, members))))
    return found


def community_links(path: Path) -> list[list[tuple[str, ...]]]:
    found: list[list[tuple[str, ...]]] = []
    for line in lines(path):
        words = line.split(b" ")
        if len(words) == 1:
            assert line.lstrip(b"-") == b"%d:" % len(found)
            found.append([])
        else:
            found[-1].append(tuple(map(name, words)))
    return found


def community_graph(path: Path) -> list[tuple[int, ...]]:
    return [tuple(int(word.lstrip(b"-")) for word in line.split(b" ")) for line in lines(path)]


def distribution(path: Path) -> list[tuple[int, ...]]:
    *entries, end = lines(path)
    assert end == b""
    return [tuple(map(int, line.split(b" "))) for line in entries]
