// Draws display lists to PNG. Keeps glyph masks, corner masks and its canvas from card to card,
// never a card. Belongs to one thread, as its fonts do.
//
// A card of few colours becomes a file with a palette, which is both the fastest to make and the
// smallest; one of many (a name with emoji) becomes RGBA. What lies outside a card's round corners
// is transparent.
#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <string>
#include <vector>

#include "platform/paint/DisplayList.h"
#include "platform/paint/Pictures.h"
#include "platform/text/Bitmap.h"
#include "platform/text/FontBook.h"

namespace quillpad::drawing {

class PngWriter {
 public:
  // Both must outlive the writer.
  PngWriter(FontBook& fonts, Pictures& pictures);
  ~PngWriter();
  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;

  // The PNG file of the list at its scale, or one line that says why it cannot be drawn: an empty
  // size, more than maximumPixels, or too much work.
  std::expected<std::vector<std::uint8_t>, std::string> write(
      const DisplayList& list, ui::Appearance appearance);

  // Milliseconds that the last write spent on painting and on encoding.
  struct Split {
    double raster = 0;
    double encode = 0;
  };
  Split lastSplit() const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

// The PNG file of a picture.
std::vector<std::uint8_t> writePng(const Bitmap& picture);

}  // namespace quillpad::drawing
