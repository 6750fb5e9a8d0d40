#include "platform/paint/RoundShape.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace quillpad::drawing {
namespace {

constexpr std::size_t maxCornersKept = 32;
constexpr int maxSideKept = 512;
constexpr int linesPerPixel = 16;

// Of a top left corner, the levels in row `line` from column `from` on: exact along x, sampled by
// sixteen lines along y.
void cornerRow(double radius, int line, int from, std::span<Coverage> row) {
  std::vector<double> cover(row.size());
  const int end = from + static_cast<int>(row.size());
  for (int sample = 0; sample < linesPerPixel; ++sample) {
    const double rise = radius - (line + (sample + 0.5) / linesPerPixel);
    const double begin =
        rise <= 0 ? 0 : radius - std::sqrt(std::max(0.0, radius * radius - rise * rise));
    for (int x = std::max(static_cast<int>(begin), from); x < end; ++x) {
      cover[static_cast<std::size_t>(x - from)] += std::min(1.0, x + 1 - begin);
    }
  }
  std::ranges::transform(cover, row.begin(), [](double sum) {
    return static_cast<Coverage>(std::lround(fullCoverage * sum / linesPerPixel));
  });
}

}  // namespace

int RoundShape::cornerSide() const { return static_cast<int>(std::ceil(radius)); }

int RoundShape::line(int y) const { return std::min(y - top, bottom - 1 - y); }

void RoundShapes::cover(const RoundShape& shape, int x, int y, std::span<Coverage> row) {
  std::ranges::fill(row, Coverage{0});
  const int line = shape.line(y);
  if (line < 0) {
    return;
  }
  const int width = shape.right - shape.left;
  const int side = line < shape.cornerSide() ? shape.cornerSide() : 0;
  const int begin = std::clamp(shape.left - x, 0, static_cast<int>(row.size()));
  const int end = std::clamp(shape.right - x, begin, static_cast<int>(row.size()));
  const int leftEnd = std::clamp(shape.left + std::min(side, (width + 1) / 2) - x, begin, end);
  const int rightBegin = std::clamp(shape.right - std::min(side, width / 2) - x, leftEnd, end);
  const auto part = [&](int from, int to) {
    return row.subspan(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from));
  };
  coverCorner(shape.radius, line, x + begin - shape.left, part(begin, leftEnd));
  std::ranges::fill(part(leftEnd, rightBegin), Coverage{fullCoverage});
  const std::span<Coverage> right = part(rightBegin, end);
  coverCorner(shape.radius, line, shape.right - x - end, right);
  std::ranges::reverse(right);
}

void RoundShapes::coverCorner(double radius, int line, int from, std::span<Coverage> row) {
  const int side = static_cast<int>(std::ceil(radius));
  if (row.empty()) {
    return;
  }
  if (side > maxSideKept) {
    cornerRow(radius, line, from, row);
    return;
  }
  if (corners_.size() == maxCornersKept && !corners_.contains(radius)) {
    corners_.clear();
  }
  const auto width = static_cast<std::size_t>(side);
  const auto [corner, isNew] = corners_.try_emplace(radius);
  std::vector<Coverage>& levels = corner->second;
  if (isNew) {
    levels.resize(width * width);
    for (int y = 0; y < side; ++y) {
      cornerRow(
          radius, y, 0, std::span(levels).subspan(static_cast<std::size_t>(y) * width, width));
    }
  }
  const std::size_t first = static_cast<std::size_t>(line) * width + static_cast<std::size_t>(from);
  std::ranges::copy(std::span(levels).subspan(first, row.size()), row.begin());
}

}  // namespace quillpad::drawing
