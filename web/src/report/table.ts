// SPDX-License-Identifier: MIT
// The table of communities: sorted by any column, some at a time.
import { byId, count, h } from "../common/dom";
import type { Data, Level } from "./data";

const PAGE = 25;

interface Column {
    title: string;
    help: string;
    value: (community: number) => number;
    largestFirst: boolean;
}

let sortedBy = 1;
let largestFirst = true;
let page = 0;

export function drawTable(data: Data, level: Level, current: number | null, open: (community: number) => void): void {
    const columns: Column[] = [
        { title: "Community", help: "its number in the result files", value: (c) => c, largestFirst: false },
        { title: "Nodes", help: "", value: (c) => level.sizes[c], largestFirst: true },
        { title: "Links", help: "links inside it", value: (c) => level.links[c], largestFirst: true },
        { title: "Shared nodes", help: "nodes that are in other communities too", value: (c) => level.sharedNodes[c], largestFirst: true },
        { title: "Overlaps", help: "communities that it shares nodes with", value: (c) => level.degrees[c], largestFirst: true },
    ];
    const { cliques } = level;
    if (cliques !== null) {
        columns.splice(3, 0, { title: "Cliques", help: "maximal cliques in it", value: (c) => cliques[c], largestFirst: true });
    }
    sortedBy = Math.min(sortedBy, columns.length - 1);
    const order = [...Array(level.n).keys()];
    const { value } = columns[sortedBy];
    order.sort((a, b) => (largestFirst ? value(b) - value(a) : value(a) - value(b)) || a - b);
    if (current !== null && openAt !== current) {
        page = Math.floor(order.indexOf(current) / PAGE);
    }
    openAt = current;
    const pages = Math.max(1, Math.ceil(level.n / PAGE));
    page = Math.max(0, Math.min(page, pages - 1));
    const again = (): void => drawTable(data, level, current, open);
    const approximated = level.exact < level.n;

    byId("table-title").textContent = level.n === 0 ? `No communities at k = ${level.k}`
        : `${count(level.n, "community", "communities")} at k = ${level.k}`;
    const head = h("tr", {}, ...columns.map((column, i) => h("th", {
        scope: "col",
        "aria-sort": i === sortedBy ? (largestFirst ? "descending" : "ascending") : "none",
    }, h("button", {
        type: "button",
        title: column.help,
        onclick: () => {
            largestFirst = i === sortedBy ? !largestFirst : column.largestFirst;
            sortedBy = i;
            page = 0;
            again();
            byId("communities").querySelectorAll<HTMLElement>("th button")[i]?.focus();
        },
    }, `${column.title}${i === sortedBy ? (largestFirst ? " ↓" : " ↑") : ""}`))),
    approximated && h("th", { class: "text", scope: "col" }, "Kind"),
    h("th", { class: "text", scope: "col" }, "Best linked members"));
    const rows = order.slice(page * PAGE, (page + 1) * PAGE).map((community) => h("tr", { class: community === current ? "at" : "" },
        h("td", {}, h("button", { type: "button", class: "plain", "aria-label": `Open community ${community}`, onclick: () => open(community) }, String(community))),
        ...columns.slice(1).map((column) => h("td", {}, count(column.value(community)))),
        approximated && h("td", { class: "text" }, level.isExact(community) ? "exact" : h("span", { class: "approximated-word" }, "approximated")),
        h("td", { class: "text" }, level.top[community].map((node) => data.name(node)).join(", ")
            + (level.sizes[community] > level.top[community].length ? ",\u00a0…" : ""))));
    byId("communities").replaceChildren(h("thead", {}, level.n > 0 && head), h("tbody", {}, ...rows));
    const turn = (label: string, to: number): HTMLButtonElement => h("button", {
        type: "button",
        disabled: to < 0 || to >= pages,
        onclick: () => {
            page = to;
            again();
        },
    }, label);
    byId("pager").replaceChildren(...(pages > 1
        ? [turn("Before", page - 1), h("span", { class: "small quiet" }, `${count(page * PAGE + 1)} to ${count(Math.min(level.n, (page + 1) * PAGE))}`), turn("Next", page + 1)]
        : []));
}

let openAt: number | null = null;
