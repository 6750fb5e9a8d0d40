const meta = (name) => document.querySelector(`meta[name="${name}"]`).content;
const home = document.getElementById("home");
const gallery = document.getElementById("gallery");
const instance = meta("instance");
let version = Number(meta("version"));

// How long ago, and how soon.

const minute = 60_000;
const spans = [[24 * 60 * minute, "d"], [60 * minute, "h"], [minute, "min"]];

function inWords(time) {
  for (const [length, unit] of spans) {
    if (time >= length) return `${Math.floor(time / length)} ${unit}`;
  }
  return "";
}

function tellTimes() {
  for (const time of document.querySelectorAll("time[data-says]")) {
    const distance = Date.parse(time.dateTime) - Date.now();
    const words = inWords(Math.abs(distance) + (distance > 0 ? minute / 2 : 0));
    if (time.dataset.says === "updated") {
      time.textContent = words ? `${words} ago` : "just now";
    } else {
      const overdue = distance < -minute;
      time.textContent = overdue ? "reload overdue" : distance > 0 && words ? `reloads in ${words}` : "reloads now";
      const card = time.closest(".widget");
      if (overdue && card.dataset.status === "live") card.dataset.status = "stale";
    }
    time.title = new Date(time.dateTime).toLocaleString();
  }
}

// Changes of the home screen. A card that is replaced keeps the keyboard's focus and its open badge.

function nodeFrom(html) {
  const template = document.createElement("template");
  template.innerHTML = html;
  return template.content.firstElementChild;
}

function replaceCard(old, fresh) {
  const focused = old.contains(document.activeElement) && document.activeElement.localName;
  if (old.querySelector("details[open]")) fresh.querySelector("details")?.setAttribute("open", "");
  if (old.querySelector(".card").innerHTML !== fresh.querySelector(".card").innerHTML) fresh.classList.add("fresh");
  old.replaceWith(fresh);
  if (focused) (fresh.querySelector(focused) ?? fresh.querySelector("a, summary"))?.focus();
}

function apply(changes) {
  if (changes.instance !== instance) return location.reload();
  if (changes.version <= version) return;
  version = changes.version;
  const cards = new Map([...home.children].map((card) => [card.dataset.kind, card]));
  for (const [kind, html] of Object.entries(changes.cards)) {
    const fresh = nodeFrom(html);
    if (cards.has(kind)) replaceCard(cards.get(kind), fresh);
    cards.set(kind, fresh);
  }
  changes.order.forEach((kind, place) => {
    const card = cards.get(kind);
    if (card && home.children[place] !== card) home.insertBefore(card, home.children[place] ?? null);
  });
  while (home.children.length > changes.order.length) home.lastElementChild.remove();
  for (const [id, text] of [["notice", changes.notice], ["empty", changes.empty]]) {
    const element = document.getElementById(id);
    if (element.textContent !== text) element.textContent = text;
  }
  tellTimes();
  if (gallery.open) fillGallery();
}

// One tab listens for all: browsers allow a handful of connections to one place, whatever the
// number of tabs. The tab that holds the lock hears the home screen and tells the others.

const connection = document.getElementById("connection");
const channel = new BroadcastChannel("quillpad-home");
channel.onmessage = ({ data }) => hear(data);

function hear({ changes, lost }) {
  connection.textContent = lost ? "The home screen does not answer. Trying again…" : "";
  if (changes) apply(changes);
}

function listen() {
  const events = new EventSource(`/events?since=${version}&instance=${instance}`);
  const tell = (message) => {
    channel.postMessage(message);
    hear(message);
  };
  events.onopen = () => tell({});
  events.onmessage = ({ data }) => tell({ changes: JSON.parse(data) });
  events.onerror = () => {
    tell({ lost: true });
    if (events.readyState === EventSource.CLOSED) setTimeout(listen, 2000);
  };
}

async function catchUp() {
  try {
    const answer = await fetch(`/changes?since=${version}`);
    if (answer.ok) hear({ changes: await answer.json() });
  } catch {}
}

navigator.locks.request("quillpad-home", () => {
  listen();
  return new Promise(() => {});
});
addEventListener("pageshow", ({ persisted }) => persisted && catchUp());
document.addEventListener("visibilitychange", () => document.hidden || catchUp());
catchUp();

// What a person does.

async function change(what) {
  try {
    const answer = await fetch(what, { method: "POST", headers: { "X-Page-Token": meta("page-token") } });
    if (answer.status === 403) return location.reload();
  } catch {
    return hear({ lost: true });
  }
  await catchUp();
}

document.getElementById("reload").onclick = () => change("/reload");

async function fillGallery() {
  const focused = document.activeElement?.dataset.kind;
  const answer = await fetch("/gallery").catch(() => null);
  if (!answer?.ok) return;
  document.getElementById("gallery-items").innerHTML = await answer.text();
  if (focused) gallery.querySelector(`button[data-kind="${CSS.escape(focused)}"]`)?.focus();
}

document.getElementById("open-gallery").onclick = () => {
  gallery.showModal();
  fillGallery();
};
document.getElementById("close-gallery").onclick = () => gallery.close();
gallery.onclick = (event) => {
  const { action, kind } = event.target.dataset;
  if (action) change(`/${action}?kind=${encodeURIComponent(kind)}`);
  else if (event.target === gallery) gallery.close();
};

document.addEventListener("click", ({ target }) => {
  for (const badge of document.querySelectorAll("details.badge[open]")) {
    if (!badge.contains(target)) badge.open = false;
  }
});
document.addEventListener("keydown", ({ key }) => {
  if (key !== "Escape") return;
  for (const badge of document.querySelectorAll("details.badge[open]")) {
    badge.open = false;
    badge.querySelector("summary").focus();
  }
});

const root = document.documentElement;
for (const choice of document.querySelectorAll(".appearance input")) {
  choice.checked = choice.value === (root.dataset.appearance ?? "auto");
  choice.onchange = () => {
    if (choice.value === "auto") delete root.dataset.appearance;
    else root.dataset.appearance = choice.value;
    try {
      localStorage.setItem("appearance", choice.value);
    } catch {}
  };
}

tellTimes();
setInterval(tellTimes, 10_000);
