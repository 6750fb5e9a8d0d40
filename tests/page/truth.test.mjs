// What the page says of its figures and of itself while something is away, slow or new.
import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { beforeEach, test } from "node:test";
import { setTimeout as pause } from "node:timers/promises";
import { labelOf, open, openGallery, shareWorld, until, world } from "./World.mjs";

shareWorld();

const salesCard = '[data-kind="SalesSmallWidget"]';
let page;

// Whatever the test before left behind.
beforeEach(async () => {
  if (world.processes.has(world.gateway)) await world.stop(world.gateway);
  await world.startGateway();
  world.signIn();
  if (!world.processes.has(world.home)) await world.startHome();
  await world.change("/reload");
  await world.untilLive();
  page = await open();
});

const figures = () => labelOf(page);
const status = () => page.locator(salesCard).getAttribute("data-status");
const times = () => page.locator(`${salesCard} .times`).innerText();
const opacity = () => page.locator(`${salesCard} .card`).evaluate((card) => getComputedStyle(card).opacity);
const reload = () => page.locator("#reload").click();
const noAnswer = () => page.locator("#connection:visible").count();
const stateFile = () => readFileSync(join(world.folder, ".local/state/quillpad/home.json"), "utf8");

test("the last good figures stay while the gateway is away, and say so", async () => {
  const good = await figures();
  await world.stop(world.gateway);
  await reload();
  await until("the figures are kept", async () => (await status()) === "stale");
  const keptLine = /^as of \d+:\d\d.*, gateway not reachable since \d+:\d\d/;
  assert.match(await times(), keptLine);
  assert.equal(await figures(), good);
  assert.ok((await opacity()) < 1);
  assert.match(await page.locator(`${salesCard} .badge`).innerText(), /Kept figures/);

  await page.getByRole("switch", { name: "As the phone shows it" }).check();
  assert.equal(await status(), "fallback");
  assert.match(await figures(), /\$0/);
  assert.equal(await opacity(), "1");
  await page.reload();
  await until("the choice is remembered", async () => (await status()) === "fallback");
  await reload();
  await pause(300);
  assert.equal(await status(), "fallback", "it holds for the next answer too");
  await page.getByRole("switch", { name: "As the phone shows it" }).uncheck();
  assert.equal(await figures(), good);

  assert.deepEqual(await world.stop(world.home), { code: 0, signal: null });
  await world.startHome();
  const first = (await (await world.fetch("/")).text()).split('<li class="widget').slice(1);
  assert.ok(first.length >= 5 && first.every((card) => /class="card"[^>]*><svg/.test(card)), "the pictures are there before anything else");
  await page.goto(world.address);
  await until("the next run's answer is there", async () => /^as of.*reloads in/.test(await times()));
  assert.match(await times(), keptLine);
  assert.equal(await figures(), good);
  await page.goto(`${world.address}/?view=engineer&kind=SalesSmallWidget`);
  assert.match(await page.locator(".column svg:visible").last().getAttribute("aria-label"), /\$0/);

  await world.startGateway();
  await page.goto(world.address);
  await reload();
  await until("it is live again", async () => (await status()) === "live");
  assert.equal(await opacity(), "1");
});

test("after a sign-out nothing of the business is shown or kept", async () => {
  const amount = (await figures()).match(/\$[\d,.]+/)[0];
  const pageText = () => page.locator(".home").innerHTML();
  assert.ok((await pageText()).includes(amount));
  for (const change of [
    () => world.settings("sign-out"),
    () => world.settings("sign-in", "--business-id", "other", "--token-file", join(world.folder, "gateway", "token")),
  ]) {
    change(); // nobody clicks anything
    await until("its figures are gone", async () => !(await pageText()).includes(amount));
    await until("its figures are forgotten", () => !stateFile().includes(amount.slice(1).replace(",", "")));
    await world.stop(world.home, "SIGKILL");
    world.signIn(); // while nobody looks
    await world.startHome();
    await page.goto(world.address);
    await world.untilLive();
  }
});

test("without a sign-in one sentence names the command that signs in", async () => {
  world.settings("sign-out");
  const notice = page.locator("#notice");
  await until("it is said", async () => /^Nobody is signed in: .*quillpad-home settings sign-in --business-id/.test(await notice.innerText()));
  assert.equal(await status(), "placeholder");
  world.signIn();
  await until("it is live again", async () => (await status()) === "live");
  assert.equal(await notice.innerText(), "");
});

test("a slow answer is told after two seconds, and Reload works until it is done", async () => {
  await world.stop(world.gateway);
  await world.startGateway("delay=3000");
  const progress = () => page.locator("#reload").getAttribute("data-progress");
  await reload();
  await until("Reload is at work", async () => (await progress()) === "working");
  assert.doesNotMatch(await times(), /asking/);
  await until("the card says so", async () => /asking since \d+:\d\d:\d\d/.test(await times()), 2900);
  assert.equal(await status(), "live", "what it shows is still the newest");
  assert.equal(await page.locator("#reload-state").innerText(), "Reloading…");
  await until("Reload is done", async () => (await progress()) === "done");
  assert.doesNotMatch(await times(), /asking/);
  await page.locator('[data-kind="UnpaidSmallWidget"]').getByRole("button", { name: /^Reload .*, Small$/ }).click();
  await page.locator('.awaited[data-kind="UnpaidSmallWidget"]').waitFor();
  assert.equal(await page.locator(".awaited").count(), 1, "it alone is asked");
  await until("Reload is at rest", async () => (await progress()) === "");
});

test("a click that goes astray is done as soon as the home screen answers", async () => {
  await page.route("**/reload", (route) => route.abort(), { times: 1 });
  const again = page.waitForResponse("**/reload", { timeout: 5000 });
  await reload();
  await until("it is told", noAnswer);
  assert.equal((await again).status(), 204);
  await until("nothing is left of it", async () => (await noAnswer()) === 0);
});

test("a click on a page of the run before is done, not lost", async () => {
  await page.route("**/events*", (route) => route.abort()); // so that it hears nothing of the restart
  await page.reload();
  await openGallery(page);
  await world.restartHome();
  await page.locator('dialog [data-kind="UnpaidMediumWidget"]').click();
  await until("it is removed", async () => (await page.locator(".home .widget").count()) === 4);
  await world.change("/place?kind=UnpaidMediumWidget");
});

test("while the home screen does not answer it promises nothing, and the gallery says so", async () => {
  assert.match(await times(), /reloads in/);
  await world.stop(world.home);
  await until("it is told", noAnswer);
  assert.doesNotMatch(await times(), /reload/);
  assert.match(await times(), /now|ago/);
  await page.getByRole("button", { name: "Widgets" }).click();
  const gallery = page.getByRole("dialog");
  await gallery.getByText("does not answer").waitFor();
});

test("a gallery that is slow to come says so, and is asked for until it comes", async () => {
  const requests = [];
  await page.route("**/gallery*", (route) => requests.push(route));
  await page.getByRole("button", { name: "Widgets" }).click();
  await page.getByRole("dialog").getByText("Asking for the widgets…").waitFor();
  await requests[0].abort();
  await page.getByRole("dialog").getByText("does not answer").waitFor();
  await until("it asks again", () => requests.length === 2);
  await requests[1].continue();
  await page.locator("dialog .offer svg:visible").last().waitFor();
  assert.equal(await page.locator("#gallery-state").innerText(), "");
});

test("restarts neither move the page nor let the banner blink", async () => {
  await world.stop(world.home);
  const broken = join(world.folder, "broken");
  writeFileSync(broken, "#!/bin/sh\nsleep 0.3\nexit 1\n", { mode: 0o755 });
  const whole = world.extension;
  world.extension = broken;
  await world.startHome();
  await page.goto(world.address);
  await page.evaluate(() => {
    window.seen = [];
    const look = () => {
      const { top } = document.querySelector(".widget").getBoundingClientRect();
      const says = document.getElementById("notice").textContent;
      const last = window.seen.at(-1);
      if (last?.top !== top || last?.says !== says) window.seen.push({ top, says });
      requestAnimationFrame(look);
    };
    look();
  });
  const printed = async () => (await world.fetch("/?view=process")).text();
  await until("it was started again twice, and ended", async () => (await printed()).split("exit status 1").length > 3);
  const seen = await page.evaluate(() => window.seen);
  assert.equal(new Set(seen.map(({ top }) => top)).size, 1, "the cards stay where they are");
  const texts = seen.map(({ says }) => says);
  assert.match(texts.at(-1), /exit status 1.*started again/);
  assert.ok(texts.length <= 2, `it blinks: ${texts.join(" | ")}`);
  await world.stop(world.home);
  world.extension = whole;
});
