#include "home/page/EngineerPage.h"

#include "home/cards/InspectorText.h"
#include "home/cards/WidgetSizes.h"
#include "home/page/Inspector.h"
#include "home/page/PageFiles.h"
#include "home/page/Select.h"
#include "platform/foundation/Base64.h"

namespace quillpad::home {
namespace {

Markup length(double points) { return escaped(lengthText(points)); }

Select kindSelect(const EngineerModel& model) {
  Select select(model.query.kind);
  for (const std::string& kind : model.kinds) {
    select.add(kind, kind);
  }
  return select;
}

Select screenSelect(const EngineerModel& model) {
  Select select(model.query.screen.empty() ? screens().front() : model.query.screen);
  for (const std::string_view screen : screens()) {
    const std::string size = sizeText(widgetSize(model.family, screen));
    select.add(screen, std::string(screen) + " (" + size + ")");
  }
  return select;
}

Select languageSelect(const EngineerModel& model, const Language& language) {
  Select select(model.query.language);
  select.add("", language.text("As the home screen"));
  for (const std::string& each : model.languages) {
    select.add(each, each);
  }
  return select;
}

Select sourceSelect(EntrySource chosen, const Language& language) {
  Select select(sourceName(chosen));
  for (const auto source :
       {EntrySource::timeline,
        EntrySource::placeholder,
        EntrySource::snapshot,
        EntrySource::given}) {
    select.add(sourceName(source), titleOf(source, language));
  }
  return select;
}

Select startSelect(const EngineerModel& model, const Language& language) {
  Select select(model.query.start);
  select.add("", language.text("Nothing")).add(startFromLive, language.text("What is live"));
  for (const std::string& sample : model.samples) {
    select.add(std::string(startFromSample) + sample, sample);
  }
  return select;
}

// The frames of what is painted, with their sizes, to lie over the card.
Markup overlay(const drawing::DisplayList& list) {
  Markup boxes;
  for (const drawing::Item& item : list.items) {
    const drawing::Rect frame =
        std::visit([](const auto& content) { return content.frame; }, item.content);
    boxes += filled(
        page::engineerBoxHtml,
        {{"x", length(frame.x)},
         {"y", length(frame.y)},
         {"width", length(frame.width)},
         {"height", length(frame.height)},
         {"above", length(frame.y - 1)}});
  }
  return filled(
      page::engineerBoxesHtml,
      {{"width", length(list.size.width)}, {"height", length(list.size.height)}, {"boxes", boxes}});
}

Markup problem(const std::string& reason) {
  return filled(page::engineerProblemHtml, {{"problem", escaped(reason)}});
}

Markup card(
    const PreviewColumn::Picture& picture, const drawing::DisplayList& list, PictureFormat format) {
  if (!picture.error.empty()) {
    return problem(picture.error);
  }
  if (format == PictureFormat::svg) {
    return trusted(picture.file);
  }
  return filled(
      page::engineerImageHtml,
      {{"width", length(list.size.width)},
       {"height", length(list.size.height)},
       {"alt", escaped(accessibilityLabel(list))},
       {"bytes", escaped(base64(picture.file))}});
}

Markup figure(
    const Language& language,
    const PreviewQuery& query,
    EntrySource source,
    const PreviewColumn::Picture& picture,
    const drawing::DisplayList& list) {
  const bool dark = picture.appearance == ui::Appearance::dark;
  const PreviewQuery file{
      .kind = query.kind,
      .screen = query.screen,
      .language = query.language,
      .currency = query.currency,
      .appearance = picture.appearance,
      .scale = query.scale,
      .source = source,
      .start = source == EntrySource::given ? query.start : "",
      .entry = source == EntrySource::given ? query.entry : ""};
  return filled(
      page::engineerPictureHtml,
      {{"picture", card(picture, list, query.format)},
       {"boxes", query.boxes ? overlay(list) : Markup()},
       {"class", escaped(dark ? "Dark" : "Light")},
       {"caption",
        escaped(language.text(
            "{1}, {2} at {3}x",
            {language.text(dark ? "Dark" : "Light"),
             sizeText(list.size),
             std::to_string(query.scale)}))},
       {"svg", escaped(file.toUrl("/picture.svg"))},
       {"png", escaped(file.toUrl("/picture.png"))}});
}

Markup columnMarkup(
    const Language& language, const PreviewQuery& query, const PreviewColumn& column) {
  Markup content;
  if (!column.card) {
    content = problem(column.reason);
  } else {
    for (const PreviewColumn::Picture& picture : column.pictures) {
      content += figure(language, query, column.source, picture, column.card->list);
    }
  }
  return filled(
      page::engineerColumnHtml,
      {{"class", escaped(column.source == query.source ? "column chosen" : "column")},
       {"state", escaped(sourceName(column.source))},
       {"title", escaped(titleOf(column.source, language))},
       {"date", escaped(column.date)},
       {"content", content}});
}

}  // namespace

Markup engineerPage(const EngineerModel& model, const PageFrame& frame) {
  const PreviewQuery& query = model.query;
  const Language& language = frame.language;
  Markup columns;
  Markup warnings;
  Markup details;
  for (const PreviewColumn& column : model.columns) {
    columns += columnMarkup(language, query, column);
    if (column.card && column.source == query.source) {
      warnings = warningsMarkup(*column.card, language);
      details = inspectorMarkup(*column.card, model.displayList, language);
    }
  }
  Select format(nameOf(pictureFormatNames, query.format));
  format.add("svg", "SVG").add("png", "PNG");
  const Markup body = filled(
      page::engineerHtml,
      {{"home", escaped(addressOf("", frame))},
       {"canvas", escaped(addressOf("canvas", frame))},
       {"languageField", languageField(frame)},
       {"kinds", kindSelect(model).markup()},
       {"screens", screenSelect(model).markup()},
       {"languages", languageSelect(model, language).markup()},
       {"currency", escaped(query.currency)},
       {"appearances", appearanceOptions(query.appearance, language)},
       {"formats", format.markup()},
       {"scales", scaleOptions(query.scale)},
       {"states", sourceSelect(query.source, language).markup()},
       {"boxesChecked", escaped(query.boxes ? " checked" : "")},
       {"sample", escaped(model.sampleEntry)},
       {"starts", startSelect(model, language).markup()},
       {"entry", escaped(model.entryText)},
       {"wrongLine", escaped(std::to_string(model.wrongLine))},
       {"notice", escaped(frame.notice)},
       {"warnings", warnings},
       {"columns", columns},
       {"details", details}},
      language);
  return framed(
      {.view = "engineer",
       .title = language.text("Quillpad · {1}, engineer’s view", {query.kind}),
       .style = std::string(page::engineerCss).append(page::inspectorCss),
       .body = body,
       .script = std::string(page::eventsJs).append(page::inspectorJs).append(page::engineerJs)},
      frame);
}

}  // namespace quillpad::home
