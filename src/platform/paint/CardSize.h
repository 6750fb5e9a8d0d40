// What sizes can be drawn.
#pragma once

#include <optional>
#include <string>

#include "platform/paint/DisplayList.h"

namespace quillpad::drawing {

// One line that tells why a list of this size and scale cannot be drawn, or nothing: the size must
// be at least one device pixel and at most maximumPixels, the scale 1, 2 or 3.
std::optional<std::string> sizeError(const DisplayList& list);

}  // namespace quillpad::drawing
