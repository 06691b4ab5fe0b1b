# SPDX-License-Identifier: MIT
"""Names that a link file cannot hold, and the reversible escapes for them.

A link file separates names by white space and takes a leading ``#`` for a comment, so a name with
a blank, a name that begins with ``#`` and the empty name cannot stand in it; nor should one that
begins with a byte order mark, which is no part of a name at the beginning of a file. Where a
network has such a name, all its names are escaped and the file says so in a comment line, MARKER, before the
first link. Without that line names are what they are, and ``%`` is a character like any other.

The escapes: ``%XX`` is the byte with the hexadecimal value XX; ``%`` itself is ``%25``; a lone
``%`` is the empty name.
"""

from __future__ import annotations

import re

from plexor.results import ESCAPE_MARKER

#: The comment line that says that the names of a link file are escaped.
MARKER = ESCAPE_MARKER

# White space as the link file's reader knows it, other control characters (a terminal should not
# meet them), and the sign of the escapes itself.
_IN_NAME = re.compile(r"[\x00-\x20\x7f%]")
_BYTE_ORDER_MARK = "\ufeff"
_ESCAPE = re.compile(r"%([0-9A-Fa-f]{2})")


def needs_escape(name: str) -> bool:
    """Whether a link file cannot hold the name as it is."""
    return not name or name[0] in ("#", _BYTE_ORDER_MARK) or re.search(r"[\x00-\x20\x7f]", name) is not None


def escape(name: str) -> str:
    """The name as it stands in a link file with MARKER. Reversed by `unescape`."""
    if not name:
        return "%"
    escaped = _IN_NAME.sub(lambda found: f"%{ord(found.group()):02X}", name)
    first = {"#": "%23", _BYTE_ORDER_MARK: "%EF%BB%BF"}.get(escaped[0], escaped[0])
    return first + escaped[1:]


def unescape(name: str) -> str:
    """The name that `escape` made this of.

    Raises ValueError when a ``%`` is not followed by two hexadecimal digits.
    """
    if "%" not in name:
        return name
    if name == "%":
        return ""
    if name.count("%") != len(_ESCAPE.findall(name)):
        raise ValueError(f"'{name}' has a % that is not followed by two hexadecimal digits")
    # Escaped bytes may be parts of one UTF-8 character, so they are put together as bytes.
    raw = re.sub(
        rb"%([0-9A-Fa-f]{2})",
        lambda found: bytes([int(found.group(1), 16)]),
        name.encode("utf-8", "surrogateescape"),
    )
    return raw.decode("utf-8", "surrogateescape")


def carries_marker(head: bytes) -> bool:
    """Whether the beginning of a link file says that its names are escaped.

    The marker stands among the comment lines before the first link.
    """
    marker = MARKER.encode()
    for line in head.split(b"\n"):
        line = line.strip(b" \t\r")
        if line == marker:
            return True
        if len(line) > 1 and not line.startswith(b"#"):
            return False
    return False
