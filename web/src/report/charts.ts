// SPDX-License-Identifier: MIT
// The four distributions of a level: bars where there are few values, else points on logarithmic axes;
// the numbers stand below each as a table.
import uPlot from "uplot";
import { byId, count, h, nextSlice } from "../common/dom";
import { colour } from "../common/theme";
import type { Level } from "./data";
import { FONT } from "./picture";

interface Kind {
    name: string;
    title: string;
    value: string;
    counted: string;
    /** One counted thing and several, with a verb. */
    each: [string, string];
}

const KINDS: Kind[] = [
    { name: "size", title: "How large are the communities?", value: "nodes", counted: "communities", each: ["community", "communities"] },
    { name: "membership", title: "In how many communities is a node?", value: "communities", counted: "nodes", each: ["node", "nodes"] },
    { name: "overlap", title: "How many nodes do two communities share?", value: "shared nodes", counted: "pairs of communities", each: ["pair", "pairs"] },
    { name: "degree", title: "How many others does a community overlap?", value: "other communities", counted: "communities", each: ["community", "communities"] },
];

const MAX_BARS = 12;
const plots: uPlot[] = [];

let drawing = 0;

/** Draws all four, each in a slice of its own. ended: whether the reader has gone on to another level meanwhile. */
export async function drawCharts(level: Level, ended: () => boolean): Promise<void> {
    const mine = ++drawing;
    for (const plot of plots.splice(0)) {
        plot.destroy();
    }
    byId("distributions-title").textContent = `Distributions at k = ${level.k}`;
    const box = byId("charts");
    box.replaceChildren();
    for (const kind of KINDS) {
        await nextSlice();
        if (ended() || mine !== drawing) {
            return;
        }
        const variants = level.distributions[kind.name] ?? {};
        const all = variants.all ?? variants.merged ?? [[], []];
        const guessed = variants.appr;
        const plot = h("div", { class: "plot" });
        const [values, counts] = all;
        const pairs = values.map((value, i): [number, number] => [value, counts[i]]).filter(([, n]) => n > 0);
        const zero = kind.name === "membership" ? pairs.find(([value]) => value === 0)?.[1] ?? 0 : 0;
        const drawn = kind.name === "membership" ? pairs.filter(([value]) => value > 0) : pairs;
        const sentence = pairs.length === 0 || drawn.length === 0
            ? `There is nothing to count${zero > 0 ? `: ${count(zero, "node")} in no community` : ""}.`
            : zero > 0 ? `${count(zero, "node is", "nodes are")} in none and not drawn.` : `Number of ${kind.counted} by ${kind.value}.`;
        const card = h("div", { class: "card chart" }, h("h3", {}, kind.title), h("p", { class: "quiet small" }, sentence), plot);
        if (drawn.length > 0) {
            card.append(h("details", {}, h("summary", {}, "The numbers"), h("div", { class: "values", tabindex: "0", role: "region", "aria-label": kind.title },
                h("table", {},
                    h("thead", {}, h("tr", {}, h("th", { scope: "col" }, kind.value), h("th", { scope: "col" }, kind.counted))),
                    h("tbody", {}, ...pairs.slice(0, 500).map(([value, n]) => h("tr", {}, h("td", {}, count(value)), h("td", {}, count(n)))))))));
        }
        box.append(card);
        if (drawn.length > MAX_BARS) {
            drawPoints(plot, kind, drawn, pairsOf(guessed));
        } else if (drawn.length > 0) {
            drawBars(plot, kind, drawn, pairsOf(guessed));
        }
    }
}

function pairsOf(distribution: [number[], number[]] | undefined): [number, number][] {
    return distribution === undefined ? [] : distribution[0].map((value, i) => [value, distribution[1][i]]);
}

function drawBars(box: HTMLElement, kind: Kind, pairs: [number, number][], guessed: [number, number][]): void {
    const most = Math.max(...pairs.map(([, n]) => n));
    const guesses = new Map(kind.name === "size" ? guessed : []);
    const list = h("dl", { class: "bars", "aria-label": `${kind.value}: number of ${kind.counted}` });
    for (const [value, n] of pairs) {
        const guess = guesses.get(value) ?? 0;
        const exact = h("i", {});
        exact.style.width = `${(72 * (n - guess)) / most}%`;
        const hatched = h("i", { class: "guess" });
        hatched.style.width = `${(72 * guess) / most}%`;
        list.append(
            h("dt", {}, count(value)),
            h("dd", {}, n > guess && exact, guess > 0 && hatched,
                h("span", {}, count(n), guess > 0 && h("span", { class: "quiet small" }, ` (${count(guess)} approximated)`))),
        );
    }
    box.append(h("p", { class: "quiet small" }, `${kind.value} → ${kind.counted}`), list);
}

function drawPoints(box: HTMLElement, kind: Kind, pairs: [number, number][], guessed: [number, number][]): void {
    const guesses = new Map(kind.name === "size" ? guessed : []);
    const axis = (label: string): uPlot.Axis => ({
        label,
        stroke: colour("quiet"),
        font: `12px ${FONT}`,
        labelFont: `12px ${FONT}`,
        labelSize: 22,
        grid: { stroke: colour("line"), width: 1 },
        ticks: { stroke: colour("line"), width: 1 },
        values: (_, splits) => splits.map((v) => (v !== null && Math.abs(Math.log10(v) % 1) < 1e-9 ? count(v) : "")),
    });
    const width = Math.max(260, box.clientWidth);
    const log: uPlot.Scale = { distr: 3, log: 10, time: false };
    const plot = new uPlot(
        {
            width,
            height: 230,
            legend: { show: false },
            cursor: { show: false },
            scales: { x: { ...log, range: decades }, y: { ...log, range: decades } },
            axes: [axis(kind.value), { ...axis(kind.counted), size: 58 }],
            series: [
                {},
                { stroke: "transparent", points: { show: true, size: 7, fill: colour("bar"), stroke: colour("disc-edge"), width: 1 }, paths: () => null },
                { stroke: "transparent", points: { show: true, size: 9, fill: colour("card"), stroke: colour("hatch"), width: 1.5 }, paths: () => null },
            ],
        },
        [
            pairs.map(([value]) => value),
            pairs.map(([, n]) => n),
            pairs.map(([value]) => guesses.get(value) ?? null),
        ],
        box,
    );
    plots.push(plot);
    const canvas = box.querySelector("canvas");
    canvas?.setAttribute("role", "img");
    const peak = pairs.reduce((best, pair) => (pair[1] > best[1] ? pair : best));
    const end = pairs[pairs.length - 1];
    canvas?.setAttribute("aria-label", `${kind.title} Most often ${peak[0]} (${count(peak[1], ...kind.each)}), at most ${count(end[0])}. The numbers follow as a table.`);
    if (guesses.size > 0) {
        box.append(h("p", { class: "quiet small" }, "Rings: approximated ones among them."));
    }
}

/** Whole decades around the data, from a bit below the smallest so that points at 1 are not cut. */
function decades(_: uPlot, least: number, most: number): [number, number] {
    return [Math.max(0.7, least) * 0.8, Math.max(10, most) * 1.3];
}
