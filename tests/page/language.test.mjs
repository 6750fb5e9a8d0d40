// The page in the languages that it speaks, on the real programs.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { World, launchBrowser, until } from "./World.mjs";

let world, browser;

before(async () => {
  world = await World.start("de_DE.UTF-8");
  browser = await launchBrowser();
  await until("all widgets are live", () => world.allLive());
});

after(async () => {
  await browser?.close();
  await world?.end();
});

const spoken = (page) =>
  page.evaluate(() => ({
    page: document.documentElement.lang,
    direction: document.documentElement.dir,
    reload: document.getElementById("reload").textContent.trim(),
    name: [document.querySelector(".name span").lang, document.querySelector(".name span").dir].join(" "),
  }));

for (const [locale, path, page, direction, reload] of [
  ["en-GB", "/", "en", "ltr", "Reload"],
  ["ar-EG", "/", "ar", "rtl", "إعادة التحميل"],
  ["de-AT", "/", "de", "ltr", "Neu laden"],
  ["es-MX", "/", "es", "ltr", "Recargar"],
  ["fr-CA", "/", "fr", "ltr", "Actualiser"],
  ["ja-JP", "/", "ja", "ltr", "再読み込み"],
  ["zh-CN", "/", "zh-Hans", "ltr", "重新载入"],
  ["ko-KR", "/", "en", "ltr", "Reload"],
  ["de-DE", "/?lang=fr", "fr", "ltr", "Actualiser"],
  ["de-DE", "/?lang=xx", "de", "ltr", "Neu laden"],
]) {
  test(`a browser in ${locale} sees ${path} in ${page}, and the names in their own language`, async () => {
    const tab = await (await world.newContext(browser, { locale })).newPage();
    await tab.goto(world.address + path);
    assert.deepEqual(await spoken(tab), { page, direction, reload, name: "de ltr" });
    await tab.context().close();
  });
}

test("tabs of several languages are live side by side, each in its own", async () => {
  const context = await world.newContext(browser, { locale: "de-DE" });
  const tabs = [];
  for (const language of ["de", "ar", "ja"]) {
    tabs.push(await context.newPage());
    await tabs.at(-1).goto(`${world.address}/?lang=${language}`);
  }
  await world.change("/remove?kind=UnpaidMediumWidget", await world.pageToken());
  await world.change("/place?kind=UnpaidMediumWidget", await world.pageToken());
  for (const [index, words] of ["verschieben", "نقل", "を移動"].entries()) {
    const handle = tabs[index].locator('[data-kind="UnpaidMediumWidget"] .move');
    await until("the card is back", async () => (await handle.count()) === 1);
    assert.ok((await handle.getAttribute("aria-label")).includes(words));
  }
  await tabs[1].getByRole("link", { name: "عرض المهندس" }).click();
  assert.equal(await tabs[1].locator("html").getAttribute("lang"), "ar", "a link keeps the language");
  await tabs[1].locator("[name=scale]").selectOption("3");
  await until("a choice does too", () => tabs[1].url().includes("lang=ar"));
  await context.close();
});
