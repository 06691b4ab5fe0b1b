# SPDX-License-Identifier: MIT
"""Reads GraphML, GEXF, GML and Pajek by NetworkX.

What NetworkX would read wrongly or drop without a word is refused before it sees the file.
"""

from __future__ import annotations

import io
import re
from typing import Any
from xml.etree.ElementTree import ParseError

from plexor.formats.options import ReadOptions
from plexor.formats.table import FormatError, LinkTable, table_of_edges

_PLAIN_ENCODINGS = re.compile(rb"(utf-8|us-ascii|ascii|iso-8859-\d+|windows-125\d|latin-?1)", re.I)


def refuse_xml_entities(data: bytes) -> None:
    """Raises FormatError for XML that declares entities, before a parser sees it.

    Entities can expand a small file into terabytes, or name other files. Only encodings in which
    ASCII characters stand for themselves are let through, so that nothing can hide from this.
    """
    declaration = re.match(rb"\s*<\?xml[^>]*?encoding\s*=\s*[\"']([^\"']*)[\"']", data[:1000])
    if declaration and not _PLAIN_ENCODINGS.fullmatch(declaration[1]):
        shown = declaration[1].decode("ascii", "replace")
        raise FormatError(f"XML in the encoding '{shown}'; make it UTF-8 first", 1)
    found = re.search(rb"<!\s*ENTITY", data, re.IGNORECASE)
    if found is None:
        doctype = re.search(rb"<!DOCTYPE[^>\[]*\[", data)
        if doctype is None:
            return
        found = doctype
    line = data[: found.start()].count(b"\n") + 1
    raise FormatError(
        "the XML file has definitions of its own (entities); they can do harm and are refused. "
        "Write the file without them",
        line,
    )


def read_graphml(data: bytes, options: ReadOptions) -> LinkTable:
    """The links of a GraphML file. Nodes are named by their ids, or by --name-attribute."""
    import networkx

    refuse_xml_entities(data)
    if len(re.findall(rb"<(?:\w+:)?graph[\s>]", data)) > 1:
        raise FormatError("GraphML: there is more than one graph, or one within another")
    if re.search(rb"<(?:\w+:)?(hyperedge|port)[\s>/]", data):
        raise FormatError("GraphML: hyperedges and ports are not read")
    graph = _parsed("GraphML", lambda: networkx.read_graphml(io.BytesIO(data)))
    return _table("GraphML", graph, options)


def read_gexf(data: bytes, options: ReadOptions) -> LinkTable:
    """The links of a GEXF file. Nodes are named by their ids, or by --name-attribute."""
    import networkx

    refuse_xml_entities(data)
    said = []
    # NetworkX knows 1.1 and 1.2; what is read here is the same in 1.3.
    text = re.sub(rb"http://(www\.)?gexf\.net/1\.3(?=[\"'/])", b"http://www.gexf.net/1.2draft", data)
    if text != data:
        text = re.sub(rb"(<gexf\b[^>]*?version\s*=\s*[\"'])1\.3", rb"\g<1>1.2", text, count=1)
        said.append("GEXF 1.3 read as 1.2")
    graph = _parsed("GEXF", lambda: networkx.read_gexf(io.BytesIO(text), node_type=str))
    table = _table("GEXF", graph, options)
    table.said[:0] = said
    return table


def read_gml(data: bytes, options: ReadOptions) -> LinkTable:
    """The links of a GML file. Nodes are named by their labels where all have different ones."""
    import networkx

    text = _decoded("GML", data)
    if not re.search(r"\bmultigraph\s+[01]\b", text):
        # Without this a link that stands twice would end the reading.
        text = re.sub(r"\bgraph\s*\[", "graph [ multigraph 1 ", text, count=1)
    lines = text.split("\n")
    graph = _parsed("GML", lambda: networkx.parse_gml(lines, label="id"))
    if options.name_attribute is None:
        labels = [data.get("label") for _, data in graph.nodes(data=True)]
        if labels and None not in labels and len({str(x) for x in labels}) == len(labels):
            table = _table("GML", graph, options, "label")
            table.said.append("nodes are named by their labels")
            return table
    table = _table("GML", graph, options)
    if options.name_attribute is None:
        table.said.append("nodes are named by their ids, as not all have labels of their own")
    return table


def read_pajek(data: bytes, options: ReadOptions) -> LinkTable:
    """The links of a Pajek network, named by its labels."""
    import networkx

    text = _decoded("Pajek", data)
    lines = [line.strip() for line in text.splitlines()]
    _check_pajek(lines)
    kept = [line for line in lines if line and not line.startswith("%")]
    graph = _parsed("Pajek", lambda: networkx.parse_pajek(kept))
    announced = next(int(line.split()[1]) for line in kept if line.lower().startswith("*vertices"))
    if graph.number_of_nodes() != announced:
        raise FormatError(
            f"Pajek: {announced:,} nodes but {graph.number_of_nodes():,} different labels; "
            "nodes of the same label would become one"
        )
    return _table("Pajek", graph, options)


def _check_pajek(lines: list[str]) -> None:
    """Refuses the parts of the format that NetworkX takes for something else."""
    n_nodes = None
    section = ""
    numbers: set[str] = set()
    for at, line in enumerate(lines, 1):
        if not line or line.startswith("%"):
            continue
        if line.startswith("*"):
            section = line.split()[0].lower()
            if section == "*vertices":
                words = line.split()
                if n_nodes is not None:
                    raise FormatError("Pajek: there is more than one network", at)
                if len(words) < 2 or not words[1].isdigit():
                    raise FormatError("Pajek: *Vertices without their number", at)
                if len(words) > 2:
                    raise FormatError("Pajek: a two-mode network has no cliques of three nodes", at)
                n_nodes = int(words[1])
            elif section not in ("*network", "*arcs", "*edges", "*matrix"):
                raise FormatError(f"Pajek: the part '{section}' is not read", at)
            elif n_nodes is None and section != "*network":
                raise FormatError("Pajek: there is no *Vertices before the links", at)
            elif n_nodes is not None and len(numbers) != n_nodes:
                raise FormatError(
                    f"Pajek: {len(numbers):,} nodes are listed where {n_nodes:,} are announced", at
                )
        elif section == "*vertices":
            if re.match(r'[0-9]+\s+("[^"]*"|[^\s"\']+)(\s[^"\']*)?$', line) is None:
                raise FormatError("Pajek: a line of a node is: number \"label\"", at)
            numbers.add(line.split()[0])
        elif section in ("*arcs", "*edges"):
            words = line.split()
            if len(words) < 2 or words[0] not in numbers or words[1] not in numbers:
                raise FormatError("Pajek: a link begins with the numbers of two listed nodes", at)
            if len(words) > 2 and re.match(r"[+-]?[\d.]+([eE][+-]?\d+)?$", words[2]) is None:
                raise FormatError("Pajek: the weight of a link is not a number", at, 3)
        elif section == "*matrix":
            if len(line.split()) != n_nodes:
                raise FormatError(f"Pajek: a row of the matrix has {n_nodes} numbers", at)
    if n_nodes is None:
        raise FormatError("Pajek: there is no *Vertices")


def _decoded(format: str, data: bytes) -> str:
    try:
        return data.decode("utf-8")
    except UnicodeDecodeError as error:
        line = data[: error.start].count(b"\n") + 1
        raise FormatError(
            f"{format}: not UTF-8; make it so first: iconv -f ISO-8859-1 -t UTF-8", line
        ) from None


def _parsed(format: str, parse: Any) -> Any:
    """The graph that NetworkX makes of the text; its errors in our words."""
    import networkx

    try:
        return parse()
    except ParseError as error:
        raise FormatError(f"{format}: {error}") from error
    except (networkx.NetworkXException, ValueError, KeyError, TypeError) as error:
        raise FormatError(f"{format}: {error}") from error
    except (IndexError, AttributeError, StopIteration, RecursionError) as error:
        raise FormatError(f"{format}: damaged ({type(error).__name__}: {error})") from error


def _table(
    format: str, graph: Any, options: ReadOptions, name_attribute: str | None = None
) -> LinkTable:
    """The links of a NetworkX graph."""
    name_attribute = options.name_attribute or name_attribute
    said = [f"{format}: {'directed' if graph.is_directed() else 'undirected'}"]
    if name_attribute is None:
        names = [str(node) for node in graph]
        attributes = sorted({key for _, data in graph.nodes(data=True) for key in data})
        if "label" in attributes and any(
            str(data.get("label", node)) != str(node) for node, data in graph.nodes(data=True)
        ):
            said.append("nodes are named by their ids; --name-attribute label takes the labels")
    else:
        names = []
        for node, data in graph.nodes(data=True):
            if name_attribute not in data:
                raise FormatError(f"{format}: the node {node} has no attribute '{name_attribute}'")
            names.append(str(data[name_attribute]))
    if len(set(names)) != len(names):
        twice = next(name for name in names if names.count(name) > 1)
        raise FormatError(f"{format}: two nodes have the name '{twice}'; they would become one")
    numbers = {node: number for number, node in enumerate(graph)}
    attribute = options.weight_column or "weight"
    edges, weights, without = [], [], 0
    for source, target, data in graph.edges(data=True):
        edges.append((numbers[source], numbers[target]))
        value = data.get(attribute)
        if value is None:
            without += 1
            continue
        try:
            weights.append(float(value))
        except (TypeError, ValueError):
            raise FormatError(
                f"{format}: the link {source} - {target} has the {attribute} '{value}', which is "
                "not a number; --weight-column names the attribute, or none"
            ) from None
    if options.weight_column == "none" or not weights:
        if options.weight_column not in (None, "none") and edges:
            raise FormatError(f"{format}: no link has the attribute '{attribute}'")
        return table_of_edges(format, names, edges, None, graph.is_directed(), said)
    if without:
        raise FormatError(
            f"{format}: {without:,} of {len(edges):,} links have no {attribute}; "
            "--weight-column none reads no weights"
        )
    if any(weight != weight or abs(weight) == float("inf") for weight in weights):
        raise FormatError(f"{format}: a weight is not finite; --weight-column none reads none")
    said.append(f"weights from the attribute '{attribute}'")
    return table_of_edges(format, names, edges, weights, graph.is_directed(), said)
