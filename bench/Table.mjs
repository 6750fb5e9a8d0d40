// The table that bench/all prints: what a person waits for, the comparison and the goal.
import { execFileSync, spawnSync } from "node:child_process";
import { mkdtempSync, readFileSync, readdirSync, rmSync, utimesSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { setTimeout as pause } from "node:timers/promises";
import { fileURLToPath } from "node:url";
import { World, programs, until } from "../tests/page/World.mjs";

const root = fileURLToPath(new URL("..", import.meta.url));
const rows = [["what a person waits for", "today", "beside it", "goal"]];
const add = (...row) => rows.push(row);
const median = (values) => values.toSorted((a, b) => a - b)[Math.floor(values.length / 2)];
const numberIn = (text, pattern) => Number(text.match(pattern)?.[1] ?? NaN);

function seconds(task) {
  const start = performance.now();
  task();
  return (performance.now() - start) / 1000;
}

// In a copy of the tree, without a compiler cache.
function measureBuilds() {
  const folder = mkdtempSync(join(tmpdir(), "quillpad-bench-"));
  const shell = (command) =>
    execFileSync("bash", ["-ec", command], { cwd: folder, stdio: "ignore", env: { ...process.env, CCACHE_DISABLE: "1" } });
  try {
    execFileSync("bash", ["-ec", `git ls-files -z | tar --null -T - -c | tar -x -C "${folder}"`], { cwd: root });
    shell("cmake --preset release");
    const build = "ninja -C build/release quillpad-home quillpad-widgets quillpad-demo-gateway";
    add("a full build of what ./demo needs", `${seconds(() => shell(build)).toFixed(0)} s`, "", "45 s");
    for (const [file, goal] of [["src/views/SmallViews.cpp", "1 s"], ["src/platform/ui/View.h", "12 s"]]) {
      const times = [1, 2, 3].map(() => {
        utimesSync(join(folder, file), new Date(), new Date());
        return seconds(() => shell("ninja -C build/release quillpad-widgets"));
      });
      add(`${file} saved, to the linked extension`, `${median(times).toFixed(1)} s`, "", goal);
    }
  } finally {
    rmSync(folder, { recursive: true, force: true });
  }
}

// Its last line tells the whole, the ones before it when the steps began.
function measureFreshMachine() {
  const steps = execFileSync(join(root, "bench/fresh"), { encoding: "utf8", stdio: ["ignore", "pipe", "ignore"] });
  const second = (step) => numberIn(steps, new RegExp(`^(\\d+) s: ${step}`, "m"));
  const installing = second("Building") - second("Installing");
  add("bare Debian 12: clone, ./demo --once", `${second("five timelines")} s, of it installing ${installing} s`, "", "70 s");
}

function measureCommands() {
  const output = execFileSync(join(programs, "extension_bench"), ["cold"], { encoding: "utf8" });
  const time = (name) => numberIn(output, new RegExp(`^ +${name} +([\\d.]+) ms`, "m"));
  const curl = time("curl");
  const row = (name, goal) =>
    add(`${name}, start to exit`, `${time(name)} ms`, `curl posting: ${curl} ms (${(time(name) / curl).toFixed(2)})`, goal);
  row("snapshot SalesSmallWidget", "9 ms");
  row("timeline SalesSmallWidget", "1.2 of curl");
  row("render SalesSmallWidget", "13 ms");
}

function measureRefresh() {
  const output = execFileSync(join(programs, "refresh_bench"), { encoding: "utf8" });
  add(
    "a refresh on a kept connection",
    `${numberIn(output, /URL session +median +([\d.]+)/)} us`,
    `bare libcurl: ${numberIn(output, /bare libcurl +median +([\d.]+)/)} us (${numberIn(output, /ratio of medians ([\d.]+)/)})`,
    "1.2 of it",
  );
}

// In milliseconds, the median of nine runs.
function timeOf(program, args, env) {
  return median(
    Array.from({ length: 9 }, (_, turn) => {
      const start = performance.now();
      const { status, stderr } = spawnSync(join(programs, program), args(turn), { env });
      if (status !== 0) throw new Error(`${program}: ${stderr}`);
      return performance.now() - start;
    }),
  );
}

function measureCards() {
  for (const [card, goal] of [["small", "0.95 of bare"], ["medium", "0.85 of bare"]]) {
    const answer = execFileSync(join(programs, "card_worker"), { input: `${card} 3 250 0 -\n`, encoding: "utf8" });
    add(`card to PNG at 3x, warm, ${card}`, `${median(JSON.parse(answer).ms).toFixed(3)} ms`, "", goal);
    const once = timeOf("card_worker", () => ["--once", card, "3", "/dev/null"], process.env);
    add(`one card cold, ${card}`, `${once.toFixed(1)} ms`, "", "1.1 of bare");
  }
}

async function measureMatrix() {
  const world = new World();
  try {
    await world.startGateway();
    world.signIn();
    const args = (turn) => ["--extension", world.extension, "gallery", "--all", "-o", join(world.folder, `matrix-${turn}`)];
    const time = timeOf("quillpad-home", args, world.environment);
    add("the whole matrix, 2,100 pictures at 2x", `${(time / 1000).toFixed(2)} s`, "", "1 s");
  } finally {
    await world.end();
  }
}

// Of a process and all its threads.
function usage(pid) {
  const field = (file, name) => numberIn(readFileSync(file, "utf8"), new RegExp(`^${name}:\\s+(\\d+)`, "m"));
  const tasks = readdirSync(`/proc/${pid}/task`).map((task) => `/proc/${pid}/task/${task}/status`);
  const times = readFileSync(`/proc/${pid}/stat`, "utf8").split(") ")[1].split(" ");
  return {
    switches: tasks.reduce((sum, file) => sum + field(file, "voluntary_ctxt_switches"), 0),
    milliseconds: (Number(times[11]) + Number(times[12])) * 10,
    mebibytes: field(`/proc/${pid}/status`, "VmRSS") / 1024,
  };
}

// With one listener, between two reloads.
async function measureRest() {
  const world = await World.start();
  try {
    await until("all is live", () => world.allLive());
    const { version } = await (await world.fetch("/changes?since=0")).json();
    const listener = new AbortController();
    await world.fetch(`/events?since=${version}`, { signal: listener.signal });
    await pause(3000);
    const both = [world.home.pid, world.extensionProcess()];
    const before = both.map(usage);
    await pause(60_000);
    both.map(usage).forEach((after, each) => {
      const { switches, milliseconds } = before[each];
      add(
        `serve at rest for a minute, ${each ? "the extension" : "the home screen"}`,
        `${after.switches - switches} switches, ${after.milliseconds - milliseconds} ms, ${after.mebibytes.toFixed(1)} MiB`,
        "",
        each ? "1, 10 ms, 12 MiB" : "4, 10 ms, 10 MiB",
      );
    });
    listener.abort();
  } finally {
    await world.end();
  }
}

async function measureManyWidgets() {
  const world = new World();
  world.extension = join(programs, "many_widgets");
  try {
    await world.startGateway();
    world.signIn();
    const start = performance.now();
    await world.startHome();
    await until("all is live", () => world.allLive(500), 120_000);
    add("a page with 500 widgets, started to all live", `${((performance.now() - start) / 1000).toFixed(1)} s`, "", "1 s");
  } finally {
    await world.end();
  }
}

if (process.argv.includes("--build")) measureBuilds();
if (process.argv.includes("--fresh")) measureFreshMachine();
measureCommands();
measureCards();
measureRefresh();
await measureMatrix();
await measureRest();
await measureManyWidgets();
const widths = rows[0].map((_, column) => Math.max(...rows.map((row) => row[column].length)));
rows.splice(1, 0, widths.map((width) => "-".repeat(width)));
for (const row of rows) console.log(`| ${row.map((cell, column) => cell.padEnd(widths[column])).join(" | ")} |`);
