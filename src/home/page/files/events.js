// Changes of the home screen, as every page of it hears them. One tab listens for all: browsers allow
// a handful of connections to one place, whatever the number of tabs. The tab that holds the lock
// hears the home screen and tells the others.

const meta = (name) => document.querySelector(`meta[name="${name}"]`).content;
const instance = meta("instance");
let version = Number(meta("version"));
const unanswered = text("The home screen does not answer. Trying again…");

// Calls take({ changes, lost }) with what is new, or that the home screen does not answer. Returns
// what asks for the changes at once. What was told between the making of this page and now is asked
// for, and so is what a page missed for any other reason.
function listen(take) {
  const channel = new BroadcastChannel(`quillpad-home-${language}`);
  const hear = ({ changes, lost }) => {
    if (changes && changes.instance !== instance) return location.reload();
    const isNew = changes && changes.version > version;
    if (isNew && changes.since > version) return catchUp();
    if (isNew) version = changes.version;
    take({ changes: isNew ? changes : null, lost });
  };
  channel.onmessage = ({ data }) => hear(data);

  const open = () => {
    const events = new EventSource(`/events?since=${version}&instance=${instance}&lang=${language}`);
    const tell = (message) => {
      channel.postMessage(message);
      hear(message);
    };
    events.onopen = () => tell({});
    events.onmessage = ({ data }) => tell({ changes: JSON.parse(data) });
    events.onerror = () => {
      tell({ lost: true });
      if (events.readyState === EventSource.CLOSED) setTimeout(open, 2000);
    };
  };

  let nextTry = 0;
  const catchUp = async () => {
    clearTimeout(nextTry);
    try {
      const answer = await fetch(`/changes?since=${version}&lang=${language}`);
      if (answer.ok) hear({ changes: await answer.json() });
    } catch {
      hear({ lost: true });
      nextTry = setTimeout(catchUp, 2000);
    }
  };

  navigator.locks.request(`quillpad-home-${language}`, () => {
    open();
    return new Promise(() => {});
  });
  addEventListener("pageshow", ({ persisted }) => persisted && catchUp());
  document.addEventListener("visibilitychange", () => document.hidden || catchUp());
  catchUp();
  return catchUp;
}

// Says in the element what is most urgent: that nobody answers, why nothing new is shown, which it may say already, or what
// the home screen notices, which it holds.
function teller(element) {
  const said = { lost: "", failure: element.textContent, notice: element.dataset.notice };
  const say = (words) => {
    Object.assign(said, words);
    const most = said.lost || said.failure || said.notice;
    if (element.textContent !== most) element.textContent = most;
  };
  say({});
  return say;
}
