# SPDX-License-Identifier: MIT
"""plexor.run leaves the program's files and prints what the program prints, byte for byte."""

from __future__ import annotations

import os
import signal
import subprocess
import threading
from pathlib import Path

import numpy as np
import pytest

import plexor

SWITCHES: list[tuple[list[str], dict]] = [
    ([], {}),
    (["-D"], {"directed": True}),
    (["-k", "5"], {"k": 5}),
    (["-w", "2"], {"weights": (2, None)}),
    (["-w", "2", "-W", "9.5", "-d", "2"], {"weights": (2, 9.5), "digits": 2}),
    (["-W", "9", "-D"], {"weights": (None, 9), "directed": True}),
    (["-I", "5", "-k", "4"], {"intensity": 5, "k": 4}),
    (["-t", "1000"], {"time_limit": 1000}),
    (["-k", "2"], {"k": 2}),
]


def tree(directory: Path) -> dict[str, bytes]:
    return {
        str(path.relative_to(directory)): path.read_bytes()
        for path in directory.rglob("*")
        if path.is_file()
    }


@pytest.mark.parametrize("switches, question", SWITCHES, ids=lambda x: str(x))
def test_threads(
    switches: list[str], question: dict, examples: Path, program: Path, tmp_path: Path
) -> None:
    links = tmp_path / "links.txt"
    links.write_bytes((examples / "uk-faculty.txt").read_bytes())
    printed = subprocess.run([program, "-i", links, *switches], capture_output=True).stdout
    (directory,) = tmp_path.glob("links.txt_files*")
    directory.rename(tmp_path / "other")
    for threads in (0, 2, 8):
        with open(tmp_path / "log", "wb") as log:
            done = plexor.run(links, threads=threads, log=log.fileno(), **question)
        assert done.path == directory and not done.not_written
        assert tree(directory) == tree(tmp_path / "other")
        assert (tmp_path / "log").read_bytes() == printed
        directory.rename(tmp_path / f"other{threads}")


@pytest.mark.parametrize("way", ["file", "memory"])
@pytest.mark.parametrize("switches, question", SWITCHES, ids=lambda x: str(x))
def test_files_and_output(
    switches: list[str], question: dict, way: str, examples: Path, program: Path, tmp_path: Path
) -> None:
    links = tmp_path / "links.txt"
    links.write_bytes((examples / "uk-faculty.txt").read_bytes())
    printed = subprocess.run([program, "-i", links, *switches], capture_output=True).stdout
    (directory,) = tmp_path.glob("links.txt_files*")
    expected = tree(directory)
    directory.rename(tmp_path / "other")
    given: plexor.Network | Path = links
    if way == "memory":
        weighted = "weights" in question or "intensity" in question
        given = plexor.Network.read(links, weighted=weighted)
    with (tmp_path / "log").open("wb") as log:
        summary = plexor.run(given, log=log.fileno(), **question)
    assert summary.path == directory and summary.not_written == ()
    assert tree(directory) == expected
    assert (tmp_path / "log").read_bytes() == printed
    assert summary.load().ks == plexor.load(tmp_path / "other").ks


def test_a_network_from_memory(tmp_path: Path) -> None:
    network = plexor.Network([0, 1, 0], [1, 2, 2], [1, 2, 3], ["Zoë", "b", "\udcff"])
    with pytest.raises(ValueError, match="needs an output"):
        plexor.run(network)
    summary = plexor.run(network, tmp_path / "out", name="/from/memory", weights=(0, None))
    assert summary.load().parameters.input == "/from/memory"
    assert sorted(summary.load()[3][0].nodes) == sorted(network.nodes)
    for bad in ("a b", "", "a\n", 7):
        network = plexor.Network([0, 1, 0], [1, 2, 2], names=[bad, "b", "c"])
        with pytest.raises(plexor.PlexorError, match="without white space"):
            plexor.run(network, tmp_path / "out2")
    assert not (tmp_path / "out2").exists()


def test_what_ends_a_run(examples: Path, tmp_path: Path) -> None:
    links = examples / "uk-faculty.txt"
    (tmp_path / "full").mkdir()
    (tmp_path / "full" / "file").touch()
    with pytest.raises(plexor.PlexorError, match="already exists and it is non-empty"):
        plexor.run(links, tmp_path / "full")
    with pytest.raises(plexor.PlexorError, match="File not found"):
        plexor.run(tmp_path / "none", tmp_path / "new")
    assert not (tmp_path / "new").exists()
    for arguments in (
        {"directed": True, "intensity": 1},
        {"time_limit": 0},
        {"weights": (2, 1)},
        {"k": -1},
        {"k": 2.5},
        {"digits": -1},
        {"name": "x"},
    ):
        with pytest.raises(ValueError):
            plexor.run(links, tmp_path / "new", **arguments)
    with pytest.raises(plexor.PlexorError, match="missing link"):
        plexor.run(links, tmp_path / "two", k=2, intensity=0.1)


@pytest.mark.parametrize("question", [{}, {"directed": True}, {"intensity": 2}, {"k": 4}], ids=str)
def test_progress_of_a_whole_run(question: dict, examples: Path, tmp_path: Path) -> None:
    told: list[tuple[str, int, int]] = []
    summary = plexor.run(
        examples / "uk-faculty.txt",
        tmp_path / "out",
        progress=lambda *what: told.append(what),
        **question,
    )
    largest = max(map(len, summary.load().cliques))
    total = 1 if "k" in question else largest - 2
    levels = [(done, of) for stage, done, of in told if stage == "levels"]
    assert list(dict.fromkeys(levels)) == [(done, total) for done in range(total)]
    assert [stage for stage, _, _ in told] == sorted(stage for stage, _, _ in told)


def test_ctrl_c(tmp_path: Path) -> None:
    rng = np.random.default_rng(1)
    links = tmp_path / "links"
    np.savetxt(links, rng.integers(0, 3000, (900_000, 2)), fmt="%d")
    begun = threading.Event()

    def send() -> None:
        begun.wait()
        os.kill(os.getpid(), signal.SIGINT)

    thread = threading.Thread(target=send)
    thread.start()
    with pytest.raises(KeyboardInterrupt):
        plexor.run(links, tmp_path / "out", progress=lambda *_: begun.set())
    thread.join()
    assert {path.name for path in (tmp_path / "out").iterdir()} == {"input_params.txt", "graph"}
