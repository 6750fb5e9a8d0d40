#include "platform/paint/CornerMasks.h"

#include <algorithm>
#include <cmath>

namespace quillpad::drawing {

namespace {

constexpr std::size_t mostKept = 32;
constexpr int mostSideKept = 512;
constexpr int linesPerPixel = 16;

// Exact along x, sampled by sixteen lines along y.
CornerMask quarterCircle(double radius) {
  const int side = static_cast<int>(std::ceil(radius));
  const auto width = static_cast<std::size_t>(side);
  CornerMask mask{.side = side, .levels = {}, .mirrored = {}, .open = {}};
  mask.levels.reserve(width * width);
  std::vector<double> cover(width);
  for (int y = 0; y < side; ++y) {
    std::ranges::fill(cover, 0.0);
    for (int line = 0; line < linesPerPixel; ++line) {
      const double rise = radius - (y + (line + 0.5) / linesPerPixel);
      const double begin =
          rise <= 0 ? 0 : radius - std::sqrt(std::max(0.0, radius * radius - rise * rise));
      for (int x = static_cast<int>(begin); x < side; ++x) {
        cover[static_cast<std::size_t>(x)] += std::min(1.0, x + 1 - begin);
      }
    }
    for (const double sum : cover) {
      mask.levels.push_back(static_cast<Coverage>(std::lround(fullCoverage * sum / linesPerPixel)));
    }
  }
  mask.mirrored = mask.levels;
  for (auto row = mask.mirrored.begin(); row != mask.mirrored.end(); row += side) {
    mask.open.push_back(static_cast<int>(std::find(row, row + side, fullCoverage) - row));
    std::reverse(row, row + side);
  }
  return mask;
}

}  // namespace

const CornerMask& CornerMasks::find(double radius) {
  const auto known = kept_.find(radius);
  if (known != kept_.end()) {
    return known->second;
  }
  if (kept_.size() == mostKept || radius > mostSideKept) {
    kept_.clear();
  }
  return kept_.emplace(radius, quarterCircle(radius)).first->second;
}

}  // namespace quillpad::drawing
