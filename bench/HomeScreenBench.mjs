// What the live home screen costs: first paint, 200 tabs, hours of reloads, 500 widgets, another
// program, and drawing the whole matrix. Uses the
// packages of tests/page ("npm ci" there) and the programs of a release build.
//   node bench/HomeScreenBench.mjs
import { spawnSync } from "node:child_process";
import { cpSync, mkdirSync, readFileSync, renameSync, writeFileSync } from "node:fs";
import { connect } from "node:net";
import { join } from "node:path";
import { setTimeout as pause } from "node:timers/promises";
import { World, build, launchBrowser, programs, until } from "../tests/page/World.mjs";

const median = (values) => values.sort((a, b) => a - b)[Math.floor(values.length / 2)];
const round = (value) => Math.round(value * 10) / 10;
const tell = (what, value) => console.log(`${what.padEnd(64)} ${value}`);

// Resident and private MiB, and seconds of processor time.
function usage(process) {
  const memory = readFileSync(`/proc/${process}/status`, "utf8");
  const mebibytes = (name) => round(Number(memory.match(new RegExp(`${name}:\\s+(\\d+)`))[1]) / 1024);
  const times = readFileSync(`/proc/${process}/stat`, "utf8").split(") ")[1].split(" ");
  return {
    resident: mebibytes("VmRSS"),
    own: mebibytes("RssAnon"),
    seconds: (Number(times[11]) + Number(times[12])) / 100,
  };
}

const worlds = []; // ended whatever happens

async function signedInWorld(extension) {
  const world = new World();
  worlds.push(world);
  if (extension) world.extension = extension;
  await world.startGateway();
  world.signIn();
  return world;
}

async function firstPaint() {
  const world = await signedInWorld();
  const browser = await launchBrowser();
  const toAddress = [];
  const toLive = [];
  const paint = [];
  for (let turn = 0; turn < 9; ++turn) {
    const start = performance.now();
    await world.startHome();
    toAddress.push(performance.now() - start);
    await until("all is live", () => world.allLive());
    toLive.push(performance.now() - start);
    const context = await world.newContext(browser);
    const page = await context.newPage();
    await page.goto(world.address);
    paint.push(
      await page.evaluate(
        () =>
          new Promise((resolve) =>
            new PerformanceObserver((list) => resolve(list.getEntries()[0].startTime)).observe({
              type: "paint",
              buffered: true,
            }),
          ),
      ),
    );
    await context.close();
    await world.stop(world.home);
  }
  tell("home screen started, until its page answers (median of 9)", `${round(median(toAddress))} ms`);
  tell("... until all five widgets are live on it", `${round(median(toLive))} ms`);
  tell("the browser, from the address to its first paint", `${round(median(paint))} ms`);
  await browser.close();
  await world.end();
}

async function manyTabs() {
  for (const count of [1, 50, 200, 500]) await listenWith(count);
}

async function listenWith(count) {
  const world = await signedInWorld();
  await world.startHome();
  await until("all is live", () => world.allLive());
  const token = await world.pageToken();
  const { version } = await (await world.fetch("/changes?since=0")).json();
  const port = Number(new URL(world.address).port);
  const tabs = await Promise.all(
    Array.from(
      { length: count },
      () =>
        new Promise((resolve) => {
          const socket = connect(port, "127.0.0.1", () => {
            socket.write(`GET /events?since=${version} HTTP/1.1\r\nHost: 127.0.0.1:${port}\r\nCookie: ${world.cookie.name}=${world.cookie.value}\r\n\r\n`);
          });
          socket.text = "";
          socket.on("data", (data) => {
            // A chunk and the end of the one before hold what is looked for.
            socket.text = socket.text.slice(-64) + data.toString("latin1");
            if (!socket.heard && socket.text.includes(socket.shown)) socket.heard = performance.now();
          });
          resolve(socket);
        }),
    ),
  );
  await until("all listen", () => tabs.every((tab) => tab.text.includes("event-stream")));
  const times = [];
  for (const currency of ["€ - EUR", "£ - GBP", "¥ - JPY", "₹ - INR", "$ - USD"]) {
    world.settings("currency", currency);
    for (const tab of tabs) Object.assign(tab, { text: "", heard: 0, shown: Buffer.from(currency[0]).toString("latin1") });
    const start = performance.now();
    await world.change("/reload", token);
    await until("every tab hears", () => tabs.every((tab) => tab.heard));
    times.push(Math.max(...tabs.map((tab) => tab.heard)) - start);
    await pause(200);
  }
  tell(`a reload asked for, until the last of ${count} tabs hears (median of 5)`, `${round(median(times))} ms`);
  tell("  the home screen", `${usage(world.home.pid).resident} MiB resident`);
  tabs.forEach((tab) => tab.destroy());
  await world.end();
}

async function hoursOfReloads() {
  const world = await signedInWorld(join(programs, "many_widgets"));
  world.more = { RELOAD_SECONDS: "1", COPIES: "1" };
  await world.startHome();
  await until("all is live", () => world.allLive());
  await pause(5000);
  const before = usage(world.home.pid);
  await pause(60_000);
  const after = usage(world.home.pid);
  tell("60 rounds of reloads, one a second: five hours' worth", "");
  tell("  resident before and after", `${before.resident} and ${after.resident} MiB`);
  tell("  private before and after", `${before.own} and ${after.own} MiB`);
  tell("  processor time a round", `${round(((after.seconds - before.seconds) * 1000) / 60)} ms`);
  await world.end();
}

async function manyWidgets() {
  for (const copies of [1, 10, 100, 200]) await placeAll(copies);
}

async function placeAll(copies) {
  const world = await signedInWorld(join(programs, "many_widgets"));
  world.more = { COPIES: String(copies) };
  const start = performance.now();
  await world.startHome();
  await until("all is live", () => world.allLive(5 * copies), 120_000);
  tell(`${5 * copies} placed widgets, from the start until all are live`, `${round(performance.now() - start)} ms`);
  const times = [];
  let size = 0;
  for (let turn = 0; turn < 9; ++turn) {
    const begin = performance.now();
    size = (await (await world.fetch("/")).text()).length;
    times.push(performance.now() - begin);
  }
  tell("  the page", `${round(size / 1e6)} MB, ${round(median(times))} ms`);
  await pause(1500);
  const { resident, own, seconds } = usage(world.home.pid);
  tell("  the home screen", `${resident} MiB resident, ${own} MiB private, ${seconds} s processor time`);
  await world.end();
}

// A program and its translations put in the place of others, until the last of the five cards is
// painted anew.
async function anotherProgram() {
  const world = await signedInWorld();
  const share = join(world.folder, "share", "quillpad-widgets");
  cpSync(join(build, "share", "quillpad-widgets"), share, { recursive: true });
  mkdirSync(join(world.folder, "bin"));
  const original = readFileSync(world.extension);
  const program = (world.extension = join(world.folder, "bin", "extension"));
  const titles = ["Sales", "Unpaid", "Pending", "Unpaid Invoices", "Pending Estimates"];
  const replace = (turn) => {
    const texts = titles.map((title) => `<key>${title}</key><string>${title} ${turn}</string>`).join("");
    writeFileSync(join(share, "en.lproj", "Localizable.strings"), `<plist version="1.0"><dict>${texts}</dict></plist>`);
    writeFileSync(`${program}.next`, Buffer.concat([original, Buffer.from(String(turn))]), { mode: 0o755 });
    renameSync(`${program}.next`, program);
    return Date.now();
  };
  replace(0);
  await world.startHome();
  await until("all is live", () => world.allLive());
  const browser = await launchBrowser();
  const page = await (await world.newContext(browser)).newPage();
  await page.goto(world.address);
  const times = [];
  for (let turn = 1; turn <= 25; ++turn) {
    const painted = page.evaluate(
      (turn) =>
        new Promise((resolve) => {
          const isNew = () =>
            [...document.querySelectorAll(".widget .card svg")].filter((picture) =>
              picture.getAttribute("aria-label").includes(` ${turn}`),
            ).length >= 5;
          const look = () => (isNew() ? requestAnimationFrame(() => resolve(Date.now())) : requestAnimationFrame(look));
          look();
        }),
      turn,
    );
    const replaced = replace(turn);
    times.push((await painted) - replaced);
    await pause(400);
  }
  const sorted = times.sort((a, b) => a - b);
  tell("another program, until all five cards are painted (median of 25)", `${median(times)} ms`);
  tell("  the slowest", `${sorted.at(-1)} ms`);
  await browser.close();
  await world.end();
}

// 2,100 pictures, into an empty folder and into one where all of them are recorded.
async function wholeMatrix() {
  const world = await signedInWorld();
  for (const what of ["into an empty folder", "with all of them recorded"]) {
    const times = [];
    for (let turn = 0; turn < 9; ++turn) {
      const folder = join(world.folder, what.startsWith("into") ? `matrix-${turn}` : "matrix-0");
      const args = ["--extension", world.extension, "gallery", "--all", "-o", folder];
      const start = performance.now();
      const done = spawnSync(join(programs, "quillpad-home"), args, { env: world.environment });
      times.push(performance.now() - start);
      if (done.status !== 0) throw new Error(String(done.stderr));
    }
    tell(`gallery --all, 2,100 pictures ${what} (median of 9)`, `${Math.round(median(times))} ms`);
  }
  await world.end();
}

const parts = { firstPaint, manyTabs, hoursOfReloads, manyWidgets, anotherProgram, wholeMatrix };
const chosen = process.argv.length > 2 ? process.argv.slice(2) : Object.keys(parts);
try {
  for (const part of chosen) await parts[part]();
} finally {
  for (const world of worlds) await world.end();
}
