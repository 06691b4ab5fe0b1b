# SPDX-License-Identifier: MIT
"""Whole runs of the program, with its files."""

from __future__ import annotations

import os
from dataclasses import dataclass
from pathlib import Path
from typing import Any

from . import _engine
from .clusters import write_levels
from .errors import PlexorError
from .network import Network, _encoded
from .progress import Progress, Reporter
from .results import Result, load
from .search import Weights, _check_threads, _question

__all__ = ["RunSummary", "run"]


@dataclass(frozen=True)
class RunSummary:
    """What a run has left."""

    #: The result directory.
    path: Path
    #: Files that could not be written whole; empty when all is well.
    not_written: tuple[Path, ...]

    def load(self) -> Result:
        """The results, read from the directory."""
        return load(self.path)


def run(
    links: Network | str | os.PathLike[str],
    output: str | os.PathLike[str] | None = None,
    *,
    k: int | None = None,
    directed: bool = False,
    weights: Weights | None = None,
    intensity: float | None = None,
    time_limit: float | None = None,
    digits: int = 6,
    threads: int = 1,
    client: Any = None,
    shared: str | os.PathLike[str] | None = None,
    name: str | None = None,
    log: int | None = None,
    progress: Progress = False,
) -> RunSummary:
    """Does what the program does, and leaves its files, byte for byte.

    `links` is a link file, or a network whose nodes are strings without white space, not empty;
    then `name` is the path that the headers of the files show (else that of the file which the
    network was read from, or "network"). `output` is the directory; None for the name that the
    program would choose, which needs a file or a `name`. `digits` are those of thresholds in that
    name. Several `threads` (0: one a processor) share out the nodes of the clique search, then
    make several k at a time.

    With a `client` of Dask (distributed.Client) each k is a task for its workers, which must see the
    output directory under the same absolute name, and so the folder `shared` (None: beside the output
    directory), where the links and cliques lie meanwhile. Reading and the clique search, on `threads`,
    are done here. Results are the same. A worker that is lost leaves nothing half-written.

    `log` is a file descriptor for what the program prints, None for nobody. The other
    parameters are those of find_communities.

    Raises ValueError for what does not go together, PlexorError with the program's text for what
    ends a run (no such file, a line that is wrong, a directory that is not empty), and
    KeyboardInterrupt after Ctrl-C: then the files written so far are there.
    """
    if k is not None and not (isinstance(k, int) and 0 <= k < 1 << 32):
        raise ValueError(f"k is one integer, not {k!r}")
    if not (isinstance(digits, int) and 0 <= digits < 1 << 32):
        raise ValueError(f"digits is an integer, not {digits!r}")
    _check_threads(threads)
    if client is not None and log is not None:
        raise ValueError("client and log do not go together")
    if shared is not None and client is None:
        raise ValueError("shared is for runs with a client")
    levels: dict[str, Any] | None = None if client is None else {}
    given: tuple[Any, ...] | None = None
    if isinstance(links, Network):
        question = _question(links, directed, weights, intensity, time_limit)
        if name is None and output is None and not links.input:
            raise ValueError("a network from memory needs an output, or a name for its files")
        path = name or links.input or "network"
        given = _named_links(links, question.weighted)
    else:
        if name is not None:
            raise ValueError("name is for networks from memory: a link file has its own")
        path = os.fspath(links)
        # Its weights are judged by the reader.
        stand_in = Network([], [], [])
        question = _question(stand_in, directed, weights, intensity, time_limit)
    with Reporter(progress) as reporter:
        directory, not_written = _engine.run(
            os.fsencode(path),
            None if output is None else os.fsencode(output),
            k,
            question.directed,
            *question.weights,
            question.intensity,
            question.time_limit,
            digits,
            threads,
            -1 if log is None else log,
            given,  # type: ignore[arg-type]
            reporter.cliques(),
            reporter.levels(),
            levels,
        )
        path_made = Path(os.fsdecode(directory))
        missing = tuple(Path(os.fsdecode(file)) for file in not_written)
        if levels is not None:
            missing += write_levels(
                levels, question.intensity, k, path_made, client, shared, reporter
            )
    return RunSummary(path_made, missing)


def _named_links(network: Network, weighted: bool) -> tuple[Any, ...]:
    for node in network.nodes:
        if not isinstance(node, str) or not node or any(c in " \t\n\v\f\r" for c in node):
            raise PlexorError(
                f"the files can name nodes by strings without white space only, not by {node!r}"
            )
    source, target = network._ends_in_order()
    order = network._order
    nodes = network.nodes
    names = [_encoded(nodes[i]) for i in (range(len(nodes)) if order is None else order.tolist())]
    return source, target, network.weight if weighted else None, names
