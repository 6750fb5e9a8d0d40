#include "platform/paint/Comparison.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace quillpad::drawing {

namespace {

int distance(ui::Rgba a, ui::Rgba b) {
  if (a.alpha == 0 && b.alpha == 0) {
    return 0;
  }
  return std::max(
      {std::abs(a.red - b.red),
       std::abs(a.green - b.green),
       std::abs(a.blue - b.blue),
       std::abs(a.alpha - b.alpha)});
}

ui::Rgba faint(ui::Rgba color) {
  const auto component = [&](int value) {
    const int onWhite = 255 + (value - 255) * color.alpha / 255;
    return static_cast<std::uint8_t>(255 + (onWhite - 255) / 4);
  };
  return {component(color.red), component(color.green), component(color.blue)};
}

constexpr ui::Rgba red{224, 0, 48};

// What only one of them has differs. The difference is as large as both together, where such a
// picture can be drawn.
Comparison compareSizes(const Bitmap& expected, const Bitmap& actual, Tolerance tolerance) {
  Comparison comparison{
      .result = CompareResult::different, .largestDifference = 255, .difference = {}};
  Bitmap& difference = comparison.difference;
  const int width = std::max(expected.width, actual.width);
  const int height = std::max(expected.height, actual.height);
  if (std::int64_t{width} * height > maximumPixels) {
    comparison.differingPixels = std::int64_t{width} * height;
    return comparison;
  }
  difference.width = width;
  difference.height = height;
  for (int y = 0; y < difference.height; ++y) {
    for (int x = 0; x < difference.width; ++x) {
      const bool isCommon =
          x < expected.width && x < actual.width && y < expected.height && y < actual.height;
      const bool isSame =
          isCommon && distance(expected.row(y)[x], actual.row(y)[x]) <= tolerance.channel;
      comparison.differingPixels += isSame ? 0 : 1;
      difference.pixels.push_back(isSame ? faint(expected.row(y)[x]) : red);
    }
  }
  return comparison;
}

}  // namespace

Comparison compare(const Bitmap& expected, const Bitmap& actual, Tolerance tolerance) {
  if (expected.width != actual.width || expected.height != actual.height) {
    return compareSizes(expected, actual, tolerance);
  }
  Comparison comparison;
  comparison.difference = {
      .width = expected.width,
      .height = expected.height,
      .pixels = std::vector<ui::Rgba>(expected.pixels.size())};
  for (std::size_t i = 0; i < expected.pixels.size(); ++i) {
    const int off = distance(expected.pixels[i], actual.pixels[i]);
    comparison.largestDifference = std::max(comparison.largestDifference, off);
    if (off > tolerance.channel) {
      ++comparison.differingPixels;
    }
    comparison.difference.pixels[i] = off > tolerance.channel ? red : faint(expected.pixels[i]);
  }
  if (comparison.largestDifference > 0) {
    comparison.result = comparison.differingPixels > tolerance.pixels ? CompareResult::different
                                                                      : CompareResult::similar;
  }
  return comparison;
}

}  // namespace quillpad::drawing
