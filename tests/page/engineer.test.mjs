// The engineer's view, the canvas and the extension's page in a browser, on the real programs.
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { open, programs, shareWorld, until, world } from "./World.mjs";

shareWorld();

const engineer = (choices) => open(`/?view=engineer&${new URLSearchParams(choices)}`);
const dated = (data) => JSON.stringify({ date: "2026-03-07T09:05:03.250Z", data });
const labelOf = (column) => column.locator("svg").first().getAttribute("aria-label");

test("a link reproduces the choices that were made by hand", async () => {
  const page = await open("/?view=engineer");
  await page.locator("[name=boxes]").check();
  for (const [name, value] of Object.entries({
    kind: "PendingMediumWidget", screen: "430x932", language: "fr", appearance: "dark", state: "snapshot", format: "png", scale: "3",
  })) {
    await page.locator(`[name=${name}]`).selectOption(value);
    await until(`${name} stands in the address`, () => page.url().includes(`${name}=${value}`));
  }
  const shown = async (tab) => ({
    title: await tab.title(),
    choices: await tab.locator("#choices").evaluate((form) => [...new FormData(form)]),
    captions: await tab.locator("figcaption").allInnerTexts(),
    pictures: await tab.locator(".shown img").evaluateAll((all) => all.map(({ alt, width, naturalWidth }) => ({ alt, width, naturalWidth }))),
    boxes: await tab.locator(".boxes rect").count(),
    tree: await tab.locator("pre").first().innerText(),
  });
  const there = await shown(page);
  assert.ok(there.boxes > 0 && there.captions.length === 3 && there.captions[0].startsWith("Dark, 364 × 170 at 3x"));
  const [, snapshot] = there.pictures;
  assert.deepEqual([snapshot.width, snapshot.naturalWidth], [364, 364 * 3]);
  assert.match(snapshot.alt, /Devis/i);
  assert.deepEqual(await shown(await open(page.url().slice(world.address.length))), there);
});

test("an entry typed by hand is rendered at once and stands in the address", async () => {
  const page = await engineer({ kind: "UnpaidSmallWidget" });
  const entry = page.getByLabel("Entry of your own");
  const last = page.locator(".column").last();
  await entry.fill(dated({ salesMonth: "0", unpaidInvoices: "<b>42</b>", pendingEstimates: "0" }));
  await until("the figure is text", async () => (await labelOf(last))?.includes("<b>42</b>"));
  assert.match(await last.innerText(), /Your entry/);
  const address = page.url();
  await page.goto("about:blank");
  await page.goto(address);
  assert.match(await labelOf(last), /42/);

  const running = world.extensionProcess();
  for (const [text, words] of [["{", "it is not JSON"], [dated({}), "The extension ended"]]) {
    await entry.fill(text);
    await until(`${words} shows`, async () => (await last.innerText()).includes(words));
  }
  assert.equal(world.extensionProcess(), running);
  assert.ok(await world.allLive());
});

test("names with markup are text in picture, alternative, tree and list", async () => {
  const names = ["<script>hurt=1</script>", "<img src=x onerror=hurt=1>", '"></svg><b onfocus="hurt=1">'];
  const entry = dated({ records: names.map((clientName, no) => ({ no: String(no), clientName, total: 1 })) });
  for (const [format, attribute] of [["svg", "aria-label"], ["png", "alt"]]) {
    const page = await engineer({ kind: "UnpaidMediumWidget", state: "entry", boxes: 1, format, entry });
    const said = await page.locator(".column").last().locator(".card > :first-child").first().getAttribute(attribute);
    for (const name of names) assert.ok(said.includes(name), said);
    for (const text of await page.locator("pre").allInnerTexts()) assert.ok(text.includes("<script>"));
    assert.equal(await page.locator("#results :is(script, b, img[src=x])").count(), 0);
    assert.equal(await page.evaluate(() => window.hurt), undefined);
  }
});

test("the pictures can be kept as files", async () => {
  const page = await engineer({ kind: "SalesSmallWidget" });
  for (const [name, start] of [["PNG", "\x89PNG"], ["SVG", "<svg"]]) {
    const waiting = page.waitForEvent("download");
    await page.getByRole("link", { name, exact: true }).first().click();
    const download = await waiting;
    assert.match(download.suggestedFilename(), /^SalesSmallWidget-.*\.(png|svg)$/);
    assert.ok(readFileSync(await download.path(), "latin1").startsWith(start));
  }
});

test("the editor marks the line that is wrong, and starts from a sample or from what is live", async () => {
  const page = await engineer({ kind: "SalesSmallWidget" });
  const editor = page.getByLabel("Entry of your own");
  const isMarked = () => editor.evaluate((field) => field.classList.contains("wrong"));
  await page.getByLabel("Start from").selectOption("sample/figures-usual");
  await until("the sample stands there", async () => (await editor.inputValue()).includes('"1234.5"'));
  await editor.fill((await editor.inputValue()).replace('"1234.5"', '"many"'));
  await until("a line is marked", isMarked);
  assert.equal(await editor.evaluate((field) => field.style.getPropertyValue("--wrong-line")), "3");
  assert.match(await page.locator(".column .problem").textContent(), /a number in "salesMonth"/);
  await page.getByLabel("Start from").selectOption("live");
  await until("what is live stands there", async () => !(await editor.inputValue()).includes("many") && !(await isMarked()));
  assert.doesNotMatch(page.url(), /entry=/);
  await page.getByRole("button", { name: "Freeze" }).click();
  await page.waitForURL(/&entry=/);
  const shared = await editor.inputValue();
  await page.goto(page.url());
  assert.equal(await editor.inputValue(), shared);
});

test("the canvas asks only for what is in sight, and what is chosen stands in the address", async () => {
  const page = await open("/", { viewport: { width: 1200, height: 800 } });
  const asked = new Set();
  page.on("request", (request) => request.url().includes("/picture.") && asked.add(request.url()));
  const areDrawn = () =>
    page.evaluate(() =>
      [...document.querySelectorAll(".cell img")]
        .filter((picture) => picture.getBoundingClientRect().top < innerHeight)
        .every((picture) => picture.complete && picture.naturalWidth > 0),
    );
  await page.goto(`${world.address}/?view=canvas&screen=all&kind=UnpaidMediumWidget`);
  await until("what is in sight is drawn", areDrawn);
  assert.equal(await page.locator(".count").textContent(), "1,960 pictures");
  assert.ok(asked.size > 10 && asked.size < 400, `${asked.size} of 1960 were asked for`);
  await page.getByLabel("Entry").selectOption("rows-seven");
  await page.waitForURL(/entry=rows-seven/);
  await page.getByLabel("Screen").selectOption("320x568");
  await page.waitForURL(/screen=320x568/);
  assert.equal(await page.locator(".count").textContent(), "14 pictures");
  await until("they are drawn", areDrawn);
  await page.locator(".cell").first().click();
  await page.waitForURL(/view=engineer/);
  assert.match(await page.getByLabel("Entry of your own").inputValue(), /Hillside Farm/);
});

test("a picture on the canvas is the one that render draws", async () => {
  const file = join(world.folder, "card.png");
  for (const [kind, choice, options, name] of [
    ["SalesSmallWidget", "state=snapshot&language=de", ["--state", "snapshot", "--locale", "de"],
      /"SalesSmallWidget-snapshot-393x852-de-light@2x.png"/],
    ["UnpaidMediumWidget", "state=entry&start=sample/rows-emoji&language=ar&currency=€&appearance=dark",
      ["--sample", "rows-emoji", "--locale", "ar", "--currency", "€", "--appearance", "dark"],
      /"UnpaidMediumWidget-rows-emoji-393x852-ar-dark@2x.png"/],
  ]) {
    const args = ["--extension", world.extension, "render", kind, ...options, "-o", file];
    const done = spawnSync(join(programs, "quillpad-home"), args, { env: world.environment });
    assert.equal(done.status, 0, String(done.stderr));
    const answer = await world.fetch(`/picture.png?kind=${kind}&${choice}`);
    assert.ok(readFileSync(file).equals(Buffer.from(await answer.arrayBuffer())), kind);
    assert.match(answer.headers.get("content-disposition"), name);
  }
});

test("the extension's page tells what it does and went through, and goes on telling", async () => {
  const page = await open("/?view=process");
  const shown = page.locator("#process");
  assert.match(await shown.textContent(), /SalesSmallWidget1 of the 40 to 70[^]*getDataMap: Status 200/);
  const [, used, limit] = (await shown.textContent()).match(/([\d.]+)\sMiB of ([\d.,]+)\sMiB/).map((text) => Number(text.replace(",", "")));
  assert.ok(0.5 < used && used < limit, `${used} of ${limit} MiB`);
  process.kill(world.extensionProcess(), "SIGKILL");
  await until("its end shows", async () => (await shown.textContent()).includes("signal 9, Killed"));
});
