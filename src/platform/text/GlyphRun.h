// Shaped text, placed. Plain values, lengths in points.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/text/FontBook.h"
#include "platform/text/Geometry.h"

namespace quillpad::drawing {

struct Glyph {
  std::uint32_t id = 0;
  Point origin;  // on the baseline, from the card's top left corner
};

// Glyphs of one font at one size.
struct GlyphRun {
  FontId font = 0;
  double size = 0;
  std::vector<Glyph> glyphs;
};

}  // namespace quillpad::drawing
