// Masks of quarter circles, kept by radius. Belongs to one thread.
#pragma once

#include <map>
#include <vector>

#include "platform/text/Coverage.h"

namespace quillpad::drawing {

// The top left corner of a round rectangle: side x side levels, rows from the top.
struct CornerMask {
  int side = 0;
  std::vector<Coverage> levels;
  std::vector<Coverage> mirrored;  // each row backwards: the top right corner
  std::vector<int> open;           // for each row, how many levels from the left are not full

  const Coverage* row(int y) const { return levels.data() + static_cast<std::ptrdiff_t>(y) * side; }
  const Coverage* mirroredRow(int y) const {
    return mirrored.data() + static_cast<std::ptrdiff_t>(y) * side;
  }
};

class CornerMasks {
 public:
  // The mask of a radius in device pixels, good until the next call.
  const CornerMask& find(double radius);

 private:
  std::map<double, CornerMask> kept_;
};

}  // namespace quillpad::drawing
