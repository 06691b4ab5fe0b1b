// SPDX-License-Identifier: MIT
// One browser for a test file, its pages opened from files, every request and message noted.
import { createRequire } from "node:module";
import { existsSync, readdirSync, readFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

export const ROOT = join(dirname(fileURLToPath(import.meta.url)), "../..");
export const PAGES = join(ROOT, "build/page-tests");
export const require = createRequire(join(ROOT, "web/package.json"));
const { chromium } = require("playwright-core");

export function start() {
    return chromium.launch({
        executablePath: "/usr/bin/chromium",
        args: ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
            "--disable-background-networking", "--disable-component-update", "--disable-sync"],
    });
}

/** Opens a page; what it asks for and says is in requests and messages. */
export async function open(browser, name, hash = "", options = {}) {
    const context = await browser.newContext({ viewport: { width: 1280, height: 800 }, acceptDownloads: true, ...options });
    const page = await context.newPage();
    page.requests = [];
    page.messages = [];
    page.on("request", (request) => page.requests.push(request.url()));
    page.on("console", (message) => page.messages.push(`${message.type()}: ${message.text()}`));
    page.on("pageerror", (error) => page.messages.push(`error: ${error.message}`));
    page.on("dialog", (dialog) => {
        page.messages.push(`dialog: ${dialog.message()}`);
        void dialog.dismiss();
    });
    await page.goto(`file://${PAGES}/${name}.html${hash}`);
    await drawn(page);
    return page;
}

export async function drawn(page) {
    await page.waitForFunction(() => document.body.dataset.drawn === "yes" && (window.plexorPage === undefined || plexorPage.state().k === null
        || document.body.dataset.below === `k=${plexorPage.state().k}`), null, { timeout: 60000, polling: 30 });
}

/** The result files of a page, read word by word: {k: {number: [names]}}. */
export function communitiesOf(name) {
    const folder = join(PAGES, name);
    const results = join(folder, readdirSync(folder).find((entry) => entry.startsWith("results")));
    const levels = {};
    for (const entry of readdirSync(results)) {
        const k = /^k=(\d+)$/.exec(entry)?.[1];
        if (k === undefined) {
            continue;
        }
        const file = ["communities", "directed_communities", "intensity_communities"]
            .map((candidate) => join(results, entry, candidate)).find(existsSync);
        levels[k] = [];
        for (const line of readFileSync(file, "utf8").split("\n")) {
            const found = /^(-?)(\d+): ([^]*)$/.exec(line);
            if (found !== null) {
                levels[k][Number(found[2])] = { exact: found[1] === "", names: found[3].split(" ").filter((word) => word !== "").sort() };
            }
        }
    }
    return levels;
}
