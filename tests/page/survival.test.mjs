// The home screen's processes: one, and none that is left behind.
import assert from "node:assert/strict";
import { spawn, spawnSync } from "node:child_process";
import { existsSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { programs, shareWorld, until, world } from "./World.mjs";

shareWorld({ launch: () => null });

const program = join(programs, "quillpad-home");

test("a second home screen and a taken port are told", () => {
  const { port, environment } = world;
  for (const [state, words] of [
    [environment.XDG_STATE_HOME, `a home screen is running already, at http://127.0.0.1:${port}/`],
    [join(world.folder, "elsewhere"), `port ${port}: another program uses it`],
  ]) {
    const env = { ...environment, XDG_STATE_HOME: state };
    const second = spawnSync(program, ["serve", "--port", port], { env, encoding: "utf8" });
    assert.equal(second.status, 1);
    assert.ok(second.stderr.includes(words), second.stderr);
  }
});

test("however the home screen ends, it leaves no process behind", async () => {
  for (const signal of ["SIGINT", "SIGTERM", "SIGKILL"]) {
    await world.untilLive();
    const extension = world.extensionProcess();
    await world.stop(world.home, signal);
    await until(`the extension is gone after ${signal}`, () => !existsSync(`/proc/${extension}`));
    await world.startHome();
  }
  await world.stop(world.home);

  const shell = spawn("sh", ["-c", `"$0" serve --port 0 & echo $!; wait`, program], { env: world.environment });
  let output = "";
  shell.stdout.on("data", (data) => (output += data));
  await until("it runs", () => output.includes("http://"));
  const home = output.match(/^\d+$/m)[0];
  shell.kill("SIGKILL");
  await until("it is gone with its parent", () => !existsSync(`/proc/${home}`));
});
