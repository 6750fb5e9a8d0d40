// What the scripts say, in the page's language; the English text is the key.
const language = document.documentElement.lang;
const texts = JSON.parse(document.getElementById("texts").textContent);
const text = (english, ...values) =>
  (texts[english] ?? english).replace(/\{(\d)\}/g, (place, number) => values[number - 1] ?? place);
