// Makes one page of the sources: node build.mjs NODE_MODULES OUTPUT_FOLDER
// Writes page.html, which waits for data, the same as a C++ source, and the licences of the
// libraries in it.
import { createRequire } from "node:module";
import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const kBundled = ["three", "uplot"];

const [modules, output] = process.argv.slice(2);
const sources = join(dirname(fileURLToPath(import.meta.url)), "src");
const esbuild = createRequire(join(modules, "..", "package.json"))("esbuild");

function bundle(entry) {
  const result = esbuild.buildSync({
    entryPoints: [join(sources, entry)],
    nodePaths: [modules],
    bundle: true,
    minify: true,
    write: false,
    format: "iife",
    target: ["es2022"],
    legalComments: "none",
  });
  return result.outputFiles[0].text.trim();
}

function licenceOf(name) {
  const folder = join(modules, name);
  const { version, license } = JSON.parse(readFileSync(join(folder, "package.json"), "utf8"));
  const text = readFileSync(join(folder, "LICENSE"), "utf8").trim();
  return `${name} ${version} (${license})\n\n${text}\n`;
}

function escapeHtml(text) {
  return text.replace(/[&<>]/g, (c) => ({ "&": "&amp;", "<": "&lt;", ">": "&gt;" })[c]);
}

// Compilers limit the length of a literal; adjacent ones are one.
function toCpp(page) {
  const bytes = Buffer.from(page, "utf8");
  const lines = [];
  for (let begin = 0; begin < bytes.length; begin += 200) {
    const part = bytes.subarray(begin, begin + 200);
    lines.push(`  "${Array.from(part, escapeByte).join("")}"`);
  }
  return [
    '#include "ReportTemplate.h"', "", "namespace qelta {", "",
    "std::string_view ReportTemplate() {", "  static const char kPage[] =",
    lines.join("\n") + ";", "  return {kPage, sizeof kPage - 1};", "}", "", "}  // namespace qelta",
    "",
  ].join("\n");
}

function escapeByte(byte) {
  const isPlain = byte >= 32 && byte < 127 && byte !== 34 && byte !== 92 && byte !== 63;
  return isPlain ? String.fromCharCode(byte) : "\\" + byte.toString(8).padStart(3, "0");
}

const licences = kBundled.map(licenceOf).join("\n" + "-".repeat(72) + "\n\n");
const parts = {
  style: bundle("style.css"),
  script: bundle("main.js"),
  licences: escapeHtml(licences),
};
const shell = readFileSync(join(sources, "page.html"), "utf8");
const page = shell.replace(/\{\{(\w+)\}\}/g, (_, name) => parts[name]);

mkdirSync(output, { recursive: true });
writeFileSync(join(output, "page.html"), page);
writeFileSync(join(output, "ReportTemplate.cpp"), toCpp(page));
writeFileSync(join(output, "THIRD-PARTY-report.txt"), licences);
