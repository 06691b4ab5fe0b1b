# SPDX-License-Identifier: MIT
"""Where the discs of a community graph stand.

Takes  radii of discs and the pairs that are linked, by number.
Leaves positions in the units of the radii, rounded to one digit, no two discs on top of each other.
How    each connected part is laid out by springs between linked discs and repulsion between all;
       the parts are then packed around the middle, the one with the largest area first.
Same   input, same bytes: the start is a spiral, nothing is random, and what is computed uses
       additions, products, quotients and roots only, in a fixed order, rounded after each step, so
       that processors with other vector units agree.
Cost   n * n for each of some hundred steps; a page draws at most some hundred discs.
Tested tests/page/test_layout.py
"""
from __future__ import annotations

import math

import numpy as np
from numpy.typing import NDArray

Floats = NDArray[np.float64]
Ints = NDArray[np.int64]

GAP = 5.0           # kept free between any two discs
PACKING_GAP = 12.0  # kept free between discs of different parts
ASPECT = 1.5        # width by height that the whole is packed for


def place(radii: Floats, a: Ints, b: Ints) -> tuple[Floats, Floats]:
    """Positions of discs.

    radii: float[n], all above 0.  a, b: int[m], the two discs of each link, a != b.
    Returns x and y, float[n], rounded to 0.1, their bounding box around (0, 0).
    """
    n = len(radii)
    if n == 0:
        return np.zeros(0), np.zeros(0)
    parts = _parts(n, a, b)
    part_of = np.empty(n, dtype=np.int64)
    inside = np.empty(n, dtype=np.int64)
    for number, part in enumerate(parts):
        part_of[part] = number
        inside[part] = np.arange(len(part))
    layouts: list[tuple[Floats, Floats]] = []
    link_part = part_of[a] if len(a) else np.zeros(0, dtype=np.int64)
    for number, part in enumerate(parts):
        chosen = link_part == number
        layouts.append(_springs(radii[part], inside[a[chosen]], inside[b[chosen]]))
    x, y = np.zeros(n), np.zeros(n)
    areas = [float((radii[part] ** 2).sum()) for part in parts]
    order = sorted(range(len(parts)), key=lambda i: (-areas[i], int(parts[i][0])))
    moved = _packed([radii[parts[i]] for i in order], [layouts[i] for i in order])
    for i, (part_x, part_y) in zip(order, moved):
        x[parts[i]], y[parts[i]] = part_x, part_y
    x -= ((x - radii).min() + (x + radii).max()) / 2
    y -= ((y - radii).min() + (y + radii).max()) / 2
    return np.round(x, 1) + 0.0, np.round(y, 1) + 0.0


def _parts(n: int, a: Ints, b: Ints) -> list[Ints]:
    """The connected parts, each ascending, ordered by their first disc."""
    root = list(range(n))

    def find(i: int) -> int:
        while root[i] != i:
            root[i] = root[root[i]]
            i = root[i]
        return i

    for i, j in zip(a.tolist(), b.tolist()):
        first, second = find(i), find(j)
        if first != second:
            root[max(first, second)] = min(first, second)
    found: dict[int, list[int]] = {}
    for i in range(n):
        found.setdefault(find(i), []).append(i)
    return [np.array(part, dtype=np.int64) for part in found.values()]


def _springs(radii: Floats, a: Ints, b: Ints) -> tuple[Floats, Floats]:
    n = len(radii)
    if n == 1:
        return np.zeros(1), np.zeros(1)
    if n == 2:
        half = float(radii.sum() + GAP * 2) / 2
        return np.array([-half, half]), np.zeros(2)
    order = np.lexsort((np.arange(n), -radii))
    spread = float(radii.mean()) * 2.2 + GAP
    x, y = np.empty(n), np.empty(n)
    for place_, disc in enumerate(order.tolist()):
        # The largest in the middle, the others around it.
        away = 0.0 if place_ == 0 else float(radii[order[0]]) + spread * math.sqrt(place_)
        turn = place_ * 2.399963229728653
        x[disc], y[disc] = round(away * math.cos(turn), 3), round(away * math.sin(turn), 3)
    touch = radii[:, None] + radii[None, :] + GAP
    charge = (radii[:, None] + GAP) * (radii[None, :] + GAP) * 3.0
    rest = radii[a] + radii[b] + GAP * 3
    degree = np.bincount(np.concatenate((a, b)), minlength=n)
    stiff = 0.9 / np.sqrt(np.minimum(degree[a], degree[b]).astype(np.float64))
    # A hub hardly moves: the others settle around it, it is not pushed out by their number.
    weight = np.sqrt(1.0 + degree * 0.5)
    steps = 320 if n <= 60 else 220 if n <= 200 else 130
    # A giant stays in the middle, else its many neighbours gather on one side and push it away.
    giant = int(order[0]) if n > 8 and radii[order[0]] > 2.5 * radii[order[n // 2]] else None
    for step in range(steps):
        heat = spread * 0.8 * (1 - step / steps) ** 2 + 0.3
        dx, dy = x[:, None] - x[None, :], y[:, None] - y[None, :]
        far = np.sqrt(dx * dx + dy * dy) + 1e-3
        free = np.maximum(far - touch, 0.0) + GAP * 2
        push = charge / (free * free) + np.maximum(touch - far, 0.0) * 0.5
        np.fill_diagonal(push, 0.0)
        # Sums along the first axis add row to row, in the same order on every processor.
        push_x = -(dx / far * push).sum(axis=0)
        push_y = -(dy / far * push).sum(axis=0)
        link_x, link_y = x[b] - x[a], y[b] - y[a]
        length = np.sqrt(link_x * link_x + link_y * link_y) + 1e-3
        pull = (length - rest) * stiff / length
        np.add.at(push_x, a, link_x * pull)
        np.add.at(push_y, a, link_y * pull)
        np.add.at(push_x, b, -link_x * pull)
        np.add.at(push_y, b, -link_y * pull)
        push_x -= x * 0.03
        push_y -= y * 0.03 * ASPECT
        size = np.sqrt(push_x * push_x + push_y * push_y) + 1e-9
        move = np.minimum(size, heat / weight) / size
        x = np.round(x + push_x * move, 4)
        y = np.round(y + push_y * move, 4)
        if giant is not None:
            x, y = np.round(x - x[giant], 4), np.round(y - y[giant], 4)
    return _apart(*_turned_wide(x, y), radii, touch)


def _turned_wide(x: Floats, y: Floats) -> tuple[Floats, Floats]:
    """Turned so that it is as flat as it can be."""
    best = (float(y.max() - y.min()), x, y)
    for eighth in range(-7, 9):
        # Tangents of half angles give the turn without sines, which differ between libraries.
        t = eighth / 8
        c, s = (1 - t * t) / (1 + t * t), 2 * t / (1 + t * t)
        turned_y = x * s + y * c
        height = float(turned_y.max() - turned_y.min())
        if height < best[0] - 1e-6:
            best = (height, x * c - y * s, turned_y)
    return np.round(best[1], 4), np.round(best[2], 4)


def _apart(x: Floats, y: Floats, radii: Floats, touch: Floats) -> tuple[Floats, Floats]:
    """Moves discs off each other, by the least move first; if they do not come apart, all spread."""
    n = len(x)
    # The smaller of two moves; a giant would be thrown out by the sum of its neighbours' pushes.
    area = radii * radii
    yields = area[:, None] / (area[:, None] + area[None, :]) * 1.04
    for _ in range(60):
        dx, dy = x[:, None] - x[None, :], y[:, None] - y[None, :]
        far = np.sqrt(dx * dx + dy * dy) + 1e-3
        lack = np.maximum(touch - far, 0.0)
        np.fill_diagonal(lack, 0.0)
        if not (lack > 0.05).any():
            break
        share = lack / far * yields
        x = np.round(x - (dx * share).sum(axis=0), 4)
        y = np.round(y - (dy * share).sum(axis=0), 4)
    dx, dy = x[:, None] - x[None, :], y[:, None] - y[None, :]
    far = np.sqrt(dx * dx + dy * dy) + 1e-3
    far[np.arange(n), np.arange(n)] = np.inf
    stretch = float((touch / far).max())
    if stretch > 1.02:
        x, y = np.round(x * stretch, 4), np.round(y * stretch, 4)
    return x, y


def _packed(radii: list[Floats], layouts: list[tuple[Floats, Floats]]) -> list[tuple[Floats, Floats]]:
    """Moves whole parts so that they lie around the middle without touching, in the order given."""
    largest = max(float(r.max()) for r in radii)
    area = sum(float(((r + PACKING_GAP) ** 2).sum()) for r in radii) * 4.5
    step = max(3.0, min(float(r.min()) for r in radii) * 0.75)
    extent = max(max(float(np.abs(v).max()) for v in xy) for xy in layouts) + largest
    room = max(math.sqrt(area), extent * 2.2)
    while True:
        done = _packed_into(radii, layouts, room * math.sqrt(ASPECT), room / math.sqrt(ASPECT), step)
        if done is not None:
            return done
        room *= 1.3


def _packed_into(radii: list[Floats], layouts: list[tuple[Floats, Floats]], width: float,
                 height: float, step: float) -> list[tuple[Floats, Floats]] | None:
    step = max(step, math.sqrt(width * height / 120000))
    columns, rows = int(width / step) | 1, int(height / step) | 1
    grid_x = (np.arange(columns) - columns // 2) * step
    grid_y = (np.arange(rows) - rows // 2) * step
    clear = np.full((rows, columns), np.inf)  # from a point of the grid to the nearest edge of a disc
    middle = grid_x[None, :] ** 2 / ASPECT + grid_y[:, None] ** 2 * ASPECT
    result = []
    for part_radii, (x, y) in zip(radii, layouts):
        # Discs stand up to 0.71 of a step from the points of the grid that stand for them.
        slack = 0.0 if len(x) == 1 else step * 0.71
        right = np.round(x / step).astype(np.int64)
        down = np.round(y / step).astype(np.int64)
        top, bottom = max(0, -int(down.min())), rows - max(0, int(down.max()))
        left, end = max(0, -int(right.min())), columns - max(0, int(right.max()))
        if top >= bottom or left >= end:
            return None
        fits = np.ones((bottom - top, end - left), dtype=bool)
        for r, i, j in zip(part_radii.tolist(), right.tolist(), down.tolist()):
            fits &= clear[top + j:bottom + j, left + i:end + i] >= r + PACKING_GAP + slack
        if not fits.any():
            return None
        cost = np.where(fits, middle[top:bottom, left:end], np.inf)
        at = int(cost.argmin())
        at_x = float(grid_x[left + at % (end - left)])
        at_y = float(grid_y[top + at // (end - left)])
        moved_x, moved_y = x + at_x, y + at_y
        for r, i, j in zip(part_radii.tolist(), moved_x.tolist(), moved_y.tolist()):
            away = np.sqrt((grid_x[None, :] - i) ** 2 + (grid_y[:, None] - j) ** 2) - r
            np.minimum(clear, away, out=clear)
        result.append((moved_x, moved_y))
    return result
