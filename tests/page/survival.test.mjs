// What the home screen survives, watched over its page.
import assert from "node:assert/strict";
import { spawn, spawnSync } from "node:child_process";
import { existsSync } from "node:fs";
import { connect } from "node:net";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { setTimeout as pause } from "node:timers/promises";
import { World, programs, until } from "./World.mjs";

let world;

before(async () => {
  world = await World.start();
  await until("all widgets are live", () => world.allLive());
});

after(() => world?.end());

const reload = (token) => world.change("/reload", token);

test("200 kills at any step of a refresh leave no blank, no process and no lasting harm", async () => {
  const token = await world.pageToken();
  const seen = new Set();
  for (let kill = 0; kill < 200; ++kill) {
    await reload(token);
    await pause(Math.random() * 12);
    const extension = world.extensionProcess();
    if (extension) {
      seen.add(extension);
      process.kill(extension, "SIGKILL");
    }
    for (const [kind, html] of Object.entries(await world.cards())) {
      assert.ok(html.includes("<svg"), `${kind} is blank after kill ${kill}`);
    }
    await until("the pictures are live again", () => world.allLive());
  }
  for (const extension of seen) {
    if (extension !== world.extensionProcess()) assert.ok(!existsSync(`/proc/${extension}`));
  }
});

test("slow and hostile clients keep no one else waiting", async () => {
  const port = Number(new URL(world.address).port);
  const sockets = [];
  const open = (text) => {
    const socket = connect(port, "127.0.0.1", () => socket.write(text));
    socket.on("error", () => {});
    sockets.push(socket);
    return socket;
  };
  for (let count = 0; count < 1000; ++count) open(count % 2 ? "" : "GET / HTTP/1.1\r\nHost: 127");
  const endless = open("GET / HTTP/1.1\r\n");
  const dribble = setInterval(() => endless.write(`X-More: ${"x".repeat(4096)}\r\n`), 1);
  const huge = open(`POST /reload HTTP/1.1\r\nHost: 127.0.0.1:${port}\r\nContent-Length: 99999999999\r\n\r\n`);
  let refusal = "";
  huge.on("data", (data) => (refusal += data));
  await until("the huge body is refused", () => refusal.startsWith("HTTP/1.1 413"));
  for (let count = 0; count < 20; ++count) {
    const page = await world.fetch("/", { signal: AbortSignal.timeout(5000) });
    assert.equal(page.status, 200);
    await page.text();
  }
  await until("the endless head is cut off", () => endless.destroyed || endless.readyState !== "open");
  clearInterval(dribble);
  for (const socket of sockets) socket.destroy();
});

test("the pictures of the last run are there before anything else", async () => {
  await pause(1200); // the state is kept a second after the last change
  assert.deepEqual(await world.stop(world.home), { code: 0, signal: null });
  await world.stop(world.gateway);
  await world.startHome();
  const cards = Object.values(await world.cards());
  assert.equal(cards.length, 5);
  for (const html of cards) assert.ok(html.includes("<svg") && html.includes("datetime="));
  await world.startGateway();
  await reload(await world.pageToken());
  await until("all widgets are live", () => world.allLive());
});

test("a second home screen and a taken port are told", async () => {
  const port = new URL(world.address).port;
  const elsewhere = join(world.folder, "elsewhere");
  for (const [state, words] of [
    [world.environment.XDG_STATE_HOME, `a home screen is running already, at http://127.0.0.1:${port}/`],
    [elsewhere, `port ${port}: another program uses it`],
  ]) {
    const second = spawnSync(`${programs}/quillpad-home`, ["serve", "--port", port], {
      env: { ...world.environment, XDG_STATE_HOME: state },
      encoding: "utf8",
    });
    assert.equal(second.status, 1);
    assert.ok(second.stderr.includes(words), second.stderr);
  }
});

for (const signal of ["SIGINT", "SIGTERM", "SIGKILL"]) {
  test(`${signal} leaves no process behind`, async () => {
    if (!world.processes.has(world.home)) await world.startHome();
    await until("all widgets are live", () => world.allLive());
    const extension = world.extensionProcess();
    await world.stop(world.home, signal);
    await until("the extension is gone", () => !existsSync(`/proc/${extension}`));
  });
}

test("the home screen ends with its parent", async () => {
  const shell = spawn("sh", ["-c", `"$0" serve --port 0 & echo $!; wait`, `${programs}/quillpad-home`], {
    env: world.environment,
  });
  let output = "";
  shell.stdout.on("data", (data) => (output += data));
  await until("it runs", () => output.includes("http://"));
  const home = output.match(/^\d+$/m)[0];
  shell.kill("SIGKILL");
  await until("it is gone", () => !existsSync(`/proc/${home}`));
});
