# SPDX-License-Identifier: MIT
"""`plexor-tool run` leaves what the program leaves, and never half of it."""

from __future__ import annotations

import fcntl
import gzip
import json
import os
import pty
import shutil
import signal
import struct
import subprocess
import sys
import termios
import time
from collections.abc import Callable
from pathlib import Path

import pytest

from conftest import ROOT, Outcome, run_tool, tool_environment

Tool = Callable[..., Outcome]
AIRPORTS = ROOT / "examples" / "us-airports.txt"
FACULTY = ROOT / "examples" / "uk-faculty.txt"

LONG = {
    "-w": "--lower-weight",
    "-W": "--upper-weight",
    "-d": "--digits",
    "-t": "--time-limit",
    "-D": "--directed",
    "-U": "--undirected",
    "-I": "--intensity",
    "-k": "--clique-size",
    "-o": "--output",
}


def tree(directory: Path) -> dict[str, bytes]:
    """All files below a directory."""
    return {
        str(path.relative_to(directory)): path.read_bytes()
        for path in sorted(directory.rglob("*"))
        if path.is_file()
    }


def first_results(tmp_path: Path, in_process: Tool) -> tuple[Path, Path, dict[str, bytes]]:
    """A link file, the results of a run on it, and what is in these."""
    links = tmp_path / "net.txt"
    links.write_bytes(b"a1 b1\nb1 c1\nc1 a1\n")
    out = tmp_path / "out"
    assert in_process("run", links, "-o", out).status == 0
    old = tree(out)
    return links, out, old


SWITCHES = [
    [],
    ["-D"],
    ["-U"],
    ["-w", "5000"],
    ["-W", "5000.25", "-d", "2"],
    ["-w", "100", "-W", "90000"],
    ["-w", "100", "-D"],
    ["-I", "40000", "-k", "4"],
    ["-I", "60000", "-k", "3", "-d", "0", "-o", "named"],
    ["-t", "1000"],
    ["-t", "1000", "-D", "-k", "4"],
    ["-k", "5", "-o", "deep/named"],
    ["-k", "77"],
]


@pytest.mark.parametrize("switches", SWITCHES, ids=" ".join)
@pytest.mark.parametrize("long", [False, True], ids=["short", "long"])
def test_a_link_file_gives_the_files_of_the_program(
    switches: list[str], long: bool, tmp_path: Path, program: Path
) -> None:
    network = FACULTY if switches in ([], ["-D"], ["-U"]) else AIRPORTS
    work = tmp_path / "work"
    work.mkdir()
    shutil.copy(network, work / "net.txt")
    subprocess.run(
        [program, "-i", "net.txt", *switches], cwd=work, check=True, stdout=subprocess.DEVNULL
    )
    by_program = tree(work)
    shutil.rmtree(work)
    work.mkdir()
    shutil.copy(network, work / "net.txt")
    given = [LONG.get(switch, switch) for switch in switches] if long else switches
    outcome = run_tool("run", "net.txt", *given, "-q", cwd=work)
    assert (outcome.status, outcome.out, outcome.said) == (0, b"", "")
    assert tree(work) == by_program


@pytest.mark.parametrize(
    "switches", [[], ["-D"], ["-w", "5000"], ["-I", "60000", "-k", "4"], ["-o", "named"]]
)
@pytest.mark.parametrize("name", ["net.csv", "net.txt.gz"])
def test_another_format_gives_the_same_files(
    switches: list[str], name: str, tmp_path: Path, program: Path
) -> None:
    links = (FACULTY if switches in ([], ["-D"]) else AIRPORTS).read_bytes()
    work = tmp_path / "work"
    work.mkdir()
    # The program reads a link file of that name, so that its headers name it.
    (work / name).write_bytes(links)
    subprocess.run(
        [program, "-i", name, *switches], cwd=work, check=True, stdout=subprocess.DEVNULL
    )
    (work / name).unlink()
    by_program = tree(work)
    shutil.rmtree(work)
    work.mkdir()
    csv = b"source,target,weight\n" + links.replace(b" ", b",")
    (work / name).write_bytes(csv if name.endswith("csv") else gzip.compress(links))
    outcome = run_tool("run", name, *switches, "-q", cwd=work)
    assert (outcome.status, outcome.said) == (0, "")
    (work / name).unlink()
    assert tree(work) == by_program


def test_standard_input(tmp_path: Path, program: Path) -> None:
    refused = run_tool("run", "-", stdin=b"a1 b1\n", cwd=tmp_path)
    assert refused.status == 2 and "-o" in refused.said
    links = b"a1;b1\nb1;c1\nc1;a1\n"
    outcome = run_tool("run", "-", "-o", "out", "-q", stdin=links, cwd=tmp_path)
    assert (outcome.status, outcome.said) == (0, "")
    assert (tmp_path / "out" / "k=3" / "communities").read_bytes().endswith(b"0: a1 b1 c1 \n")
    assert [path.name for path in tmp_path.iterdir()] == ["out"]


def test_the_summary(tmp_path: Path, in_process: Tool) -> None:
    links = tmp_path / "net.txt"
    links.write_bytes(b"a1 b1\nb1 c1\nc1 a1\nc1 d1\n")
    target = tmp_path / "summary.json"
    assert in_process("run", links, "-q", "--summary", target).status == 0
    value = json.loads(target.read_text())
    assert value["seconds"] >= 0
    del value["seconds"]
    assert value == {
        "status": "completed",
        "error": None,
        "input": str(links),
        "output": f"{links}_files",
        "not_written": [],
        "found": {
            "nodes": 4,
            "links": 4,
            "cliques": 1,
            "approximated_cliques": 0,
            "levels": [{"k": 3, "communities": 1, "approximated": 0, "largest": 3}],
        },
    }
    assert in_process("run", links, "-q", "--summary", target).status == 1
    value = json.loads(target.read_text())
    assert value["status"] == "failed" and "non-empty" in value["error"]
    inside = in_process("run", links, "-O", "--summary", f"{links}_files/summary.json")
    assert inside.status == 2


@pytest.mark.parametrize(
    ("data", "switches", "reason"),
    [
        (b"a1 b1\nb1\n", [], "line 2"),
        (b"a1 b1\nb1 c1\n", ["-w", "1"], "need weights"),
        (b"a1 a1\n", ["-w", "1"], "need weights"),
    ],
)
def test_a_failed_run(
    data: bytes, switches: list[str], reason: str, tmp_path: Path, in_process: Tool
) -> None:
    links = tmp_path / "net.txt"
    links.write_bytes(data)
    outcome = in_process("run", links, *switches)
    assert outcome.status == 1 and reason in outcome.said
    assert [path.name for path in tmp_path.iterdir()] == ["net.txt"]


def test_an_error_of_the_program_is_told(tmp_path: Path, in_process: Tool) -> None:
    links = tmp_path / "net.txt"
    # A missing link of a k-clique at k=2 is an error of the program itself.
    links.write_bytes(b"a1 b1 1\nb1 c1 2\nc1 a1 3\nc1 d1 1\n")
    place = tmp_path / "file"
    place.write_bytes(b"")
    outcome = in_process("run", links, "-o", place / "below")
    assert outcome.status == 1
    assert "plexor-tool: " in outcome.said and "Traceback" not in outcome.said


@pytest.mark.parametrize(
    "switches",
    [
        ["-k", "x"],
        ["-k", "-1"],
        ["-t", "0"],
        ["-t", "nan"],
        ["-w", "2", "-W", "2"],
        ["-D", "-I", "1"],
        ["-t", "1", "-I", "1"],
        ["-D", "-U"],
        ["-o", ""],
        ["--no-such"],
    ],
    ids=" ".join,
)
def test_what_does_not_go_together(switches: list[str], tmp_path: Path, in_process: Tool) -> None:
    links = tmp_path / "net.txt"
    links.write_bytes(b"a1 b1 1\n")
    assert in_process("run", links, *switches).status == 2
    assert [path.name for path in tmp_path.iterdir()] == ["net.txt"]


def test_a_negative_threshold(tmp_path: Path, in_process: Tool) -> None:
    links = tmp_path / "net.txt"
    links.write_bytes(b"a1 b1 -1\nb1 c1 -2\nc1 a1 3\n")
    assert in_process("run", links, "-q", "-w", "-5.5", "-d", "1").status == 0
    assert (tmp_path / "net.txt_files_-5.5_w" / "k=3").is_dir()


def test_old_results_are_replaced_only_when_asked(tmp_path: Path, in_process: Tool) -> None:
    links, out, old = first_results(tmp_path, in_process)
    refused = in_process("run", links, "-o", out, "-k", 3)
    assert refused.status == 1 and "-O" in refused.said
    assert tree(out) == old
    assert in_process("run", links, "-o", out, "-k", 3, "-O").status == 0
    assert b"solely at k=3" in (out / "input_params.txt").read_bytes()
    assert sorted(path.name for path in tmp_path.iterdir()) == ["net.txt", "out"]
    assert out.stat().st_mode & 0o777 == (tmp_path / "out" / "k=3").stat().st_mode & 0o777


@pytest.mark.parametrize("stranger", ["notes.txt", "k=3/notes.txt", "more/graph", "link"])
def test_a_directory_with_something_else_is_never_replaced(
    stranger: str, tmp_path: Path, in_process: Tool
) -> None:
    links = tmp_path / "net.txt"
    links.write_bytes(b"a1 b1\nb1 c1\nc1 a1\n")
    out = tmp_path / "out"
    assert in_process("run", links, "-o", out).status == 0
    path = out / stranger
    path.parent.mkdir(exist_ok=True)
    if stranger == "link":
        path.symlink_to(links)
    else:
        path.write_text("precious")
    old = tree(out)
    refused = in_process("run", links, "-o", out, "-O")
    assert refused.status == 1 and "something else" in refused.said
    assert tree(out) == old
    empty = tmp_path / "no-results"
    empty.mkdir()
    (empty / "graph").write_text("precious")
    assert in_process("run", links, "-o", empty, "-O").status == 1
    assert (empty / "graph").read_text() == "precious"


def test_a_failed_run_keeps_the_old_results(tmp_path: Path, in_process: Tool) -> None:
    links, out, old = first_results(tmp_path, in_process)
    links.write_bytes(b"a1 b1 1\nb1\n")
    assert in_process("run", links, "-o", out, "-O").status == 1
    assert tree(out) == old
    assert sorted(path.name for path in tmp_path.iterdir()) == ["net.txt", "out"]


@pytest.mark.parametrize("overwrite", [False, True])
def test_an_interrupted_run_says_what_is_there(overwrite: bool, tmp_path: Path) -> None:
    # 3 ** 30 cliques: the search would take years.
    nodes = range(90)
    hard = "".join(f"n{i} n{j}\n" for i in nodes for j in range(i) if i // 3 != j // 3)
    links = tmp_path / "net.txt"
    out = tmp_path / "out"
    if overwrite:
        links.write_bytes(b"a1 b1\nb1 c1\nc1 a1\n")
        assert run_tool("run", links, "-o", out).status == 0
    old = tree(out) if overwrite else {}
    links.write_text(hard)
    command = [sys.executable, "-m", "plexor.tool", "run", "-q", str(links), "-o", str(out)]
    with subprocess.Popen(
        command + (["-O"] if overwrite else []), stderr=subprocess.PIPE, env=tool_environment()
    ) as process:
        # The graph file is the last one before the search.
        def begun() -> bool:
            folders = [out]
            if overwrite:
                folders = [p / "results" for p in tmp_path.iterdir() if p.name.startswith(".out")]
            return any((p / "graph").exists() and (p / "graph").stat().st_size for p in folders)

        while not begun():
            assert process.poll() is None
            time.sleep(0.01)
        process.send_signal(signal.SIGINT)
        assert process.stderr is not None
        said = process.stderr.read().decode()
        assert process.wait() == 130
    assert said.endswith("plexor-tool: interrupted\n")
    if overwrite:
        assert "the results of before are as they were" in said
        assert tree(out) == old
    else:
        assert f"'{out}' has 2 files and the folders of 0 k" in said
    assert sorted(p.name for p in tmp_path.iterdir()) == ["net.txt", "out"]


def on_a_terminal(*arguments: str | Path) -> str:
    """What plexor-tool shows on a terminal of 90 columns."""
    ours, theirs = pty.openpty()
    fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 90, 0, 0))
    command = [sys.executable, "-m", "plexor.tool", *map(str, arguments)]
    with subprocess.Popen(
        command, stdin=theirs, stdout=theirs, stderr=theirs, env=tool_environment()
    ) as process:
        os.close(theirs)
        shown = b""
        while True:
            try:
                piece = os.read(ours, 1 << 16)
            except OSError:  # the other end is closed
                break
            if not piece:
                break
            shown += piece
        assert process.wait() == 0
    os.close(ours)
    return shown.decode()


def test_a_bar_on_a_terminal_alone(tmp_path: Path) -> None:
    shown = on_a_terminal("run", AIRPORTS, "-o", tmp_path / "out")
    assert "levels:   0%|" in shown and "| 0 of 25 k [00:00, ? left]" in shown
    bars = shown.split("\r")[:-1]
    assert all(len(bar) <= 90 for bar in bars if bar.startswith(("cliques:", "levels:")))
    # The bar goes away, and what is said stays.
    assert shown.splitlines()[-1].strip().endswith("communities at k=3 to k=27")
    assert set(bars[-2]) <= {" "}, bars[-3:]
    assert on_a_terminal("run", AIRPORTS, "-o", tmp_path / "quiet", "-q") == ""
    piped = run_tool("run", AIRPORTS, "-o", tmp_path / "piped")
    assert "\r" not in piped.said and "levels" not in piped.said


@pytest.mark.parametrize("exchange", [True, False])
def test_old_results_are_swapped_by_renaming(
    exchange: bool, tmp_path: Path, in_process: Tool, monkeypatch: pytest.MonkeyPatch
) -> None:
    from plexor.tool import run

    links, out, old = first_results(tmp_path, in_process)
    links.write_bytes(b"a1 b1\nb1 c1\nc1 a1\nc1 d1\n")
    seen = []
    really = run._put_in_place

    def look(made: Path, final: Path) -> None:
        # Until here the old results are all there, and the new ones are whole.
        seen.append((tree(final), tree(made)))
        really(made, final)

    monkeypatch.setattr(run, "_put_in_place", look)
    if not exchange:
        monkeypatch.setattr(run, "_exchange", lambda *_: False)
    assert in_process("run", links, "-o", out, "-O").status == 0
    ((before, made),) = seen
    assert before == old and tree(out) == made != old
    assert sorted(path.name for path in tmp_path.iterdir()) == ["net.txt", "out"]


def test_a_swap_that_fails_brings_the_old_results_back(
    tmp_path: Path, in_process: Tool, monkeypatch: pytest.MonkeyPatch
) -> None:
    from plexor.tool import run

    links, out, old = first_results(tmp_path, in_process)
    monkeypatch.setattr(run, "_exchange", lambda *_: False)
    really = Path.rename

    def rename(path: Path, target: Path) -> Path:
        if path.name == "results":
            raise OSError(5, "Input/output error", str(path))
        return really(path, target)

    monkeypatch.setattr(Path, "rename", rename)
    assert in_process("run", links, "-o", out, "-k", 3, "-O").status == 1
    monkeypatch.undo()
    assert tree(out) == old
    assert sorted(path.name for path in tmp_path.iterdir()) == ["net.txt", "out"]


def test_files_that_could_not_be_written_fail_the_run(
    tmp_path: Path, in_process: Tool, monkeypatch: pytest.MonkeyPatch
) -> None:
    import plexor
    from plexor.running import RunSummary

    def run(*_: object, **__: object) -> RunSummary:
        return RunSummary(tmp_path / "out", (Path("out/graph"),))

    monkeypatch.setattr(plexor, "run", run, raising=False)
    links = tmp_path / "net.txt"
    links.write_bytes(b"a1 b1\nb1 c1\nc1 a1\n")
    done = in_process("run", "-q", links, "--summary", "-")
    assert done.status == 1
    assert done.said == "plexor-tool: could not write 'out/graph'\n"
    assert json.loads(done.out)["not_written"] == ["out/graph"]


@pytest.mark.parametrize("threads", ["0", "2", "8"])
def test_threads(in_process: Tool, tmp_path: Path, threads: str) -> None:
    assert in_process("run", FACULTY, "-o", tmp_path / "one").status == 0
    assert in_process("run", FACULTY, "-o", tmp_path / "several", "--threads", threads).status == 0
    assert tree(tmp_path / "several") == tree(tmp_path / "one")


@pytest.mark.parametrize("threads", ["-1", "two", "1.5", "1025", ""])
def test_threads_that_cannot_be(in_process: Tool, tmp_path: Path, threads: str) -> None:
    outcome = in_process("run", FACULTY, "-o", tmp_path / "out", f"--threads={threads}")
    assert outcome.status == 2 and not (tmp_path / "out").exists()


def test_the_workers_of_a_scheduler(in_process: Tool, tmp_path: Path) -> None:
    distributed = pytest.importorskip("distributed")
    assert in_process("run", FACULTY, "-o", tmp_path / "one").status == 0
    with distributed.LocalCluster(
        n_workers=2, threads_per_worker=1, dashboard_address=None, silence_logs=50
    ) as cluster:
        address = cluster.scheduler_address
        many = tmp_path / "many"
        assert in_process("run", FACULTY, "-o", many, "--dask", address).status == 0
        assert tree(many) == tree(tmp_path / "one")
        options = ["--dask", address, "--shared", tmp_path, "--threads", "2"]
        assert in_process("run", AIRPORTS, "-o", many, "-O", *options).status == 0
    assert in_process("run", AIRPORTS, "-o", tmp_path / "other").status == 0
    assert tree(many) == tree(tmp_path / "other")
    assert {path.name for path in tmp_path.iterdir()} == {"one", "many", "other"}


def test_a_shared_folder_goes_with_a_scheduler(in_process: Tool, tmp_path: Path) -> None:
    outcome = in_process("run", FACULTY, "-o", tmp_path / "out", "--shared", ".")
    assert outcome.status == 2 and not (tmp_path / "out").exists()
