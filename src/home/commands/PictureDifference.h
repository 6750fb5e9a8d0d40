// How one picture differs from another, as `compare` and `gallery --check` report it.
#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "home/commands/Options.h"
#include "platform/paint/Comparison.h"

namespace quillpad::home {

// The options --tolerance and --pixels.
void declareTolerance(Options& options, drawing::Tolerance& tolerance);

struct PictureDifference {
  bool looksDifferent = false;
  std::string description;  // "identical", or what differs
  std::string png;          // a picture of what differs; empty where there is none
};

PictureDifference difference(
    const drawing::Bitmap& expected,
    const drawing::Bitmap& actual,
    const drawing::Tolerance& tolerance);

// The picture in the bytes of a PNG file, or why there is none.
std::expected<drawing::Bitmap, std::string> pictureIn(std::string_view png);

}  // namespace quillpad::home
