// SPDX-License-Identifier: MIT
// The pages of comparisons and sweeps.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { open, PAGES, require, start } from "./browser.mjs";

let browser;
before(async () => {
    browser = await start();
});
after(async () => {
    await browser.close();
});

const widths = { laptop: {}, dark: { colorScheme: "dark" }, phone: { viewport: { width: 360, height: 740 }, isMobile: true, hasTouch: true } };
for (const name of ["compare", "compare-time", "sweep", "sweep-two", "sweep-k"]) {
    test(`${name}: one request, no message, accessible, no wider than the window`, async () => {
        for (const options of Object.values(widths)) {
            const page = await open(browser, name, "", options);
            await page.evaluate(readFileSync(require.resolve("axe-core"), "utf8"));
            const { violations } = await page.evaluate(() => axe.run(document, { runOnly: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "best-practice"] }));
            assert.deepEqual(violations.map((one) => `${one.impact} ${one.id}: ${one.nodes[0].html.slice(0, 160)}`), []);
            assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= document.documentElement.clientWidth));
            assert.ok(await page.evaluate(() => document.querySelectorAll("*").length) < 2000);
            assert.equal(page.requests.filter((url) => !url.startsWith("data:")).length, 1);
            assert.deepEqual(page.messages, []);
            await page.context().close();
        }
    });
}

test("a comparison: scores, matches, a block followed, SVG", async () => {
    const page = await open(browser, "compare");
    assert.match(await page.locator("#score-table").innerText(), /0\.9620\t0\.9901/);
    assert.equal(await page.locator("#row-table tbody tr").count(), 20);
    assert.equal(await page.locator("main b").count(), 0);
    assert.equal(await page.locator("#river .block").count(), 40);
    await page.getByRole("button", { name: "Follow community 4 of undirected" }).click();
    assert.equal(await page.locator("#river .block:not(.faint)").count(), 2);
    await page.getByRole("button", { name: "Show all" }).click();
    assert.equal(await page.locator("#river .faint").count(), 0);
    const [download] = await Promise.all([page.waitForEvent("download"), page.getByRole("button", { name: "Save the picture as SVG" }).click()]);
    const picture = readFileSync(await download.path(), "utf8");
    assert.ok(picture.startsWith("<svg") && picture.includes("&lt;b&gt;"));
    await page.context().close();
});

test("a comparison over time: events by kind", async () => {
    const page = await open(browser, "compare-time");
    const all = Number(/\d+/.exec(await page.getByRole("button", { name: /^all \d+/ }).innerText())[0]);
    let sum = 0;
    for (const button of await page.locator("#kinds button").all()) {
        const [, kind, n] = /^(.*) (\d+)$/.exec(await button.innerText());
        await button.click();
        assert.equal(await page.locator("#row-table tbody tr").count(), Math.min(25, Number(n)), kind);
        sum += kind === "all" ? 0 : Number(n);
    }
    assert.equal(sum, all);
    await page.context().close();
});

test("a sweep: the table is the CSV, places have reasons, lines come and go", async () => {
    const page = await open(browser, "sweep");
    const lines = readFileSync(join(PAGES, "sweep", "sweep.csv"), "utf8").trim().split("\n").slice(1).map((line) => line.split(","));
    assert.match(await page.locator("#rows-title").innerText(), new RegExp(`^${lines.length} rows`));
    const rows = await page.locator("#row-table tbody tr").evaluateAll((all) => all.map((row) => [...row.children].map((cell) => cell.textContent)));
    rows.forEach((row, i) => {
        assert.deepEqual(row.slice(0, 5), [lines[i][0], lines[i][3], lines[i][4], lines[i][5], lines[i][6]]);
    });
    assert.ok(await page.locator("#places-list li").count() > 0);
    assert.match(await page.locator("#places").innerText(), /None of them is the best one/);
    assert.equal(await page.locator("#charts canvas").count(), 6);
    const button = page.locator("#ks button").first();
    const before_ = await button.getAttribute("aria-pressed");
    await button.click();
    assert.notEqual(await button.getAttribute("aria-pressed"), before_);
    await page.context().close();
});

test("a sweep over two thresholds: one is chosen, the other is the axis", async () => {
    const page = await open(browser, "sweep-two");
    const select = page.getByLabel("Other thresholds");
    assert.deepEqual(await select.locator("option").allInnerTexts(), ["weights below 10", "weights below 14"]);
    await select.selectOption("weights below 14");
    assert.deepEqual(page.messages, []);
    await page.context().close();
});
