// What the address of the engineer's view chooses, and the addresses that make a choice. A plain
// value; what an address lacks or gets wrong has its usual value.
#pragma once

#include <string>
#include <string_view>

#include "home/cards/CardRenderer.h"
#include "home/extension/EntrySource.h"
#include "home/language/Language.h"
#include "home/server/WebMessages.h"
#include "platform/ui/Color.h"

namespace quillpad::home {

// Adds the parameter to the address, unless it is empty.
void addParameter(std::string& address, std::string_view name, std::string_view value);

// What an entry of one's own can start from, as it stands in an address.
inline constexpr std::string_view startFromLive = "live";
inline constexpr std::string_view startFromSample = "sample/";  // and its name

// Values as an address names them, and their names; what is usual is left out of addresses and
// stands for anything else. Device pixels per point are 1, 2 or 3 and usually 2; the appearance is
// light, dark or, usually, unspecified, which stands for both.
int scaleFrom(std::string_view name);
std::string scaleParameter(int scale);
ui::Appearance appearanceFrom(std::string_view name);
std::string_view appearanceParameter(ui::Appearance appearance);

struct PreviewQuery {
  std::string kind{};      // empty: the catalogue's first
  std::string screen{};    // empty: the default
  std::string language{};  // a locale's identifier; empty: that of the home screen
  std::string currency{};  // empty: that of the settings
  ui::Appearance appearance = ui::Appearance::unspecified;
  PictureFormat format = PictureFormat::svg;  // or png
  int scale = 2;
  bool boxes = false;
  EntrySource source = EntrySource::timeline;  // whose details are shown
  std::string start{};                         // what the entry starts from, as above
  std::string entry{};                         // as it was typed; empty: as it starts

  static PreviewQuery parse(const WebRequest& request);

  // The path with what differs from the usual values, for example "/picture.png?kind=A&scale=3".
  std::string toUrl(std::string_view path) const;

  // Whether pictures in the appearance, light or dark, are chosen.
  bool shows(ui::Appearance wanted) const;
};

// "timeline", "placeholder", "snapshot" or "entry".
std::string_view sourceName(EntrySource source);

// The source in words, for a person.
std::string titleOf(EntrySource source, const Language& language);

}  // namespace quillpad::home
