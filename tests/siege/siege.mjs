// A siege of the real programs: the extension killed and stopped, the home screen killed and started
// again, the gateway gone or answering damaged bytes, the state folder in the way, hostile clients,
// all at once, while what the page would show is checked throughout. Repeatable by its seed as far
// as processes are.
//   node siege.mjs [--minutes N] [--seed N]
import assert from "node:assert/strict";
import { mkdirSync, readdirSync, readFileSync, renameSync, rmSync } from "node:fs";
import { connect } from "node:net";
import { join } from "node:path";
import { setTimeout as pause } from "node:timers/promises";
import { parseArgs } from "node:util";
import { World, isSanitized, until } from "../page/World.mjs";
import { HostileGateway } from "./HostileGateway.mjs";

const { values } = parseArgs({ options: { minutes: { type: "string" }, seed: { type: "string" } } });
const minutes = Number(values.minutes ?? 1);
const seed = Number(values.seed ?? Date.now() % 1_000_000);

// mulberry32
let state = seed;
function random() {
  state = (state + 0x6d2b79f5) | 0;
  let t = Math.imul(state ^ (state >>> 15), 1 | state);
  t = (t + Math.imul(t ^ (t >>> 7), 61 | t)) ^ t;
  return ((t ^ (t >>> 14)) >>> 0) / 4294967296;
}
const between = (low, high) => low + random() * (high - low);
const pick = (list) => list[Math.floor(random() * list.length)];

const maxResident = (isSanitized ? 1000 : 200) * 1024; // KiB; a sanitizer keeps what was freed for a while
const maxDescriptors = 1100;
const answerTimes = [];
const count = { kills: 0, stops: 0, restarts: 0, hostile: 0, moments: 0, phases: 0, reloads: 0 };
const failures = [];

const world = new World();
await world.startGateway();
world.signIn();
await world.stop(world.gateway);
const gateway = new HostileGateway(join(world.folder, "gateway"), random);
await gateway.listen(world.gatewayPort);
await world.startHome();

const signal = (pid, name) => {
  try {
    return pid !== undefined && process.kill(pid, name);
  } catch {
    return false; // it has ended meanwhile
  }
};
const reload = () => {
  ++count.reloads;
  return world.change("/reload").catch(() => {});
};

// What holds at every moment at which the home screen runs.
let homeIsUp = true;
let siegeEnds = false;
const drawn = new Set(); // the cards seen with a picture since the home screen started

function checkCards(cards) {
  if (cards.length === 0 && drawn.size === 0) return; // started without a state: the catalogue is still to come
  if (cards.length !== 5) failures.push(`there are ${cards.length} cards`);
  for (const { kind, status, hasPicture, texts } of cards) {
    if (drawn.has(kind) && !hasPicture) failures.push(`${kind} is blank`);
    if (hasPicture) drawn.add(kind);
    if (status === "live" && !gateway.gave(texts)) failures.push(`${kind} says live and shows ${texts.join(", ")}`);
  }
}

function checkResources(pid) {
  const status = readFileSync(`/proc/${pid}/status`, "utf8");
  const resident = Number(status.match(/VmRSS:\s+(\d+)/)[1]);
  if (resident > maxResident) failures.push(`the home screen has grown to ${resident} KiB`);
  if (process.getuid() !== 0) return; // it shows its descriptors to root alone
  const descriptors = readdirSync(`/proc/${pid}/fd`).length;
  if (descriptors > maxDescriptors) failures.push(`the home screen has ${descriptors} descriptors open`);
}

async function watch() {
  while (!siegeEnds) {
    const pid = world.home.pid;
    const begin = performance.now();
    try {
      const cards = await world.looks();
      answerTimes.push(performance.now() - begin);
      if (pid !== world.home.pid) continue; // of a run that is over
      ++count.moments;
      checkCards(cards);
      checkResources(pid);
    } catch (error) {
      if (homeIsUp && pid === world.home.pid) failures.push(`the page does not answer: ${error.cause ?? error}`);
    }
    await pause(50);
  }
}

// The attacks. Each runs over and over until its phase ends.

const attacks = {
  async kill() {
    if (signal(world.extensionProcess(), "SIGKILL")) ++count.kills;
    await pause(between(20, 150));
  },
  async stop() {
    const extension = world.extensionProcess();
    if (signal(extension, "SIGSTOP")) ++count.stops;
    await pause(between(20, 300));
    signal(extension, "SIGCONT");
    await pause(between(20, 100));
  },
  async hurry() {
    await reload();
    await pause(between(5, 40));
  },
  async gatewayAway() {
    await gateway.close();
    await pause(between(50, 400));
    await gateway.listen(world.gatewayPort);
    await pause(between(200, 800));
  },
  async stateInTheWay() {
    const file = join(world.folder, ".local", "state", "quillpad", "home.json");
    try {
      renameSync(file, `${file}.aside`);
      mkdirSync(file);
      await pause(between(100, 500));
    } catch {
      await pause(50); // not written yet
    } finally {
      rmSync(file, { recursive: true, force: true });
      rmSync(`${file}.aside`, { force: true });
    }
    await pause(between(100, 500));
  },
  async hostileClients() {
    const requests = [
      "GET / HTTP/1.1\r\nHost: evil.example\r\n\r\n",
      `GET /${"x".repeat(100_000)} HTTP/1.1\r\n\r\n`,
      `GET /events?since=${Math.floor(random() * 1e9)} HTTP/1.1\r\nHost: 127.0.0.1:${world.port}\r\nCookie: ${world.cookie.name}=${world.cookie.value}\r\n\r\n`,
      "POST /reload HTTP/1.1\r\nContent-Length: 99999999999\r\n\r\n",
      "\0\0\0\0",
      "GET / HTTP/1.1\r\nHost: 127",
    ];
    const socket = connect(world.port, "127.0.0.1", () => socket.write(pick(requests)));
    socket.on("error", () => {});
    setTimeout(() => socket.destroy(), between(10, 2000));
    ++count.hostile;
    await pause(between(1, 20));
  },
};

async function repeat(attack, end) {
  while (Date.now() < end) await attack();
}

async function restartHome() {
  homeIsUp = false;
  await world.stop(world.home, pick(["SIGKILL", "SIGTERM"]));
  drawn.clear();
  await world.startHome();
  homeIsUp = true;
  ++count.restarts;
}

// After the attacks of a phase: with good answers all becomes live, with damaged ones nothing stays so.
async function settle(answersAreGood) {
  gateway.damagedShare = answersAreGood ? 0 : 1;
  let asked = 0;
  const isWanted = ({ status }) => (status === "live") === answersAreGood;
  await until(`every card ${answersAreGood ? "is" : "stops being"} live`, async () => {
    if (Date.now() - asked > 500) {
      asked = Date.now();
      await reload();
    }
    return (await world.looks()).every(isWanted);
  });
}

async function besiege() {
  const end = Date.now() + minutes * 60_000;
  while (Date.now() < end && failures.length === 0) {
    gateway.damagedShare = pick([0, 0.3, 0.7, 1]);
    const phaseEnd = Math.min(Date.now() + between(2000, 5000), end);
    const chosen = Object.keys(attacks).filter(() => random() < 0.6);
    await Promise.all(["hurry", ...chosen].map((name) => repeat(attacks[name], phaseEnd)));
    if (random() < 0.25) await restartHome();
    await settle(random() < 0.5);
    ++count.phases;
  }
}

try {
  const watching = watch();
  await besiege().catch((error) => failures.push(String(error)));
  siegeEnds = true;
  await watching;
  await settle(true);
  await until("one extension is left", () => world.childProcesses().length === 1);
  const { code, signal: ended } = await world.stop(world.home);
  assert.equal(ended ?? code, 0, "the home screen ends well");
} catch (error) {
  failures.push(String(error));
} finally {
  await gateway.close();
  await world.end();
}

answerTimes.sort((a, b) => a - b);
const quantile = (q) => Math.round(answerTimes[Math.floor(q * (answerTimes.length - 1))] ?? 0);
console.log(
  `seed ${seed}: ${count.phases} phases, ${count.kills} kills, ${count.stops} stops, ${count.restarts} restarts of the home ` +
    `screen, ${count.reloads} reloads, ${gateway.goodAnswers} good and ${gateway.damagedAnswers} damaged answers, ` +
    `${count.hostile} hostile clients; ${count.moments} moments looked at; the page answered in ${quantile(0.5)} ms ` +
    `(median), ${quantile(0.99)} ms (99 %), ${quantile(1)} ms (longest)`,
);
if (failures.length > 0) {
  console.error([...new Set(failures)].slice(0, 20).join("\n"));
  console.error(world.log.split("\n").slice(-20).join("\n"));
  process.exitCode = 1;
}
