# SPDX-License-Identifier: MIT
"""Puts a page together: one HTML file that holds its style, its script and its data.

The page asks for nothing from outside, and its content security policy forbids it: style and script
are allowed by the hash of their bytes, everything else is refused. Data stands in blocks of JSON that
browsers never execute; "<", ">" and "&" in them are escaped, so names can hold any markup.
"""
from __future__ import annotations

import base64
import hashlib
import html
import json
import os
import tempfile
from collections.abc import Iterable
from importlib import resources
from pathlib import Path
from typing import Any

_ESCAPES = {ord("<"): "\\u003c", ord(">"): "\\u003e", ord("&"): "\\u0026",
            0x2028: "\\u2028", 0x2029: "\\u2029"}


def json_block(name: str, value: Any) -> str:
    """A block of data that the page's script reads by its name."""
    text = json.dumps(value, ensure_ascii=False, separators=(",", ":"), allow_nan=False)
    return f'<script type="application/json" id="plexor-{name}">{text.translate(_ESCAPES)}</script>\n'


def assemble(kind: str, title: str, blocks: Iterable[str]) -> bytes:
    """The whole page. kind: "report", "compare" or "sweep", the name of a built bundle."""
    static = resources.files("plexor.report") / "static"

    def read(name: str) -> str:
        return (static / name).read_text(encoding="utf-8")

    style, script = read(f"{kind}.css"), read(f"{kind}.js")
    # Cytoscape adds this very style sheet when it is missing, which the policy would refuse.
    container = ".__________cytoscape_container { position: relative; }"
    for code in (script, style):
        if "</script" in code.lower() or "</style" in code.lower() or "<!--" in code:
            raise ValueError("the built bundle cannot stand inside a page")
    policy = ("default-src 'none'; img-src data:; base-uri 'none'; form-action 'none'; "
              f"script-src {_hash(script)}; style-src {_hash(container)} {_hash(style)}")
    page = read(f"{kind}.html")
    # In this order: what is put in later is not searched for the marks that come before.
    for mark, text in (
            ("@POLICY@", policy), ("@CONTAINER@", container), ("@STYLE@", style),
            ("@TITLE@", html.escape(title))):
        page = page.replace(mark, text)
    before, after = page.split("@DATA@")
    start, end = after.split("@SCRIPT@")
    return "".join([before, *blocks, start, script, end]).encode("utf-8", "replace")


def _hash(text: str) -> str:
    return "'sha256-" + base64.b64encode(hashlib.sha256(text.encode()).digest()).decode() + "'"


def write_whole(path: str | os.PathLike[str], content: bytes) -> None:
    """Writes a file that is there whole or not at all. OSError if it cannot be written."""
    target = Path(path)
    handle, beside = tempfile.mkstemp(prefix=f".{target.name[:60]}.", dir=target.parent)
    try:
        with os.fdopen(handle, "wb") as out:
            out.write(content)
        umask = os.umask(0)
        os.umask(umask)
        os.chmod(beside, 0o666 & ~umask)
        os.replace(beside, target)
    except BaseException:
        os.unlink(beside)
        raise
