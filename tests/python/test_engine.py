# SPDX-License-Identifier: MIT
"""What the module finds is what the program writes: sets, order, numbers, links, distributions."""

from __future__ import annotations

import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest
from conftest import Run
from same import assert_same, assert_same_level

import plexor

EXAMPLES = ["uk-faculty.txt", "us-airports.txt", "github.txt"]


def columns(path: Path) -> tuple[list[str], list[str], list[float]]:
    """The columns of a link file, in the plainest way."""
    source, target, weight = [], [], []
    for line in path.read_text().splitlines():
        if not line.startswith("#"):
            words = line.split()
            source.append(words[0])
            target.append(words[1])
            weight.append(float(words[2]) if len(words) > 2 else 0.0)
    return source, target, weight


def from_columns(path: Path, weighted: bool) -> plexor.Network:
    """The network as positions in a list of names."""
    source, target, weight = columns(path)
    names = list(dict.fromkeys([*target, *source]))  # in an order of its own
    number = {name: i for i, name in enumerate(names)}
    return plexor.Network(
        [number[name] for name in source],
        [number[name] for name in target],
        weight if weighted else None,
        names,
    )


@pytest.mark.parametrize("way", ["read", "arrays"])
@pytest.mark.parametrize("directed", [False, True])
@pytest.mark.parametrize("network", EXAMPLES)
def test_every_k(network: str, directed: bool, way: str, examples: Path, run_plexor: Run) -> None:
    path = examples / network
    files = plexor.load(run_plexor(path, *(["-D"] if directed else [])))
    made = plexor.Network.read(path) if way == "read" else from_columns(path, False)
    assert_same(plexor.find_communities(made, directed=directed), files)


QUESTIONS = [
    ("uk-faculty.txt", ["-w", "3"], {"weights": (3, None)}),
    ("uk-faculty.txt", ["-w", "1", "-W", "9", "-D"], {"weights": (1, 9), "directed": True}),
    ("us-airports.txt", ["-W", "20000"], {"weights": (None, 20000)}),
    ("us-airports.txt", ["-I", "900", "-k", "4"], {"intensity": 900, "k": [4]}),
    ("uk-faculty.txt", ["-I", "5"], {"intensity": 5}),
    ("uk-faculty.txt", ["-I", "4", "-w", "2"], {"intensity": 4, "weights": (2, None)}),
    ("uk-faculty.txt", ["-t", "1000"], {"time_limit": 1000}),
    ("uk-faculty.txt", ["-t", "1000", "-D"], {"time_limit": 1000, "directed": True}),
    ("uk-faculty.txt", ["-k", "2"], {"k": [2]}),
    ("uk-faculty.txt", ["-k", "60"], {"k": [60]}),
]


@pytest.mark.parametrize("way", ["read", "arrays"])
@pytest.mark.parametrize("network, switches, question", QUESTIONS, ids=lambda x: str(x))
def test_questions(
    network: str, switches: list[str], question: dict, way: str, examples: Path, run_plexor: Run
) -> None:
    path = examples / network
    weighted = "weights" in question or "intensity" in question
    made = plexor.Network.read(path, weighted=weighted)
    if way == "arrays":
        made = from_columns(path, weighted)
    assert_same(plexor.find_communities(made, **question), plexor.load(run_plexor(path, *switches)))


def test_a_limit_that_strikes(examples: Path) -> None:
    """Which nodes are given up depends on the clock; what must hold then does not."""
    network = plexor.Network.read(examples / "us-airports.txt")
    true = {tuple(members) for members in plexor.find_cliques(network)}
    found = plexor.find_communities(network, [4], time_limit=1e-9)
    level = found[4]
    names = found.names
    exact = [tuple(names[i] for i in found.cliques[c]) for c in range(found.n_exact_cliques)]
    assert found.n_exact_cliques < len(found.cliques) and set(exact) <= true
    assert 0 < len(level) - level.n_exact
    for community in level:
        assert community.exact == bool((community.cliques < found.n_exact_cliques).all())
        inside = np.unique(np.concatenate([found.cliques[c] for c in community.cliques]))
        assert np.array_equal(inside, community.members)
    for parts in level.distributions.values():
        assert set(parts) == {"merged", "exact", "appr"}
    sizes = level.distributions["size"]
    assert sizes["exact"][1].sum() == level.n_exact
    assert sizes["merged"][1].sum() == len(level)


def test_one_several_and_all_ks(examples: Path) -> None:
    network = plexor.Network.read(examples / "us-airports.txt")
    everything = plexor.find_communities(network)
    assert everything.ks == list(range(everything.cliques.sizes.max(), 2, -1))
    some = plexor.find_communities(network, [4, 7, 4])
    assert some.ks == [7, 4]
    for k in some.ks:
        assert_same_level(some[k], everything[k])
    one = plexor.find_communities(network, 5)
    assert isinstance(one, plexor.Level)
    assert_same_level(one, everything[5])
    walked = list(plexor.levels(network))
    assert [level.k for level in walked] == everything.ks
    for level in walked:
        assert_same_level(level, everything[level.k])


def test_links_of_levels_in_any_order(examples: Path) -> None:
    """Links are found when they are asked for, whatever was asked for before."""
    network = plexor.Network.read(examples / "uk-faculty.txt")
    expected = {level.k: level.links for level in plexor.levels(network)}
    result = plexor.find_communities(network)
    for k in sorted(result.ks):
        assert result[k].links == expected[k]


def test_find_cliques(examples: Path, run_plexor: Run) -> None:
    path = examples / "us-airports.txt"
    cliques = plexor.find_cliques(plexor.Network.read(path))
    files = plexor.load(run_plexor(path))
    assert cliques.sets == files.cliques and cliques.n_exact == len(cliques)
    assert cliques[3] == [files.names[i] for i in files.cliques[3]]
    assert list(cliques)[-2:] == cliques[-2:]


def test_arrays_are_the_engines_own_and_stay(examples: Path) -> None:
    level = plexor.find_communities(plexor.Network.read(examples / "uk-faculty.txt"), 4)
    members = level.nodes.members
    kept = members.copy()
    assert not members.flags.owndata and not members.flags.writeable
    del level
    assert np.array_equal(members, kept)


MODES: list[tuple[list[str], dict]] = [
    ([], {}),
    (["-D"], {"directed": True}),
    (["-w", "2", "-W", "7"], {"weights": (2, 7)}),
    (["-D", "-w", "2"], {"weights": (2, None), "directed": True}),
    (["-I", "3"], {"intensity": 3}),
    (["-t", "1000"], {"time_limit": 1000}),
]


@pytest.mark.parametrize("switches, question", MODES, ids=lambda x: str(x))
def test_random_lines(
    switches: list[str], question: dict, program: Path, tmp_path: Path
) -> None:
    """Lists of links with everything in them: repeats, reverses, self-links, names of all kinds."""
    rng = np.random.default_rng(len(switches))
    alphabet = ["a", "B", "10", "9", "-1:", "é", "名", "\udcff", "long-name-of-a-node", "#"]
    for case in range(12):
        n, n_links = int(rng.integers(2, 14)), int(rng.integers(0, 90))
        names = [f"n{rng.choice(alphabet)}{i}" for i in range(n)]
        source, target = rng.integers(0, n, n_links), rng.integers(0, n, n_links)
        weight = rng.integers(1, 40, n_links) / 4
        lines = [f"{names[a]} {names[b]} {w}\n" for a, b, w in zip(source, target, weight)]
        file = tmp_path / str(case)
        file.write_bytes("".join(lines).encode("utf-8", "surrogateescape"))
        target_folder = tmp_path / f"{case}-result"
        command = [program, "-i", file, "-o", target_folder, *switches]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
        (directory,) = tmp_path.glob(f"{case}-result*")
        network = plexor.Network(source, target, weight, names)
        assert_same(plexor.find_communities(network, **question), plexor.load(directory))


def test_too_little_memory(examples: Path) -> None:
    """MemoryError, and whatever was there before still works."""
    script = """
import resource, numpy, plexor
rng = numpy.random.default_rng(1)
small = plexor.Network(rng.integers(0, 50, 500), rng.integers(0, 50, 500))
before = plexor.find_communities(small)
large = plexor.Network(rng.integers(0, 1000, 250_000), rng.integers(0, 1000, 250_000))
used = int(open("/proc/self/statm").read().split()[0]) * resource.getpagesize()
resource.setrlimit(resource.RLIMIT_AS, (used + 40_000_000, resource.RLIM_INFINITY))
try:
    plexor.find_cliques(large)
except MemoryError:
    print("MemoryError", plexor.find_communities(small).cliques == before.cliques)
"""
    done = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True)
    assert done.stdout == "MemoryError True\n", done.stderr


@pytest.mark.parametrize("threads", [0, 2, 3, 8])
@pytest.mark.parametrize("network", EXAMPLES)
def test_threads(network: str, threads: int, examples: Path, run_plexor: Run) -> None:
    path = examples / network
    files = plexor.load(run_plexor(path))
    made = plexor.Network.read(path)
    assert_same(plexor.find_communities(made, threads=threads), files)
    for level in plexor.levels(made, threads=threads):
        assert_same_level(level, files[level.k])


@pytest.mark.parametrize("question", [{}, {"directed": True}, {"time_limit": 1000}])
@pytest.mark.parametrize("network", EXAMPLES)
def test_threads_of_a_search(network: str, question: dict, examples: Path) -> None:
    made = plexor.Network.read(examples / network)
    alone = plexor.find_cliques(made, **question)
    for threads in (0, 2, 3, 8):
        several = plexor.find_cliques(made, threads=threads, **question)
        assert several.sets == alone.sets and several.n_exact == alone.n_exact


def test_threads_with_an_intensity_and_some_k(examples: Path) -> None:
    made = from_columns(examples / "uk-faculty.txt", True)
    for question in ({"intensity": 5}, {"k": [7, 3, 5]}, {"directed": True}):
        alone = plexor.find_communities(made, **question)
        several = plexor.find_communities(made, threads=3, **question)
        assert several.ks == alone.ks
        for k in alone.ks:
            assert_same_level(several[k], alone[k])


def test_threads_that_nobody_waits_for(examples: Path) -> None:
    made = plexor.Network.read(examples / "us-airports.txt")
    walk = plexor.levels(made, threads=4)
    kept = next(walk)
    del walk
    assert len(kept) == 1


@pytest.mark.parametrize("threads", [-1, 1025, 1.5, True, "2"])
def test_threads_that_cannot_be(threads: object) -> None:
    with pytest.raises(ValueError, match="threads"):
        plexor.find_communities(plexor.Network([], []), threads=threads)  # type: ignore[call-overload]
    with pytest.raises(ValueError, match="threads"):
        plexor.find_cliques(plexor.Network([], []), threads=threads)  # type: ignore[arg-type]
