// The home screen in a browser, on the real programs.
import assert from "node:assert/strict";
import { existsSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { setTimeout as pause } from "node:timers/promises";
import { World, browser, build, labelOf, open, openGallery, reload, shareWorld, until, world } from "./World.mjs";

const salesCard = '[data-kind="SalesSmallWidget"]';
const allKinds = ["SalesSmall", "PendingSmall", "UnpaidSmall", "PendingMedium", "UnpaidMedium"].map((name) => `${name}Widget`);

shareWorld();

test("nothing is asked of anybody else", async () => {
  const page = await open();
  const hosts = new Set();
  page.on("request", (request) => hosts.add(new URL(request.url()).origin));
  await page.reload();
  await openGallery(page);
  await page.goto(`${world.address}/?view=engineer&format=png`);
  hosts.delete("null"); // pictures that stand in the page
  assert.deepEqual([...hosts], [world.address]);
});

test("a change reaches every tab, also beyond a browser's connections, without moving the focus", async () => {
  const first = await open(); // the one that listens for all
  const tabs = await Promise.all(Array.from({ length: 7 }, () => open()));
  await tabs[0].locator(`${salesCard} a`).focus();
  for (const [currency, sign] of [["€ - EUR", "€"], ["$ - USD", "$"]]) {
    world.settings("currency", currency);
    await reload(tabs[6]);
    for (const tab of tabs) await until(`${sign} shows`, async () => (await labelOf(tab)).includes(sign));
    assert.equal(await tabs[0].evaluate(() => document.activeElement.closest("li")?.dataset.kind), "SalesSmallWidget");
    await first.close(); // another one takes over
  }
});

test("the appearance follows the system unless a person forces one", async () => {
  const page = await open();
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
  const [page, other] = [await open(), await open()];
  await openGallery(page);
  assert.equal(await page.locator("dialog svg:visible[role=img]").count(), 5);
  for (const [button, kinds] of [
    ["Remove Pending Estimates, small", allKinds.filter((kind) => kind !== "PendingSmallWidget")],
    ["Add Pending Estimates, small", allKinds],
  ]) {
    await page.getByRole("button", { name: button }).click();
    for (const tab of [page, other]) {
      const shown = () => tab.locator(".widget").evaluateAll((cards) => cards.map((card) => card.dataset.kind).join());
      await until(`${button} shows`, async () => (await shown()) === kinds.join());
    }
  }
  await page.keyboard.press("Escape");
  assert.equal(await page.getByRole("dialog").count(), 0);
});

test("a tap opens the application's screen, and that no application takes it is told", async () => {
  const page = await open();
  const opened = [];
  const devtools = await page.context().newCDPSession(page);
  await devtools.send("Page.enable");
  devtools.on("Page.frameRequestedNavigation", ({ url }) => opened.push(url));
  await page.locator(`${salesCard} a`).click();
  await page.getByText(/No application here opens .*quillpad:\/\/Report/).waitFor({ timeout: 5000 });
  assert.deepEqual(opened, ["quillpad://Report"]);
  assert.equal(page.url(), `${world.address}/`);
});

test("while the gateway is away a badge tells, every focus is seen, and keys do what a click does", async () => {
  const page = await open();
  await world.stop(world.gateway);
  await page.locator("#reload").focus();
  await page.keyboard.press("Space");
  await page.locator(`${salesCard} summary`).click();
  const cause = page.locator(`${salesCard} .badge p`);
  assert.match(await cause.innerText(), /last that could be fetched.*server/is);
  for (const width of [320, 360, 800, 1001, 1600]) {
    await page.setViewportSize({ width, height: 800 });
    const { left, right } = await cause.evaluate((element) => element.getBoundingClientRect().toJSON());
    assert.ok(left >= 0 && right <= width, `the cause is in sight, ${width} pixels wide`);
  }
  await page.locator("h1").click();
  assert.ok(!(await cause.isVisible()));

  await until("every card has its badge", async () => (await page.locator(".badge").count()) === 5);
  await page.reload();
  const wanted = [
    "auto", "open-gallery", "reload",
    ...allKinds.flatMap((kind) => ["card", "summary", "move", "again"].map((part) => `${kind} ${part}`)),
    "as-phone", "Engineer’s view", "Canvas",
  ];
  const reached = [];
  while (reached.length < wanted.length) {
    await page.keyboard.press("Tab");
    const { what, outline } = await page.evaluate(() => {
      const focused = document.activeElement;
      const kind = focused.closest("li")?.dataset.kind;
      const shown = focused.matches("input[type=radio]") ? focused.nextElementSibling : focused;
      return {
        what: kind ? `${kind} ${focused.className || focused.localName}` : focused.id || focused.value || focused.textContent,
        outline: parseFloat(getComputedStyle(shown).outlineWidth),
      };
    });
    reached.push(what);
    assert.ok(outline >= 2, `${what} shows its focus`);
  }
  assert.deepEqual(reached, wanted);

  await page.locator(`${salesCard} summary`).focus();
  for (const key of ["Enter", "Space"]) {
    await page.keyboard.press(key);
    assert.ok(await cause.isVisible());
    await page.keyboard.press("Tab");
    await page.keyboard.press("Escape"); // leads back to what it closes
    assert.ok(!(await cause.isVisible()));
    assert.equal(await page.evaluate(() => document.activeElement.localName), "summary");
  }
  await page.locator("#open-gallery").focus();
  await page.keyboard.press("Enter");
  await page.locator("dialog .offer").last().waitFor();
  await page.keyboard.press("Escape");
  await page.getByRole("dialog").waitFor({ state: "hidden" });
  assert.equal(await page.evaluate(() => document.activeElement.id), "open-gallery");

  await world.startGateway();
  await reload(page);
  await page.locator(".badge").first().waitFor({ state: "detached" });
});

test("nothing moves for a person who wants no motion", async () => {
  const page = await open();
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

test("an extension that is killed at any step of a refresh leaves no blank, no mark and no process", async () => {
  const page = await open();
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
  const killed = new Set();
  for (let kill = 0; kill < 30; ++kill) {
    await world.change("/reload");
    await pause(Math.random() * 15);
    const extension = world.extensionProcess();
    if (extension && process.kill(extension, "SIGKILL")) killed.add(extension);
    await world.untilLive();
  }
  await until("no badge is left", async () => (await page.locator(".badge, .notice:visible").count()) === 0);
  assert.deepEqual(await page.evaluate(() => window.blanks), []);
  assert.ok(killed.size > 15, `${killed.size} were killed`);
  for (const extension of killed) assert.ok(extension === world.extensionProcess() || !existsSync(`/proc/${extension}`));
  assert.ok(world.childProcesses().length <= 2, "the extension and the one of the engineer's view");
});

test("a tab that outlives the home screen shows the next run's figures, and later none as live", async () => {
  await world.restartHome(); // from now on each run goes through the same versions
  await world.untilLive();
  const page = await open();
  world.settings("currency", "€ - EUR");
  await world.restartHome();
  await until("the new currency shows", async () => (await labelOf(page)).includes("€"));

  await reload(page);
  await page.clock.install();
  await page.reload();
  await world.stop(world.home);
  await page.clock.fastForward("04:40");
  assert.match(await page.locator(`${salesCard} .times`).textContent(), /reloads in under 1 min/);
  for (const [time, status] of [["00:50", "live"], ["01:00", "stale"]]) {
    await page.clock.fastForward(time);
    assert.equal(await page.locator(salesCard).getAttribute("data-status"), status);
  }
});

test("any extension's widgets are shown live, whatever their names", async () => {
  const own = new World();
  own.extension = join(build, "tests", "clock_extension");
  try {
    await own.startHome();
    const page = await browser.newPage();
    await page.goto(own.entrance);
    const clock = page.locator('.home [data-kind="clock/Uhr & <Zeit>"]');
    await until("the clock is live", async () => (await clock.getAttribute("data-status")) === "live");
    assert.match(await labelOf(page, "clock/Uhr & <Zeit>"), /^Time of day,? \d\d:\d\d/);
    await openGallery(page);
    await page.getByRole("button", { name: "Remove" }).first().click();
    await clock.waitFor({ state: "detached" });
    await page.close();
  } finally {
    await own.end();
  }
});
