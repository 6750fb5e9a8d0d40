// A tap leads into the application. A browser that knows none for the link stays silent, so the page
// says what was opened and what became of it.

const tapped = document.getElementById("tapped");
const timeout = 1500;
let tap = 0;

home.addEventListener("click", (event) => {
  const link = event.target.closest("a.card")?.getAttribute("href");
  if (!link || event.defaultPrevented) return;
  const address = `\u2068${link}\u2069`; // whatever the direction around it
  const ended = new AbortController();
  let taken = false;
  for (const what of ["blur", "visibilitychange"]) {
    addEventListener(what, () => (taken = true), { capture: true, signal: ended.signal });
  }
  tapped.textContent = text("Opening {1}…", address);
  clearTimeout(tap);
  tap = setTimeout(() => {
    ended.abort();
    tapped.textContent = taken ? text("{1} was opened.", address) : text("No application here opens {1}.", address);
    tap = setTimeout(() => (tapped.textContent = ""), 8000);
  }, timeout);
});
