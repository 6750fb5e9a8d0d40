// The page in a browser, on the real programs.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join } from "node:path";
import { after, afterEach, before, beforeEach, test } from "node:test";
import { setTimeout as pause } from "node:timers/promises";
import { World, build, launchBrowser, until } from "./World.mjs";

const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
const salesCard = '[data-kind="SalesSmallWidget"]';

let world, browser, context, problems;

before(async () => {
  world = await World.start();
  browser = await launchBrowser();
});

after(async () => {
  await browser?.close();
  await world?.end();
});

beforeEach(async () => {
  context = await world.newContext(browser);
  problems = [];
  context.on("console", (message) => message.type() === "error" && problems.push(message.text()));
  context.on("weberror", (failure) => problems.push(String(failure.error())));
  await until("all widgets are live", () => world.allLive());
});

// Whatever a page does, it breaks no content policy and leaves no error on the console.
afterEach(async () => {
  await context.close();
  assert.deepEqual(problems, []);
});

async function openPage(path = "/") {
  const page = await context.newPage();
  await page.goto(world.address + path);
  return page;
}

// What is painted of the widget: its label for readers, in the appearance that shows.
const label = (page, card) => page.locator(`${card} svg:visible`).first().getAttribute("aria-label");

async function expectNoViolation(page) {
  await page.evaluate(axe);
  const { violations } = await page.evaluate(() => axe.run());
  assert.deepEqual(
    violations.map(({ id, nodes }) => `${id}: ${nodes.map((node) => node.html.slice(0, 120))}`),
    [],
  );
}

test("the first answer alone paints every widget", async () => {
  const withoutScripts = await world.newContext(browser, { javaScriptEnabled: false });
  const page = await withoutScripts.newPage();
  const requests = [];
  page.on("request", (request) => requests.push(request.url()));
  await page.goto(world.address);
  assert.deepEqual(requests.filter((url) => !url.startsWith("data:")), [`${world.address}/`]);
  assert.equal(await page.locator(".widget").count(), 5);
  for (const card of await page.locator(".card svg:visible").all()) {
    const { width, height } = await card.boundingBox();
    assert.ok([158, 338].includes(width) && height === 158, `${width} x ${height}`);
  }
  await withoutScripts.close();
});

test("nothing is asked of anybody else", async () => {
  const page = await context.newPage();
  const hosts = new Set();
  page.on("request", (request) => hosts.add(new URL(request.url()).origin));
  await page.goto(world.address);
  await page.getByRole("button", { name: "Widgets" }).click();
  await page.locator("dialog svg:visible").first().waitFor();
  await page.goto(`${world.address}/?view=engineer&format=png`);
  hosts.delete("null"); // pictures that stand in the page
  assert.deepEqual([...hosts], [world.address]);
});

test("a change reaches every open tab at once, without moving the focus", async () => {
  const tabs = [await openPage(), await openPage(), await openPage()];
  await tabs[2].locator(`${salesCard} a`).focus();
  world.settings("currency", "€ - EUR");
  await tabs[0].getByRole("button", { name: "Reload", exact: true }).click();
  for (const tab of tabs) {
    await until("the new currency shows", async () => (await label(tab, salesCard)).includes("€"));
  }
  const focused = await tabs[2].evaluate(() => document.activeElement.closest("li")?.dataset.kind);
  assert.equal(focused, "SalesSmallWidget");
  world.settings("currency", "$ - USD");
  await tabs[1].getByRole("button", { name: "Reload", exact: true }).click();
  await until("the old currency shows", async () => (await label(tabs[2], salesCard)).includes("$"));
});

test("many tabs stay live beyond the connections that a browser opens", async () => {
  const tabs = [];
  for (let count = 0; count < 12; ++count) tabs.push(await openPage());
  world.settings("currency", "£ - GBP");
  await tabs[11].getByRole("button", { name: "Reload", exact: true }).click();
  for (const tab of tabs) {
    await until("the new currency shows", async () => (await label(tab, salesCard)).includes("£"));
  }
  await tabs[0].close(); // whichever tab listened, another one takes over
  world.settings("currency", "$ - USD");
  await tabs[11].getByRole("button", { name: "Reload", exact: true }).click();
  for (const tab of tabs.slice(1)) {
    await until("the old currency shows", async () => (await label(tab, salesCard)).includes("$"));
  }
});

test("the appearance follows the system unless a person forces one", async () => {
  const page = await openPage();
  const ground = () => page.locator(`${salesCard} svg rect`).first().evaluate((rect) => getComputedStyle(rect).fill);
  await page.emulateMedia({ colorScheme: "light" });
  const light = await ground();
  await page.emulateMedia({ colorScheme: "dark" });
  const dark = await ground();
  assert.notEqual(dark, light);
  await page.getByRole("radio", { name: "Light" }).check({ force: true });
  assert.equal(await ground(), light);
  await page.reload();
  assert.equal(await ground(), light);
  await page.getByRole("radio", { name: "Auto" }).check({ force: true });
  assert.equal(await ground(), dark);
});

test("widgets are removed and added in the gallery and keep the catalogue's order", async () => {
  const [page, other] = [await openPage(), await openPage()];
  const kinds = (tab) => tab.locator(".widget").evaluateAll((cards) => cards.map((card) => card.dataset.kind));
  const all = await kinds(page);
  await page.getByRole("button", { name: "Widgets" }).click();
  await page.locator("dialog .offer").last().waitFor();
  assert.equal(await page.locator("dialog svg:visible[role=img]").count(), 5);
  await page.getByRole("button", { name: "Remove Pending Estimates, small" }).click();
  for (const tab of [page, other]) {
    await until("it is gone", async () => (await kinds(tab)).length === 4);
  }
  await page.getByRole("button", { name: "Add Pending Estimates, small" }).click();
  for (const tab of [page, other]) {
    await until("it is back", async () => (await kinds(tab)).length === 5);
    assert.deepEqual(await kinds(tab), all);
  }
  await page.keyboard.press("Escape");
  assert.equal(await page.getByRole("dialog").count(), 0);
});

test("a tap leads to the application's screen", async () => {
  const page = await openPage();
  const links = await page.locator("a.card").evaluateAll((cards) => cards.map((card) => card.getAttribute("href")));
  assert.deepEqual(links, [
    "quillpad://Report",
    "quillpad://EstimatesPendingList",
    "quillpad://invoiceUnpaidList",
    "quillpad://EstimatesPendingList",
    "quillpad://invoiceUnpaidList",
  ]);
  const opened = [];
  const devtools = await context.newCDPSession(page);
  await devtools.send("Page.enable");
  devtools.on("Page.frameRequestedNavigation", ({ url }) => opened.push(url));
  await page.locator(`${salesCard} a`).click();
  await until("the link is followed", () => opened.includes("quillpad://Report"));
});

test("a badge tells that the gateway is away, and goes when it is back", async () => {
  const page = await openPage();
  await world.stop(world.gateway);
  await page.getByRole("button", { name: "Reload", exact: true }).click();
  const badge = page.locator(`${salesCard} .badge`);
  await badge.locator("summary").click();
  assert.match(await badge.locator("p").innerText(), /last that could be fetched.*server/is);
  for (const width of [320, 360, 800, 1001, 1600]) {
    await page.setViewportSize({ width, height: 800 });
    const { left, right } = await badge.locator("p").evaluate((cause) => cause.getBoundingClientRect().toJSON());
    assert.ok(left >= 0 && right <= width, `the cause is in sight, ${width} pixels wide`);
  }
  await expectNoViolation(page);
  await page.keyboard.press("Escape");
  assert.equal(await badge.locator("p").isVisible(), false);
  await world.startGateway();
  await page.getByRole("button", { name: "Reload", exact: true }).click();
  await badge.waitFor({ state: "detached" });
});

test("everything is reached with the keyboard alone", async () => {
  const page = await openPage();
  const reached = [];
  for (let steps = 0; steps < 20; ++steps) {
    await page.keyboard.press("Tab");
    reached.push(
      await page.evaluate(() => {
        const { activeElement: focused } = document;
        const kind = focused.closest("li")?.dataset.kind;
        return kind ? `${kind} ${focused.className}` : focused.id || focused.value || focused.textContent.trim();
      }),
    );
  }
  const kinds = ["SalesSmall", "PendingSmall", "UnpaidSmall", "PendingMedium", "UnpaidMedium"];
  assert.deepEqual(reached, [
    "auto",
    "open-gallery",
    "reload",
    ...kinds.flatMap((kind) => [`${kind}Widget card`, `${kind}Widget move`, `${kind}Widget again`]),
    "as-phone",
    "Engineer’s view",
  ]);
});

for (const colorScheme of ["light", "dark"]) {
  test(`the accessibility audit finds nothing in ${colorScheme} appearance`, async () => {
    const page = await openPage();
    await page.emulateMedia({ colorScheme });
    await expectNoViolation(page);
    await page.getByRole("button", { name: "Widgets" }).click();
    await page.locator("dialog .offer").last().waitFor();
    await expectNoViolation(page);
    await page.goto(`${world.address}/?view=engineer&boxes=1`);
    await expectNoViolation(page);
  });
}

test("every focus is seen, and keys do what a click does", async () => {
  await world.stop(world.gateway);
  const page = await openPage();
  await page.getByRole("button", { name: "Reload", exact: true }).focus();
  await page.keyboard.press("Space");
  await page.locator(".badge").last().waitFor();

  await page.locator("body").evaluate(() => document.activeElement.blur());
  for (let steps = 0; steps < 20; ++steps) {
    await page.keyboard.press("Tab");
    const seen = await page.evaluate(() => {
      const focused = document.activeElement;
      const shown = focused.matches("input[type=radio]") ? focused.nextElementSibling : focused;
      return { width: parseFloat(getComputedStyle(shown).outlineWidth), what: focused.outerHTML.slice(0, 80) };
    });
    assert.ok(seen.width >= 2, `${seen.what} shows its focus`);
  }

  const summary = page.locator(`${salesCard} summary`);
  const cause = page.locator(`${salesCard} .badge p`);
  await summary.focus();
  for (const key of ["Enter", "Space"]) {
    await page.keyboard.press(key);
    assert.ok(await cause.isVisible());
    await page.keyboard.press("Escape");
    assert.ok(!(await cause.isVisible()));
    assert.ok(await summary.evaluate((element) => element === document.activeElement));
  }

  await page.getByRole("button", { name: "Widgets" }).focus();
  await page.keyboard.press("Enter");
  await page.locator("dialog .offer").last().waitFor();
  await page.keyboard.press("Escape");
  await page.getByRole("dialog").waitFor({ state: "hidden" });
  assert.equal(await page.evaluate(() => document.activeElement.id), "open-gallery");

  await world.startGateway();
  await page.getByRole("button", { name: "Reload", exact: true }).click();
});

test("nothing moves for a person who wants no motion", async () => {
  const page = await openPage();
  const motion = () =>
    page.locator(`${salesCard} .card`).evaluate((card) => {
      card.parentElement.classList.add("fresh");
      const { animationName, transitionDuration } = getComputedStyle(card);
      return { animationName, transitionDuration };
    });
  assert.equal((await motion()).animationName, "settle");
  await page.emulateMedia({ reducedMotion: "reduce" });
  assert.deepEqual(await motion(), { animationName: "none", transitionDuration: "0s" });
});

test("nothing is cut off or scrolls sideways in narrow and wide windows", async () => {
  const page = await openPage();
  const overflow = (selector) =>
    page.locator(selector).evaluate((element) => element.scrollWidth - element.clientWidth);
  const widths = [320, 360, 414, 768, 1000, 1600];
  for (const path of ["/", "/?view=engineer&kind=SalesSmallWidget&entry=%7B"]) {
    await page.goto(world.address + path);
    for (const width of widths) {
      await page.setViewportSize({ width, height: 800 });
      assert.equal(await overflow("html"), 0, `${path}, ${width} pixels wide`);
    }
  }
  await page.goto(world.address);
  await page.getByRole("button", { name: "Widgets" }).click();
  await page.locator("dialog .offer").last().waitFor();
  for (const width of widths) {
    await page.setViewportSize({ width, height: 800 });
    assert.equal(await overflow("dialog"), 0, `the gallery, ${width} pixels wide`);
  }
});

test("the engineer's view shows every choice that its address makes", async () => {
  const page = await openPage(
    "/?view=engineer&kind=UnpaidMediumWidget&screen=430x932&appearance=dark&scale=3&format=png&language=de",
  );
  const pictures = page.locator(".column img");
  assert.equal(await pictures.count(), 3);
  const { width, height } = await pictures.first().boundingBox();
  assert.deepEqual([width, height], [364, 170]);
  assert.equal(await pictures.first().evaluate((image) => image.naturalWidth), 364 * 3);
  assert.equal(
    await pictures.first().getAttribute("alt"), "UnpaidMediumWidget", "a placeholder shows no texts");
  assert.match(await pictures.nth(1).getAttribute("alt"), /Unbezahlt|Offene/i);
});

test("an entry typed by hand is rendered at once and stands in the address", async () => {
  const page = await openPage("/?view=engineer&kind=UnpaidSmallWidget");
  const entry = page.getByLabel("Entry of your own");
  const typed = (figure) =>
    JSON.stringify({
      date: "2026-03-07T09:05:03.250Z",
      data: { salesMonth: "0", unpaidInvoices: figure, pendingEstimates: "0" },
    });
  await entry.fill(typed("<b>42</b>"));
  const last = page.locator(".column").last();
  await until("the figure shows", async () => (await last.innerText()).includes("Your entry"));
  await until("the figure is text", async () =>
    (await last.locator("svg").first().getAttribute("aria-label"))?.includes("<b>42</b>"),
  );
  const address = page.url();
  await page.goto("about:blank");
  await page.goto(address);
  assert.match(await last.locator("svg").first().getAttribute("aria-label"), /42/);

  await entry.fill("{");
  await until("the error shows", async () => (await last.innerText()).includes("it is not JSON"));
});

test("a link reproduces the choices that were made by hand", async () => {
  const page = await openPage("/?view=engineer");
  await page.locator("[name=kind]").selectOption("PendingMediumWidget");
  await until("the widget changes", () => page.url().includes("kind=PendingMediumWidget"));
  await page.locator("[name=screen]").selectOption("320x568");
  await page.locator("[name=language]").selectOption("fr");
  await page.locator("[name=appearance]").selectOption("dark");
  await page.locator("[name=state]").selectOption("snapshot");
  await page.locator("[name=boxes]").check();
  await until("every choice stands in the address", () => /fr.*dark.*snapshot.*boxes=1/.test(page.url()));
  const shown = async (tab) => ({
    title: await tab.title(),
    choices: await tab.locator("#choices").evaluate((form) => [...new FormData(form)]),
    captions: await tab.locator("figcaption").allInnerTexts(),
    pictures: await tab.locator(".shown svg[role=img]").evaluateAll((all) => all.map((each) => each.ariaLabel)),
    boxes: await tab.locator(".boxes rect").count(),
    tree: await tab.locator("pre").first().innerText(),
  });
  const there = await shown(page);
  assert.ok(there.boxes > 0 && there.captions.length === 3 && there.captions[0].startsWith("Dark, 292 × 141"));
  assert.deepEqual(await shown(await openPage(page.url().slice(world.address.length))), there);
});

test("names with markup are text in picture, alternative, tree and list", async () => {
  const names = ["<script>hurt=1</script>", "<img src=x onerror=hurt=1>", '"></svg><b onfocus="hurt=1">'];
  const records = names.map((clientName, no) => ({ no: String(no), clientName, total: 1 }));
  const entry = { date: "2026-03-07T09:05:03.250Z", data: { records } };
  for (const format of ["svg", "png"]) {
    const page = await openPage(
      `/?view=engineer&kind=UnpaidMediumWidget&state=entry&boxes=1&format=${format}` +
        `&entry=${encodeURIComponent(JSON.stringify(entry))}`,
    );
    const picture = page.locator(".column").last().locator(".card > :first-child").first();
    const said = (await picture.getAttribute("aria-label")) ?? (await picture.getAttribute("alt"));
    for (const name of names) assert.ok(said.includes(name), said);
    for (const text of await page.locator("pre").allInnerTexts()) assert.ok(text.includes("<script>"));
    assert.equal(await page.locator("#results :is(script, b, img[src=x])").count(), 0);
    assert.equal(await page.evaluate(() => window.hurt), undefined);
  }
});

test("an entry that ends the extension does no harm to the home screen", async () => {
  const entry = encodeURIComponent('{"date":"2026-03-07T09:05:03.250Z","data":{}}');
  const running = world.extensionProcess();
  const page = await openPage(`/?view=engineer&kind=SalesSmallWidget&entry=${entry}`);
  assert.match(await page.locator(".column").last().innerText(), /The extension ended/);
  assert.equal(world.extensionProcess(), running);
  assert.ok(await world.allLive());
});

test("the pictures can be kept as files", async () => {
  const page = await openPage("/?view=engineer&kind=SalesSmallWidget");
  for (const [name, start] of [["PNG", "\x89PNG"], ["SVG", "<svg"]]) {
    const waiting = page.waitForEvent("download");
    await page.getByRole("link", { name, exact: true }).first().click();
    const download = await waiting;
    assert.match(download.suggestedFilename(), /^SalesSmallWidget-.*\.(png|svg)$/);
    assert.ok(readFileSync(await download.path(), "latin1").startsWith(start));
  }
});

test("a page never shows a blank card while its extension is killed again and again", async () => {
  const page = await openPage();
  await page.evaluate(() => {
    window.blanks = [];
    const look = () => {
      const cards = [...document.querySelectorAll(".widget .card")];
      const painted = cards.filter((card) => card.querySelectorAll("svg path").length > 3 && card.offsetHeight >= 158);
      if (painted.length !== 5) window.blanks.push(`${painted.length} of ${cards.length} at ${performance.now()}`);
      requestAnimationFrame(look);
    };
    look();
  });
  for (let kill = 0; kill < 30; ++kill) {
    await page.getByRole("button", { name: "Reload", exact: true }).click();
    await pause(Math.random() * 15);
    const extension = world.extensionProcess();
    if (extension) process.kill(extension, "SIGKILL");
    await until("the pictures are live again", () => world.allLive());
  }
  await until("no badge is left", async () => (await page.locator(".badge, .notice:visible").count()) === 0);
  assert.deepEqual(await page.evaluate(() => window.blanks), []);
  assert.ok(world.childProcesses().length <= 2, "the extension and the one of the engineer's view");
});

test("a tab that outlives the home screen shows the next run's figures", async () => {
  const own = await World.start();
  try {
    await until("all widgets are live", () => own.allLive());
    own.port = new URL(own.address).port;
    const restart = async () => {
      await own.stop(own.home);
      await own.startHome();
      await until("all widgets are live", () => own.allLive());
    };
    await restart(); // from now on each run goes through the same versions
    const page = await browser.newPage();
    await page.goto(own.entrance);
    own.settings("currency", "€ - EUR");
    await restart();
    await until("the new currency shows", async () => (await label(page, salesCard)).includes("€"));
    await page.close();
  } finally {
    await own.end();
  }
});

test("any extension's widgets are shown live", async () => {
  const own = new World();
  own.extension = join(build, "tests", "clock_extension");
  try {
    await own.startHome();
    const page = await context.newPage();
    await page.goto(own.entrance);
    const clock = page.locator('[data-kind="clock/Uhr & <Zeit>"]');
    await until("the clock is live", async () => (await clock.getAttribute("data-status")) === "live");
    assert.match(await clock.locator("svg:visible").first().getAttribute("aria-label"), /^Time of day,? \d\d:\d\d/);
    await page.goto(`${own.address}/?view=engineer`);
    assert.equal(await page.locator(".column svg[role=img]:visible").count() >= 3, true);
    await page.close();
  } finally {
    await own.end();
  }
});

test("a card is not live a minute after its reload time, even where the home screen is gone", async () => {
  const own = await World.start();
  try {
    await until("all widgets are live", () => own.allLive());
    const page = await browser.newPage();
    await page.clock.install();
    await page.goto(own.entrance);
    await own.stop(own.home);
    await page.clock.fastForward("04:40");
    assert.match(await page.locator(`${salesCard} .times`).textContent(), /reloads in under 1 min/);
    await page.clock.fastForward("00:50");
    assert.equal(await page.locator(salesCard).getAttribute("data-status"), "live");
    await page.clock.fastForward("01:00");
    assert.equal(await page.locator(salesCard).getAttribute("data-status"), "stale");
    await page.close();
  } finally {
    await own.end();
  }
});
