#include "home/page/Studio.h"

#include <algorithm>
#include <array>

#include "platform/foundation/Bundle.h"
#include "platform/foundation/Locale.h"
#include "platform/paint/DisplayListJson.h"
#include "platform/paint/SvgWriter.h"

namespace quillpad::home {
namespace {

constexpr std::array<std::string_view, 8> rightToLeftLanguages{
    "ar", "ckb", "dv", "fa", "he", "ps", "ur", "yi"};

}  // namespace

bool isRightToLeft(const std::string& locale) {
  const auto language = Bundle::main().localization(locale);
  return language &&
         std::ranges::find(rightToLeftLanguages, *language) != rightToLeftLanguages.end();
}

std::optional<PictureFormat> pictureFormatFromName(std::string_view name) {
  if (name == "png") {
    return PictureFormat::png;
  }
  if (name == "svg") {
    return PictureFormat::svg;
  }
  if (name == "json") {
    return PictureFormat::json;
  }
  return std::nullopt;
}

drawing::Size defaultSize(ui::WidgetFamily family) {
  return family == ui::WidgetFamily::systemSmall ? drawing::Size{158, 158}
                                                 : drawing::Size{338, 158};
}

Studio::Studio() : texts_(fonts_), pictures_(Bundle::main()), png_(fonts_, pictures_) {}

drawing::DisplayList Studio::compose(
    const ui::View& view, drawing::CardRequest request, const std::string& locale) {
  const auto languages = languagesOf(locale);
  request.language = languages.empty() ? "en" : languages.front();
  request.rightToLeft = isRightToLeft(locale);
  const auto imageSize = [this](const std::string& name) { return pictures_.naturalSize(name); };
  return drawing::compose(view, request, imageSize, texts_);
}

std::expected<std::string, std::string> Studio::write(
    const drawing::DisplayList& list, PictureFormat format, std::string_view idPrefix) {
  switch (format) {
    case PictureFormat::svg:
      return drawing::writeSvg(list, fonts_, pictures_, idPrefix);
    case PictureFormat::json:
      return drawing::toJson(list);
    case PictureFormat::png:
      break;
  }
  const auto bytes = png_.write(list);
  if (!bytes) {
    return std::unexpected(bytes.error());
  }
  return std::string(bytes->begin(), bytes->end());
}

}  // namespace quillpad::home
