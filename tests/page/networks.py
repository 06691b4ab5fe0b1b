# SPDX-License-Identifier: MIT
"""The networks that the pages are tested with, and runs of the program on them."""
from __future__ import annotations

import os
import random
import subprocess
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PLEXOR = os.environ.get("PLEXOR", str(ROOT / "build" / "release" / "plexor"))

SCRIPTS = ["<script>alert(1)</script>", "</script><script>alert(2)</script>", "<!--", "&lt;b&gt;",
           "\"quoted\"", "Zoë", "Αθήνα", "Москва", "東京", "القاهرة", "日本<b>", "x'y", "=cmd()", "../x",
           "\u2028line", "𝔘𝔫𝔦", "name-that-is-much-longer-than-any-picture-has-room-for-it"]


def planted(seed: int, nodes: int, groups: int, size: int, noise: int) -> str:
    """A network of overlapping dense groups: lines of links, the same for the same arguments."""
    draw = random.Random(seed)
    links = set()
    for group in range(groups):
        first = group * (nodes // groups)
        members = {(first + int(draw.random() * size * 1.3)) % nodes for _ in range(size)}
        members |= {int(draw.random() * nodes) for _ in range(2)}
        links |= {(a, b) for a in members for b in members if a < b and draw.random() < 0.85}
    for _ in range(noise):
        a, b = int(draw.random() * nodes), int(draw.random() * nodes)
        if a != b:
            links.add((min(a, b), max(a, b)))
    return "".join(f"n{a} n{b} {1 + (a * 7 + b) % 9}\n" for a, b in sorted(links))


def rings(n: int) -> str:
    """n cliques of four, each sharing one node with the next: n communities at k=4."""
    lines = []
    for i in range(n):
        clique = [f"a{i}", f"b{i}", f"c{i}", f"a{i + 1}"]
        lines += [f"{u} {v}\n" for j, u in enumerate(clique) for v in clique[j + 1:]]
    return "".join(lines)


def star_of_cliques(n: int) -> str:
    """One node in n communities at k=3."""
    return "".join(f"hub x{i}\nhub y{i}\nx{i} y{i}\n" for i in range(n))


def clique_of(names: list[str]) -> str:
    return "".join(f"{a} {b}\n" for i, a in enumerate(names) for b in names[i + 1:])


def sources() -> dict[str, tuple[Path | str, list[str]]]:
    """Name of a page -> (link file or its text, switches)."""
    airports, faculty = ROOT / "examples" / "us-airports.txt", ROOT / "examples" / "uk-faculty.txt"
    return {
        "airports": (airports, []),
        "airports-directed": (airports, ["-D"]),
        "airports-approximated": (airports, ["-t", "0.000001"]),
        "airports-intensity": (airports, ["-I", "28000", "-k", "4"]),
        "faculty": (faculty, ["-w", "2"]),
        "planted": (planted(1, 300, 25, 12, 300), []),
        "planted-directed": (planted(2, 120, 12, 9, 100), ["-D"]),
        "many": (rings(10000), []),
        "star": (star_of_cliques(62), []),
        "names": (clique_of(SCRIPTS[:9]) + clique_of(SCRIPTS[7:]), []),
        "empty": ("a b\nb c\n", []),
        "one": (clique_of(["a", "b", "c", "d"]), []),
    }


def run(source: Path | str, switches: list[str], folder: Path) -> Path:
    """Runs the program; returns the directory of results."""
    folder.mkdir(parents=True, exist_ok=True)
    if isinstance(source, str):
        (folder / "net.txt").write_text(source, encoding="utf-8")
        source = folder / "net.txt"
    subprocess.run([PLEXOR, "-i", source, "-o", folder / "results", *switches], check=True,
                   stdout=subprocess.DEVNULL)
    return next(path for path in sorted(folder.iterdir()) if path.name.startswith("results"))
