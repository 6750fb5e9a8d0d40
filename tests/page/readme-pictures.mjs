// Makes docs/home-screen-light.jpg and docs/home-screen-dark.jpg: "node readme-pictures.mjs" in this
// folder, after a release build.
import { fileURLToPath } from "node:url";
import { World, launchBrowser, until } from "./World.mjs";

const docs = fileURLToPath(new URL("../../docs/", import.meta.url));
const world = await World.start();
const browser = await launchBrowser();
try {
  await until("all widgets are live", () => world.allLive());
  for (const colorScheme of ["light", "dark"]) {
    const page = await browser.newPage({
      viewport: { width: 860, height: 620 },
      deviceScaleFactor: 2,
      colorScheme,
    });
    await page.goto(world.address);
    await page.screenshot({ path: `${docs}home-screen-${colorScheme}.jpg`, quality: 88 });
  }
} finally {
  await browser.close();
  await world.end();
}
