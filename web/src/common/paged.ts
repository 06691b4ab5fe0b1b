// SPDX-License-Identifier: MIT
// A table that shows some rows at a time and is sorted by its columns.
import { count, h } from "./dom";

export interface Column<Row> {
    title: string;
    help?: string;
    text?: boolean;
    value: (row: Row) => number | string;
    shown: (row: Row) => Node | string;
    largestFirst?: boolean;
}

const PAGE = 25;

export class PagedTable<Row> {
    private page = 0;
    private sortedBy = -1;
    private largestFirst = false;
    private rows: Row[] = [];

    constructor(
        private readonly table: HTMLTableElement,
        private readonly pager: HTMLElement,
        private readonly columns: Column<Row>[],
    ) {}

    show(rows: Row[]): void {
        this.rows = rows;
        this.page = 0;
        this.draw();
    }

    private draw(): void {
        const ordered = [...this.rows];
        if (this.sortedBy >= 0) {
            const { value } = this.columns[this.sortedBy];
            const sign = this.largestFirst ? -1 : 1;
            ordered.sort((a, b) => {
                const [one, other] = [value(a), value(b)];
                return sign * (one < other ? -1 : one > other ? 1 : 0);
            });
        }
        const pages = Math.max(1, Math.ceil(ordered.length / PAGE));
        const head = h("tr", {}, ...this.columns.map((column, i) => h("th", {
            scope: "col",
            class: column.text === true ? "text" : "",
            "aria-sort": i === this.sortedBy ? (this.largestFirst ? "descending" : "ascending") : "none",
        }, h("button", {
            type: "button",
            title: column.help ?? "",
            onclick: () => {
                this.largestFirst = i === this.sortedBy ? !this.largestFirst : column.largestFirst === true;
                this.sortedBy = i;
                this.page = 0;
                this.draw();
                this.table.querySelectorAll<HTMLElement>("th button")[i]?.focus();
            },
        }, `${column.title}${i === this.sortedBy ? (this.largestFirst ? " ↓" : " ↑") : ""}`))));
        const rows = ordered.slice(this.page * PAGE, (this.page + 1) * PAGE).map((row) => h("tr", {},
            ...this.columns.map((column) => h("td", { class: column.text === true ? "text" : "" }, column.shown(row)))));
        this.table.replaceChildren(h("thead", {}, head), h("tbody", {}, ...rows));
        const turn = (label: string, to: number): HTMLButtonElement => h("button", {
            type: "button",
            disabled: to < 0 || to >= pages,
            onclick: () => {
                this.page = to;
                this.draw();
            },
        }, label);
        this.pager.replaceChildren(...(pages > 1
            ? [turn("Before", this.page - 1),
                h("span", { class: "small quiet" }, `${count(this.page * PAGE + 1)} to ${count(Math.min(ordered.length, (this.page + 1) * PAGE))} of ${count(ordered.length)}`),
                turn("Next", this.page + 1)]
            : []));
    }
}
