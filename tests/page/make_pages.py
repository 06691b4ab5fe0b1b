#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes the pages that the browser's tests open: make_pages.py FOLDER"""
import os
import shutil
import sys
from pathlib import Path

import networks
import plexor
from plexor.comparison import DEFAULT_THRESHOLD, compare, compare_over_time, cover_of
from plexor.report import write_report
from plexor.report.compare_page import write_compare_page
from plexor.sweeping import grid, sweep


def make_other_pages(out: Path) -> None:
    """A comparison of two, one over time, sweeps over one threshold, over two and over k alone."""
    undirected, directed = (plexor.load(out / name / "results") for name in ("airports", "airports-directed"))
    pair = [cover_of(undirected[5], label="undirected"), cover_of(directed[5], label="<b>directed</b>")]
    times = [cover_of(undirected[k], label=f"k={k}") for k in (7, 6, 5, 4)]
    for name, covers in (("compare", pair), ("compare-time", times)):
        write_compare_page(out / f"{name}.html", compare_over_time(covers), [compare(a, b) for a, b in zip(covers, covers[1:])],
                           over_time=len(covers) > 2, threshold=DEFAULT_THRESHOLD)
    os.environ.setdefault("PLEXOR", networks.PLEXOR)
    airports, faculty = (networks.ROOT / "examples" / name for name in ("us-airports.txt", "uk-faculty.txt"))
    for name, path, options in (
            ("sweep", airports, {"lower": grid("20000:30000:2000"), "ks": range(5, 9)}),
            ("sweep-two", faculty, {"lower": grid("1:4:1"), "upper": grid("10,14")}),
            ("sweep-k", faculty, {})):
        sweep(path, out / name, **options)
        shutil.copy(out / name / "sweep.html", out / f"{name}.html")


def main() -> None:
    out = Path(sys.argv[1])
    out.mkdir(parents=True)
    for name, (source, switches) in networks.sources().items():
        results = networks.run(source, switches, out / name)
        write_report(plexor.load(results), out / f"{name}.html")
    make_other_pages(out)
    # More networks, when there are some at hand: a folder of link files.
    for path in sorted(Path(os.environ["PLEXOR_DATA"]).glob("*.txt")) if "PLEXOR_DATA" in os.environ else []:
        if path.stem in ("karate", "lesmis", "dolphins", "netscience", "collins2007", "ca-GrQc", "power", "celegansneural", "email-Enron",
                         "wiki-Vote"):
            write_report(plexor.load(networks.run(path, [], out / path.stem)), out / f"{path.stem}.html")


if __name__ == "__main__":
    main()
