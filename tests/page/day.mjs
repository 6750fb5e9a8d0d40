// Some hours of a home screen's life in a minute: clocks that go faster, two tabs left open, and all
// that may happen meanwhile. Several times a second it is checked, in the tabs and in what the home
// screen would tell a new one, that no card says live whose figures the gateway did not give away
// within their reload time, or that are of a business that is signed out.
//   node day.mjs
import { renameSync, symlinkSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { setTimeout as pause } from "node:timers/promises";
import { HostileGateway } from "../siege/HostileGateway.mjs";
import { World, build, launchBrowser, until } from "./World.mjs";

const factor = 60;
const start = Date.now();
const now = () => start + (Date.now() - start) * factor;
const minute = 60_000; // of the fast clock
// Until the next timeline, until a picture counts as old, and until that and this look are noticed.
const longestLive = 5 * minute + minute + 20_000;

const world = new World();
await world.startGateway();
world.signIn();
await world.stop(world.gateway);
const gateway = new HostileGateway(join(world.folder, "gateway"), Math.random);
gateway.now = now;
await gateway.listen(world.gatewayPort);
world.more = {
  LD_PRELOAD: join(build, "tests", "libfast_clock.so"),
  FAST_CLOCK: String(factor),
  FAST_CLOCK_START: String(start),
};
const extension = join(world.folder, "extension");
symlinkSync(world.extension, extension);
world.extension = extension;
await world.startHome();

const token = join(world.folder, "gateway", "token");

const browser = await launchBrowser();
const context = await world.newContext(browser);
await context.addInitScript(
  ({ start, factor }) => {
    const RealDate = Date;
    const now = () => start + (RealDate.now() - start) * factor;
    window.Date = class extends RealDate {
      constructor(...fields) {
        super(...(fields.length > 0 ? fields : [now()]));
      }
      static now = now;
    };
    const { setInterval } = window;
    window.setInterval = (task, time) => setInterval(task, time / factor);
  },
  { start, factor },
);
const tabs = [await context.newPage(), await context.newPage()];
for (const tab of tabs) await tab.goto(world.address);

const failures = [];
const count = { moments: 0, cards: 0, live: 0 };
let formerFigures = new Set(); // of businesses that are signed out
let homeIsUp = true;

function check(where, cards) {
  ++count.moments;
  for (const { kind, status, texts } of cards) {
    ++count.cards;
    const says = `${Math.round((now() - start) / 1000)} s, ${where}: ${kind} says ${status} and shows ${texts.join(", ")}`;
    if (status === "live") ++count.live;
    if (status === "live" && !gateway.gave(texts, now() - longestLive)) failures.push(says);
    if (texts.some((text) => formerFigures.has(text))) failures.push(`${says}, of another business`);
  }
}

// Nothing while the tab is just loading.
async function cardsOfTab(tab) {
  const cards = await tab
    .evaluate(() =>
      [...document.querySelectorAll(".home > .widget")].map((card) => ({
        kind: card.dataset.kind,
        status: card.dataset.status,
        label: card.querySelector(".card svg")?.getAttribute("aria-label"),
      })),
    )
    .catch(() => []);
  return cards.map(({ label, ...card }) => ({ ...card, texts: (label ?? "").split(", ") }));
}

async function look() {
  const former = formerFigures;
  for (const tab of tabs) {
    const cards = await cardsOfTab(tab);
    if (cards.length > 0 && former === formerFigures) check("a tab", cards);
  }
  if (!homeIsUp) return;
  const cards = await world.looks();
  if (former === formerFigures) check("the home screen", cards);
}

// So much of the fast clock passes; then every card has one of the statuses.
async function pass(minutes, ...statuses) {
  const end = now() + minutes * minute;
  while (now() < end) {
    await look();
    await pause(100);
  }
  await until("the tab is there", async () => (await cardsOfTab(tabs[0])).length > 0);
  for (const cards of [await world.looks(), await cardsOfTab(tabs[0])]) {
    const other = cards.filter(({ status }) => !statuses.includes(status)).map(({ kind, status }) => `${kind} ${status}`);
    if (cards.length !== 5 || other.length > 0) failures.push(`expected ${statuses}: ${other}, ${cards.length} cards`);
  }
}

const events = {
  async "a calm morning"() {
    await pass(6, "live");
  },
  async "the gateway goes and comes back"() {
    await gateway.close();
    await pass(7, "stale");
    await gateway.listen(world.gatewayPort);
    await pass(6, "live");
  },
  async "the extension is killed, as often as it is forgiven"() {
    for (let kill = 0; kill < 4; ++kill) {
      const process_ = world.extensionProcess();
      if (process_) process.kill(process_, "SIGKILL");
      await pass(0.5, "live", "stale");
    }
    await pass(6, "live");
  },
  async "an extension that does not start takes its place"() {
    renameSync(extension, `${extension}.whole`);
    writeFileSync(extension, "#!/bin/sh\nexit 1\n", { mode: 0o755 });
    process.kill(world.extensionProcess(), "SIGKILL");
    await pass(2, "stale");
    renameSync(`${extension}.whole`, extension);
    await tabs[0].locator("#reload").click();
    await pass(1, "live");
  },
  async "the home screen is started again, with the tabs open"() {
    for (const [signal, minutes] of [["SIGTERM", 0], ["SIGKILL", 7]]) {
      homeIsUp = false;
      await world.stop(world.home, signal);
      const end = now() + minutes * minute;
      while (now() < end) {
        await look();
        await pause(100);
      }
      await world.startHome();
      homeIsUp = true;
      await pass(4, "live");
    }
  },
  async "signed out, then another business"() {
    for (const change of [["sign-out"], ["sign-in", "--business-id", "other", "--token-file", token]]) {
      const given = new Set(gateway.given.keys());
      world.settings(...change);
      await pause(500);
      formerFigures = given;
      await pass(2, change[0] === "sign-out" ? "placeholder" : "live");
    }
  },
};
try {
  for (const [name, happens] of Object.entries(events)) {
    await happens();
    if (failures.length > 0) throw new Error(name);
  }
} catch (error) {
  failures.unshift(String(error.stack ?? error));
} finally {
  await browser.close();
  await gateway.close();
  await world.end();
}
console.log(
  `${((now() - start) / minute).toFixed(0)} minutes in ${Math.round((Date.now() - start) / 1000)} s: ${count.moments} moments ` +
    `looked at, ${count.cards} cards, ${count.live} of them live; ${gateway.goodAnswers} answers of the gateway`,
);
if (failures.length > 0) {
  console.error([...new Set(failures)].slice(0, 20).join("\n"));
  console.error(world.log.split("\n").slice(-20).join("\n"));
  process.exitCode = 1;
}
