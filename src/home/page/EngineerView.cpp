#include "home/page/EngineerView.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <utility>

#include "home/page/PageFiles.h"
#include "home/page/WidgetSizes.h"
#include "platform/foundation/Base64.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/NumberText.h"
#include "platform/ui/ViewCodec.h"

namespace quillpad::home {
namespace {

struct Option {
  std::string_view value;
  std::string_view label;
};

constexpr std::array<Option, 8> languages{{
    {"", "As the home screen"},
    {"en", "English"},
    {"de", "Deutsch"},
    {"fr", "Français"},
    {"es", "Español"},
    {"ja", "日本語"},
    {"zh_Hans", "简体中文"},
    {"ar", "العربية"},
}};
constexpr std::array<Option, 3> appearances{
    {{"both", "Light and dark"}, {"light", "Light"}, {"dark", "Dark"}}};
constexpr std::array<Option, 2> formats{{{"svg", "SVG"}, {"png", "PNG"}}};
constexpr std::array<Option, 3> scales{{{"2", "2x"}, {"1", "1x"}, {"3", "3x"}}};
constexpr std::array<Option, 4> states{
    {{"timeline", "Timeline"},
     {"placeholder", "Placeholder"},
     {"snapshot", "Snapshot"},
     {"entry", "Your entry"}}};

// The value if it is one of the options, otherwise the first of them.
template <std::size_t count>
std::string oneOf(const std::array<Option, count>& options, std::string_view value) {
  const auto found = std::ranges::find(options, value, &Option::value);
  return std::string(found == options.end() ? options.front().value : found->value);
}

template <class Options>
Markup optionsMarkup(const Options& options, std::string_view chosen) {
  Markup markup;
  for (const Option& option : options) {
    markup += filled(
        page::optionHtml,
        {{"value", escaped(option.value)},
         {"selected", escaped(option.value == chosen ? " selected" : "")},
         {"label", escaped(option.label)}});
  }
  return markup;
}

std::string queryEncoded(std::string_view text) {
  std::string encoded;
  for (const char character : text) {
    const bool plain = (character >= 'a' && character <= 'z') ||
                       (character >= 'A' && character <= 'Z') ||
                       (character >= '0' && character <= '9') || character == '-' ||
                       character == '_' || character == '.';
    if (plain) {
      encoded += character;
    } else {
      constexpr std::string_view digits = "0123456789ABCDEF";
      const auto byte = static_cast<unsigned char>(character);
      encoded += '%';
      encoded += digits[byte >> 4U];
      encoded += digits[byte & 15U];
    }
  }
  return encoded;
}

// The address of one picture as a file.
std::string pictureAddress(
    const EngineerChoice& choice,
    const std::string& state,
    std::string_view appearance,
    std::string_view ending) {
  std::string address = "/picture." + std::string(ending);
  address += "?kind=" + queryEncoded(choice.widget.kind);
  address += "&screen=" + choice.screen;
  address += "&language=" + choice.language;
  address += "&scale=" + std::to_string(choice.scale);
  address += "&appearance=" + std::string(appearance);
  address += "&state=" + state;
  if (state == "entry") {
    address += "&entry=" + queryEncoded(choice.entry);
  }
  return address;
}

std::string_view appearanceName(ui::Appearance appearance) {
  return appearance == ui::Appearance::dark ? "dark" : "light";
}

std::string lengthText(double points) {
  return Number(std::round(points * 100) / 100).stringValue();
}

Markup length(double points) { return escaped(lengthText(points)); }

std::string sizeText(drawing::Size size) {
  return lengthText(size.width) + " × " + lengthText(size.height);
}

// The frames of what is painted, with their sizes, to lie over the card.
Markup boxesMarkup(const drawing::DisplayList& list) {
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

std::string prettyJson(const Value& value) {
  return writeJson(value, JsonLayout::pretty).value_or("");
}

ui::WidgetFamily familyOf(const channel::CatalogueItem& widget) {
  return widget.families.empty() ? ui::WidgetFamily::systemSmall : widget.families.front();
}

// What a person without a widget is told.
WebAnswer nothingToShow() {
  return {
      .status = 404,
      .body =
          "There is no widget of this kind, or the extension has not listed its widgets yet.\n"};
}

}  // namespace

const PreviewSession::Result* EngineerView::Column::result() const {
  if (pending == nullptr) {
    return nullptr;
  }
  const auto& outcome = *pending;
  return outcome && outcome->has_value() ? &outcome->value() : nullptr;
}

std::string EngineerView::Column::reason() const {
  if (pending == nullptr) {
    return problem;
  }
  const auto& outcome = *pending;
  return outcome && !outcome->has_value() ? outcome->error() : "";
}

std::optional<EngineerChoice> EngineerView::choiceOf(const WebRequest& request) const {
  const auto& catalogue = supervisor_.catalogue();
  const std::string_view kind = request.parameter("kind");
  const auto widget = kind.empty()
                          ? catalogue.begin()
                          : std::ranges::find(catalogue, kind, &channel::CatalogueItem::kind);
  if (widget == catalogue.end()) {
    return std::nullopt;
  }
  EngineerChoice choice{
      .widget = *widget,
      .screen = "",
      .size = {},
      .appearance = oneOf(appearances, request.parameter("appearance")),
      .scale = oneOf(scales, request.parameter("scale")).front() - '0',
      .format = oneOf(formats, request.parameter("format")),
      .language = oneOf(languages, request.parameter("language")),
      .boxes = request.parameter("boxes") == "1",
      .state = oneOf(states, request.parameter("state")),
      .entry = std::string(request.parameter("entry"))};
  const auto known = screens();
  const auto screen = std::ranges::find(known, request.parameter("screen"));
  choice.screen = screen == known.end() ? known.front() : *screen;
  choice.size = widgetSize(familyOf(choice.widget), choice.screen);
  return choice;
}

EngineerView::Column EngineerView::column(
    const Moment& now, const EngineerChoice& choice, const std::string& state) {
  Column column{
      .state = state,
      .title = std::string(std::ranges::find(states, state, &Option::value)->label),
      .problem = "",
      .pending = nullptr};
  PreviewSession::Job job{
      .kind = choice.widget.kind,
      .source = PreviewSession::Source::given,
      .entry = {},
      .locale = choice.language};
  if (state == "placeholder") {
    job.source = PreviewSession::Source::placeholder;
  } else if (state == "snapshot") {
    job.source = PreviewSession::Source::snapshot;
  } else if (state == "timeline") {
    const Picture* shown = nullptr;
    for (const WidgetState& card : supervisor_.widgets()) {
      if (card.about->kind == choice.widget.kind) {
        shown = card.picture;
      }
    }
    if (shown == nullptr || shown->source != Picture::Source::timeline) {
      column.problem = "No timeline has come for this widget yet. Is it on the home screen?";
      return column;
    }
    job.entry = shown->entry;
  } else {
    auto entry = readJson(choice.entry, JsonFragments::refused);
    if (!entry) {
      column.problem = choice.entry.empty() ? "Type an entry to see it here."
                                            : "This is not JSON: " + entry.error().reason + ".";
      return column;
    }
    job.entry = std::move(*entry);
  }
  column.pending = previews_.submit(now, std::move(job));
  return column;
}

drawing::DisplayList EngineerView::compose(const EngineerChoice& choice, const ui::View& view) {
  const ui::WidgetFamily family = familyOf(choice.widget);
  const drawing::CardRequest request{
      .kind = choice.widget.kind,
      .family = std::string(channel::familyName(family)),
      .size = choice.size,
      .scale = choice.scale,
      .language = ""};
  return cards_.compose(view, request, choice.language.empty() ? locale_ : choice.language);
}

LaterAnswer EngineerView::page(const Moment& now, const WebRequest& request, PageFrame frame) {
  const auto choice = choiceOf(request);
  if (!choice) {
    return [] { return nothingToShow(); };
  }
  std::vector<Column> columns;
  for (const char* state : {"placeholder", "snapshot", "timeline"}) {
    columns.push_back(column(now, *choice, state));
  }
  if (!choice->entry.empty() || choice->state == "entry") {
    columns.push_back(column(now, *choice, "entry"));
  }
  return [this,
          choice = *choice,
          columns = std::move(columns),
          frame = std::move(frame)]() -> std::optional<WebAnswer> {
    if (!std::ranges::all_of(columns, &Column::isDone)) {
      return std::nullopt;
    }
    return WebAnswer{
        .contentType = "text/html; charset=utf-8",
        .body = render(choice, columns, frame).html(),
        .headers = {{"Content-Security-Policy", contentPolicy(frame.nonce)}}};
  };
}

LaterAnswer EngineerView::picture(
    const Moment& now, const WebRequest& request, PictureFormat format) {
  const auto choice = choiceOf(request);
  if (!choice) {
    return [] { return nothingToShow(); };
  }
  return [this,
          choice = *choice,
          format,
          column = column(now, *choice, choice->state)]() -> std::optional<WebAnswer> {
    if (!column.isDone()) {
      return std::nullopt;
    }
    const PreviewSession::Result* result = column.result();
    if (result == nullptr) {
      return WebAnswer{.status = 422, .body = column.reason() + "\n"};
    }
    const auto appearance =
        choice.appearance == "dark" ? ui::Appearance::dark : ui::Appearance::light;
    auto file = cards_.write(compose(choice, result->view), format, appearance);
    if (!file) {
      return WebAnswer{.status = 422, .body = file.error() + "\n"};
    }
    const bool png = format == PictureFormat::png;
    std::string name = choice.widget.kind + "-" + choice.state + "-" +
                       std::string(appearanceName(appearance)) +
                       (png ? "@" + std::to_string(choice.scale) + "x.png" : ".svg");
    std::erase_if(name, [](char c) { return c == '"' || c == '\\' || c < ' '; });
    return WebAnswer{
        .contentType = png ? "image/png" : "image/svg+xml",
        .body = std::move(*file),
        .headers = {{"Content-Disposition", "attachment; filename=\"" + name + "\""}}};
  };
}

Markup EngineerView::render(
    const EngineerChoice& choice, const std::vector<Column>& columns, const PageFrame& frame) {
  std::vector<std::string> kindLabels;
  std::vector<Option> kinds;
  kindLabels.reserve(supervisor_.catalogue().size());
  for (const channel::CatalogueItem& item : supervisor_.catalogue()) {
    kinds.push_back({item.kind, kindLabels.emplace_back(item.kind)});
  }
  std::vector<std::string> screenLabels;
  std::vector<Option> screenOptions;
  screenLabels.reserve(screens().size());
  for (const std::string_view screen : screens()) {
    const drawing::Size size = widgetSize(familyOf(choice.widget), screen);
    screenOptions.push_back(
        {screen, screenLabels.emplace_back(std::string(screen) + " (" + sizeText(size) + ")")});
  }
  Markup columnsHtml;
  std::string sample;
  for (const Column& column : columns) {
    columnsHtml += columnMarkup(choice, column);
    const PreviewSession::Result* result = column.result();
    if (column.state == "snapshot" && result != nullptr) {
      sample = writeJson(result->entry, JsonLayout::compact).value_or("");
    }
  }
  return filled(
      page::engineerHtml,
      {{"name", escaped(choice.widget.kind)},
       {"nonce", escaped(frame.nonce)},
       {"style", trusted(std::string(page::styleCss))},
       {"engineerStyle", trusted(std::string(page::engineerCss))},
       {"appearanceScript", trusted(std::string(page::appearanceJs))},
       {"kinds", optionsMarkup(kinds, choice.widget.kind)},
       {"screens", optionsMarkup(screenOptions, choice.screen)},
       {"languages", optionsMarkup(languages, choice.language)},
       {"appearances", optionsMarkup(appearances, choice.appearance)},
       {"formats", optionsMarkup(formats, choice.format)},
       {"scales", optionsMarkup(scales, std::to_string(choice.scale))},
       {"states", optionsMarkup(states, choice.state)},
       {"boxesChecked", escaped(choice.boxes ? " checked" : "")},
       {"sample", escaped(sample)},
       {"entry", escaped(choice.entry)},
       {"columns", columnsHtml},
       {"details", detailsMarkup(choice, columns)},
       {"script", trusted(std::string(page::engineerJs))}});
}

Markup EngineerView::columnMarkup(const EngineerChoice& choice, const Column& column) {
  Markup content;
  std::string date;
  if (const PreviewSession::Result* result = column.result(); result == nullptr) {
    content = filled(page::engineerProblemHtml, {{"problem", escaped(column.reason())}});
  } else {
    if (const auto* members = result->entry.as<Dictionary>()) {
      const Value* value = members->find("date");
      const auto* text = value == nullptr ? nullptr : value->as<std::string>();
      date = text == nullptr ? "" : *text;
    }
    const drawing::DisplayList list = compose(choice, result->view);
    for (const auto appearance : {ui::Appearance::light, ui::Appearance::dark}) {
      if (choice.appearance == "both" || choice.appearance == appearanceName(appearance)) {
        content += pictureMarkup(choice, column, list, appearance);
      }
    }
  }
  return filled(
      page::engineerColumnHtml,
      {{"title", escaped(column.title)}, {"date", escaped(date)}, {"content", content}});
}

Markup EngineerView::pictureMarkup(
    const EngineerChoice& choice,
    const Column& column,
    const drawing::DisplayList& list,
    ui::Appearance appearance) {
  const std::string_view name = appearanceName(appearance);
  const bool png = choice.format == "png";
  auto file = cards_.write(
      list,
      png ? PictureFormat::png : PictureFormat::svg,
      appearance,
      column.state + "-" + std::string(name) + "-");
  Markup picture;
  if (!file) {
    picture = filled(page::engineerProblemHtml, {{"problem", escaped(file.error())}});
  } else if (png) {
    picture = filled(
        page::engineerImageHtml,
        {{"width", length(list.size.width)},
         {"height", length(list.size.height)},
         {"alt", escaped(accessibilityLabel(list))},
         {"bytes", escaped(base64(*file))}});
  } else {
    picture = trusted(std::move(*file));
  }
  return filled(
      page::engineerPictureHtml,
      {{"picture", picture},
       {"boxes", choice.boxes ? boxesMarkup(list) : Markup{}},
       {"appearance", escaped(appearance == ui::Appearance::dark ? "Dark" : "Light")},
       {"size", escaped(sizeText(list.size) + " at " + std::to_string(choice.scale) + "x")},
       {"svg", escaped(pictureAddress(choice, column.state, name, "svg"))},
       {"png", escaped(pictureAddress(choice, column.state, name, "png"))}});
}

Markup EngineerView::detailsMarkup(
    const EngineerChoice& choice, const std::vector<Column>& columns) {
  const auto column = std::ranges::find(columns, choice.state, &Column::state);
  const PreviewSession::Result* result = column == columns.end() ? nullptr : column->result();
  if (result == nullptr) {
    return {};
  }
  const auto appearance =
      choice.appearance == "dark" ? ui::Appearance::dark : ui::Appearance::light;
  const auto list = cards_.write(compose(choice, result->view), PictureFormat::json, appearance);
  return filled(
      page::engineerDetailsHtml,
      {{"tree", escaped(prettyJson(ui::toValue(result->view)))},
       {"list", escaped(list.value_or(""))}});
}

}  // namespace quillpad::home
