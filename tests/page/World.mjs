// The programs as a person runs them, in a home of their own: the demo gateway, a signed-in store
// and the live home screen, with a browser to look at it.
import assert from "node:assert/strict";
import { spawn, spawnSync } from "node:child_process";
import { existsSync, mkdtempSync, readFileSync, rmSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, afterEach, before } from "node:test";
import { setTimeout as pause } from "node:timers/promises";
import { fileURLToPath } from "node:url";
import { chromium } from "playwright-core";

export const build = process.env.QUILLPAD_BUILD ?? fileURLToPath(new URL("../../build/release", import.meta.url));
export const programs = join(build, "bin");
export const isSanitized = Boolean(process.env.QUILLPAD_SANITIZE); // and some ten times slower
const extensionUnderTest = join(build, "tests", "extension_under_test");
const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

const browserFlags = [
  "--no-sandbox",
  "--disable-gpu",
  "--disable-quic",
  "--no-first-run",
  "--disable-background-networking",
  "--disable-component-update",
  "--disable-sync",
];

// Asks until the answer is true; says what was waited for when it never is.
export async function until(what, answer, timeout = 30_000) {
  const end = Date.now() + timeout;
  for (;;) {
    if (await answer()) return;
    if (Date.now() > end) throw new Error(`waited in vain: ${what}`);
    await pause(20);
  }
}

export async function launchBrowser() {
  return chromium.launch({ executablePath: "/usr/bin/chromium", args: browserFlags });
}

export class World {
  folder = mkdtempSync(join(tmpdir(), "quillpad-page-"));
  gatewayPort = 0;
  extension = extensionUnderTest;
  more = {}; // of the environment
  options = []; // of serve
  processes = new Set();
  log = "";

  get environment() {
    return {
      PATH: process.env.PATH,
      LANG: this.locale ?? "C.UTF-8",
      HOME: this.folder,
      SSL_CERT_FILE: join(this.folder, "gateway", "certificate.pem"),
      TEST_GATEWAY_ORIGIN: `https://localhost:${this.gatewayPort}`,
      ...this.more,
    };
  }

  // Starts a program and resolves to it once its standard output has matched.
  async start(name, args, ready) {
    const child = spawn(join(programs, name), args, { env: this.environment });
    this.processes.add(child);
    let output = "";
    child.stderr.on("data", (data) => (this.log += data));
    child.ended = new Promise((resolve) => child.on("close", (code, signal) => resolve({ code, signal })));
    child.ended.then(() => this.processes.delete(child));
    child.stdout.on("data", (data) => (output += data));
    await until(`${name} says where it is: ${this.log}`, () => ready.test(output));
    child.ready = output.match(ready);
    return child;
  }

  async startGateway(fault = "off") {
    const args = ["--port", String(this.gatewayPort), "--state", join(this.folder, "gateway"), "--fault", fault];
    this.gateway = await this.start("quillpad-demo-gateway", args, /https:\/\/[^:\s]+:(\d+)/);
    this.gatewayPort = Number(this.gateway.ready[1]);
  }

  async stop(child, signal = "SIGTERM") {
    child.kill(signal);
    return child.ended;
  }

  settings(...args) {
    const done = spawnSync(join(programs, "quillpad-home"), ["settings", ...args], { env: this.environment });
    if (done.status !== 0) throw new Error(String(done.stderr));
  }

  signIn() {
    this.settings("sign-in", "--business-id", "demo", "--token-file", join(this.folder, "gateway", "token"));
    this.settings("currency", "$ - USD");
  }

  async startHome() {
    const args = ["--extension", this.extension, "serve", "--port", String(this.port ?? 0), ...this.options];
    this.home = await this.start("quillpad-home", args, /(http:\/\/127\.0\.0\.1:(\d+))\/\?.*key=(\w+)/);
    this.entrance = this.home.ready[0]; // what a person opens
    this.address = this.home.ready[1];
    this.port = this.home.ready[2]; // and stays there
    this.token = undefined;
    this.cookie = { name: `quillpad-home-${this.port}`, value: this.home.ready[3] };
  }

  async restartHome(signal) {
    await this.stop(this.home, signal);
    await this.startHome();
  }

  // With a signed-in store, until all widgets are live.
  async begin() {
    try {
      await this.startGateway();
      this.signIn();
      await this.startHome();
      await this.untilLive();
    } catch (error) {
      await this.end();
      throw error;
    }
    return this;
  }

  static start(settings) {
    return Object.assign(new World(), settings).begin();
  }

  // What the home screen runs now.
  childProcesses() {
    const home = this.home.pid;
    const file = `/proc/${home}/task/${home}/children`;
    return existsSync(file) ? readFileSync(file, "utf8").split(" ").filter(Boolean).map(Number) : [];
  }

  // The extension that the home screen runs now, or nothing.
  extensionProcess() {
    return this.childProcesses()[0];
  }

  // Asks the home screen as the page does.
  fetch(path, options = {}) {
    const headers = { Cookie: `${this.cookie.name}=${this.cookie.value}`, ...options.headers };
    return fetch(this.address + path, { ...options, headers });
  }

  // A context of the browser that the home screen knows already.
  async newContext(browser, options) {
    const context = await browser.newContext(options);
    await context.addCookies([{ ...this.cookie, url: this.address }]);
    return context;
  }

  async pageToken() {
    const html = await (await this.fetch("/")).text();
    return html.match(/name="page-token" content="(\w+)"/)[1];
  }

  // Asks the home screen for a change, as its page would.
  async change(what) {
    this.token ??= await this.pageToken();
    return this.fetch(what, { method: "POST", headers: { "X-Page-Token": this.token } });
  }

  // What the page would show: the markup of each card, by kind.
  async cards() {
    const changes = await (await this.fetch("/changes?since=0")).json();
    return changes.cards;
  }

  async looks() {
    return Object.entries(await this.cards()).map(([kind, html]) => ({
      kind,
      status: html.match(/data-status="(\w+)"/)[1],
      hasPicture: html.includes("<svg"),
      texts: [...html.matchAll(/<svg[^>]* aria-label="([^"]*)"/g)].flatMap(([, label]) => label.split(", ")),
    }));
  }

  async allLive(count = 5) {
    const looks = await this.looks();
    return looks.length === count && looks.every(({ status }) => status === "live");
  }

  untilLive() {
    return until("all widgets are live", () => this.allLive());
  }

  async end() {
    for (const child of [...this.processes]) await this.stop(child, "SIGKILL");
    rmSync(this.folder, { recursive: true, force: true });
  }
}

// What the tests of a file share. Each test's pages are closed after it; whatever they did, they broke no content policy
// and left no error on the console.
export let world, browser;
let contexts = [];
let problems = [];

export function shareWorld({ start = World.start, launch = launchBrowser } = {}) {
  before(async () => {
    world = await start();
    browser = await launch();
  });
  afterEach(async () => {
    for (const context of contexts.splice(0)) await context.close();
    assert.deepEqual(problems.splice(0), []);
  });
  after(async () => {
    await browser?.close();
    await world?.end();
  });
}

// A home screen or gateway that is gone, one that came anew, and a page that is not there.
function isExpected(message) {
  const [failure] = message.text().match(/(?<=^Failed to load resource: .*)(net::ERR|40[34]|502)/) ?? [];
  return failure === "404" ? message.location().url === message.page().url() : failure !== undefined;
}

// Opens a page beside the test's others, or with options in a context of its own.
export async function open(path = "/", options) {
  if (contexts.length === 0 || options) {
    const context = await world.newContext(browser, options);
    context.on("console", (message) => message.type() === "error" && !isExpected(message) && problems.push(message.text()));
    context.on("weberror", (failure) => problems.push(String(failure.error())));
    contexts.push(context);
  }
  const page = await contexts.at(-1).newPage();
  await page.goto(new URL(path, world.address).href);
  return page;
}

// The accessibility audit, or some of its rules, finds nothing.
export async function audit(page, rules) {
  await page.evaluate(axe);
  const { violations } = await page.evaluate((some) => axe.run(some ? { runOnly: some } : {}), rules);
  assert.deepEqual(violations.map(({ id, nodes }) => `${id}: ${nodes.map(({ html }) => html.slice(0, 120))}`), []);
}

// What is painted of the widget: its label for readers, in the appearance that shows.
export const labelOf = (page, kind = "SalesSmallWidget") =>
  page.locator(`[data-kind="${kind}"] .card svg:visible`).first().getAttribute("aria-label");

export async function reload(page) {
  await page.locator("#reload").click();
  await page.locator('#reload[data-progress="done"]').waitFor();
}

export async function openGallery(page) {
  await page.locator("#open-gallery").click();
  await page.locator("dialog .offer").last().waitFor();
}
