// Figures and times of day, as people of the page's language write them.
const figureFormats = Object.fromEntries(
  Object.entries({
    number: {},
    byte: { style: "unit", unit: "byte", unitDisplay: "long" },
    megabyte: { style: "unit", unit: "megabyte", minimumFractionDigits: 1 },
    millisecond: { style: "unit", unit: "millisecond" },
  }).map(([unit, options]) => [unit, new Intl.NumberFormat(language, options)]),
);
const toTheSecond = new Intl.DateTimeFormat(language, { timeStyle: "medium" });

function sayFigures() {
  for (const figure of document.querySelectorAll("data[data-unit]")) {
    figure.textContent = figureFormats[figure.dataset.unit].format(figure.value);
  }
  for (const time of document.querySelectorAll('time[data-says="second"]')) {
    time.textContent = toTheSecond.format(new Date(time.dateTime));
  }
}
