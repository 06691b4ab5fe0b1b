#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Draws the communities of one k from Plexor's result files as an SVG picture.

    make_picture.py RESULTS K OUTPUT.svg [--largest N] [--title TEXT] [--nodes WORD]

RESULTS is the directory that a run has left. Communities of more than N nodes are not drawn; a node
that is in one of them too gets a grey slice. The same results always give the same picture: the
layout starts from a fixed seed, and only Python's standard library is used.
"""
import argparse
import html
import math
import random
from pathlib import Path

COLOURS = ["#0072b2", "#e69f00", "#009e73", "#d55e00", "#cc79a7", "#56b4e9", "#b8a800", "#7b4fa3",
           "#8c564b", "#1b9e9e", "#e7298a", "#66761f"]
ELSEWHERE = "#9a9a9a"
RADIUS = 15.0
MARGIN = 35.0
LEGEND_WIDTH = 236.0
STEPS = 1500


def records(path):
    """The numbered lines of a result file: (number, names). A "-" before a number is kept."""
    for line in Path(path).read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            number, _, names = line.partition(":")
            yield number, names.split()


def community_links(path):
    """The links inside each community: {number: [(name, name), ...]}."""
    links = {}
    current = []
    for line in Path(path).read_text(encoding="utf-8").splitlines():
        if not line or line.startswith("#"):
            continue
        fields = line.split()
        if len(fields) == 1 and line.endswith(":"):
            current = links.setdefault(line[:-1], [])
        else:
            current.append(tuple(sorted(fields[:2])))
    return links


def parts_of(nodes, pairs):
    """The connected parts, each a list of nodes, largest first."""
    root = {node: node for node in nodes}

    def find(node):
        while root[node] != node:
            node = root[node]
        return node

    for a, b in pairs:
        root[find(a)] = find(b)
    parts = {}
    for node in nodes:
        parts.setdefault(find(node), []).append(node)
    return sorted(parts.values(), key=lambda part: (-len(part), part[0]))


def force_layout(nodes, pairs, groups, rng):
    """Springs along links and within groups, repulsion between all: {node: (x, y)}, in pixels."""
    length = RADIUS * 2.95
    angle = {node: 2 * math.pi * i / len(nodes) for i, node in enumerate(nodes)}
    at = {node: [length * math.cos(angle[node]) + rng.random(),
                 length * math.sin(angle[node]) + rng.random()] for node in nodes}
    for step in range(STEPS):
        heat = length * (1 - step / STEPS) * 0.5 + 0.1
        push = {node: [0.0, 0.0] for node in nodes}
        for i, a in enumerate(nodes):
            for b in nodes[i + 1:]:
                dx, dy = at[a][0] - at[b][0], at[a][1] - at[b][1]
                far = math.hypot(dx, dy) or 0.01
                force = length * length / far / far
                for node, sign in ((a, 1), (b, -1)):
                    push[node][0] += sign * dx / far * force * 9
                    push[node][1] += sign * dy / far * force * 9
        for a, b in pairs:
            dx, dy = at[a][0] - at[b][0], at[a][1] - at[b][1]
            far = math.hypot(dx, dy) or 0.01
            force = far / length * 0.9
            for node, sign in ((a, -1), (b, 1)):
                push[node][0] += sign * dx / far * force
                push[node][1] += sign * dy / far * force
        for group in groups:
            x = sum(at[node][0] for node in group) / len(group)
            y = sum(at[node][1] for node in group) / len(group)
            for node in group:
                push[node][0] += (x - at[node][0]) * 0.12
                push[node][1] += (y - at[node][1]) * 0.12
        for node in nodes:
            size = math.hypot(*push[node]) or 1.0
            move = min(size, heat) / size
            at[node][0] += push[node][0] * move
            at[node][1] += push[node][1] * move
    return at


def turned_wide(at):
    """The same layout, turned so that it is as wide and flat as it can be."""
    best = None
    for degrees in range(0, 180, 3):
        s, c = math.sin(math.radians(degrees)), math.cos(math.radians(degrees))
        turned = {node: (x * c - y * s, x * s + y * c) for node, (x, y) in at.items()}
        height = max(y for _, y in turned.values()) - min(y for _, y in turned.values())
        if best is None or height < best[0]:
            best = (height, turned)
    return best[1]


def packed(layouts, width):
    """Puts the layouts side by side in rows of the given width: ({node: (x, y)}, height)."""
    placed = {}
    rows, row, used = [], [], 0.0
    for at in layouts:
        left = min(x for x, _ in at.values())
        top = min(y for _, y in at.values())
        box = (max(x for x, _ in at.values()) - left + 2 * MARGIN,
               max(y for _, y in at.values()) - top + 2 * MARGIN)
        if row and used + box[0] > width:
            rows.append(row)
            row, used = [], 0.0
        row.append((at, left, top, box))
        used += box[0]
    rows.append(row)
    y0 = 0.0
    for row in rows:
        height = max(box[1] for _, _, _, box in row)
        spare = (width - sum(box[0] for _, _, _, box in row)) / len(row)
        x0 = spare / 2
        for at, left, top, box in row:
            for node, (x, y) in at.items():
                placed[node] = (x - left + MARGIN + x0, y - top + MARGIN + y0 + (height - box[1]) / 2)
            x0 += box[0] + spare
        y0 += height
    return placed, y0


def hull(points):
    """The corners of the convex hull."""
    points = sorted(points)

    def half(sequence):
        chain = []
        for p in sequence:
            while len(chain) > 1 and ((chain[-1][0] - chain[-2][0]) * (p[1] - chain[-2][1])
                                      <= (chain[-1][1] - chain[-2][1]) * (p[0] - chain[-2][0])):
                chain.pop()
            chain.append(p)
        return chain[:-1]

    return half(points) + half(points[::-1])


def pie(x, y, colours):
    """A disc of equal slices."""
    if len(colours) == 1:
        return [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="{RADIUS}" fill="{colours[0]}"/>']
    shapes = []
    for i, colour in enumerate(colours):
        begin = 2 * math.pi * i / len(colours) - math.pi / 2
        end = 2 * math.pi * (i + 1) / len(colours) - math.pi / 2
        shapes.append(
            f'<path d="M{x:.1f} {y:.1f}L{x + RADIUS * math.cos(begin):.1f} '
            f'{y + RADIUS * math.sin(begin):.1f}A{RADIUS} {RADIUS} 0 0 1 '
            f'{x + RADIUS * math.cos(end):.1f} {y + RADIUS * math.sin(end):.1f}Z" '
            f'fill="{colour}"/>')
    return shapes


def draw(communities, links, largest, title, word):
    shown = [(number, names) for number, names in communities if len(names) <= largest]
    hidden = [(number, names) for number, names in communities if len(names) > largest]
    elsewhere = {name for _, names in hidden for name in names}
    colour = {number: COLOURS[i % len(COLOURS)] for i, (number, _) in enumerate(shown)}
    of_node = {}
    for number, names in shown:
        for name in names:
            of_node.setdefault(name, []).append(number)
    nodes = sorted(of_node)
    pairs = sorted({pair for number, _ in shown for pair in links[number]})
    rng = random.Random(1)
    layouts = []
    for part in parts_of(nodes, pairs):
        inside = set(part)
        layouts.append(turned_wide(force_layout(
            part, [pair for pair in pairs if pair[0] in inside],
            [names for _, names in shown if names[0] in inside], rng)))
    plot_width = 880.0
    at, plot_height = packed(layouts, plot_width)
    head = 58.0
    row = 25.0
    legend_rows = len(shown) + len(hidden)
    width = plot_width + LEGEND_WIDTH
    height = max(head + plot_height, head + row * (legend_rows + 4)) + 8
    at = {node: (x, y + head) for node, (x, y) in at.items()}

    out = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width:.0f} {height:.0f}" '
           f'width="{width:.0f}" height="{height:.0f}" '
           'font-family="Helvetica, Arial, \'DejaVu Sans\', sans-serif">',
           f'<title>{html.escape(title)}</title>',
           f'<rect width="{width:.0f}" height="{height:.0f}" fill="#ffffff"/>',
           f'<text x="24" y="36" font-size="19" font-weight="bold" fill="#222222">'
           f'{html.escape(title)}</text>']
    for number, names in shown:
        corners = " ".join(f"{x:.1f},{y:.1f}" for x, y in hull([at[name] for name in names]))
        # The group's opacity applies to the outline and the area as one shape.
        out.append(f'<g opacity="0.15"><polygon points="{corners}" fill="{colour[number]}" '
                   f'stroke="{colour[number]}" stroke-width="{RADIUS * 3.2:.0f}" '
                   'stroke-linejoin="round"/></g>')
    drawn = {}
    for number, _ in shown:
        for pair in links[number]:
            drawn.setdefault(pair, number)
    for (a, b), number in sorted(drawn.items()):
        out.append(f'<line x1="{at[a][0]:.1f}" y1="{at[a][1]:.1f}" x2="{at[b][0]:.1f}" '
                   f'y2="{at[b][1]:.1f}" stroke="{colour[number]}" stroke-opacity="0.5" '
                   'stroke-width="1.3"/>')
    for node in nodes:
        x, y = at[node]
        slices = [colour[number] for number in of_node[node]]
        if node in elsewhere:
            slices.append(ELSEWHERE)
        out.append(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="{RADIUS + 1.8:.1f}" fill="#ffffff"/>')
        out += pie(x, y, slices)
        out.append(f'<text x="{x:.1f}" y="{y + 3.7:.1f}" font-size="10.5" font-weight="bold" '
                   'text-anchor="middle" fill="#ffffff" stroke="#222222" stroke-width="2.4" '
                   f'stroke-linejoin="round" paint-order="stroke">{html.escape(node)}</text>')

    x = plot_width + 14
    y = head + 18
    out.append(f'<text x="{x}" y="{y}" font-size="14" font-weight="bold" fill="#222222">'
               'Communities</text>')
    for number, names in shown:
        y += row
        out.append(f'<rect x="{x}" y="{y - 12}" width="15" height="15" rx="3" '
                   f'fill="{colour[number]}"/>'
                   f'<text x="{x + 24}" y="{y}" font-size="13" fill="#222222">'
                   f'{html.escape(number)}: {len(names)} {html.escape(word)}</text>')
    for number, names in hidden:
        y += row
        out.append(f'<rect x="{x}" y="{y - 12}" width="15" height="15" rx="3" '
                   f'fill="{ELSEWHERE}"/>'
                   f'<text x="{x + 24}" y="{y}" font-size="13" fill="#222222">'
                   f'{html.escape(number)}: {len(names)} {html.escape(word)}, not drawn</text>')
    y += row + 12
    half = RADIUS * 0.8
    out += [f'<path d="M{x + 9} {y - 4}m0 {-half}a{half} {half} 0 0 1 0 {2 * half}z" '
            'fill="#444444"/>',
            f'<path d="M{x + 9} {y - 4}m0 {-half}a{half} {half} 0 0 0 0 {2 * half}z" '
            'fill="#bbbbbb"/>',
            f'<text x="{x + 30}" y="{y}" font-size="13" fill="#222222">'
            'in several: a slice for each</text>', '</svg>', '']
    return "\n".join(out)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("results", type=Path)
    parser.add_argument("k", type=int)
    parser.add_argument("output", type=Path)
    parser.add_argument("--largest", type=int, default=60)
    parser.add_argument("--title")
    parser.add_argument("--nodes", default="nodes", metavar="WORD")
    args = parser.parse_args()
    at_k = args.results / f"k={args.k}"
    title = args.title or f"Communities at k={args.k}"
    args.output.write_text(
        draw(list(records(at_k / "communities")), community_links(at_k / "communities_links"),
             args.largest, title, args.nodes), encoding="utf-8")


if __name__ == "__main__":
    main()
