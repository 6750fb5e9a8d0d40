#include "home/commands/PictureDifference.h"

#include <cstdint>

#include "platform/paint/PngReader.h"
#include "platform/paint/PngWriter.h"

namespace quillpad::home {
namespace {

using drawing::Bitmap;
using drawing::CompareResult;

std::string sizeText(const Bitmap& picture) {
  return std::to_string(picture.width) + " by " + std::to_string(picture.height);
}

std::string description(
    const Bitmap& expected, const Bitmap& actual, const drawing::Comparison& comparison) {
  if (comparison.result == CompareResult::identical) {
    return "identical";
  }
  if (expected.width != actual.width || expected.height != actual.height) {
    return "it is " + sizeText(actual) + " pixels large instead of " + sizeText(expected);
  }
  return std::to_string(comparison.differingPixels) + " of " +
         std::to_string(expected.pixels.size()) + " pixels differ, a component by up to " +
         std::to_string(comparison.largestDifference);
}

}  // namespace

void declareTolerance(Options& options, drawing::Tolerance& tolerance) {
  options.number("--tolerance", tolerance.channel, "How far a colour component may be off", 0, 255);
  options.number<std::int64_t>(
      "--pixels", tolerance.pixels, "How many pixels may be off further", 0, 1'000'000'000);
}

PictureDifference difference(
    const Bitmap& expected, const Bitmap& actual, const drawing::Tolerance& tolerance) {
  const drawing::Comparison comparison = drawing::compare(expected, actual, tolerance);
  PictureDifference result{
      .looksDifferent = comparison.result == CompareResult::different,
      .description = description(expected, actual, comparison),
      .png = ""};
  if (!comparison.difference.pixels.empty()) {
    const auto png = drawing::writePng(comparison.difference);
    result.png.assign(png.begin(), png.end());
  }
  return result;
}

std::expected<Bitmap, std::string> pictureIn(std::string_view png) {
  return drawing::readPng({reinterpret_cast<const std::uint8_t*>(png.data()), png.size()});
}

}  // namespace quillpad::home
