// The canvas in a browser, and the pictures on it.
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { World, launchBrowser, programs, until } from "./World.mjs";

const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

let world, browser, page, asked, problems;

before(async () => {
  world = await World.start();
  await until("all widgets are live", () => world.allLive());
  browser = await launchBrowser();
  const context = await world.newContext(browser, { viewport: { width: 1200, height: 800 } });
  page = await context.newPage();
  asked = new Set();
  problems = [];
  page.on("request", (request) => request.url().includes("/picture.") && asked.add(request.url()));
  page.on("console", (message) => message.type() === "error" && problems.push(message.text()));
});

after(async () => {
  await browser?.close();
  await world?.end();
  assert.deepEqual(problems, []);
});

const drawn = () =>
  page.evaluate(() =>
    [...document.querySelectorAll(".cell img")]
      .filter((picture) => picture.getBoundingClientRect().top < innerHeight)
      .every((picture) => picture.complete && picture.naturalWidth > 0),
  );

test("only what is in sight is asked for, and what is chosen stands in the address", async () => {
  await page.goto(`${world.address}/?view=canvas&screen=all`);
  await until("what is in sight is drawn", drawn);
  assert.match(await page.locator(".count").textContent(), /^7700 pictures$/);
  assert.ok(asked.size > 10 && asked.size < 400, `${asked.size} of 7700 were asked for`);
  await page.getByLabel("Entry").selectOption("rows-seven");
  await page.waitForURL(/entry=rows-seven/);
  await page.getByLabel("Screen").selectOption("320x568");
  await page.waitForURL(/screen=320x568/);
  assert.match(await page.locator(".count").textContent(), /^28 pictures$/);
  await until("they are drawn", drawn);
  await page.evaluate(axe);
  const { violations } = await page.evaluate(() => axe.run());
  assert.deepEqual(violations.map(({ id }) => id), []);
  await page.locator(".cell").first().click();
  await page.waitForURL(/view=engineer/);
  assert.match(await page.getByLabel("Entry of your own").inputValue(), /Hillside Farm/);
});

test("a picture on the canvas is the one that render draws", async () => {
  const folder = world.folder;
  for (const [kind, choice, options, name] of [
    ["SalesSmallWidget", "state=snapshot&language=de", ["--state", "snapshot", "--locale", "de"],
      /"SalesSmallWidget-snapshot-393x852-de-light@2x.png"/],
    ["UnpaidMediumWidget", "state=entry&start=sample/rows-emoji&language=ar&currency=€&appearance=dark",
      ["--sample", "rows-emoji", "--locale", "ar", "--currency", "€", "--appearance", "dark"],
      /"UnpaidMediumWidget-rows-emoji-393x852-ar-dark@2x.png"/],
  ]) {
    const file = join(folder, "card.png");
    const args = ["--extension", world.extension, "render", kind, ...options, "-o", file];
    const done = spawnSync(join(programs, "quillpad-home"), args, { env: world.environment });
    assert.equal(done.status, 0, String(done.stderr));
    const answer = await page.request.get(`${world.address}/picture.png?kind=${kind}&${choice}`);
    assert.ok(readFileSync(file).equals(await answer.body()), kind);
    assert.match(answer.headers()["content-disposition"], name);
  }
});

test("the editor marks the line that is wrong, and starts from a sample or from what is live", async () => {
  await page.goto(`${world.address}/?view=engineer&kind=SalesSmallWidget`);
  const editor = page.getByLabel("Entry of your own");
  await page.getByLabel("Start from").selectOption("sample/figures-usual");
  await until("the sample stands there", async () => (await editor.inputValue()).includes('"1234.5"'));
  await editor.fill((await editor.inputValue()).replace('"1234.5"', '"many"'));
  await until("the third line or later is marked", () => editor.evaluate((field) => field.classList.contains("wrong")));
  assert.equal(await editor.evaluate((field) => field.style.getPropertyValue("--wrong-line")), "3");
  assert.match(await page.locator(".column .problem").textContent(), /a number in "salesMonth"/);
  await page.getByLabel("Start from").selectOption("live");
  await until("what is live stands there", async () => !(await editor.inputValue()).includes("many"));
  await until("nothing is marked", () => editor.evaluate((field) => !field.classList.contains("wrong")));
  assert.doesNotMatch(page.url(), /entry=/);
  await page.getByRole("button", { name: "Freeze" }).click();
  await page.waitForURL(/&entry=/);
  const shared = await editor.inputValue();
  await page.goto(page.url());
  assert.equal(await editor.inputValue(), shared);
});

test("the extension's page tells what it does and went through, and goes on telling", async () => {
  await page.goto(`${world.address}/?view=process`);
  const shown = page.locator("#process");
  assert.match(await shown.textContent(), /of 30\.0 MB[^]*SalesSmallWidget1 of the 40 to 70[^]*getDataMap: status 200/);
  await page.evaluate(axe);
  const { violations } = await page.evaluate(() => axe.run());
  assert.deepEqual(violations.map(({ id }) => id), []);
  process.kill(world.extensionProcess(), "SIGKILL");
  await until("its end shows", async () => (await shown.textContent()).includes("signal 9, Killed"));
});
