// Faults are switched here, and the widgets asked anew, so that what comes of it shows at once.
const faults = document.getElementById("faults");
const switched = document.getElementById("switched");
const pageToken = document.querySelector('meta[name="page-token"]').content;

async function ask(path, method) {
  const answer = await fetch(path, { method, headers: { "X-Page-Token": pageToken } }).catch(() => null);
  if (answer?.status === 403) location.reload(); // the home screen was started anew
  return answer;
}

async function showFaults(method, choice = "") {
  const answer = await ask(`/switchboard?lang=${language}&${choice}`, method);
  if (answer?.ok) faults.innerHTML = await answer.text();
  switched.textContent = answer?.ok ? "" : ((await answer?.text()) ?? text("The home screen does not answer"));
  return answer?.ok;
}

faults.onsubmit = async (event) => {
  event.preventDefault();
  const choice = new URLSearchParams(new FormData(event.target));
  if ((await showFaults("POST", choice)) && (await ask("/reload", "POST"))?.ok) {
    switched.textContent = text("Switched. The widgets are asked anew.");
  }
};
showFaults("GET");
