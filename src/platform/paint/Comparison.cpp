#include "platform/paint/Comparison.h"

#include <algorithm>
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

}  // namespace

Comparison compare(const Bitmap& expected, const Bitmap& actual, Tolerance tolerance) {
  if (expected.width != actual.width || expected.height != actual.height) {
    const std::size_t pixels = std::max(expected.pixels.size(), actual.pixels.size());
    return {
        .result = CompareResult::different,
        .differingPixels = static_cast<std::int64_t>(pixels),
        .largestDifference = 255,
        .difference = {}};
  }
  constexpr ui::Rgba red{224, 0, 48};
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
