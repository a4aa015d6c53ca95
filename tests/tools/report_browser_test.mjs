// node report_browser_test.mjs FOLDER TOOL PICTURES: FOLDER holds run.db and the browser's driver.
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { createWriteStream, statSync } from "node:fs";
import { createRequire } from "node:module";
import { join } from "node:path";
import { pathToFileURL } from "node:url";

const [folder, tool, pictures] = process.argv.slice(2);
const { chromium } = createRequire(join(folder, "package.json"))("playwright-core");
const kFlags = [
  "--no-sandbox", "--disable-gpu", "--use-angle=swiftshader", "--enable-unsafe-swiftshader",
  "--disable-quic", "--no-first-run", "--disable-background-networking",
  "--disable-component-update", "--disable-sync",
];

function run(...words) {
  const { status, stdout, stderr } = spawnSync(tool, words, { encoding: "utf8", maxBuffer: 1e9 });
  return { status, stdout, stderr, lines: stdout.split("\n").filter((line) => line !== "") };
}

async function open(source, colorScheme = "light") {
  const name = join(folder, "report.html");
  assert.equal(run("report", source, "-o", name).status, 0);
  const context = await chromium.launchPersistentContext(join(folder, `user-${Math.random()}`), {
    executablePath: "/usr/bin/chromium", headless: true, args: kFlags, colorScheme,
    viewport: { width: 1400, height: 1000 },
  });
  const page = context.pages()[0];
  page.on("pageerror", (error) => assert.fail(error));
  page.on("console", (line) => line.type() === "error" && assert.fail(line.text()));
  page.on("request", (request) => assert.match(request.url(), /^(file|data|blob):/));
  await page.goto(pathToFileURL(name).href);
  await page.waitForSelector("body[data-ready]", { timeout: 60000 });
  return { page, megabytes: statSync(name).size / 1e6, close: () => context.close() };
}

// What can be said about blocks selects the same ones as on the command line, or is refused too.
async function checkFilters(page, source) {
  const patterns = [
    "LABEL=DISP", "ONF=displacement; INCREMENT=max", "onf=@nodal", "INCREMENT=max/LOADCASE",
    "STATE=2..", "SUBSTEP=1,3,7..9", "LABEL~'ST*S'", "LABEL~?ISP,F*", "STATE=!", "LABEL=?",
    "LOADCASE=min; SUBSTEP=max", "ONF=100..105", "LAYER=3", "LABEL='DI''SP'", "LABEL='max'",
    "LABEL=max", "LABEL=a..b", "LABEL~", "LABEL", "STAT=2", "STATE=x", "STATE=3..1", "STATE=..",
    "LABEL='DISP", "LABEL='DISP'x", "ONF=displacment", "ONF=@nod", "STATE~2", "STATE=-5", ";",
  ];
  for (const pattern of patterns) {
    const { status, lines } = run("find", source, "-w", pattern);
    await page.fill("#blocks input", pattern);
    assert.equal((await page.textContent("#filter-error")) !== "", status === 2, pattern);
    if (status === 2) continue;
    const count = await page.textContent("#blocks output");
    assert.equal(count.split(" ")[0], String(lines.length), pattern);
  }
  await page.fill("#blocks input", "");
}

async function checkSorting(page) {
  const header = page.locator("#blocks th button", { hasText: "bytes" });
  for (const sign of [1, -1]) {
    await header.click();
    const cells = await page.$$eval("#blocks tbody tr", (rows) =>
      rows.map((row) => Number(row.cells[row.cells.length - 2].textContent)));
    assert.ok(cells.every((value, i) => i === 0 || sign * (value - cells[i - 1]) >= 0));
  }
}

const kRules = {
  magnitude: (v) => Math.hypot(...v),
  mises: ([xx, yy, zz, xy, yz, zx]) =>
    Math.sqrt(((xx - yy) ** 2 + (yy - zz) ** 2 + (zz - xx) ** 2) / 2 +
      3 * (xy ** 2 + yz ** 2 + zx ** 2)),
};

function shown(source, field, step, id) {
  const where = [`LABEL=${field.split(" ")[0]}`, ...(step === "all" ? [] : step.split(", ").at(-1).split("/"))];
  const { stdout } = run("show", source, "--id", id, "--format", "jsonl", ...where.flatMap((one) => ["-w", one]));
  return stdout === "" ? null : JSON.parse(stdout);
}

function expected(row, value) {
  if (row === null) return NaN;
  const titles = Object.keys(row).slice(3);
  if (kRules[value]) return kRules[value](titles.map((title) => row[title]));
  return Number(row[titles.find((title) => title === value || title.endsWith(`.${value}`))]);
}

// Points at the model and compares what the page says there with `qelta show`.
async function checkValues(page, source) {
  const pick = page.locator(".stage output");
  const choices = async (name) => page.$$eval(`label:has(> span:text-is("${name}")) option`, (all) => all.map((one) => one.textContent));
  const select = (name) => page.locator(`label:has(> span:text-is("${name}")) select`);
  let count = 0;
  for (const field of await choices("Field")) {
    await select("Field").selectOption({ label: field });
    const steps = await choices("Step");
    for (const step of new Set([steps[0], steps.at(-1)])) {
      await select("Step").selectOption({ label: step });
      for (const value of (await choices("Value")).filter((one) => !one.startsWith("principal"))) {
        await select("Value").selectOption({ label: value });
        await page.waitForTimeout(50);
        await page.locator("canvas[tabindex]").click();
        const text = await pick.textContent();
        const [, node, element, what, number] = /^node (\d+), element (\d+): (.*) = (.*)$/.exec(text);
        assert.equal(what, `${field} ${value}`);
        const isOfElement = field === "loads";
        const row = shown(source, field, step, isOfElement ? element : node);
        const wanted = expected(row, value);
        const isNear = Math.abs(Number(number) - wanted) <= 2e-6 * Math.abs(wanted) + 1e-12;
        assert.ok(isNear || (Number.isNaN(wanted) && number === "NaN"), `${text}, not ${wanted}`);
        ++count;
      }
    }
  }
  return count;
}

// The picture changes with every control.
async function checkControls(page) {
  const canvas = page.locator("canvas[tabindex]");
  let last = await canvas.screenshot();
  const changes = async (name, action) => {
    await action();
    await page.waitForTimeout(200);
    const next = await canvas.screenshot();
    assert.ok(!next.equals(last), `${name} changes nothing`);
    last = next;
  };
  await changes("bands", () => page.getByLabel("bands of one colour").check());
  await changes("edges", () => page.getByLabel("element edges").uncheck());
  await changes("scale", () => page.getByLabel("Exact scale").fill("0").then(() => page.keyboard.press("Tab")));
  await changes("find", () => page.getByLabel("Find node").fill("9").then(() => page.keyboard.press("Enter")));
  assert.match(await page.textContent(".stage output"), /^node 9: /);
  await canvas.focus();
  await changes("arrow", () => page.keyboard.press("ArrowLeft"));
  await changes("plus", () => page.keyboard.press("+"));
  await changes("drag", async () => {
    await canvas.hover();
    await page.mouse.down();
    await page.mouse.move(600, 400, { steps: 4 });
    await page.mouse.up();
  });
}

// A curved shell of n x n nodes with one step.
async function writeShell(name, n) {
  const file = createWriteStream(name);
  const pad = (value, width) => String(value).padStart(width);
  const real = (value) => {
    const [digits, power] = value.toExponential(5).split("e");
    return pad(`${digits}E${power < 0 ? "-" : "+"}${String(Math.abs(power)).padStart(2, "0")}`, 12);
  };
  const nodes = Array.from({ length: n * n }, (_, i) => [Math.cos((3 * (i % n)) / n), Math.sin((3 * (i % n)) / n), Math.floor(i / n) / n]);
  const table = (rows) => rows.map((row, i) => ` -1${pad(i + 1, 10)}${row.map(real).join("")}\n`).join("") + " -3\n";
  file.write(`    1C\n    2C${pad(n * n, 30)}${pad(1, 38)}\n${table(nodes)}`);
  file.write(`    3C${pad((n - 1) ** 2, 30)}${pad(1, 38)}\n`);
  for (let e = 0; e < (n - 1) ** 2; ++e) {
    const first = (e % (n - 1)) + n * Math.floor(e / (n - 1)) + 1;
    const corners = [first, first + 1, first + n + 1, first + n].map((one) => pad(one, 10)).join("");
    file.write(` -1${pad(e + 1, 10)}    9    0    1\n -2${corners}\n`);
  }
  file.write(` -3\n  100CL  101 1.00000E+00${pad(n * n, 12)}${pad(0, 22)}${pad(1, 5)}${pad(1, 12)}\n -4  DISP        4    1\n`);
  for (const k of [1, 2, 3]) file.write(` -5  D${k}          1    2    ${k}    0\n`);
  file.write(" -5  ALL         1    2    0    0    1ALL\n");
  file.write(table(nodes.map(([x, y, z]) => [0.1 * z, 0.1 * x * z, 0.1 * y])) + " 9999\n");
  await new Promise((done) => file.end(done));
}

const source = join(folder, "run.db");
for (const scheme of ["light", "dark"]) {
  const { page, close } = await open(source, scheme);
  await page.screenshot({ path: join(pictures, `${scheme}.png`), fullPage: true });
  if (scheme === "light") {
    await checkFilters(page, source);
    await checkSorting(page);
    console.log(`${await checkValues(page, source)} values agree with qelta show`);
    await checkControls(page);
  }
  await close();
}

const shell = join(folder, "shell.frd");
await writeShell(shell, 317);
const { page, megabytes, close } = await open(shell);
const ready = await page.evaluate(() => document.body.dataset.ready);
console.log(`a mesh of 100 489 nodes, ${megabytes.toFixed(1)} MB of page, is drawn after ${ready} ms`);
await page.screenshot({ path: join(pictures, "large.png") });
await close();
