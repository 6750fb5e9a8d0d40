// The page for everybody: whatever the eyes, hands, paper, letters and browser's settings.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { after, before, test } from "node:test";
import { World, launchBrowser, until } from "./World.mjs";

const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
let world, browser;

before(async () => {
  world = await World.start();
  browser = await launchBrowser();
  await until("all widgets are live", () => world.allLive());
});

after(async () => {
  await browser?.close();
  await world?.end();
});

async function open(path, options) {
  const page = await (await world.newContext(browser, options)).newPage();
  await page.goto(world.address + path);
  return page;
}

for (const [view, path] of [
  ["home screen", "/?lang=ar"],
  ["wall", "/?view=wall"],
  ["engineer's view", "/?view=engineer&kind=UnpaidMediumWidget&boxes=1&entry=%7B&lang=de"],
  ["canvas", "/?view=canvas&kind=SalesSmallWidget"],
  ["way back", "/?view=engineer&kind=nothing"],
]) {
  test(`the accessibility audit finds nothing in the ${view}`, async () => {
    for (const colorScheme of ["light", "dark"]) {
      const page = await open(path, { colorScheme });
      await page.evaluate(axe);
      const { violations } = await page.evaluate(() => axe.run());
      assert.deepEqual(violations.map(({ id, nodes }) => `${id}: ${nodes.map(({ html }) => html.slice(0, 120))}`), []);
      await page.context().close();
    }
  });
}

test("text of any size and windows of any width hide nothing", async () => {
  const page = await open("/");
  for (const path of ["/", "/?lang=de", "/?view=engineer&kind=UnpaidMediumWidget&screen=430x932&entry=%7B&lang=de", "/?view=canvas"]) {
    await page.goto(world.address + path);
    for (const [size, widths] of [["100%", [320, 375, 768, 1440]], ["200%", [640, 1280]]]) {
      await page.evaluate((percent) => (document.documentElement.style.fontSize = percent), size);
      for (const width of widths) {
        await page.setViewportSize({ width, height: 800 });
        const beyond = await page.evaluate(() => document.documentElement.scrollWidth - innerWidth);
        assert.ok(beyond <= 0, `${path} at ${size}, ${width} wide: ${beyond} beyond`);
      }
    }
  }
  await page.goto(world.address);
  const height = () => page.locator(".name").first().evaluate((name) => parseFloat(getComputedStyle(name).fontSize));
  const usual = await height();
  await page.evaluate(() => (document.documentElement.style.fontSize = "200%"));
  assert.equal(await height(), 2 * usual);
  await page.context().close();
});

test("without scripts there is a sentence and no dead button", async () => {
  const page = await open("/", { javaScriptEnabled: false });
  assert.ok(await page.locator("noscript p").isVisible());
  assert.equal(await page.locator(":is(button, input):visible").count(), 0);
  assert.match(await page.locator(".times").first().innerText(), /^updated \d\d:\d\d\s·\sreloads \d\d:\d\d$/);
  await page.goto(`${world.address}/?view=engineer&kind=SalesSmallWidget`);
  await page.locator("[name=appearance]").selectOption("dark");
  await page.getByRole("button", { name: "Render" }).click();
  assert.match(page.url(), /appearance=dark/);
  await page.context().close();
});

test("on paper stand the cards and when they were renewed, on one page", async () => {
  const page = await open("/", { colorScheme: "dark" });
  await page.evaluate(() => dispatchEvent(new Event("beforeprint")));
  await page.emulateMedia({ media: "print" });
  assert.equal(await page.locator(":is(button, input, a:not(.card)):visible").count(), 0);
  const times = () => page.locator(".times").first().innerText();
  assert.match(await times(), /^updated \w+ \d+, \d{4}, \d+:\d\d/);
  const pdf = (await page.pdf({ format: "A4" })).toString("latin1");
  assert.equal(pdf.match(/\/Type\s*\/Page\b/g).length, 1);
  await page.evaluate(() => dispatchEvent(new Event("afterprint")));
  await page.emulateMedia({ media: "screen" });
  assert.match(await times(), /reloads/);
  await page.context().close();
});

test("in forced colours every card has four edges, and the choice is seen", async () => {
  const page = await open("/", { forcedColors: "active" });
  for (const card of await page.locator(".card").all()) {
    const style = await card.evaluate((element) => getComputedStyle(element).borderWidth);
    const [inner, outer] = [await card.locator("svg").boundingBox(), await card.boundingBox()];
    assert.equal(style, "1px");
    assert.ok(inner.x + inner.width <= outer.x + outer.width && inner.y + inner.height <= outer.y + outer.height);
  }
  const grounds = await page.locator(".appearance span").evaluateAll((all) => all.map((each) => getComputedStyle(each).backgroundColor));
  assert.equal(new Set(grounds).size, 2);
  await page.context().close();
});

test("a tap that no application takes is told", async () => {
  const page = await open("/");
  await page.locator('[data-kind="SalesSmallWidget"] a').click();
  await page.getByText(/No application here opens .*quillpad:\/\/Report/).waitFor({ timeout: 5000 });
  assert.equal(page.url(), `${world.address}/`);
  await page.context().close();
});

test("an unknown widget in the address leads back with a sentence", async () => {
  const page = await open("/?view=engineer&kind=nothing&lang=fr");
  assert.match(await page.locator("main").innerText(), /Il n’existe aucun widget de ce type/);
  await page.getByRole("link", { name: "Vue technique" }).click();
  assert.equal(await page.locator(".column").count(), 3);
  await page.context().close();
});
