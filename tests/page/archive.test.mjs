// All variants in one archive, from the canvas and from the command line, read by another program.
import assert from "node:assert/strict";
import { execFile, spawnSync } from "node:child_process";
import { readFileSync, readdirSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { promisify } from "node:util";
import { open, programs, shareWorld, until, world } from "./World.mjs";

shareWorld();

function command(...args) {
  const done = spawnSync(join(programs, "quillpad-home"), ["--extension", world.extension, ...args], { env: world.environment });
  assert.equal(done.status, 0, String(done.stderr));
}

const unpack = "import sys, zipfile; z = zipfile.ZipFile(sys.argv[1]); assert z.testzip() is None; z.extractall(sys.argv[2])";

// The files of the archive, unpacked while this program goes on.
async function unpacked(archive) {
  const folder = `${archive}.unpacked`;
  await promisify(execFile)("python3", ["-c", unpack, archive, folder]);
  return { folder, names: readdirSync(folder).sort() };
}

test("the canvas's link has the pictures that are chosen, as render draws them", async () => {
  const page = await open("/?view=canvas&entry=rows-emoji&language=ar&currency=€");
  await page.getByLabel("Scale").selectOption("3x");
  await page.waitForURL(/scale=3/);
  const [file] = await Promise.all([page.waitForEvent("download"), page.locator("a[download]").click()]);
  assert.equal(file.suggestedFilename(), "quillpad-canvas.zip");
  const { folder, names } = await unpacked(await file.path());
  assert.equal(names.length, 4);
  const name = "UnpaidMediumWidget-rows-emoji-393x852-ar-dark@3x.png";
  const expected = join(world.folder, "render.png");
  command("render", "UnpaidMediumWidget", "--sample", "rows-emoji", "--locale", "ar", "--currency", "€", "--appearance", "dark", "--scale", "3", "-o", expected);
  assert.ok(names.includes(name), names.join());
  assert.ok(readFileSync(join(folder, name)).equals(readFileSync(expected)));
});

test("all of a widget comes while the widgets stay live and the extension is killed, and what is missing is told", async () => {
  const answer = await world.fetch("/canvas.zip?screen=all&kind=UnpaidMediumWidget");
  assert.equal(answer.status, 200);
  let done = false;
  const all = answer.arrayBuffer().finally(() => (done = true));
  let [looks, slowest] = [0, 0];
  while (!done) {
    const asked = performance.now();
    assert.ok(await world.allLive());
    slowest = Math.max(slowest, performance.now() - asked);
    if (++looks % 20 === 10) world.childProcesses().slice(1).forEach((child) => process.kill(child, "SIGKILL"));
    await until("a moment passed", () => performance.now() - asked > 10);
  }
  const archive = join(world.folder, "canvas.zip");
  writeFileSync(archive, Buffer.from(await all));
  const { folder, names } = await unpacked(archive);
  const missing = names.includes("not-drawn.txt")
    ? readFileSync(join(folder, "not-drawn.txt"), "utf8").trim().split("\n") : [];
  for (const line of missing) assert.match(line, /^\S+\.png: The extension ended \(signal 9, Killed\)\.$/);
  assert.equal(names.filter((name) => name.endsWith(".png")).length + missing.length, 1960);
  assert.ok(looks > 20 && slowest < 3000, `${looks} looks, the slowest ${slowest} ms`);
});

test("nobody else is sent an archive, and those that left early hold no place", async () => {
  const path = "/canvas.zip?screen=all";
  assert.equal((await fetch(world.address + path)).status, 401);
  assert.equal((await world.fetch(path, { headers: { Origin: "https://page.test" } })).status, 403);
  const ask = async () => {
    const leaving = new AbortController();
    const { status } = await world.fetch(path, { signal: leaving.signal });
    return { status, leaving };
  };
  const several = await Promise.all([1, 2, 3, 4, 5, 6].map(ask));
  assert.deepEqual(several.map(({ status }) => status).sort(), [200, 200, 200, 200, 503, 503]);
  for (const { leaving } of several) leaving.abort();
  await until("there is a place again", async () => {
    const { status, leaving } = await ask();
    leaving.abort();
    return status === 200;
  });
  assert.ok(await world.allLive());
});

test("gallery writes the archive with the pictures of its folder", async () => {
  const [archive, folder] = [join(world.folder, "all.zip"), join(world.folder, "all")];
  command("gallery", "--all", "--state", "snapshot", "-o", archive);
  command("gallery", "--all", "--state", "snapshot", "-o", folder);
  const inArchive = await unpacked(archive);
  const inFolder = readdirSync(folder).filter((name) => name.endsWith(".png")).sort();
  assert.equal(inArchive.names.length, 700);
  assert.deepEqual(inArchive.names, inFolder.map((name) => name.replace(".png", "@2x.png")).sort());
  for (const name of inFolder) {
    const picture = readFileSync(join(inArchive.folder, name.replace(".png", "@2x.png")));
    assert.ok(picture.equals(readFileSync(join(folder, name))), name);
  }
});
