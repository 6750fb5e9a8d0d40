// The pages for everybody: whatever the eyes, hands, paper, letters, language and browser's settings.
import assert from "node:assert/strict";
import { test } from "node:test";
import { World, audit, open, openGallery, shareWorld, until, world } from "./World.mjs";

shareWorld({ start: () => World.start({ locale: "de_DE.UTF-8" }) });

const views = {
  "home screen": "/?lang=ar",
  gallery: "/",
  wall: "/?view=wall",
  "engineer's view": "/?view=engineer&kind=UnpaidMediumWidget&screen=430x932&boxes=1&entry=%7B&lang=de",
  canvas: "/?view=canvas&kind=SalesSmallWidget&entry=snapshot",
  "extension's page": "/?view=process",
  "way back": "/?view=engineer&kind=nothing",
};

for (const [view, path] of Object.entries(views)) {
  test(`the accessibility audit finds nothing in the ${view}, and nothing is hidden by large text or a narrow window`, async () => {
    const page = await open(path, { reducedMotion: "reduce" });
    if (view === "gallery") await openGallery(page);
    await audit(page);
    await page.emulateMedia({ colorScheme: "dark" });
    await audit(page, ["color-contrast"]);
    for (const [size, widths] of [["100%", [320, 375, 414, 768, 1000, 1600]], ["200%", [640, 1280]]]) {
      await page.evaluate((percent) => (document.documentElement.style.fontSize = percent), size);
      for (const width of widths) {
        await page.setViewportSize({ width, height: 800 });
        const beyond = () => [...document.querySelectorAll("html, dialog[open]")].map((each) => each.scrollWidth - each.clientWidth);
        assert.ok(Math.max(...(await page.evaluate(beyond))) <= 0, `${size}, ${width} wide`);
      }
    }
  });
}

test("text grows with the browser's", async () => {
  const page = await open();
  const height = () => page.locator(".name").first().evaluate((name) => parseFloat(getComputedStyle(name).fontSize));
  const usual = await height();
  await page.evaluate(() => (document.documentElement.style.fontSize = "200%"));
  assert.equal(await height(), 2 * usual);
});

test("without scripts the first answer alone paints every widget, with a sentence and no dead button", async () => {
  const page = await open("/", { javaScriptEnabled: false });
  const requests = [];
  page.on("request", (request) => request.url().startsWith("data:") || requests.push(request.url()));
  await page.reload();
  assert.deepEqual(requests, [`${world.address}/`]);
  const boxes = await page.locator(".card svg:visible").evaluateAll((all) => all.map((svg) => svg.getBoundingClientRect().toJSON()));
  assert.deepEqual(boxes.map(({ width, height }) => `${width}x${height}`), ["158x158", "158x158", "158x158", "338x158", "338x158"]);
  assert.ok(await page.locator("noscript p").isVisible());
  assert.equal(await page.locator(":is(button, input):visible").count(), 0);
  assert.match(await page.locator(".times").first().innerText(), /^updated \d\d:\d\d\s·\sreloads \d\d:\d\d$/);
  await page.goto(`${world.address}/?view=engineer&kind=SalesSmallWidget`);
  await page.locator("[name=appearance]").selectOption("dark");
  await page.getByRole("button", { name: "Render" }).click();
  assert.match(page.url(), /appearance=dark/);
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
});

test("the page speaks the browser's language or the address's, and the names stay in their own", async () => {
  for (const [locale, path, lang, dir, reload] of [
    ["ar-EG", "/", "ar", "rtl", "إعادة التحميل"],
    ["zh-CN", "/", "zh-Hans", "ltr", "重新载入"],
    ["ko-KR", "/", "en", "ltr", "Reload"],
    ["de-DE", "/?lang=fr", "fr", "ltr", "Actualiser"],
    ["de-DE", "/?lang=xx", "de", "ltr", "Neu laden"],
  ]) {
    const page = await open(path, { locale });
    const spoken = await page.locator("html").evaluate(({ lang, dir }) => [lang, dir]);
    assert.deepEqual([...spoken, await page.locator("#reload .label").innerText()], [lang, dir, reload]);
    assert.equal(await page.locator('.name span[lang="de"][dir="ltr"]').count(), 5);
  }
});

test("tabs of several languages are live side by side, each in its own, and its links keep it", async () => {
  const tabs = [];
  for (const language of ["de", "ar", "ja"]) tabs.push(await open(`/?lang=${language}`));
  for (const what of ["remove", "place"]) await world.change(`/${what}?kind=UnpaidMediumWidget`);
  for (const [index, words] of ["verschieben", "نقل", "を移動"].entries()) {
    const handle = tabs[index].locator('[data-kind="UnpaidMediumWidget"] .move');
    await until("the card is back", async () => (await handle.count()) === 1);
    assert.ok((await handle.getAttribute("aria-label")).includes(words));
  }
  await tabs[1].getByRole("link", { name: "عرض المهندس" }).click();
  assert.equal(await tabs[1].locator("html").getAttribute("lang"), "ar");
  await tabs[1].locator("[name=scale]").selectOption("3");
  await until("a choice does too", () => tabs[1].url().includes("lang=ar"));
});

test("an unknown widget in the address leads back with a sentence", async () => {
  const page = await open("/?view=engineer&kind=nothing&lang=fr");
  assert.match(await page.locator("main").innerText(), /Il n’existe aucun widget de ce type/);
  await page.getByRole("link", { name: "Vue technique" }).click();
  assert.equal(await page.locator(".column").count(), 3);
});
