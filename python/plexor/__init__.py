# SPDX-License-Identifier: MIT
"""Plexor: overlapping communities in networks by clique percolation.

    network = plexor.Network.from_pandas(frame, "from", "to")
    level = plexor.find_communities(network, k=4)
    level.to_pandas()

`load` reads what the program has left in a directory, into the same types; it needs nothing but
NumPy.
"""

from typing import TYPE_CHECKING, Any

if TYPE_CHECKING:
    from .comparison import compare, compare_over_time
    from .errors import LinkFileError, LinkFileNotFoundError, PlexorError, ResultError
    from .network import Network
    from .results import (
        Community,
        CommunityGraph,
        Level,
        LinkList,
        Links,
        Parameters,
        Result,
        SetList,
        load,
    )
    from .running import RunSummary, run
    from .search import Cliques, find_cliques, find_communities, levels
    from .sweeping import sweep

    __version__: str

__all__ = [
    "Cliques",
    "Community",
    "CommunityGraph",
    "Level",
    "LinkFileError",
    "LinkFileNotFoundError",
    "LinkList",
    "Links",
    "Network",
    "Parameters",
    "PlexorError",
    "Result",
    "ResultError",
    "RunSummary",
    "SetList",
    "compare",
    "compare_over_time",
    "find_cliques",
    "find_communities",
    "levels",
    "load",
    "run",
    "sweep",
]

# Names are imported when they are first used: results can be read without the compiled module, and
# NetworkX, which imports its backends, is not slowed down.
_MODULES = {
    "comparison": ("compare", "compare_over_time"),
    "errors": ("LinkFileError", "LinkFileNotFoundError", "PlexorError", "ResultError"),
    "network": ("Network",),
    "results": (
        "Community",
        "CommunityGraph",
        "Level",
        "LinkList",
        "Links",
        "Parameters",
        "Result",
        "SetList",
        "load",
    ),
    "running": ("RunSummary", "run"),
    "search": ("Cliques", "find_cliques", "find_communities", "levels"),
    "sweeping": ("sweep",),
}
_MODULE_OF = {name: module for module, names in _MODULES.items() for name in names}


def __getattr__(name: str) -> Any:
    from importlib import import_module

    if name in _MODULE_OF:
        value = getattr(import_module(f".{_MODULE_OF[name]}", __name__), name)
    elif name == "__version__":
        value = import_module("._engine", __name__).version
    else:
        raise AttributeError(f"module {__name__!r} has no attribute {name!r}")
    globals()[name] = value
    return value


def __dir__() -> list[str]:
    return sorted({*globals(), *__all__, "__version__"})
