// A picture in memory, and how PNG files become one. Plain values.
#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "platform/ui/Color.h"

namespace drawing {

// The most pixels that are drawn or read at once; a card on the largest phone has about 0.6
// million.
inline constexpr std::int64_t maximumPixels = std::int64_t{1} << 25;

// Rows from the top, colours not multiplied by their alpha.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<ui::Rgba> pixels;

  const ui::Rgba* row(int y) const {
    return pixels.data() + static_cast<std::ptrdiff_t>(y) * width;
  }
};

// The picture in a PNG file's bytes, of any kind of PNG, or why it cannot be read.
std::expected<Picture, std::string> readPng(std::span<const std::uint8_t> bytes);

// The same for a file; the error names it.
std::expected<Picture, std::string> readPngFile(const std::filesystem::path& file);

// The picture brought to another size; each new pixel is the mean of what it covers.
Picture scaled(const Picture& picture, int width, int height);

}  // namespace drawing
