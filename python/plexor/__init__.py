# SPDX-License-Identifier: MIT
"""Plexor: overlapping communities in networks by clique percolation."""

from .errors import PlexorError, ResultError
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

__all__ = [
    "Community",
    "CommunityGraph",
    "Level",
    "LinkList",
    "Links",
    "Parameters",
    "PlexorError",
    "Result",
    "ResultError",
    "SetList",
    "load",
]
