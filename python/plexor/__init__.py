# SPDX-License-Identifier: MIT
"""Plexor: overlapping communities in networks by clique percolation.

    network = plexor.Network.from_pandas(frame, "from", "to")
    level = plexor.find_communities(network, k=4)
    level.to_pandas()

`load` reads what the program has left in a directory, into the same types; it needs nothing but
NumPy.
"""

from typing import TYPE_CHECKING, Any

from .errors import LinkFileError, LinkFileNotFoundError, PlexorError, ResultError
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

if TYPE_CHECKING:
    from .network import Network
    from .search import Cliques, find_cliques, find_communities, levels

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
    "SetList",
    "find_cliques",
    "find_communities",
    "levels",
    "load",
]

# What needs the compiled module is imported when it is first used: results can be read without it.
_COMPILED = {
    "Cliques": "search",
    "Network": "network",
    "find_cliques": "search",
    "find_communities": "search",
    "levels": "search",
}


def __getattr__(name: str) -> Any:
    from importlib import import_module

    if name in _COMPILED:
        value = getattr(import_module(f".{_COMPILED[name]}", __name__), name)
    elif name == "__version__":
        value = import_module("._engine", __name__).version
    else:
        raise AttributeError(f"module {__name__!r} has no attribute {name!r}")
    globals()[name] = value
    return value


def __dir__() -> list[str]:
    return sorted({*globals(), *__all__, "__version__"})
