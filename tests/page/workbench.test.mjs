// The canvas, the extension's page and the wall's line, in the languages that the pages speak.
import assert from "node:assert/strict";
import { test } from "node:test";
import { open, shareWorld, until, world } from "./World.mjs";

shareWorld();

const words = (page) => page.locator("h1, h2:not(.variants *), h3:not(.row *), .tool, .cell span").allTextContents();

for (const view of ["canvas", "process"]) {
  test(`the ${view} page says everything in the language that its links keep`, async () => {
    const page = await open(`/?view=${view}&entry=rows-one`);
    const english = await words(page);
    for (const [language, direction] of [["ar", "rtl"], ["de", "ltr"], ["ja", "ltr"]]) {
      await page.goto(`${world.address}/?view=${view}&entry=rows-one&lang=${language}`);
      const shown = await page.locator("html").evaluate(({ lang, dir, scrollWidth }) => ({ lang, dir, fits: scrollWidth <= innerWidth }));
      assert.deepEqual(shown, { lang: language, dir: direction, fits: true });
      const translated = await words(page);
      assert.equal(translated.length, english.length);
      for (const [at, text] of translated.entries()) assert.ok(!text || text !== english[at], `${language}: ${text}`);
    }
    assert.equal(await page.locator("a.tool:not([download]):not([href*='lang=ja'])").count(), 0);
    if (view === "process") return;
    await page.locator("[name=screen]").selectOption("all");
    await page.waitForURL(/lang=ja.*screen=all/);
    assert.equal(await page.locator(".count").textContent(), "280枚");
  });
}

test("a form says what its address asks for, also where there is nothing of the kind", async () => {
  for (const [view, names] of [["canvas", ["kind", "entry", "language"]], ["engineer", ["start"]]]) {
    const page = await open(`/?view=${view}&${names.map((name) => `${name}=<b>`).join("&")}`);
    for (const name of names) assert.equal(await page.locator(`[name=${name}]`).inputValue(), "<b>");
    if (view === "canvas") assert.equal(await page.locator(".count").textContent(), "0 pictures");
  }
});

test("times, bytes and counts are written as people of the language do, and stay so", async () => {
  const page = await open();
  for (const [language, transfer] of [["de", /Status 200, \d+ ms, 68 Byte gesendet/], ["ar", /الحالة 200، [\d٠-٩]+ .*أُرسل/]]) {
    await page.goto(`${world.address}/?view=process&lang=${language}`);
    assert.match(await page.locator("#process").innerText(), transfer);
    const clock = new Intl.DateTimeFormat(language, { timeStyle: "medium" });
    const [said, moment] = await page.locator("#process time").first().evaluate((time) => [time.textContent, time.dateTime]);
    assert.equal(said, clock.format(new Date(moment)));
  }
  process.kill(world.extensionProcess(), "SIGKILL");
  await page.getByText("الإضافة (signal 9, Killed)").waitFor();
  await until("its figures are said anew", async () => /^[\d:٠-٩]+ [صم]$/.test(await page.locator("#process time").first().innerText()));
});

test("the wall says since when the figures are kept", async () => {
  await until("all are live", () => world.allLive());
  const page = await open("/?view=wall");
  await page.getByText(/^Live, /).waitFor();
  await page.setViewportSize({ width: 320, height: 568 });
  await world.stop(world.gateway);
  await world.change("/reload");
  for (const [language, said] of [
    ["en", /^Kept figures, as of \d+:\d\d\s[AP]M$/],
    ["de", /^Behaltene Zahlen, Stand \d\d:\d\d$/],
    ["ar", /^أرقام محفوظة، بتاريخ .+$/],
  ]) {
    await page.goto(`${world.address}/?view=wall&lang=${language}`);
    await until("it is said", async () => said.test(await page.locator(".line").innerText()));
    assert.ok(await page.locator(".line").evaluate((line) => line.scrollWidth <= line.clientWidth), "the line is cut");
    const { x, width } = await page.locator(".home").boundingBox();
    assert.ok(Math.abs(x + width / 2 - 160) < 2, `the cards stand aside: ${x}, ${width}`);
  }
});
