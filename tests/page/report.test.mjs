// SPDX-License-Identifier: MIT
import assert from "node:assert/strict";
import { existsSync, readdirSync, readFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { communitiesOf, drawn, open, PAGES, require, ROOT, start } from "./browser.mjs";

let browser;
before(async () => {
    browser = await start();
});
after(async () => {
    await browser.close();
});

const names = readdirSync(PAGES, { withFileTypes: true })
    .filter((entry) => entry.isDirectory() && readdirSync(join(PAGES, entry.name)).some((one) => one.startsWith("results")))
    .map((entry) => entry.name).filter((name) => existsSync(join(PAGES, `${name}.html`)));

function quiet(page, name) {
    const asked = page.requests.filter((url) => !url.startsWith("data:"));
    assert.equal(asked.length, 1, `${name} asks for ${asked.join(" ")}`);
    assert.deepEqual(page.messages, [], name);
}

for (const name of names.filter((one) => one !== "empty")) {
    test(`${name}: sets and pies are those of the files, one request, no message`, async () => {
        const page = await open(browser, name);
        const files = communitiesOf(name);
        const kept = await page.evaluate(() => JSON.parse(document.getElementById("plexor-head").textContent).kept);
        assert.deepEqual(kept.map(String).sort(), Object.keys(files).sort());
        for (const k of kept) {
            const start_ = await page.evaluate(() => location.hash);
            if (start_ !== `#k=${k}`) {
                await page.evaluate((to) => { location.hash = `#k=${to}`; }, k);
                await page.waitForFunction((to) => plexorPage.state().k === to && document.body.dataset.drawn === "yes" && document.body.dataset.below === `k=${to}`, k);
            }
            const sets = await page.evaluate(() => {
                const names_ = JSON.parse(document.getElementById("plexor-names").textContent);
                const level = plexorPage.level();
                return [...Array(level.n).keys()].map((c) => ({ exact: level.isExact(c), names: [...level.of(c)].map((i) => names_[i]).sort() }));
            });
            assert.deepEqual(sets, files[k], `k=${k}`);
            assert.ok(await page.evaluate(() => plexorPage.elements()) <= 2000);
            assert.equal(await page.locator("#communities tbody tr").count(), Math.min(25, files[k].length));
        }
        // Some communities of the middle level, opened one by one.
        const k = kept[kept.length >> 1];
        const memberships = new Map();
        files[k].forEach(({ names: members }, c) => members.forEach((node) => memberships.set(node, [...(memberships.get(node) ?? []), c])));
        for (let c = 0; c < Math.min(5, files[k].length); c++) {
            await page.evaluate(([level, community]) => { location.hash = `#k=${level}&community=${community}`; }, [k, c]);
            await page.waitForFunction(([level, community]) => plexorPage.state().k === level && plexorPage.state().community === community
                && document.body.dataset.drawn === "yes", [k, c]);
            const shown = await page.evaluate(() => {
                const names_ = JSON.parse(document.getElementById("plexor-names").textContent);
                const plan = plexorPage.plan();
                return {
                    elements: plexorPage.elements(),
                    sets: plan?.sets.map((set) => ({ community: set.community, whole: set.whole, names: set.nodes.map((i) => names_[i]).sort() })),
                    pies: plan === null ? [] : plexorPage.core().nodes().map((node) => ({
                        name: names_[node.data("node")],
                        communities: node.data("communities"),
                        label: node.data("label"),
                        sizes: [...Array(16).keys()].map((i) => parseFloat(node.style(`pie-${i + 1}-background-size`))).filter((size) => size > 0),
                    })),
                };
            });
            assert.ok(shown.elements <= 2000);
            if (shown.sets === undefined) {
                assert.ok(files[k][c].names.length > 260);
                continue;
            }
            assert.deepEqual(shown.sets[0], { community: c, whole: true, names: files[k][c].names });
            for (const set of shown.sets) {
                const wanted = files[k][set.community].names;
                assert.equal(set.whole, set.names.length === wanted.length);
                assert.ok(set.names.every((node) => wanted.includes(node)));
            }
            for (const pie of shown.pies) {
                assert.deepEqual(pie.communities, memberships.get(pie.name));
                const n = pie.communities.length;
                if (n > 16) {
                    assert.deepEqual(pie.sizes, []);
                    assert.ok(pie.label.endsWith(`in ${n}`), pie.label);
                } else {
                    assert.equal(pie.sizes.length, n);
                    pie.sizes.forEach((size) => assert.ok(Math.abs(size - 100 / n) < 0.1));
                }
            }
        }
        quiet(page, name);
        await page.context().close();
    });
}

test("an empty result says so", async () => {
    const context = await browser.newContext();
    const page = await context.newPage();
    const messages = [];
    page.on("console", (message) => messages.push(message.text()));
    page.on("pageerror", (error) => messages.push(error.message));
    await page.goto(`file://${PAGES}/empty.html`);
    await page.getByText("This result has no communities").waitFor();
    assert.deepEqual(messages, []);
    await context.close();
});

test("10,000 communities: the largest are drawn, all are in the table", async () => {
    const page = await open(browser, "many", "#k=4");
    assert.ok(await page.evaluate(() => plexorPage.elements()) <= 2000);
    assert.match(await page.locator("#legend").innerText(), /The 500 largest communities are drawn; the other 9,500 are in the table\./);
    assert.equal(await page.locator("#table-title").innerText(), "10,000 communities at k = 4");
    assert.ok(await page.evaluate(() => document.querySelectorAll("*").length) < 2000);
    await page.context().close();
});

test("slider, click, table, search, back", async () => {
    const page = await open(browser, "airports", "#k=6");
    await page.locator("#k").focus();
    await page.keyboard.press("ArrowRight");
    await drawn(page);
    assert.equal(await page.locator("#k-value").innerText(), "7");
    assert.equal(await page.locator("#k").getAttribute("aria-valuetext"), "k = 7: 4 communities");
    await page.keyboard.press("ArrowLeft");
    await drawn(page);
    // A click on the disc of community 4.
    const box = await page.locator("#graph").boundingBox();
    const at = await page.evaluate(() => plexorPage.core().getElementById("c4").renderedPosition());
    await page.mouse.click(box.x + at.x, box.y + at.y);
    await page.getByRole("heading", { name: "Community 4 and its neighbours" }).waitFor();
    await drawn(page);
    assert.equal(await page.evaluate(() => location.hash), "#k=6&community=4");
    await page.goBack();
    await page.getByRole("heading", { name: "Communities and their overlaps" }).waitFor();
    await drawn(page);
    // The table: sorted by number of overlaps, then opened.
    await page.getByRole("button", { name: "Overlaps" }).click();
    assert.equal(await page.locator("#communities th[aria-sort=descending]").innerText(), "Overlaps ↓");
    assert.equal(await page.locator("#communities tbody tr").first().locator("td").first().innerText(), "9");
    await page.getByRole("button", { name: "Open community 9" }).click();
    await drawn(page);
    assert.equal(await page.evaluate(() => plexorPage.state().community), 9);
    // Search: Bethel is in four.
    await page.getByLabel("Find a node").fill("bet");
    await page.locator("#found-list button").first().waitFor();
    assert.equal(await page.locator("#found-list button").first().innerText(), "BET\nin 4");
    await page.keyboard.press("Enter");
    await drawn(page);
    assert.match(await page.locator("#side .notice").innerText(), /is in 4 communities at k = 6/);
    await page.getByLabel("Find a node").fill("no such node");
    assert.equal(await page.locator("#found-count").innerText(), "No node has this in its name.");
    await page.context().close();
});

test("the keyboard alone reaches everything", async () => {
    const page = await open(browser, "airports", "#k=6");
    const reached = new Set();
    for (let i = 0; i < 120; i++) {
        await page.keyboard.press("Tab");
        reached.add(await page.evaluate(() => document.activeElement.id || document.activeElement.getAttribute("aria-label") || document.activeElement.innerText));
    }
    for (const control of ["search", "theme", "k", "zoom-in", "zoom-out", "fit", "png", "print", "graph", "Open community 9"]) {
        assert.ok(reached.has(control), `${control} is not reached by Tab`);
    }
    await page.locator("#graph").focus();
    await page.keyboard.press("ArrowRight");
    await page.keyboard.press("ArrowRight");
    assert.match(await page.locator("#live").innerText(), /^Community 4: 12 nodes/);
    await page.keyboard.press("Enter");
    await page.getByRole("heading", { name: "Community 4 and its neighbours" }).waitFor();
    await drawn(page);
    await page.locator("#graph").focus();
    await page.keyboard.press("ArrowRight");
    assert.match(await page.locator("#live").innerText(), /: in communit/);
    await page.keyboard.press("Escape");
    await page.getByRole("heading", { name: "Communities and their overlaps" }).waitFor();
    await page.context().close();
});

test("names that hold markup stay text", async () => {
    const page = await open(browser, "names", "#k=9&community=0");
    assert.equal(await page.locator("main script, main b, main i.x").count(), 0);
    await page.getByRole("button", { name: "</script><script>alert(2)</script>" }).first().click();
    assert.equal(await page.locator("#side .notice h2").innerText(), "</script><script>alert(2)</script>");
    quiet(page, "names");
    await page.context().close();
});

test("approximated communities are said in words, not by colour alone", async () => {
    const page = await open(browser, "airports-approximated");
    assert.match(await page.locator("#notices").innerText(), /guesses/);
    const k = await page.evaluate(() => [...JSON.parse(document.getElementById("plexor-head").textContent).levels].find((level) => level.exact < level.n).k);
    await page.evaluate((to) => { location.hash = `#k=${to}`; }, k);
    await page.waitForFunction((to) => plexorPage.state().k === to && document.body.dataset.drawn === "yes" && document.body.dataset.below === `k=${to}`, k);
    assert.ok(await page.locator("#communities .approximated-word").count() > 0);
    assert.match(await page.locator("#legend").innerText(), /hatched: approximated/);
    await page.context().close();
});

const widths = { laptop: { viewport: { width: 1280, height: 800 } }, dark: { viewport: { width: 1280, height: 800 }, colorScheme: "dark" }, phone: { viewport: { width: 360, height: 740 }, isMobile: true, hasTouch: true } };
for (const [kind, options] of Object.entries(widths)) {
    test(`accessibility and width: ${kind}`, async () => {
        for (const [name, hash] of [["airports", "#k=6"], ["airports", "#k=6&community=8"], ["airports-approximated", ""], ["planted", ""]]) {
            const page = await open(browser, name, hash, options);
            // The page's own policy keeps foreign scripts out, so the checker comes in by the debugger.
            await page.evaluate(readFileSync(require.resolve("axe-core"), "utf8"));
            const { violations } = await page.evaluate(() => axe.run(document, { runOnly: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "best-practice"] }));
            assert.deepEqual(violations.map((one) => `${one.impact} ${one.id}: ${one.nodes[0].html.slice(0, 120)}`), [], `${name}${hash}`);
            const wide = await page.evaluate(() => document.documentElement.scrollWidth - document.documentElement.clientWidth);
            assert.ok(wide <= 0, `${name} is ${wide} px wider than the window`);
            await page.context().close();
        }
    });
}

test("dark colours by the button, light ones in print", async () => {
    const page = await open(browser, "airports", "#k=6");
    await page.getByRole("button", { name: "Use dark colours" }).click();
    await drawn(page);
    assert.equal(await page.evaluate(() => getComputedStyle(document.body).backgroundColor), "rgb(18, 23, 28)");
    await page.evaluate(() => dispatchEvent(new Event("beforeprint")));
    assert.equal(await page.evaluate(() => document.documentElement.dataset.theme), "light");
    await page.evaluate(() => dispatchEvent(new Event("afterprint")));
    assert.equal(await page.evaluate(() => document.documentElement.dataset.theme), "dark");
    // The button waits until the picture is drawn in light colours, and prints a copy of it.
    await page.evaluate(() => {
        window.print = () => {
            window.printed = document.documentElement.dataset.theme;
        };
    });
    await page.getByRole("button", { name: "Print this page" }).click();
    await page.waitForFunction(() => window.printed !== undefined);
    assert.equal(await page.evaluate(() => window.printed), "light");
    await page.emulateMedia({ media: "print" });
    assert.ok(await page.evaluate(() => document.getElementById("print-picture").naturalWidth > 500));
    assert.ok(await page.locator("#print-picture").isVisible());
    assert.ok(!await page.locator("#graph-box").isVisible());
    quiet(page, "airports in print");
    await page.context().close();
});

test("printed by the browser where everything is dark: light, and dark again afterwards", async () => {
    const page = await open(browser, "airports", "#k=6", widths.dark);
    const background = () => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
    assert.equal(await background(), "rgb(18, 23, 28)");
    await page.evaluate(() => {
        addEventListener("beforeprint", () => {
            window.printed = [document.documentElement.dataset.theme, getComputedStyle(document.body).backgroundColor];
        });
    });
    assert.ok((await page.pdf()).length > 10000);
    assert.deepEqual(await page.evaluate(() => window.printed), ["light", "rgb(251, 250, 247)"]);
    await drawn(page);
    assert.equal(await background(), "rgb(18, 23, 28)");
    quiet(page, "airports printed in the dark");
    await page.context().close();
});

test("the PNG is the stored one within a tolerance", async () => {
    const { PNG } = require("pngjs");
    const pixelmatch = (await import(require.resolve("pixelmatch"))).default;
    const { mkdirSync, writeFileSync } = await import("node:fs");
    for (const [file, hash] of [["communities-k6.png", "#k=6"], ["communities-k6-8.png", "#k=6&community=8"]]) {
        const page = await open(browser, "airports", hash);
        await page.waitForTimeout(300);
        const [download] = await Promise.all([page.waitForEvent("download"), page.getByRole("button", { name: "Save the picture as PNG" }).click()]);
        assert.equal(download.suggestedFilename(), file);
        const made = PNG.sync.read(readFileSync(await download.path()));
        const stored = join(ROOT, "tests/page/expected", file);
        if (process.env.PLEXOR_BLESS === "1") {
            mkdirSync(join(ROOT, "tests/page/expected"), { recursive: true });
            writeFileSync(stored, PNG.sync.write(made));
        }
        const wanted = PNG.sync.read(readFileSync(stored));
        // Fonts differ between machines, and a label's width may move the edge of the picture a little.
        assert.ok(Math.abs(made.width - wanted.width) < 40 && Math.abs(made.height - wanted.height) < 40, `${made.width} x ${made.height}`);
        const width = Math.min(made.width, wanted.width);
        const height = Math.min(made.height, wanted.height);
        const cut = (image) => {
            const part = new PNG({ width, height });
            PNG.bitblt(image, part, (image.width - width) >> 1, (image.height - height) >> 1, width, height, 0, 0);
            return part.data;
        };
        const different = pixelmatch(cut(made), cut(wanted), null, width, height, { threshold: 0.25 });
        assert.ok(different / (width * height) < 0.04, `${different} of ${width * height} pixels differ`);
        await page.context().close();
    }
});

test("the committed bundle is what its sources build", async () => {
    const { execFileSync } = await import("node:child_process");
    const { mkdtempSync, rmSync } = await import("node:fs");
    const { tmpdir } = await import("node:os");
    const folder = mkdtempSync(join(tmpdir(), "plexor-bundle-"));
    execFileSync(process.execPath, [join(ROOT, "web/build.mjs"), folder]);
    const committed = join(ROOT, "python/plexor/report/static");
    assert.deepEqual(readdirSync(committed).sort(), readdirSync(folder).sort());
    for (const name of readdirSync(folder)) {
        assert.ok(readFileSync(join(folder, name)).equals(readFileSync(join(committed, name))), `${name} differs: run node web/build.mjs`);
    }
    assert.ok(!/"resolved"|https?:\/\/registry/.test(readFileSync(join(ROOT, "web/package-lock.json"), "utf8")), "the lock file names a registry");
    rmSync(folder, { recursive: true });
});
