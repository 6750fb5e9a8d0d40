// Each choice is rendered at once, and stands in the address.
const form = document.getElementById("choices");
const problem = document.getElementById("problem");
let latest = 0;

async function render() {
  const turn = ++latest;
  const address = `/?${new URLSearchParams([...new FormData(form)].filter(([, value]) => value))}`;
  const answer = await fetch(address).catch(() => null);
  if (turn !== latest) return;
  if (!answer?.ok) {
    problem.textContent =
      answer?.status === 414 || answer?.status === 431 || answer?.status === 413
        ? "The entry is too long to stand in an address."
        : "The home screen does not answer. Is it still running?";
    return;
  }
  problem.textContent = "";
  const html = await answer.text();
  if (turn !== latest) return;
  const page = document.createElement("template");
  page.innerHTML = html;
  document.getElementById("results").replaceWith(page.content.getElementById("results"));
  form.elements.entry.placeholder = page.content.querySelector("textarea").placeholder;
  document.title = page.content.querySelector("title").textContent;
  history.replaceState(null, "", address);
}

for (const option of form.elements.language.options) {
  if (option.value) option.label = new Intl.DisplayNames(option.value, { type: "language" }).of(option.value);
}

let timer;
form.addEventListener("change", render);
form.elements.entry.addEventListener("input", () => {
  clearTimeout(timer);
  timer = setTimeout(render, 300);
});
form.addEventListener("submit", (event) => {
  event.preventDefault();
  render();
});
