// Turns rows of pixels into a PNG file. Pure.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/drawing/PixelRows.h"

namespace drawing {

// The PNG file of the rows: filter None, colours with a palette where the rows have one.
std::vector<std::uint8_t> encodePng(const PixelRows& rows);

}  // namespace drawing
