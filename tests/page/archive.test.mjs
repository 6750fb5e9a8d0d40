// All variants in one archive, from the canvas and from the command line, read by another program.
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { readFileSync, readdirSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { World, launchBrowser, programs, until } from "./World.mjs";

let world, browser;

before(async () => {
  world = await World.start();
  await until("all widgets are live", () => world.allLive());
  browser = await launchBrowser();
});

after(async () => {
  await browser?.close();
  await world?.end();
});

function command(...args) {
  const done = spawnSync(join(programs, "quillpad-home"), ["--extension", world.extension, ...args], { env: world.environment });
  assert.equal(done.status, 0, String(done.stderr));
}

const unpack = "import sys, zipfile; z = zipfile.ZipFile(sys.argv[1]); assert z.testzip() is None; z.extractall(sys.argv[2])";

// The files of the archive, unpacked.
function unpacked(archive) {
  const folder = `${archive}.unpacked`;
  const done = spawnSync("python3", ["-c", unpack, archive, folder]);
  assert.equal(done.status, 0, String(done.stderr));
  return { folder, names: readdirSync(folder).sort() };
}

async function download(path) {
  const answer = await world.fetch(path);
  assert.equal(answer.status, 200);
  const archive = join(world.folder, `${Math.random()}.zip`);
  writeFileSync(archive, Buffer.from(await answer.arrayBuffer()));
  return unpacked(archive);
}

test("the canvas's link has the pictures that are chosen, as render draws them", async () => {
  const page = await (await world.newContext(browser)).newPage();
  await page.goto(`${world.address}/?view=canvas&entry=rows-emoji&language=ar&currency=€`);
  const [file] = await Promise.all([page.waitForEvent("download"), page.locator("a[download]").click()]);
  assert.equal(file.suggestedFilename(), "quillpad-canvas.zip");
  const { folder, names } = unpacked(await file.path());
  assert.equal(names.length, 4);
  const name = "UnpaidMediumWidget-rows-emoji-393x852-ar-dark@2x.png";
  const expected = join(world.folder, "render.png");
  command("render", "UnpaidMediumWidget", "--sample", "rows-emoji", "--locale", "ar", "--currency", "€", "--appearance", "dark", "-o", expected);
  assert.ok(names.includes(name), names.join());
  assert.ok(readFileSync(join(folder, name)).equals(readFileSync(expected)));
});

test("all of it comes while the widgets stay live and the extension is killed, and what is missing is told", async () => {
  let done = false;
  const all = download("/canvas.zip?screen=all").finally(() => (done = true));
  let [looks, slowest] = [0, 0];
  while (!done) {
    const asked = performance.now();
    assert.ok(await world.allLive());
    slowest = Math.max(slowest, performance.now() - asked);
    if (++looks % 20 === 10) world.childProcesses().slice(1).forEach((child) => process.kill(child, "SIGKILL"));
    await until("a moment passed", () => performance.now() - asked > 10);
  }
  const { folder, names } = await all;
  const missing = names.includes("not-drawn.txt")
    ? readFileSync(join(folder, "not-drawn.txt"), "utf8").trim().split("\n") : [];
  for (const line of missing) assert.match(line, /^\S+\.png: The extension ended \(signal 9, Killed\)\.$/);
  assert.equal(names.filter((name) => name.endsWith(".png")).length + missing.length, 7700);
  assert.ok(looks > 20 && slowest < 1000, `${looks} looks, the slowest ${slowest} ms`);
});

test("nobody else is sent an archive, and those that left early hold no place", async () => {
  const path = "/canvas.zip?screen=all";
  assert.equal((await fetch(world.address + path)).status, 401);
  assert.equal((await world.fetch(path, { headers: { Origin: "https://page.test" } })).status, 403);
  const open = async () => {
    const leaving = new AbortController();
    const { status } = await world.fetch(path, { signal: leaving.signal });
    return { status, leaving };
  };
  const several = await Promise.all([1, 2, 3, 4, 5, 6].map(open));
  assert.deepEqual(several.map(({ status }) => status).sort(), [200, 200, 200, 200, 503, 503]);
  for (const { leaving } of several) leaving.abort();
  await until("there is a place again", async () => {
    const { status, leaving } = await open();
    leaving.abort();
    return status === 200;
  });
  assert.ok(await world.allLive());
});

test("gallery writes the archive with the pictures of its folder", () => {
  const [archive, folder] = [join(world.folder, "all.zip"), join(world.folder, "all")];
  command("gallery", "--all", "--state", "snapshot", "-o", archive);
  command("gallery", "--all", "--state", "snapshot", "-o", folder);
  const inArchive = unpacked(archive);
  const inFolder = readdirSync(folder).filter((name) => name.endsWith(".png")).sort();
  assert.equal(inArchive.names.length, 700);
  assert.deepEqual(inArchive.names, inFolder.map((name) => name.replace(".png", "@2x.png")).sort());
  for (const name of inFolder) {
    const picture = readFileSync(join(inArchive.folder, name.replace(".png", "@2x.png")));
    assert.ok(picture.equals(readFileSync(join(folder, name))), name);
  }
});
