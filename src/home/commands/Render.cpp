#include <algorithm>
#include <unistd.h>

#include "home/commands/Commands.h"
#include "home/commands/Files.h"
#include "home/commands/ViewChoice.h"
#include "home/page/CardRenderer.h"
#include "home/page/WidgetSizes.h"
#include "platform/foundation/Locale.h"
#include "platform/foundation/NumberText.h"

namespace quillpad::home {
namespace {

constexpr std::array<Choice<std::optional<PictureFormat>>, 3> formats{
    {{"png", PictureFormat::png}, {"svg", PictureFormat::svg}, {"json", PictureFormat::json}}};
constexpr std::array<Choice<ui::Appearance>, 3> appearances{
    {{"light", ui::Appearance::light},
     {"dark", ui::Appearance::dark},
     {"unspecified", ui::Appearance::unspecified}}};

// "170x141.5"
std::optional<drawing::Size> sizeFromText(std::string_view text) {
  constexpr double longest = 10'000;
  const std::size_t cross = text.find('x');
  if (cross == std::string_view::npos) {
    return std::nullopt;
  }
  const double width = doubleFromText(text.substr(0, cross)).value_or(0);
  const double height = doubleFromText(text.substr(cross + 1)).value_or(0);
  const auto fits = [](double length) { return length > 0 && length <= longest; };
  return fits(width) && fits(height) ? std::optional(drawing::Size{width, height}) : std::nullopt;
}

struct Render {
  ViewChoice view{};
  std::string output{};
  std::optional<PictureFormat> format{};
  ui::Appearance appearance = ui::Appearance::light;
  int scale = 2;
  std::string size{};

  void declare(Options& options) {
    view.declare(options);
    options.text("-o,--output", output, "Where to; -: standard output", "FILE", Need::required);
    options.choice<std::optional<PictureFormat>>(
        "--format", format, "png, svg or json; else by the file's ending", formats);
    options.choice<ui::Appearance>(
        "--appearance", appearance, "The appearance to draw in", appearances);
    options.number("--scale", scale, "Device pixels per point", 1, 3);
    options.text("--size", size, "The card's size in points, for example 170x170", "WxH");
  }

  Done run(const CommandContext& context) const {
    const auto picture = formatOfOutput();
    if (!picture) {
      return std::unexpected(picture.error());
    }
    if (!size.empty() && !sizeFromText(size)) {
      return failure(
          ExitStatus::wrongUsage,
          "--size is width and height in points, above 0 and at most 10000, for example 170x170");
    }
    if (output == "-" && *picture == PictureFormat::png && ::isatty(STDOUT_FILENO) == 1) {
      return failure(
          ExitStatus::wrongUsage,
          "a terminal cannot show PNG; name a file with -o, or redirect standard output");
    }
    auto extension = ExtensionClient::start(context.extension);
    if (!extension) {
      return std::unexpected(extension.error());
    }
    const auto bytes = draw(*extension, *picture);
    if (!bytes) {
      return std::unexpected(bytes.error());
    }
    return output == "-" ? print(*bytes) : writeOutput(output, *bytes);
  }

 private:
  std::expected<PictureFormat, Failure> formatOfOutput() const {
    if (format) {
      return *format;
    }
    const std::string ending = std::filesystem::path(output).extension();
    const auto named = std::ranges::find_if(
        formats, [&](const auto& each) { return ending == "." + std::string(each.name); });
    if (named != formats.end() && named->value) {
      return *named->value;
    }
    return failure(
        ExitStatus::wrongUsage,
        output == "-" ? "-o - needs --format png, svg or json"
                      : "\"" + output + "\" does not end in .png, .svg or .json");
  }

  // The family to draw: the one chosen, or the kind's own.
  std::expected<ui::WidgetFamily, Failure> familyOf(ExtensionClient& extension) const {
    if (view.family) {
      return *view.family;
    }
    const auto catalogue = extension.ask<channel::Catalogue>(channel::CatalogueRequest{});
    if (!catalogue) {
      return std::unexpected(catalogue.error());
    }
    const auto item = std::ranges::find(catalogue->items, view.kind, &channel::CatalogueItem::kind);
    // Of a kind that it does not have, the extension itself will say so, and name those it has.
    return item == catalogue->items.end() ? ui::WidgetFamily::systemSmall : home::familyOf(*item);
  }

  std::expected<std::string, Failure> draw(
      ExtensionClient& extension, PictureFormat picture) const {
    CardRenderer cards;  // first, so that its libraries are loaded while the extension starts
    const auto family = familyOf(extension);
    if (!family) {
      return std::unexpected(family.error());
    }
    const drawing::Size points = sizeFromText(size).value_or(widgetSize(*family));
    if (const auto error = drawing::sizeError(points, scale)) {
      return failure(ExitStatus::wrongUsage, *error);
    }
    const auto tree = viewOf(extension, view);
    if (!tree) {
      return std::unexpected(tree.error());
    }
    const auto list = cards.compose(
        *tree,
        {.kind = view.kind,
         .family = std::string(ui::familyName(*family)),
         .size = points,
         .scale = scale,
         .redaction = view.redaction()},
        view.locale.empty() ? currentLocale() : view.locale);
    auto bytes = cards.write(list, picture, appearance);
    if (!bytes) {
      return failure(ExitStatus::wrongUsage, bytes.error());
    }
    return std::move(*bytes);
  }
};

}  // namespace

Command renderCommand() {
  return command<Render>(
      "render", "Draw a widget", "render KIND -o card.png --appearance dark --scale 3");
}

}  // namespace quillpad::home
