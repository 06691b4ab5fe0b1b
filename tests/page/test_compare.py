# SPDX-License-Identifier: MIT
"""Comparisons against slow, literal implementations of their published definitions, and by hand."""
from __future__ import annotations

import itertools
import math
import random

import pytest

from plexor.comparison import compare, compare_over_time, cover_of, nmi, omega


def slow_nmi(first: list[set[int]], second: list[set[int]], n: int) -> float:
    """McDaid, Greene, Hurley 2011: (1 - 0 where nothing is known). Communities as 0/1 rows, counted one by one."""

    def h(w: int) -> float:
        return -w * math.log2(w / n) if w > 0 else 0.0  # in units of n

    def entropy(x: list[int]) -> float:
        return h(sum(x)) + h(n - sum(x))

    def lack(x: list[int], y: list[int]) -> float:
        a = sum(1 for p, q in zip(x, y) if not p and not q)
        b = sum(1 for p, q in zip(x, y) if not p and q)
        c = sum(1 for p, q in zip(x, y) if p and not q)
        d = sum(1 for p, q in zip(x, y) if p and q)
        if h(a) + h(d) >= h(b) + h(c):
            return h(a) + h(b) + h(c) + h(d) - h(b + d) - h(a + c)
        return h(c + d) + h(a + b)

    def given(xs: list[list[int]], ys: list[list[int]]) -> float:
        return sum(min([lack(x, y) for y in ys] + [entropy(x)]) for x in xs)

    rows = [[[1 if node in one else 0 for node in range(n)] for one in cover] for cover in (first, second)]
    h_x, h_y = (sum(entropy(x) for x in cover) for cover in rows)
    information = 0.5 * (h_x - given(rows[0], rows[1]) + h_y - given(rows[1], rows[0]))
    return information / max(h_x, h_y)


def slow_omega(first: list[set[int]], second: list[set[int]], n: int) -> float:
    """Collins and Dent 1988, with the counts of both covers up to the larger number of times."""
    pairs = list(itertools.combinations(range(n), 2))

    def together(cover: list[set[int]], u: int, v: int) -> int:
        return sum(1 for one in cover if u in one and v in one)

    times = [(together(first, u, v), together(second, u, v)) for u, v in pairs]
    observed = sum(1 for p, q in times if p == q) / len(pairs)
    expected = 0.0
    for j in range(max(len(first), len(second)) + 1):
        expected += sum(1 for p, _ in times if p == j) * sum(1 for _, q in times if q == j)
    expected /= len(pairs) ** 2
    if observed == 1.0:
        return 1.0
    return (observed - expected) / (1 - expected)


def some_cover(draw: random.Random, n: int) -> list[set[int]]:
    found = []
    for _ in range(1 + int(draw.random() * 6)):
        size = 1 + int(draw.random() * (n - 1))
        found.append({int(draw.random() * n) for _ in range(size)})
    return found


def test_a_thousand_random_pairs_agree_with_the_definitions() -> None:
    draw = random.Random(7)
    for case in range(1000):
        n = 3 + int(draw.random() * 12)
        first, second = some_cover(draw, n), some_cover(draw, n)
        if case % 4 == 0:  # alike covers, where the condition on opposites matters less
            second = [set(one) for one in first]
            second[0] = {(node + 1) % n for node in second[0]}
        a, b = cover_of(first, range(n)), cover_of(second, range(n))
        if all(len(one) == n for one in first + second):
            continue
        assert nmi(a, b) == pytest.approx(slow_nmi(first, second, n), abs=1e-9), (first, second, n)
        assert nmi(b, a) == pytest.approx(nmi(a, b), abs=1e-12)
        assert omega(a, b) == pytest.approx(slow_omega(first, second, n), abs=1e-9), (first, second, n)


def test_equal_covers_are_fully_alike() -> None:
    draw = random.Random(8)
    for _ in range(100):
        n = 4 + int(draw.random() * 10)
        sets = [one for one in some_cover(draw, n) if len(one) < n] or [{0}]
        cover = cover_of(sets, range(n))
        again = cover_of(list(reversed(sets)), range(n))
        assert nmi(cover, again) == pytest.approx(1.0, abs=1e-12)
        assert omega(cover, again) == 1.0


def test_by_hand_omega() -> None:
    # Nodes 0 to 3. First: {0 1 2}; second: {0 1}, {1 2}. Pairs together: 01 02 12 against 01 12.
    # Equal: 01, 12, 03, 13, 23 of six. Counts of once: 3 and 2, of never: 3 and 4.
    # Expected: (3*4 + 3*2) / 36 = 1/2. Omega: (5/6 - 1/2) / (1/2) = 2/3.
    a, b = cover_of([{0, 1, 2}], range(4)), cover_of([{0, 1}, {1, 2}], range(4))
    assert omega(a, b) == pytest.approx(2 / 3, abs=1e-15)


def test_by_hand_nmi() -> None:
    # Nodes 0 to 3, one bit of entropy each: {0 1} against {0 2} tells nothing (all four fields are 1),
    # and {0 1} against {0 1}, {2 3} has H = 1 against 2, H(X|Y) = 0 and H(Y|X) = 0, the second set of Y being
    # the opposite of X: it counts as unlike, so H(Y|X) = 0 + 1. I = (1 - 0 + 2 - 1) / 2 = 1, norm 2.
    assert nmi(cover_of([{0, 1}], range(4)), cover_of([{0, 2}], range(4))) == pytest.approx(0.0, abs=1e-15)
    assert nmi(cover_of([{0, 1}], range(4)), cover_of([{0, 1}, {2, 3}], range(4))) == pytest.approx(0.5, abs=1e-15)


def test_nothing_against_nothing() -> None:
    assert nmi(cover_of([], range(4)), cover_of([], range(4))) == 1.0
    assert omega(cover_of([], range(4)), cover_of([], range(4))) == 1.0
    assert nmi(cover_of([], range(4)), cover_of([{0, 1}], range(4))) == 0.0
    assert math.isnan(nmi(cover_of([], range(4)), cover_of([range(4)], range(4))))
    assert math.isnan(nmi([], []))


def test_matches() -> None:
    result = compare([{0, 1, 2, 3}, {7, 8}], [{0, 1}, {1, 2, 3}, {5, 6}])
    first, second = result.matches
    assert (first[0].other, first[0].shared, first[0].jaccard) == (1, 3, 0.75)
    assert first[1].other is None
    assert [match.other for match in second] == [0, 0, None]
    assert result.n_common_nodes == 4 and result.n_nodes == 8


def test_over_time() -> None:
    series = [
        [{0, 1, 2, 3}, {10, 11, 12}, {20, 21, 22}, {30, 31, 32, 33, 34, 35}, {40, 41, 42}],
        [{0, 1, 2, 3, 4}, {10, 11, 12, 20, 21, 22}, {30, 31, 32}, {33, 34, 35}, {50, 51, 52}],
        [{0, 1, 2}, {10, 11, 12, 20, 21, 22}, {30, 31, 36}],
    ]
    timeline = compare_over_time(series)
    found = {(event.step, event.kind, event.before, event.after) for event in timeline.events}
    assert found == {
        (0, "grew", (0,), (0,)), (0, "merged", (1, 2), (1,)), (0, "split", (3,), (2, 3)), (0, "died", (4,), ()), (0, "born", (), (4,)),
        (1, "shrank", (0,), (0,)), (1, "same", (1,), (1,)), (1, "changed", (2,), (2,)), (1, "died", (3,), ()), (1, "died", (4,), ()),
    }
    assert timeline.lines[1][0] == 0 and timeline.lines[2][0] == 0
    assert timeline.lines[1][1] == 1 and timeline.lines[1][2] == 3
    # Overlapping communities that stay as they are: nothing merges, although most of the second is in the first.
    still = [set(range(20)), {16, 17, 18, 19, 30, 31}]
    assert [event.kind for event in compare_over_time([still, still]).events] == ["same", "same"]
    with pytest.raises(ValueError):
        compare_over_time(series[:1])


def test_what_is_no_cover() -> None:
    with pytest.raises(ValueError):
        cover_of([{1, 2}], [1])
    with pytest.raises(ValueError):
        cover_of([set()])
