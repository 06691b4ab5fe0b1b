# SPDX-License-Identifier: MIT
"""Reads tables with a link a line: fields between blanks, tabs, commas or semicolons.

What a line means is decided before (`plexor.formats.recognise`); here every line must agree with
it, or reading ends with the line, the column and what to do.
"""

from __future__ import annotations

import io
import re
from array import array
from dataclasses import dataclass

import numpy as np

from plexor.formats.escape import unescape
from plexor.formats.table import FormatError, LinkTable

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


@dataclass
class _Counts:
    comments: int = 0
    blank_lines: int = 0
    single_characters: int = 0
    carriage_returns: int = 0


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
    doubled mark is a mark. Raises ValueError when something stands behind a closing mark.
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
            raise ValueError("something stands behind a closing quotation mark")
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
    """The links of a table, in its order.

    Raises FormatError for the first line that does not agree with the dialect. Time and memory
    are proportional to the data.
    """
    numbers: dict[bytes, int] = {}
    source, target, weight = array("I"), array("I"), array("d")
    counts = _Counts()
    needed = max(dialect.source, dialect.target, dialect.weight or 0) + 1
    header_pending = dialect.header
    pending: list[bytes] = []  # lines that begin with a quoted field that has not ended yet
    pending_line = pending_size = 0
    comment = tuple(bytes([sign]) for sign in dialect.comment)
    line_number = 0

    def node(field: bytes) -> int:
        found = numbers.get(field)
        if found is None:
            found = numbers[field] = len(numbers)
        return found

    for line in io.BytesIO(data):
        line_number += 1
        at = line_number
        if line.endswith(b"\n"):
            line = line[:-1]
        if line.endswith(b"\r"):
            counts.carriage_returns += 1
            line = line[:-1]
        if len(line) > LONGEST_LINE:
            raise FormatError(f"a line of {len(line):,} bytes; this is no table of links", at)
        if pending:
            at = pending_line
            pending.append(line)
            pending_size += len(line) + 1
            if pending_size > LONGEST_LINE:
                raise FormatError('a quotation mark (") that is never closed', at)
            if b'"' not in line:
                continue
            line = b"\n".join(pending)
            pending = []
        else:
            stripped = line.strip(_BLANKS)
            if not stripped:
                counts.blank_lines += 1
                continue
            if dialect.delimiter == b"\t":
                stripped = line.strip(b" ")  # a tab at the beginning ends an empty field
            if stripped.startswith(comment):
                if (
                    dialect.delimiter is not None
                    and len(source)
                    and not dialect.comment_decides
                    and line.count(dialect.delimiter) + 1 == dialect.fields
                ):
                    sign = stripped[:1].decode()
                    raise FormatError(
                        f"begins with {sign} and has as many fields as a link: --comment '{sign}' "
                        "passes over it, --comment none reads it",
                        at,
                    )
                counts.comments += 1
                continue
            if stripped[:1] == b"%" and not dialect.comment_decides and not dialect.escaped:
                raise FormatError(
                    "begins with %: --comment '#%' passes over it, --comment '#' reads it", at
                )
            if dialect.delimiter is None and len(stripped) == 1:
                counts.single_characters += 1
                continue
        try:
            fields = split_fields(line, dialect.delimiter, dialect.quotes)
        except ValueError as error:
            raise FormatError(str(error), at) from None
        if fields is None:
            pending, pending_line, pending_size = [line], at, len(line)
            continue
        if header_pending:
            header_pending = False
            continue
        if len(fields) < needed or (dialect.fields is not None and len(fields) != dialect.fields):
            expected = needed if dialect.fields is None else dialect.fields
            raise FormatError(
                f"{_times(len(fields), 'field', 'fields')} where {expected} "
                f"{'are' if expected > 1 else 'is'} expected; "
                + (
                    "--source-column, --target-column and --weight-column name those that count"
                    if len(fields) > needed
                    else "a link needs a source and a target"
                    + (" and a weight" if dialect.weight is not None else "")
                ),
                at,
            )
        if dialect.weight is not None:
            text = fields[dialect.weight]
            if not is_number(text, dialect.decimal_comma):
                shown = text.decode("utf-8", "replace")
                hint = "--weight-column none reads no weights"
                if not dialect.decimal_comma and is_number(text, True):
                    hint = "--decimal , reads weights with a decimal comma"
                raise FormatError(
                    f"the weight '{shown}' is not a number; {hint}", at, dialect.weight + 1
                )
            weight.append(float(text.replace(b",", b".") if dialect.decimal_comma else text))
        source.append(node(fields[dialect.source]))
        target.append(node(fields[dialect.target]))
    if pending:
        raise FormatError('a quotation mark (") that is never closed', pending_line)
    if weight and not np.isfinite(np.frombuffer(weight, dtype=np.float64)).all():
        raise FormatError("a weight is too large for a double")
    names = [name.decode("utf-8", "surrogateescape") for name in numbers]
    if dialect.escaped:
        names = _unescaped(names)
    return LinkTable(
        format,
        names,
        np.array(source, dtype=np.uint32),
        np.array(target, dtype=np.uint32),
        np.array(weight, dtype=np.float64) if dialect.weight is not None else None,
        None,
        _said(counts),
    )


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


def _said(counts: _Counts) -> list[str]:
    said = []
    if counts.comments:
        said.append(f"{_times(counts.comments, 'comment line', 'comment lines')} passed over")
    if counts.blank_lines:
        said.append(f"{_times(counts.blank_lines, 'blank line', 'blank lines')} passed over")
    if counts.single_characters:
        many = _times(counts.single_characters, "line", "lines")
        said.append(f"{many} of a single character passed over, as plexor does")
    if counts.carriage_returns:
        many = _times(counts.carriage_returns, "line ends", "lines end")
        said.append(f"{many} in a carriage return, which belongs to no name")
    return said
