// Each choice shows at once, and stands in the address.
const form = document.getElementById("choices");
const say = teller(document.getElementById("problem"));
form.addEventListener("change", () => form.requestSubmit());
form.addEventListener("submit", () => {
  for (const field of form.elements) field.disabled = !field.value;
});
addEventListener("pageshow", () => {
  for (const field of form.elements) field.disabled = false;
});

sayFigures();

function nameOf(tag) {
  try {
    return new Intl.DisplayNames(tag, { type: "language" }).of(tag);
  } catch {
    return tag; // whatever stands in the address
  }
}

for (const option of form.elements.language.options) {
  if (option.value) option.label = nameOf(option.value);
}

// A picture that cannot be had is marked; its cell leads to the reason.
const pictures = document.querySelectorAll(".cell img");
for (const picture of pictures) {
  const mark = () => picture.classList.toggle("failed", picture.complete && !picture.naturalWidth);
  picture.addEventListener("load", mark);
  picture.addEventListener("error", mark);
  if (picture.complete && picture.currentSrc) mark();
}

// Another program draws all of them anew, those in sight at once and the others once they are.
let program;
listen(({ changes, lost: isLost }) => {
  say({ lost: isLost ? unanswered : "" });
  if (!changes) return;
  if (program !== undefined && program !== changes.program) {
    for (const picture of pictures) {
      const address = new URL(picture.src);
      address.searchParams.set("program", changes.program);
      picture.src = address;
    }
  }
  program = changes.program;
  say({ notice: changes.notice });
})();
