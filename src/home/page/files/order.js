// A widget is put elsewhere: dragged, on a touch screen after a long press, or moved with the arrow
// keys at its handle. A card may be replaced by a fresh one at any time, so it goes by its kind.

const moved = document.getElementById("moved");
const longPress = 400;
let drag = null;
let justDropped = false;

const cardOfKind = (kind) => [...home.children].find((card) => card.dataset.kind === kind);
const nextOf = (kind) => cardOfKind(kind).nextElementSibling?.dataset.kind ?? "";

function keepPlace(kind) {
  const [card, cards] = [cardOfKind(kind), [...home.children]];
  const name = card.querySelector(".name").textContent;
  moved.textContent = text("{1}: {2} of {3}", name, cards.indexOf(card) + 1, cards.length);
  return change(`/move?kind=${encodeURIComponent(kind)}&before=${encodeURIComponent(nextOf(kind))}`);
}

home.addEventListener("keydown", (event) => {
  const handle = event.target.closest(".move");
  if (!handle) return;
  const card = handle.closest(".widget");
  const forward = getComputedStyle(home).direction === "rtl" ? "ArrowLeft" : "ArrowRight";
  const goals = {
    [forward]: card.nextElementSibling?.nextElementSibling ?? null,
    [forward === "ArrowLeft" ? "ArrowRight" : "ArrowLeft"]: card.previousElementSibling,
    ArrowDown: card.nextElementSibling?.nextElementSibling ?? null,
    ArrowUp: card.previousElementSibling,
    Home: home.firstElementChild,
    End: null,
  };
  if (!(event.key in goals)) return;
  event.preventDefault();
  home.insertBefore(card, goals[event.key] ?? (event.key.endsWith("Up") ? home.firstElementChild : null));
  handle.focus();
  keepPlace(card.dataset.kind);
});

function lift() {
  if (!drag) return;
  const box = cardOfKind(drag.kind).getBoundingClientRect();
  Object.assign(drag, { lifted: true, held: [drag.x - box.x, drag.y - box.y], before: nextOf(drag.kind) });
  home.setPointerCapture(drag.pointer);
  follow(drag);
}

function follow({ x, y }) {
  const card = cardOfKind(drag.kind);
  if (!card) return;
  card.classList.add("lifted");
  card.style.translate = "";
  const under = [...home.children].find((other) => {
    const { left, right, top, bottom } = other.getBoundingClientRect();
    return other !== card && x >= left && x <= right && y >= top && y <= bottom;
  });
  const box = under?.getBoundingClientRect();
  const firstHalf = box && x < box.left + box.width / 2 === (getComputedStyle(home).direction === "ltr");
  const goal = under && `${under.dataset.kind} ${firstHalf}`;
  if (goal && goal !== drag.goal) home.insertBefore(card, firstHalf ? under : under.nextElementSibling);
  drag.goal = goal;
  const place = card.getBoundingClientRect();
  card.style.translate = `${x - drag.held[0] - place.x}px ${y - drag.held[1] - place.y}px`;
}

function drop(keeps) {
  clearTimeout(drag?.timer);
  const { lifted, kind, before } = drag ?? {};
  drag = null;
  const card = lifted && cardOfKind(kind);
  if (!card) return;
  card.classList.remove("lifted");
  card.style.translate = "";
  if (!keeps) home.insertBefore(card, cardOfKind(before) ?? null);
  else if (nextOf(kind) !== before) keepPlace(kind);
  justDropped = true;
  setTimeout(() => (justDropped = false));
}

home.addEventListener("pointerdown", (event) => {
  const card = event.target.closest(".widget");
  if (!card || event.button !== 0 || event.target.closest(".badge, button:not(.move)")) return;
  drag = { kind: card.dataset.kind, pointer: event.pointerId, x: event.clientX, y: event.clientY };
  if (event.pointerType === "touch") drag.timer = setTimeout(lift, longPress);
});
home.addEventListener("pointermove", (event) => {
  if (drag?.pointer !== event.pointerId) return;
  const { clientX: x, clientY: y } = event;
  if (drag.lifted) return follow({ x, y });
  if (Math.hypot(x - drag.x, y - drag.y) < 6) return;
  if (event.pointerType === "touch") drop(false);
  else lift();
});
home.addEventListener("pointerup", () => drop(true));
home.addEventListener("pointercancel", () => drop(false));
home.addEventListener("dragstart", (event) => event.preventDefault());
home.addEventListener("contextmenu", (event) => drag?.lifted && event.preventDefault());
home.addEventListener("touchmove", (event) => drag?.lifted && event.preventDefault(), { passive: false });
home.addEventListener("click", (event) => justDropped && event.preventDefault(), true);
document.addEventListener("keydown", ({ key }) => key === "Escape" && drop(false));
