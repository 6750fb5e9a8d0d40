// The fonts that texts are drawn with: the system font's files, opened when first needed, and the
// installed fonts that stand in where the system font lacks a glyph. Which font characters get
// depends on nothing that was asked before. Belongs to one thread, as its FreeType faces do.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/text/FontFinder.h"
#include "platform/ui/Font.h"

struct FT_FaceRec_;  // NOLINT(readability-identifier-naming): FreeType's name
struct hb_font_t;

namespace quillpad::drawing {

// A font of one FontBook, good as long as the book lives.
using FontId = std::uint16_t;

class FontBook {
 public:
  FontBook();
  ~FontBook();
  FontBook(const FontBook&) = delete;
  FontBook& operator=(const FontBook&) = delete;

  // The system font in a weight. Any installed sans-serif stands in where its file is missing.
  static FontId system(ui::Weight weight);
  static bool isSystem(FontId font);

  // An installed font that has all the characters, chosen by script and language; nothing if none
  // has them.
  std::optional<FontId> fallback(
      std::u32string_view characters,
      Script script,
      ui::Weight weight,
      const std::string& language);

  // Whether the font has a glyph for each of the characters.
  bool covers(FontId font, std::u32string_view characters);

  // The face, unscaled state: whoever uses it sets the size first. None where the file is damaged.
  FT_FaceRec_* face(FontId font);

  // The same face for shaping, scaled to its units per em.
  hb_font_t* shaper(FontId font);

  double unitsPerEm(FontId font);

  // Whether the font has pictures in colour instead of outlines (emoji).
  bool hasColorBitmaps(FontId font);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace quillpad::drawing
