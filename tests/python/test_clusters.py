# SPDX-License-Identifier: MIT
"""Levels made by the workers of a cluster: the files of the program, whatever happens to workers."""

from __future__ import annotations

import os
import signal
import subprocess
from collections.abc import Iterator
from pathlib import Path
from typing import Any

import pytest

import plexor
from plexor import clusters

distributed = pytest.importorskip("distributed")


@pytest.fixture
def client() -> Iterator[Any]:
    """Of two processes of one thread each; one that ends is not replaced at once."""
    with (
        distributed.LocalCluster(
            n_workers=2, threads_per_worker=1, dashboard_address=None, silence_logs=50
        ) as cluster,
        distributed.Client(cluster) as one,
    ):
        yield one


def tree(directory: Path) -> dict[str, bytes]:
    return {
        str(path.relative_to(directory)): path.read_bytes()
        for path in directory.rglob("*")
        if path.is_file()
    }


def by_the_program(program: Path, links: Path, *switches: str) -> dict[str, bytes]:
    subprocess.run([program, "-i", links, "-o", links.parent / "one", *switches], stdout=subprocess.DEVNULL)
    (made,) = links.parent.glob("one*")
    return tree(made)


QUESTIONS: list[tuple[list[str], dict[str, Any]]] = [
    ([], {}),
    (["-D"], {"directed": True}),
    (["-k", "5"], {"k": 5}),
    (["-I", "5"], {"intensity": 5}),
    (["-w", "2", "-W", "9.5"], {"weights": (2, 9.5)}),
]


def test_the_files_are_those_of_the_program(
    client: Any, program: Path, examples: Path, tmp_path: Path
) -> None:
    for number, (switches, question) in enumerate(QUESTIONS):
        folder = tmp_path / str(number)
        folder.mkdir()
        links = folder / "links.txt"
        links.write_bytes((examples / "uk-faculty.txt").read_bytes())
        expected = by_the_program(program, links, *switches)
        shared = None if number % 2 else tmp_path
        threads = 1 + number % 3
        done = plexor.run(
            links, folder / "many", client=client, shared=shared, threads=threads, **question
        )
        assert not done.not_written
        assert tree(done.path) == expected
        assert {path.name for path in folder.iterdir()} == {
            "links.txt", done.path.name, done.path.name.replace("many", "one")
        }
    assert not [path for path in tmp_path.iterdir() if path.name.startswith("plexor-")]
    assert set(client.run(lambda: len(clusters._ready)).values()) == {0}


def test_a_worker_that_is_killed_is_not_missed(
    client: Any, program: Path, examples: Path, tmp_path: Path
) -> None:
    links = tmp_path / "links.txt"
    links.write_bytes((examples / "github.txt").read_bytes())
    expected = by_the_program(program, links)
    pids = list(client.run(os.getpid).values())
    killed = []

    def kill_one(stage: str, done: int, total: int) -> None:
        if stage == "levels" and not killed:
            assert done < total - 1
            killed.append(pids[0])
            os.kill(pids[0], signal.SIGKILL)

    done = plexor.run(links, tmp_path / "many", client=client, progress=kill_one)
    assert killed and not done.not_written
    assert tree(done.path) == expected
    assert {path.name for path in tmp_path.iterdir()} == {"links.txt", "many", "one"}


def test_an_attempt_that_was_cut_short_leaves_nothing(
    program: Path, examples: Path, tmp_path: Path
) -> None:
    links = tmp_path / "links.txt"
    links.write_bytes((examples / "uk-faculty.txt").read_bytes())
    expected = by_the_program(program, links)
    levels: dict[str, Any] = {}
    final = tmp_path / "many"
    plexor._engine.run(
        os.fsencode(links), os.fsencode(final), None, False, None, None, None, None, 6, 1, -1, None,
        None, None, levels,
    )
    assert not list(final.glob("k=*"))
    arrays, parts = tmp_path / "arrays", tmp_path / "parts"
    arrays.mkdir()
    parts.mkdir()
    clusters._save(levels, None, arrays)
    call = (str(arrays), str(parts), str(final))
    clusters.make_level(*call, 8)
    (work,) = parts.iterdir()
    (work / "k=7").mkdir()
    (work / "k=7" / "communities").write_text("half a f")
    # The same k twice, as when a worker that was thought lost comes back; and up again.
    for k in (7, 7, 3, *range(levels["largest"], 2, -1)):
        clusters.make_level(*call, k)
    assert tree(final) == expected
    clusters.forget(str(arrays))


def test_an_error_of_a_level_arrives(client: Any, examples: Path, tmp_path: Path) -> None:
    links = tmp_path / "links.txt"
    links.write_bytes((examples / "uk-faculty.txt").read_bytes())
    with pytest.raises(plexor.PlexorError, match="missing link"):
        plexor.run(links, tmp_path / "many", client=client, intensity=1, k=2)
    assert {path.name for path in tmp_path.iterdir() if path.name != "links.txt"} == {"many-w-th1.000000"}


@pytest.mark.parametrize("question", [{"client": 1, "log": 1}, {"shared": "x"}])
def test_what_does_not_go_together(question: dict[str, Any], examples: Path) -> None:
    with pytest.raises(ValueError):
        plexor.run(examples / "uk-faculty.txt", "out", **question)
