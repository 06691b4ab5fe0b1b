// SPDX-License-Identifier: MIT
// One community with its neighbours: nodes as pies of the communities they are in, an outline around
// each community, links. A community too large for that is shown on the community graph instead.
import { BubbleSets, type IRectangle } from "bubblesets-js";
import cytoscape from "cytoscape";
import {
    forceCollide, forceLink, forceManyBody, forceSimulation, forceX, forceY, type SimulationNodeDatum,
} from "d3-force";
import { nextSlice } from "../common/dom";
import { colour, SET_COLOURS } from "../common/theme";
import type { Data, Level, Link } from "./data";
import { type Disc, drawDiscs, shorten } from "./overview";
import { fit, FONT, hatchLines, layersOf, makeCore, MAX_ELEMENTS, type Style } from "./picture";

/** A community of more nodes is not drawn node by node. */
export const MAX_NODES_OF_ONE = 260;
const MAX_NODES = 320;
const MAX_SETS = SET_COLOURS.length;
const MAX_SLICES = 16; // Cytoscape's own limit
const DASHES = [[], [10, 5], [2, 4], [14, 4, 2, 4], [6, 3], [1, 6], [18, 5], [8, 3, 2, 3, 2, 3], [4, 8], [20, 3, 3, 3]];

export interface DrawnSet {
    community: number;
    colour: string;
    dash: number[];
    /** How many of its nodes are drawn; its outline is open to "the rest" when these are not all. */
    nodes: number[];
    whole: boolean;
}

export interface Plan {
    focus: number;
    sets: DrawnSet[];
    nodes: number[];
    links: Link[];
    nLinks: number | null;
    /** Communities that overlap and have no outline. */
    others: number;
}

/** Chooses what is drawn; null when the community is too large to be drawn node by node. */
export function planNeighbourhood(data: Data, level: Level, focus: number): Plan | null {
    if (level.sizes[focus] > MAX_NODES_OF_ONE) {
        return null;
    }
    const shown = new Set<number>(level.of(focus));
    const neighbours = level.neighbours(focus);
    const chosen = neighbours.slice(0, MAX_SETS - 1);
    for (const [community] of [...chosen].sort((one, other) => level.sizes[one[0]] - level.sizes[other[0]])) {
        const more = [...level.of(community)].filter((node) => !shown.has(node));
        if (shown.size + more.length <= MAX_NODES && level.sizes[community] <= 120) {
            for (const node of more) {
                shown.add(node);
            }
        }
    }
    const nodes = [...shown].sort((one, other) => one - other);
    const sets = [focus, ...chosen.map(([community]) => community)].map((community, i) => {
        const own = [...level.of(community)].filter((node) => shown.has(node));
        return {
            community,
            colour: SET_COLOURS[i],
            dash: DASHES[i],
            nodes: own,
            whole: own.length === level.sizes[community],
        };
    });
    const all = data.linksAmong(nodes, level.k);
    let links = all ?? [];
    const most = MAX_ELEMENTS - nodes.length - 100;
    if (links.length > most) {
        // Links inside communities first; of what is too much, an even choice.
        const ordered = [...links.filter((link) => link.inside), ...links.filter((link) => !link.inside)];
        const inside = links.filter((link) => link.inside).length;
        const base = inside > most ? ordered.slice(0, inside) : ordered;
        links = base.filter((_, i) => Math.floor(((i + 1) * most) / base.length) > Math.floor((i * most) / base.length));
    }
    return { focus, sets, nodes, links, nLinks: all === null ? null : all.length, others: neighbours.length - chosen.length };
}

interface Body extends SimulationNodeDatum {
    node: number;
    x: number;
    y: number;
}

/** Positions by forces, always the same for the same plan, worked out in short slices. */
async function layOut(plan: Plan, ended: () => boolean): Promise<Map<number, { x: number; y: number }>> {
    const bodies: Body[] = [];
    const place = new Map<number, number>();
    // Nodes start around the hub of the set that they are in; the focus stands in the middle.
    const hubs: { x: number; y: number }[] = plan.sets.map((_, i) => {
        const turn = (2 * Math.PI * (i - 1)) / Math.max(1, plan.sets.length - 1);
        return i === 0 ? { x: 0, y: 0 } : { x: 320 * Math.cos(turn), y: 210 * Math.sin(turn) };
    });
    const setsOf = new Map<number, number[]>();
    plan.sets.forEach((set, i) => {
        for (const node of set.nodes) {
            setsOf.set(node, [...(setsOf.get(node) ?? []), i]);
        }
    });
    plan.nodes.forEach((node, i) => {
        const sets = setsOf.get(node) ?? [0];
        const x = sets.reduce((sum, s) => sum + hubs[s].x, 0) / sets.length;
        const y = sets.reduce((sum, s) => sum + hubs[s].y, 0) / sets.length;
        place.set(node, bodies.length);
        const far = 9 * Math.sqrt(i + 1);
        bodies.push({ node, x: x + far * Math.cos(i * 2.39996), y: y + far * Math.sin(i * 2.39996) });
    });
    const springs = plan.links.map((link) => ({
        source: place.get(link.source) as number,
        target: place.get(link.target) as number,
        inside: link.inside,
    }));
    const hubSprings: { source: number; target: number; size: number }[] = [];
    plan.sets.forEach((set, i) => {
        const hub = bodies.length;
        bodies.push({ node: -1, x: hubs[i].x, y: hubs[i].y });
        for (const node of set.nodes) {
            hubSprings.push({ source: hub, target: place.get(node) as number, size: set.nodes.length });
        }
    });
    const crowd = Math.min(1, 60 / plan.nodes.length);
    const simulation = forceSimulation<Body>(bodies)
        .force("push", forceManyBody<Body>().strength((body) => (body.node < 0 ? -320 : -90)).distanceMax(700))
        .force("links", forceLink<Body, (typeof springs)[0]>(springs).distance(70).strength((link) => (link.inside ? 0.05 : 0.01) * crowd))
        .force("hubs", forceLink<Body, (typeof hubSprings)[0]>(hubSprings)
            .distance((link) => 13 * Math.sqrt(link.size)).strength(0.14))
        .force("room", forceCollide<Body>((body) => (body.node < 0 ? 0 : 24)).iterations(2))
        .force("x", forceX<Body>(0).strength(0.012))
        .force("y", forceY<Body>(0).strength(0.02))
        .stop();
    for (let step = 0; step < 300 && !ended(); ) {
        const until = performance.now() + 25;
        while (step < 300 && performance.now() < until) {
            simulation.tick();
            step++;
        }
        await nextSlice();
    }
    return new Map(bodies.filter((body) => body.node >= 0).map((body) => [
        body.node, { x: Math.round(body.x * 10) / 10, y: Math.round(body.y * 10) / 10 },
    ]));
}

/** Turns the layout so that it fills the container best. */
function turned(at: Map<number, { x: number; y: number }>, width: number, height: number): Map<number, { x: number; y: number }> {
    let best = at;
    let least = Infinity;
    for (let degrees = 0; degrees < 180; degrees += 6) {
        const s = Math.sin((degrees * Math.PI) / 180);
        const c = Math.cos((degrees * Math.PI) / 180);
        const tried = new Map([...at].map(([node, { x, y }]) => [node, { x: x * c - y * s, y: x * s + y * c }]));
        const xs = [...tried.values()].map(({ x }) => x);
        const ys = [...tried.values()].map(({ y }) => y);
        const need = Math.max((Math.max(...xs) - Math.min(...xs) + 90) / width, (Math.max(...ys) - Math.min(...ys) + 90) / height);
        if (need < least - 1e-9) {
            least = need;
            best = tried;
        }
    }
    return best;
}

const RADIUS = 16;

/** Draws a plan. ended: whether the reader has gone on to something else meanwhile. */
export async function drawNeighbourhood(
    container: HTMLElement, data: Data, level: Level, plan: Plan, ended: () => boolean,
): Promise<cytoscape.Core | null> {
    const at = turned(await layOut(plan, ended), container.clientWidth, container.clientHeight);
    if (ended()) {
        return null;
    }
    const colourOf = new Map(plan.sets.map((set) => [set.community, set.colour]));
    const elements: cytoscape.ElementDefinition[] = plan.nodes.map((node) => {
        const own = [...level.communitiesOf(node)];
        const crowded = own.length > MAX_SLICES;
        const name = data.name(node);
        const slices = crowded ? [] : own.map((community) => colourOf.get(community) ?? null);
        return {
            data: {
                id: `n${node}`,
                node,
                label: crowded ? `${shorten(name, 18)}\nin ${own.length}` : shorten(name, 18),
                communities: own,
                slices,
            },
            classes: crowded ? "crowded" : "",
            position: at.get(node) as { x: number; y: number },
        };
    });
    for (const [i, link] of plan.links.entries()) {
        const from = link.direction === 2 ? link.target : link.source;
        const to = link.direction === 2 ? link.source : link.target;
        elements.push({
            data: { id: `l${i}`, source: `n${from}`, target: `n${to}` },
            classes: [link.inside ? "inside" : "outside", data.head.directed ? (link.direction === 3 ? "both" : "one") : ""].join(" "),
        });
    }
    const cy = await makeCore(container, elements, nodeStyle(plan.links.length), ended);
    if (cy === null) {
        return null;
    }
    cy.batch(() => {
        cy.nodes().forEach((node) => {
            const slices = node.data("slices") as (string | null)[];
            slices.forEach((slice, i) => {
                node.style(`pie-${i + 1}-background-color`, slice ?? colour("grey-slice"));
                node.style(`pie-${i + 1}-background-size`, 100 / slices.length);
            });
        });
    });
    fit(cy, 46, 1.5);

    const outlines: { set: DrawnSet; path: Path2D; tag: { x: number; y: number }; box: number[] }[] = [];
    const layers = layersOf(cy);
    layers.nodeLayer.insertBefore("canvas").callback((context) => {
        for (const { set, path, box } of outlines) {
            context.save();
            context.globalAlpha = 0.13;
            context.fillStyle = set.colour;
            context.fill(path);
            context.globalAlpha = 1;
            if (!level.isExact(set.community)) {
                context.save();
                context.clip(path);
                context.globalAlpha = 0.3;
                hatchLines(context, box[0], box[1], box[2], box[3], 11);
                context.restore();
            }
            context.lineWidth = set.community === plan.focus ? 3.2 : 2;
            context.setLineDash(set.dash);
            context.strokeStyle = set.colour;
            context.stroke(path);
            context.restore();
        }
    });
    const tags = layers.nodeLayer.insertAfter("canvas");
    tags.callback((context) => {
        context.textAlign = "center";
        context.textBaseline = "middle";
        for (const { set, tag } of outlines) {
            const rest = level.sizes[set.community] - set.nodes.length;
            const text = (level.isExact(set.community) ? "" : "≈ ") + String(set.community) + (rest > 0 ? `  +${rest}` : "");
            context.font = `700 15px ${FONT}`;
            const width = context.measureText(text).width + 16;
            context.fillStyle = colour("card");
            context.strokeStyle = set.colour;
            context.lineWidth = 2.4;
            context.beginPath();
            context.roundRect(tag.x - width / 2, tag.y - 12, width, 24, 7);
            context.fill();
            context.stroke();
            context.fillStyle = colour("ink");
            context.fillText(text, tag.x, tag.y + 0.5);
        }
    });
    const taken: { x: number; y: number }[] = [];
    for (const set of plan.sets) {
        await nextSlice();
        if (ended()) {
            cy.destroy();
            return null;
        }
        const points = outline(set.nodes, plan.nodes, at);
        if (points.length > 2) {
            const path = new Path2D();
            path.moveTo(points[0].x, points[0].y);
            for (const point of points.slice(1)) {
                path.lineTo(point.x, point.y);
            }
            path.closePath();
            const tag = tagPlace(points, [...at.values()], taken);
            taken.push(tag);
            const xs = points.map(({ x }) => x);
            const ys = points.map(({ y }) => y);
            outlines.push({ set, path, tag, box: [Math.min(...xs), Math.min(...ys), Math.max(...xs), Math.max(...ys)] });
            layers.update();
        }
    }
    return cy;
}

/** The outline of a set that keeps clear of the nodes that are not in it as far as possible. */
function outline(members: number[], all: number[], at: Map<number, { x: number; y: number }>): { x: number; y: number }[] {
    const box = (node: number): IRectangle => {
        const { x, y } = at.get(node) as { x: number; y: number };
        return { x: x - RADIUS, y: y - RADIUS, width: 2 * RADIUS, height: 2 * RADIUS };
    };
    const own = new Set(members);
    const many = members.length > 80;
    const sets = new BubbleSets({
        pixelGroup: many ? 8 : 4, nodeR0: 16, nodeR1: 34, edgeR0: 12, edgeR1: 24, virtualEdges: !many,
        maxRoutingIterations: 60, maxMarchingIterations: many ? 4 : 12, morphBuffer: 14,
    });
    sets.pushMember(...members.map(box));
    if (many) {
        // Ways around the nodes of others would take seconds here: the shortest tree holds the set together.
        sets.pushEdge(...shortestTree(members.map((node) => at.get(node) as { x: number; y: number })));
    }
    sets.pushNonMember(...all.filter((node) => !own.has(node)).map(box));
    return [...sets.compute().sample(8).simplify(0).bSplines().simplify(0).points];
}

function shortestTree(points: { x: number; y: number }[]): { x1: number; y1: number; x2: number; y2: number }[] {
    const near = points.map(() => ({ far: Infinity, to: 0 }));
    const left = new Set(points.keys());
    const lines: { x1: number; y1: number; x2: number; y2: number }[] = [];
    let next = 0;
    while (left.delete(next) && left.size > 0) {
        let best = -1;
        for (const i of left) {
            const far = Math.hypot(points[i].x - points[next].x, points[i].y - points[next].y);
            if (far < near[i].far) {
                near[i] = { far, to: next };
            }
            if (best < 0 || near[i].far < near[best].far) {
                best = i;
            }
        }
        const { to } = near[best];
        lines.push({ x1: points[best].x, y1: points[best].y, x2: points[to].x, y2: points[to].y });
        next = best;
    }
    return lines;
}

/** A point of the outline for its number, away from nodes and other numbers. */
function tagPlace(points: { x: number; y: number }[], nodes: { x: number; y: number }[], taken: { x: number; y: number }[]): { x: number; y: number } {
    let best = points[0];
    let most = -Infinity;
    for (const point of points) {
        const clear = nodes.reduce((least, node) => Math.min(least, Math.hypot(node.x - point.x, node.y - point.y)), 60);
        const apart = taken.reduce((least, tag) => Math.min(least, Math.hypot(tag.x - point.x, tag.y - point.y)), 90);
        const score = clear + apart - point.y * 0.02;
        if (score > most) {
            most = score;
            best = point;
        }
    }
    return best;
}

/** The community and the largest of its neighbours as discs, for a community too large to draw whole. */
export async function drawLarge(
    container: HTMLElement, data: Data, level: Level, focus: number, ended: () => boolean,
): Promise<cytoscape.Core | null> {
    const neighbours = level.neighbours(focus).slice(0, 120);
    const chosen = [focus, ...neighbours.map(([community]) => community)];
    const largest = level.sizes[focus];
    const radius = (community: number): number => Math.max(9, Math.min(95, 95 * Math.sqrt(level.sizes[community] / largest)));
    const place = new Map(chosen.map((community, i) => [community, i]));
    const bodies = chosen.map((community, i) => ({
        node: community,
        x: i === 0 ? 0 : (140 + 4 * i) * Math.cos(i * 2.39996),
        y: i === 0 ? 0 : (140 + 4 * i) * Math.sin(i * 2.39996),
        ...(i === 0 ? { fx: 0, fy: 0 } : {}),
    }));
    const [a, b] = level.graph;
    const overlaps: number[] = [];
    for (let i = 0; i < a.length; i++) {
        if (place.has(a[i]) && place.has(b[i])) {
            overlaps.push(i);
        }
    }
    overlaps.splice(MAX_ELEMENTS - chosen.length - 100);
    const springs = overlaps.map((i) => ({ source: place.get(a[i]) as number, target: place.get(b[i]) as number, i }));
    const simulation = forceSimulation<Body>(bodies)
        .force("push", forceManyBody().strength(-160))
        .force("links", forceLink<Body, (typeof springs)[0]>(springs)
            .distance((link) => radius(a[link.i]) + radius(b[link.i]) + 34).strength(0.35))
        .force("room", forceCollide<Body>((body) => radius(body.node) + 5).iterations(3))
        .force("y", forceY(0).strength(0.06))
        .stop();
    for (let step = 0; step < 260; ) {
        const until = performance.now() + 25;
        while (step < 260 && performance.now() < until) {
            simulation.tick();
            step++;
        }
        await nextSlice();
        if (ended()) {
            return null;
        }
    }
    const discs: Disc[] = bodies.map((body) => ({ community: body.node, x: body.x, y: body.y, r: radius(body.node) }));
    return drawDiscs(container, data, level, discs, overlaps, focus, ended);
}

export function nodeStyle(nLinks: number): Style {
    return [
        {
            selector: "node",
            style: {
                width: 2 * RADIUS,
                height: 2 * RADIUS,
                "background-color": colour("grey-slice"),
                "border-width": 1.2,
                "border-color": colour("card"),
                "pie-size": "100%",
                label: "data(label)",
                "font-family": FONT,
                "font-size": 12.5,
                "font-weight": 600,
                "text-wrap": "wrap",
                "text-valign": "center",
                "text-halign": "center",
                "min-zoomed-font-size": 6,
                color: colour("ink"),
                "text-outline-color": colour("card"),
                "text-outline-width": 2.4,
                "text-outline-opacity": 0.9,
                "overlay-opacity": 0,
            },
        },
        { selector: "node.crowded", style: { "border-width": 3, "border-color": colour("ink"), "border-style": "double" } },
        { selector: "node.at", style: { "border-width": 4, "border-color": colour("mark"), "z-index": 10 } },
        { selector: "node.holds", style: { "border-width": 4, "border-color": colour("mark"), "z-index": 9 } },
        {
            selector: "edge",
            style: {
                width: 1.1,
                "line-color": colour("overlap"),
                "target-arrow-color": colour("overlap"),
                "source-arrow-color": colour("overlap"),
                "arrow-scale": 0.7,
                "curve-style": nLinks > 900 ? "haystack" : "straight",
                opacity: nLinks > 600 ? 0.3 : 0.55,
                events: "no",
                "overlay-opacity": 0,
            },
        },
        { selector: "edge.outside", style: { "line-style": "dotted", opacity: nLinks > 600 ? 0.15 : 0.35 } },
        { selector: "edge.one", style: { "curve-style": "straight", "target-arrow-shape": "triangle" } },
        { selector: "edge.both", style: { "curve-style": "straight", "target-arrow-shape": "triangle", "source-arrow-shape": "triangle" } },
        { selector: "edge.at", style: { "line-color": colour("mark"), opacity: 0.9 } },
    ] as unknown as Style;
}
