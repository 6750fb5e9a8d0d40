// Each choice is rendered at once, and stands in the address.
const form = document.getElementById("choices");
const problem = document.getElementById("problem");
let latest = 0;

const editor = form.elements.entry;
let untouched = editor.value; // as it starts, so that it need not stand in the address

// The wrong line is marked behind the text.
function markLine(line) {
  editor.style.setProperty("--wrong-line", line - 1);
  editor.classList.toggle("wrong", line > 0);
}

async function render() {
  const turn = ++latest;
  const choices = [...new FormData(form)].filter(
    ([name, value]) => value && !(name === "entry" && form.elements.start.value && editor.value === untouched),
  );
  const address = `/?${new URLSearchParams(choices)}`;
  const answer = await fetch(address).catch(() => null);
  if (turn !== latest) return;
  if (!answer?.ok) {
    problem.textContent =
      answer?.status === 414 || answer?.status === 431 || answer?.status === 413
        ? text("The entry is too long to stand in an address.")
        : text("The home screen does not answer. Is it still running?");
    return;
  }
  problem.textContent = "";
  const html = await answer.text();
  if (turn !== latest) return;
  const page = document.createElement("template");
  page.innerHTML = html;
  inspector.renew(() => document.getElementById("results").replaceWith(page.content.getElementById("results")));
  const fresh = page.content.querySelector("textarea");
  editor.placeholder = fresh.placeholder;
  if (!choices.some(([name]) => name === "entry")) editor.value = untouched = fresh.value;
  markLine(Number(fresh.dataset.wrongLine));
  document.title = page.content.querySelector("title").textContent;
  history.replaceState(null, "", address);
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
let notice = "";
const lost = text("The home screen does not answer. Trying again…");
listen(({ changes, lost: isLost }) => {
  if (isLost) problem.textContent = lost;
  else if (problem.textContent === lost) problem.textContent = "";
  if (!changes) return;
  const isOther = program !== changes.program || form.elements.kind.value in changes.cards;
  program = changes.program;
  if (changes.notice || problem.textContent === notice) problem.textContent = changes.notice;
  notice = changes.notice;
  if (isOther) render();
})();
