// Glyphs for a run of text that has one font, one script and one direction. Keeps its buffer from
// call to call. Belongs to the thread of its FontBook.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text/FontBook.h"
#include "platform/text/ShapedText.h"

struct hb_buffer_t;

namespace quillpad::drawing {

// Characters of a text, in bytes, that can be shaped at once.
struct TextRun {
  std::size_t begin = 0;
  std::size_t end = 0;
  FontId font = 0;
  std::uint8_t level = 0;  // of bidirectional embedding: odd is right to left
  Script script = 0;
  friend bool operator==(const TextRun&, const TextRun&) = default;
};

class Shaper {
 public:
  explicit Shaper(FontBook& fonts);
  ~Shaper();
  Shaper(const Shaper&) = delete;
  Shaper& operator=(const Shaper&) = delete;

  FontBook& fonts() { return fonts_; }

  // The run's glyphs from left to right, good until the next call. Neighbouring characters of the
  // text shape its ends. In the system font each character keeps its own look, "->" above all; the
  // forms that scripts need and kerning apply in every font.
  std::span<const ShapedGlyph> shape(
      std::string_view text, const TextRun& run, const std::string& language);

 private:
  FontBook& fonts_;
  struct Release {
    void operator()(hb_buffer_t* buffer) const;
  };
  std::unique_ptr<hb_buffer_t, Release> buffer_;
  std::vector<ShapedGlyph> glyphs_;
};

}  // namespace quillpad::drawing
