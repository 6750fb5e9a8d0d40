// Pixels in memory. Plain values.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/ui/Color.h"

namespace quillpad::drawing {

// The most pixels that are drawn or read at once; a card on the largest phone has about 0.6
// million.
inline constexpr std::int64_t maximumPixels = std::int64_t{1} << 25;

// Rows from the top, colours not multiplied by their alpha.
struct Bitmap {
  int width = 0;
  int height = 0;
  std::vector<ui::Rgba> pixels;

  const ui::Rgba* row(int y) const {
    return pixels.data() + static_cast<std::ptrdiff_t>(y) * width;
  }
};

// The picture brought to another size; each new pixel is the mean of what it covers.
Bitmap scaled(const Bitmap& picture, int width, int height);

}  // namespace quillpad::drawing
