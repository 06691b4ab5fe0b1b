#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Fuzzes the readers that are ours, and the whole of `plexor-tool convert`.

    PYTHONPATH=python tests/tool/fuzz.py TARGET [--seed 1] [--seconds 600 | --cases 1000]
    PYTHONPATH=python tests/tool/fuzz.py TARGET --seed 1 --one 4711

TARGET is one of

    tables    the reader of tables beside a plain one of a few lines
    links     --format links beside the program's own reader
    sif       SIF, beside a plain reader
    metis     METIS, beside a plain reader
    convert   the command on files of all formats, damaged, with any options

Each case is drawn from the seed and its number alone, so that a failed one can be run again. What
failed is kept in the folder given by --keep. (The compiled reader of tables has a fuzzer of its own
under the sanitizers: tests/fuzz/Fuzz_edge_list.cpp.)
"""

from __future__ import annotations

import argparse
import contextlib
import gzip
import io
import os
import random
import re
import sys
import tempfile
import time
import warnings
from collections.abc import Callable
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))

import test_convert
import test_edge_list
import test_recognise
from plexor.formats import DELIMITERS, FORMATS, FormatError, LinkTable, ReadOptions, read
from plexor.formats.edge_list import Dialect
from plexor.formats.metis import read_metis
from plexor.formats.sif import read_sif
from plexor.tool.cli import main as tool_main

PIECES = [
    *(b"a", b"b", b"1", b"2", b"3", b"10", b"0", b"0.5", b"-1", b"1e5", b"1e999", b"1,5", b"nan"),
    *(b" ", b" ", b"\t", b",", b";", b"\n", b"\n", b"\n", b"\r\n", b"\r", b"\x0b", b"\x0c", b'"'),
    *(b'""', b"#", b"%", b"%41", b"%2", b"'", b"\\", b"=", b"*", b"\0", b"\x1a", b"\x85", b"\xa0"),
    *(b"\xff", b"\xc3", "é".encode(), "\u2028".encode(), "😀".encode(), b"&", b"&lt;", b"]]>"),
    *(b"source", b"target", b"weight", b"source,target,weight\n", b"protein1 protein2\n"),
    *(b"# plexor: names are escaped as %XX\n", b"% sym weighted\n", b"% bip\n", b"graph [", b"]"),
    *(b"node [ id 7 ]", b'node [ id 8 label "x y" ]', b"edge [ source 1 target 2 ]", b"directed 1"),
    *(b"%%MatrixMarket matrix coordinate real symmetric\n", b"*Vertices 3\n", b"*Arcs\n", b"*Edges\n"),
    *(b"<graphml>", b"</graphml>", b'<node id="q"/>', b'<edge source="q" target="q"/>', b"<!--"),
    *(b"<!DOCTYPE graphml [", b"<!ENTITY", b"<data key='w'>x</data>", b"<gexf>", b"pp"),
    *(b"99999999999999999999", b"4294967296", b"-" * 300, b"9" * 400),
]


def damaged(rng: random.Random, data: bytes, others: list[bytes]) -> bytes:
    """The data with a few things changed."""
    for _ in range(rng.choice([0, 1, 1, 2, 3, 6])):
        at = rng.randint(0, len(data))
        to = min(len(data), at + int(rng.expovariate(0.1)))
        way = rng.randrange(8)
        if way == 0:
            data = data[:at] + data[to:]
        elif way == 1:
            data = data[:at] + rng.choice(PIECES) + data[at:]
        elif way == 2:
            data = data[:at] + rng.choice(PIECES) + data[to:]
        elif way == 3:
            data = data[:at] + bytes([rng.randrange(256)]) + data[at + 1 :]
        elif way == 4:
            data = data[:to] + data[at:to] * rng.choice([1, 1, 2, 20]) + data[to:]
        elif way == 5:
            other = rng.choice(others)
            begin = rng.randint(0, len(other))
            data = data[:at] + other[begin : begin + rng.randint(0, 80)] + data[at:]
        elif way == 6:
            lines = data.splitlines(keepends=True)
            rng.shuffle(lines)
            data = b"".join(lines)
        else:
            data = data[:at]
    return data[:20_000]


def check_table(table: LinkTable) -> None:
    """What holds of every table."""
    n = len(table.names)
    assert len(table.source) == len(table.target) == len(table)
    assert all(0 <= node < n for node in [*table.source.tolist(), *table.target.tolist()])
    assert len(set(table.names)) == n, "two nodes of one name"
    assert table.weight is None or len(table.weight) == len(table.source)


def links_of(table: LinkTable) -> list[tuple[str, str, float | None]]:
    weights = [None] * len(table) if table.weight is None else table.weight.tolist()
    return [
        (table.names[a], table.names[b], weight)
        for a, b, weight in zip(table.source.tolist(), table.target.tolist(), weights)
    ]


# Tables


def fuzz_tables(rng: random.Random, seeds: list[tuple[str, bytes]], _: Path) -> bytes:
    everything = [data for _, data in seeds]
    data = damaged(rng, rng.choice(everything), everything).replace(b"\0", b"\n")
    dialect = Dialect(
        delimiter=rng.choice(list(DELIMITERS.values())),
        quotes=rng.random() < 0.5,
        comment=rng.choice([b"#", b"#%", b""]),
        comment_decides=rng.random() < 0.5,
        header=rng.random() < 0.3,
        source=rng.choice([0, 0, 1]),
        target=rng.choice([1, 1, 2]),
        weight=rng.choice([None, None, 2, 3]),
        fields=rng.choice([None, 2, 3]),
        decimal_comma=rng.random() < 0.3,
    )
    with failing(data, repr(dialect)):
        found, expected = test_edge_list.compiled(data, dialect), test_edge_list.plainly(data, dialect)
        assert found == expected, f"{found!r}\nin place of\n{expected!r}"
    return data


# Link files


def fuzz_links(rng: random.Random, seeds: list[tuple[str, bytes]], folder: Path) -> bytes:
    import plexor

    everything = [data for _, data in seeds]
    data = damaged(rng, rng.choice(everything), everything)
    path = folder / "net.txt"
    path.write_bytes(data)
    with failing(data, "links"):
        try:
            table = read(str(path), ReadOptions(format="links")).table
            check_table(table)
        except FormatError:
            return data
        if data.startswith(b"\xef\xbb\xbf") or b"# plexor: names" in data:
            return data  # not so for the program, which knows neither
        try:
            network = plexor.Network.read(path, weighted=table.weight is not None)
        except plexor.LinkFileError:
            assert table.passed_over_here_alone
            return data
        if table.passed_over_here_alone:
            return data  # a comment after other white space than blanks and tabs is a link there
        weights = None if network.weight is None else network.weight.tolist()
        ends = zip(network.source.tolist(), network.target.tolist())
        theirs = [
            (network.nodes[a], network.nodes[b], weights[i] if weights else None)
            for i, (a, b) in enumerate(ends)
        ]
        # A carriage return at the end of a line belongs to no name here, and to one there.
        ours = [link for link in links_of(table) if link[0] != link[1]]
        if b"\r" not in data:
            assert ours == theirs, f"{ours!r}\nin place of\n{theirs!r}"
    return data


# SIF and METIS, read once more as their descriptions say


def plain_sif(data: bytes) -> list[tuple[str, str]] | None:
    links = []
    for line in data.decode("utf-8", "surrogateescape").split("\n"):
        line = line.rstrip("\r")
        if not line.encode("utf-8", "surrogateescape").strip():
            continue
        if b"\t" in data:
            fields = [field.strip(" ") for field in line.split("\t")]
            while len(fields) > 3 and fields[-1] == "":
                del fields[-1]
        else:
            fields = [field for field in re.split("[ \r]", line) if field]
        if len(fields) == 2:
            return None
        links += [(fields[0], field) for field in fields[2:]]
    return links


def fuzz_sif(rng: random.Random, seeds: list[tuple[str, bytes]], _: Path) -> bytes:
    some = [b"ann pp bob cid\nbob pd cid\ndan\n", b"New York\tpp\tBoston\tLondon\nBoston\tpd\t\n"]
    some += [b"a pp b\r\nb pp c\r\n", b"".join(b"n%d x n%d n%d\n" % (i, i // 2, i // 3) for i in range(30))]
    data = damaged(rng, rng.choice(some), some + [data for _, data in seeds]).replace(b"\0", b" ")
    with failing(data, "sif"):
        expected = plain_sif(data)
        try:
            table = read_sif(data)
        except FormatError as error:
            assert expected is None and error.line is not None
            return data
        check_table(table)
        found = [(a, b) for a, b, _ in links_of(table)]
        assert found == expected, f"{found!r}\nin place of\n{expected!r}"
    return data


def some_metis(rng: random.Random) -> bytes:
    n = rng.randint(1, 12)
    kind = rng.choice(["", "", "1", "11", "100", "010", "111", "001"])
    flags = kind.rjust(3, "0")
    n_weights = rng.randint(1, 3) if flags[1] == "1" and rng.random() < 0.5 else None
    neighbours: dict[int, dict[int, int]] = {node: {} for node in range(1, n + 1)}
    links = 0
    for a in neighbours:
        for b in range(a + 1, n + 1):
            if rng.random() < 0.4:
                neighbours[a][b] = neighbours[b][a] = rng.randint(1, 9)
                links += 1
    head = f"{n} {links}" + (f" {kind}" if kind else "")
    lines = [head + (f" {n_weights}" if n_weights is not None else "")]
    for row in neighbours.values():
        words = [3] * (flags[0] == "1") + [5] * ((n_weights or 1) if flags[1] == "1" else 0)
        for other, weight in row.items():
            words += [other, weight] if flags[2] == "1" else [other]
        lines.append(" ".join(map(str, words)))
        if rng.random() < 0.1:
            lines.append("% a comment")
    return ("\n".join(lines) + "\n").encode()


def plain_metis(data: bytes) -> set[tuple[str, str, float | None]] | None:
    """The links, or None where the lines do not fit together."""
    rows = data.removesuffix(b"\n").split(b"\n")
    lines = [line.split() for line in rows if not line.lstrip().startswith(b"%")]
    while lines and not lines[0]:
        del lines[0]
    head = [word.decode("latin-1") for word in lines.pop(0)] if lines else []
    if not 2 <= len(head) <= 4 or not all(re.fullmatch("[0-9]{1,12}", word) for word in head):
        return None
    n, m = int(head[0]), int(head[1])
    flags = head[2] if len(head) > 2 else "0"
    if len(flags) > 3 or not re.fullmatch("[01]+", flags):
        return None
    flags = flags.rjust(3, "0")
    skip = (flags[0] == "1") + (int(head[3]) if len(head) > 3 else 1) * (flags[1] == "1")
    while len(lines) > n and not lines[-1]:
        del lines[-1]
    if len(lines) != n:
        return None
    seen: dict[tuple[int, int], bytes] = {}
    for node, words in enumerate(lines, 1):
        step = 2 if flags[2] == "1" else 1
        if len(words) < skip or (len(words) - skip) % step:
            return None
        for at in range(skip, len(words), step):
            weight = words[at + 1] if step == 2 else b"1"
            if not re.fullmatch(rb"[0-9]{1,12}", words[at]) or not re.fullmatch(rb"[0-9]+(\.[0-9]+)?", weight):
                return None
            other = int(words[at])
            if not 1 <= other <= n or other == node or (node, other) in seen:
                return None
            seen[node, other] = weight
    if any(seen.get((b, a)) != weight for (a, b), weight in seen.items()) or len(seen) != 2 * m:
        return None
    return {
        (str(a), str(b), float(weight) if flags[2] == "1" else None)
        for (a, b), weight in seen.items()
        if a < b
    }


def fuzz_metis(rng: random.Random, seeds: list[tuple[str, bytes]], _: Path) -> bytes:
    data = damaged(rng, some_metis(rng), [some_metis(rng), *(data for _, data in seeds)])
    with failing(data, "metis"):
        expected = plain_metis(data)
        try:
            table = read_metis(data)
        except FormatError:
            assert expected is None, f"refused, where there is {expected!r}"
            return data
        check_table(table)
        found = links_of(table)
        assert expected is not None and len(found) == len(expected)
        assert set(found) == expected, f"{found!r}\nin place of\n{expected!r}"
    return data


# The command


def some_options(rng: random.Random) -> list[str]:
    column = ["1", "2", "3", "4", "0", "source", "target", "weight", "x", "", "-1", "none"]
    ways = {
        "--format": [*FORMATS],
        "--delimiter": [*DELIMITERS],
        "--header": ["yes", "no"],
        "--source-column": column,
        "--target-column": column,
        "--weight-column": [*column, "none", "none"],
        "--comment": ["#", "%", "#%", "none", "x", ""],
        "--decimal": [".", ","],
        "--quotes": ["yes", "no"],
        "--name-attribute": ["label", "name", "x", ""],
    }
    chosen = rng.sample(list(ways), rng.choice([0, 0, 0, 1, 1, 2, 3]))
    return [word for name in chosen for word in (f"{name}={rng.choice(ways[name])}",)]


def links_written(data: bytes) -> None:
    """What holds of every link file that was written."""
    weights = set()
    for number, line in enumerate(data.split(b"\n")[:-1]):
        if line.startswith(b"#"):
            assert number == 0 and line == b"# plexor: names are escaped as %XX", "a comment as a link"
            continue
        words = line.split()
        assert b" ".join(words) == line and len(words) in (2, 3), f"no link: {line!r}"
        assert words[0] != words[1], "a link of a node with itself"
        weights.add(len(words))
        if len(words) == 3:
            assert abs(float(words[2])) < float("inf")
    assert data.endswith(b"\n") or not data
    assert len(weights) <= 1, "weights on some links only"


def fuzz_convert(rng: random.Random, seeds: list[tuple[str, bytes]], folder: Path) -> bytes:
    import plexor

    name, data = rng.choice(seeds)
    if rng.random() < 0.1:
        name = rng.choice(seeds)[0]
    data = damaged(rng, data, [data for _, data in seeds])
    plain = data
    if rng.random() < 0.1:
        data = gzip.compress(data, 1)
        if rng.random() < 0.3:
            data = damaged(rng, data, [plain])
        name += ".gz"
    for path in folder.iterdir():
        path.unlink()
    file, target = folder / Path(name).name, folder / "out" / "links.txt"
    target.parent.mkdir(exist_ok=True)
    for path in target.parent.iterdir():
        path.unlink()
    file.write_bytes(data)
    options = some_options(rng)
    with failing(data, f"convert {name} {' '.join(options)}"):
        status, said = in_process("convert", str(file), "-o", str(target), *options)
        there = [path.name for path in target.parent.iterdir()]
        if status != 0:
            assert status in (1, 2) and "Traceback" not in said, said
            assert said.count("plexor-tool: ") == 1 and not there, said
            target.parent.rmdir()
            file.unlink()
            return data
        assert there == ["links.txt"]
        written = target.read_bytes()
        links_written(written)
        # What was written is read as the same by this command and by the program.
        if written:
            again = target.with_name("again.txt")
            status, said = in_process("convert", str(target), "-o", str(again), "--format=links")
            if any(line.strip() for line in written.splitlines() if not line.startswith(b"#")):
                assert status == 0, said
                assert again.read_bytes() == written
                again.unlink()
            weighted = len(written.splitlines()[-1].split()) == 3
            network = plexor.Network.read(target, weighted=weighted)
            n_lines = sum(not line.startswith(b"#") for line in written.splitlines())
            assert len(network.source) == n_lines
        target.unlink()
        target.parent.rmdir()
        file.unlink()
    return data


def in_process(*arguments: str) -> tuple[int, str]:
    said, out = io.StringIO(), io.StringIO()
    with contextlib.redirect_stderr(said), contextlib.redirect_stdout(out), warnings.catch_warnings():
        warnings.simplefilter("ignore")
        return tool_main(arguments), said.getvalue()


# The loop


class Found(Exception):
    """What went wrong, and with what."""

    def __init__(self, data: bytes, how: str) -> None:
        super().__init__(how)
        self.data = data
        self.how = how


@contextlib.contextmanager
def failing(data: bytes, how: str):  # type: ignore[no-untyped-def]
    try:
        yield
    except Exception as error:
        raise Found(data, how) from error


TARGETS: dict[str, Callable[[random.Random, list[tuple[str, bytes]], Path], bytes]] = {
    "tables": fuzz_tables,
    "links": fuzz_links,
    "sif": fuzz_sif,
    "metis": fuzz_metis,
    "convert": fuzz_convert,
}


def seeds_of_tests() -> list[tuple[str, bytes]]:
    """Files of all formats, from the other tests."""
    seeds = []
    with tempfile.TemporaryDirectory() as folder:
        for name, write in {**test_convert.NAMED, **test_convert.PLAIN_FILES}.items():
            path = Path(folder) / name
            write(path)
            seeds.append((name, path.read_bytes()))
    tables = [*test_recognise.READ.values(), *test_recognise.REFUSED.values()]
    tables += test_recognise.DECIDED.values()
    seeds += [(entry[0], entry[1]) for entry in tables if entry[1] is not None]
    return seeds


def run_cases(target: str, seed: int, numbers: range | None, seconds: float) -> int:
    """Runs cases; returns how many. Raises Found."""
    seeds = seeds_of_tests()
    end = time.monotonic() + seconds
    count = 0
    with tempfile.TemporaryDirectory(dir=os.environ.get("TMPDIR")) as folder:
        place = 0 if numbers is None else numbers.start
        while place in numbers if numbers is not None else time.monotonic() < end:
            try:
                TARGETS[target](random.Random(f"{seed}-{target}-{place}"), seeds, Path(folder))
            except Found as found:
                raise SystemExit(report(target, seed, place, found)) from found
            place += 1
            count += 1
    return count


def report(target: str, seed: int, place: int, found: Found) -> str:
    keep = Path("fuzz-failures")
    keep.mkdir(exist_ok=True)
    path = keep / f"{target}-{seed}-{place}"
    path.write_bytes(found.data)
    return f"case {place} of {target}, seed {seed}: {found.how}\n{found.__cause__!r}\nkept in {path}"


def main() -> None:
    parser = argparse.ArgumentParser(description="fuzzes readers and plexor-tool convert")
    parser.add_argument("target", choices=list(TARGETS))
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--seconds", type=float, default=600)
    parser.add_argument("--cases", type=int)
    parser.add_argument("--one", type=int)
    arguments = parser.parse_args()
    numbers = None
    if arguments.cases is not None:
        numbers = range(arguments.cases)
    if arguments.one is not None:
        numbers = range(arguments.one, arguments.one + 1)
    count = run_cases(arguments.target, arguments.seed, numbers, arguments.seconds)
    print(f"{arguments.target}: {count:,} cases, seed {arguments.seed}: all well")


if __name__ == "__main__":
    main()
