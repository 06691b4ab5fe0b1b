#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes the pages that the browser's tests open: make_pages.py FOLDER"""
import os
import sys
import tempfile
from pathlib import Path

import networks
import plexor
from plexor.report import write_report


def main() -> None:
    out = Path(sys.argv[1])
    out.mkdir(parents=True)
    for name, (source, switches) in networks.sources().items():
        results = networks.run(source, switches, out / name)
        write_report(plexor.load(results), out / f"{name}.html")
    # More networks, when there are some at hand: a folder of link files.
    for path in sorted(Path(os.environ["PLEXOR_DATA"]).glob("*.txt")) if "PLEXOR_DATA" in os.environ else []:
        if path.stem in ("karate", "lesmis", "dolphins", "netscience", "collins2007", "ca-GrQc", "power", "celegansneural"):
            write_report(plexor.load(networks.run(path, [], out / path.stem)), out / f"{path.stem}.html")


if __name__ == "__main__":
    main()
