// SPDX-License-Identifier: MIT
// How fast pages are and what they hold, in Debian's Chromium without a window:
//   node bench/page/measure.mjs PAGE.html[#k=4] ...        (after npm ci in web/)
// First picture: from the beginning of loading to the first drawn picture, and the processor time of the page's main
// thread until then, which other work on the machine does not blur. Longest task: the longest stretch in
// which the page took no input, while loading and while the first community was opened. Memory: of the whole
// renderer process, its highest.
import { readFileSync, readdirSync } from "node:fs";
import { createRequire } from "node:module";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";

const require = createRequire(join(dirname(fileURLToPath(import.meta.url)), "../../web/package.json"));
const { chromium } = require("playwright-core");

function peakOfRenderers() {
    let most = 0;
    for (const pid of readdirSync("/proc").filter((name) => /^\d+$/.test(name))) {
        try {
            if (readFileSync(`/proc/${pid}/cmdline`, "utf8").includes("--type=renderer")) {
                most = Math.max(most, Number(/VmHWM:\s+(\d+)/.exec(readFileSync(`/proc/${pid}/status`, "utf8"))?.[1] ?? 0));
            }
        } catch {
            // It has ended meanwhile.
        }
    }
    return Math.round(most / 1024);
}

console.log("page | MB | first picture, ms | its processor time, ms | community opened, ms | longest task, ms | elements | peak of the renderer, MB");
for (const argument of process.argv.slice(2)) {
    const [file, hash = ""] = argument.split("#");
    const browser = await chromium.launch({
        executablePath: "/usr/bin/chromium",
        args: ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
            "--disable-component-update", "--disable-sync"],
    });
    const page = await browser.newPage({ viewport: { width: 1280, height: 800 } });
    const protocol = await page.context().newCDPSession(page);
    await protocol.send("Performance.enable", { timeDomain: "threadTicks" });
    const processor = async () => {
        const { metrics } = await protocol.send("Performance.getMetrics");
        return 1000 * metrics.find(({ name }) => name === "TaskDuration").value;
    };
    await page.addInitScript(() => {
        window.longest = 0;
        new PerformanceObserver((list) => {
            for (const entry of list.getEntries()) {
                window.longest = Math.max(window.longest, entry.duration);
            }
        }).observe({ type: "longtask", buffered: true });
        const watch = () => {
            if (document.body?.dataset.drawn === "yes") {
                window.firstPicture = performance.now();
            } else {
                requestAnimationFrame(watch);
            }
        };
        watch();
    });
    await page.goto(`file://${resolve(file)}${hash === "" ? "" : `#${hash}`}`);
    await page.waitForFunction(() => window.firstPicture !== undefined);
    const first = await page.evaluate(() => window.firstPicture);
    const worked = await processor();
    const elements = await page.evaluate(() => plexorPage.elements());
    const opened = await page.evaluate(async () => {
        const k = plexorPage.state().k;
        const from = performance.now();
        document.body.dataset.drawn = "no";
        location.hash = `#k=${k}&community=0`;
        while (plexorPage.state().community !== 0 || document.body.dataset.drawn !== "yes") {
            await new Promise((done) => setTimeout(done, 5));
        }
        return performance.now() - from;
    });
    await page.waitForTimeout(200);
    const longest = await page.evaluate(() => window.longest);
    console.log([argument, (readFileSync(file).length / 1e6).toFixed(1), first.toFixed(0), worked.toFixed(0), opened.toFixed(0), longest.toFixed(0), elements, peakOfRenderers()].join(" | "));
    await browser.close();
}
