#include "home/cards/CardRenderer.h"

#include "platform/foundation/Bundle.h"
#include "platform/foundation/Locale.h"
#include "platform/paint/DisplayListJson.h"
#include "platform/paint/SvgWriter.h"

namespace quillpad::home {
bool isMirrored(const std::string& locale) {
  const auto language = Bundle::main().localization(locale);
  return language && isRightToLeft(*language);
}

namespace {

// Its language and direction.
void completeFor(const std::string& locale, drawing::CardRequest& request) {
  const auto languages = languagesOf(locale);
  request.language = languages.empty() ? "en" : languages.front();
  request.rightToLeft = isMirrored(locale);
}

}  // namespace

CardRenderer::CardRenderer() : texts_(fonts_), pictures_(Bundle::main()), png_(fonts_, pictures_) {}

drawing::ImageSize CardRenderer::imageSize() {
  return [this](const std::string& name) { return pictures_.naturalSize(name); };
}

drawing::DisplayList CardRenderer::compose(
    const ui::View& view, drawing::CardRequest request, const std::string& locale) {
  completeFor(locale, request);
  return drawing::compose(view, request, imageSize(), texts_);
}

drawing::Inspection CardRenderer::inspect(
    const ui::View& view, drawing::CardRequest request, const std::string& locale) {
  completeFor(locale, request);
  return drawing::inspect(view, request, imageSize(), texts_);
}

std::expected<std::string, std::string> CardRenderer::write(
    const drawing::DisplayList& list,
    PictureFormat format,
    ui::Appearance appearance,
    std::string_view idPrefix) {
  switch (format) {
    case PictureFormat::svg:
      return drawing::writeSvg(list, appearance, fonts_, pictures_, idPrefix);
    case PictureFormat::json:
      return drawing::toJson(list, appearance);
    case PictureFormat::png:
      break;
  }
  const auto bytes = png_.write(list, appearance);
  if (!bytes) {
    return std::unexpected(bytes.error());
  }
  return std::string(bytes->begin(), bytes->end());
}

std::expected<std::string, std::string> CardRenderer::writeForPage(
    const drawing::DisplayList& list, std::string_view idPrefix) {
  return drawing::writeSvg(list, std::nullopt, fonts_, pictures_, idPrefix);
}

}  // namespace quillpad::home
