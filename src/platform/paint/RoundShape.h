// Rectangles of whole device pixels with round corners, and how much of each pixel they cover.
#pragma once

#include <map>
#include <span>
#include <vector>

#include "platform/text/Coverage.h"

namespace quillpad::drawing {

struct RoundShape {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
  double radius = 0;  // at most half of the shorter side

  // How many rows at the top and at the bottom, and columns at either side, hold corners.
  int cornerSide() const;
  // The row's distance from the nearer horizontal edge; below 0 outside.
  int line(int y) const;
};

// Keeps the corners of usual radii. Belongs to one thread.
class RoundShapes {
 public:
  // Writes how much the shape covers of each pixel from (x, y) on.
  void cover(const RoundShape& shape, int x, int y, std::span<Coverage> row);

 private:
  void coverCorner(double radius, int line, int from, std::span<Coverage> row);

  std::map<double, std::vector<Coverage>> corners_;  // by radius, side x side levels
};

}  // namespace quillpad::drawing
