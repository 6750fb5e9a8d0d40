#include "home/page/ProcessPage.h"

#include "home/page/PageFiles.h"
#include "platform/foundation/LocalTime.h"

namespace quillpad::home {
namespace {

// What a phone grants a widget that is often seen, in 24 hours.
constexpr std::size_t leastReloads = 40;
constexpr std::size_t mostReloads = 70;

Markup row(std::string_view head, std::string_view text, bool isWarning = false) {
  return filled(
      page::processRowHtml,
      {{"class", escaped(isWarning ? "warning" : "")},
       {"head", escaped(head)},
       {"text", escaped(text)}});
}

Markup note(std::string_view text) {
  return filled(page::processNoteHtml, {{"text", escaped(text)}});
}

Markup rows(const std::vector<ProcessLog::Line>& lines) {
  Markup markup;
  for (const ProcessLog::Line& line : lines) {
    markup += row(localTimeText(line.date, "%H:%M:%S"), line.text);
  }
  return lines.empty() ? note("None yet.") : markup;
}

std::string megabytes(std::size_t bytes) {
  const std::size_t tenths = bytes * 10 / (std::size_t{1024} * 1024);
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
}

std::string budgetWords(std::size_t timelines) {
  const std::string count = std::to_string(timelines);
  if (timelines > mostReloads) {
    return count + ", more than the " + std::to_string(leastReloads) + " to " +
           std::to_string(mostReloads) + " that a phone grants";
  }
  return count + " of the " + std::to_string(leastReloads) + " to " + std::to_string(mostReloads) +
         " that a phone grants";
}

}  // namespace

Markup processPage(const ProcessModel& model, const PageFrame& frame) {
  Markup underWay;
  for (const std::string& request : model.underWay) {
    underWay += note(request);
  }
  Markup budgets;
  for (const ProcessModel::Budget& budget : model.budgets) {
    budgets += row(budget.kind, budgetWords(budget.timelines), budget.timelines > mostReloads);
  }
  PageFrame english = frame;  // as its words are
  english.language = {};
  const Markup body = filled(
      page::processHtml,
      {{"switchboard",
        model.switchboard ? filled(page::switchboardHtml, {}, english.language) : Markup()},
       {"state", escaped(model.runs ? "The extension runs." : "The extension does not run.")},
       {"used", escaped(megabytes(model.privateBytes))},
       {"limit", escaped(megabytes(model.limitBytes))},
       {"underWay", underWay.empty() ? note("None.") : underWay},
       {"budgets", budgets.empty() ? note("None yet.") : budgets},
       {"runs", rows(model.log.runs())},
       {"transfers", rows(model.log.transfers())},
       {"printed", rows(model.log.printed())}});
  return framed(
      {.view = "process",
       .title = "Quillpad · extension",
       .style = std::string(page::processCss) +
                std::string(model.switchboard ? page::switchboardCss : ""),
       .body = body,
       .script = std::string(page::processJs) +
                 std::string(model.switchboard ? page::switchboardJs : "")},
      english);
}

}  // namespace quillpad::home
