#include "home/page/CanvasPage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>

#include "home/page/PageFiles.h"
#include "home/page/Select.h"
#include "home/page/WidgetSizes.h"

namespace quillpad::home {
namespace {

using Appearances = PreviewQuery::Appearances;

constexpr std::array states{
    PreviewState::placeholder, PreviewState::snapshot, PreviewState::timeline};

// An entry as the engineer's view takes it, under its name.
struct NamedEntry {
  std::string name;
  PreviewState state = PreviewState::entry;
  std::string start{};
};

std::vector<NamedEntry> entriesOf(const CanvasQuery& query, const CanvasModel::Widget& widget) {
  std::vector<NamedEntry> entries;
  entries.reserve(states.size() + widget.samples.size());
  for (const PreviewState state : states) {
    entries.push_back({.name = std::string(stateName(state)), .state = state});
  }
  for (const std::string& sample : widget.samples) {
    entries.push_back({.name = sample, .start = std::string(startFromSample) + sample});
  }
  std::erase_if(entries, [&](const NamedEntry& entry) {
    return !query.entry.empty() && entry.name != query.entry;
  });
  return entries;
}

std::vector<std::string> screensOf(const CanvasQuery& query) {
  if (query.screen == CanvasQuery::everything) {
    return {screens().begin(), screens().end()};
  }
  return {query.screen.empty() ? std::string(screens().front()) : query.screen};
}

std::vector<std::string> languagesOf(const CanvasQuery& query, const CanvasModel::Widget& widget) {
  const auto& all = widget.languages;
  if (query.language.empty()) {
    return all.empty() ? std::vector<std::string>{""} : all;
  }
  return std::ranges::find(all, query.language) == all.end() ? std::vector<std::string>{}
                                                             : std::vector{query.language};
}

std::vector<Appearances> appearancesOf(const CanvasQuery& query) {
  if (query.appearance.empty()) {
    return {Appearances::light, Appearances::dark};
  }
  return {query.appearance == "dark" ? Appearances::dark : Appearances::light};
}

Markup cellMarkup(const CanvasCell& cell) {
  const auto length = [](double points) { return escaped(std::to_string(std::lround(points))); };
  return filled(
      page::canvasCellHtml,
      {{"appearance", escaped(cell.query.appearances == Appearances::dark ? "Dark" : "Light")},
       {"page", escaped(cell.query.toUrl("/?view=engineer"))},
       {"picture", escaped(cell.query.toUrl("/picture.svg"))},
       {"width", length(cell.size.width)},
       {"height", length(cell.size.height)},
       {"caption", escaped(cell.caption)}});
}

Select kindSelect(const CanvasModel& model) {
  Select select(model.query.kind);
  select.add("", "All");
  for (const CanvasModel::Widget& widget : model.widgets) {
    select.add(widget.kind, widget.kind);
  }
  return select;
}

Select entrySelect(const CanvasModel& model) {
  Select select(model.query.entry);
  select.add("", "All");
  for (const PreviewState state : states) {
    select.add(stateName(state), stateName(state));
  }
  std::set<std::string> samples;
  for (const CanvasModel::Widget& widget : model.widgets) {
    samples.insert(widget.samples.begin(), widget.samples.end());
  }
  for (const std::string& sample : samples) {
    select.add(sample, sample);
  }
  return select;
}

Select screenSelect(const CanvasModel& model) {
  Select select(
      model.query.screen.empty() ? screens().front() : std::string_view(model.query.screen));
  select.add(CanvasQuery::everything, "All");
  for (const std::string_view screen : screens()) {
    select.add(screen, screen);
  }
  return select;
}

Select languageSelect(const CanvasModel& model) {
  Select select(model.query.language);
  select.add("", "All");
  std::set<std::string> languages;
  for (const CanvasModel::Widget& widget : model.widgets) {
    languages.insert(widget.languages.begin(), widget.languages.end());
  }
  for (const std::string& language : languages) {
    select.add(language, language);
  }
  return select;
}

}  // namespace

CanvasQuery CanvasQuery::parse(const WebRequest& request) {
  CanvasQuery query{
      .kind = std::string(request.parameter("kind")),
      .entry = std::string(request.parameter("entry")),
      .screen = std::string(request.parameter("screen")),
      .language = std::string(request.parameter("language")),
      .appearance = std::string(request.parameter("appearance")),
      .currency = std::string(request.parameter("currency"))};
  if (query.screen != everything && std::ranges::find(screens(), query.screen) == screens().end()) {
    query.screen.clear();
  }
  if (query.appearance != "light" && query.appearance != "dark") {
    query.appearance.clear();
  }
  return query;
}

std::string CanvasQuery::toUrl(std::string_view path) const {
  std::string url(path);
  for (const auto& [name, value] :
       {std::pair<std::string_view, std::string_view>{"kind", kind},
        {"entry", entry},
        {"screen", screen},
        {"language", language},
        {"appearance", appearance},
        {"currency", currency}}) {
    addParameter(url, name, value);
  }
  return url;
}

std::vector<CanvasRow> canvasRows(const CanvasQuery& query, const CanvasModel::Widget& widget) {
  std::vector<CanvasRow> rows;
  for (const NamedEntry& entry : entriesOf(query, widget)) {
    CanvasRow row{.entry = entry.name, .cells = {}};
    for (const Appearances appearance : appearancesOf(query)) {
      for (const std::string& screen : screensOf(query)) {
        for (const std::string& language : languagesOf(query, widget)) {
          std::string caption = language.empty() ? "" : language + ", ";
          caption += appearance == Appearances::dark ? "dark" : "light";
          caption += query.screen == CanvasQuery::everything ? ", " + screen : "";
          row.cells.push_back(
              {.query =
                   {.kind = widget.kind,
                    .screen = screen,
                    .language = language,
                    .currency = query.currency,
                    .appearances = appearance,
                    .state = entry.state,
                    .start = entry.start},
               .size = widgetSize(widget.family, screen),
               .caption = std::move(caption)});
        }
      }
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

std::vector<PreviewQuery> canvasPictures(const CanvasModel& model) {
  std::vector<PreviewQuery> pictures;
  for (const CanvasModel::Widget& widget : model.widgets) {
    if (!model.query.kind.empty() && model.query.kind != widget.kind) {
      continue;
    }
    for (const CanvasRow& row : canvasRows(model.query, widget)) {
      const auto first = static_cast<std::ptrdiff_t>(pictures.size());
      for (const CanvasCell& cell : row.cells) {
        pictures.push_back(cell.query);
      }
      std::ranges::stable_sort(
          pictures.begin() + first, pictures.end(), {}, &PreviewQuery::language);
    }
  }
  return pictures;
}

Markup canvasPage(const CanvasModel& model, const PageFrame& frame) {
  const CanvasQuery& query = model.query;
  Markup sections;
  std::size_t count = 0;
  for (const CanvasModel::Widget& widget : model.widgets) {
    if (!query.kind.empty() && query.kind != widget.kind) {
      continue;
    }
    Markup rows;
    for (const CanvasRow& row : canvasRows(query, widget)) {
      Markup cells;
      for (const CanvasCell& cell : row.cells) {
        cells += cellMarkup(cell);
      }
      count += row.cells.size();
      rows += filled(page::canvasRowHtml, {{"entry", escaped(row.entry)}, {"cells", cells}});
    }
    if (!rows.empty()) {
      sections += filled(
          page::canvasWidgetHtml,
          {{"name", escaped(widget.displayName)}, {"kind", escaped(widget.kind)}, {"rows", rows}});
    }
  }
  Select appearance(query.appearance);
  appearance.add("", "Light and dark").add("light", "Light").add("dark", "Dark");
  const Markup body = filled(
      page::canvasHtml,
      {{"kinds", kindSelect(model).markup()},
       {"entries", entrySelect(model).markup()},
       {"screens", screenSelect(model).markup()},
       {"languages", languageSelect(model).markup()},
       {"appearances", appearance.markup()},
       {"currency", escaped(query.currency)},
       {"archive", escaped(query.toUrl("/canvas.zip"))},
       {"count", escaped(count == 1 ? "1 picture" : std::to_string(count) + " pictures")},
       {"problem", escaped(model.problem)},
       {"widgets", sections}});
  PageFrame english = frame;  // as its words are
  english.language = {};
  return framed(
      {.view = "canvas",
       .title = "Quillpad · canvas",
       .style = std::string(page::engineerCss) + std::string(page::canvasCss),
       .body = body,
       .script = std::string(page::eventsJs) + std::string(page::canvasJs)},
      english);
}

}  // namespace quillpad::home
