// What the address of the engineer's view chooses, and the addresses that make a choice. A plain
// value; what an address lacks or gets wrong has its usual value.
#pragma once

#include <string>
#include <string_view>

#include "home/language/Language.h"
#include "home/server/WebMessages.h"
#include "platform/ui/Color.h"

namespace quillpad::home {

// Adds the parameter to the address, unless it is empty.
void addParameter(std::string& address, std::string_view name, std::string_view value);

enum class PreviewState { timeline, placeholder, snapshot, entry };

// What an entry of one's own can start from, as it stands in an address.
inline constexpr std::string_view startFromLive = "live";
inline constexpr std::string_view startFromSample = "sample/";  // and its name

// Device pixels per point, as an address names them: 1, 2 or 3; 2 for anything else.
int scaleFrom(std::string_view name);

struct PreviewQuery {
  enum class Appearances { both, light, dark };
  enum class Format { svg, png };

  std::string kind{};      // empty: the catalogue's first
  std::string screen{};    // empty: the default
  std::string language{};  // a locale's identifier; empty: that of the home screen
  std::string currency{};  // empty: that of the settings
  Appearances appearances = Appearances::both;
  Format format = Format::svg;
  int scale = 2;
  bool boxes = false;
  PreviewState state = PreviewState::timeline;  // whose details are shown
  std::string start{};                          // what the entry starts from, as above
  std::string entry{};                          // as it was typed; empty: as it starts

  static PreviewQuery parse(const WebRequest& request);

  // The path with what differs from the usual values, for example "/picture.png?kind=A&scale=3".
  std::string toUrl(std::string_view path) const;

  // Whether pictures in the appearance are chosen.
  bool shows(ui::Appearance appearance) const;
};

// "timeline", "placeholder", "snapshot" or "entry".
std::string_view stateName(PreviewState state);

// The state in words, for a person.
std::string titleOf(PreviewState state, const Language& language);

}  // namespace quillpad::home
