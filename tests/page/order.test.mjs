// Where the widgets stand, on the real programs.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { setTimeout as pause } from "node:timers/promises";
import { World, launchBrowser, until } from "./World.mjs";

let world, browser, page;

before(async () => {
  world = await World.start();
  browser = await launchBrowser();
  await until("all widgets are live", () => world.allLive());
  const context = await world.newContext(browser, { viewport: { width: 1000, height: 800 }, hasTouch: true });
  page = await context.newPage();
  await page.goto(world.address);
});

after(async () => {
  await browser?.close();
  await world?.end();
});

const card = (kind) => page.locator(`[data-kind="${kind}Widget"]`);
const shown = async () =>
  (await page.locator(".widget").evaluateAll((cards) => cards.map((each) => each.dataset.kind.replace("Widget", "")))).join(" ");
const kept = async () =>
  (await (await world.fetch("/changes?since=0")).json()).order.join(" ").replaceAll("Widget", "");

async function expectOrder(order) {
  await until(`the order is ${order}`, async () => (await kept()) === order);
  await until(`${order} shows`, async () => (await shown()) === order);
}

async function middle(kind) {
  const { x, y, width, height } = await card(kind).locator(".card").boundingBox();
  return { x: x + width / 2, y: y + height / 2 };
}

test("a card is dragged to another place, and no link is followed", async () => {
  const [from, to] = [await middle("SalesSmall"), await middle("UnpaidSmall")];
  const opened = [];
  page.on("framenavigated", (frame) => opened.push(frame.url()));
  await page.mouse.move(from.x, from.y);
  await page.mouse.down();
  await page.mouse.move(from.x + 40, from.y, { steps: 4 });
  await page.mouse.move(to.x + 30, to.y, { steps: 8 });
  await page.mouse.up();
  await expectOrder("PendingSmall UnpaidSmall SalesSmall PendingMedium UnpaidMedium");
  assert.deepEqual(opened, []);
});

test("Escape puts a card that is being dragged back", async () => {
  const [before, from, to] = [await shown(), await middle("SalesSmall"), await middle("UnpaidMedium")];
  await page.mouse.move(from.x, from.y);
  await page.mouse.down();
  await page.mouse.move(to.x + 60, to.y, { steps: 8 });
  assert.notEqual(await shown(), before);
  await page.keyboard.press("Escape");
  await page.mouse.up();
  await expectOrder(before);
});

test("on a touch screen a long press lifts a card, and a swipe does not", async () => {
  const before = await shown();
  const from = await middle("UnpaidMedium");
  const devtools = await page.context().newCDPSession(page);
  const touch = (type, ...touchPoints) => devtools.send("Input.dispatchTouchEvent", { type, touchPoints });
  const dragToTheFirst = async (wait) => {
    await touch("touchStart", from);
    await pause(wait);
    await touch("touchMove", { x: from.x, y: from.y - 30 });
    const { x, y, height } = await page.locator(".widget").first().boundingBox();
    await touch("touchMove", { x: x + 20, y: y + height / 2 });
    await touch("touchEnd");
  };
  await dragToTheFirst(0);
  await expectOrder(before);
  await page.evaluate(() => scrollTo(0, 0));
  await dragToTheFirst(600);
  await expectOrder("UnpaidMedium PendingSmall UnpaidSmall SalesSmall PendingMedium");
});

test("arrow keys move a card, say where it is, and keep the focus; the order outlives a restart", async () => {
  const handle = card("UnpaidMedium").getByRole("button", { name: /^Move Unpaid/ });
  await handle.focus();
  for (const [key, order] of [
    ["ArrowRight", "PendingSmall UnpaidMedium UnpaidSmall SalesSmall PendingMedium"],
    ["ArrowUp", "UnpaidMedium PendingSmall UnpaidSmall SalesSmall PendingMedium"],
    ["ArrowUp", "UnpaidMedium PendingSmall UnpaidSmall SalesSmall PendingMedium"],
    ["End", "PendingSmall UnpaidSmall SalesSmall PendingMedium UnpaidMedium"],
  ]) {
    await page.keyboard.press(key);
    await expectOrder(order);
    assert.ok(await handle.evaluate((element) => element === document.activeElement));
  }
  assert.equal(await page.locator("#moved").innerText(), "Unpaid Invocies: 5 of 5");
  const order = await kept();
  world.port = new URL(world.address).port;
  await world.stop(world.home);
  await world.startHome();
  assert.equal(await kept(), order);
});

test("few cards stand in the middle, and a narrow window cuts nothing off", async () => {
  const token = await world.pageToken();
  for (const kind of ["PendingSmall", "UnpaidSmall", "PendingMedium"]) {
    await world.change(`/remove?kind=${kind}Widget`, token);
  }
  await page.goto(world.address);
  for (const width of [320, 357, 400, 768, 1440]) {
    await page.setViewportSize({ width, height: 800 });
    const boxes = await page.locator(".card svg:visible").evaluateAll((cards) => cards.map((each) => each.getBoundingClientRect().toJSON()));
    for (const { y } of boxes) {
      const row = boxes.filter((box) => Math.abs(box.y - y) < 1);
      const [left, right] = [row[0].left, row.at(-1).right];
      assert.ok(left >= 0 && right <= width && Math.abs(left + right - width) <= 2, `${width}: ${left} to ${right}`);
    }
  }
});
