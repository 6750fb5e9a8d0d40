// How much of a pixel a shape covers, in steps. Fifty-one steps of five make 255, so five ramps of
// one ink each, and the ground, fill a palette of 256 exactly: the most that a card with three
// inks, a white picture on its badge and round corners needs.
#pragma once

#include <cstdint>

namespace quillpad::drawing {

using CoverLevel = std::uint8_t;

inline constexpr int fullCover = 51;

// The nearest level to a cover of 0 to 255.
constexpr CoverLevel coverLevel(int cover) { return static_cast<CoverLevel>((cover + 2) / 5); }

// What of a level remains under another one.
constexpr CoverLevel masked(int level, int mask) {
  return static_cast<CoverLevel>((level * mask + fullCover / 2) / fullCover);
}

constexpr int alphaOf(int level) { return level * 5; }

}  // namespace quillpad::drawing
