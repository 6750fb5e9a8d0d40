// Runs before the first paint, so that a forced appearance never flashes.
try {
  const chosen = localStorage.getItem("appearance");
  if (chosen === "light" || chosen === "dark") document.documentElement.dataset.appearance = chosen;
} catch {}
