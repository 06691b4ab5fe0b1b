// SPDX-License-Identifier: MIT
// Takes a picture of a page as it looks on a laptop:  node web/take_picture.mjs PAGE.html[#k=6] OUT.png
import { resolve } from "node:path";
import { chromium } from "playwright-core";

const [, , page_, out] = process.argv;
const [file, hash = ""] = page_.split("#");
const browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--headless", "--no-sandbox", "--disable-gpu"] });
const page = await browser.newPage({ viewport: { width: 1280, height: 900 } });
await page.goto(`file://${resolve(file)}${hash === "" ? "" : `#${hash}`}`);
await page.waitForFunction(() => document.body.dataset.drawn === "yes");
await page.waitForTimeout(500);
await page.screenshot({ path: out });
await browser.close();
