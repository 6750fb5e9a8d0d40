#include "home/page/EngineerPage.h"

#include <array>
#include <cmath>

#include "home/page/PageFiles.h"
#include "home/page/WidgetSizes.h"
#include "platform/foundation/Base64.h"
#include "platform/foundation/Value.h"

namespace quillpad::home {
namespace {

using Appearances = PreviewQuery::Appearances;
using Format = PreviewQuery::Format;

// One field of the form: its options, the chosen one selected.
class Select {
 public:
  explicit Select(std::string_view chosen) : chosen_(chosen) {}

  Select& add(std::string_view value, std::string_view label) {
    markup_ += filled(
        page::optionHtml,
        {{"value", escaped(value)},
         {"selected", escaped(value == chosen_ ? " selected" : "")},
         {"label", escaped(label)}});
    return *this;
  }

  const Markup& markup() const { return markup_; }

 private:
  std::string_view chosen_;
  Markup markup_;
};

std::string lengthText(double points) {
  return Number(std::round(points * 100) / 100).stringValue();
}

Markup length(double points) { return escaped(lengthText(points)); }

std::string sizeText(drawing::Size size) {
  return lengthText(size.width) + " × " + lengthText(size.height);
}

std::string_view titleOf(PreviewState state) {
  switch (state) {
    case PreviewState::timeline:
      return "Timeline";
    case PreviewState::placeholder:
      return "Placeholder";
    case PreviewState::snapshot:
      return "Snapshot";
    case PreviewState::entry:
      break;
  }
  return "Your entry";
}

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

Select languageSelect(const EngineerModel& model) {
  Select select(model.query.language);
  select.add("", "As the home screen");
  for (const std::string& language : model.languages) {
    select.add(language, language);
  }
  return select;
}

Select stateSelect(PreviewState chosen) {
  Select select(stateName(chosen));
  for (const auto state :
       {PreviewState::timeline,
        PreviewState::placeholder,
        PreviewState::snapshot,
        PreviewState::entry}) {
    select.add(stateName(state), titleOf(state));
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
    const PreviewColumn::Picture& picture, const drawing::DisplayList& list, Format format) {
  if (!picture.error.empty()) {
    return problem(picture.error);
  }
  if (format == Format::svg) {
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
    const PreviewQuery& query,
    PreviewState state,
    const PreviewColumn::Picture& picture,
    const drawing::DisplayList& list) {
  const bool dark = picture.appearance == ui::Appearance::dark;
  const PreviewQuery file{
      .kind = query.kind,
      .screen = query.screen,
      .language = query.language,
      .appearances = dark ? Appearances::dark : Appearances::light,
      .scale = query.scale,
      .state = state,
      .entry = state == PreviewState::entry ? query.entry : ""};
  return filled(
      page::engineerPictureHtml,
      {{"picture", card(picture, list, query.format)},
       {"boxes", query.boxes ? overlay(list) : Markup()},
       {"appearance", escaped(dark ? "Dark" : "Light")},
       {"size", escaped(sizeText(list.size) + " at " + std::to_string(query.scale) + "x")},
       {"svg", escaped(file.toUrl("/picture.svg"))},
       {"png", escaped(file.toUrl("/picture.png"))}});
}

Markup columnMarkup(const PreviewQuery& query, const PreviewColumn& column) {
  Markup content;
  if (!column.list) {
    content = problem(column.reason);
  } else {
    for (const PreviewColumn::Picture& picture : column.pictures) {
      content += figure(query, column.state, picture, *column.list);
    }
  }
  return filled(
      page::engineerColumnHtml,
      {{"title", escaped(titleOf(column.state))},
       {"date", escaped(column.date)},
       {"content", content}});
}

}  // namespace

Markup engineerPage(const EngineerModel& model, const PageFrame& frame) {
  const PreviewQuery& query = model.query;
  Markup columns;
  for (const PreviewColumn& column : model.columns) {
    columns += columnMarkup(query, column);
  }
  Markup details;
  if (!model.viewTree.empty()) {
    details = filled(
        page::engineerDetailsHtml,
        {{"tree", escaped(model.viewTree)}, {"list", escaped(model.displayList)}});
  }
  constexpr std::array<std::string_view, 3> appearances{"both", "light", "dark"};
  Select appearance(appearances.at(static_cast<std::size_t>(query.appearances)));
  appearance.add("both", "Light and dark").add("light", "Light").add("dark", "Dark");
  Select format(query.format == Format::png ? "png" : "svg");
  format.add("svg", "SVG").add("png", "PNG");
  const std::string chosenScale = std::to_string(query.scale);
  Select scale(chosenScale);
  scale.add("2", "2x").add("1", "1x").add("3", "3x");
  return filled(
      page::engineerHtml,
      {{"name", escaped(query.kind)},
       {"nonce", escaped(frame.nonce)},
       {"style", trusted(std::string(page::styleCss))},
       {"engineerStyle", trusted(std::string(page::engineerCss))},
       {"appearanceScript", trusted(std::string(page::appearanceJs))},
       {"kinds", kindSelect(model).markup()},
       {"screens", screenSelect(model).markup()},
       {"languages", languageSelect(model).markup()},
       {"appearances", appearance.markup()},
       {"formats", format.markup()},
       {"scales", scale.markup()},
       {"states", stateSelect(query.state).markup()},
       {"boxesChecked", escaped(query.boxes ? " checked" : "")},
       {"sample", escaped(model.sampleEntry)},
       {"entry", escaped(query.entry)},
       {"columns", columns},
       {"details", details},
       {"script", trusted(std::string(page::engineerJs))}});
}

}  // namespace quillpad::home
