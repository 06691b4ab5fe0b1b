# SPDX-License-Identifier: MIT
"""Writes results in the formats of other programs.

Each writer takes a View and a binary stream. Approximated communities are flagged; their numbers
never carry a sign. The same results give the same bytes.
"""

from __future__ import annotations

import csv
import io
import json
import re
from collections.abc import Callable, Iterable, Iterator
from dataclasses import dataclass
from typing import Any, BinaryIO

import numpy as np

from plexor.formats.link_file import number_text
from plexor.formats.results_view import View
from plexor.formats.table import FormatError
from plexor.results import Level

#: The schema of the JSON export: python/plexor/formats/plexor-result.schema.json.
JSON_SCHEMA = "plexor-result-1"


@dataclass(frozen=True)
class ExportOptions:
    """``singletons``: nodes in no community become communities of their own where a format lists
    communities. ``guard_formulas``: names that a spreadsheet would compute get a ' in front."""

    singletons: bool = False
    guard_formulas: bool = True


@dataclass(frozen=True)
class ExportFormat:
    """A format: what it is, the name of its file, whether it holds one k only, and its writer."""

    what: str
    file: str
    one_k: bool
    write: Callable[[View, BinaryIO, ExportOptions], None]
    lists_communities: bool = False


# Names that not every format can hold

_NOT_IN_XML = re.compile("[\x00-\x08\x0b-\x1f\ud800-\udfff\ufffe\uffff]")
_NMTOKEN = re.compile(r"[\w.:-]+")
_PLAIN_NUMBER = re.compile(r"[+-]?[0-9]+(\.[0-9]*)?([eE][+-]?[0-9]+)?")


def _check_names(names: list[str], bad: re.Pattern[str], format: str) -> None:
    for name in names:
        if bad.search(name):
            raise FormatError(
                f"the name {name.encode('utf-8', 'backslashreplace').decode()!r} has a character "
                f"that {format} cannot hold; --names raw may keep it escaped"
            )


def _flag(value: bool) -> str:
    return "true" if value else "false"


def is_formula(name: str) -> bool:
    """Whether a spreadsheet may take the name for a formula."""
    return name[:1] in ("=", "+", "-", "@", "\t", "\r") and not _PLAIN_NUMBER.fullmatch(name)


# Graphs, by NetworkX


def _suffix(view: View, k: int) -> str:
    return "" if len(view.ks) == 1 else f"_k{k}"


def _numbers(values: Iterable[int]) -> str:
    return " ".join(map(str, values))


def _networkx_graph(view: View, ids: list[str]) -> Any:
    import networkx

    graph = networkx.DiGraph() if view.directed else networkx.Graph()
    for node, name in enumerate(ids):
        data: dict[str, Any] = {"label": view.names[node]}
        for k in view.ks:
            membership, end = view.membership(k), _suffix(view, k)
            own = membership.of(node)
            data["communities" + end] = _numbers(own)
            data["n_communities" + end] = len(own)
            if own:
                data["primary" + end] = int(membership.primary[node])
            data["approximated" + end] = bool(membership.approximated[own].any())
        graph.add_node(name, **data)
    source, target, weight = view.links
    held = {k: view.link_communities(k) for k in view.ks}
    for place, (a, b) in enumerate(zip(source.tolist(), target.tolist())):
        data = {} if weight is None else {"weight": float(weight[place])}
        for k in view.ks:
            data["communities" + _suffix(view, k)] = _numbers(held[k][place])
        graph.add_edge(ids[a], ids[b], **data)
    if len(view.ks) == 1:
        graph.graph["k"] = view.ks[0]
    return graph


def write_graphml(view: View, stream: BinaryIO, options: ExportOptions) -> None:
    """GraphML. Ids are the names where all are fit to be ids of XML, else n0, n1, ...; the
    attribute ``label`` is the name in either case."""
    from networkx.readwrite.graphml import GraphMLWriter

    class Writer(GraphMLWriter):  # type: ignore[misc]
        """Writes booleans as XML does: NetworkX writes False."""

        def add_data(self, name: str, element_type: Any, value: Any, *rest: Any) -> Any:
            element = super().add_data(name, element_type, value, *rest)
            if isinstance(value, bool):
                element.text = _flag(value)
            return element

    _check_names(view.names, _NOT_IN_XML, "GraphML")
    ids = view.names
    if not all(_NMTOKEN.fullmatch(name) for name in ids):
        ids = [f"n{node}" for node in range(len(view.names))]
    writer = Writer(encoding="utf-8", prettyprint=True)
    writer.add_graph_element(_networkx_graph(view, ids))
    writer.dump(stream)


def write_gexf(view: View, stream: BinaryIO, options: ExportOptions) -> None:
    """GEXF 1.2. Ids and labels are the names."""
    import networkx
    from networkx.readwrite.gexf import GEXFWriter

    _check_names(view.names, _NOT_IN_XML, "GEXF")
    if not all(name for name in view.names):
        raise FormatError("GEXF cannot hold an empty name; --names raw keeps it escaped")
    writer = GEXFWriter(encoding="utf-8", prettyprint=True, version="1.2draft")
    graph = _networkx_graph(view, view.names)
    graph.graph.clear()
    writer.add_graph(graph)
    for meta in writer.xml.iter("meta"):
        # The day of writing would make the bytes differ from day to day.
        meta.attrib.pop("lastmodifieddate", None)
        for creator in meta.iter("creator"):
            creator.text = f"Plexor, by NetworkX {networkx.__version__}"
    writer.write(stream)


# Tables


class _Table:
    """CSV with UTF-8, quotation marks where needed, and line feeds."""

    def __init__(self, stream: BinaryIO, guard: bool) -> None:
        self._text = io.StringIO(newline="")
        # Only signs of the line's end are quoted, and a lone carriage return ends a line to readers.
        self._csv = csv.writer(self, lineterminator="\r\n")
        self._stream = stream
        self._guard = guard

    def name(self, name: str) -> str:
        return "'" + name if self._guard and is_formula(name) else name

    def write(self, row: str) -> None:
        self._text.write(row.removesuffix("\r\n") + "\n")

    def row(self, fields: Iterable[Any]) -> None:
        self._csv.writerow(fields)
        if self._text.tell() > 1 << 20:
            self.flush()

    def flush(self) -> None:
        self._stream.write(self._text.getvalue().encode("utf-8", "surrogateescape"))
        self._text.seek(0)
        self._text.truncate()


def write_nodes(view: View, stream: BinaryIO, options: ExportOptions) -> None:
    """A CSV table with a row a node, for Gephi and Cytoscape."""
    table = _Table(stream, options.guard_formulas)
    ends = [_suffix(view, k) for k in view.ks]
    columns = ["communities", "n_communities", "primary", "approximated"]
    table.row(["Id", "Label", *(column + end for end in ends for column in columns)])
    for node, name in enumerate(view.names):
        row: list[Any] = [table.name(name), table.name(name)]
        for k in view.ks:
            membership = view.membership(k)
            own = membership.of(node)
            primary = int(membership.primary[node]) if own else ""
            flag = _flag(bool(membership.approximated[own].any()))
            row += [_numbers(own), len(own), primary, flag]
        table.row(row)
    table.flush()


def write_edges(view: View, stream: BinaryIO, options: ExportOptions) -> None:
    """A CSV table with a row a link, for Gephi and Cytoscape."""
    table = _Table(stream, options.guard_formulas)
    source, target, weight = view.links
    held = {k: view.link_communities(k) for k in view.ks}
    kind = "Directed" if view.directed else "Undirected"
    table.row(
        ["Source", "Target", "Type"]
        + ([] if weight is None else ["Weight"])
        + ["communities" + _suffix(view, k) for k in view.ks]
    )
    for place, (a, b) in enumerate(zip(source.tolist(), target.tolist())):
        row = [table.name(view.names[a]), table.name(view.names[b]), kind]
        if weight is not None:
            row.append(number_text(weight[place]))
        table.row(row + [_numbers(held[k][place]) for k in view.ks])
    table.flush()


def _communities(
    view: View, k: int, options: ExportOptions
) -> Iterator[tuple[int, list[int], bool]]:
    """The communities at k as (number, nodes, approximated); with singletons those after them."""
    level = view.result[k]
    for number, members in enumerate(level.nodes):
        yield number, members.tolist(), number >= level.n_exact
    if options.singletons:
        first = view.membership(k).first
        for extra, node in enumerate(np.flatnonzero(np.diff(first) == 0).tolist()):
            yield len(level) + extra, [node], False


def write_memberships(view: View, stream: BinaryIO, options: ExportOptions) -> None:
    """A CSV table with a row a membership: node, k, community, approximated."""
    table = _Table(stream, options.guard_formulas)
    table.row(["node", "k", "community", "approximated"])
    for k in view.ks:
        for number, members, approximated in _communities(view, k, options):
            for node in members:
                table.row([table.name(view.names[node]), k, number, _flag(approximated)])
    table.flush()


def write_membership_table(view: View, stream: BinaryIO, options: ExportOptions) -> None:
    """A CSV table with a row a node and a column a community: 1 where it is a member, else 0.

    A column is named k4_c7, of an approximated community k4_c7_approximated. Without singletons
    nodes in no community have no row.
    """
    columns: list[str] = []
    own: list[list[int]] = [[] for _ in view.names]
    for k in view.ks:
        for number, members, approximated in _communities(view, k, options):
            for node in members:
                own[node].append(len(columns))
            columns.append(f"k{k}_c{number}" + ("_approximated" if approximated else ""))
    table = _Table(stream, options.guard_formulas)
    table.row(["node", *columns])
    for node, places in enumerate(own):
        if not places:
            continue
        row = ["0"] * len(columns)
        for place in places:
            row[place] = "1"
        table.row([table.name(view.names[node]), *row])
    table.flush()


# Lists


def write_communities(view: View, stream: BinaryIO, options: ExportOptions) -> None:
    """A line a community: its nodes, separated by blanks, as programs that compare covers read."""
    for name in view.names:
        if not name or re.search(r"[ \t\n\r\x0b\x0c]", name):
            raise FormatError(
                f"the name '{name}' cannot stand in a line of names; --names raw keeps it escaped"
            )
    for _, members, _ in _communities(view, view.ks[0], options):
        line = " ".join([view.names[node] for node in members]) + "\n"
        stream.write(line.encode("utf-8", "surrogateescape"))


def _json_text(value: Any) -> str:
    return json.dumps(value, allow_nan=False, ensure_ascii=False)


def _json_bytes(text: str) -> bytes:
    return text.encode("utf-8")


_SURROGATES = re.compile("[\ud800-\udfff]")


def write_cdlib(view: View, stream: BinaryIO, options: ExportOptions) -> None:
    """The JSON of cdlib's read_community_json."""
    _check_names(view.names, _SURROGATES, "JSON")
    (k,) = view.ks
    communities, approximated = [], []
    covered: set[int] = set()
    for number, members, is_approximated in _communities(view, k, options):
        communities.append([view.names[node] for node in members])
        covered.update(members)
        if is_approximated:
            approximated.append(number)
    parameters = {**_parameters(view), "k": k, "approximated": approximated}
    value = {
        "communities": communities,
        "algorithm": "plexor",
        "params": parameters,
        "overlap": True,
        "coverage": len(covered) / len(view.names) if view.names else 0.0,
    }
    stream.write(_json_bytes(_json_text(value) + "\n"))


def _parameters(view: View) -> dict[str, Any]:
    parameters = view.result.parameters
    lower, upper = parameters.weights
    return {
        "input": parameters.input.encode("utf-8", "surrogateescape").decode("utf-8", "replace"),
        "directed": parameters.directed,
        "lower_weight": lower,
        # Result files do not always tell the upper bound.
        "upper_weight": None if upper is None or upper != upper else upper,
        "intensity": parameters.intensity,
        "time_limit": parameters.time_limit,
    }


def write_json(view: View, stream: BinaryIO, options: ExportOptions) -> None:
    """Everything as JSON, nodes by their positions in "nodes"; see the schema."""
    _check_names(view.names, _SURROGATES, "JSON")
    result = view.result
    weight = result.links.weight
    head = {
        "schema": JSON_SCHEMA,
        "parameters": _parameters(view),
        "nodes": view.names,
        "links": {
            "source": result.links.source.tolist(),
            "target": result.links.target.tolist(),
            "weight": None if weight is None else weight.tolist(),
        },
        "cliques": [
            {"nodes": members.tolist(), "approximated": number >= result.n_exact_cliques}
            for number, members in enumerate(result.cliques)
        ],
    }
    stream.write(_json_bytes(_json_text(head)[:-1] + ', "levels": ['))
    for place, k in enumerate(view.ks):
        stream.write(_json_bytes((",\n" if place else "\n") + _json_text(_level(result[k]))))
    stream.write(b"\n]}\n")


def _level(level: Level) -> dict[str, Any]:
    cliques = level.cliques
    communities = []
    for number, members in enumerate(level.nodes):
        source, target = level.links[number]
        communities.append(
            {
                "number": number,
                "approximated": number >= level.n_exact,
                "nodes": members.tolist(),
                "links": np.stack([source, target], axis=1).tolist(),
                "cliques": None if cliques is None else cliques[number].tolist(),
            }
        )
    k_cliques = level.k_cliques
    return {
        "k": level.k,
        "communities": communities,
        "k_cliques": None if k_cliques is None else [members.tolist() for members in k_cliques],
        "graph": np.stack(level.graph, axis=1).tolist() if len(level.graph.a) else [],
        "distributions": {
            what: {
                whose: np.stack(values, axis=1).tolist() for whose, values in parts.items()
            }
            for what, parts in level.distributions.items()
        },
    }


#: The formats by the names that --format takes.
EXPORTS: dict[str, ExportFormat] = {
    "graphml": ExportFormat(
        "GraphML, communities as attributes of nodes and links",
        "network.graphml",
        False,
        write_graphml,
    ),
    "gexf": ExportFormat(
        "GEXF for Gephi, communities as attributes of nodes and links",
        "network.gexf",
        False,
        write_gexf,
    ),
    "nodes": ExportFormat("CSV, a row a node", "nodes.csv", False, write_nodes),
    "edges": ExportFormat("CSV, a row a link", "edges.csv", False, write_edges),
    "memberships": ExportFormat(
        "CSV, a row a membership", "memberships.csv", False, write_memberships, True
    ),
    "table": ExportFormat(
        "CSV, a row a node and a column a community, 0 or 1",
        "table.csv",
        False,
        write_membership_table,
        True,
    ),
    "communities": ExportFormat(
        "text, one community per line", "communities.txt", True, write_communities, True
    ),
    "cdlib": ExportFormat("JSON as cdlib reads it", "cdlib.json", True, write_cdlib, True),
    "json": ExportFormat("everything as JSON", "result.json", False, write_json),
}
