// What sizes can be drawn.
#pragma once

#include <optional>
#include <string>

#include "platform/text/Geometry.h"

namespace quillpad::drawing {

// One line that tells why a card of this size in points cannot be drawn at the scale, or nothing:
// the size must be at least one device pixel and at most maximumPixels, the scale 1, 2 or 3.
std::optional<std::string> sizeError(Size size, int scale);

}  // namespace quillpad::drawing
