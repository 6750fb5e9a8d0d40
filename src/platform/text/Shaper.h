// Glyphs for a stretch of text that has one font, one script and one direction. Keeps its buffer
// from call to call. Belongs to the thread of its FontBook.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text/FontBook.h"

struct hb_buffer_t;

namespace quillpad::drawing {

// Lengths are parts of the font size, y upwards; `text` is where the glyph's characters begin.
struct ShapedGlyph {
  std::uint32_t id = 0;
  std::uint32_t text = 0;
  float advance = 0;
  float xOffset = 0;
  float yOffset = 0;
};

// A stretch of a text, in bytes.
struct Stretch {
  std::size_t begin = 0;
  std::size_t end = 0;
  FontId font = 0;
  std::uint8_t level = 0;  // of bidirectional embedding: odd is right to left
  Script script = latinScript;
};

class Shaper {
 public:
  explicit Shaper(FontBook& fonts);
  ~Shaper();
  Shaper(const Shaper&) = delete;
  Shaper& operator=(const Shaper&) = delete;

  FontBook& fonts() { return fonts_; }

  // The stretch's glyphs from left to right, good until the next call. Neighbouring characters of
  // the text shape the ends.
  std::span<const ShapedGlyph> shape(
      std::string_view text, const Stretch& stretch, const std::string& language);

 private:
  FontBook& fonts_;
  struct Release {
    void operator()(hb_buffer_t* buffer) const;
  };
  std::unique_ptr<hb_buffer_t, Release> buffer_;
  std::vector<ShapedGlyph> glyphs_;
};

}  // namespace quillpad::drawing
