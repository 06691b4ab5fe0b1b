// SPDX-License-Identifier: MIT
// The page of a comparison: scores, an alluvial picture, and the matches or events as a table.
import { block, byId, count, h, save, svg } from "../common/dom";
import { PagedTable } from "../common/paged";
import { SET_COLOURS, startTheme } from "../common/theme";
import "./compare.css";

interface Event_ {
    step: number;
    kind: string;
    before: number[];
    after: number[];
    sizeBefore: number;
    sizeAfter: number;
}

interface Score {
    nmi: number | null;
    omega: number | null;
    common: number;
    nodes: number;
}

interface Stored {
    title: string;
    overTime: boolean;
    threshold: number;
    labels: string[];
    sizes: number[][];
    lines: number[][];
    shared: [number, number, number][][];
    events: Event_[];
    scores: Score[];
    matches: [number, number, number | null, number, number, number][][];
}

const data = block<Stored>("compare") as Stored;

/** No column of the picture has more blocks, no picture more bands. */
const MAX_BLOCKS = 40;
const MAX_BANDS = 1000;
let chosen: number | null = null;

interface Block {
    column: number;
    community: number;
    x: number;
    y: number;
    height: number;
}

function score(value: number | null): string {
    return value === null ? "not defined" : value.toFixed(4);
}

function drawScores(): void {
    byId("score-table").replaceChildren(
        h("thead", {}, h("tr", {}, h("th", { class: "text", scope: "col" }, "Results"), h("th", { scope: "col" }, "NMI"),
            h("th", { scope: "col" }, "Omega"), h("th", { scope: "col" }, "Communities"), h("th", { scope: "col" }, "Nodes of both"))),
        h("tbody", {}, ...data.scores.map((one, i) => h("tr", {},
            h("td", { class: "text" }, `${data.labels[i]} and ${data.labels[i + 1]}`),
            h("td", {}, score(one.nmi)), h("td", {}, score(one.omega)),
            h("td", {}, `${count(data.sizes[i].length)} and ${count(data.sizes[i + 1].length)}`),
            h("td", {}, `${count(one.common)} of ${count(one.nodes)}`)))));
}

/** The largest communities of each column, ordered so that bands cross little. */
function placeBlocks(width: number, height: number, top: number): Map<string, Block> {
    const chosenOf = data.sizes.map((sizes) => [...sizes.keys()].sort((a, b) => sizes[b] - sizes[a] || a - b).slice(0, MAX_BLOCKS));
    const most = Math.max(1, ...chosenOf.map((column, i) => column.reduce((sum, c) => sum + data.sizes[i][c], 0)));
    const gaps = Math.max(...chosenOf.map((column) => column.length)) * 5;
    const scale = Math.max(0.1, (height - gaps) / most);
    const placed = new Map<string, Block>();
    chosenOf.forEach((column, i) => {
        const x = (i * width) / Math.max(1, chosenOf.length - 1);
        if (i > 0) {
            // Each block at the mean height of what its nodes come from.
            const means = new Map(column.map((c) => {
                let sum = 0;
                let weight = 0;
                for (const [a, b, n] of data.shared[i - 1]) {
                    const from = b === c ? placed.get(`${i - 1} ${a}`) : undefined;
                    if (from !== undefined) {
                        sum += n * (from.y + from.height / 2);
                        weight += n;
                    }
                }
                return [c, weight > 0 ? sum / weight : Infinity];
            }));
            column.sort((a, b) => {
                const [one, other] = [means.get(a) as number, means.get(b) as number];
                return one === other ? a - b : one - other;
            });
        }
        let y = top;
        for (const community of column) {
            const tall = Math.max(3, data.sizes[i][community] * scale);
            placed.set(`${i} ${community}`, { column: i, community, x, y, height: tall });
            y += tall + 5;
        }
    });
    return placed;
}

function colourOf(line: number): string {
    return SET_COLOURS[line % SET_COLOURS.length];
}

function drawRiver(): void {
    const box = byId("river");
    const columns = data.sizes.length;
    const inner = Math.max(box.clientWidth - 190, (columns - 1) * 170);
    const height = 480;
    const top = 46;
    const left = 90;
    const thick = 16;
    const blocks = placeBlocks(inner - thick, height, top);
    const bottom = Math.max(top + height, ...[...blocks.values()].map((one) => one.y + one.height));
    const picture = svg("svg", { xmlns: "http://www.w3.org/2000/svg", width: inner + 190, height: bottom + 24, role: "img", "aria-label": `Communities of ${data.labels.join(", ")} as blocks, joined where they share nodes` });
    const outOf = new Map<string, number>();
    const into = new Map<string, number>();
    const total = new Map<string, [number, number]>();
    data.shared.forEach((list, i) => {
        for (const [a, b, n] of list) {
            const [from, to] = [`${i} ${a}`, `${i + 1} ${b}`];
            total.set(from, [(total.get(from)?.[0] ?? 0) + n, total.get(from)?.[1] ?? 0]);
            total.set(to, [total.get(to)?.[0] ?? 0, (total.get(to)?.[1] ?? 0) + n]);
        }
    });
    const bands = data.shared.flatMap((list, i) => list.map(([a, b, n]) => ({ i, a, b, n })))
        .filter(({ i, a, b }) => blocks.has(`${i} ${a}`) && blocks.has(`${i + 1} ${b}`))
        .sort((one, other) => other.n - one.n).slice(0, MAX_BANDS)
        .sort((one, other) => one.i - other.i
            || (blocks.get(`${one.i + 1} ${one.b}`) as Block).y - (blocks.get(`${other.i + 1} ${other.b}`) as Block).y
            || (blocks.get(`${one.i} ${one.a}`) as Block).y - (blocks.get(`${other.i} ${other.a}`) as Block).y);
    for (const { i, a, b, n } of bands) {
        const [fromKey, toKey] = [`${i} ${a}`, `${i + 1} ${b}`];
        const [from, to] = [blocks.get(fromKey) as Block, blocks.get(toKey) as Block];
        // Nodes in several communities are in several bands: then the bands share the height.
        const share = (key: string, side: 0 | 1, size: number): number => n / Math.max(size, total.get(key)?.[side] ?? size);
        const start = share(fromKey, 0, data.sizes[i][a]) * from.height;
        const end = share(toKey, 1, data.sizes[i + 1][b]) * to.height;
        const y1 = from.y + (outOf.get(fromKey) ?? 0);
        const y2 = to.y + (into.get(toKey) ?? 0);
        outOf.set(fromKey, (outOf.get(fromKey) ?? 0) + start);
        into.set(toKey, (into.get(toKey) ?? 0) + end);
        const x1 = left + from.x + thick;
        const x2 = left + to.x;
        const middle = (x1 + x2) / 2;
        const line = data.lines[i][a];
        const faint = chosen !== null && line !== chosen && data.lines[i + 1][b] !== chosen;
        picture.append(svg("path", {
            class: faint ? "band faint" : "band", fill: colourOf(line),
            d: `M${x1} ${y1}C${middle} ${y1} ${middle} ${y2} ${x2} ${y2}V${y2 + end}C${middle} ${y2 + end} ${middle} ${y1 + start} ${x1} ${y1 + start}Z`,
        }, svg("title", {}, `${data.labels[i]}: community ${a}, ${data.labels[i + 1]}: community ${b}, ${count(n, "node")} in both`)));
    }
    for (const one of blocks.values()) {
        const line = data.lines[one.column][one.community];
        const size = data.sizes[one.column][one.community];
        const last = one.column === columns - 1 && columns > 1;
        const x = left + one.x;
        const group = svg("g", { class: chosen !== null && chosen !== line ? "block faint" : "block" },
            svg("rect", { x, y: one.y, width: thick, height: one.height, rx: 2, fill: colourOf(line) }),
            svg("title", {}, `${data.labels[one.column]}: community ${one.community}, ${count(size, "node")}`));
        if (one.height >= 11) {
            const text = svg("text", {
                x: last ? x + thick + 6 : x - 6, y: one.y + one.height / 2 + 4, "text-anchor": last ? "start" : "end",
            }, String(one.community));
            const words = svg("tspan", { class: "size", fill: "gray", "font-weight": 400 }, `  ${count(size)}`);
            text.append(words);
            group.append(text);
        }
        group.addEventListener("click", () => choose(chosen === line ? null : line));
        picture.append(group);
    }
    data.labels.forEach((label, i) => {
        const x = left + (i * (inner - thick)) / Math.max(1, columns - 1) + (i === 0 ? 0 : i === columns - 1 ? thick : thick / 2);
        const room = Math.max(6, Math.floor(inner / Math.max(1, columns - 1) / (columns > 2 ? 9 : 18)));
        const letters = [...label];
        picture.append(svg("text", { class: "label", x, y: 24, "text-anchor": i === 0 ? "start" : i === columns - 1 ? "end" : "middle" }, letters.length > room ? `${letters.slice(0, room - 1).join("")}…` : label, svg("title", {}, label)));
    });
    box.replaceChildren(picture);
    const words = ["A block is a community, its height the number of nodes, beside it its number and size; a band is made of the nodes that two communities share. A click on a block follows it."];
    const left_ = data.sizes.some((sizes) => sizes.length > MAX_BLOCKS);
    if (left_) {
        words.push(`The ${MAX_BLOCKS} largest communities of each result are drawn; all are in the table.`);
    }
    byId("flow-words").textContent = words.join(" ");
    byId("clear").hidden = chosen === null;
}

function choose(line: number | null): void {
    chosen = line;
    drawRiver();
    byId("live").textContent = line === null ? "All communities are shown" : "One community is followed";
}

function follow(column: number, community: number): HTMLButtonElement {
    return h("button", {
        type: "button",
        class: "plain",
        "aria-label": `Follow community ${community} of ${data.labels[column]}`,
        onclick: () => {
            choose(data.lines[column][community]);
            byId("flow").scrollIntoView({ block: "nearest" });
        },
    }, String(community));
}

function several(column: number, communities: number[]): Node {
    return h("span", {}, ...communities.flatMap((c, i) => [i > 0 ? ", " : "", follow(column, c)]));
}

const KINDS: Record<string, string> = {
    born: "born", died: "died", grew: "grew", shrank: "shrank", split: "split", merged: "merged", changed: "changed, as large as before", same: "unchanged",
};

function drawEvents(): void {
    const table = new PagedTable<Event_>(byId("row-table"), byId("pager"), [
        { title: "From", text: true, value: (e) => e.step, shown: (e) => `${data.labels[e.step]} → ${data.labels[e.step + 1]}` },
        { title: "What", text: true, value: (e) => e.kind, shown: (e) => KINDS[e.kind] ?? e.kind },
        { title: "Before", text: true, value: (e) => e.before[0] ?? -1, shown: (e) => (e.before.length > 0 ? several(e.step, e.before) : "–") },
        { title: "After", text: true, value: (e) => e.after[0] ?? -1, shown: (e) => (e.after.length > 0 ? several(e.step + 1, e.after) : "–") },
        { title: "Nodes before", value: (e) => e.sizeBefore, shown: (e) => count(e.sizeBefore), largestFirst: true },
        { title: "Nodes after", value: (e) => e.sizeAfter, shown: (e) => count(e.sizeAfter), largestFirst: true },
    ]);
    byId("rows-title").textContent = "What became of them";
    const kinds = Object.keys(KINDS).filter((kind) => data.events.some((e) => e.kind === kind));
    let shown: string | null = null;
    const buttons = [null, ...kinds].map((kind) => {
        const n = data.events.filter((e) => kind === null || e.kind === kind).length;
        const button = h("button", {
            type: "button",
            "aria-pressed": String(kind === shown),
            onclick: () => {
                shown = kind;
                buttons.forEach((one, i) => one.setAttribute("aria-pressed", String([null, ...kinds][i] === shown)));
                table.show(data.events.filter((e) => shown === null || e.kind === shown));
            },
        }, `${kind === null ? "all" : KINDS[kind]} ${count(n)}`);
        return button;
    });
    byId("kinds").replaceChildren(...buttons);
    table.show(data.events);
}

function drawMatches(): void {
    type Row = [number, number, number | null, number, number, number];
    byId("rows-title").textContent = "Best matches";
    const side = (which: 0 | 1): void => {
        const other = which === 0 ? 1 : 0;
        buttons.forEach((button, i) => button.setAttribute("aria-pressed", String(i === which)));
        new PagedTable<Row>(byId("row-table"), byId("pager"), [
            { title: `Community of ${data.labels[which]}`, value: (m) => m[0], shown: (m) => follow(which, m[0]) },
            { title: "Nodes", value: (m) => m[1], shown: (m) => count(m[1]), largestFirst: true },
            { title: `Most alike of ${data.labels[other]}`, value: (m) => m[2] ?? -1, shown: (m) => (m[2] === null ? "none" : follow(other, m[2])) },
            { title: "Its nodes", value: (m) => m[3], shown: (m) => (m[2] === null ? "" : count(m[3])), largestFirst: true },
            { title: "Shared", value: (m) => m[4], shown: (m) => count(m[4]), largestFirst: true },
            { title: "Jaccard", help: "shared nodes by nodes of either", value: (m) => m[5], shown: (m) => m[5].toFixed(3), largestFirst: true },
        ]).show(data.matches[which]);
    };
    const buttons = ([0, 1] as const).map((which) => h("button", { type: "button", "aria-pressed": "false", onclick: () => side(which) }, `of each in ${data.labels[which]}`));
    byId("kinds").replaceChildren(...buttons);
    side(0);
}

byId("title").textContent = data.title;
byId("facts").textContent = data.overTime
    ? `${count(data.labels.length)} results in order; a community goes on, or joins another, when more than ${Math.round(100 * data.threshold)} % of its nodes are found there.`
    : `${count(data.sizes[0].length, "community", "communities")} and ${count(data.sizes[1].length, "community", "communities")}`;
startTheme();
drawScores();
drawRiver();
if (data.overTime) {
    drawEvents();
} else {
    drawMatches();
}
byId("clear").addEventListener("click", () => choose(null));
byId("print").addEventListener("click", () => print());
byId("svg").addEventListener("click", () => {
    const picture = byId("river").querySelector("svg") as SVGElement;
    save("communities.svg", new Blob([new XMLSerializer().serializeToString(picture)], { type: "image/svg+xml" }));
});
let width = innerWidth;
addEventListener("resize", () => {
    if (innerWidth !== width) {
        width = innerWidth;
        drawRiver();
    }
});
document.body.dataset.drawn = "yes";
