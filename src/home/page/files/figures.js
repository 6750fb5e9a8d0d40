// Figures and times of day, as people of the page's language write them. No language has a name for 1024 times 1024 bytes.
const figureFormats = Object.fromEntries(
  Object.entries({
    number: {},
    byte: { style: "unit", unit: "byte", unitDisplay: "long" },
    mebibyte: { minimumFractionDigits: 1 },
    millisecond: { style: "unit", unit: "millisecond" },
  }).map(([unit, options]) => [unit, new Intl.NumberFormat(language, options)]),
);
const symbols = { mebibyte: "\u00a0MiB" };
const toTheSecond = new Intl.DateTimeFormat(language, { timeStyle: "medium" });

function sayFigures() {
  for (const figure of document.querySelectorAll("data[data-unit]")) {
    const { unit } = figure.dataset;
    figure.textContent = figureFormats[unit].format(figure.value) + (symbols[unit] ?? "");
  }
  for (const time of document.querySelectorAll('time[data-says="second"]')) {
    time.textContent = toTheSecond.format(new Date(time.dateTime));
  }
}
