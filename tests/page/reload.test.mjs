// The extension's program and its resources replaced while pages look on.
import assert from "node:assert/strict";
import { closeSync, existsSync, mkdirSync, openSync, readFileSync, renameSync, rmSync, writeFileSync, writeSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { setTimeout as pause } from "node:timers/promises";
import { World, build, isSanitized, open, openGallery, shareWorld, until, world } from "./World.mjs";

const original = readFileSync(join(build, "tests", "stamped_extension"));
const replacements = isSanitized ? 50 : 100;

let program;

shareWorld({
  async start() {
    const stamped = new World();
    program = stamped.extension = join(stamped.folder, "bin", "program");
    mkdirSync(join(stamped.folder, "bin"));
    rename("v0");
    await stamped.startHome();
    return stamped;
  },
});

function programOf(stamp) {
  return Buffer.concat([original, Buffer.from(`\n${stamp}`)]);
}

function rename(stamp) {
  writeFileSync(`${program}.next`, programOf(stamp), { mode: 0o755 });
  renameSync(`${program}.next`, program);
}

// As a linker does, in two halves.
async function write(stamp) {
  const bytes = programOf(stamp);
  rmSync(program);
  const file = openSync(program, "w", 0o755);
  writeSync(file, bytes.subarray(0, bytes.length / 2));
  await pause(Math.random() * 40);
  writeSync(file, bytes.subarray(bytes.length / 2));
  closeSync(file);
}

const labels = (page, cards = ".widget .card svg") =>
  page.locator(cards).evaluateAll((pictures) => pictures.map((picture) => picture.getAttribute("aria-label")));

const shows = (page, stamp, cards) => async () => {
  const all = await labels(page, cards);
  return all.length === 5 && all.every((label) => label === stamp);
};

// In all columns but the placeholder's.
const engineerShows = (page, stamp) => async () => {
  const stamps = await labels(page, '.column:not([data-state="placeholder"]) svg[aria-label]');
  return stamps.length > 0 && stamps.every((each) => each === stamp);
};

test(`${replacements} replacements at random moments leave no blank, no mixture and no process`, async () => {
  const [home, gallery, engineer] = [await open(), await open(), await open("/?view=engineer")];
  await until("the first program shows", shows(home, "v0"));
  await openGallery(gallery);
  await until("its snapshots show", shows(gallery, "v0", "dialog .card svg"));
  await home.evaluate(() => {
    window.states = [];
    new MutationObserver(() => {
      const cards = [...document.querySelectorAll(".widget .card")];
      window.states.push(cards.map((card) => card.querySelector("svg")?.getAttribute("aria-label") ?? "blank").join());
    }).observe(document.getElementById("home"), { childList: true });
  });
  const seen = new Set();
  let stamp;
  for (let turn = 1; turn <= replacements; ++turn) {
    stamp = `v${turn}`;
    if (turn % 3) rename(stamp);
    else await write(stamp);
    await pause(Math.random() * 120);
    for (const process of world.childProcesses()) seen.add(process);
    if (turn % 10 === 0) await until("the page follows", shows(home, stamp));
  }
  await until("the last program shows", shows(home, stamp));
  await until("its snapshots show", shows(gallery, stamp, "dialog .card svg"));
  await until("the engineer's view shows it", engineerShows(engineer, stamp));
  const states = await home.evaluate(() => window.states);
  assert.ok(states.length >= replacements / 10, "every change was seen");
  for (const state of states) assert.equal(new Set(state.split(",")).size, 1, `a mixture: ${state}`);
  const running = world.childProcesses();
  for (const process of seen) assert.ok(running.includes(process) || !existsSync(`/proc/${process}`));
  assert.ok(running.length <= 2, "one for the widgets, one for the engineer's view");
});

test("the engineer's view asks for one rendering at a time, again where one fails, and ends with the last program", async () => {
  const page = await open("/?view=engineer");
  let [asked, underWay, most] = [0, 0, 0];
  await page.route(/view=engineer/, async (route) => {
    most = Math.max(most, ++underWay);
    await pause(300);
    --underWay;
    await (++asked % 3 ? route.continue() : route.abort());
  });
  for (let turn = 0; turn < 10; ++turn) {
    rename(`s${turn}`);
    await pause(100);
  }
  await until("the last program shows", engineerShows(page, "s9"));
  assert.equal(most, 1);
});

test("a program that breaks or ends at once leaves the last pictures, marked with its last words", async () => {
  const page = await open();
  for (const [stamp, words] of [["breaks", "this program breaks"], ["ends", "this program ends at once"]]) {
    rename(`good before it ${stamp}`);
    await until("a good program shows", shows(page, `good before it ${stamp}`));
    assert.equal(await page.locator('.widget[data-status="stale"]').count(), 0);
    rename(stamp);
    await until("all are marked", async () => (await page.locator('.widget[data-status="stale"]').count()) === 5);
    assert.match(await page.locator(".widget .badge").first().textContent(), new RegExp(words));
    assert.ok(await shows(page, `good before it ${stamp}`)());
  }
  rename("good again");
  await until("it recovers at once", shows(page, "good again"));
  await until("no mark is left", async () => (await page.locator('.widget[data-status="live"]').count()) === 5);
});

test("the cards of a wall change all at once and keep their places, and its line tells of a program that breaks", async () => {
  rename("w1");
  const page = await open("/?view=wall", { reducedMotion: "reduce" }); // or all of it wanders
  const line = page.locator(".line");
  // In one step, or a card that is replaced meanwhile has no place.
  const places = () => page.evaluate(() => [...document.querySelectorAll(".card")].map((card) => JSON.stringify(card.getBoundingClientRect())));
  await until("the first program shows", shows(page, "w1"));
  await line.getByText(/^Live, /).waitFor();
  const before = await places();
  await page.evaluate(() => {
    window.states = [];
    new MutationObserver(() => {
      window.states.push([...document.querySelectorAll(".card svg")].map((card) => card.getAttribute("aria-label")).join());
    }).observe(document.getElementById("home"), { childList: true });
  });
  for (const stamp of ["w2", "breaks", "w3"]) {
    rename(stamp);
    if (stamp !== "breaks") await until(`${stamp} shows`, shows(page, stamp));
    await line.getByText(stamp === "breaks" ? "Old picture" : /^Live, /).waitFor();
  }
  assert.deepEqual(await places(), before);
  const states = await page.evaluate(() => window.states);
  assert.ok(states.length > 1, "the same page saw it");
  for (const state of states) assert.match(state, /^(w\d)(,\1){4}$/);
});
