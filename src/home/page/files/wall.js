// The home screen on a wall: as large as the window, and still to be read from the other side of
// the room.

const main = document.querySelector("main");
const line = document.createElement("p");
line.className = "line";
line.setAttribute("role", "status");
main.append(line);

// The cards in rows no wider than this, as the browser will break them.
function rowsWithin(width, gap) {
  const size = { width: 0, height: -gap };
  let [rowWidth, rowHeight] = [-gap, 0];
  const endRow = () => {
    size.width = Math.max(size.width, rowWidth);
    size.height += rowHeight + gap;
  };
  for (const card of home.children) {
    if (rowWidth > 0 && rowWidth + gap + card.offsetWidth > width) {
      endRow();
      [rowWidth, rowHeight] = [-gap, 0];
    }
    rowWidth += gap + card.offsetWidth;
    rowHeight = Math.max(rowHeight, card.offsetHeight);
  }
  endRow();
  return size;
}

// Breaks the rows where the cards come out largest.
function fit() {
  const gap = parseFloat(getComputedStyle(home).columnGap);
  const { paddingLeft, paddingTop } = getComputedStyle(main);
  const width = main.clientWidth - 2 * parseFloat(paddingLeft);
  const height = line.offsetTop - parseFloat(paddingTop);
  const widths = [...home.children].map((card) => card.offsetWidth);
  const candidates = widths.flatMap((_, from) =>
    widths.slice(from).map((_, more) => widths.slice(from, from + more + 1).reduce((sum, each) => sum + gap + each)));
  let best = { scale: 0, width: 0 };
  for (const candidate of new Set(candidates)) {
    const rows = rowsWithin(candidate, gap);
    const scale = Math.min(width / rows.width, height / rows.height);
    if (rows.width <= candidate && scale > best.scale) best = { scale, width: candidate };
  }
  home.style.width = `${best.width}px`;
  home.style.scale = best.scale;
}

// What the line says of kept figures is of no use without their age.
function keptSince() {
  const firstStale = home.querySelector('[data-status="stale"]');
  if (!firstStale?.matches(".kept")) return "";
  const dates = [...home.querySelectorAll(".kept .age time")].map((time) => Date.parse(time.dateTime));
  return says.clock(new Date(Math.min(...dates)), new Date());
}

function tellLine() {
  const { level, words } = overallState();
  const times = [...home.querySelectorAll('time[data-says="updated"]')].map((time) => Date.parse(time.dateTime));
  const since = level === "stale" && keptSince();
  const live = () => text("Live, {1}", clock(new Date(Math.min(...times, Date.now()))));
  const good = () => (times.length > 0 ? live() : document.getElementById("empty").textContent);
  const said = since ? text("{1}, as of {2}", words, since) : words || good();
  if (line.textContent === said) return;
  line.textContent = said;
  fit();
}

function showAll() {
  tellLine();
  fit();
}

new MutationObserver(showAll).observe(home, { childList: true, subtree: true, attributeFilter: ["data-status"] });
new MutationObserver(tellLine).observe(connection, { childList: true });
addEventListener("resize", fit);
showAll();

// A picture that stands still for months burns itself into a screen: it wanders by a few pixels.

const stillness = matchMedia("(prefers-reduced-motion: reduce)");
setInterval(() => {
  const turn = Date.now() / 600_000;
  const at = (speed) => (stillness.matches ? 0 : Math.round(6 * Math.sin(turn * speed)));
  main.style.translate = `${at(5)}px ${at(7)}px`;
}, 20_000);

// A click fills the screen and keeps it awake; from then on a tap on a card does what it says.

async function stayAwake() {
  try {
    if (!document.hidden) await navigator.wakeLock?.request("screen");
  } catch {} // refused on an empty battery: the system knows better
}

document.addEventListener("click", (event) => {
  if (document.fullscreenElement || !root.requestFullscreen) return;
  event.preventDefault();
  root.requestFullscreen().catch(() => {});
  stayAwake();
  document.addEventListener("visibilitychange", stayAwake); // a hidden page loses its lock
}, true);
