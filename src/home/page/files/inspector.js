// What is pointed at in the card, in the view tree or in the display list lights up in all three, and its facts are shown.
// What is kept stands in the address.
const inspector = (() => {
  let nodes = [];
  let pinned = -1;
  let lit = -1;

  const root = () => document.querySelector(".inspector");
  const rows = (list = root()) => [...(list?.querySelectorAll(".row") ?? [])];
  const nodeOf = (element) => Number(element.dataset.node);
  const around = ([x, y, width, height]) => `M${x} ${y}h${width}v${height}h${-width}z`;

  const cards = () => document.querySelectorAll(".column.chosen .card");

  // Lies over the card: the frame, hatched where it is padding, and the baselines.
  function drawOn(card, node) {
    card.querySelector(".inspected")?.remove();
    if (!node) return;
    const [width, height] = ["width", "height"].map((side) => card.firstElementChild.getAttribute(side));
    const svg = document.createElementNS("http://www.w3.org/2000/svg", "svg");
    const add = (name, attributes) => {
      const shape = svg.appendChild(document.createElementNS(svg.namespaceURI, name));
      for (const [key, value] of Object.entries(attributes)) shape.setAttribute(key, value);
    };
    svg.setAttribute("viewBox", `0 0 ${width} ${height}`);
    svg.setAttribute("class", "inspected");
    svg.setAttribute("aria-hidden", "true");
    if (node.inside) add("path", { class: "inset", d: around(node.frame) + around(node.inside) });
    const [x, y, w, h] = node.frame;
    add("rect", { class: "frame", x, y, width: Math.max(w, 0), height: Math.max(h, 0) });
    for (const baseline of node.baselines) add("path", { class: "baseline", d: `M${x} ${baseline}h${w}` });
    card.append(svg);
  }

  function tell(node) {
    const [hint, title, list] = root().querySelector(".facts").children;
    hint.hidden = Boolean(node);
    title.hidden = !node;
    title.textContent = node?.label ?? "";
    list.replaceChildren(
      ...(node?.facts ?? []).map((fact) => {
        const pair = document.createElement("div");
        pair.append(...["dt", "dd"].map((name) => document.createElement(name)));
        fact.forEach((words, i) => (pair.children[i].textContent = words));
        return pair;
      }),
    );
  }

  // Brings the row into sight without moving the page.
  function reveal(row) {
    const list = row.parentElement;
    const above = list.scrollTop - row.offsetTop;
    const below = row.offsetTop + row.offsetHeight - list.scrollTop - list.clientHeight;
    if (above > 0) list.scrollTop -= above;
    else if (below > 0) list.scrollTop += below;
  }

  function light(index, from) {
    if (!root() || index === lit) return;
    lit = index;
    const node = nodes[index];
    for (const card of cards()) drawOn(card, node);
    tell(node);
    const seen = new Set();
    for (const row of rows()) {
      const isLit = index >= 0 && nodeOf(row) === index;
      row.classList.toggle("lit", isLit);
      if (isLit && row.parentElement !== from && !seen.has(row.parentElement)) {
        seen.add(row.parentElement);
        reveal(row);
      }
    }
  }

  function pin(index) {
    pinned = index;
    for (const row of rows()) row.setAttribute("aria-selected", String(index >= 0 && nodeOf(row) === index));
    light(index);
    keepInAddress();
  }

  function keepInAddress() {
    const address = new URL(location);
    if (pinned < 0) address.searchParams.delete("node");
    else address.searchParams.set("node", pinned);
    if (address.href !== location.href) history.replaceState(null, "", address);
  }

  const toggle = (index) => pin(index === pinned ? -1 : index);

  // The innermost node there; of those over each other the last.
  function nodeAt({ clientX, clientY }, card) {
    const box = card.firstElementChild.getBoundingClientRect();
    const scale = Number(card.firstElementChild.getAttribute("width")) / box.width;
    const [x, y] = [(clientX - box.left) * scale, (clientY - box.top) * scale];
    return nodes.findLastIndex(
      ({ frame: [left, top, width, height] }) => x >= left && y >= top && x < left + width && y < top + height,
    );
  }

  const rowOf = (target) => target.closest?.(".inspector .row");
  const cardOf = (target) => target.closest?.(".column .card");
  const isInspected = (card) => card.matches(".chosen *");

  document.addEventListener("pointermove", (event) => {
    const card = cardOf(event.target);
    if (card && isInspected(card)) return light(nodeAt(event, card));
    const row = rowOf(event.target);
    if (row) return light(nodeOf(row), row.parentElement);
    const focused = root()?.querySelector(".row:focus-visible");
    light(focused ? nodeOf(focused) : pinned);
  });

  document.addEventListener("click", (event) => {
    const warning = event.target.closest(".warnings button");
    const row = rowOf(event.target);
    const card = cardOf(event.target);
    if (warning) {
      pin(nodeOf(warning));
      focus(rows().find((each) => nodeOf(each) === pinned));
    } else if (row) {
      toggle(nodeOf(row));
    } else if (card && isInspected(card)) {
      toggle(nodeAt(event, card));
    } else if (card) {
      const { state } = document.getElementById("choices").elements;
      state.value = card.closest(".column").dataset.state;
      state.dispatchEvent(new Event("change", { bubbles: true }));
    }
  });

  // Each list is one stop of the tab key.
  function makeStop(row) {
    for (const other of rows(row.parentElement)) other.tabIndex = other === row ? 0 : -1;
  }

  function focus(row) {
    if (!row) return;
    makeStop(row);
    row.focus();
  }

  document.addEventListener("focusin", ({ target }) => {
    const row = rowOf(target);
    if (!row) return;
    makeStop(row);
    light(nodeOf(row), row.parentElement);
  });
  document.addEventListener("focusout", ({ target }) => rowOf(target) && light(pinned));

  document.addEventListener("keydown", (event) => {
    if (event.key === "Escape" && !event.target.closest("#choices")) return pin(-1);
    const row = rowOf(event.target);
    if (!row || event.ctrlKey || event.altKey || event.metaKey) return;
    const all = rows(row.parentElement);
    const at = all.indexOf(row);
    const isTree = row.getAttribute("role") === "treeitem";
    const level = (each) => Number(each?.getAttribute("aria-level"));
    const steps = {
      ArrowDown: () => all[at + 1],
      ArrowUp: () => all[at - 1],
      Home: () => all[0],
      End: () => all.at(-1),
      ArrowLeft: () => isTree && all[nodes[nodeOf(row)].parent],
      ArrowRight: () => isTree && level(all[at + 1]) > level(row) && all[at + 1],
    };
    if (event.key in steps) focus(steps[event.key]());
    else if (event.key === "Enter" || event.key === " ") toggle(nodeOf(row));
    else return;
    event.preventDefault();
  });

  // Takes up what is shown now; the same node stays pinned, the same row keeps the focus.
  function renew(replace = () => {}) {
    const before = nodes[pinned]?.label;
    const row = rowOf(document.activeElement);
    const [role, at] = [row?.getAttribute("role"), row && rows(row.parentElement).indexOf(row)];
    replace();
    nodes = root() ? JSON.parse(root().dataset.nodes) : [];
    for (const list of root()?.querySelectorAll("pre") ?? []) if (rows(list).length) makeStop(rows(list)[0]);
    lit = undefined;
    pin(nodes[pinned]?.label === before ? pinned : -1);
    if (row) focus([...document.querySelectorAll(`.inspector [role=${role}]`)][at]);
  }

  const linked = new URLSearchParams(location.search).get("node");
  renew();
  if (nodes[linked]) pin(Number(linked));
  return { renew, keepInAddress };
})();
