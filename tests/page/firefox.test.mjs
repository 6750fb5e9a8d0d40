// The page in Firefox, driven over WebDriver BiDi.
import assert from "node:assert/strict";
import { existsSync } from "node:fs";
import { test } from "node:test";
import puppeteer from "puppeteer-core";
import { shareWorld, until, world } from "./World.mjs";

const firefox = "/usr/bin/firefox-esr";
const skip = existsSync(firefox) ? false : `${firefox} is not installed`;
const salesCard = '[data-kind="SalesSmallWidget"]';
let page;

shareWorld({
  async launch() {
    if (skip) return null;
    const fox = await puppeteer.launch({ browser: "firefox", executablePath: firefox });
    page = await fox.newPage();
    await page.goto(world.entrance);
    return fox;
  },
});

const label = () => page.$eval(`${salesCard} .card svg`, (svg) => svg.getAttribute("aria-label"));
// Nothing where the page is just being loaded anew.
const ask = (question) => page.evaluate(question).catch(() => null);
const statuses = () => ask(() => [...document.querySelectorAll(".home .widget")].map((card) => card.dataset.status).join(" "));
const told = () => ask(() => document.getElementById("connection").textContent !== "");
const live = "live live live live live";
const boxes = () =>
  page.$$eval(".card svg", (all) => all.map((svg) => svg.getBoundingClientRect()).map(({ width, height }) => `${width} ${height}`));

test("the first answer paints every widget", { skip }, async () => {
  assert.deepEqual(await boxes(), ["158 158", "158 158", "158 158", "338 158", "338 158"]);
  assert.match(await page.$eval(`${salesCard} .times`, (times) => times.textContent), /ago|now/);
});

test("a change shows at once", { skip }, async () => {
  world.settings("currency", "€ - EUR");
  await page.click("#reload");
  await until("the new currency shows", async () => (await label()).includes("€"));
});

test("a home screen that is killed is told and comes back", { skip }, async () => {
  await world.stop(world.home, "SIGKILL");
  await until("it is told", told);
  await world.startHome();
  await until("it is back", async () => (await told()) === false && (await statuses()) === live);
  process.kill(world.extensionProcess(), "SIGKILL");
  await world.change("/reload");
  await until("the extension is back too", async () => (await statuses()) === live);
});

test("the wall fills the window", { skip }, async () => {
  await page.setViewport({ width: 1920, height: 1080 });
  await page.goto(`${world.address}/?view=wall`);
  const rooms = await page.$$eval(".card", (cards) => cards.map((card) => card.getBoundingClientRect().toJSON()));
  const line = await page.$eval(".line", (element) => element.getBoundingClientRect().toJSON());
  for (const { left, top, right, bottom } of rooms) assert.ok(left >= 0 && top >= 0 && right <= 1920 && bottom <= line.y + 1);
  assert.ok(Math.max(...rooms.map(({ right }) => right)) > 1700);
  assert.match(await page.$eval(".line", (element) => element.textContent), /^Live/);
});
