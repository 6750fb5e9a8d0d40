// The fonts that texts are drawn with: the system font's files, opened when first needed, and the
// installed fonts that stand in where the system font lacks a glyph. Belongs to one thread, as its
// FreeType faces do.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/ui/Font.h"

struct FT_FaceRec_;
struct hb_font_t;

namespace drawing {

// A font of one FontBook, good as long as the book lives.
using FontId = std::uint16_t;

class FontBook {
 public:
  FontBook();
  ~FontBook();
  FontBook(const FontBook&) = delete;
  FontBook& operator=(const FontBook&) = delete;

  // The system font in a weight. Falls back to any installed sans-serif where its file is missing.
  FontId system(ui::Weight weight);

  // An installed font of the weight that has the character, chosen by script and language; nothing
  // if none has it.
  std::optional<FontId> fallback(
      char32_t character, ui::Weight weight, const std::string& language);

  // The face, unscaled state: whoever uses it sets the size first.
  FT_FaceRec_* face(FontId font);

  // The same face for shaping, scaled to its units per em.
  hb_font_t* shaper(FontId font);

  double unitsPerEm(FontId font);

  // Whether the font has pictures in colour instead of outlines (emoji).
  bool hasColorBitmaps(FontId font);

 private:
  class Shelf;
  std::unique_ptr<Shelf> shelf_;
};

}  // namespace drawing
