#include "home/page/PreviewQuery.h"

#include <algorithm>
#include <array>
#include <utility>

#include "home/cards/WidgetSizes.h"
#include "platform/foundation/Hex.h"

namespace quillpad::home {
namespace {

constexpr auto sourceNames = sourcesWithGiven("entry");
constexpr auto usualSource = EntrySource::timeline;
constexpr int usualScale = 2;

bool isScreen(std::string_view name) {
  return std::ranges::find(screens(), name) != screens().end();
}

std::string encoded(std::string_view text) {
  std::string result;
  for (const char character : text) {
    const bool plain = (character >= 'a' && character <= 'z') ||
                       (character >= 'A' && character <= 'Z') ||
                       (character >= '0' && character <= '9') || character == '-' ||
                       character == '_' || character == '.';
    if (plain) {
      result += character;
    } else {
      result += '%';
      result += upperHexByte(static_cast<unsigned char>(character));
    }
  }
  return result;
}

}  // namespace

void addParameter(std::string& address, std::string_view name, std::string_view value) {
  if (!value.empty()) {
    address += address.contains('?') ? '&' : '?';
    address.append(name).append("=").append(encoded(value));
  }
}

int scaleFrom(std::string_view name) { return name == "1" ? 1 : name == "3" ? 3 : usualScale; }

std::string scaleParameter(int scale) { return scale == usualScale ? "" : std::to_string(scale); }

ui::Appearance appearanceFrom(std::string_view name) {
  const auto* appearance = valueNamed(ui::appearanceNames, name);
  return appearance == nullptr ? ui::Appearance::unspecified : *appearance;
}

std::string_view appearanceParameter(ui::Appearance appearance) {
  return appearance == ui::Appearance::unspecified ? "" : ui::appearanceName(appearance);
}

PreviewQuery PreviewQuery::parse(const WebRequest& request) {
  const std::string_view screen = request.parameter("screen");
  const auto* source = valueNamed(sourceNames, request.parameter("state"));
  return {
      .kind = std::string(request.parameter("kind")),
      .screen = isScreen(screen) ? std::string(screen) : "",
      .language = std::string(request.parameter("language")),
      .currency = std::string(request.parameter("currency")),
      .appearance = appearanceFrom(request.parameter("appearance")),
      .format = request.parameter("format") == "png" ? PictureFormat::png : PictureFormat::svg,
      .scale = scaleFrom(request.parameter("scale")),
      .boxes = request.parameter("boxes") == "1",
      .source = source == nullptr ? usualSource : *source,
      .start = std::string(request.parameter("start")),
      .entry = std::string(request.parameter("entry"))};
}

std::string PreviewQuery::toUrl(std::string_view path) const {
  std::string url(path);
  addParameter(url, "kind", kind);
  addParameter(url, "screen", screen);
  addParameter(url, "language", language);
  addParameter(url, "currency", currency);
  addParameter(url, "appearance", appearanceParameter(appearance));
  addParameter(url, "format", format == PictureFormat::png ? "png" : "");
  addParameter(url, "scale", scaleParameter(scale));
  addParameter(url, "boxes", boxes ? "1" : "");
  addParameter(url, "state", source == usualSource ? "" : sourceName(source));
  addParameter(url, "start", start);
  addParameter(url, "entry", entry);
  return url;
}

bool PreviewQuery::shows(ui::Appearance wanted) const {
  return appearance == ui::Appearance::unspecified || appearance == wanted;
}

std::string_view sourceName(EntrySource source) { return nameOf(sourceNames, source); }

std::string titleOf(EntrySource source, const Language& language) {
  switch (source) {
    case EntrySource::timeline:
      return language.text("Timeline");
    case EntrySource::placeholder:
      return language.text("Placeholder");
    case EntrySource::snapshot:
      return language.text("Snapshot");
    case EntrySource::given:
      break;
  }
  return language.text("Your entry");
}

}  // namespace quillpad::home
