// The faults of the demo gateway, switched from the page.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { World, audit, open, shareWorld, until, world } from "./World.mjs";

shareWorld({
  start() {
    const demo = new World();
    demo.options = ["--switchboard", join(demo.folder, "gateway", "switchboard.json")];
    return demo.begin();
  },
});

const notes = async () => Object.values(await world.cards()).join().match(/answered with status 500/g)?.length ?? 0;

test("a fault that is switched shows at once, and goes when it is switched off", async () => {
  const page = await open("/?view=process");
  const fault = page.getByRole("combobox", { name: "Fault" });
  await until("the faults are offered", async () => (await fault.count()) === 1);
  assert.equal(await fault.inputValue(), "off");
  const asked = await page.content();
  for (const file of ["switchboard.json", "token"]) {
    const text = readFileSync(join(world.folder, "gateway", file), "utf8");
    assert.ok(!asked.includes(file === "token" ? text.trim() : JSON.parse(text).token), file);
  }
  await fault.selectOption("status=500");
  await page.getByLabel("Delay").fill("0.2");
  await page.getByRole("button", { name: "Switch and reload" }).click();
  await until("every card says so", async () => (await notes()) === 5);
  await page.getByText("Switched. The widgets are asked anew.").waitFor();
  await page.getByText(/getDataMap: Status 500, 2\d\d ms/).first().waitFor();
  await audit(page);

  await page.reload();
  await until("the fault in force is chosen", async () => (await fault.inputValue()) === "status=500");
  await fault.selectOption("drop");
  await page.getByRole("button", { name: "Switch and reload" }).click();
  await until("the figures are kept", async () => Object.values(await world.cards()).every((html) => html.includes("Kept figures")));
  await fault.selectOption("off");
  await page.getByLabel("Delay").fill("0");
  await page.getByRole("button", { name: "Switch and reload" }).click();
  await until("all are live again", async () => (await world.allLive()) && (await notes()) === 0);
});

test("only the page switches, and a gateway that is gone or came anew is told", async () => {
  for (const [method, token, status] of [["POST", "guessed", 403], ["GET", "", 200]]) {
    const answer = await world.fetch("/switchboard?fault=drop&delay=0", { method, headers: { "X-Page-Token": token } });
    assert.equal(answer.status, status);
  }
  assert.equal((await fetch(`${world.address}/switchboard`)).status, 401);
  const foreign = await world.fetch("/switchboard", { headers: { Origin: "https://page.test" } });
  assert.equal(foreign.status, 403);
  assert.ok(await world.allLive());

  await world.stop(world.gateway);
  const page = await open("/?view=process");
  await page.getByText("The switchboard does not answer: Could not connect to the server.").waitFor();
  await world.startGateway();
  await page.reload();
  await page.getByRole("combobox", { name: "Fault" }).waitFor();
});

test("without a switchboard nothing of it is on the page", async () => {
  world.options = [];
  await world.restartHome();
  const html = await (await world.fetch("/?view=process")).text();
  assert.ok(!html.includes("switchboard") && !html.includes("Faults"));
  assert.equal((await world.fetch("/switchboard")).status, 404);
});
