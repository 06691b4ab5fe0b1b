# SPDX-License-Identifier: MIT
"""Networks: links between nodes that are any Python objects."""

from __future__ import annotations

import gzip
import os
import tempfile
import zlib
from collections.abc import Iterable, Sequence
from functools import cached_property
from itertools import chain
from typing import TYPE_CHECKING, Any

import numpy as np
import numpy.typing as npt

from . import _engine
from .errors import LinkFileError, LinkFileNotFoundError

if TYPE_CHECKING:
    import pandas

__all__ = ["Network"]

_Numbers = npt.NDArray[np.uint32]


class Network:
    """Links as they were given: not sorted, merged, summed or turned. What becomes of repeated
    links, of both directions and of weights is settled by each question asked of the network, in
    the same way as the program settles it for the lines of a file:

    * a link of a node with itself is ignored;
    * a link given twice is one, with the sum of both weights;
    * so are a link and its reverse, unless the question is a directed one.

    Nodes come back from results as the objects that they are here. When all of them are strings,
    nodes, cliques and communities have the numbers that the program gives them for a file of these
    links; else they count in the order of `nodes`: as they are first named, or as they stand in
    `names` or in the graph that they come from.

    `source`, `target`: integers, one a link. Without `names` each integer is a node; with `names`
    they are positions in it. `weight`: one number a link; it counts only where a question asks for
    weights, and has to be finite then. `directed`: False for links that have no direction, which
    makes a directed question a ValueError.

    Raises ValueError for columns of different lengths, for what is no integer, for positions
    without a name and for a name that is there twice.
    """

    def __init__(
        self,
        source: npt.ArrayLike,
        target: npt.ArrayLike,
        weight: npt.ArrayLike | None = None,
        names: Iterable[Any] | None = None,
        *,
        directed: bool | None = None,
    ) -> None:
        sources, targets = _integers(source, "source"), _integers(target, "target")
        if len(sources) != len(targets):
            raise ValueError(f"there are {len(sources)} sources and {len(targets)} targets")
        # Integers that are nodes stay an array for as long as nobody wants them as objects.
        self._given: Sequence[Any] | npt.NDArray[np.int64]
        if names is None:
            self._given, self.source, self.target = _engine.number_nodes(sources, targets)
        else:
            self._given = given = list(names)
            if len(set(given)) < len(given):
                raise ValueError(f"the name {_repeated(given)!r} is given to two nodes")
            for column, what in ((sources, "source"), (targets, "target")):
                _check_positions(column, what, len(given))
            self.source = sources.astype(np.uint32)
            self.target = targets.astype(np.uint32)
        self.weight = None if weight is None else np.ascontiguousarray(weight, np.float64)
        if self.weight is not None and self.weight.shape != self.source.shape:
            raise ValueError(f"there are {len(self.source)} links and {self.weight.size} weights")
        #: Whether the links have a direction: None where nobody has said.
        self.directed = directed
        #: The full path of the link file that the network was read from, else "".
        self.input = ""

    @cached_property
    def nodes(self) -> Sequence[Any]:
        """The nodes, in their order. `source` and `target` (uint32) are positions in it."""
        if isinstance(self._given, np.ndarray):
            nodes: list[int] = self._given.tolist()
            return nodes
        return self._given

    @property
    def n_nodes(self) -> int:
        """The number of nodes, those without a link too, if there are such."""
        return len(self._given)

    @property
    def n_links(self) -> int:
        """The number of links as given."""
        return len(self.source)

    def __repr__(self) -> str:
        kind = {None: "", False: ", undirected", True: ", directed"}[self.directed]
        weights = "" if self.weight is None else ", with weights"
        return f"<Network: {self.n_nodes} nodes, {self.n_links} links as given{kind}{weights}>"

    @cached_property
    def _order(self) -> npt.NDArray[np.int64] | None:
        """The positions of the nodes in the order of their names; None for the order they have."""
        given = self._given
        if isinstance(given, np.ndarray) or not all(isinstance(node, str) for node in given):
            return None
        names = [_encoded(name) for name in given]
        order = np.array(sorted(range(len(names)), key=names.__getitem__), np.int64)
        return None if np.array_equal(order, np.arange(len(order))) else order

    def _ends_in_order(self) -> tuple[_Numbers, _Numbers]:
        """Both ends of the links by the places of their nodes in that order."""
        if self._order is None:
            return self.source, self.target
        rank = np.empty(len(self._order), np.uint32)
        rank[self._order] = np.arange(len(self._order), dtype=np.uint32)
        return rank[self.source], rank[self.target]

    def _in_order(self, places: npt.NDArray[np.uint32]) -> list[Any]:
        """The nodes at these places of that order."""
        order = self._order
        at = places.astype(np.int64) if order is None else order[places]
        if isinstance(self._given, np.ndarray):
            found: list[Any] = self._given[at].tolist()
            return found
        return list(map(self._given.__getitem__, at.tolist()))

    @classmethod
    def read(cls, path: str | os.PathLike[str], *, weighted: bool = False) -> Network:
        """Reads a link file, plain or compressed by gzip, with the program's own reader: two names
        a line and, when `weighted`, a weight after them. Names are strings (bytes that are no
        UTF-8 stand as surrogates, as in os.fsdecode).

        Raises LinkFileNotFoundError (a FileNotFoundError) and LinkFileError (a ValueError), with
        the program's words.
        """
        name = os.fspath(path)
        if name.endswith(".gz"):
            names, source, target, weight = _read_compressed(name, weighted)
        else:
            names, source, target, weight = _engine.read_links(os.fsencode(name), weighted)
        network = cls._of(
            [word.decode("utf-8", "surrogateescape") for word in names],
            source,
            target,
            weight if weighted else None,
            None,
        )
        network._order = None  # the reader has sorted them
        network.input = os.path.abspath(name)
        return network

    @classmethod
    def from_networkx(cls, graph: Any, weight: str | None = "weight") -> Network:
        """The nodes, links and weights of a NetworkX graph of any kind. `weight` is the attribute
        that holds the weights: they are there when any link has it, and links without it then have
        no weight that could be used. An undirected graph cannot be asked directed questions.
        """
        nodes = list(graph)
        number = {node: i for i, node in enumerate(nodes)}.__getitem__
        directed: bool = graph.is_directed()
        weights: npt.NDArray[np.float64] | None = None
        if graph.is_multigraph():
            edges = list(graph.edges(data=True))
            source = np.fromiter((number(u) for u, _, _ in edges), np.uint32, len(edges))
            target = np.fromiter((number(v) for _, v, _ in edges), np.uint32, len(edges))
            weights = _weights((data for _, _, data in edges), weight, len(edges))
        else:
            # Row by row at the speed of the dictionaries. Undirected links stand in two rows: the
            # first counts, as in graph.edges.
            rows = [row for _, row in graph.adjacency()]
            degrees = np.fromiter(map(len, rows), np.int64, len(rows))
            n = int(degrees.sum())
            source = np.repeat(np.arange(len(rows), dtype=np.uint32), degrees)
            target = np.fromiter(map(number, chain.from_iterable(rows)), np.uint32, n)
            weights = _weights(chain.from_iterable(row.values() for row in rows), weight, n)
            if not directed:
                first = target >= source
                source, target = source[first], target[first]
                weights = None if weights is None else weights[first]
        return cls._of(nodes, source, target, weights, directed)

    @classmethod
    def from_igraph(cls, graph: Any, weight: str | None = "weight") -> Network:
        """The nodes, links and weights of a python-igraph graph. Nodes are its vertices' names,
        where they have these, else their numbers. `weight` is as in from_networkx."""
        nodes = graph.vs["name"] if "name" in graph.vs.attributes() else range(graph.vcount())
        ends = np.array(graph.get_edgelist(), np.uint32).reshape(-1, 2)
        weights = None
        if weight is not None and weight in graph.es.attributes():
            weights = np.array(
                [np.nan if w is None else w for w in graph.es[weight]], np.float64
            )
        if len(set(nodes)) < len(nodes):
            raise ValueError(f"two vertices have the name {_repeated(nodes)!r}")
        return cls._of(
            list(nodes), ends[:, 0].copy(), ends[:, 1].copy(), weights, graph.is_directed()
        )

    @classmethod
    def from_scipy(
        cls, matrix: Any, names: Iterable[Any] | None = None, *, directed: bool | None = None
    ) -> Network:
        """A link for each entry of a square sparse matrix (or dense array) that is not 0, from its
        row to its column, with the entry as weight. A symmetric matrix has each link twice: it is
        taken as undirected, each link once, unless `directed` is True. Nodes are the numbers of
        the rows, or `names`. Raises ValueError for a matrix that is not square, and for
        `directed=False` with a matrix that is not symmetric.
        """
        from scipy import sparse

        entries = sparse.coo_matrix(matrix)
        if entries.shape[0] != entries.shape[1]:
            raise ValueError(f"the matrix is not square: {entries.shape}")
        entries.sum_duplicates()
        entries.eliminate_zeros()
        if directed is not True:
            # (A NaN is not equal to itself: such a matrix counts as not symmetric.)
            symmetric = (entries != entries.T).nnz == 0
            if directed is False and not symmetric:
                raise ValueError("the matrix is not symmetric: its links have a direction")
            directed = not symmetric
        row, column, value = entries.row, entries.col, entries.data
        order = np.lexsort((column, row))
        if not directed:
            order = order[row[order] <= column[order]]
        nodes = list(range(entries.shape[0]) if names is None else names)
        if len(nodes) != entries.shape[0]:
            raise ValueError(f"there are {entries.shape[0]} rows and {len(nodes)} names")
        if len(set(nodes)) < len(nodes):
            raise ValueError(f"the name {_repeated(nodes)!r} is given to two nodes")
        return cls._of(
            nodes,
            row[order].astype(np.uint32),
            column[order].astype(np.uint32),
            value[order].astype(np.float64),
            directed,
        )

    @classmethod
    def from_pandas(
        cls,
        frame: pandas.DataFrame,
        source: str = "source",
        target: str = "target",
        weight: str | None = None,
        *,
        directed: bool | None = None,
    ) -> Network:
        """A link for each row of a data frame, its columns by their names. Raises KeyError for a
        column that is not there and ValueError for a row without a source or a target."""
        import pandas

        columns = [frame[source], frame[target]]
        for column in columns:
            if column.isna().any():
                row = frame.index[column.isna().argmax()]
                raise ValueError(f"row {row!r} has no {column.name}")
        both = np.empty(2 * len(frame), object)
        both[0::2], both[1::2] = columns[0], columns[1]
        numbers, nodes = pandas.factorize(both)
        weights = None if weight is None else frame[weight].to_numpy(np.float64, na_value=np.nan)
        ends = numbers.astype(np.uint32)
        return cls._of(nodes.tolist(), ends[0::2].copy(), ends[1::2].copy(), weights, directed)

    @classmethod
    def _of(
        cls,
        nodes: Sequence[Any],
        source: _Numbers,
        target: _Numbers,
        weight: npt.NDArray[np.float64] | None,
        directed: bool | None,
    ) -> Network:
        network = cls.__new__(cls)
        network._given = nodes
        network.source, network.target = source, target
        network.weight = weight
        network.directed = directed
        network.input = ""
        return network


def _integers(values: npt.ArrayLike, what: str) -> npt.NDArray[np.int64]:
    array = np.asarray(values)
    if array.ndim != 1:
        raise ValueError(f"{what} has {array.ndim} dimensions instead of one")
    if array.size == 0:
        return np.zeros(0, np.int64)
    if array.dtype.kind not in "iu":
        raise ValueError(
            f"{what} holds {array.dtype}, not integers; with names of nodes use from_pandas, or "
            "positions and names="
        )
    if array.dtype.kind == "u" and array.itemsize == 8 and array.max() > np.iinfo(np.int64).max:
        raise ValueError(f"{what} holds numbers of more than 63 bits")
    return np.ascontiguousarray(array, np.int64)


def _check_positions(column: npt.NDArray[np.int64], what: str, n_names: int) -> None:
    if len(column) > 0 and (column.min() < 0 or column.max() >= n_names):
        at = int(np.flatnonzero((column < 0) | (column >= n_names))[0])
        raise ValueError(f"{what}[{at}] is {column[at]}, and there are {n_names} names")


def _weights(
    attributes: Iterable[dict[str, Any]], name: str | None, n: int
) -> npt.NDArray[np.float64] | None:
    if name is None:
        return None
    found = [data.get(name) for data in attributes]
    if all(weight is None for weight in found):
        return None
    return np.fromiter((np.nan if w is None else float(w) for w in found), np.float64, n)


def _encoded(name: str) -> bytes:
    try:
        return name.encode("utf-8", "surrogateescape")
    except UnicodeEncodeError:
        # A surrogate that stands for no byte: no file can hold it, so any place will do.
        return name.encode("utf-8", "surrogatepass")


def _repeated(names: Iterable[Any]) -> Any:
    seen = set()
    for name in names:
        if name in seen:
            return name
        seen.add(name)
    raise AssertionError("all names are different")


def _read_compressed(name: str, weighted: bool) -> tuple[list[bytes], Any, Any, Any]:
    # The reader takes a path: that of the unpacked text, which nobody else sees.
    with tempfile.NamedTemporaryFile(prefix="plexor-") as unpacked:
        try:
            with gzip.open(name, "rb") as packed:
                while block := packed.read(1 << 20):
                    unpacked.write(block)
        except FileNotFoundError:
            raise LinkFileNotFoundError(f"ERROR : File not found: '{name}' ") from None
        except (OSError, EOFError, zlib.error) as error:
            raise LinkFileError(f"'{name}' cannot be unpacked: {error}") from error
        unpacked.flush()
        found: tuple[list[bytes], Any, Any, Any] = _engine.read_links(
            os.fsencode(unpacked.name), weighted
        )
        return found
