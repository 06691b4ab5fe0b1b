// SPDX-License-Identifier: MIT
// Bundles the pages into python/plexor/report/static (or the folder given): for each page its script,
// its style and its HTML, and the licences of all packages that went in.
import { build } from "esbuild";
import { copyFileSync, mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));
const out = process.argv[2] ?? join(here, "../python/plexor/report/static");
const pages = ["report", "compare", "sweep"];

mkdirSync(out, { recursive: true });
const result = await build({
    absWorkingDir: here,
    entryPoints: Object.fromEntries(pages.map((page) => [page, `src/${page}/main.ts`])),
    outdir: out,
    bundle: true,
    minify: true,
    format: "iife",
    target: "es2022",
    charset: "utf8",
    legalComments: "none",
    metafile: true,
});
for (const page of pages) {
    copyFileSync(join(here, `src/${page}/${page}.html`), join(out, `${page}.html`));
}

const packages = new Set();
for (const input of Object.keys(result.metafile.inputs)) {
    const found = /^node_modules\/((?:@[^/]+\/)?[^/]+)\//.exec(input);
    if (found) {
        packages.add(found[1]);
    }
}
let licences = "The pages contain code of these packages, each under its own licence.\n";
for (const name of [...packages].sort()) {
    const folder = join(here, "node_modules", name);
    const { version, license } = JSON.parse(readFileSync(join(folder, "package.json"), "utf8"));
    const text = ["LICENSE", "LICENSE.md", "LICENSE.txt", "license"].flatMap((file) => {
        try {
            return [readFileSync(join(folder, file), "utf8")];
        } catch {
            return [];
        }
    })[0];
    if (text === undefined) {
        throw new Error(`no licence text in ${name}`);
    }
    licences += `\n${"=".repeat(72)}\n${name} ${version}: ${license}\n${"=".repeat(72)}\n\n${text.trim()}\n`;
}
writeFileSync(join(out, "LICENCES.txt"), licences.replaceAll("\r\n", "\n"));
