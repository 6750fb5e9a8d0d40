// Each choice is rendered at once, and stands in the address.
const form = document.getElementById("choices");
const say = teller(document.getElementById("problem"));

const editor = form.elements.entry;
let untouched = editor.value; // as it starts, so that it need not stand in the address

// The wrong line is marked behind the text.
function markLine(line) {
  editor.style.setProperty("--wrong-line", line - 1);
  editor.classList.toggle("wrong", line > 0);
}

// One rendering is asked for at a time, and once more where something changed meanwhile: a queue of them would keep the
// extension at work for what is gone, and this page from showing what there is.
let isWanted = false;
let rendering;

function render() {
  isWanted = true;
  return (rendering ??= renderAsWanted());
}

async function renderAsWanted() {
  try {
    while (isWanted) {
      isWanted = false;
      await renderOnce();
    }
  } finally {
    rendering = undefined;
  }
}

function reasonOf({ status }, body, page) {
  if ([413, 414, 431].includes(status)) return text("The entry is too long to stand in an address.");
  return page.content.querySelector(".notice")?.textContent ?? body;
}

async function renderOnce() {
  const choices = [...new FormData(form)].filter(
    ([name, value]) => value && !(name === "entry" && form.elements.start.value && editor.value === untouched),
  );
  const address = `/?${new URLSearchParams(choices)}`;
  const answer = await fetch(address).catch(() => null);
  const body = await answer?.text().catch(() => null);
  const isLost = typeof body !== "string";
  const page = document.createElement("template");
  page.innerHTML = isLost ? "" : body;
  say({ failure: isLost ? unanswered : answer.ok ? "" : reasonOf(answer, body, page) });
  if (isLost || answer.status === 503) setTimeout(render, 2000);
  if (isLost || !answer.ok) return;
  inspector.renew(() => document.getElementById("results").replaceWith(page.content.getElementById("results")));
  const fresh = page.content.querySelector("textarea");
  editor.placeholder = fresh.placeholder;
  if (editor.value === untouched && !choices.some(([name]) => name === "entry")) editor.value = untouched = fresh.value;
  markLine(Number(fresh.dataset.wrongLine));
  document.title = page.content.querySelector("title").textContent;
  history.replaceState(null, "", address);
  inspector.keepInAddress();
}

for (const option of form.elements.language.options) {
  if (option.value) option.label = new Intl.DisplayNames(document.documentElement.lang, { type: "language" }).of(option.value);
}

let timer;
form.addEventListener("change", render);
form.elements.start.addEventListener("change", () => (editor.value = untouched = ""));
markLine(Number(editor.dataset.wrongLine));
for (const field of [editor, form.elements.currency]) {
  field.addEventListener("input", () => {
    clearTimeout(timer);
    timer = setTimeout(render, 300);
  });
}
// Puts what is shown into the address, so that the address shows the same from now on.
document.getElementById("freeze").onclick = () => {
  if (!editor.value) {
    form.elements.start.value = "live";
    render().then(() => editor.value && document.getElementById("freeze").click());
    return;
  }
  untouched = "";
  form.elements.start.value = "";
  render();
};
form.addEventListener("submit", (event) => {
  event.preventDefault();
  render();
});

// Another program, or another picture of this widget on the home screen, is shown at once.
let program;
listen(({ changes, lost: isLost }) => {
  say({ lost: isLost ? unanswered : "" });
  if (!changes) return;
  const isOther = program !== changes.program || form.elements.kind.value in changes.cards;
  program = changes.program;
  say({ notice: changes.notice });
  if (isOther) render();
})();
