// SPDX-License-Identifier: MIT
// Small helpers to make elements. Text goes in as text only, so names can hold any markup.

type Child = Node | string | null | undefined | false;

export function h<Tag extends keyof HTMLElementTagNameMap>(
    tag: Tag,
    attributes: Record<string, string | boolean | ((event: Event) => void)> = {},
    ...children: Child[]
): HTMLElementTagNameMap[Tag] {
    const element = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes)) {
        if (typeof value === "function") {
            element.addEventListener(name.replace(/^on/, ""), value);
        } else if (value === true) {
            element.setAttribute(name, "");
        } else if (value !== false) {
            element.setAttribute(name, value);
        }
    }
    append(element, children);
    return element;
}

const SVG = "http://www.w3.org/2000/svg";

export function svg(tag: string, attributes: Record<string, string | number> = {}, ...children: Child[]): SVGElement {
    const element = document.createElementNS(SVG, tag);
    for (const [name, value] of Object.entries(attributes)) {
        element.setAttribute(name, String(value));
    }
    append(element, children);
    return element;
}

function append(element: Element, children: Child[]): void {
    for (const child of children) {
        if (child !== null && child !== undefined && child !== false) {
            element.append(child);
        }
    }
}

export function byId<T extends HTMLElement = HTMLElement>(id: string): T {
    const element = document.getElementById(id);
    if (element === null) {
        throw new Error(`no element ${id}`);
    }
    return element as T;
}

export function block<T>(name: string): T | null {
    const element = document.getElementById(`plexor-${name}`);
    return element === null ? null : (JSON.parse(element.textContent ?? "null") as T);
}

const numbers = new Intl.NumberFormat("en-US");

export function count(n: number, one?: string, many?: string): string {
    const text = numbers.format(n);
    return one === undefined ? text : `${text} ${n === 1 ? one : (many ?? `${one}s`)}`;
}

export function percent(part: number, whole: number): string {
    if (whole === 0) {
        return "0 %";
    }
    const share = (100 * part) / whole;
    return `${share > 0 && share < 1 ? "under 1" : share < 100 && share > 99 ? "over 99" : Math.round(share)} %`;
}

export function save(name: string, content: Blob): void {
    const address = URL.createObjectURL(content);
    const link = h("a", { href: address, download: name });
    document.body.append(link);
    link.click();
    link.remove();
    setTimeout(() => URL.revokeObjectURL(address), 10_000);
}

/** Ends the slice of work: what follows runs once the browser has drawn and taken input. */
export function nextSlice(): Promise<void> {
    return new Promise((resolve) => setTimeout(resolve, 0));
}
