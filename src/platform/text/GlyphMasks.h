// Glyphs as masks, rendered without hinting and kept by font, glyph, size and phase;
// and glyphs in colour as pictures. What is kept is bounded. Belongs to one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "platform/text/Bitmap.h"
#include "platform/text/Coverage.h"
#include "platform/text/FontBook.h"

namespace quillpad::drawing {

// Rows are padded with empty levels to a whole number of steps, so that they can be laid down
// sixteen pixels at a time.
struct GlyphMask {
  static constexpr int step = 16;

  int left = 0;  // from the origin to the first column
  int top = 0;   // from the baseline up to the first row
  int width = 0;
  int height = 0;
  int stride = 0;  // the width with padding
  std::vector<Coverage> levels;

  const Coverage* row(int y) const {
    return levels.data() + static_cast<std::ptrdiff_t>(y) * stride;
  }
};

struct ColorGlyph {
  int left = 0;
  int top = 0;
  Bitmap picture;
};

// In device pixels; a glyph that would be larger is drawn at this size.
inline constexpr double maximumGlyphSize = 4096;

// Where in a pixel a glyph's origin is, in quarters to the right and downwards, 0 to 3.
struct GlyphPhase {
  int x = 0;
  int y = 0;
};

class GlyphMasks {
 public:
  explicit GlyphMasks(FontBook& fonts) : fonts_(fonts) {}

  // The mask of a glyph at a size in device pixels; empty where the glyph has no outline. Good
  // until the next call.
  const GlyphMask& find(FontId font, std::uint32_t glyph, double size, GlyphPhase phase);

  // The glyph's picture scaled to the size; empty where it has none. Good until the next call.
  const ColorGlyph& findColor(FontId font, std::uint32_t glyph, double size);

 private:
  GlyphMask render(FontId font, std::uint32_t glyph, long size, GlyphPhase phase);

  FontBook& fonts_;
  std::unordered_map<std::uint64_t, GlyphMask> kept_;
  std::unordered_map<std::uint64_t, ColorGlyph> keptColor_;
  std::size_t keptBytes_ = 0;
};

// A glyph in colour as its font holds it, and the size in pixels that it was drawn for.
struct StrikeGlyph {
  int left = 0;
  int top = 0;
  double size = 0;  // 0: the font has no picture of the glyph
  Bitmap picture;
};
StrikeGlyph strikeGlyph(FontBook& fonts, FontId font, std::uint32_t glyph);

}  // namespace quillpad::drawing
