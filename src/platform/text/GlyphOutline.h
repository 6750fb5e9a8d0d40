// Glyphs as paths. Belongs to the thread of the FontBook.
#pragma once

#include <cstdint>
#include <string>

#include "platform/text/FontBook.h"

namespace quillpad::drawing {

// The path data (as SVG writes it) of the glyph's outline in font units, y upwards; empty where it
// has none.
std::string glyphPath(FontBook& fonts, FontId font, std::uint32_t glyph);

}  // namespace quillpad::drawing
