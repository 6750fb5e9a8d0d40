// The part of tools/readme-pictures that makes the pictures of the home screen and of the canvas,
// light and dark.
import { fileURLToPath } from "node:url";
import { World, launchBrowser, until } from "./World.mjs";

const docs = fileURLToPath(new URL("../../docs/", import.meta.url));
const world = await World.start();
const browser = await launchBrowser();
try {
  for (const colorScheme of ["light", "dark"]) {
    const page = await (await world.newContext(browser, {
      viewport: { width: 860, height: 620 },
      deviceScaleFactor: 2,
      colorScheme,
    })).newPage();
    await page.goto(world.address);
    await page.screenshot({ path: `${docs}home-screen-${colorScheme}.jpg`, quality: 88 });
    await page.setViewportSize({ width: 1270, height: 980 });
    await page.goto(`${world.address}/?view=canvas&entry=timeline`);
    await until("the canvas is drawn", () =>
      page.locator(".cell img").evaluateAll((pictures) =>
        pictures.filter((each) => each.getBoundingClientRect().top < innerHeight).every((each) => each.complete),
      ),
    );
    await page.screenshot({ path: `${docs}canvas-${colorScheme}.jpg`, quality: 88 });
  }
} finally {
  await browser.close();
  await world.end();
}
