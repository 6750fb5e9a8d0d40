const root = document.documentElement;
const home = document.getElementById("home");
const gallery = document.getElementById("gallery");

// How long ago, and how soon.

const minute = 60_000;
const spans = [[24 * 60 * minute, "day"], [60 * minute, "hour"], [minute, "minute"]];
const relative = new Intl.RelativeTimeFormat(language, { style: "short" });
const format = (options) => {
  const { format } = new Intl.DateTimeFormat(language, options);
  return format;
};
const clock = format({ timeStyle: "short" });
const full = format({ dateStyle: "medium", timeStyle: "short" });
const exact = format({ timeStyle: "medium" });

// "in 4 min.", "2 hr. ago"; nothing below a minute.
function fromNow(time) {
  for (const [length, unit] of spans) {
    if (Math.abs(time) >= length) return relative.format(Math.trunc(time / length), unit);
  }
  return "";
}

const says = {
  updated: (date, now) => fromNow(Math.min(date - now, 0)) || text("just now"),
  reloads(date, now) {
    const left = date - now;
    if (left < -minute) return text("reload overdue");
    if (left <= 0) return text("reloads now");
    return text("reloads {1}", fromNow(left + minute / 2) || text("in under 1 min"));
  },
  clock: (date, now) => (date.toDateString() === now.toDateString() ? clock : full)(date),
  second: (date) => exact(date),
};
// On paper nothing is ever renewed.
const saysInPrint = {
  updated: (date) => text("updated {1}", full(date)),
  reloads: () => "",
  clock: full,
  second: full,
};

function tellTimes(inPrint = false) {
  const words = inPrint ? saysInPrint : says;
  const now = new Date();
  for (const time of document.querySelectorAll("time[data-says]")) {
    const date = new Date(time.dateTime);
    time.textContent = words[time.dataset.says](date, now);
    time.title = full(date);
  }
  for (const { dataset } of home.children) {
    if (dataset.status === "live" && now - Date.parse(dataset.reload) > minute) dataset.status = "stale";
  }
}

// Changes of the home screen. A card that is replaced keeps the keyboard's focus and its open badge.

function nodeFrom(html) {
  const template = document.createElement("template");
  template.innerHTML = html;
  return template.content.firstElementChild;
}

// A card whose figures are kept holds what the phone would show instead.
const asPhone = document.getElementById("as-phone");
const cardOf = new WeakMap();

function faceOf(card) {
  const onPhone = asPhone.checked && card.querySelector(".on-phone");
  if (!onPhone) return card;
  const face = onPhone.content.firstElementChild.cloneNode(true);
  cardOf.set(face, card);
  return face;
}

function chooseFaces() {
  for (const face of [...home.children]) replaceCard(face, faceOf(cardOf.get(face) ?? face));
  tellTimes();
}

function replaceCard(old, fresh) {
  if (old === fresh) return;
  const focused = old.contains(document.activeElement) && document.activeElement.localName;
  if (old.querySelector("details[open]")) fresh.querySelector("details")?.setAttribute("open", "");
  if (old.querySelector(".card").innerHTML !== fresh.querySelector(".card").innerHTML) fresh.classList.add("fresh");
  old.replaceWith(fresh);
  if (focused) (fresh.querySelector(focused) ?? fresh.querySelector("a, summary"))?.focus();
}

function apply(changes) {
  const cards = new Map([...home.children].map((card) => [card.dataset.kind, card]));
  for (const [kind, html] of Object.entries(changes.cards)) {
    const fresh = faceOf(nodeFrom(html));
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
  noticeReloaded();
  if (gallery.open) fillGallery();
}

const connection = document.getElementById("connection");

function hear({ changes, lost = false }) {
  connection.textContent = lost ? unanswered : "";
  root.toggleAttribute("data-lost", lost);
  if (changes) apply(changes);
}

const catchUp = listen(hear);

// What a person does. It is done as soon as the home screen answers, and after a restart by the
// page that takes the place of this one.

const unfinished = {
  keep(what) {
    try {
      sessionStorage.setItem("change", what);
    } catch {}
  },
  take() {
    try {
      const what = sessionStorage.getItem("change");
      sessionStorage.removeItem("change");
      return what;
    } catch {}
  },
};

async function change(what, isRepeated = false) {
  for (;;) {
    try {
      const answer = await fetch(what, { method: "POST", headers: { "X-Page-Token": meta("page-token") } });
      if (answer.status !== 403) break;
      if (isRepeated) return;
      unfinished.keep(what);
      return location.reload();
    } catch {
      unfinished.keep(what);
      hear({ lost: true });
      await new Promise((resolve) => setTimeout(resolve, 2000));
    }
  }
  unfinished.take();
  await catchUp();
}

const reload = document.getElementById("reload");
let reloadIsAsked = false;

function tellReload(state) {
  reload.dataset.progress = state;
  document.getElementById("reload-state").textContent = { working: text("Reloading…"), done: text("Reloaded") }[state] ?? "";
}

function noticeReloaded() {
  if (!reloadIsAsked || home.querySelector(".awaited")) return;
  reloadIsAsked = false;
  tellReload("done");
  setTimeout(() => reload.dataset.progress === "done" && tellReload(""), 2000);
}

reload.onclick = async () => {
  tellReload("working");
  await change("/reload");
  reloadIsAsked = true;
  noticeReloaded();
};
home.onclick = ({ target }) => {
  if (target.matches(".again")) change(`/reload?kind=${encodeURIComponent(target.closest(".widget").dataset.kind)}`);
};

const galleryState = document.getElementById("gallery-state");
let nextFilling = 0;

async function fillGallery() {
  const focused = document.activeElement?.dataset.kind;
  const items = document.getElementById("gallery-items");
  clearTimeout(nextFilling);
  if (!items.firstElementChild) galleryState.textContent = text("Asking for the widgets…");
  try {
    const answer = await fetch(`/gallery?lang=${language}`, { signal: AbortSignal.timeout(10_000) });
    if (!answer.ok) return;
    items.innerHTML = await answer.text();
    galleryState.textContent = items.firstElementChild ? "" : text("The extension has not listed its widgets yet.");
    if (focused) gallery.querySelector(`button[data-kind="${CSS.escape(focused)}"]`)?.focus();
  } catch {
    galleryState.textContent = unanswered;
    if (gallery.open) nextFilling = setTimeout(fillGallery, 2000);
  }
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

asPhone.onchange = () => {
  chooseFaces();
  try {
    localStorage.setItem("as-phone", asPhone.checked);
  } catch {}
};
try {
  asPhone.checked = localStorage.getItem("as-phone") === "true";
} catch {}

chooseFaces();
setInterval(() => tellTimes(), 10_000);
addEventListener("beforeprint", () => tellTimes(true));
addEventListener("afterprint", () => tellTimes());
const what = unfinished.take();
if (what) change(what, true);
else catchUp();
