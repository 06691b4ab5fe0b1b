# SPDX-License-Identifier: MIT
"""Progress, Ctrl-C, threads."""

from __future__ import annotations

import os
import signal
import threading
import time

import numpy as np
import pytest

import plexor
from plexor import progress as progress_module


@pytest.fixture(scope="module")
def busy() -> plexor.Network:
    """A random network whose search takes many seconds, in many nodes."""
    rng = np.random.default_rng(1)
    return plexor.Network(rng.integers(0, 3000, 900_000), rng.integers(0, 3000, 900_000))


@pytest.fixture
def small() -> plexor.Network:
    rng = np.random.default_rng(1)
    return plexor.Network(rng.integers(0, 300, 9000), rng.integers(0, 300, 9000))


def test_a_function_is_told(small: plexor.Network) -> None:
    told: list[tuple[str, int, int]] = []
    result = plexor.find_communities(small, progress=lambda *what: told.append(what))
    assert [done for stage, done, total in told if stage == "levels"] == list(range(len(result.ks)))
    for stage, done, total in told:
        assert stage in ("cliques", "levels") and 0 <= done < total
    cliques = [done for stage, done, _ in told if stage == "cliques"]
    assert cliques and cliques == sorted(cliques)


@pytest.mark.parametrize("threads", [1, 3])
def test_what_the_function_raises_ends_the_search(busy: plexor.Network, threads: int) -> None:
    def refuse(stage: str, done: int, total: int) -> None:
        raise RuntimeError("enough")

    with pytest.raises(RuntimeError, match="enough"):
        plexor.find_cliques(busy, threads=threads, progress=refuse)


def test_a_bar(small: plexor.Network, capsys: pytest.CaptureFixture[str]) -> None:
    plexor.find_communities(small, progress=True)
    shown = capsys.readouterr()
    assert shown.out == "" and "levels" in shown.err


def test_no_bar_without_tqdm(
    small: plexor.Network, capsys: pytest.CaptureFixture[str], monkeypatch: pytest.MonkeyPatch
) -> None:
    monkeypatch.setitem(__import__("sys").modules, "tqdm.auto", None)
    plexor.find_communities(small, progress=True)
    assert capsys.readouterr() == ("", "")
    assert not progress_module.Reporter(True).listening


def interrupt_when(begun: threading.Event) -> threading.Thread:
    """Sends this process a Ctrl-C once the search is under way."""

    def send() -> None:
        begun.wait()
        os.kill(os.getpid(), signal.SIGINT)

    thread = threading.Thread(target=send)
    thread.start()
    return thread


@pytest.mark.parametrize("threads", [1, 3])
def test_ctrl_c_ends_a_search_and_leaves_nothing_broken(
    busy: plexor.Network, small: plexor.Network, threads: int
) -> None:
    before = plexor.find_communities(small)
    for _ in range(3):
        begun = threading.Event()
        thread = interrupt_when(begun)
        with pytest.raises(KeyboardInterrupt):
            plexor.find_cliques(busy, threads=threads, progress=lambda *_: begun.set())
        thread.join()
    after = plexor.find_communities(small)
    assert after.cliques == before.cliques and after.ks == before.ks


def test_other_threads_go_on(busy: plexor.Network) -> None:
    """The interpreter is free during a search: another thread counts while this one searches."""
    counted = 0
    seen: list[int] = []
    stop = threading.Event()

    def count() -> None:
        nonlocal counted
        while not stop.is_set():
            counted += 1
            time.sleep(0)

    def enough(stage: str, done: int, total: int) -> None:
        seen.append(counted)
        if len(seen) == 10:
            raise StopIteration

    thread = threading.Thread(target=count)
    thread.start()
    try:
        with pytest.raises(StopIteration):
            plexor.find_cliques(busy, progress=enough)
    finally:
        stop.set()
        thread.join()
    assert seen == sorted(seen) and seen[-1] > seen[0]


def test_searches_in_several_threads(small: plexor.Network) -> None:
    expected = plexor.find_communities(small)
    found: dict[int, plexor.Result] = {}

    def search(i: int) -> None:
        found[i] = plexor.find_communities(small)

    threads = [threading.Thread(target=search, args=(i,)) for i in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    for result in found.values():
        assert result.cliques == expected.cliques
        assert all(result[k].nodes == expected[k].nodes for k in expected.ks)
    # One result, used by several threads at once.
    links = {k: expected[k].links for k in expected.ks}
    again = plexor.find_communities(small)
    threads = [
        threading.Thread(target=lambda k=k: [again[k].links, again[k].graph]) for k in again.ks * 2
    ]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert all(again[k].links == links[k] for k in again.ks)
