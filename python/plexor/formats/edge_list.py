# SPDX-License-Identifier: MIT
"""Reads tables with one link per line: fields between blanks, tabs, commas or semicolons.

What a line means is decided before (`plexor.formats.recognise`); here every line must agree with
it, or reading ends with the line, the column and what to do. The compiled module reads the lines;
`split_fields` cuts the few that recognition looks at, by the same rules.
"""

from __future__ import annotations

import re
from dataclasses import dataclass
from typing import Any

from plexor.formats.escape import unescape
from plexor.formats.table import FormatError, LinkTable, long_line

#: No line of a table is longer than this.
LONGEST_LINE = 1 << 20

_NUMBER = re.compile(rb"[+-]?(?:[0-9]+(?:\.[0-9]*)?|\.[0-9]+)(?:[eE][+-]?[0-9]+)?")
_NUMBER_COMMA = re.compile(rb"[+-]?(?:[0-9]+(?:,[0-9]*)?|,[0-9]+)(?:[eE][+-]?[0-9]+)?")
_BLANKS = b" \t\r\n\x0b\x0c"


@dataclass(frozen=True)
class Dialect:
    """How a table is written.

    ``delimiter`` is None for any white space, else one byte; ``comment`` the bytes that make a
    line a comment when it begins with one of them; ``source``, ``target`` and ``weight`` are
    columns counted from 0; ``fields`` is how many a line must have, None for enough of them.
    ``header`` says that the first line that is no comment names the columns. ``comment_decides``
    says that the user named the comment signs.
    """

    delimiter: bytes | None = None
    quotes: bool = False
    comment: bytes = b"#"
    comment_decides: bool = False
    header: bool = False
    source: int = 0
    target: int = 1
    weight: int | None = None
    fields: int | None = None
    decimal_comma: bool = False
    escaped: bool = False


def is_number(text: bytes, decimal_comma: bool = False) -> bool:
    """Whether the text is a decimal number, as a weight must be."""
    return (_NUMBER_COMMA if decimal_comma else _NUMBER).fullmatch(text) is not None


def _patterns(delimiter: bytes | None) -> tuple[re.Pattern[bytes], ...]:
    around = rb"[ ]*" if delimiter == b"\t" else rb"" if delimiter is None else rb"[ \t]*"
    space = rb" \t" if delimiter is None else re.escape(delimiter)
    end = rb"(?:([" + space + (rb"]+)" if delimiter is None else rb"])") + rb"|\Z)"
    opened = around + rb'"([^"]*(?:""[^"]*)*)'
    return (
        re.compile(opened + rb'"' + around + end),
        re.compile(rb"([^" + space + rb"]*)" + end),
        re.compile(opened + rb"\Z"),
        re.compile(around + rb'"'),
    )


_PATTERNS = {delimiter: _patterns(delimiter) for delimiter in (None, b"\t", b",", b";")}


def split_fields(line: bytes, delimiter: bytes | None, quotes: bool) -> list[bytes] | None:
    """The fields of a line; None when a quoted field does not end in it.

    Blanks around fields belong to no field, unless quotation marks hold them; within these a
    doubled mark is a mark. Raises ValueError when something stands after a closing mark.
    """
    if not quotes or b'"' not in line:
        if delimiter is None:
            return line.split()
        return [field.strip(_BLANKS) for field in line.split(delimiter)]
    quoted, plain, unclosed, begins_quoted = _PATTERNS[delimiter]
    if delimiter is None:
        line = line.strip(_BLANKS)
    fields = []
    at = 0
    while True:
        found = quoted.match(line, at)
        if found:
            fields.append(found[1].replace(b'""', b'"'))
        elif unclosed.match(line, at):
            return None
        elif begins_quoted.match(line, at):
            raise ValueError("something stands after a closing quotation mark")
        else:
            found = plain.match(line, at)
            assert found is not None  # Relies on: nothing at all is a field, too.
            fields.append(found[1].strip(_BLANKS))
        at = found.end()
        if found[2] is None:
            return fields


def _times(count: int, one: str, many: str) -> str:
    return f"1 {one}" if count == 1 else f"{count:,} {many}"


def read_edge_list(data: bytes, dialect: Dialect, format: str = "edge list") -> LinkTable:
    """The links of a table, in its order. `data` must not hold a zero byte.

    Raises FormatError for the first line that does not agree with the dialect. Time and memory
    are proportional to the data.
    """
    from plexor import _engine

    read = _engine.read_edge_list(
        data,
        delimiter=dialect.delimiter or b"",
        quotes=dialect.quotes,
        comment=dialect.comment,
        comment_decides=dialect.comment_decides,
        header=dialect.header,
        source=dialect.source,
        target=dialect.target,
        weight=dialect.weight,
        fields=dialect.fields,
        decimal_comma=dialect.decimal_comma,
        escaped=dialect.escaped,
    )
    if read["failure"] is not None:
        raise _refusal(dialect, *read["failure"])
    names: list[str] = read["names"]
    if dialect.escaped:
        names = _unescaped(names)
    return LinkTable(
        format,
        names,
        read["source"],
        read["target"],
        read["weight"],
        None,
        _said(read),
        read["passed_over_here_alone"],
    )


def _refusal(dialect: Dialect, fault: str, line: int, n_fields: int, text: bytes) -> FormatError:
    """What to tell about a line that does not fit, and the option that decides."""
    shown = text.decode("utf-8", "replace")
    if fault == "n_fields":
        return FormatError(_wrong_fields(dialect, n_fields), line)
    if fault == "no_number":
        hint = "--weight-column none reads no weights"
        if not dialect.decimal_comma and is_number(text, True):
            hint = "--decimal , reads weights with a decimal comma"
        assert dialect.weight is not None
        return FormatError(
            f"the weight '{shown}' is not a number; {hint}", line, dialect.weight + 1
        )
    if fault == "long_line":
        return long_line(LONGEST_LINE, line)
    texts = {
        "open_quotation": 'a quotation mark (") that is never closed',
        "text_after_quotation": "something stands after a closing quotation mark",
        "comment_or_link": f"begins with {shown} and has as many fields as a link: --comment "
        f"'{shown}' passes over it, --comment none reads it",
        "percent_comment": "begins with %: --comment '#%' passes over it, --comment '#' reads it",
        "too_large": f"the weight '{shown}' is too large for a double",
    }
    return FormatError(texts[fault], line)


def _wrong_fields(dialect: Dialect, n_fields: int) -> str:
    needed = max(dialect.source, dialect.target, dialect.weight or 0) + 1
    expected = needed if dialect.fields is None else dialect.fields
    what = f"{_times(n_fields, 'field', 'fields')} where {expected} are expected; "
    if n_fields > needed:
        return what + "--source-column, --target-column and --weight-column name those that count"
    weight = " and a weight" if dialect.weight is not None else ""
    return what + f"a link needs a source and a target{weight}"


def _unescaped(names: list[str]) -> list[str]:
    try:
        plain = [unescape(name) for name in names]
    except ValueError as error:
        raise FormatError(f"the file says that its names are escaped, but {error}") from None
    if len(set(plain)) != len(plain):
        seen: dict[str, str] = {}
        for name, escaped in zip(plain, names):
            if name in seen:
                raise FormatError(
                    f"'{seen[name]}' and '{escaped}' are escapes of the same name '{name}'"
                )
            seen[name] = escaped
    return plain


def _said(read: dict[str, Any]) -> list[str]:
    said = []
    for key, one, many in (
        ("comments", "comment line skipped", "comment lines skipped"),
        ("blank_lines", "blank line skipped", "blank lines skipped"),
        (
            "single_characters",
            "line of a single character skipped, as plexor does",
            "lines of a single character skipped, as plexor does",
        ),
        (
            "carriage_returns",
            "line ends in a carriage return, which belongs to no name",
            "lines end in a carriage return, which belongs to no name",
        ),
    ):
        if read[key]:
            said.append(_times(read[key], one, many))
    return said
