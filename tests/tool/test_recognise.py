# SPDX-License-Identifier: MIT
"""What files are, as people hold them: read rightly, or refused with the option that decides."""

from __future__ import annotations

import gzip
from collections.abc import Callable
from pathlib import Path

import pytest
from plexor.formats import FormatError, ReadOptions, read

from conftest import Outcome

Tool = Callable[..., Outcome]


def links_of(path: Path, **options: object) -> list[tuple[str, ...]]:
    """The links as names and the text of the weight."""
    table = read(str(path), ReadOptions(**options)).table  # type: ignore[arg-type]
    links = []
    for place, (a, b) in enumerate(zip(table.source.tolist(), table.target.tolist())):
        weight = () if table.weight is None else (f"{table.weight[place]:g}",)
        links.append((table.names[a], table.names[b], *weight))
    return links


ANN_BOB = [("ann", "bob", "4"), ("bob", "cid", "3")]

# What was read wrongly or refused without a reason when people handed such files to the program.
READ = {
    "blanks": ("net.txt", b"ann bob 4\nbob cid 3\n", ANN_BOB),
    "string": (
        "9606.protein.links.txt",
        b"protein1 protein2 combined_score\nann bob 4\nbob cid 3\n",
        ANN_BOB,
    ),
    "konect": ("out.net", None, ANN_BOB),
    "snap": (
        "snap.txt",
        b"# Directed graph\n# FromNodeId\tToNodeId\n1\t2\n2\t3\n",
        [("1", "2"), ("2", "3")],
    ),
    "csv": ("net.csv", b"source,target,weight\nann,bob,4\nbob,cid,3\n", ANN_BOB),
    "csv with blanks": ("net.csv", b"ann, bob, 4\nbob, cid, 3\n", ANN_BOB),
    "csv with quotes": (
        "net.csv",
        b'"from","to"\n"ann, the first","say ""bob"""\n',
        [("ann, the first", 'say "bob"')],
    ),
    "semicolons": ("net.csv", b"ann;bob;4\r\nbob;cid;3\r\n", ANN_BOB),
    "tabs with names with blanks": (
        "net.tsv",
        b"New York\tLos Angeles\t4\nBoston\tNew York\t3\n",
        [("New York", "Los Angeles", "4"), ("Boston", "New York", "3")],
    ),
    "sif": (
        "net.sif",
        b"ann pp bob cid\nbob pd cid\ndan\n",
        [("ann", "bob"), ("ann", "cid"), ("bob", "cid")],
    ),
    "gml": (
        "net.gml",
        b'Creator "x"\ngraph [\n node [ id 1 label "ann" ]\n node [ id 2 label "bob" ]\n'
        b' node [ id 3 label "cid" ]\n edge [ source 1 target 2 weight 4 ]\n'
        b" edge [ source 2 target 3 weight 3 ]\n]\n",
        ANN_BOB,
    ),
    "matrix market": (
        "net.mtx",
        b"%%MatrixMarket matrix coordinate real symmetric\n3 3 2\n2 1 4\n3 2 3\n",
        [("2", "1", "4"), ("3", "2", "3")],
    ),
    "matrix market with few of many nodes": (
        "net.mtx",
        b"%%MatrixMarket matrix coordinate pattern general\n"
        b"2000000000 2000000000 2\n2 1\n1999999999 2\n",
        [("2", "1"), ("1999999999", "2")],
    ),
    "metis": ("net.graph", b"3 2\n2\n1 3\n2\n", [("1", "2"), ("2", "3")]),
    "metis by its counts": ("net.txt", b"% c\n3 2\n2\n1 3\n2\n", [("1", "2"), ("2", "3")]),
    "metis with weights": (
        "net.graph",
        b"3 2 11 1\n7 2 4\n7 1 4 3 3\n7 2 3\n",
        [("1", "2", "4"), ("2", "3", "3")],
    ),
    "pajek": (
        "net.net",
        b'*Vertices 3\n1 "ann"\n2 "bob"\n3 "cid"\n*Edges\n1 2 4\n2 3 3\n',
        ANN_BOB,
    ),
    "graphml": (
        "net.graphml",
        b'<?xml version="1.0" encoding="UTF-8"?>\n'
        b'<graphml xmlns="http://graphml.graphdrawing.org/xmlns">'
        b'<key id="w" for="edge" attr.name="weight" attr.type="double"/>'
        b'<graph edgedefault="undirected"><node id="ann"/><node id="bob"/><node id="cid"/>'
        b'<edge source="ann" target="bob"><data key="w">4</data></edge>'
        b'<edge source="bob" target="cid"><data key="w">3</data></edge></graph></graphml>\n',
        ANN_BOB,
    ),
    "gexf 1.3": (
        "net.gexf",
        b'<?xml version="1.0" encoding="UTF-8"?>\n'
        b'<gexf xmlns="http://www.gexf.net/1.3" version="1.3"><graph defaultedgetype="directed">'
        b'<nodes><node id="ann" label="ann"/><node id="bob"/><node id="cid"/></nodes><edges>'
        b'<edge id="0" source="ann" target="bob" weight="4"/>'
        b'<edge id="1" source="bob" target="cid" weight="3"/></edges></graph></gexf>\n',
        ANN_BOB,
    ),
    "byte order mark": ("net.csv", b"\xef\xbb\xbfann,bob,4\nbob,cid,3\n", ANN_BOB),
    "names with commas": (
        "net.txt",
        b"NEWMAN,M WATTS,D 0.5\nWATTS,D HOPPE,F 1\n",
        [("NEWMAN,M", "WATTS,D", "0.5"), ("WATTS,D", "HOPPE,F", "1")],
    ),
    "nodes named like a header": (
        "net.txt",
        b"node1 node2\nnode2 node3\n",
        [("node1", "node2"), ("node2", "node3")],
    ),
    "escaped names": (
        "net.txt",
        b"# plexor: names are escaped as %XX\nNew%20York %231\n% 50%25\n",
        [("New York", "#1"), ("", "50%")],
    ),
    "percent signs without the marker": (
        "net.txt",
        b"a%20b c\nc d\n",
        [("a%20b", "c"), ("c", "d")],
    ),
    "bytes that are no utf-8": ("net.txt", b"\xe9mile zoe\n", [("\udce9mile", "zoe")]),
    "more than three columns by name": (
        "net.csv",
        b"id,source,target,score,year\n1,ann,bob,4,1999\n2,bob,cid,3,2000\n",
        ANN_BOB,
    ),
    "an empty name": ("net.csv", b"source,target\nann,\nbob,ann\n", [("ann", ""), ("bob", "ann")]),
}


@pytest.mark.parametrize("case", READ)
@pytest.mark.parametrize("packed", [False, True])
def test_is_read_rightly(case: str, packed: bool, tmp_path: Path) -> None:
    name, data, expected = READ[case]
    if data is None:
        data = b"% sym positive\n% 2 3 3\nann bob 4 1082040961\nbob cid 3 1082040962\n"
        name = "out.konect"
    path = tmp_path / (name + ".gz" if packed else name)
    path.write_bytes(gzip.compress(data) if packed else data)
    assert links_of(path) == expected


# Name, bytes, what the refusal says.
REFUSED = {
    "sif without its ending": ("net.txt", b"A pp B\nB pp C\n", "--format sif"),
    "times": ("net.txt", b"1 2 1082040961\n2 3 1082040962\n", "--weight-column none"),
    "decimal commas": ("net.csv", b"a;b;1,5\nb;c;2,5\n", "--decimal ,"),
    "decimal commas between blanks": ("net.txt", b"a b 1,5\nb c 2\n", "--decimal ,"),
    "lines of different length": ("net.txt", b"ann bob\nbob cid 3\n", "line 2"),
    "a weight that is missing": ("net.csv", b"s,t,weight\na,b,1\nb,c,\n", "--weight-column none"),
    "a weight that is no number": ("net.csv", b"source,target,weight\na,b,1\nb,c,x\n", "line 3"),
    "five columns": ("net.txt", b"a b 1 2 3\nb c 1 2 3\n", "--source-column"),
    "unknown column names": ("net.csv", b"x,p,q,r\n1,a,b,3\n2,b,c,4\n", "--source-column"),
    "quotation marks between blanks": ("net.txt", b'"a" "b"\n"b" "c"\n', "--quotes"),
    "a percent comment in the middle": ("net.txt", b"ann bob\n% x\nbob cid\n", "--comment"),
    "a hash line in a table": ("net.csv", b"a,b\n#c,d\n", "--comment"),
    "a quotation mark that never closes": ("net.csv", b'a,b\n"c,d\ne,f\n', "quotation mark"),
    "two networks": ("out.x", b"% bip unweighted\n1 1\n1 2\n", "different kinds"),
    "metis or a ring": ("x.txt", b"4 4\n2 4\n1 3\n2 4\n1 3\n", "--format metis"),
    "commas or blanks": ("x.txt", b"A,B C,D\nC,D E,F\n", "--delimiter"),
    "no table": ("x.txt", b"abc\ndef\n", "no table of links"),
    "prose": ("x.txt", b"This is a text.\nIt has lines of words, of course.\n", "line 2"),
    "json": ("x.json", b'{"nodes": []}\n', "JSON"),
    "other xml": ("x.xml", b"<html><body/></html>\n", "<html>"),
    "empty": ("x.txt", b"", "empty"),
    "only comments": ("x.txt", b"# a\n# b\n", "no links"),
    "binary": ("x.bin", b"abc\0def\n", "zero byte"),
    "utf-16": ("x.txt", "ann bob\n".encode("utf-16"), "UTF-8"),
    "zip": ("x.zip", b"PK\x03\x04....", "zip"),
    "a wrong ending": ("x.gml", b"ann bob\n", "--format gml"),
    "metis with wrong counts": ("x.graph", b"3 2\n2\n1 3\n", "2 lines of nodes where 3"),
    "metis in one direction": ("x.graph", b"3 2\n2\n3\n\n", "one of its two lines"),
    "metis out of range": ("x.graph", b"2 1\n2\n9\n", "no node from 1 to 2"),
    "sif with two fields": ("x.sif", b"a pp\n", "two fields"),
    "rectangular": (
        "x.mtx",
        b"%%MatrixMarket matrix coordinate pattern general\n3 2 1\n1 1\n",
        "different kinds",
    ),
    "damaged matrix": (
        "x.mtx",
        b"%%MatrixMarket matrix coordinate real general\n3 3 5\n1 2 1\n",
        "Matrix Market",
    ),
    "a matrix with too many rows": (
        "x.mtx",
        b"%%MatrixMarket matrix coordinate pattern general\n4000000000 4000000000 1\n2 1\n",
        "more than can be numbered",
    ),
    "a matrix of another layout": (
        "x.mtx",
        b"%%MatrixMarket matrix cooinate pattern symmetric\n3 3 1\n2 1\n",
        "Matrix Market",
    ),
    "a matrix without sizes": (
        "x.mtx",
        b"%%MatrixMarket matrix coordinate real general\n% comment\n\n",
        "no line with the sizes",
    ),
    "a matrix that ends after its first line": (
        "x.mtx",
        b"%%MatrixMarket matrix coordinate real general",
        "no line with the sizes",
    ),
    "pajek with lists": (
        "x.net",
        b'*Vertices 3\n1 "a"\n2 "b"\n3 "c"\n*Arcslist\n1 2 3\n',
        "'*arcslist' is not read",
    ),
    "pajek without nodes": ("x.net", b"*Vertices 3\n*Edges\n1 2\n", "0 nodes are listed"),
    "pajek with one label twice": (
        "x.net",
        b'*Vertices 2\n1 "a"\n2 "a"\n*Edges\n1 2\n',
        "would become one",
    ),
    "gml with damage": ("x.gml", b"graph [ node [ id 1 ] edge [ source 1 ]\n", "GML"),
    "gml links to nowhere": (
        "x.gml",
        b"graph [ node [ id 1 ] edge [ source 1 target 2 ] ]\n",
        "GML",
    ),
    "graphml cut off": ("x.graphml", b"<graphml><graph>\n<node id='a'/>", "GraphML"),
    "a weight on some links": (
        "x.gml",
        b"graph [ node [ id 1 ] node [ id 2 ] edge [ source 1 target 2 weight 1 ]\n"
        b" edge [ source 2 target 1 ] ]\n",
        "--weight-column none",
    ),
    "a broken escape": ("x.txt", b"# plexor: names are escaped as %XX\na%2 b\n", "hexadecimal"),
    "two escapes of one name": (
        "x.txt",
        b"# plexor: names are escaped as %XX\n%41 b\nA c\n",
        "same name",
    ),
    "only a header": ("x.csv", b"source,target\n", "no link"),
    "a weight beyond doubles": ("x.txt", b"a b 1e999\n", "too large"),
}


@pytest.mark.parametrize("case", REFUSED)
def test_is_refused_with_a_reason(case: str, tmp_path: Path, in_process: Tool) -> None:
    name, data, reason = REFUSED[case]
    path = tmp_path / name
    path.write_bytes(data)
    target = tmp_path / "out" / "links.txt"
    target.parent.mkdir()
    outcome = in_process("convert", path, "-o", target)
    assert outcome.status == 1
    assert reason in outcome.said
    assert not list(target.parent.iterdir())
    assert "Traceback" not in outcome.said


DECIDED = {
    "sif": ("x.txt", b"A pp B\nB pp C\n", {"format": "sif"}, [("A", "B"), ("B", "C")]),
    "two of three": (
        "x.txt",
        b"A pp B\nB pp C\n",
        {"source_column": "1", "target_column": "3"},
        [("A", "B"), ("B", "C")],
    ),
    "times dropped": (
        "x.txt",
        b"1 2 1082040961\n2 3 1082040962\n",
        {"weight_column": "none"},
        [("1", "2"), ("2", "3")],
    ),
    "decimal commas": (
        "x.csv",
        b"a;b;1,5\nb;c;2\n",
        {"decimal": ","},
        [("a", "b", "1.5"), ("b", "c", "2")],
    ),
    "columns by name": (
        "x.csv",
        b"x,p,q,r\n1,a,b,3\n2,b,c,4\n",
        {"source_column": "p", "target_column": "q", "weight_column": "r"},
        [("a", "b", "3"), ("b", "c", "4")],
    ),
    "columns by number": (
        "x.txt",
        b"1 a b 9 3\n2 b c 9 4\n",
        {"source_column": "2", "target_column": "3", "weight_column": "5"},
        [("a", "b", "3"), ("b", "c", "4")],
    ),
    "quotes off": ("x.txt", b'"a" "b c"\n', {"quotes": True}, [("a", "b c")]),
    "quotes kept": ("x.txt", b'"a" "b"\n', {"quotes": False}, [('"a"', '"b"')]),
    "percent lines are names": (
        "x.txt",
        b"ann bob\n%x cid\n",
        {"comment": "#"},
        [("ann", "bob"), ("%x", "cid")],
    ),
    "hash lines are names": (
        "x.csv",
        b"a,b\n#c,d\n",
        {"comment": "none"},
        [("a", "b"), ("#c", "d")],
    ),
    "a header that none would guess": (
        "x.txt",
        b"wer wen\nann bob\n",
        {"header": True},
        [("ann", "bob")],
    ),
    "no header where one seems to be": (
        "x.csv",
        b"source,target\na,b\n",
        {"header": False},
        [("source", "target"), ("a", "b")],
    ),
    "a table, not metis": (
        "x.txt",
        b"4 4\n2 4\n1 3\n2 4\n1 3\n",
        {"format": "edges"},
        [("4", "4"), ("2", "4"), ("1", "3"), ("2", "4"), ("1", "3")],
    ),
    "commas in names": (
        "x.txt",
        b"A,B C,D\nC,D E,F\n",
        {"delimiter": "blanks"},
        [("A,B", "C,D"), ("C,D", "E,F")],
    ),
    "an attribute that names nodes": (
        "x.gml",
        b'graph [ node [ id 1 n "a" ] node [ id 2 n "b" ] edge [ source 1 target 2 v 3 ] ]\n',
        {"name_attribute": "n", "weight_column": "v"},
        [("a", "b", "3")],
    ),
    "the link file's own rules": (
        "x.txt",
        b"# c\nann bob 3 more\nbob cid 4\nx\n",
        {"format": "links"},
        [("ann", "bob", "3"), ("bob", "cid", "4")],
    ),
}


@pytest.mark.parametrize("case", DECIDED)
def test_the_option_decides(case: str, tmp_path: Path) -> None:
    name, data, options, expected = DECIDED[case]
    path = tmp_path / name
    path.write_bytes(data)
    assert links_of(path, **options) == expected


def test_text_after_a_quotation_mark_is_refused(tmp_path: Path, in_process: Tool) -> None:
    path = tmp_path / "net.csv"
    path.write_bytes(b'from,to\n"a"b,c\nd,e\n')
    options = ["--delimiter=comma", "--source-column=from", "--target-column=to"]
    outcome = in_process("convert", path, *options)
    assert outcome.status == 1 and "line 2: " in outcome.said and "closing" in outcome.said


def test_what_was_done_is_said_with_counts(tmp_path: Path, in_process: Tool) -> None:
    path = tmp_path / "net.csv"
    path.write_bytes(b"source,target\n\n# c\nann,bob\nann,ann\nbob,\nann,bob\n")
    outcome = in_process("convert", path)
    assert outcome.out == b"# plexor: names are escaped as %XX\nann bob\nbob %\nann bob\n"
    for sentence in (
        "line 1 is a header: source, target",
        "1 blank line skipped",
        "1 comment line skipped",
        "3 links written",
        "1 link of a node with itself dropped",
        "an empty name",
    ):
        assert sentence in outcome.said


def test_the_line_of_a_late_error_is_told(tmp_path: Path) -> None:
    path = tmp_path / "net.txt"
    path.write_bytes(b"ann bob\n" * 300_000 + b"ann\tbob cid\n")
    with pytest.raises(FormatError) as refused:
        read(str(path))
    assert refused.value.line == 300_001


def test_a_ring_of_metis_is_seen_in_large_files_too(tmp_path: Path) -> None:
    n = 200_000
    lines = [f"{n} {n}"] + [f"{(i - 1) % n + 1} {(i + 1) % n + 1}" for i in range(n)]
    path = tmp_path / "ring.txt"
    path.write_text("\n".join(lines) + "\n")
    with pytest.raises(FormatError, match="--format metis"):
        read(str(path))
