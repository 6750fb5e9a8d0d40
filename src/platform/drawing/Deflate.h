// Compresses the rows of a flat picture as a zlib stream, fast. Pure.
//
// A card is flat ground, even shapes and glyphs of upright stems: nearly all that repeats repeats
// the pixel to the left or the pixel above. So these two distances are all that is looked for, no
// history is searched or kept, and rows that nobody marked are passed over unread.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/drawing/PixelRows.h"

namespace drawing {

// Appends the zlib stream of the rows.
void deflateRows(const PixelRows& rows, std::vector<std::uint8_t>& out);

}  // namespace drawing
