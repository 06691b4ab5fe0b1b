# SPDX-License-Identifier: MIT
"""Results: what a run has found, as arrays, wherever it comes from.

`load` reads the directory that a run leaves. What the engine finds in memory has the same types.
Nodes, cliques and communities are numbered from 0, as in the result files; node `i` is called
`Result.names[i]`.
"""

from __future__ import annotations

import html
import os
import re
from collections.abc import Iterator, Sequence
from dataclasses import dataclass
from functools import cached_property
from pathlib import Path
from typing import TYPE_CHECKING, Any, NamedTuple, Protocol, overload

import numpy as np
import numpy.typing as npt

from ._text import Ints, Names, Nodes, Text, Tokens
from .errors import ResultError

if TYPE_CHECKING:
    import networkx
    import pandas

    from .report import Report

__all__ = [
    "ESCAPE_MARKER",
    "Community",
    "CommunityGraph",
    "Distributions",
    "Level",
    "LinkList",
    "Links",
    "Parameters",
    "Result",
    "SetList",
    "load",
]

#: A comment line of this text among those that begin a link file says that its names are escaped:
#: `%20` stands for a blank, `%25` for a percent sign, and so on.
ESCAPE_MARKER = "# plexor: names are escaped as %XX"

#: What -> whose -> (values ascending, how often each occurs). What: "membership" (number of
#: communities of a node), "size" (number of nodes of a community), "overlap" (number of nodes that
#: two communities share, from 1), "degree" (number of communities that one shares nodes with).
#: Whose: "all"; where communities are approximated "merged" (all), "exact" and "appr".
Distributions = dict[str, dict[str, tuple[Ints, Ints]]]

_DISTRIBUTIONS = ("membership", "size", "overlap", "degree")


@dataclass(frozen=True)
class Parameters:
    """What a run was asked for."""

    #: The full path of the link file, "" when there was none.
    input: str = ""
    directed: bool = False
    #: The lower and the upper bound of link weights, both strict; None where there is none. An
    #: upper bound that was set but is nowhere written (the directory was named by `-o`) is NaN.
    weights: tuple[float | None, float | None] = (None, None)
    #: The threshold of link weight intensity.
    intensity: float | None = None
    #: Seconds of processor time a node.
    time_limit: float | None = None
    #: The only k, if one was chosen.
    k: int | None = None

    @property
    def weighted(self) -> bool:
        """Whether link weights were read."""
        return self.intensity is not None or self.weights != (None, None)


class SetList(Sequence["npt.NDArray[np.uint32]"]):
    """A list of sets of numbers, one after the other in one array.

    `members` has all of them (uint32); set `i` is `members[offsets[i]:offsets[i + 1]]`, and
    `self[i]` a view of it. `offsets` (int64) has one entry more than there are sets. Node sets
    ascend; clique numbers stand in the order in which the cliques joined.
    """

    def __init__(self, members: Nodes, offsets: Ints) -> None:
        self.members = members
        self.offsets = offsets

    def __len__(self) -> int:
        return len(self.offsets) - 1

    @overload
    def __getitem__(self, i: int) -> Nodes: ...
    @overload
    def __getitem__(self, i: slice) -> list[Nodes]: ...
    def __getitem__(self, i: int | slice) -> Nodes | list[Nodes]:
        if isinstance(i, slice):
            return [self[j] for j in range(*i.indices(len(self)))]
        i = _position(i, len(self))
        return self.members[self.offsets[i] : self.offsets[i + 1]]

    def __iter__(self) -> Iterator[Nodes]:
        ends = self.offsets.tolist()
        for begin, end in zip(ends, ends[1:]):
            yield self.members[begin:end]

    def __eq__(self, other: object) -> bool:
        return (
            isinstance(other, SetList)
            and np.array_equal(self.offsets, other.offsets)
            and np.array_equal(self.members, other.members)
        )

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        return f"<SetList: {len(self)} sets, {len(self.members)} members>"

    @property
    def sizes(self) -> Ints:
        """The number of members of each set."""
        return np.diff(self.offsets)

    def owners(self) -> Ints:
        """For each member the number of its set, so that `members` and this are two columns."""
        return np.repeat(np.arange(len(self)), self.sizes)


class LinkList(Sequence["tuple[npt.NDArray[np.uint32], npt.NDArray[np.uint32]]"]):
    """The links of each community: those of community `i` are the pairs of `source` and `target`
    (uint32 node numbers) from `offsets[i]` to `offsets[i + 1]`, and `self[i]` is both as views.
    Undirected runs have the smaller number first; directed runs have the direction of the network.
    Intensity runs repeat a link for each k-clique that it is in.
    """

    def __init__(self, source: Nodes, target: Nodes, offsets: Ints) -> None:
        self.source = source
        self.target = target
        self.offsets = offsets

    def __len__(self) -> int:
        return len(self.offsets) - 1

    @overload
    def __getitem__(self, i: int) -> tuple[Nodes, Nodes]: ...
    @overload
    def __getitem__(self, i: slice) -> list[tuple[Nodes, Nodes]]: ...
    def __getitem__(
        self, i: int | slice
    ) -> tuple[Nodes, Nodes] | list[tuple[Nodes, Nodes]]:
        if isinstance(i, slice):
            return [self[j] for j in range(*i.indices(len(self)))]
        i = _position(i, len(self))
        part = slice(self.offsets[i], self.offsets[i + 1])
        return self.source[part], self.target[part]

    def __eq__(self, other: object) -> bool:
        return (
            isinstance(other, LinkList)
            and np.array_equal(self.offsets, other.offsets)
            and np.array_equal(self.source, other.source)
            and np.array_equal(self.target, other.target)
        )

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        return f"<LinkList: {len(self)} communities, {len(self.source)} links>"


class Links(NamedTuple):
    """The links of a network by node numbers (uint32), ordered by the names of their nodes, byte by
    byte. A link and its reverse are two. `weight` (float64) is None when no weights were read;
    from result files it has the six digits that these have."""

    source: Nodes
    target: Nodes
    weight: npt.NDArray[np.float64] | None


class CommunityGraph(NamedTuple):
    """Which communities share nodes: `a < b` are their numbers, `shared` is how many nodes they
    share, all int64, ascending by (a, b)."""

    a: Ints
    b: Ints
    shared: Ints


class LevelData(Protocol):
    """Where a level has its arrays from: files, or the engine."""

    def nodes(self) -> tuple[SetList, int]: ...
    def cliques(self) -> SetList | None: ...
    def k_cliques(self) -> SetList | None: ...
    def links(self) -> LinkList: ...
    def graph(self) -> CommunityGraph: ...
    def distributions(self) -> Distributions: ...


class Community:
    """One community, with the names of its nodes."""

    def __init__(self, level: Level, number: int) -> None:
        self._level = level
        #: Its number, from 0, the same in all arrays of the level.
        self.number = number

    @property
    def nodes(self) -> list[Any]:
        """The names of its nodes, in the order of their numbers."""
        names = self._level.names
        return [names[i] for i in self.members.tolist()]

    @property
    def members(self) -> Nodes:
        """The numbers of its nodes, ascending."""
        return self._level.nodes[self.number]

    @property
    def links(self) -> list[tuple[Any, Any]]:
        """The links inside its cliques, as pairs of names."""
        names = self._level.names
        source, target = self._level.links[self.number]
        return [(names[a], names[b]) for a, b in zip(source.tolist(), target.tolist())]

    @property
    def cliques(self) -> Nodes | None:
        """The numbers of its cliques, in the order in which they joined; None in intensity runs."""
        cliques = self._level.cliques
        return None if cliques is None else cliques[self.number]

    @property
    def exact(self) -> bool:
        """False when it has a clique that is approximated."""
        return self.number < self._level.n_exact

    def __len__(self) -> int:
        return len(self.members)

    def __iter__(self) -> Iterator[Any]:
        return iter(self.nodes)

    def __contains__(self, node: object) -> bool:
        return node in self.nodes

    def __repr__(self) -> str:
        kind = "" if self.exact else ", approximated"
        return f"<Community {self.number} at k={self._level.k}: {len(self)} nodes{kind}>"


class Level(Sequence[Community]):
    """The communities of one k, the exact ones first. Arrays are read or made when first used."""

    def __init__(self, k: int, result: Result, data: LevelData) -> None:
        self.k = k
        #: What the level is a part of.
        self.result = result
        self._data = data

    @property
    def names(self) -> Sequence[Any]:
        """The name of each node of the network."""
        return self.result.names

    @cached_property
    def _nodes(self) -> tuple[SetList, int]:
        return self._data.nodes()

    @property
    def nodes(self) -> SetList:
        """The nodes of each community."""
        return self._nodes[0]

    @property
    def n_exact(self) -> int:
        """How many communities hold no approximated clique: these come first."""
        return self._nodes[1]

    @cached_property
    def cliques(self) -> SetList | None:
        """The numbers of the cliques of each community; None in intensity runs."""
        return self._data.cliques()

    @cached_property
    def k_cliques(self) -> SetList | None:
        """The k-cliques above the intensity threshold; None in other runs."""
        return self._data.k_cliques()

    @cached_property
    def links(self) -> LinkList:
        """The links of each community."""
        return self._data.links()

    @cached_property
    def graph(self) -> CommunityGraph:
        """Which communities share nodes."""
        return self._data.graph()

    @cached_property
    def distributions(self) -> Distributions:
        """The four distributions, as their type describes them."""
        return self._data.distributions()

    def memberships(self) -> dict[Any, list[int]]:
        """The numbers of the communities of each node that is in one, ascending; the nodes in the
        order of their numbers."""
        found: dict[int, list[int]] = {}
        for node, number in zip(self.nodes.members.tolist(), self.nodes.owners().tolist()):
            found.setdefault(node, []).append(number)
        names = self.names
        return {names[node]: found[node] for node in sorted(found)}

    def to_pandas(self) -> pandas.DataFrame:
        """A row for each membership: `community` (its number), `node` (its name), `exact`. The rows
        are ordered by community, then by the number of the node. Needs pandas."""
        import pandas

        owners = self.nodes.owners()
        names = self.names
        nodes = np.empty(len(owners), object)
        nodes[:] = [names[i] for i in self.nodes.members.tolist()]
        return pandas.DataFrame(
            {"community": owners, "node": nodes, "exact": owners < self.n_exact}
        )

    def to_networkx(self) -> networkx.Graph:
        """The network of the run as a NetworkX graph (a DiGraph where directed). Each node has the
        numbers of its communities as the attribute `communities`, a list; links have their
        `weight`, where weights were read. Needs NetworkX."""
        import networkx

        links, names = self.result.links, self.names
        directed = self.result.parameters.directed
        graph = networkx.DiGraph() if directed else networkx.Graph()
        graph.add_nodes_from((name, {"communities": []}) for name in names)
        ends = ((names[a], names[b]) for a, b in zip(links.source.tolist(), links.target.tolist()))
        if links.weight is None:
            graph.add_edges_from(ends)
        else:
            for (a, b), weight in zip(ends, links.weight.tolist()):
                # Without direction a link and its reverse are one, with the sum of both.
                before = graph.edges[a, b]["weight"] if graph.has_edge(a, b) else 0.0
                graph.add_edge(a, b, weight=before + weight)
        for name, numbers in self.memberships().items():
            graph.nodes[name]["communities"] = numbers
        return graph

    def community_graph(self) -> networkx.Graph:
        """The communities as a NetworkX graph: nodes are their numbers, with `size` and `exact`;
        links join communities that share nodes, with `shared`, how many. Needs NetworkX."""
        import networkx

        graph = networkx.Graph()
        for number, size in enumerate(self.nodes.sizes.tolist()):
            graph.add_node(number, size=size, exact=number < self.n_exact)
        for a, b, shared in zip(*(column.tolist() for column in self.graph)):
            graph.add_edge(a, b, shared=shared)
        return graph

    def summary(self) -> dict[str, int]:
        """The level in numbers: `k`, `communities`, `exact` (of these), `largest` and `second` (the
        nodes of the two largest, 0 where there is none), `covered` (nodes in a community), `shared`
        (nodes in two or more)."""
        sizes = np.sort(self.nodes.sizes)[::-1].tolist() + [0, 0]
        memberships = np.bincount(self.nodes.members.astype(np.int64), minlength=1)
        return {
            "k": self.k,
            "communities": len(self),
            "exact": self.n_exact,
            "largest": sizes[0],
            "second": sizes[1],
            "covered": int(np.count_nonzero(memberships)),
            "shared": int(np.count_nonzero(memberships > 1)),
        }

    def _repr_html_(self) -> str:
        shown = 10
        rows = [
            [c.number, len(c), "yes" if c.exact else "approximated", _some_names(c)]
            for c in self[:shown]
        ]
        more = f"<p>... and {len(self) - shown} more</p>" if len(self) > shown else ""
        title = f"{len(self)} communities at k={self.k}"
        return _html_table(title, ["community", "nodes", "exact", ""], rows) + more

    def __len__(self) -> int:
        return len(self.nodes)

    @overload
    def __getitem__(self, i: int) -> Community: ...
    @overload
    def __getitem__(self, i: slice) -> list[Community]: ...
    def __getitem__(self, i: int | slice) -> Community | list[Community]:
        if isinstance(i, slice):
            return [Community(self, j) for j in range(*i.indices(len(self)))]
        return Community(self, _position(i, len(self)))

    def __repr__(self) -> str:
        appr = len(self) - self.n_exact
        return f"<Level k={self.k}: {len(self)} communities{f', {appr} approximated' if appr else ''}>"


class Result:
    """What one run has found: its network, its cliques, its communities at each k."""

    def __init__(
        self,
        parameters: Parameters,
        data: ResultData,
        levels: dict[int, LevelData],
        path: Path | None = None,
    ) -> None:
        self.parameters = parameters
        #: The result directory; None for what was found in memory.
        self.path = path
        self._data = data
        self._level_data = levels
        self._levels: dict[int, Level] = {}

    @property
    def ks(self) -> list[int]:
        """The k that communities were looked for at, largest first."""
        return sorted(self._level_data, reverse=True)

    def _add_level(self, k: int, data: LevelData) -> None:
        self._level_data[k] = data

    @cached_property
    def _network(self) -> tuple[Sequence[Any], Links]:
        return self._data.network()

    @property
    def names(self) -> Sequence[Any]:
        """The name of each node: a str from result files (bytes that are no UTF-8 stand as
        surrogates, as in os.fsdecode), the user's own objects from memory."""
        return self._network[0]

    @property
    def links(self) -> Links:
        """The links of the network as the run used them."""
        return self._network[1]

    @cached_property
    def _cliques(self) -> tuple[SetList, int]:
        return self._data.cliques()

    @property
    def cliques(self) -> SetList:
        """All maximal cliques of three nodes or more, the exact ones first."""
        return self._cliques[0]

    @property
    def n_exact_cliques(self) -> int:
        """How many cliques are exact; the others are approximated."""
        return self._cliques[1]

    @cached_property
    def escaped(self) -> bool:
        """Whether the link file, as far as it is still there, says that its names are escaped."""
        return _has_escape_marker(self.parameters.input)

    def to_pandas(self) -> pandas.DataFrame:
        """A row for each membership: `k`, and the columns of Level.to_pandas. Needs pandas."""
        import pandas

        frames = []
        for level in self:
            frame = level.to_pandas()
            frame.insert(0, "k", level.k)
            frames.append(frame)
        if not frames:
            return pandas.DataFrame({"k": [], "community": [], "node": [], "exact": []})
        return pandas.concat(frames, ignore_index=True)

    def summary(self) -> dict[str, Any]:
        """The result in numbers: `nodes`, `links` (as the run used them), `cliques`,
        `exact_cliques`, `largest_clique` (its nodes), and `levels`, the summary of each."""
        return {
            "nodes": len(self.names),
            "links": len(self.links.source),
            "cliques": len(self.cliques),
            "exact_cliques": self.n_exact_cliques,
            "largest_clique": int(self.cliques.sizes.max(initial=0)),
            "levels": [level.summary() for level in self],
        }

    def report(self, path: str | os.PathLike[str], **options: Any) -> Report:
        """Writes a page of the result to `path`, one HTML file for a browser; replaces what is there.
        The options are those of `plexor.report.write_report`: `title`, `ks`, `unescape`, ... Returns
        the page and what it had no room for. Raises OSError when it cannot be written."""
        from .report import write_report

        return write_report(self, path, **options)

    def _repr_html_(self) -> str:
        numbers = self.summary()
        title = (
            f"{numbers['nodes']} nodes, {numbers['links']} links, {numbers['cliques']} cliques, "
            f"the largest of {numbers['largest_clique']} nodes"
        )
        columns = ["k", "communities", "exact", "largest", "second", "covered", "shared"]
        rows = [[level[column] for column in columns] for level in numbers["levels"]]
        return _html_table(title, columns, rows)

    def __getitem__(self, k: int) -> Level:
        if k not in self._levels:
            self._levels[k] = Level(k, self, self._level_data[k])
        return self._levels[k]

    def __contains__(self, k: object) -> bool:
        return k in self._level_data

    def __iter__(self) -> Iterator[Level]:
        return (self[k] for k in self.ks)

    def __len__(self) -> int:
        return len(self.ks)

    def __repr__(self) -> str:
        where = f" in {self.path}" if self.path is not None else ""
        return f"<Result{where}: k = {', '.join(map(str, self.ks)) or 'none'}>"


class ResultData(Protocol):
    """Where a result has its arrays from: files, or the engine."""

    def network(self) -> tuple[Sequence[Any], Links]: ...
    def cliques(self) -> tuple[SetList, int]: ...


def load(path: str | os.PathLike[str]) -> Result:
    """Reads the directory that a run of Plexor has left, whatever its switches were.

    Files are read when their arrays are first asked for. Raises FileNotFoundError for what is not
    there, and ResultError (a ValueError) for what is no result, or not the whole of it.
    """
    directory = Path(path)
    parameters = _parameters(directory)
    word = (
        "intensity"
        if parameters.intensity is not None
        else "directed" if parameters.directed else ""
    )
    run = _FileResult(directory, parameters, word)
    levels: dict[int, LevelData] = {
        k: _FileLevel(directory / f"k={k}", run, k) for k in _ks(directory)
    }
    return Result(parameters, run, levels, directory)


_HEADER = re.compile(
    rb"""\#\ Plexor\ was\ run\ on\ links\ taken\ from\ (?P<input>.*)\n
    \#\ at\ (?:no\ lower\ link\ weight\ threshold|a\ lower\ link\ weight\ threshold\ of\ (?P<lower>.*)),\n
    \#\ and\ at\ (?:no\ upper\ link\ weight\ threshold|an\ upper\ link\ weight\ threshold\ of\ (?P<upper>.*))\.\n
    (?:\#\ A\ lower\ link\ weight\ intensity\ threshold\ of\ (?P<intensity>.*)\ was\ set\.\n)?
    \#\ Links\ were\ treated\ as\ (?P<direction>directed|undirected)\.\n
    \#\ (?:No\ time\ limit\ was\ set\ for\ the\ clique\ search\.
        |The\ maximal\ allowed\ time\ per\ node\ during\ clique\ search\ was\ (?P<time>.*)\ secs\.)\n
    (?:\#\ The\ communities\ were\ extracted\ solely\ at\ k=(?P<k>\d+)\.\n)?""",
    re.VERBOSE | re.DOTALL,
)
# Where the description of the run ends its path, which may hold any bytes.
_THRESHOLDS = re.compile(rb"\n# at (?:no|a) lower link weight threshold")
_K_FOLDER = re.compile(r"k=(0|[1-9][0-9]*)")


def _parameters(directory: Path) -> Parameters:
    file = directory / "input_params.txt"
    if directory.is_dir() and not file.exists():
        raise ResultError(f"{directory} is no result directory: it has no input_params.txt")
    match = _HEADER.fullmatch(file.read_bytes())
    if match is None:
        raise ResultError(f"{file} does not describe a run, or not to its end")
    found = match.groupdict()
    number = {
        name: float(found[name]) if found[name] is not None else None
        for name in ("lower", "intensity", "time")
    }
    name = _decoded(found["input"])
    upper = None if found["upper"] is None else _upper_bound(directory, name, number["lower"])
    return Parameters(
        input=name,
        directed=found["direction"] == b"directed",
        weights=(number["lower"], upper),
        intensity=number["intensity"],
        time_limit=number["time"],
        k=None if found["k"] is None else int(found["k"]),
    )


def _upper_bound(directory: Path, link_file: str, lower: float | None) -> float:
    # The files have the lower bound in its place; only a directory that the program named has it.
    number = r"(-?[0-9]+(?:\.[0-9]+)?)"
    before = rf"_{number}" if lower is not None else ""
    ending = rf"_files{before}_w_{number}(?:-d)?(?:-w-th.*)?"
    base = re.escape(os.path.basename(link_file))
    match = re.fullmatch(base + ending, directory.resolve().name, re.DOTALL)
    return float("nan") if match is None else float(match[match.lastindex or 1])


def _ks(directory: Path) -> list[int]:
    with os.scandir(directory) as entries:
        matches = [_K_FOLDER.fullmatch(entry.name) for entry in entries if entry.is_dir()]
    return [int(match[1]) for match in matches if match is not None]


class _FileResult:
    """The files of a run."""

    def __init__(self, directory: Path, parameters: Parameters, word: str) -> None:
        self._directory = directory
        self._parameters = parameters
        self.word = word

    @cached_property
    def _graph(self) -> tuple[list[bytes], Links]:
        directed = self._parameters.directed
        path = self._directory / ("directed_graph" if directed else "graph")
        text = _whole_text(path)
        words = text.bytes[_data_begin(text, path) :].tobytes().split()
        weight = None
        if self._parameters.weighted:
            weight = np.array(words[2::3], dtype=np.bytes_).astype(np.float64)
            del words[2::3]
        # Nodes are numbered as the links first name them.
        names = list(dict.fromkeys(words))
        number = {name: i for i, name in enumerate(names)}
        ends = np.fromiter(map(number.__getitem__, words), np.uint32, len(words))
        if len(ends) % 2 != 0 or (weight is not None and 2 * len(weight) != len(ends)):
            raise ResultError(f"{path}: a line lacks a field")
        return names, Links(ends[0::2].copy(), ends[1::2].copy(), weight)

    @cached_property
    def names(self) -> Names:
        return Names(self._graph[0])

    def network(self) -> tuple[list[str], Links]:
        names, links = self._graph
        return [_decoded(name) for name in names], links

    def cliques(self) -> tuple[SetList, int]:
        word = "directed_" if self._parameters.directed else ""
        return self.node_sets(self._directory / f"{word}cliques")

    def node_sets(self, path: Path) -> tuple[SetList, int]:
        """Records of nodes; how many of them have no sign."""
        members, offsets, n_exact = _records(path, self.names)
        return SetList(members, offsets), n_exact


class _FileLevel:
    """The files of one k."""

    def __init__(self, directory: Path, run: _FileResult, k: int) -> None:
        self._directory = directory
        self._run = run
        self._k = k

    def _path(self, name: str, before: str = "") -> Path:
        word = self._run.word
        return self._directory / f"{before}{word}{'_' if word else ''}{name}"

    def nodes(self) -> tuple[SetList, int]:
        return self._run.node_sets(self._path("communities"))

    def cliques(self) -> SetList | None:
        if self._run.word == "intensity":
            return None
        members, offsets, _ = _records(self._path("communities_cliques"), None)
        return SetList(members, offsets)

    def k_cliques(self) -> SetList | None:
        if self._run.word != "intensity":
            return None
        return self._run.node_sets(self._directory / "k-cliques")[0]

    def links(self) -> LinkList:
        path = self._path("communities_links")
        text = _whole_text(path)
        ends: list[Nodes] = [np.zeros(0, np.uint32)]
        heads: list[Ints] = [np.zeros(0, np.int64)]
        n_words = 0
        for begin, end in text.blocks(_data_begin(text, path)):
            tokens = Tokens(text, begin, end)
            # A community's line holds nothing but its number, that of a link two names.
            is_head = tokens.first & tokens.last
            at = np.flatnonzero(is_head)
            heads.append(at - np.arange(len(at)) + n_words)
            link = ~is_head
            numbers = self._run.names.numbers(text, tokens.starts[link], tokens.ends[link])
            ends.append(numbers)
            n_words += len(numbers)
        both = np.concatenate(ends)
        offsets = np.concatenate([*heads, [n_words]])
        if np.any(offsets % 2 != 0) or offsets[0] != 0:
            raise ResultError(f"{path}: a line lacks a field")
        return LinkList(both[0::2].copy(), both[1::2].copy(), offsets // 2)

    def graph(self) -> CommunityGraph:
        path = self._path("communities", before="graph_of_")
        text = _whole_text(path)
        parts: list[Ints] = [np.zeros(0, np.int64)]
        for begin, end in text.blocks(_data_begin(text, path)):
            tokens = Tokens(text, begin, end)
            parts.append(tokens.numbers(tokens.starts, tokens.ends)[0])
        values = np.concatenate(parts)
        if len(values) % 3 != 0:
            raise ResultError(f"{path}: a line lacks a field")
        a, b, shared = values.reshape(-1, 3).T.copy()
        return CommunityGraph(a, b, shared)

    def distributions(self) -> Distributions:
        # At a k with approximated communities each is written three times.
        parts = {"all": ""}
        if not self._path("size_distribution").exists():
            parts = {"merged": "_merged", "exact": "_exact", "appr": "_appr"}
        return {
            what: {
                whose: _distribution(self._path(f"{what}_distribution{ending}"))
                for whose, ending in parts.items()
            }
            for what in _DISTRIBUTIONS
        }


def _whole_text(path: Path) -> Text:
    text = Text.read(path)
    if len(text.bytes) == 0 or text.bytes[-1] != ord("\n"):
        raise ResultError(f"{path} was not written to its end")
    return text


def _data_begin(text: Text, path: Path) -> int:
    """Where the records begin: after the empty line that ends the header."""
    header = text.bytes[: 1 << 16].tobytes()
    thresholds = _THRESHOLDS.search(header)
    end = -1 if thresholds is None else header.find(b"\n\n", thresholds.start())
    if end < 0:
        raise ResultError(f"{path} has no header of a run")
    return end + 2


def _records(path: Path, names: Names | None) -> tuple[Nodes, Ints, int]:
    """Lines of a number, a colon and members, which are names, or numbers where there are none.

    Returns all members, where those of each record begin, and how many records have no sign.
    """
    text = _whole_text(path)
    members: list[Nodes] = [np.zeros(0, np.uint32)]
    heads: list[Ints] = [np.zeros(0, np.int64)]
    n_members = n_records = n_exact = 0
    for begin, end in text.blocks(_data_begin(text, path)):
        tokens = Tokens(text, begin, end)
        at = np.flatnonzero(tokens.first)
        # After the number comes a colon.
        labels, negative = tokens.numbers(tokens.starts[at], tokens.ends[at] - 1)
        if not np.array_equal(labels, np.arange(n_records, n_records + len(at))):
            raise ResultError(f"{path}: the records are not numbered 0, 1, 2, ...")
        n_records += len(at)
        n_exact += int(len(at) - np.count_nonzero(negative))
        heads.append(at - np.arange(len(at)) + n_members)
        rest = ~tokens.first
        starts, ends = tokens.starts[rest], tokens.ends[rest]
        if names is not None:
            numbers = names.numbers(text, starts, ends)
        else:
            numbers = tokens.numbers(starts, ends)[0].astype(np.uint32)
        members.append(numbers)
        n_members += len(numbers)
    return np.concatenate(members), np.concatenate([*heads, [n_members]]), n_exact


def _distribution(path: Path) -> tuple[Ints, Ints]:
    text = _whole_text(path)
    words = text.bytes[_data_begin(text, path) :].tobytes().split()
    if not text.bytes[-2:].tobytes() == b"\n\n" or len(words) % 2 != 0:
        raise ResultError(f"{path} was not written to its end")
    values = np.array([int(word) for word in words], np.int64).reshape(-1, 2)
    return values[:, 0].copy(), values[:, 1].copy()


def _has_escape_marker(link_file: str) -> bool:
    marker = ESCAPE_MARKER.encode()
    try:
        with open(os.fsencode(link_file), "rb") as file:
            for line in file:
                if not line.startswith(b"#"):
                    return False
                if line.strip() == marker:
                    return True
    except OSError:
        pass
    return False


def _decoded(name: bytes) -> str:
    return name.decode("utf-8", "surrogateescape")


def _some_names(community: Community) -> str:
    shown = 8
    names = community._level.names
    first = ", ".join(str(names[i]) for i in community.members[:shown].tolist())
    return first + (", ..." if len(community) > shown else "")


def _html_table(title: str, columns: list[str], rows: list[list[Any]]) -> str:
    def line(cells: list[Any], tag: str) -> str:
        return "<tr>" + "".join(f"<{tag}>{html.escape(str(c))}</{tag}>" for c in cells) + "</tr>"

    body = "".join(line(row, "td") for row in rows)
    return (
        f"<table><caption>{html.escape(title)}</caption>"
        f"<thead>{line(columns, 'th')}</thead><tbody>{body}</tbody></table>"
    )


def _position(i: int, size: int) -> int:
    if i < -size or i >= size:
        raise IndexError(f"number {i} of {size}")
    return i + size if i < 0 else i
