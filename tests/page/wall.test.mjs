// The home screen on a wall, on the real programs.
import assert from "node:assert/strict";
import { test } from "node:test";
import { World, open, shareWorld, until, world } from "./World.mjs";

shareWorld({ start: () => World.start({ options: ["--view", "wall"] }) });

const openWall = () => open(world.entrance.slice(world.address.length));

test("at the printed address the cards fill any window, and nothing else is there", async () => {
  const page = await openWall();
  for (const [width, height] of [[3840, 2160], [800, 480], [480, 800], [320, 480]]) {
    await page.setViewportSize({ width, height });
    await page.evaluate(() => new Promise((resolve) => requestAnimationFrame(() => setTimeout(resolve))));
    const boxes = await page.locator(".card").evaluateAll((cards) => cards.map((card) => card.getBoundingClientRect().toJSON()));
    const words = await page.locator(".line").boundingBox();
    const side = (name, choose) => choose(...boxes.map((box) => box[name]));
    const room = { left: side("left", Math.min), top: side("top", Math.min), right: side("right", Math.max), bottom: side("bottom", Math.max) };
    for (const [index, box] of boxes.entries()) {
      for (const other of boxes.slice(index + 1)) {
        assert.ok(box.right <= other.left + 1 || other.right <= box.left + 1 || box.bottom <= other.top + 1);
      }
    }
    assert.ok(room.left >= 0 && room.top >= 0 && room.right <= width && room.bottom <= words.y + 1, JSON.stringify(room));
    assert.ok(words.y + words.height <= height);
    const used = Math.max((room.right - room.left) / width, (room.bottom - room.top) / words.y);
    assert.ok(used > 0.85, `${width} x ${height} is used to ${used}`);
  }
  assert.equal(await page.locator(":is(button, summary, .name, .times, footer a):visible").count(), 0);
  assert.equal(await page.locator(".card").first().evaluate((card) => getComputedStyle(card).cursor), "none");
});

test("what is not live is seen at the edge of the card, in the line, in the title and in the icon", async () => {
  const page = await openWall();
  const looks = async () => ({
    line: await page.locator(".line").innerText(),
    title: await page.title(),
    icon: await page.locator('link[rel="icon"]').getAttribute("href"),
    edge: await page.locator(".card").first().evaluate((card) => getComputedStyle(card).outlineStyle),
  });
  const live = await looks();
  assert.match(live.line, /^Live, \d+:\d\d/);
  await world.stop(world.gateway);
  await world.change("/reload");
  await until("the line tells of every card", async () => (await looks()).line.startsWith("Kept figures, "));
  const away = await looks();
  for (const [what, looked] of Object.entries(away)) assert.notEqual(looked, live[what], what);
  assert.match(away.line, /^Kept figures, as of \d+:\d\d/);
  assert.match(away.title, /^Kept figures · /);
  await world.startGateway();
  await world.change("/reload");
  await until("the line is back", async () => (await looks()).line.startsWith("Live"));
  assert.equal((await looks()).title, live.title);
});

test("a click fills the screen and keeps it awake, and follows no link", async () => {
  const page = await openWall();
  await page.evaluate(() => {
    window.locks = [];
    navigator.wakeLock.request = async (what) => window.locks.push(what);
  });
  await page.locator(".card").first().click();
  await until("it fills the screen", () => page.evaluate(() => document.fullscreenElement !== null));
  assert.deepEqual(await page.evaluate(() => window.locks), ["screen"]);
  assert.equal(await page.locator("#tapped").innerText(), "");
});

test("the picture wanders, but for a person who wants no motion", async () => {
  const page = await openWall();
  await page.clock.install();
  await page.reload();
  for (const reducedMotion of ["no-preference", "reduce"]) {
    await page.emulateMedia({ reducedMotion });
    const seen = new Set();
    for (let step = 0; step < 12; ++step) {
      await page.clock.runFor("00:40");
      seen.add(JSON.stringify(await page.locator(".card").first().boundingBox()));
    }
    assert.ok(reducedMotion === "reduce" ? seen.size === 1 : seen.size > 4, [...seen].join());
  }
});
