// SPDX-License-Identifier: MIT
// The page of a sweep: places to look at with their reasons, curves by threshold, a line for each k,
// and the whole table.
import uPlot from "uplot";
import "uplot/dist/uPlot.min.css";
import { block, byId, count, h, svg } from "../common/dom";
import { PagedTable } from "../common/paged";
import { colour, onTheme, SET_COLOURS, startTheme } from "../common/theme";
import "./sweep.css";

type Row = [string | null, string | null, string | null, number, number, number, number, number | null, number | null, number, number, number];

interface Stored {
    title: string;
    directed: boolean;
    lower: string[];
    upper: string[];
    intensity: string[];
    rows: Row[];
    suggestions: [number, string | null, string | null, string | null, string][];
}

const data = block<Stored>("sweep") as Stored;
const NAMES = ["weights above", "weights below", "intensity above"];
const FONT = 'system-ui, -apple-system, "Segoe UI", Roboto, "Noto Sans", "Liberation Sans", sans-serif';
const DASHES = [[], [8, 4], [2, 4], [12, 4, 2, 4], [5, 3], [1, 5]];
const given = [data.lower, data.upper, data.intensity];
/** The threshold along the axis: the first that has several values; none where k alone varies. */
const axis = given.findIndex((values) => values.length > 1);
const ks = [...new Set(data.rows.map((row) => row[3]))].sort((a, b) => a - b);
const shownKs = new Set(ks.filter((k) => data.rows.some((row) => row[3] === k && row[4] > 1)).slice(0, 6));
if (shownKs.size === 0) {
    for (const k of ks.slice(0, 6)) {
        shownKs.add(k);
    }
}
let group: string;
const plots: uPlot[] = [];

/** The other thresholds of a row, in words: rows of one curve agree in them. */
function groupOf(row: readonly (string | number | null)[]): string {
    return NAMES.map((name, i) => (i !== axis && row[i] !== null && given[i].length > 0 ? `${name} ${row[i]}` : "")).filter((text) => text !== "").join(", ");
}

function words(lower: string | null, upper: string | null, intensity: string | null): string {
    const parts = [lower, upper, intensity].map((value, i) => (value === null ? "" : `${NAMES[i]} ${value}`)).filter((text) => text !== "");
    return parts.length === 0 ? "all links" : parts.join(", ");
}

function lineOf(k: number): { stroke: string; dash: number[] } {
    const i = ks.indexOf(k);
    return { stroke: SET_COLOURS[i % SET_COLOURS.length], dash: DASHES[i % DASHES.length] };
}

interface Chart {
    title: string;
    help: string;
    value: (row: Row) => number | null;
    log: boolean;
    /** A line at this height, with a word. */
    at?: [number, string];
}

const CHARTS: Chart[] = [
    { title: "Largest by second", help: "A giant community makes it large. About 2 is the edge of percolation.", value: (row) => row[7], log: true, at: [2, "2"] },
    { title: "Nodes in the largest community", help: "Where it falls steeply the giant breaks up.", value: (row) => (row[5] === 0 ? null : row[5]), log: true },
    { title: "Number of communities", help: "Often highest near the edge: looser they run together, stricter they are gone.", value: (row) => row[4], log: false },
    { title: "Variance of sizes without the largest", help: "For small networks: most at the edge.", value: (row) => row[8], log: false },
    { title: "Nodes in a community", help: "How many nodes are covered.", value: (row) => row[9], log: false },
    { title: "Nodes in several communities", help: "How much communities overlap.", value: (row) => row[10], log: false },
];

function drawCurves(): void {
    for (const plot of plots.splice(0)) {
        plot.destroy();
    }
    const box = byId("charts");
    box.replaceChildren();
    const rows = data.rows.filter((row) => groupOf(row) === group);
    const lines = axis < 0 ? [0] : ks.filter((k) => shownKs.has(k));
    for (const chart of CHARTS) {
        const place = h("div", {});
        box.append(h("div", { class: "card chart" }, h("h3", {}, chart.title), h("p", { class: "quiet small" }, chart.help), place));
        const xs = axis < 0 ? ks : [...new Set(given[axis].map(Number))].sort((a, b) => a - b);
        const series = lines.map((k) => xs.map((x) => {
            const row = rows.find((one) => (axis < 0 ? one[3] === x : one[3] === k && Number(one[axis]) === x));
            const value = row === undefined ? null : chart.value(row);
            return chart.log && value !== null && value <= 0 ? null : value;
        }));
        if (!series.some((one) => one.some((value) => value !== null))) {
            place.append(h("p", { class: "quiet small" }, "There is nothing to draw here."));
            continue;
        }
        const side = (size: number): uPlot.Axis => ({
            stroke: colour("quiet"), font: `12px ${FONT}`, labelFont: `12px ${FONT}`, size,
            grid: { stroke: colour("line"), width: 1 }, ticks: { stroke: colour("line"), width: 1 },
        });
        const plot = new uPlot({
            width: Math.max(250, place.clientWidth),
            height: 240,
            legend: { show: false },
            cursor: { show: false },
            padding: [10, 14, 0, 0],
            scales: { x: { time: false, range: (_, a, b) => (a === b ? [a - 1, a + 1] : [a - (b - a) * 0.03, b + (b - a) * 0.03]) }, y: chart.log ? { distr: 3, log: 10 } : { range: (_, __, most) => [0, Math.max(1, most) * 1.08] } },
            axes: [{ ...side(44), label: axis < 0 ? "k" : NAMES[axis], labelSize: 18 }, {
                ...side(58), values: (_, splits) => splits.map((v) => (v === null || (chart.log && Math.abs(Math.log10(v) % 1) > 1e-9 && v !== 2) ? "" : v >= 10000 ? `${count(v / 1000)}k` : String(v))),
            }],
            series: [{}, ...lines.map((k) => ({
                ...(axis < 0 ? { stroke: colour("accent"), dash: [] } : lineOf(k)), width: 2, spanGaps: false,
                points: { show: true, size: 6, fill: colour("card") },
            }))],
            hooks: {
                draw: [(u: uPlot) => {
                    const { ctx, bbox } = u;
                    ctx.save();
                    ctx.font = `600 ${12 * devicePixelRatio}px ${FONT}`;
                    ctx.textAlign = "left";
                    if (chart.at !== undefined) {
                        const y = u.valToPos(chart.at[0], "y", true);
                        if (y > bbox.top && y < bbox.top + bbox.height) {
                            ctx.strokeStyle = colour("mark");
                            ctx.lineWidth = 1.5 * devicePixelRatio;
                            ctx.setLineDash([3 * devicePixelRatio, 3 * devicePixelRatio]);
                            ctx.beginPath();
                            ctx.moveTo(bbox.left, y);
                            ctx.lineTo(bbox.left + bbox.width, y);
                            ctx.stroke();
                        }
                    }
                    // Each line bears its k where it begins, so that colour is not its only sign.
                    ctx.setLineDash([]);
                    const used: number[] = [];
                    if (axis >= 0) {
                        const begins = lines.map((k, i) => ({ k, i, first: series[i].findIndex((value) => value !== null) }))
                            .filter(({ first }) => first >= 0)
                            .sort((one, other) => (series[other.i][other.first] as number) - (series[one.i][one.first] as number));
                        begins.forEach(({ k, i, first }) => {
                            let y = u.valToPos(series[i][first] as number, "y", true) - 8 * devicePixelRatio;
                            const x = u.valToPos(xs[first], "x", true) + 5 * devicePixelRatio;
                            while (used.some((other) => Math.abs(other - y) < 12 * devicePixelRatio)) {
                                y += 12 * devicePixelRatio;
                            }
                            used.push(y);
                            const last = x > bbox.left + bbox.width - 30 * devicePixelRatio;
                            ctx.textAlign = last ? "right" : "left";
                            ctx.lineWidth = 3 * devicePixelRatio;
                            ctx.strokeStyle = colour("card");
                            ctx.fillStyle = colour("ink");
                            ctx.strokeText(`k=${k}`, x, y);
                            ctx.fillText(`k=${k}`, x, y);
                        });
                    }
                    ctx.restore();
                }],
            },
        }, [xs, ...series] as uPlot.AlignedData, place);
        plots.push(plot);
        const canvas = place.querySelector("canvas");
        canvas?.setAttribute("role", "img");
        canvas?.setAttribute("aria-label", `${chart.title} by ${axis < 0 ? "k" : NAMES[axis]}. The numbers are in the table.`);
    }
}

function drawChoices(): void {
    const groups = [...new Set(data.rows.map(groupOf))];
    [group] = groups;
    if (groups.length > 1) {
        const select = h("select", { "aria-label": "Other thresholds" }, ...groups.map((one) => h("option", { value: one }, one)));
        select.addEventListener("change", () => {
            group = select.value;
            drawCurves();
        });
        byId("group-box").append(select);
    }
    if (axis < 0) {
        return;
    }
    byId("ks").append(...ks.map((k) => {
        const { stroke, dash } = lineOf(k);
        const button = h("button", {
            type: "button", "aria-pressed": String(shownKs.has(k)),
            onclick: () => {
                if (!shownKs.delete(k)) {
                    shownKs.add(k);
                }
                button.setAttribute("aria-pressed", String(shownKs.has(k)));
                drawCurves();
            },
        }, svg("svg", { width: 24, height: 8, "aria-hidden": "true" }, svg("path", { d: "M0 4H24", stroke, "stroke-width": 2.5, "stroke-dasharray": dash.join(" ") })) as unknown as Node, `k=${k}`);
        return button;
    }));
}

function drawPlaces(): void {
    byId("places-words").textContent = "A network is richest at the edge of percolation: looser, everything runs together in a giant community; stricter, weak but real structure is lost. These places are near that edge by one sign or another. None of them is the best one: look at them and at their neighbours.";
    const list = byId("places-list");
    if (data.suggestions.length === 0) {
        list.append(h("p", {}, "Nowhere in this sweep has a giant community fallen apart. Try stricter thresholds or a larger k."));
        return;
    }
    list.append(h("ul", {}, ...data.suggestions.map(([k, lower, upper, intensity, reason]) => h("li", {},
        h("strong", {}, `k = ${k}, ${words(lower, upper, intensity)}`), h("span", {}, `${reason[0].toUpperCase()}${reason.slice(1)}.`)))));
}

function drawTable(): void {
    const number = (value: number | null): string => (value === null ? "–" : String(Math.round(value * 100) / 100));
    const numeric = (i: number): number => i;
    byId("rows-title").textContent = `${count(data.rows.length, "row")}`;
    new PagedTable<Row>(byId("row-table"), byId("pager"), [
        ...[0, 1, 2].filter((i) => given[i].length > 0).map((i) => ({
            title: NAMES[i][0].toUpperCase() + NAMES[i].slice(1), value: (row: Row) => Number(row[numeric(i)]), shown: (row: Row) => String(row[i]),
        })),
        { title: "k", value: (row) => row[3], shown: (row) => String(row[3]) },
        { title: "Communities", value: (row) => row[4], shown: (row) => count(row[4]), largestFirst: true },
        { title: "Largest", value: (row) => row[5], shown: (row) => count(row[5]), largestFirst: true },
        { title: "Second", value: (row) => row[6], shown: (row) => count(row[6]), largestFirst: true },
        { title: "Ratio", value: (row) => row[7] ?? -1, shown: (row) => number(row[7]), largestFirst: true },
        { title: "Variance", help: "of sizes without the largest", value: (row) => row[8] ?? -1, shown: (row) => number(row[8]), largestFirst: true },
        { title: "Covered", help: "nodes in a community", value: (row) => row[9], shown: (row) => count(row[9]), largestFirst: true },
        { title: "Shared", help: "nodes in several", value: (row) => row[10], shown: (row) => count(row[10]), largestFirst: true },
        { title: "Nodes", help: "nodes with a link", value: (row) => row[11], shown: (row) => count(row[11]), largestFirst: true },
    ]).show(data.rows);
}

byId("title").textContent = `${data.title}: thresholds and k`;
byId("facts").textContent = `${data.directed ? "Directed" : "Undirected"} · ${given.map((values, i) => (values.length === 0 ? "" : `${NAMES[i]} ${values.length > 4 ? `${values[0]} to ${values[values.length - 1]} (${values.length} values)` : values.join(", ")}`)).filter((text) => text !== "").join(" · ") || "all links"} · k ${ks.length === 0 ? "none" : ks.length > 1 ? `${ks[0]} to ${ks[ks.length - 1]}` : ks[0]}`;
startTheme();
drawPlaces();
drawChoices();
drawCurves();
drawTable();
onTheme(drawCurves);
let width = innerWidth;
addEventListener("resize", () => {
    if (innerWidth !== width) {
        width = innerWidth;
        drawCurves();
    }
});
document.body.dataset.drawn = "yes";
