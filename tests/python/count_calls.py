# SPDX-License-Identifier: MIT
"""A plugin for pytest: counts which calls the backend answered, so that a test run that never
reached it cannot pass."""

from __future__ import annotations

import os
from collections import Counter
from pathlib import Path

from plexor.networkx_backend import BackendInterface

calls: Counter[str] = Counter()


def _counted(name, function):  # type: ignore[no-untyped-def]
    def call(*args, **kwargs):  # type: ignore[no-untyped-def]
        calls[name] += 1
        return function(*args, **kwargs)

    return call


for _name in ("find_cliques", "k_clique_communities"):
    setattr(BackendInterface, _name, staticmethod(_counted(_name, getattr(BackendInterface, _name))))


def pytest_sessionfinish() -> None:
    text = "".join(f"{name} {count}\n" for name, count in sorted(calls.items()))
    Path(os.environ["PLEXOR_CALLS"]).write_text(text)
