// SPDX-License-Identifier: MIT
// The community graph: a disc a community, its area the number of nodes, its dark sector the share of
// nodes that are in other communities too, the width of a link the number of shared nodes.
import cytoscape from "cytoscape";
import { colour } from "../common/theme";
import type { Data, Level } from "./data";
import { fit, FONT, hatch, layersOf, makeCore, type Style } from "./picture";

export interface Disc {
    community: number;
    x: number;
    y: number;
    r: number;
}

/** Draws discs and the overlaps between them (positions in the level's list of overlaps). */
export async function drawDiscs(
    container: HTMLElement, data: Data, level: Level, discs: Disc[], overlaps: number[], focus: number | null, ended: () => boolean,
): Promise<cytoscape.Core | null> {
    const [a, b, shared] = level.graph;
    const strongest = overlaps.reduce((most, i) => Math.max(most, shared[i]), 1);
    const elements: cytoscape.ElementDefinition[] = [];
    for (const { community, x, y, r } of discs) {
        const first = level.top[community][0];
        elements.push({
            data: {
                id: `c${community}`,
                community,
                size: 2 * r,
                sector: (100 * level.sharedNodes[community]) / level.sizes[community],
                number: String(community),
                label: r > 30 && first !== undefined ? `${community}\n${shorten(data.name(first), Math.floor(r / 4.2))} …` : String(community),
                font: Math.max(7, Math.min(20, r * (r > 30 ? 0.3 : 0.8))),
                r,
            },
            classes: [level.isExact(community) ? "" : "approximated", community === focus ? "focus" : ""].join(" "),
            position: { x, y },
        });
    }
    const thin = overlaps.length > 250 ? 0.45 : 1;
    for (const i of overlaps) {
        elements.push({
            data: {
                id: `o${i}`,
                source: `c${a[i]}`,
                target: `c${b[i]}`,
                width: thin * (1 + (8 * Math.sqrt(shared[i])) / Math.max(4, Math.sqrt(strongest))),
                shared: shared[i],
            },
        });
    }
    const cy = await makeCore(container, elements, discStyle(overlaps.length), ended);
    if (cy === null) {
        return null;
    }
    layersOf(cy).renderPerNode(
        layersOf(cy).nodeLayer.insertAfter("canvas"),
        (context, node) => {
            if (node.hasClass("approximated")) {
                const { x, y } = node.position();
                hatch(context, x, y, node.data("r") as number);
                writeOver(context, node.data("label") as string, x, y, node.data("font") as number);
            }
        },
        { position: "none", updateOn: "render", checkBounds: false },
    );
    fit(cy, 26, 2);
    return cy;
}

/** Writes a label once more, above the stripes. */
function writeOver(context: CanvasRenderingContext2D, label: string, x: number, y: number, size: number): void {
    context.font = `600 ${size}px ${FONT}`;
    context.textAlign = "center";
    context.textBaseline = "middle";
    context.lineJoin = "round";
    context.lineWidth = size / 3;
    context.strokeStyle = colour("card");
    context.fillStyle = colour("ink");
    const lines = label.split("\n");
    lines.forEach((line, i) => {
        const down = y + (i - (lines.length - 1) / 2) * size * 1.15;
        context.strokeText(line, x, down);
        context.fillText(line, x, down);
    });
}

export function drawOverview(container: HTMLElement, data: Data, level: Level, ended: () => boolean): Promise<cytoscape.Core | null> {
    const { of, r, x, y, links } = level.picture;
    const tall = container.clientHeight > container.clientWidth * 1.1;
    // On a narrow screen the same picture is turned by a quarter.
    const discs = of.map((community, i) => ({ community, r: r[i], x: tall ? -y[i] : x[i], y: tall ? x[i] : y[i] }));
    return drawDiscs(container, data, level, discs, links, null, ended);
}

function discStyle(nLinks: number): Style {
    return [
        {
            selector: "node",
            style: {
                width: "data(size)",
                height: "data(size)",
                "background-color": colour("disc"),
                "border-width": 1.2,
                "border-color": colour("disc-edge"),
                "pie-size": "100%",
                "pie-1-background-color": colour("disc-shared"),
                "pie-1-background-size": "data(sector)",
                label: "data(label)",
                "font-family": FONT,
                "font-size": "data(font)",
                "font-weight": 600,
                "text-wrap": "wrap",
                "text-valign": "center",
                "text-halign": "center",
                "text-justification": "center",
                "line-height": 1.15,
                "min-zoomed-font-size": 8.5,
                color: colour("ink"),
                "text-outline-color": colour("card"),
                "text-outline-width": 2.2,
                "text-outline-opacity": 0.85,
                "overlay-opacity": 0,
            },
        },
        { selector: "node.approximated", style: { "border-style": "dashed", "border-width": 2.4, "border-color": colour("hatch") } },
        { selector: "node.focus", style: { "border-width": 4, "border-color": colour("mark") } },
        { selector: "node.at", style: { "border-width": 4, "border-color": colour("mark"), "z-index": 10 } },
        { selector: "node.holds", style: { "border-width": 6, "border-style": "double", "border-color": colour("mark"), "z-index": 9 } },
        {
            selector: "edge",
            style: {
                width: "data(width)",
                "line-color": colour("overlap"),
                "curve-style": "straight",
                opacity: nLinks > 250 ? 0.45 : 0.75,
                events: "no",
                "overlay-opacity": 0,
            },
        },
        { selector: "edge.at", style: { "line-color": colour("mark"), opacity: 1 } },
    ] as unknown as Style;
}

export function shorten(text: string, length: number): string {
    const letters = [...text];
    return letters.length <= length ? text : `${letters.slice(0, Math.max(1, length - 1)).join("")}…`;
}
