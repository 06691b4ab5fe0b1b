# SPDX-License-Identifier: MIT
"""Recognises the format of an input from its beginning, and says why.

Nothing is guessed in silence: what was recognised becomes a sentence, and where two readings are
possible reading is refused with the option that decides.
"""

from __future__ import annotations

import re
from collections.abc import Callable
from dataclasses import dataclass, field

from plexor.formats.edge_list import LONGEST_LINE, Dialect, is_number, split_fields
from plexor.formats.escape import carries_marker
from plexor.formats.metis import read_metis
from plexor.formats.options import DELIMITERS, ReadOptions
from plexor.formats.source import Source
from plexor.formats.table import FormatError

_SAMPLE_LINES = 2000

_SUFFIX_FORMATS = {
    ".sif": "sif",
    ".graph": "metis",
    ".metis": "metis",
    ".mtx": "mtx",
    ".gml": "gml",
    ".graphml": "graphml",
    ".gexf": "gexf",
    ".net": "pajek",
    ".paj": "pajek",
}

_DELIMITER_WORDS = {None: "blanks", b"\t": "tabs", b",": "commas", b";": "semicolons"}

# Names of the two ends of a link in headers, as people write them.
_PAIRS = [
    ("source", "target"),
    ("from", "to"),
    ("src", "dst"),
    ("node1", "node2"),
    ("node_1", "node_2"),
    ("node 1", "node 2"),
    ("nodea", "nodeb"),
    ("node_a", "node_b"),
    ("protein1", "protein2"),
    ("protein_1", "protein_2"),
    ("gene1", "gene2"),
    ("gene_a", "gene_b"),
    ("id1", "id2"),
    ("id_1", "id_2"),
    ("name1", "name2"),
    ("author1", "author2"),
    ("user1", "user2"),
    ("fromnodeid", "tonodeid"),
    ("from_id", "to_id"),
    ("source_id", "target_id"),
    ("interactor a", "interactor b"),
    ("interactor_a", "interactor_b"),
    ("official symbol interactor a", "official symbol interactor b"),
]
_WEIGHTS = ["weight", "weights", "combined_score", "score", "strength", "value"]


@dataclass
class Recognition:
    """A format (a key of FORMATS), how a table is written, and the sentences that say so."""

    format: str
    dialect: Dialect = field(default_factory=Dialect)
    said: list[str] = field(default_factory=list)
    directed: bool | None = None


def recognise(source: Source, options: ReadOptions) -> Recognition:
    """What the input is. Raises FormatError when that is not sure."""
    head = source.head
    if not head.strip():
        raise FormatError(f"'{source.name}' is empty")
    if options.format in (None, "edges", "links", "sif"):
        kind = None if options.format else _by_signature(head, source)
        if kind is not None:
            return kind
        return _recognise_table(source, options)
    return Recognition(options.format or "", said=[f"read as {options.format}, as asked"])


def _by_signature(head: bytes, source: Source) -> Recognition | None:
    """Formats that say in their first words what they are."""
    text = head.lstrip()
    if text.startswith(b"%%MatrixMarket"):
        return Recognition("mtx", said=["Matrix Market: the first line says so"])
    if text.startswith(b"<"):
        return _by_root_element(text, source)
    if text[:1] in b"{[":
        raise FormatError(
            f"'{source.name}' looks like JSON, which is none of the formats read here"
        )
    lines = [line.strip() for line in text.split(b"\n", 50)[:50]]
    words = [line for line in lines if line and not line.startswith((b"%", b"#"))]
    first = words[0].lower() if words else b""
    if re.match(rb"\*(vertices|network|arcs|edges|matrix)", first):
        return Recognition("pajek", said=[f"Pajek: begins with '{_shown(words[0], 30)}'"])
    if re.match(
        rb'(?:(?:creator|version|comment|label)\s+("[^"]*"|\S+)\s*)*graph\s*\[',
        b"\n".join(words[:20]),
        re.IGNORECASE,
    ):
        return Recognition("gml", said=["GML: begins with 'graph ['"])
    return None


def _by_root_element(text: bytes, source: Source) -> Recognition:
    for found in re.finditer(rb"<([A-Za-z_][\w.:-]*)", re.sub(rb"(?s)<!--.*?-->", b"", text)):
        root = found[1].split(b":")[-1].lower()
        if root in (b"graphml", b"gexf"):
            name = {b"graphml": "GraphML", b"gexf": "GEXF"}[root]
            return Recognition(root.decode(), said=[f"{name}: the root element says so"])
        raise FormatError(
            f"'{source.name}' is XML with the root element <{_shown(found[1], 30)}>; "
            "of XML formats GraphML and GEXF are read"
        )
    raise FormatError(f"'{source.name}' begins like XML but has no element")


def _shown(text: bytes, length: int = 60) -> str:
    shown = text[:length].decode("utf-8", "replace")
    return shown + ("..." if len(text) > length else "")


# Tables


@dataclass
class _Line:
    number: int
    text: bytes


def _sample(source: Source) -> list[bytes]:
    """The whole lines of the head."""
    lines = source.head.split(b"\n")
    if not source.whole:
        if len(lines) == 1:
            raise FormatError(
                f"the first line has more than {LONGEST_LINE:,} bytes; "
                "this is none of the formats read here",
                1,
            )
        lines.pop()  # it may be cut
    elif lines and not lines[-1]:
        lines.pop()
    return [line[:-1] if line.endswith(b"\r") else line for line in lines[:_SAMPLE_LINES]]


def _comment_signs(lines: list[bytes], options: ReadOptions, said: list[str]) -> bytes:
    if options.comment is not None:
        if options.comment == "none":
            return b""
        return options.comment.encode()
    for line in lines:
        if line.strip():
            if line.lstrip().startswith(b"%"):
                said.append("lines that begin with # or % are comments, as the first one is")
                return b"#%"
            break
    return b"#"


def _refuse_bipartite(comments: list[bytes]) -> None:
    if comments and re.match(rb"%\s*bip\b", comments[0]):
        raise FormatError(
            "'% bip' says that the two columns are different kinds of nodes, each with numbers of "
            "its own. Such a network has no cliques of three nodes: project it on one kind first",
            1,
        )


def _recognise_table(source: Source, options: ReadOptions) -> Recognition:
    said: list[str] = []
    if options.format in ("edges", "links", "sif"):
        said.append(f"read as {options.format}, as asked")
    lines = _sample(source)
    escaped = carries_marker(source.head) and options.delimiter in (None, "blanks")
    if options.format == "links" or (escaped and options.format is None):
        if escaped:
            said.append("a link file whose names are escaped, as its comment says")
        return Recognition("links", _link_file_dialect(lines, options, escaped), said)
    comment = _comment_signs(lines, options, said)
    rows: list[_Line] = []
    comments: list[bytes] = []
    for number, text in enumerate(lines, 1):
        stripped = text.strip()
        if not stripped:
            continue
        if comment and stripped[:1] in [bytes([sign]) for sign in comment]:
            comments.append(stripped)
            continue
        rows.append(_Line(number, text))
    _refuse_bipartite(comments)
    if not rows:
        raise FormatError(f"'{source.name}' has no links: its first lines are all comments")
    suffix_format = next(
        (_SUFFIX_FORMATS[suffix] for suffix in source.suffixes if suffix in _SUFFIX_FORMATS), None
    )
    if options.format is None and suffix_format not in (None, "sif", "metis"):
        raise FormatError(
            f"'{source.name}' is named like {suffix_format} but does not begin like it; "
            f"--format {suffix_format} tries it, --format edges reads it as a table"
        )
    if options.format == "sif" or (options.format is None and suffix_format == "sif"):
        if options.format is None:
            said.append("SIF: the file's name says so")
        return Recognition("sif", said=said)
    if options.format is None and suffix_format == "metis":
        said.append("METIS: the file's name says so")
        return Recognition("metis", said=said)
    if options.format is None and source.whole and _is_metis(source.head):
        if len({len(row.text.split()) for row in rows}) > 1:
            said.append("METIS: counts and both directions of all links agree")
            return Recognition("metis", said=said)
        refuse_metis_lookalike(source.head)
    konect = bool(comments) and re.match(rb"%\s*(a?sym)\b", comments[0]) is not None
    if konect:
        said.append(f"KONECT: the first line says {_shown(comments[0].split()[1])}")
    elif any(b"FromNodeId" in text for text in comments):
        said.append("SNAP: a comment names FromNodeId and ToNodeId")
    dialect = _recognise_dialect(rows, comment, konect, options, said)
    directed = comments[0].split()[1] != b"sym" if konect else None
    return Recognition("edges", dialect, said, directed)


def _link_file_dialect(lines: list[bytes], options: ReadOptions, escaped: bool) -> Dialect:
    """The fixed grammar of link files: two names, a weight if each line has a number there."""
    weighted = True
    for text in lines:
        fields = text.split()
        if len(text.strip()) > 1 and fields and not fields[0].startswith(b"#"):
            weighted = weighted and len(fields) > 2 and is_number(fields[2])
    if options.weight_column is not None:
        weighted = options.weight_column != "none"
    return Dialect(
        weight=2 if weighted else None, comment_decides=True, comment=b"#", escaped=escaped
    )


def _is_metis(data: bytes) -> bool:
    """Whether the bytes are a METIS graph in every detail: counts, ranges, both directions."""
    first = re.match(rb"(?:\s*%[^\n]*\n)*[ \t]*([0-9]{1,12})[ \t]+[0-9]+[ \t01]*\r?\n", data)
    if first is None:
        return False
    # The count of lines settles nearly all files without reading them. Blank lines at the end may
    # be nodes; comments may be blanked in.
    n_lines = data.rstrip().count(b"\n") + 1
    n_comments = sum(data.count(sign) for sign in (b"\n%", b"\n %", b"\n\t%")) + 1
    if not n_lines - n_comments <= int(first[1]) + 1 <= data.count(b"\n") + 1:
        return False
    try:
        return len(read_metis(data)) > 0
    except FormatError:
        return False


def refuse_metis_lookalike(data: bytes) -> None:
    """Raises FormatError for a table that could be a METIS graph as well."""
    if _is_metis(data):
        raise FormatError(
            "this could be a METIS graph (after a line of counts, a line for each node) or a table "
            "of links; --format metis or --format edges decides",
            1,
        )


@dataclass
class _Split:
    delimiter: bytes | None
    rows: list[list[bytes]]

    @property
    def width(self) -> int:
        return len(self.rows[0])


def _split_rows(rows: list[_Line], delimiter: bytes | None, quotes: bool) -> _Split | None:
    """The fields of the lines, when all have as many, two or more."""
    split = []
    text = b""
    for row in rows:
        text = text + b"\n" + row.text if text else row.text
        if delimiter is None and len(text.strip()) == 1:
            text = b""
            continue  # filler
        try:
            fields = split_fields(text, delimiter, quotes)
        except ValueError:
            return None
        if fields is None:
            continue
        split.append(fields)
        text = b""
    if not split or len(split[0]) < 2 or any(len(fields) != len(split[0]) for fields in split):
        return None
    return _Split(delimiter, split)


def _fields_or_none(text: bytes, delimiter: bytes | None, quotes: bool) -> list[bytes]:
    """The fields of a line; no fields where quotation marks do not fit. The reader tells why."""
    try:
        return split_fields(text, delimiter, quotes) or []
    except ValueError:
        return []


def _find_delimiter(rows: list[_Line], options: ReadOptions, said: list[str]) -> tuple[_Split, bool]:
    """The delimiter that gives each line the same number of fields, and whether marks quote."""

    def quotes_for(delimiter: bytes | None) -> bool:
        if options.quotes is not None:
            return options.quotes
        return delimiter in (b",", b";")

    if options.delimiter is not None:
        candidates = [DELIMITERS[options.delimiter]]
    else:
        candidates = [None, b"\t", b",", b";"]
    splits = [
        split
        for delimiter in candidates
        if (split := _split_rows(rows, delimiter, quotes_for(delimiter))) is not None
    ]
    if not splits and (options.columns_given or options.format == "edges"):
        # Columns that the user names need not be all: lines may end in different ways.
        delimiter = candidates[0]
        loose = [_fields_or_none(row.text, delimiter, quotes_for(delimiter)) for row in rows]
        if options.columns_given and (len(candidates) == 1 or delimiter is None):
            return _Split(delimiter, loose), quotes_for(delimiter)
    if not splits:
        raise _no_delimiter(rows, candidates, quotes_for)
    chosen = _choose(splits, rows)
    _refuse_quotation_marks(chosen, quotes_for(chosen.delimiter), options, rows)
    said.append(
        f"a table with {chosen.width} columns separated by {_DELIMITER_WORDS[chosen.delimiter]}"
    )
    return chosen, quotes_for(chosen.delimiter)


def _no_delimiter(
    rows: list[_Line], candidates: list[bytes | None], quotes_for: Callable[[bytes | None], bool]
) -> FormatError:
    """Says which line does not fit, for the delimiter that fits longest."""
    best_reason, best = (
        "no field ends in a blank, tab, comma or semicolon: this is no table of links",
        -1,
    )
    best_line = rows[0].number
    for delimiter in candidates:
        width = 0
        for place, row in enumerate(rows):
            fields = _fields_or_none(row.text, delimiter, quotes_for(delimiter))
            if delimiter is None and len(row.text.strip()) == 1:
                continue
            width = width or len(fields)
            if width < 2:
                break
            if len(fields) != width:
                if place > best:
                    best, best_line = place, row.number
                    word = _DELIMITER_WORDS[delimiter]
                    best_reason = (
                        f"{len(fields)} fields between {word}, where the lines before have "
                        f"{width}; --delimiter says what separates fields, --source-column and "
                        "--target-column which of them count, --format what the file is"
                    )
                break
    return FormatError(best_reason, best_line)


def _commas_in_numbers_only(split: _Split) -> bool:
    return all(b"," not in field or is_number(field, True) for row in split.rows for field in row)


def _ends_in_weights(split: _Split) -> bool:
    """Whether this is source, target and a number in each line (the first may be a header)."""
    rows = split.rows[1:] or split.rows
    return split.width == 3 and all(is_number(row[2]) or is_number(row[2], True) for row in rows)


def _choose(splits: list[_Split], rows: list[_Line]) -> _Split:
    """The reading to take of several. Raises FormatError when there is no telling."""
    left = {split.delimiter: split for split in splits}
    blanks, tab = left.get(None), left.get(b"\t")
    if blanks is not None and tab is not None:
        if blanks.rows == tab.rows:
            del left[None]
        elif not (tab.width == 2 and _ends_in_weights(blanks)):
            del left[None]  # names with blanks, between tabs
    comma, semicolon = left.get(b","), left.get(b";")
    if comma is not None and semicolon is not None and _commas_in_numbers_only(semicolon):
        del left[b","]
    for sign in (b",", b";"):
        table, words = left.get(sign), left.get(None)
        if table is None or words is None:
            continue
        if all(not re.search(rb"[ \t]", field) for row in table.rows for field in row):
            del left[None]  # blanks stand after the delimiter only
        elif sign == b"," and _commas_in_numbers_only(words):
            del left[sign]  # decimal commas
        elif _ends_in_weights(words) and not _ends_in_weights(table):
            del left[sign]  # names such as NEWMAN,M
        elif _ends_in_weights(table) and not _ends_in_weights(words):
            del left[None]
    if len(left) == 1:
        return next(iter(left.values()))
    words_of = " or ".join(_DELIMITER_WORDS[delimiter] for delimiter in left)
    options = ", ".join(f"--delimiter {name}" for name, sign in DELIMITERS.items() if sign in left)
    raise FormatError(f"fields may be separated by {words_of}; {options} decides", rows[0].number)


def _refuse_quotation_marks(
    chosen: _Split, quotes: bool, options: ReadOptions, rows: list[_Line]
) -> None:
    if quotes or options.quotes is not None:
        return
    for place, fields in enumerate(chosen.rows):
        for column, field_text in enumerate(fields, 1):
            if field_text.startswith(b'"'):
                line = rows[place].number if len(rows) == len(chosen.rows) else None
                raise FormatError(
                    f"the field {_shown(field_text, 30)} begins with a quotation mark; --quotes "
                    "yes takes the marks off, --quotes no keeps them in the name",
                    line,
                    column,
                )


def _column(text: str, header: list[str] | None, width: int, option: str) -> int:
    """The column, from 0, that the user named by its number or its name in the header."""
    if header is not None and text in header:
        if header.count(text) > 1:
            raise FormatError(f"the header has the column '{text}' twice; {option} takes a number")
        return header.index(text)
    if text.isdigit() and int(text) >= 1:
        if int(text) > width:
            raise FormatError(f"{option} {text}: there are {width} columns")
        return int(text) - 1
    if header is None:
        raise FormatError(f"{option} {text}: there is no header that names columns; give a number")
    raise FormatError(f"{option}: the header has no column '{text}'; it has: {', '.join(header)}")


def _known_pair(names: list[str]) -> tuple[int, int] | None:
    lower = [name.lower().lstrip("#").strip() for name in names]
    for one, other in _PAIRS:
        if lower.count(one) == 1 and lower.count(other) == 1:
            return lower.index(one), lower.index(other)
    return None


def _is_word(field: bytes) -> bool:
    """Whether this can head a column of numbers: letters, but none of the words for no number."""
    no_number = (b"na", b"nan", b"inf", b"null", b"none", b"-inf")
    return re.search(rb"[A-Za-z\x80-\xff]", field) is not None and field.lower() not in no_number


def _finds_header(split: _Split, options: ReadOptions) -> bool:
    """Whether the first line names columns: only where that is sure."""
    if options.header is not None:
        return options.header
    first, rest = split.rows[0], split.rows[1:]
    for given in (options.source_column, options.target_column, options.weight_column):
        if given not in (None, "none") and not (given or "").isdigit():
            return True  # columns named by words need a header
    width = split.width
    for column in range(min(width, len(first))):
        values = [row[column] for row in rest if column < len(row)]
        if not values or not all(is_number(value) or is_number(value, True) for value in values):
            continue
        # A word above numbers. In a table of two columns both must be, as names may be numbers.
        if _is_word(first[column]) and (
            width > 2 or all(is_number(field) for row in rest for field in row)
        ):
            return True
    pair = _known_pair([field.decode("utf-8", "replace") for field in first])
    if pair is None:
        return False
    # A network may have nodes of such names: "node1 node2" may be a link.
    stems = [re.sub(rb"[0-9a-b]$", b"", first[column].lower()) for column in pair]
    for row in rest:
        for column in pair:
            value = row[column].lower()
            if value in (first[pair[0]].lower(), first[pair[1]].lower()):
                return False
            if any(re.fullmatch(re.escape(stem) + rb"[0-9]+", value) for stem in stems if stem):
                return False
    return True


def _recognise_dialect(
    rows: list[_Line], comment: bytes, konect: bool, options: ReadOptions, said: list[str]
) -> Dialect:
    split, quotes = _find_delimiter(rows, options, said)
    has_header = _finds_header(split, options)
    header = None
    if has_header:
        header = [field.decode("utf-8", "replace") for field in split.rows[0]]
        said.append(f"line {rows[0].number} is a header: {', '.join(header[:8])}")
    data = split.rows[1:] if has_header else split.rows
    if not data:
        raise FormatError("there is a header but no link", rows[0].number)
    source, target = _ends(header, split.width, options)
    weight = _weight_column(
        header, data, split.width, (source, target), konect, rows[-len(data)].number, options, said
    )
    if source == target:
        raise FormatError("the source and the target are the same column")
    decimal_comma = options.decimal == ","
    if weight is not None and not decimal_comma:
        values = [row[weight] for row in data if weight < len(row)]
        if any(is_number(value, True) and not is_number(value) for value in values):
            raise FormatError(
                "weights have a decimal comma; --decimal , reads them, --weight-column none "
                "passes over them",
                rows[-len(data)].number,
                weight + 1,
            )
    weight_said = "no weights" if weight is None else f"weights in column {weight + 1}"
    said.append(f"links from column {source + 1} to column {target + 1}, {weight_said}")
    if not has_header and options.header is None and not konect:
        first = split.rows[0]
        if source < len(first) and target < len(first):
            said.append(
                f"no header: the first link is {_shown(first[source], 30)} - "
                f"{_shown(first[target], 30)}"
            )
    fields_differ = len({len(row) for row in split.rows}) > 1
    return Dialect(
        delimiter=split.delimiter,
        quotes=quotes,
        comment=comment,
        comment_decides=options.comment is not None or comment != b"#",
        header=has_header,
        source=source,
        target=target,
        weight=weight,
        fields=None if fields_differ or options.columns_given else split.width,
        decimal_comma=decimal_comma,
    )


def _ends(header: list[str] | None, width: int, options: ReadOptions) -> tuple[int, int]:
    """The columns of source and target."""
    pair = _known_pair(header) if header is not None else None
    if pair is None:
        if width > 3 and header is not None and not options.columns_given:
            raise FormatError(
                "no two columns of the header are known names for the ends of a link; "
                f"--source-column and --target-column name them. There are: {', '.join(header)}"
            )
        pair = (0, 1)
    source, target = pair
    if options.source_column is not None:
        source = _column(options.source_column, header, width, "--source-column")
    if options.target_column is not None:
        target = _column(options.target_column, header, width, "--target-column")
    return source, target


def _weight_column(
    header: list[str] | None,
    data: list[list[bytes]],
    width: int,
    ends: tuple[int, int],
    konect: bool,
    line: int,
    options: ReadOptions,
    said: list[str],
) -> int | None:
    """The column of the weights, or None."""
    if options.weight_column is not None:
        if options.weight_column == "none":
            return None
        return _column(options.weight_column, header, width, "--weight-column")
    others = [column for column in range(width) if column not in ends]
    if not others:
        return None
    if konect:
        if width > 3:
            said.append("column 4 is the time in KONECT and is skipped")
        return 2
    if header is not None:
        known = [
            column
            for name in _WEIGHTS
            for column in others
            if header[column].lower().strip() == name
        ]
        if known:
            return known[0]
    if len(others) == 1:
        column = others[0]
        values = [row[column] for row in data if column < len(row)]
        if all(is_number(value) or is_number(value, True) for value in values):
            if all(re.fullmatch(rb"[0-9]{9,13}", value) for value in values):
                raise FormatError(
                    f"column {column + 1} looks like times, not weights; --weight-column "
                    f"{column + 1} or --weight-column none decides",
                    line,
                    column + 1,
                )
            return column
        if options.columns_given:
            return None
        if header is not None:
            raise FormatError(
                f"column {column + 1} ('{header[column]}') has '{_shown(values[0], 20)}', which "
                "is no weight; --weight-column none passes over it",
                line,
                column + 1,
            )
        raise FormatError(
            "three columns, and not all of the third are numbers: --format sif reads 'source type "
            f"target', --weight-column none reads the first two, --header yes if line {line} "
            "names columns",
            line,
            column + 1,
        )
    if header is None:
        raise FormatError(
            f"{width} columns and no header; --source-column, --target-column and "
            "--weight-column (a number, or none) say which to read",
            line,
        )
    raise FormatError(
        "no column of the header is known for weights; --weight-column names it or says none. "
        f"There are: {', '.join(header)}",
        line,
    )
