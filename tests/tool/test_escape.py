# SPDX-License-Identifier: MIT
"""The escapes of names are reversible, and what they make can stand in a link file."""

from __future__ import annotations

import pytest
from hypothesis import given
from hypothesis import strategies as st
from plexor.formats.escape import MARKER, carries_marker, escape, needs_escape, unescape
from plexor.results import ESCAPE_MARKER

NAMES = st.text(st.characters(blacklist_categories=["Cs"]), max_size=12)


def test_the_marker_is_the_one_that_results_are_read_with() -> None:
    assert MARKER == ESCAPE_MARKER


@given(NAMES)
def test_every_name_comes_back(name: str) -> None:
    assert unescape(escape(name)) == name


@given(NAMES)
def test_an_escaped_name_is_one_word_and_no_comment(name: str) -> None:
    escaped = escape(name).encode()
    assert escaped.split() == [escaped]
    assert not escaped.startswith(b"#")


@given(NAMES, NAMES)
def test_different_names_stay_different(one: str, other: str) -> None:
    assert (escape(one) == escape(other)) == (one == other)


@given(NAMES.filter(lambda name: not needs_escape(name)))
def test_a_name_that_needs_no_escape_is_one_word_as_it_is(name: str) -> None:
    assert name.encode().split() == [name.encode()]
    assert not name.startswith("#")


@pytest.mark.parametrize(
    ("name", "escaped"),
    [
        ("", "%"),
        ("#1", "%231"),
        ("a#1", "a#1"),
        ("\ufeffann", "%EF%BB%BFann"),
        ("New York", "New%20York"),
        ("50%", "50%25"),
        ("%", "%25"),
        ("a\tb\nc\rd", "a%09b%0Ac%0Dd"),
        ("Łódź", "Łódź"),
        ("no\u00a0break", "no\u00a0break"),
        ("\udcff", "\udcff"),
    ],
)
def test_how_names_are_escaped(name: str, escaped: str) -> None:
    assert escape(name) == escaped
    assert unescape(escaped) == name


def test_bytes_of_one_character_may_be_escaped_apart() -> None:
    assert unescape("%C5%81%C3%B3d%C5%BA") == "Łódź"


@pytest.mark.parametrize("name", ["%2", "a%", "%zz", "100%!", "%%"])
def test_what_is_no_escape_is_refused(name: str) -> None:
    with pytest.raises(ValueError, match="hexadecimal"):
        unescape(name)


def test_the_marker_counts_before_the_first_link_only() -> None:
    marker = MARKER.encode()
    assert carries_marker(marker + b"\na b\n")
    assert carries_marker(b"# a comment\nx\n  " + marker + b"\r\na b\n")
    assert not carries_marker(b"a b\n" + marker + b"\n")
    assert not carries_marker(b"# plexor: names are escaped by hand\na b\n")
