# SPDX-License-Identifier: MIT
"""The compiled reader of tables beside a plain one, on anything that could be a table."""

from __future__ import annotations

import re

import pytest
from hypothesis import given, settings
from hypothesis import strategies as st
from plexor.formats.edge_list import LONGEST_LINE, Dialect, is_number, read_edge_list, split_fields
from plexor.formats.table import FormatError

Links = list[tuple[bytes, bytes, float | None]]


def plainly(data: bytes, dialect: Dialect) -> Links | int:
    """The links, or the first line that does not fit."""
    links: Links = []
    lines = data.removesuffix(b"\n").split(b"\n") if data else []
    header = dialect.header
    signs = [bytes([sign]) for sign in dialect.comment]
    at = 0
    while at < len(lines):
        begin = at
        line = lines[at].removesuffix(b"\r")
        at += 1
        text = line.strip(b" \r\n\x0b\x0c" if dialect.delimiter == b"\t" else None)
        if not line.strip():
            continue
        if text[:1] in signs:
            alike = dialect.delimiter is not None and (
                line.count(dialect.delimiter) + 1 == dialect.fields
            )
            if links and alike and not dialect.comment_decides:
                return begin + 1
            continue
        if text[:1] == b"%" and not dialect.comment_decides and not dialect.escaped:
            return begin + 1
        if dialect.delimiter is None and len(line.strip()) == 1:
            continue
        try:
            fields = split_fields(line, dialect.delimiter, dialect.quotes)
            while fields is None:
                if at == len(lines):
                    return begin + 1
                line += b"\n" + lines[at].removesuffix(b"\r")
                at += 1
                fields = split_fields(line, dialect.delimiter, dialect.quotes)
        except ValueError:
            return begin + 1
        if header:
            header = False
            continue
        columns = [dialect.source, dialect.target] + (
            [] if dialect.weight is None else [dialect.weight]
        )
        if len(fields) <= max(columns) or len(fields) != (dialect.fields or len(fields)):
            return begin + 1
        weight = None
        if dialect.weight is not None:
            if not is_number(fields[dialect.weight], dialect.decimal_comma):
                return begin + 1
            point = b"," if dialect.decimal_comma else b"."
            weight = float(fields[dialect.weight].replace(point, b"."))
            if weight in (float("inf"), -float("inf")):
                return begin + 1
        links.append((fields[dialect.source], fields[dialect.target], weight))
    return links


def compiled(data: bytes, dialect: Dialect) -> Links | int:
    try:
        table = read_edge_list(data, dialect)
    except FormatError as error:
        assert error.line is not None
        return error.line
    names = [name.encode("utf-8", "surrogateescape") for name in table.names]
    assert len(set(names)) == len(names)
    weights = [None] * len(table) if table.weight is None else table.weight.tolist()
    ends = zip(table.source.tolist(), table.target.tolist(), weights)
    return [(names[a], names[b], weight) for a, b, weight in ends]


PIECES = st.lists(
    st.sampled_from(
        [b"a", b"bob", b"a long name", b"1", b"0.5", b"-3e2", b"1,5", b".5", b"1e999", b"1e-999"]
        + [b" ", b"\t", b",", b";", b'"', b'""', b"#", b"%", b"\r", b"\x0b", b"\xe9", b"x1", b"."]
        + [b"\n"] * 6
        + [b"a,b\n", b"a\tb\n", b"a b 1\n", b"c;d;2\n", b'"q,q",r\n']
    ),
    max_size=40,
).map(b"".join)
DIALECTS = st.builds(
    Dialect,
    delimiter=st.sampled_from([None, b"\t", b",", b";"]),
    quotes=st.booleans(),
    comment=st.sampled_from([b"#", b"#%", b""]),
    comment_decides=st.booleans(),
    header=st.booleans(),
    source=st.sampled_from([0, 0, 1]),
    target=st.sampled_from([1, 1, 2]),
    weight=st.sampled_from([None, None, 2, 3]),
    fields=st.sampled_from([None, 2, 3]),
    decimal_comma=st.booleans(),
)


@settings(deadline=None, max_examples=600)
@given(data=PIECES, dialect=DIALECTS)
def test_both_readers_agree(data: bytes, dialect: Dialect) -> None:
    assert compiled(data, dialect) == plainly(data, dialect)


@given(st.text("0123456789.+-eE,xinfa ", max_size=8))
def test_numbers_are_those_of_a_pattern(text: str) -> None:
    data = f"a;b;{text}\n".encode()
    field = text.strip().encode()
    for comma in (False, True):
        pattern = r"[+-]?(\d+[.]?\d*|[.]\d+)([eE][+-]?\d+)?".replace("[.]", "," if comma else "[.]")
        fits = re.fullmatch(pattern, field.decode()) is not None
        assert is_number(field, comma) == fits
        found = compiled(data, Dialect(delimiter=b";", weight=2, decimal_comma=comma))
        large = fits and float(field.replace(b",", b".")) in (float("inf"), -float("inf"))
        assert isinstance(found, list) == (fits and not large)


def test_white_space_before_a_comment() -> None:
    data = b"a\tb\n\r# c\n\x0b # c\n c\td\n"
    for delimiter in (None, b"\t"):
        dialect = Dialect(delimiter=delimiter)
        assert compiled(data, dialect) == plainly(data, dialect) == [(b"a", b"b", None), (b"c", b"d", None)]


def test_a_line_has_a_longest_length() -> None:
    fits = b"a " + b"b" * (LONGEST_LINE - 2)
    assert compiled(fits + b"\n", Dialect()) == [(b"a", b"b" * (LONGEST_LINE - 2), None)]
    assert compiled(b"a b\n" + fits + b"b\n", Dialect()) == 2


def test_an_open_quotation_ends_somewhere() -> None:
    data = b'a,"b\n' + b"c,d\n" * LONGEST_LINE
    assert compiled(data, Dialect(delimiter=b",", quotes=True)) == 1


@pytest.mark.parametrize("count", [31, 32, 33, 64, 1000])
def test_quoted_names_outlive_a_batch(count: int) -> None:
    rows = [(b'say "%d"' % i, b"n,%d" % (i % 7)) for i in range(count)]
    data = b"".join(b'"%b","%b"\n' % (a.replace(b'"', b'""'), b) for a, b in rows)
    found = compiled(data, Dialect(delimiter=b",", quotes=True))
    assert found == [(a, b, None) for a, b in rows]
