# SPDX-License-Identifier: MIT
"""When something goes wrong: a clear line, status 1, and nothing half-written."""

from __future__ import annotations

import gzip
import os
import resource
import signal
import subprocess
import sys
from collections.abc import Callable
from pathlib import Path

import pytest
from plexor.tool.cli import COMMANDS

from conftest import ROOT, Outcome, Run, run_tool, tool_environment

Tool = Callable[..., Outcome]

LINKS = b"".join(b"node%d node%d\n" % (i, i + 1) for i in range(200_000))


def refused(outcome: Outcome, reason: str) -> None:
    assert outcome.status == 1
    assert reason in outcome.said
    assert len(outcome.said.splitlines()) == 1 or outcome.said.startswith("/")
    assert "Traceback" not in outcome.said


def test_a_full_disk(tmp_path: Path) -> None:
    path = tmp_path / "net.txt"
    path.write_bytes(LINKS)
    with open("/dev/full", "wb") as full:
        done = subprocess.run(
            [sys.executable, "-m", "plexor.tool", "convert", "-q", str(path)],
            stdout=full,
            stderr=subprocess.PIPE,
            env=tool_environment(),
            check=False,
        )
    assert done.returncode == 1
    assert done.stderr.decode() == "plexor-tool: No space left on device\n"


def test_a_full_disk_leaves_the_old_file(tmp_path: Path, in_process: Tool) -> None:
    # What is written beside the old file fails in the middle.
    from plexor.tool import console

    target = tmp_path / "links.txt"
    target.write_bytes(b"precious\n")
    with pytest.raises(OSError, match="full"), console.output_file(str(target), True) as stream:
        stream.write(b"half")
        raise OSError("full")
    assert target.read_bytes() == b"precious\n"
    assert [path.name for path in tmp_path.iterdir()] == ["links.txt"]


def run_with_small_files(*arguments: str | Path) -> Outcome:
    """plexor-tool where no file may have more than 20 kB, as if the disk were full then."""

    def restrict() -> None:
        resource.setrlimit(resource.RLIMIT_FSIZE, (20_000, 20_000))

    done = subprocess.run(
        [sys.executable, "-m", "plexor.tool", *map(str, arguments)],
        capture_output=True,
        env={**tool_environment(), "PYTHONDONTWRITEBYTECODE": "1"},
        preexec_fn=restrict,
        check=False,
    )
    return Outcome(done.returncode, done.stdout, done.stderr.decode())


def files_below(folder: Path) -> dict[str, bytes]:
    return {str(path): path.read_bytes() for path in folder.rglob("*") if path.is_file()}


@pytest.mark.parametrize("overwrite", [False, True])
def test_a_disk_that_is_full_in_the_middle_of_a_run(
    overwrite: bool, tmp_path: Path, in_process: Tool
) -> None:
    network = ROOT / "examples" / "us-airports.txt"
    out = tmp_path / "out"
    if overwrite:
        assert in_process("run", network, "-o", out, "-k", 12).status == 0
    old = files_below(tmp_path)
    options = ["-k", "6", *(["-O"] if overwrite else [])]
    outcome = run_with_small_files("run", network, "-q", "-o", out, *options)
    assert outcome.status == 1 and "Traceback" not in outcome.said
    lines = outcome.said.splitlines()
    assert lines and all(line.startswith("plexor-tool: could not write '") for line in lines)
    assert any(line.endswith("/graph'") for line in lines)
    if overwrite:
        assert files_below(tmp_path) == old
    else:
        assert (out / "k=6" / "size_distribution").exists()  # the run goes on for what fits


@pytest.mark.parametrize("format", ["graphml", "edges", "json", "all"])
def test_a_disk_that_is_full_in_the_middle_of_an_export(
    format: str, tmp_path: Path, run_plexor: Run
) -> None:
    directory = run_plexor(ROOT / "examples" / "us-airports.txt", "-k", "6")
    target = tmp_path / ("tables/" if format == "all" else "file")
    outcome = run_with_small_files("export", directory, "-q", "-f", format, "-o", f"{target}")
    assert outcome.status == 1 and "Traceback" not in outcome.said
    assert outcome.said.endswith("File too large\n")
    # Nothing is there by halves.
    assert all(len(data) < 20_000 for data in files_below(tmp_path).values())
    assert not any(Path(name).name.startswith(".") for name in files_below(tmp_path))


def test_a_closed_pipe(tmp_path: Path) -> None:
    path = tmp_path / "net.txt"
    path.write_bytes(LINKS)
    reading, writing = os.pipe()
    os.close(reading)
    done = subprocess.run(
        [sys.executable, "-m", "plexor.tool", "convert", "-q", str(path)],
        stdout=writing,
        stderr=subprocess.PIPE,
        env=tool_environment(),
        check=False,
    )
    os.close(writing)
    assert done.returncode == 1
    assert done.stderr.decode() == (
        "plexor-tool: standard output was closed before all was written\n"
    )


def test_a_place_that_is_not_there(tmp_path: Path, in_process: Tool) -> None:
    path = tmp_path / "net.txt"
    path.write_bytes(b"a b\n")
    outcome = in_process("convert", "-q", path, "-o", tmp_path / "none" / "links.txt")
    refused(outcome, "No such file or directory")


@pytest.mark.parametrize(
    "module, package, name, text",
    [
        ("networkx", "python3-networkx", "net.graphml", "<graphml></graphml>"),
        ("scipy.io", "python3-scipy", "net.mtx", "%%MatrixMarket matrix coordinate real general\n"),
    ],
)
def test_a_module_that_is_not_there(
    module: str,
    package: str,
    name: str,
    text: str,
    tmp_path: Path,
    in_process: Tool,
    monkeypatch: pytest.MonkeyPatch,
) -> None:
    (tmp_path / name).write_text(text)
    monkeypatch.setitem(sys.modules, module, None)
    outcome = in_process("convert", "-q", tmp_path / name, "-o", tmp_path / "links.txt")
    refused(outcome, f"needs the Python module '{module}'")
    assert package in outcome.said
    assert not (tmp_path / "links.txt").exists()


@pytest.mark.skipif(os.geteuid() == 0, reason="root may write everywhere")
def test_no_permission(tmp_path: Path, in_process: Tool) -> None:
    path = tmp_path / "net.txt"
    path.write_bytes(b"a b\n")
    path.chmod(0)
    refused(in_process("check", path), "Permission denied")


def test_no_permission_as_anybody(tmp_path: Path) -> None:
    # Root may read everything, so the test goes on as another user where it can.
    if os.geteuid() != 0:
        pytest.skip("needs root to become somebody else; test_no_permission stands in")
    path = tmp_path / "net.txt"
    path.write_bytes(b"a b\n")
    path.chmod(0)
    for folder in [tmp_path, *tmp_path.parents]:
        if folder == Path("/tmp"):
            break
        folder.chmod(0o755)
    program = (
        "import os, sys; from plexor.tool.cli import main; import plexor.formats; "
        "from plexor.tool import check; os.setuid(65534); sys.exit(main(sys.argv[1:]))"
    )
    done = subprocess.run(
        [sys.executable, "-c", program, "check", str(path)],
        capture_output=True,
        env=tool_environment(),
        check=False,
    )
    assert done.returncode == 1
    assert done.stderr.decode() == f"plexor-tool: '{path}': Permission denied\n"


def test_a_file_that_is_not_there(in_process: Tool) -> None:
    refused(in_process("convert", "nothing.txt"), "'nothing.txt': No such file")


def test_a_directory(tmp_path: Path, in_process: Tool) -> None:
    refused(in_process("check", tmp_path), "is a directory")


@pytest.mark.parametrize("end", [10, 30_000, -4])
def test_a_broken_gz(end: int, tmp_path: Path, in_process: Tool) -> None:
    packed = gzip.compress(LINKS)
    path = tmp_path / "net.txt.gz"
    path.write_bytes(packed[:end])
    target = tmp_path / "links.txt"
    refused(in_process("convert", path, "-o", target), "broken gzip")
    assert not target.exists()


def test_a_gz_with_a_flipped_bit(tmp_path: Path, in_process: Tool) -> None:
    packed = bytearray(gzip.compress(LINKS))
    packed[len(packed) // 2] ^= 0x10
    path = tmp_path / "net.txt.gz"
    path.write_bytes(packed)
    refused(in_process("convert", path), "broken gzip")


SIZES = [1 << 27, *([1 << 30] if os.environ.get("PLEXOR_TOOL_LONG") else [])]


@pytest.mark.parametrize("size", SIZES)
@pytest.mark.parametrize("n_lines", [0, 200_000], ids=["at once", "after links"])
@pytest.mark.parametrize("command", ["check", "convert", "run"])
def test_a_line_of_a_gigabyte(command: str, n_lines: int, size: int, tmp_path: Path) -> None:
    """128 MB of it, and all of it with PLEXOR_TOOL_LONG=1: refused, and not held in memory."""
    path = tmp_path / "long.txt"
    with path.open("wb") as stream:
        stream.write(b"ann bob\n" * n_lines)
        for _ in range(size >> 20):
            stream.write(b"a" * (1 << 20))
    program = (
        "import sys; from plexor.tool.cli import main; status = main(sys.argv[1:]);"
        "print([line for line in open('/proc/self/status') if line.startswith('VmHWM')][0]);"
        "sys.exit(status)"
    )
    done = subprocess.run(
        [sys.executable, "-c", program, command, path, "-o", tmp_path / "out"],
        capture_output=True,
        env=tool_environment(),
        check=False,
    )
    path.unlink()
    said = done.stderr.decode().splitlines()[-1]
    assert done.returncode == 1
    assert said.startswith("plexor-tool: ") and "line" in said and " more than " in said, said
    assert n_lines == 0 or f"line {n_lines + 1}:" in said
    assert int(done.stdout.split()[1]) < 120 * 1024  # kB
    assert not list(tmp_path.iterdir())


def test_a_line_without_end(tmp_path: Path, in_process: Tool) -> None:
    path = tmp_path / "long.txt"
    with path.open("wb") as stream:
        stream.write(b"a" * (1 << 21))
    refused(in_process("check", path), "the first line has more than")
    with path.open("wb") as stream:
        stream.write(b"a b\n" + b"c" * (1 << 21) + b" d\n")
    refused(in_process("check", path), "line 2")
    with path.open("wb") as stream:
        stream.truncate(1 << 30)
    refused(in_process("check", path), "zero byte")


def test_a_bomb_of_gz_is_not_unpacked(tmp_path: Path, in_process: Tool) -> None:
    path = tmp_path / "bomb.gz"
    path.write_bytes(gzip.compress(b"a" * (1 << 26), 9))
    refused(in_process("check", path), "the first line has more than")


BOMB = (
    '<?xml version="1.0"?>\n<!DOCTYPE graphml [\n'
    + '<!ENTITY a0 "aaaaaaaaaa">\n'
    + "".join(f'<!ENTITY a{i} "{f"&a{i - 1};" * 10}">\n' for i in range(1, 10))
    + ']>\n<graphml><graph edgedefault="undirected"><node id="&a9;"/></graph></graphml>\n'
)
ELSEWHERE = (
    '<?xml version="1.0"?>\n<!DOCTYPE graphml [<!ENTITY x SYSTEM "file:///etc/passwd">]>\n'
    '<graphml><graph edgedefault="undirected"><node id="&x;"/></graph></graphml>\n'
)


@pytest.mark.parametrize("text", [BOMB, ELSEWHERE])
@pytest.mark.parametrize("root", ["graphml", "gexf"])
def test_entities_of_xml_are_refused_before_parsing(
    text: str, root: str, tmp_path: Path, in_process: Tool, monkeypatch: pytest.MonkeyPatch
) -> None:
    import networkx

    def parsed(*_: object, **__: object) -> None:
        raise AssertionError("a parser has seen it")

    monkeypatch.setattr(networkx, "read_graphml", parsed)
    monkeypatch.setattr(networkx, "read_gexf", parsed)
    path = tmp_path / f"net.{root}"
    path.write_text(text.replace("graphml", root))
    refused(in_process("convert", path), "definitions of its own (entities)")


@pytest.mark.parametrize("encoding", ["UTF-7", "UTF-16", "cp037", "utf-32"])
def test_entities_cannot_hide_in_an_encoding(
    encoding: str, tmp_path: Path, in_process: Tool
) -> None:
    path = tmp_path / "net.graphml"
    path.write_text(f'<?xml version="1.0" encoding="{encoding}"?>\n<graphml/>\n')
    refused(in_process("convert", path), "encoding")


def test_an_interrupt(tmp_path: Path) -> None:
    # The input has not ended when the signal comes. It ends afterwards: a signal that comes between
    # two calls of read() is seen by Python when the second one is over.
    fifo = tmp_path / "fifo"
    os.mkfifo(fifo)
    target = tmp_path / "links.txt"
    with subprocess.Popen(
        [sys.executable, "-m", "plexor.tool", "convert", str(fifo), "-o", str(target)],
        stderr=subprocess.PIPE,
        env=tool_environment(),
    ) as process:
        with fifo.open("wb") as stream:  # waits until the command has opened its end
            stream.write(b"a b\n")
            stream.flush()
            process.send_signal(signal.SIGINT)
        assert process.stderr is not None
        said = process.stderr.read().decode()
        assert process.wait() == 130
    assert said == "plexor-tool: interrupted\n"
    assert not target.exists()


def test_what_names_do_to_a_terminal(tmp_path: Path) -> None:
    path = tmp_path / "net.csv"
    path.write_bytes(b"source,target\n\x1b[31mred,b\nb,c,d\n")
    outcome = run_tool("convert", path)
    assert outcome.status == 1
    path.write_bytes(b"a,\x1b[31mred\n")
    outcome = run_tool("check", path, "--no-cost")
    assert outcome.status == 0
    assert b"\x1b" not in outcome.out and "\x1b" not in outcome.said
    assert b"%1B[31mred" in run_tool("convert", path).out


def test_wrong_arguments(in_process: Tool) -> None:
    for arguments in ([], ["nothing"], ["convert"], ["convert", "a", "--no-such"], ["check", "-f"]):
        outcome = in_process(*arguments)
        assert outcome.status == 2
        assert outcome.out == b""
        assert "Traceback" not in outcome.said


def test_help_and_version(in_process: Tool) -> None:
    for arguments in (["--help"], ["convert", "-h"], *([name, "--help"] for name in COMMANDS)):
        outcome = in_process(*arguments)
        assert (outcome.status, outcome.said) == (0, "")
        assert outcome.out.startswith(b"usage: plexor-tool")
    assert in_process("--version").out.startswith(b"plexor-tool ")


def test_quiet_says_nothing(tmp_path: Path, in_process: Tool) -> None:
    path = tmp_path / "net.txt"
    path.write_bytes(b"a b\n")
    assert in_process("convert", "-q", path).said == ""
    assert in_process("convert", path).said != ""


def test_a_result_that_is_removed_while_read(tmp_path: Path, run_plexor: Run, in_process: Tool) -> None:
    links = tmp_path / "net.txt"
    links.write_text("a1 b1\nb1 c1\nc1 a1\n")
    directory = run_plexor(links)
    (directory / "graph").unlink()
    refused(in_process("export", directory, "-f", "nodes"), "No such file")
