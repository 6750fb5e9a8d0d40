#include "home/page/ProcessPage.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string_view>
#include <utility>

#include "home/extension/WidgetStatus.h"
#include "home/page/Figures.h"
#include "home/page/PageFiles.h"

namespace quillpad::home {
namespace {

// What a phone grants a widget that is often seen, in 24 hours.
constexpr std::size_t leastReloads = 40;
constexpr std::size_t mostReloads = 70;

Markup row(const Markup& head, const Markup& text, bool isWarning = false) {
  return filled(
      page::processRowHtml,
      {{"class", escaped(isWarning ? "warning" : "")}, {"head", head}, {"text", text}});
}

Markup orNone(const Markup& rows, const std::string& none) {
  return rows.empty() ? filled(page::processNoteHtml, {{"text", escaped(none)}}) : rows;
}

// A name or a line of a program's, whose direction is its own.
Markup isolated(std::string_view text) {
  return filled(page::isolatedHtml, {{"text", escaped(text)}});
}

std::string wordFor(Purpose purpose, const Language& language) {
  switch (purpose) {
    case Purpose::catalogue:
      return language.text("List of the widgets");
    case Purpose::ping:
      return language.text("Sign of life");
    case Purpose::placeholder:
      return language.text("Placeholder");
    case Purpose::snapshot:
      return language.text("Snapshot");
    case Purpose::timeline:
      return language.text("Timeline");
    case Purpose::rendering:
    case Purpose::keptRendering:
      break;
  }
  return language.text("Picture");
}

Markup budgetMarkup(std::size_t timelines, const Language& language) {
  return filledIn(
      timelines > mostReloads ? language.text("{1}, more than the {2} to {3} that a phone grants")
                              : language.text("{1} of the {2} to {3} that a phone grants"),
      {numberMarkup(timelines), numberMarkup(leastReloads), numberMarkup(mostReloads)});
}

Markup runMarkup(const ProcessLog::Run& run, const Language& language) {
  if (const auto* started = std::get_if<ProcessLog::Started>(&run)) {
    return escaped(
        language.text("It was started as process {1}.", {std::to_string(started->process)}));
  }
  if (const auto* problem = std::get_if<Problem>(&run)) {
    return escaped(inPlainWords(*problem, language));
  }
  return escaped(language.text("The home screen ended it, to start it anew."));
}

Markup transferMarkup(const TransferReport& transfer, const Language& language) {
  using Milliseconds = std::chrono::milliseconds;
  const auto time = std::chrono::duration_cast<Milliseconds>(transfer.duration).count();
  const std::string outcome =
      transfer.error ? language.text(transfer.error->localizedDescription) + " (" +
                           std::to_string(transfer.error->code) + ")"
                     : language.text("Status {1}", {std::to_string(transfer.statusCode)});
  return filledIn(
      language.text("{1}: {2}, {3}, {4} sent, {5} received"),
      {isolated(transfer.path),
       escaped(outcome),
       millisecondsMarkup(static_cast<std::size_t>(std::max<std::int64_t>(time, 0))),
       bytesMarkup(transfer.sentBytes),
       bytesMarkup(transfer.receivedBytes)});
}

Markup underWayRows(const ProcessModel& model, const Language& language) {
  Markup rows;
  for (const auto& [purpose, kind] : model.underWay) {
    rows += row(escaped(wordFor(purpose, language)), isolated(kind));
  }
  return rows;
}

Markup budgetRows(const ProcessModel& model, const Language& language) {
  Markup rows;
  for (const auto& [kind, timelines] : model.budgets) {
    rows += row(isolated(kind), budgetMarkup(timelines, language), timelines > mostReloads);
  }
  return rows;
}

Markup logRows(const auto& entries, const auto& markupOf) {
  Markup rows;
  for (const auto& [date, entry] : entries) {
    rows += row(secondMarkup(date), markupOf(entry));
  }
  return rows;
}

}  // namespace

Markup processPage(const ProcessModel& model, const PageFrame& frame) {
  const Language& language = frame.language;
  const Markup runs =
      logRows(model.log.runs(), [&](const auto& run) { return runMarkup(run, language); });
  const Markup transfers = logRows(
      model.log.transfers(), [&](const auto& each) { return transferMarkup(each, language); });
  const std::string noneYet = language.text("None yet.");
  const Markup body = filled(
      page::processHtml,
      {{"canvas", escaped(addressOf("canvas", frame))},
       {"engineer", escaped(addressOf("engineer", frame))},
       {"home", escaped(addressOf("", frame))},
       {"switchboard", model.switchboard ? filled(page::switchboardHtml, {}, language) : Markup()},
       {"state",
        escaped(
            model.runs ? language.text("The extension runs.")
                       : language.text("The extension does not run."))},
       {"used", escaped(std::to_string(model.privateBytes))},
       {"limit", escaped(std::to_string(model.limitBytes))},
       {"memory",
        filledIn(
            language.text("{1} of {2}"),
            {mebibytesMarkup(model.privateBytes), mebibytesMarkup(model.limitBytes)})},
       {"underWay", orNone(underWayRows(model, language), language.text("None."))},
       {"budgets", orNone(budgetRows(model, language), noneYet)},
       {"runs", orNone(runs, noneYet)},
       {"transfers", orNone(transfers, noneYet)},
       {"printed", orNone(logRows(model.log.printed(), isolated), noneYet)}},
      language);
  std::string style(page::processCss);
  std::string script = std::string(page::figuresJs) + std::string(page::processJs);
  if (model.switchboard) {
    style += page::switchboardCss;
    script += page::switchboardJs;
  }
  return framed(
      {.view = "process",
       .title = language.text("Quillpad · extension"),
       .style = std::move(style),
       .body = body,
       .script = std::move(script)},
      frame);
}

}  // namespace quillpad::home
