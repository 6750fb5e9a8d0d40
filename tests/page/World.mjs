// The programs as a person runs them, in a home of their own: the demo gateway, a signed-in store
// and the live home screen, with a browser to look at it.
import { spawn, spawnSync } from "node:child_process";
import { existsSync, mkdtempSync, readFileSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { setTimeout as pause } from "node:timers/promises";
import { fileURLToPath } from "node:url";
import { chromium } from "playwright-core";

export const build = process.env.QUILLPAD_BUILD ?? fileURLToPath(new URL("../../build/release", import.meta.url));
export const programs = join(build, "bin");
const extensionUnderTest = join(build, "tests", "extension_under_test");

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
export async function until(what, answer, patience = 30_000) {
  const end = Date.now() + patience;
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
    this.home = await this.start("quillpad-home", args, /(http:\/\/127\.0\.0\.1:(\d+))\/\?key=(\w+)/);
    this.entrance = this.home.ready[0]; // what a person opens
    this.address = this.home.ready[1];
    this.cookie = { name: `quillpad-home-${this.home.ready[2]}`, value: this.home.ready[3] };
  }

  static async start(locale) {
    const world = new World();
    world.locale = locale;
    await world.startGateway();
    world.signIn();
    await world.startHome();
    return world;
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

  // Asks the home screen for a change, with the token of its page.
  change(what, token) {
    return this.fetch(what, { method: "POST", headers: { "X-Page-Token": token } });
  }

  // What the page would show: the markup of each card, by kind.
  async cards() {
    const changes = await (await this.fetch("/changes?since=0")).json();
    return changes.cards;
  }

  async allLive(count = 5) {
    const cards = Object.values(await this.cards());
    return cards.length === count && cards.every((html) => html.includes('data-status="live"'));
  }

  async end() {
    for (const child of [...this.processes]) await this.stop(child, "SIGKILL");
    rmSync(this.folder, { recursive: true, force: true });
  }
}
