#include "home/page/PreviewQuery.h"

#include <algorithm>
#include <array>
#include <utility>

#include "home/cards/WidgetSizes.h"
#include "platform/foundation/Hex.h"

namespace quillpad::home {
namespace {

using Appearances = PreviewQuery::Appearances;
using Format = PreviewQuery::Format;

template <class Value, std::size_t count>
using Names = std::array<std::pair<std::string_view, Value>, count>;

// The usual value comes first.
constexpr Names<Appearances, 3> appearanceNames{
    {{"both", Appearances::both}, {"light", Appearances::light}, {"dark", Appearances::dark}}};
constexpr Names<Format, 2> formatNames{{{"svg", Format::svg}, {"png", Format::png}}};
constexpr Names<int, 3> scaleNames{{{"2", 2}, {"1", 1}, {"3", 3}}};
constexpr Names<PreviewState, 4> stateNames{
    {{"timeline", PreviewState::timeline},
     {"placeholder", PreviewState::placeholder},
     {"snapshot", PreviewState::snapshot},
     {"entry", PreviewState::entry}}};

template <class Value, std::size_t count>
Value valueOf(const Names<Value, count>& names, std::string_view name) {
  const auto found = std::ranges::find(names, name, [](const auto& each) { return each.first; });
  return found == names.end() ? names.front().second : found->second;
}

template <class Value, std::size_t count>
std::string_view nameOf(const Names<Value, count>& names, Value value) {
  return std::ranges::find(names, value, [](const auto& each) { return each.second; })->first;
}

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

int scaleFrom(std::string_view name) { return valueOf(scaleNames, name); }

PreviewQuery PreviewQuery::parse(const WebRequest& request) {
  const std::string_view screen = request.parameter("screen");
  return {
      .kind = std::string(request.parameter("kind")),
      .screen = isScreen(screen) ? std::string(screen) : "",
      .language = std::string(request.parameter("language")),
      .currency = std::string(request.parameter("currency")),
      .appearances = valueOf(appearanceNames, request.parameter("appearance")),
      .format = valueOf(formatNames, request.parameter("format")),
      .scale = scaleFrom(request.parameter("scale")),
      .boxes = request.parameter("boxes") == "1",
      .state = valueOf(stateNames, request.parameter("state")),
      .start = std::string(request.parameter("start")),
      .entry = std::string(request.parameter("entry"))};
}

std::string PreviewQuery::toUrl(std::string_view path) const {
  std::string url(path);
  const auto add = [&](std::string_view name, std::string_view value, std::string_view usual) {
    if (value != usual) {
      addParameter(url, name, value);
    }
  };
  add("kind", kind, "");
  add("screen", screen, "");
  add("language", language, "");
  add("currency", currency, "");
  add("appearance", nameOf(appearanceNames, appearances), appearanceNames.front().first);
  add("format", nameOf(formatNames, format), formatNames.front().first);
  add("scale", nameOf(scaleNames, scale), scaleNames.front().first);
  add("boxes", boxes ? "1" : "", "");
  add("state", stateName(state), stateNames.front().first);
  add("start", start, "");
  add("entry", entry, "");
  return url;
}

bool PreviewQuery::shows(ui::Appearance appearance) const {
  return appearances == Appearances::both ||
         (appearances == Appearances::dark) == (appearance == ui::Appearance::dark);
}

std::string_view stateName(PreviewState state) { return nameOf(stateNames, state); }

std::string titleOf(PreviewState state, const Language& language) {
  switch (state) {
    case PreviewState::timeline:
      return language.text("Timeline");
    case PreviewState::placeholder:
      return language.text("Placeholder");
    case PreviewState::snapshot:
      return language.text("Snapshot");
    case PreviewState::entry:
      break;
  }
  return language.text("Your entry");
}

}  // namespace quillpad::home
