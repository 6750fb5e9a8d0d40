// The vertical measures of the phone's system font, in parts of its size. They hold whatever file
// the glyphs come from, so that texts stand where they do on the phone. Plain values.
#pragma once

#include <algorithm>
#include <cmath>

namespace quillpad::drawing {

inline constexpr double systemAscender = 0.9521;
inline constexpr double systemCapHeight = 0.7046;

constexpr double systemLineHeight(double size) { return 1.1934 * size; }

// The smallest whole number of device pixels, in points, that holds the length.
inline double roundedUpToPixel(double length, double scale) {
  constexpr double tolerance = 1e-6;
  return std::max(std::ceil(length * scale - tolerance) / scale, 0.0);
}

}  // namespace quillpad::drawing
