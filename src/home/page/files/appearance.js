// The key of the printed address has done its part: the cookie has taken its place.
const place = new URL(location.href);
if (place.searchParams.has("key")) {
  place.searchParams.delete("key");
  history.replaceState(null, "", place);
}
// Runs before the first paint, so that a forced appearance never flashes.
try {
  const chosen = localStorage.getItem("appearance");
  if (chosen === "light" || chosen === "dark") document.documentElement.dataset.appearance = chosen;
} catch {}
