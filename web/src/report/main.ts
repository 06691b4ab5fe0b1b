// SPDX-License-Identifier: MIT
// The report page: which k, community and node are shown, and what stands around the pictures.
import type cytoscape from "cytoscape";
import "uplot/dist/uPlot.min.css";
import { byId, count, h, nextSlice, percent, save, svg } from "../common/dom";
import { colour, isDark, onTheme, prepareForPrint, SET_COLOURS, startTheme } from "../common/theme";
import { drawCharts } from "./charts";
import { Data, type Level } from "./data";
import { drawLarge, drawNeighbourhood, planNeighbourhood, type Plan } from "./neighbourhood";
import { drawOverview } from "./overview";
import { fit, png, printable, zoomBy } from "./picture";
import "./report.css";
import { drawTable } from "./table";

const data = new Data();
const { head } = data;
const ascending = [...head.kept].reverse();
const MEMBERS_AT_ONCE = 150;

interface State {
    k: number | null;
    community: number | null;
    node: number | null;
}

let state: State = { k: head.start, community: null, node: null };
let cy: cytoscape.Core | null = null;
let plan: Plan | null = null;
let drawing = 0;
/** Where the arrow keys are, in the order of the picture's nodes. */
let at = -1;

function level(): Level | null {
    return state.k === null ? null : data.level(state.k);
}

function go(change: Partial<State>): void {
    const before = state;
    state = { ...state, ...change };
    if (state.k !== before.k) {
        state.community = change.community ?? null;
    }
    const hash = state.k === null ? "" : `#k=${state.k}${state.community === null ? "" : `&community=${state.community}`}`;
    if (location.hash !== hash && hash !== "") {
        history.pushState(null, "", hash);
    }
    show(before);
}

function readHash(): Partial<State> {
    const found = /^#k=(\d+)(?:&community=(\d+))?$/.exec(location.hash);
    if (found === null || !head.kept.includes(Number(found[1]))) {
        return { k: head.start, community: null };
    }
    const k = Number(found[1]);
    const community = found[2] === undefined ? null : Number(found[2]);
    return { k, community: community !== null && community < data.summary(k).n ? community : null };
}

function show(before: State | null): void {
    const current = level();
    showLevels();
    if (current === null) {
        byId("stage").hidden = byId("levels").hidden = byId("table").hidden = byId("distributions").hidden = true;
        return;
    }
    showSide(current);
    if (before === null || before.k !== state.k || before.community !== state.community) {
        document.body.dataset.drawn = "no";
        void draw(current);
    } else {
        mark();
    }
    void showBelow(current, before === null || before.k !== state.k);
}

/** What stands below the picture, in slices of its own. */
async function showBelow(current: Level, charts: boolean): Promise<void> {
    if (!charts) {
        showTable(current);
        return;
    }
    await nextSlice();
    if (current === level()) {
        showTable(current);
        await drawCharts(current, () => current !== level());
        document.body.dataset.below = `k=${current.k}`;
    }
}

function showTable(current: Level): void {
    drawTable(data, current, state.community, (community) => {
        go({ community, node: null });
        byId("picture").scrollIntoView({ block: "start" });
        byId("back").focus({ preventScroll: true });
    });
}

// ---- k ----

function showLevels(): void {
    const slider = byId<HTMLInputElement>("k");
    const summary = state.k === null ? null : data.summary(state.k);
    slider.max = String(Math.max(0, ascending.length - 1));
    slider.disabled = ascending.length < 2;
    (slider.parentElement as HTMLElement).hidden = ascending.length < 2;
    if (summary === null) {
        return;
    }
    const position = ascending.indexOf(summary.k);
    slider.value = String(position);
    slider.setAttribute("aria-valuetext", `k = ${summary.k}: ${count(summary.n, "community", "communities")}`);
    byId("k-value").textContent = String(summary.k);
    byId("k-meaning").textContent = `A community is made of groups of ${summary.k} nodes, all linked with each other, in which neighbouring groups share ${summary.k - 1}.`;
    byId("k-first").textContent = ascending.length < 2 ? "" : `← ${ascending[0]}: looser, larger`;
    byId("k-last").textContent = ascending.length < 2 ? "" : `tighter, fewer nodes: ${ascending[ascending.length - 1]} →`;
    const most = Math.max(1, ...head.levels.map(({ n }) => n));
    const bars = ascending.map((k, i) => {
        const { n } = data.summary(k);
        const height = n === 0 ? 0 : Math.max(2, 36 * Math.sqrt(n / most));
        const x = ascending.length === 1 ? 50 : (100 * i) / (ascending.length - 1);
        const width = Math.min(3.2, 62 / ascending.length);
        const bar = svg("rect", {
            x: `${x - width / 2}%`, y: 54 - height, width: `${width}%`, height, rx: 1.5, class: i === position ? "at" : "",
        }, svg("title", {}, `k = ${k}: ${count(n, "community", "communities")}`));
        bar.addEventListener("click", () => go({ k }));
        const every = Math.ceil(ascending.length / Math.max(1, byId("ladder").clientWidth / 32));
        return [bar, i === position || (i % every === 0 && Math.abs(i - position) >= every)
            ? svg("text", { x: `${x}%`, y: 54 - height - 4, class: i === position ? "at" : "" }, count(n)) : null];
    });
    byId("ladder").replaceChildren(svg("svg", {}, ...bars.flat()));
}

// ---- the picture ----

async function draw(current: Level): Promise<void> {
    const mine = ++drawing;
    const ended = (): boolean => mine !== drawing;
    cy?.destroy();
    cy = null;
    plan = null;
    at = -1;
    byId("tip").hidden = true;
    const container = byId("graph");
    container.replaceChildren();
    const { community } = state;
    byId("back").hidden = community === null;
    byId("picture-title").textContent = community === null ? "Communities and their overlaps" : `Community ${community} and its neighbours`;
    document.body.dataset.drawn = "no";
    let drawn: cytoscape.Core | null;
    byId("working").hidden = community === null;
    await nextSlice();
    if (ended()) {
        return;
    }
    if (community === null) {
        container.setAttribute("aria-label", `Picture: ${count(current.picture.of.length, "community", "communities")} at k = ${current.k} as discs, linked where they share nodes`);
        drawn = await drawOverview(container, data, current, ended);
    } else {
        const planned = planNeighbourhood(data, current, community);
        container.setAttribute("aria-label", planned === null
            ? `Picture: community ${community} and the communities that it overlaps, as discs`
            : `Picture: the nodes of community ${community} and of ${count(planned.sets.length - 1, "neighbour")}`);
        plan = planned;
        drawn = planned === null ? await drawLarge(container, data, current, community, ended)
            : await drawNeighbourhood(container, data, current, planned, ended);
    }
    if (ended()) {
        drawn?.destroy();
        return;
    }
    byId("working").hidden = true;
    cy = drawn;
    showLegend(current);
    showSide(current);
    listen(current);
    mark();
    document.body.dataset.drawn = "yes";
}

function listen(current: Level): void {
    if (cy === null) {
        return;
    }
    const tip = byId("tip");
    cy.on("mouseover", "node", (event) => {
        const node = event.target as cytoscape.NodeSingular;
        const where = node.renderedPosition();
        tip.textContent = describe(current, node);
        tip.hidden = false;
        const box = byId("graph-box");
        tip.style.left = `${Math.max(6, Math.min(where.x + 18, box.clientWidth - tip.offsetWidth - 8))}px`;
        tip.style.top = `${Math.max(6, Math.min(where.y + 14, box.clientHeight - tip.offsetHeight - 8))}px`;
        byId("graph").style.cursor = "pointer";
    });
    cy.on("mouseout", "node", () => {
        tip.hidden = true;
        byId("graph").style.cursor = "";
    });
    cy.on("pan zoom", () => {
        tip.hidden = true;
    });
    cy.on("tap", "node", (event) => open(event.target as cytoscape.NodeSingular));
}

function open(node: cytoscape.NodeSingular): void {
    const community = node.data("community") as number | undefined;
    if (community === undefined) {
        go({ node: node.data("node") as number });
    } else if (community !== state.community) {
        go({ community, node: null });
    }
}

function describe(current: Level, node: cytoscape.NodeSingular): string {
    const community = node.data("community") as number | undefined;
    if (community === undefined) {
        const own = [...(node.data("communities") as number[])];
        return `${data.name(node.data("node") as number)}: in ${own.length === 1 ? `community ${own[0]}`
            : own.length > 12 ? `${own.length} communities` : `communities ${own.join(", ")}`}`;
    }
    const kind = current.isExact(community) ? "" : ", approximated";
    return `Community ${community}${kind}: ${count(current.sizes[community], "node")}, ${count(current.sharedNodes[community])} of them in others too; overlaps ${count(current.degrees[community], "community", "communities")}. ${current.top[community].map((i) => data.name(i)).join(", ")}${current.sizes[community] > 3 ? ",\u00a0…" : ""}`;
}

/** Marks what the arrow keys are at and where the chosen node is. */
function mark(): void {
    if (cy === null) {
        return;
    }
    const core = cy;
    core.batch(() => {
        core.elements().removeClass("at holds");
        if (state.node !== null) {
            const direct = core.getElementById(`n${state.node}`);
            if (direct.nonempty()) {
                direct.addClass("holds");
                direct.connectedEdges().addClass("at");
            } else {
                for (const community of level()?.communitiesOf(state.node) ?? []) {
                    core.getElementById(`c${community}`).addClass("holds");
                }
            }
        }
        if (at >= 0) {
            const node = core.nodes()[at];
            node.addClass("at");
            node.connectedEdges().addClass("at");
        }
    });
}

function walk(step: number): void {
    const current = level();
    if (cy === null || current === null || cy.nodes().length === 0) {
        return;
    }
    const n = cy.nodes().length;
    at = at < 0 ? (step > 0 ? 0 : n - 1) : (at + step + n) % n;
    mark();
    const node = cy.nodes()[at];
    const { x, y } = node.renderedPosition();
    if (x < 20 || y < 20 || x > cy.width() - 20 || y > cy.height() - 20) {
        cy.center(node);
    }
    byId("live").textContent = describe(current, node);
    const tip = byId("tip");
    tip.textContent = describe(current, node);
    tip.hidden = false;
    const after = node.renderedPosition();
    const box = byId("graph-box");
    tip.style.left = `${Math.max(6, Math.min(after.x + 18, box.clientWidth - tip.offsetWidth - 8))}px`;
    tip.style.top = `${Math.max(6, Math.min(after.y + 14, box.clientHeight - tip.offsetHeight - 8))}px`;
}

function key(event: KeyboardEvent): void {
    if (cy === null || event.ctrlKey || event.metaKey || event.altKey) {
        return;
    }
    const pan = event.shiftKey ? 60 : 0;
    const actions: Record<string, () => void> = {
        ArrowRight: () => (pan > 0 ? cy?.panBy({ x: -pan, y: 0 }) : walk(1)),
        ArrowDown: () => (pan > 0 ? cy?.panBy({ x: 0, y: -pan }) : walk(1)),
        ArrowLeft: () => (pan > 0 ? cy?.panBy({ x: pan, y: 0 }) : walk(-1)),
        ArrowUp: () => (pan > 0 ? cy?.panBy({ x: 0, y: pan }) : walk(-1)),
        Enter: () => at >= 0 && cy !== null && open(cy.nodes()[at]),
        Escape: () => go({ community: null, node: null }),
        "+": () => cy && zoomBy(cy, 1.3),
        "-": () => cy && zoomBy(cy, 1 / 1.3),
        "0": () => cy && fit(cy, 26, 2),
    };
    const action = actions[event.key];
    if (action !== undefined) {
        event.preventDefault();
        action();
    }
}

function showPrintable(): void {
    if (cy !== null) {
        byId<HTMLImageElement>("print-picture").src = printable(cy);
    }
}

// ---- legend ----

function disc(r: number, sector: number, hatched = false): SVGElement {
    const turn = 2 * Math.PI * sector;
    const size = 2 * r + 4;
    const c = r + 2;
    const far = turn > Math.PI ? 1 : 0;
    return svg("svg", { width: size, height: size, "aria-hidden": "true" },
        svg("circle", { cx: c, cy: c, r, fill: colour("disc"), stroke: colour("disc-edge") }),
        sector > 0 ? svg("path", {
            d: `M${c} ${c}V${c - r}A${r} ${r} 0 ${far} 1 ${c + r * Math.sin(turn)} ${c - r * Math.cos(turn)}Z`, fill: colour("disc-shared"),
        }) : null,
        ...(hatched ? [4, 9, 14, 19].map((x) => svg("path", { d: `M${x - 4} ${c + r * 0.8}L${x + 5} ${c - r * 0.8}`, stroke: colour("hatch"), "stroke-width": 1.6 })) : []));
}

function showLegend(current: Level): void {
    const items: HTMLElement[] = [];
    const item = (sign: SVGElement | null, text: string): void => {
        items.push(h("span", {}, sign as unknown as Node, text));
    };
    if (plan === null) {
        item(disc(9, 0), "a community; its area: number of nodes");
        item(disc(9, 0.3), "dark: share of nodes that are in others too");
        item(line(5), "overlap; width: number of shared nodes");
        if (current.exact < current.n) {
            item(disc(9, 0, true), "hatched: approximated");
        }
        const left = current.n - current.picture.of.length;
        if (state.community === null && left > 0) {
            items.push(h("span", { class: "quiet" }, `The ${count(current.picture.of.length)} largest communities are drawn; the other ${count(left)} are in the table.`));
        }
        const overlaps = current.graph[0].length - current.picture.links.length;
        if (state.community === null && left === 0 && overlaps > 0) {
            items.push(h("span", { class: "quiet" }, `The ${count(current.picture.links.length)} strongest overlaps are drawn.`));
        }
        if (state.community !== null) {
            items.push(h("span", { class: "quiet" }, `This community is too large to draw node by node: it stands here with the communities that it overlaps (the ${count(Math.min(120, current.degrees[state.community]))} strongest of ${count(current.degrees[state.community])}).`));
        }
    } else {
        items.push(h("span", {}, "outline: a community, with its number; slices of a node: the communities that it is in"));
        if (plan.sets.some((set) => !set.whole)) {
            items.push(h("span", { class: "quiet" }, "“+N”: N more nodes of it are not drawn"));
        }
        if (plan.sets.some((set) => !current.isExact(set.community))) {
            items.push(h("span", {}, "≈ and hatched: approximated"));
        }
        items.push(h("span", { class: "quiet" }, "grey slice: a community without an outline here"));
        if (plan.nLinks === null) {
            items.push(h("span", { class: "quiet" }, "This page holds no links."));
        } else if (plan.links.length < plan.nLinks) {
            items.push(h("span", { class: "quiet" }, `${count(plan.links.length)} of ${count(plan.nLinks)} links are drawn.`));
        }
    }
    byId("legend").replaceChildren(...items);
}

function line(width: number): SVGElement {
    return svg("svg", { width: 24, height: 12, "aria-hidden": "true" },
        svg("path", { d: "M1 6H23", stroke: colour("overlap"), "stroke-width": width }));
}

function setSign(i: number): SVGElement {
    const c = SET_COLOURS[i];
    return svg("svg", { width: 22, height: 16, "aria-hidden": "true" },
        svg("rect", { x: 1.5, y: 1.5, width: 19, height: 13, rx: 5, fill: c, "fill-opacity": 0.35, stroke: c, "stroke-width": 2 }));
}

// ---- what is said beside the picture ----

function figures(...entries: [string, string][]): HTMLElement {
    return h("dl", { class: "figures" }, ...entries.map(([name, value]) => h("div", {}, h("dt", {}, name), h("dd", {}, value))));
}

function openButton(community: number, text: string): HTMLButtonElement {
    return h("button", { type: "button", class: "plain", onclick: () => go({ community, node: null }) }, text);
}

function showSide(current: Level): void {
    const side = byId("side");
    const parts: Node[] = [];
    if (state.node !== null) {
        parts.push(nodeCard(current, state.node));
    }
    parts.push(...(state.community === null ? levelCard(current) : communityCard(current, state.community)));
    side.replaceChildren(...parts);
    side.scrollTop = 0;
}

function levelCard(current: Level): Node[] {
    const summary = data.summary(current.k);
    const parts: Node[] = [
        h("h2", {}, `At k = ${current.k}`),
        figures(
            [summary.n === 1 ? "community" : "communities", count(summary.n)],
            [`of ${count(head.nodes)} nodes are in one`, percent(summary.covered, head.nodes)],
            ["nodes in the largest", count(summary.largest)],
            [summary.shared === 1 ? "node in several" : "nodes in several", count(summary.shared)],
        ),
    ];
    if (summary.exact < summary.n) {
        parts.push(h("p", { class: "notice small" }, `${count(summary.n - summary.exact)} of them ${summary.n - summary.exact === 1 ? "is" : "are"} approximated: the search was given up at some nodes, and what they would have added is a guess. They are hatched, and marked in the table.`));
    }
    if (summary.n > 0) {
        const order = [...Array(current.n).keys()].sort((a, b) => current.sizes[b] - current.sizes[a] || a - b).slice(0, 10);
        parts.push(h("h3", {}, current.n > 10 ? "The ten largest" : "All of them"), h("ul", { class: "rows" }, ...order.map((community) => h("li", {},
            openButton(community, `${community}: ${current.top[community].map((node) => data.name(node)).join(", ")}${current.sizes[community] > current.top[community].length ? ",\u00a0…" : ""}`),
            h("span", { class: "quiet number" }, count(current.sizes[community]))))));
    }
    return parts;
}

function communityCard(current: Level, community: number): Node[] {
    const neighbours = current.neighbours(community);
    const parts: Node[] = [
        h("h2", {}, `Community ${community}`),
        h("p", { class: "quiet" }, `at k = ${current.k}`, current.isExact(community) ? "" : " · ",
            current.isExact(community) ? null : h("span", { class: "approximated-word" }, "approximated")),
        figures(
            [current.sizes[community] === 1 ? "node" : "nodes", count(current.sizes[community])],
            ["links inside", count(current.links[community])],
            ...(current.cliques === null ? [] : [[current.cliques[community] === 1 ? "maximal clique" : "maximal cliques", count(current.cliques[community])] as [string, string]]),
            ["of its nodes in others too", count(current.sharedNodes[community])],
        ),
    ];
    if (neighbours.length > 0) {
        parts.push(h("h3", {}, `Overlaps ${count(neighbours.length, "community", "communities")}`), h("ul", { class: "rows" },
            ...(plan === null ? [] : [h("li", {}, setSign(0), h("span", {}, `${community} (this one)`), h("span", {}, ""))]),
            ...neighbours.slice(0, 60).map(([other, shared]) => {
                const drawn = plan?.sets.findIndex((set) => set.community === other) ?? -1;
                return h("li", {}, drawn >= 0 ? setSign(drawn) : null, openButton(other, `Community ${other}`), h("span", { class: "quiet" }, `${count(shared)} shared of ${count(current.sizes[other])}`));
            })));
        if (neighbours.length > 60) {
            parts.push(h("p", { class: "quiet small" }, `and ${count(neighbours.length - 60)} more that share fewer nodes`));
        }
    } else {
        parts.push(h("p", { class: "quiet" }, "It overlaps no other community."));
    }
    parts.push(h("h3", {}, "Members"), memberList(current, community));
    return parts;
}

function memberList(current: Level, community: number): HTMLElement {
    const members = [...current.of(community)];
    const times = (node: number): number => current.communitiesOf(node).length;
    members.sort((a, b) => times(b) - times(a) || a - b);
    const box = h("div", {});
    const more = (n: number): void => {
        box.replaceChildren(h("div", { class: "names" }, ...members.slice(0, n).map((node) => h("button", {
            type: "button", class: "plain", onclick: () => go({ node }),
        }, times(node) > 1 ? `${data.name(node)} (${times(node)})` : data.name(node)))));
        if (members.length > n) {
            box.append(h("button", { type: "button", onclick: () => more(n + 600) }, `${count(members.length - n)} more`));
        }
    };
    if (members.some((node) => times(node) > 1)) {
        box.append("");
    }
    more(MEMBERS_AT_ONCE);
    return h("div", {}, members.length > 0 && times(members[0]) > 1 ? h("p", { class: "quiet small" }, "In brackets: the number of communities, where it is above one.") : null, box);
}

function nodeCard(current: Level, node: number): HTMLElement {
    const own = [...current.communitiesOf(node)];
    const box = h("div", { class: "notice" },
        h("h2", {}, data.name(node)),
        h("p", {}, own.length === 0 ? `is in no community at k = ${current.k}.` : `is in ${count(own.length, "community", "communities")} at k = ${current.k}:`),
        h("div", { class: "names" }, ...own.slice(0, 80).map((community) => openButton(community, String(community)))));
    const elsewhere = head.kept.filter((k) => k !== current.k && data.level(k).communitiesOf(node).length > 0).reverse();
    if (elsewhere.length > 0) {
        box.append(h("p", { class: "small" }, "and in some at k = "), h("div", { class: "names" }, ...elsewhere.map((k) => h("button", {
            type: "button", class: "plain", onclick: () => go({ k }),
        }, String(k)))));
    }
    box.append(h("button", { type: "button", onclick: () => go({ node: null }) }, "Close"));
    return box;
}

// ---- search ----

const MAX_FOUND = 30;

function find(wanted: string): number[] {
    const text = wanted.trim().toLocaleLowerCase();
    const starts: number[] = [];
    const holds: number[] = [];
    data.names.forEach((name, node) => {
        const lower = name.toLocaleLowerCase();
        if (lower === text) {
            starts.unshift(node);
        } else if (lower.startsWith(text)) {
            starts.push(node);
        } else if (lower.includes(text)) {
            holds.push(node);
        }
    });
    return [...starts, ...holds];
}

function search(): void {
    const input = byId<HTMLInputElement>("search");
    const box = byId("found");
    const current = level();
    if (input.value.trim() === "" || current === null) {
        box.hidden = true;
        return;
    }
    const found = find(input.value);
    byId("found-count").textContent = found.length === 0 ? "No node has this in its name."
        : found.length > MAX_FOUND ? `${count(found.length)} nodes, the first ${MAX_FOUND}:` : `${count(found.length, "node")}:`;
    byId("found-list").replaceChildren(...found.slice(0, MAX_FOUND).map((node) => {
        const n = current.communitiesOf(node).length;
        return h("li", {}, h("button", {
            type: "button",
            onclick: () => {
                box.hidden = true;
                input.value = "";
                choose(current, node);
            },
        }, h("span", {}, data.name(node)), h("span", { class: "quiet" }, n === 0 ? "in none here" : `in ${n}`)));
    }));
    box.hidden = false;
}

function choose(current: Level, node: number): void {
    const own = current.communitiesOf(node);
    go({ node, community: own.length === 1 ? own[0] : own.length === 0 ? null : (state.community !== null && own.includes(state.community) ? state.community : null) });
    byId("live").textContent = `${data.name(node)} is in ${count(own.length, "community", "communities")}`;
    byId("side").querySelector<HTMLElement>("button")?.focus({ preventScroll: true });
}

// ---- start ----

function facts(): string {
    const parts = [
        `${count(head.nodes, "node")}, ${count(head.links, "link")}`,
        head.directed ? "directed" : "undirected",
        `${count(head.cliques, head.directed ? "maximal directed clique" : "maximal clique")}${head.exactCliques < head.cliques ? ` (${count(head.cliques - head.exactCliques)} approximated)` : ""}`,
    ];
    const [low, high] = head.weights;
    if (low !== null) {
        parts.push(`links of weight above ${low}`);
    }
    if (high !== null) {
        parts.push(`links of weight below ${high}`);
    }
    if (head.intensity !== null) {
        parts.push(`k-cliques of intensity above ${head.intensity}`);
    }
    if (head.timeLimit !== null) {
        parts.push(`at most ${head.timeLimit} s of search a node`);
    }
    return parts.join(" · ");
}

function notices(): void {
    const box = byId("notices");
    if (head.exactCliques < head.cliques) {
        box.append(h("p", { class: "notice" }, "This run had a time limit, and the search for cliques was given up at some nodes. Communities that hold an approximated clique are guesses: they are hatched in the pictures and marked by a word elsewhere. All others consist of true cliques."));
    }
    if (head.kept.length === 0) {
        box.append(h("p", { class: "notice" }, head.levels.length === 0
            ? "This result has no communities: the network has no clique of three nodes or more that passed the thresholds."
            : "No level fits into this page."));
    }
    if (head.leftOut.length > 0) {
        box.append(h("div", { class: "notice" }, h("strong", {}, "Left out, so that the page stays small:"), h("ul", {}, ...head.leftOut.map((text) => h("li", {}, text)))));
    }
}

function start(): void {
    byId("title").textContent = head.title;
    byId("facts").textContent = facts();
    byId("made").textContent = `Made by Plexor from the results of ${head.input || "a network"}.`;
    notices();
    startTheme();
    byId<HTMLInputElement>("k").addEventListener("input", (event) => {
        go({ k: ascending[Number((event.target as HTMLInputElement).value)] });
    });
    byId("back").addEventListener("click", () => {
        go({ community: null, node: null });
        byId("graph").focus({ preventScroll: true });
    });
    byId("zoom-in").addEventListener("click", () => cy && zoomBy(cy, 1.3));
    byId("zoom-out").addEventListener("click", () => cy && zoomBy(cy, 1 / 1.3));
    byId("fit").addEventListener("click", () => cy && fit(cy, 26, 2));
    byId("print").addEventListener("click", () => {
        prepareForPrint();
        const wait = (): void => {
            if (document.body.dataset.drawn === "yes") {
                showPrintable();
                void byId<HTMLImageElement>("print-picture").decode().catch(() => null).then(() => print());
            } else {
                setTimeout(wait, 20);
            }
        };
        wait();
    });
    byId("png").addEventListener("click", () => {
        if (cy !== null) {
            const name = `communities-k${state.k}${state.community === null ? "" : `-${state.community}`}.png`;
            void png(cy).then((content) => save(name, content));
        }
    });
    byId("graph").addEventListener("keydown", key);
    byId("graph").addEventListener("blur", () => {
        byId("tip").hidden = true;
    });
    // The wheel scrolls the page; with Ctrl it zooms the picture.
    byId("graph-box").addEventListener("wheel", (event) => {
        if (!event.ctrlKey && !event.metaKey) {
            event.stopPropagation();
        }
    }, { capture: true });
    const input = byId<HTMLInputElement>("search");
    input.addEventListener("input", search);
    byId("search-box").addEventListener("keydown", (event) => {
        const buttons = [...byId("found-list").querySelectorAll("button")];
        const here = buttons.indexOf(document.activeElement as HTMLButtonElement);
        if (event.key === "Escape") {
            byId("found").hidden = true;
            input.focus();
        } else if (event.key === "ArrowDown" && buttons.length > 0) {
            event.preventDefault();
            buttons[Math.min(buttons.length - 1, here + 1)].focus();
        } else if (event.key === "ArrowUp" && here >= 0) {
            event.preventDefault();
            (here === 0 ? input : buttons[here - 1]).focus();
        } else if (event.key === "Enter" && document.activeElement === input && buttons.length > 0) {
            event.preventDefault();
            buttons[0].click();
        }
    });
    addEventListener("click", (event) => {
        if (!byId("search-box").contains(event.target as Node)) {
            byId("found").hidden = true;
        }
    });
    addEventListener("popstate", () => {
        const before = state;
        state = { ...state, ...readHash() };
        show(before);
    });
    state = { ...state, ...readHash() };
    void nextSlice().then(() => show(null));
    addEventListener("beforeprint", showPrintable);
    let shownDark = isDark();
    onTheme(() => {
        const current = level();
        if (current !== null && shownDark !== isDark()) {
            shownDark = isDark();
            document.body.dataset.drawn = "no";
            void drawCharts(current, () => current !== level());
            void draw(current);
        }
    });
    let width = innerWidth;
    let waiting: ReturnType<typeof setTimeout> | undefined;
    addEventListener("resize", () => {
        clearTimeout(waiting);
        waiting = setTimeout(() => {
            const current = level();
            if (current !== null && innerWidth !== width) {
                width = innerWidth;
                void drawCharts(current, () => current !== level());
                void draw(current);
            }
        }, 150);
    });
}

start();

/** What is drawn, for tests and for the curious. */
Object.assign(window, {
    plexorPage: {
        state: () => ({ ...state }),
        core: () => cy,
        plan: () => plan,
        elements: () => (cy === null ? 0 : cy.elements().length),
        level: () => level(),
    },
});
