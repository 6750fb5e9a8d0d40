// Where the widgets stand, on the real programs.
import assert from "node:assert/strict";
import { test } from "node:test";
import { setTimeout as pause } from "node:timers/promises";
import { open, shareWorld, until, world } from "./World.mjs";

shareWorld();

let page;

const openDesk = async () => (page = await open("/", { viewport: { width: 1000, height: 800 }, hasTouch: true }));
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

test("a card is dragged to another place, and no link is followed; Escape puts it back", async () => {
  await openDesk();
  const opened = [];
  page.on("framenavigated", (frame) => opened.push(frame.url()));
  const drag = async (kind, other) => {
    const [from, to] = [await middle(kind), await middle(other)];
    await page.mouse.move(from.x, from.y);
    await page.mouse.down();
    await page.mouse.move(from.x + 40, from.y, { steps: 4 });
    await page.mouse.move(to.x + 30, to.y, { steps: 8 });
  };
  await drag("SalesSmall", "UnpaidSmall");
  await page.mouse.up();
  const order = "PendingSmall UnpaidSmall SalesSmall PendingMedium UnpaidMedium";
  await expectOrder(order);
  assert.deepEqual(opened, []);

  await drag("SalesSmall", "UnpaidMedium");
  assert.notEqual(await shown(), order);
  await page.keyboard.press("Escape");
  await page.mouse.up();
  await expectOrder(order);
});

test("on a touch screen a long press lifts a card, and a swipe does not", async () => {
  await openDesk();
  const order = await shown();
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
  await expectOrder(order);
  await page.evaluate(() => scrollTo(0, 0));
  await dragToTheFirst(600);
  await expectOrder("UnpaidMedium PendingSmall UnpaidSmall SalesSmall PendingMedium");
});

test("arrow keys move a card, say where it is, and keep the focus; the order outlives a restart", async () => {
  await openDesk();
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
  await world.restartHome();
  assert.equal(await kept(), order);
});

test("few cards stand in the middle, and a narrow window cuts nothing off", async () => {
  for (const kind of ["PendingSmall", "UnpaidSmall", "PendingMedium"]) await world.change(`/remove?kind=${kind}Widget`);
  await openDesk();
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
