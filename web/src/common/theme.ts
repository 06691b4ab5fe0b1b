// SPDX-License-Identifier: MIT
// Light and dark, after the system's wish until the reader chooses; print is always light.
import { byId } from "./dom";

const dark = matchMedia("(prefers-color-scheme: dark)");
const listeners: (() => void)[] = [];
let chosen: "light" | "dark" | null = null;
let printing = false;

export function isDark(): boolean {
    return !printing && (chosen === null ? dark.matches : chosen === "dark");
}

/** The value of a colour of the style sheet, for what is drawn on a canvas. */
export function colour(name: string): string {
    return getComputedStyle(document.documentElement).getPropertyValue(`--${name}`).trim();
}

/** Colours of the sets of a picture: told apart with all common kinds of colour vision. */
export const SET_COLOURS = [
    "#0072b2", "#e69f00", "#009e73", "#cc79a7", "#d55e00", "#56b4e9", "#a39400", "#7b4fa3", "#8c564b", "#2f9e9e",
];

export function onTheme(listener: () => void): void {
    listeners.push(listener);
}

/** Light colours for print, pictures too: these are drawn anew, which takes a moment. */
export function prepareForPrint(): void {
    printing = true;
    apply();
}

function setTheme(): void {
    document.documentElement.dataset.theme = isDark() ? "dark" : "light";
    const button = byId<HTMLButtonElement>("theme");
    button.textContent = isDark() ? "Light" : "Dark";
    button.setAttribute("aria-label", isDark() ? "Use light colours" : "Use dark colours");
}

function apply(): void {
    setTheme();
    for (const listener of listeners) {
        listener();
    }
}

export function startTheme(): void {
    byId("theme").addEventListener("click", () => {
        chosen = isDark() ? "light" : "dark";
        apply();
    });
    dark.addEventListener("change", apply);
    // There is no time to draw when the browser's own command prints: pictures stay as they are then.
    addEventListener("beforeprint", () => {
        printing = true;
        setTheme();
    });
    addEventListener("afterprint", () => {
        printing = false;
        apply();
    });
    apply();
}
