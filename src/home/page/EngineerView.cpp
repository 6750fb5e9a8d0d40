#include "home/page/EngineerView.h"

#include <algorithm>
#include <utility>

#include "home/cards/PictureName.h"
#include "home/cards/WidgetSizes.h"
#include "platform/foundation/Iso8601.h"
#include "platform/foundation/Json.h"

namespace quillpad::home {
namespace {

// The appearance of a single picture.
ui::Appearance appearanceOf(const PreviewQuery& query) {
  return query.shows(ui::Appearance::light) ? ui::Appearance::light : ui::Appearance::dark;
}

drawing::CardRequest requestOf(
    const PreviewQuery& query, const channel::CatalogueItem& widget, EntrySource source) {
  const ui::WidgetFamily family = familyOf(widget);
  return {
      .kind = query.kind,
      .family = std::string(ui::familyName(family)),
      .size = widgetSize(family, query.screen),
      .scale = query.scale,
      .redacted = source == EntrySource::placeholder};
}

}  // namespace

const channel::CatalogueItem* EngineerView::choose(PreviewQuery& query) const {
  const auto& catalogue = supervisor_.catalogue();
  const auto widget = query.kind.empty()
                          ? catalogue.begin()
                          : std::ranges::find(catalogue, query.kind, &channel::CatalogueItem::kind);
  if (widget == catalogue.end()) {
    return nullptr;
  }
  query.kind = widget->kind;
  if (std::ranges::find(widget->languages, query.language) == widget->languages.end()) {
    query.language.clear();
  }
  return &*widget;
}

WebReply EngineerView::page(const Moment& now, const WebRequest& request, const PageFrame& frame) {
  PreviewQuery query = PreviewQuery::parse(request);
  const channel::CatalogueItem* widget = choose(query);
  if (widget == nullptr) {
    const std::string problem = frame.language.text(
        "There is no widget of this kind, or the extension has not listed its widgets yet.");
    return pageAnswer(problemPage(problem, frame), frame, 404);
  }
  std::vector<Column> columns;
  for (const auto source :
       {EntrySource::placeholder, EntrySource::snapshot, EntrySource::timeline}) {
    columns.push_back(column(now, query, source, frame.language));
  }
  if (!query.entry.empty() || !query.start.empty() || query.source == EntrySource::given) {
    columns.push_back(column(now, query, EntrySource::given, frame.language));
  }
  return LaterAnswer{[this, query, widget = *widget, columns, frame]() -> std::optional<WebAnswer> {
    if (!std::ranges::all_of(columns, &Column::isDone)) {
      return std::nullopt;
    }
    return pageAnswer(engineerPage(modelOf(query, widget, columns), frame), frame);
  }};
}

WebReply EngineerView::picture(const Moment& now, const WebRequest& request, PictureFormat format) {
  PreviewQuery query = PreviewQuery::parse(request);
  if (choose(query) == nullptr) {
    return WebAnswer{.status = 404, .body = "There is no widget of this kind.\n"};
  }
  return LaterAnswer{
      [this, query, format, pending = view(now, query)]() -> std::optional<WebAnswer> {
        if (!*pending) {
          return std::nullopt;
        }
        const auto& outcome = **pending;
        const auto file =
            outcome ? draw(query, outcome->view, format) : std::unexpected(outcome.error());
        if (!file) {
          return WebAnswer{.status = 422, .body = file.error() + "\n"};
        }
        return WebAnswer{
            .contentType = format == PictureFormat::png ? "image/png" : "image/svg+xml",
            .body = *file,
            .headers = {
                {"Content-Disposition",
                 "attachment; filename=\"" + fileName(query, format) + "\""}}};
      }};
}

PreviewSession::PendingResult EngineerView::view(const Moment& now, const PreviewQuery& query) {
  return column(now, query, query.source, {}).pending;
}

std::expected<std::string, std::string> EngineerView::draw(
    const PreviewQuery& query, const ui::View& view, PictureFormat format) {
  PreviewQuery chosen = query;
  const channel::CatalogueItem* widget = choose(chosen);
  if (widget == nullptr) {
    return std::unexpected("There is no widget of this kind any more.");
  }
  const auto list =
      cards_.compose(view, requestOf(chosen, *widget, chosen.source), localeOf(chosen));
  return cards_.write(list, format, appearanceOf(chosen));
}

std::string EngineerView::fileName(const PreviewQuery& query, PictureFormat format) {
  const bool isSample = query.entry.empty() && query.start.starts_with(startFromSample);
  const PictureName name{
      .kind = query.kind,
      .entry = isSample ? std::string_view(query.start).substr(startFromSample.size())
                        : sourceName(query.source),
      .screen = query.screen.empty() ? screens().front() : std::string_view(query.screen),
      .language = query.language,
      .appearance = appearanceOf(query),
      .scale = query.scale};
  return format == PictureFormat::png ? name.png() : name.svg();
}

EngineerView::Column EngineerView::column(
    const Moment& now, const PreviewQuery& query, EntrySource source, const Language& language) {
  PreviewSession::Job job{
      .kind = query.kind,
      .source = source == EntrySource::timeline ? EntrySource::given : source,
      .entry = {},
      .locale = query.language,
      .currency = query.currency};
  if (job.source == EntrySource::given) {
    auto entry = entryOf(query, source, language);
    if (!entry) {
      const auto& [reason, line] = entry.error();
      return {
          source, std::make_shared<const PreviewSession::Outcome>(std::unexpected(reason)), line};
    }
    job.entry = std::move(*entry);
  }
  return {source, previews_.submit(now, std::move(job))};
}

std::expected<channel::Entry, EntryProblem> EngineerView::entryOf(
    const PreviewQuery& query, EntrySource source, const Language& language) const {
  if (source == EntrySource::given) {
    const auto text = editedText(query, language);
    if (!text) {
      return std::unexpected(EntryProblem{.reason = text.error()});
    }
    if (text->empty()) {
      return std::unexpected(
          EntryProblem{.reason = language.text("Type an entry to see it here.")});
    }
    auto entry = entryFromText(*text);
    if (!entry) {
      entry.error().reason = language.text("This cannot be shown: {1}.", {entry.error().reason});
    }
    return entry;
  }
  auto live = liveEntry(query.kind, language);
  if (!live) {
    return std::unexpected(EntryProblem{.reason = live.error()});
  }
  return *std::move(live);
}

std::expected<channel::Entry, std::string> EngineerView::liveEntry(
    const std::string& kind, const Language& language) const {
  for (const WidgetState& card : supervisor_.widgets()) {
    if (card.about->kind == kind && card.picture != nullptr &&
        card.picture->source == EntrySource::timeline) {
      return card.picture->entry;
    }
  }
  return std::unexpected(
      language.text("No timeline has come for this widget yet. Is it on the home screen?"));
}

std::expected<std::string, std::string> EngineerView::editedText(
    const PreviewQuery& query, const Language& language) const {
  if (!query.entry.empty() || query.start.empty()) {
    return query.entry;
  }
  if (query.start == startFromLive) {
    const auto live = liveEntry(query.kind, language);
    return live ? std::expected<std::string, std::string>(textOf(*live))
                : std::unexpected(live.error());
  }
  const auto samples = samples_.read();
  if (!samples) {
    return std::unexpected(samples.error());
  }
  for (const SampleFolder::Sample& sample : *samples) {
    if (query.start == std::string(startFromSample) + sample.name) {
      return sample.text;
    }
  }
  return std::unexpected(
      language.text("There is no such sample in {1}.", {samples_.folder().string()}));
}

std::string EngineerView::localeOf(const PreviewQuery& query) const {
  return query.language.empty() ? locale_ : query.language;
}

EngineerModel EngineerView::modelOf(
    const PreviewQuery& query,
    const channel::CatalogueItem& widget,
    const std::vector<Column>& columns) {
  EngineerModel model{.query = query, .family = familyOf(widget), .languages = widget.languages};
  for (const channel::CatalogueItem& item : supervisor_.catalogue()) {
    model.kinds.push_back(item.kind);
  }
  for (const SampleFolder::Sample& sample :
       samples_.read().value_or(std::vector<SampleFolder::Sample>())) {
    model.samples.push_back(sample.name);
  }
  model.entryText = editedText(query, {}).value_or("");
  for (const Column& column : columns) {
    model.columns.push_back(shown(query, widget, column));
    const auto& outcome = column.outcome();
    if (!outcome && column.source == EntrySource::given) {
      model.wrongLine =
          column.wrongLine != 0 ? column.wrongLine : lineNamedIn(outcome.error(), model.entryText);
    }
    if (outcome && column.source == EntrySource::snapshot) {
      model.sampleEntry =
          writeJson(channel::toValue(outcome->entry), JsonLayout::compact).value_or("");
    }
    if (outcome && column.source == query.source) {
      if (const auto& card = model.columns.back().card) {
        model.displayList =
            cards_.write(card->list, PictureFormat::json, appearanceOf(query)).value_or("");
      }
    }
  }
  return model;
}

PreviewColumn EngineerView::shown(
    const PreviewQuery& query, const channel::CatalogueItem& widget, const Column& column) {
  const auto& outcome = column.outcome();
  if (!outcome) {
    return {.source = column.source, .reason = outcome.error()};
  }
  PreviewColumn shown{
      .source = column.source,
      .date = iso8601(outcome->entry.date),
      .card =
          cards_.inspect(outcome->view, requestOf(query, widget, column.source), localeOf(query))};
  for (const ui::Appearance appearance : bothAppearances) {
    if (!query.shows(appearance)) {
      continue;
    }
    const std::string idPrefix = std::string(sourceName(column.source)) +
                                 (appearance == ui::Appearance::dark ? "-dark-" : "-light-");
    auto file = cards_.write(shown.card->list, query.format, appearance, idPrefix);
    shown.pictures.push_back(
        {.appearance = appearance, .file = file.value_or(""), .error = file ? "" : file.error()});
  }
  return shown;
}

}  // namespace quillpad::home
