// How far the whole home screen is live: in the tab's title, in its icon, and for the wall to say.

const icon = document.querySelector('link[rel="icon"]');
const [plainTitle, plainIcon] = [document.title, icon.href];
const dot = "%3Ccircle cx='25' cy='7' r='7' fill='%23f59e0b' stroke='%23fff' stroke-width='2'/%3E%3C/svg%3E";
const worstFirst = ["empty", "stale", "fallback", "placeholder"];

function overallState() {
  if (connection.textContent) return { level: "lost", words: text("The home screen does not answer") };
  const cards = [...home.children];
  for (const level of worstFirst) {
    const such = cards.filter((card) => card.dataset.status === level);
    if (such.length === 0) continue;
    const badge = such[0].querySelector(".badge summary")?.firstChild.textContent ?? text("Old picture");
    return { level, words: such.length === cards.length ? badge : text("{1}: {2} of {3}", badge, such.length, cards.length) };
  }
  return { level: "live", words: "" };
}

function tellState() {
  const { level, words } = overallState();
  root.dataset.state = level;
  const title = words ? `${words} · ${plainTitle}` : plainTitle;
  if (document.title === title) return;
  document.title = title;
  icon.href = words ? plainIcon.replace("%3C/svg%3E", dot) : plainIcon;
}

new MutationObserver(tellState).observe(document.querySelector("main"), {
  subtree: true,
  childList: true,
  characterData: true,
  attributeFilter: ["data-status"],
});
tellState();
