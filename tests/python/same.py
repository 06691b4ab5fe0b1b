# SPDX-License-Identifier: MIT
"""Whether two results are the same in everything."""

from __future__ import annotations

import numpy as np

import plexor


def assert_same_arrays(a: tuple, b: tuple) -> None:
    assert len(a) == len(b)
    for one, other in zip(a, b):
        assert one.dtype == other.dtype
        assert np.array_equal(one, other)


def assert_same_level(a: plexor.Level, b: plexor.Level) -> None:
    assert a.k == b.k
    assert a.n_exact == b.n_exact
    assert a.nodes == b.nodes
    assert a.cliques == b.cliques
    assert a.k_cliques == b.k_cliques
    assert a.links == b.links
    assert_same_arrays(a.graph, b.graph)
    assert {what: set(parts) for what, parts in a.distributions.items()} == {
        what: set(parts) for what, parts in b.distributions.items()
    }
    for what, parts in a.distributions.items():
        for whose, columns in parts.items():
            assert_same_arrays(columns, b.distributions[what][whose])


def assert_same(memory: plexor.Result, files: plexor.Result) -> None:
    """Numbers, order, sets, links, distributions. Files have six digits of a weight."""
    assert list(map(str, memory.names)) == list(files.names)
    assert_same_arrays(memory.links[:2], files.links[:2])
    if files.links.weight is None:
        assert memory.links.weight is None
    else:
        digits = [float(f"{weight:g}") for weight in memory.links.weight.tolist()]
        assert digits == files.links.weight.tolist()
    assert memory.n_exact_cliques == files.n_exact_cliques
    assert memory.cliques == files.cliques
    assert memory.ks == files.ks
    for k in files.ks:
        assert_same_level(memory[k], files[k])
