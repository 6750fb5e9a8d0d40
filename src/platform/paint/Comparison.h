// Tells how far two pictures are apart. Pure.
#pragma once

#include <cstdint>

#include "platform/text/Bitmap.h"

namespace quillpad::drawing {

enum class CompareResult { identical, similar, different };

struct Tolerance {
  int channel = 0;          // how far a component may be off before its pixel counts as differing
  std::int64_t pixels = 0;  // how many pixels may differ
};

struct Comparison {
  CompareResult result = CompareResult::identical;
  std::int64_t differingPixels = 0;  // beyond the tolerated distance
  int largestDifference = 0;         // of any component
  Bitmap difference;                 // the expected picture, faint, with differing pixels in red
};

// Pictures of different sizes are different, whatever is tolerated; they are compared from their
// top left corners. A pixel that cannot be seen has no colour.
Comparison compare(const Bitmap& expected, const Bitmap& actual, Tolerance tolerance = {});

}  // namespace quillpad::drawing
