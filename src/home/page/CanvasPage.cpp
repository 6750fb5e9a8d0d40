#include "home/page/CanvasPage.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "home/cards/PictureName.h"
#include "home/cards/WidgetSizes.h"
#include "home/page/Figures.h"
#include "home/page/PageFiles.h"
#include "home/page/Select.h"

namespace quillpad::home {
namespace {

bool isChosen(const CanvasQuery& query, const CanvasModel::Widget& widget) {
  return query.kind.empty() || query.kind == widget.kind;
}

// An entry as the engineer's view takes it, under its name.
struct NamedEntry {
  std::string name;
  EntrySource source = EntrySource::given;
  std::string start{};
};

std::vector<NamedEntry> entriesOf(const CanvasQuery& query, const CanvasModel::Widget& widget) {
  std::vector<NamedEntry> entries;
  entries.reserve(providerSources.size() + widget.samples.size());
  for (const auto& [name, source] : providerSources) {
    entries.push_back({.name = std::string(name), .source = source});
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

std::vector<std::string> chosenLanguages(
    const CanvasQuery& query, const CanvasModel::Widget& widget) {
  const auto& all = widget.languages;
  if (query.language.empty()) {
    return all.empty() ? std::vector<std::string>{""} : all;
  }
  return std::ranges::find(all, query.language) == all.end() ? std::vector<std::string>{}
                                                             : std::vector{query.language};
}

std::vector<ui::Appearance> chosenAppearances(const CanvasQuery& query) {
  if (query.appearance == ui::Appearance::unspecified) {
    return {bothAppearances.begin(), bothAppearances.end()};
  }
  return {query.appearance};
}

// A language and a screen are called by their names, whatever the page speaks.
std::string captionOf(
    const CanvasQuery& query, const PreviewQuery& picture, const Language& language) {
  const bool dark = picture.appearance == ui::Appearance::dark;
  std::string caption = picture.language.empty() ? "" : picture.language + " · ";
  caption += language.text(dark ? "Dark" : "Light");
  caption += query.screen == CanvasQuery::everything ? " · " + picture.screen : "";
  return caption;
}

Markup cellMarkup(const CanvasQuery& query, const CanvasCell& cell, const PageFrame& frame) {
  const auto length = [](double points) { return escaped(std::to_string(std::lround(points))); };
  return filled(
      page::canvasCellHtml,
      {{"appearance", escaped(cell.query.appearance == ui::Appearance::dark ? "Dark" : "Light")},
       {"page", escaped(cell.query.toUrl(addressOf("engineer", frame)))},
       {"picture", escaped(cell.query.toUrl("/picture.svg"))},
       {"width", length(cell.size.width)},
       {"height", length(cell.size.height)},
       {"caption", escaped(captionOf(query, cell.query, frame.language))}});
}

Markup rowMarkup(const CanvasQuery& query, const CanvasRow& row, const PageFrame& frame) {
  Markup cells;
  for (const CanvasCell& cell : row.cells) {
    cells += cellMarkup(query, cell, frame);
  }
  const bool isSample = row.source == EntrySource::given;
  return filled(
      page::canvasRowHtml,
      {{"entry", escaped(isSample ? row.entry : titleOf(row.source, frame.language))},
       {"cells", cells}});
}

// The chosen widgets, with their pictures as far as there is room for them.
struct Sections {
  Markup markup{};
  std::size_t pictures = 0;
  bool isWhole = true;
};

Sections sectionsOf(const CanvasModel& model, const PageFrame& frame) {
  Sections sections;
  for (const CanvasModel::Widget& widget : model.widgets) {
    if (!isChosen(model.query, widget)) {
      continue;
    }
    Markup rows;
    for (const CanvasRow& row : canvasRows(model.query, widget)) {
      sections.isWhole = sections.pictures + row.cells.size() <= maxCanvasPictures;
      if (!sections.isWhole) {
        break;
      }
      sections.pictures += row.cells.size();
      rows += rowMarkup(model.query, row, frame);
    }
    if (!rows.empty()) {
      sections.markup += filled(
          page::canvasWidgetHtml,
          {{"name", escaped(widget.displayName)},
           {"language", escaped(frame.cardLanguage)},
           {"kind", escaped(widget.kind)},
           {"rows", rows}});
    }
    if (!sections.isWhole) {
      break;
    }
  }
  return sections;
}

Select kindSelect(const CanvasModel& model, const Language& language) {
  Select select(model.query.kind);
  select.add("", language.text("All"));
  for (const CanvasModel::Widget& widget : model.widgets) {
    select.add(widget.kind, widget.kind);
  }
  return select;
}

Select entrySelect(const CanvasModel& model, const Language& language) {
  Select select(model.query.entry);
  select.add("", language.text("All"));
  for (const auto& [name, source] : providerSources) {
    select.add(name, titleOf(source, language));
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

Select screenSelect(const CanvasModel& model, const Language& language) {
  Select select(
      model.query.screen.empty() ? screens().front() : std::string_view(model.query.screen));
  select.add(CanvasQuery::everything, language.text("All"));
  for (const std::string_view screen : screens()) {
    select.add(screen, screen);
  }
  return select;
}

Select languageSelect(const CanvasModel& model, const Language& language) {
  Select select(model.query.language);
  select.add("", language.text("All"));
  std::set<std::string> tags;
  for (const CanvasModel::Widget& widget : model.widgets) {
    tags.insert(widget.languages.begin(), widget.languages.end());
  }
  for (const std::string& tag : tags) {
    select.add(tag, tag);
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
      .appearance = appearanceFrom(request.parameter("appearance")),
      .currency = std::string(request.parameter("currency")),
      .scale = scaleFrom(request.parameter("scale"))};
  if (query.screen != everything && std::ranges::find(screens(), query.screen) == screens().end()) {
    query.screen.clear();
  }
  return query;
}

std::string CanvasQuery::toUrl(std::string_view path) const {
  std::string url(path);
  addParameter(url, "kind", kind);
  addParameter(url, "entry", entry);
  addParameter(url, "screen", screen);
  addParameter(url, "language", language);
  addParameter(url, "appearance", appearanceParameter(appearance));
  addParameter(url, "currency", currency);
  addParameter(url, "scale", scaleParameter(scale));
  return url;
}

std::vector<CanvasRow> canvasRows(const CanvasQuery& query, const CanvasModel::Widget& widget) {
  std::vector<CanvasRow> rows;
  for (const NamedEntry& entry : entriesOf(query, widget)) {
    CanvasRow row{.entry = entry.name, .source = entry.source, .cells = {}};
    for (const ui::Appearance appearance : chosenAppearances(query)) {
      for (const std::string& screen : screensOf(query)) {
        for (const std::string& language : chosenLanguages(query, widget)) {
          row.cells.push_back(
              {.query =
                   {.kind = widget.kind,
                    .screen = screen,
                    .language = language,
                    .currency = query.currency,
                    .appearance = appearance,
                    .scale = query.scale,
                    .source = entry.source,
                    .start = entry.start},
               .size = widgetSize(widget.family, screen)});
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
    if (pictures.size() > maxCanvasPictures) {
      break;
    }
    if (!isChosen(model.query, widget)) {
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
  const Language& language = frame.language;
  const auto [sections, count, isWhole] = sectionsOf(model, frame);
  const Markup body = filled(
      page::canvasHtml,
      {{"process", escaped(addressOf("process", frame))},
       {"engineer", escaped(addressOf("engineer", frame))},
       {"home", escaped(addressOf("", frame))},
       {"languageField", languageField(frame)},
       {"kinds", kindSelect(model, language).markup()},
       {"entries", entrySelect(model, language).markup()},
       {"screens", screenSelect(model, language).markup()},
       {"languages", languageSelect(model, language).markup()},
       {"appearances", appearanceOptions(query.appearance, language)},
       {"currency", escaped(query.currency)},
       {"scales", scaleOptions(query.scale)},
       {"archive", escaped(query.toUrl("/canvas.zip"))},
       {"count",
        count == 1 ? escaped(language.text("1 picture"))
                   : filledIn(language.text("{1} pictures"), {numberMarkup(count)})},
       {"notice", escaped(frame.notice)},
       {"problem",
        escaped(
            isWhole ? model.problem
                    : language.text(
                          "There are more than {1} pictures; choose fewer to see the rest.",
                          {std::to_string(maxCanvasPictures)}))},
       {"widgets", sections}},
      language);
  return framed(
      {.view = "canvas",
       .title = language.text("Quillpad · canvas"),
       .style = std::string(page::engineerCss) + std::string(page::canvasCss),
       .body = body,
       .script = std::string(page::eventsJs) + std::string(page::figuresJs) +
                 std::string(page::canvasJs)},
      frame);
}

}  // namespace quillpad::home
