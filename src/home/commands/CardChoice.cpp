#include "home/commands/CardChoice.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "home/cards/WidgetSizes.h"
#include "platform/foundation/NumberText.h"

namespace quillpad::home {
namespace {

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

// The family to draw: the one chosen, or the kind's own.
std::expected<ui::WidgetFamily, Failure> familyOf(
    ExtensionClient& extension, const ViewChoice& view) {
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

}  // namespace

void CardChoice::declare(Options& options) {
  options.number("--scale", scale, "Device pixels per point", 1, 3);
  options.text("--size", size, "The card's size in points, for example 170x170", "WxH");
}

Done CardChoice::check() const {
  if (size.empty() || sizeFromText(size)) {
    return {};
  }
  return failure(
      ExitStatus::wrongUsage,
      "--size is width and height in points, above 0 and at most 10000, for example 170x170");
}

std::expected<drawing::CardRequest, Failure> CardChoice::request(
    ExtensionClient& extension, const ViewChoice& view) const {
  const auto family = familyOf(extension, view);
  if (!family) {
    return std::unexpected(family.error());
  }
  const drawing::Size points = sizeFromText(size).value_or(widgetSize(*family));
  if (const auto error = drawing::sizeError(points, scale)) {
    return failure(ExitStatus::wrongUsage, *error);
  }
  return drawing::CardRequest{
      .kind = view.kind,
      .family = std::string(ui::familyName(*family)),
      .size = points,
      .scale = scale,
      .redacted = view.source == EntrySource::placeholder};
}

}  // namespace quillpad::home
