// Colours: fixed ones, and pairs that follow the system's appearance. Plain values.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/foundation/Named.h"

namespace quillpad::ui {

// sRGB, eight bits a component; alpha 255 is opaque.
struct Rgba {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  std::uint8_t alpha = 255;
  friend constexpr bool operator==(Rgba, Rgba) = default;
};

inline constexpr Rgba whiteColor{255, 255, 255};
inline constexpr Rgba blackColor{0, 0, 0};

enum class Appearance { unspecified, light, dark };

inline constexpr std::array appearanceNames{
    Named{"light", Appearance::light},
    Named{"dark", Appearance::dark},
    Named{"unspecified", Appearance::unspecified}};

constexpr std::string_view appearanceName(Appearance appearance) {
  return nameOf(appearanceNames, appearance);
}

// A colour that is resolved when it is drawn: what it is in dark appearance, and what in any other.
struct Color {
  constexpr Color() = default;
  constexpr Color(Rgba fixed) : light(fixed), dark(fixed) {}
  constexpr Color(Rgba inLight, Rgba inDark) : light(inLight), dark(inDark) {}

  constexpr Rgba resolved(Appearance appearance) const {
    return appearance == Appearance::dark ? dark : light;
  }

  Rgba light;
  Rgba dark;
};

}  // namespace quillpad::ui
