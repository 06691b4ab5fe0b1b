// SPDX-License-Identifier: MIT
// What both pictures share: a Cytoscape core with its layers, zooming that leaves the page's own
// scrolling alone, hatching of what is approximated, and the picture as PNG.
import cytoscape from "cytoscape";
import registerLayers, { type LayersPlugin } from "cytoscape-layers";
import { nextSlice } from "../common/dom";
import { colour } from "../common/theme";

// The registration functions of extensions are typed for an older Cytoscape.
cytoscape.use(registerLayers as unknown as cytoscape.Ext);

export const FONT = 'system-ui, -apple-system, "Segoe UI", Roboto, "Noto Sans", "Liberation Sans", sans-serif';

/** No picture has more nodes and links than this. */
export const MAX_ELEMENTS = 2000;

export type Style = cytoscape.StylesheetJson;

const ELEMENTS_AT_ONCE = 40;

/** A picture with its elements, added in short slices and shown when all are there; null if the reader has gone on meanwhile. */
export async function makeCore(
    container: HTMLElement, elements: cytoscape.ElementDefinition[], style: Style, ended: () => boolean,
): Promise<cytoscape.Core | null> {
    container.style.opacity = "0";
    const cy = cytoscape({
        container,
        style,
        layout: { name: "preset" },
        minZoom: 0.03,
        maxZoom: 6,
        autoungrabify: true,
        boxSelectionEnabled: false,
        selectionType: "single",
        pixelRatio: "auto",
    });
    for (let i = 0; i < elements.length; i += ELEMENTS_AT_ONCE) {
        await nextSlice();
        if (ended()) {
            cy.destroy();
            return null;
        }
        // What fitting into view asks of all of them at once is worked out here, and kept.
        cy.add(elements.slice(i, i + ELEMENTS_AT_ONCE)).boundingBox({});
    }
    await nextSlice();
    if (ended()) {
        cy.destroy();
        return null;
    }
    container.style.opacity = "";
    return cy;
}

export function layersOf(cy: cytoscape.Core): LayersPlugin {
    return (cy as unknown as { layers(): LayersPlugin }).layers();
}

/** Fits all into view; small pictures are not blown up. */
export function fit(cy: cytoscape.Core, padding: number, maxZoom: number): void {
    cy.resize();
    cy.fit(undefined, padding);
    if (cy.zoom() > maxZoom) {
        cy.zoom(maxZoom);
        cy.center();
    }
}

export function zoomBy(cy: cytoscape.Core, factor: number): void {
    cy.zoom({
        level: cy.zoom() * factor,
        renderedPosition: { x: cy.width() / 2, y: cy.height() / 2 },
    });
}

/** Stripes across a disc: what is approximated shows it without colour. */
export function hatch(context: CanvasRenderingContext2D, x: number, y: number, radius: number): void {
    context.save();
    context.beginPath();
    context.arc(x, y, radius, 0, 2 * Math.PI);
    context.clip();
    hatchLines(context, x - radius, y - radius, x + radius, y + radius, Math.max(4, radius / 5));
    context.restore();
}

/** Stripes across a rectangle, to be clipped by the caller. */
export function hatchLines(
    context: CanvasRenderingContext2D, left: number, top: number, right: number, bottom: number, step: number,
): void {
    const height = bottom - top;
    context.beginPath();
    for (let x = left - height; x < right; x += step) {
        context.moveTo(x, bottom);
        context.lineTo(x + height, top);
    }
    context.lineWidth = Math.max(1, step / 5);
    context.strokeStyle = colour("hatch");
    context.stroke();
}

/** The same as a data address, at once: for print, as a canvas has the size of the screen. */
export function printable(cy: cytoscape.Core): string {
    return layersOf(cy).png({ ignoreUnsupportedLayerOrder: true, output: "base64uri", scale: 2, bg: "#ffffff" });
}

/** The picture as it is seen, in twice its size. */
export function png(cy: cytoscape.Core): Promise<Blob> {
    return layersOf(cy).png({ ignoreUnsupportedLayerOrder: true, output: "blob-promise", scale: 2, bg: colour("card") });
}
