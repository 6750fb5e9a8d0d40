// How much of a pixel a shape covers, in steps from none to fullCoverage. Fifty-one steps of five
// make 255, so five ramps of one colour each, and the background, fill a palette of 256 exactly:
// the most that a card with three colours, a white picture on its badge and round corners needs.
#pragma once

#include <cstdint>

namespace quillpad::drawing {

using Coverage = std::uint8_t;

inline constexpr int fullCoverage = 51;

// The nearest step to an alpha of 0 to 255.
constexpr Coverage coverageOf(int alpha) { return static_cast<Coverage>((alpha + 2) / 5); }

// What of a coverage remains under another one.
constexpr Coverage masked(int coverage, int mask) {
  return static_cast<Coverage>((coverage * mask + fullCoverage / 2) / fullCoverage);
}

constexpr int alphaOf(int coverage) { return coverage * 5; }

}  // namespace quillpad::drawing
