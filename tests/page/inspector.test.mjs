// The inspector of the engineer's view: the card, its tree and its display list show the same node.
import assert from "node:assert/strict";
import { test } from "node:test";
import { audit, open, shareWorld, until, world } from "./World.mjs";

const sample = (name, more = "") => `/?view=engineer&kind=UnpaidMediumWidget&state=entry&start=sample/${name}${more}`;

shareWorld();

const card = (page) => page.locator(".chosen .card").first();
const tree = (page) => page.getByRole("tree");
const list = (page) => page.getByRole("listbox");
const lit = (where) => where.locator(".lit").allInnerTexts();
const node = (page, label) => tree(page).locator(".row", { hasText: label }).first();

// Points at a place of the card, in points.
async function point(page, x, y) {
  await card(page).scrollIntoViewIfNeeded();
  const box = await card(page).boundingBox();
  await page.mouse.move(box.x + x, box.y + y);
}

async function outline(page) {
  const frame = card(page).locator(".inspected .frame");
  if (!(await frame.count())) return null;
  return frame.evaluate((rect) => ["x", "y", "width", "height"].map((side) => Number(rect.getAttribute(side))));
}

test("the card, the tree and the display list light up together, and a click keeps it", async () => {
  for (const format of ["svg", "png"]) {
    const page = await open(sample("rows-three", `&format=${format}`));
    await point(page, 40, 50);
    const [row] = await lit(tree(page));
    const name = row.match(/"(.*)"/)[1];
    const [item] = await lit(list(page));
    assert.ok(item.includes(name), item);
    const { x, y, width, height } = JSON.parse(item.replace(/,$/, "")).frame;
    assert.deepEqual(await outline(page), [x, y, width, height]);
    const [start, end] = await card(page)
      .locator(".inspected .baseline")
      .evaluate((line) => [line.getBBox().y, line.getBBox().width]);
    assert.ok(start > y + height / 2 && start < y + height && end === width, "the baseline");
    assert.match(await page.locator(".facts").innerText(), /Offered\s+\S+ × 24 by frame height 24/);

    await page.mouse.move(0, 0);
    assert.deepEqual([await outline(page), await lit(tree(page))], [null, []]);

    await list(page).getByText(name).hover();
    assert.deepEqual(await outline(page), [x, y, width, height], "from the display list");
    await node(page, "padding 16").hover();
    assert.equal(await card(page).locator(".inspected .inset").count(), 1, "a padding is hatched");
    assert.deepEqual(await lit(list(page)), [], "and paints nothing");

    await card(page).click({ position: { x: 40, y: 50 } });
    await page.mouse.move(0, 0);
    assert.deepEqual(await lit(tree(page)), [row], "kept");
    assert.equal(await tree(page).locator('[aria-selected="true"]').count(), 1);
    await page.locator("[name=appearance]").selectOption("dark");
    await until("it is drawn anew", () => page.url().includes("appearance=dark"));
    assert.deepEqual(await lit(tree(page)), [row], "kept while the same card is drawn anew");
    await page.reload();
    assert.deepEqual(await lit(tree(page)), [row], "kept by the address");
    await node(page, name).click();
    await page.mouse.move(0, 0);
    assert.deepEqual([await outline(page), await lit(tree(page))], [null, []], "let go");
  }
});

test("a card of another state is chosen by a click", async () => {
  const page = await open(sample("rows-three"));
  await page.locator('.column[data-state="snapshot"] .card').first().click();
  await until("it is the one that is told of", () => page.url().includes("state=snapshot"));
  assert.equal(await page.locator("[name=state]").inputValue(), "snapshot");
  assert.match(await list(page).innerText(), /Preivon/);
});

test("a name that is too long is warned of, with what it would take", async () => {
  const page = await open(sample("rows-long-names"));
  const warning = page.getByRole("button", { name: /Honourable Company.* is cut off: offered 237.5 × 24, all of it takes 545.5 × 18/ });
  await warning.click();
  assert.match(await page.evaluate(() => document.activeElement.textContent), /Honourable.*⚠/);
  await page.mouse.move(0, 0);
  assert.match(await page.locator(".facts").innerText(), /All of it\s+545.5 × 18/);
  assert.match(await page.locator(".facts").innerText(), /hstack: 230.5 \+ 15 \+ 60.5\s+Its turn\s+\d of 3/);
  assert.ok(await page.getByRole("button", { name: /vstack leaves the card \(↑ 11.5 ↓ 11.5\)/ }).isVisible());

  await page.goto(world.address + sample("rows-none"));
  assert.equal(await page.locator(".warnings").count(), 0);
});

test("everything is reached with the keyboard", async () => {
  const page = await open(sample("rows-three"));
  await page.locator("#freeze").focus();
  const press = async (...keys) => {
    for (const key of keys) await page.keyboard.press(key);
  };
  const focused = () => page.evaluate(() => document.activeElement.innerText);
  await tree(page).locator(".row").first().focus();
  await press("ArrowDown", "ArrowDown", "ArrowRight");
  assert.match(await focused(), /^ +padding top 20/);
  assert.match((await lit(tree(page)))[0], /padding top 20/, "the focus lights up");
  await press("ArrowDown", "ArrowDown", "ArrowDown", "ArrowLeft");
  assert.match(await focused(), /^ +hstack/, "from the second child");
  await press("ArrowLeft", "ArrowLeft");
  assert.match(await focused(), /^ +vstack/);
  await press("End", "ArrowDown");
  assert.match(await focused(), /^ +spacer/);
  await press("ArrowRight", "Home", "ArrowUp");
  assert.match(await focused(), /^widgetURL/);
  await press("ArrowDown", "Enter", "Tab");
  assert.equal(await page.evaluate(() => document.activeElement.getAttribute("role")), "option", "one stop for each list");
  await press("ArrowDown");
  assert.match((await lit(tree(page)))[0], /text "/);
  await page.locator("#freeze").focus();
  assert.match((await lit(tree(page)))[0], /padding 16/, "the kept one again");
  await tree(page).locator('[tabindex="0"]').focus();
  assert.match(await focused(), /padding 16/);
  const kept = () => page.locator('[aria-selected="true"]').count();
  assert.equal(await kept(), 1);
  await press("Escape");
  assert.equal(await kept(), 0);
  await card(page).click({ position: { x: 4, y: 80 } });
  assert.equal(await kept(), 1);
  await press("Escape");
  assert.equal(await kept(), 0, "wherever the focus is");
});

test("from right to left, on a narrow screen and for everybody's eyes", async () => {
  for (const colorScheme of ["light", "dark"]) {
    const page = await open(sample("rows-right-to-left", "&language=ar&lang=ar"), {
      colorScheme,
      viewport: { width: 320, height: 800 },
    });
    const trailing = node(page, "frame height 24");
    await trailing.focus();
    await page.keyboard.press("Enter");
    const [x, , width] = await outline(page);
    assert.equal(x + width, 338 - 16, "names begin at the right");
    assert.match(await page.locator(".facts dd").first().innerText(), /\u2066250 × 25\u2069.*\u2066hstack\u2069/);
    assert.equal(await page.evaluate(() => document.documentElement.scrollWidth - innerWidth), 0);
    await audit(page);
  }
});
