// What the PNG encoder reads: a canvas's rows, laid out as a PNG file compresses them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/ui/Color.h"

namespace quillpad::drawing {

struct PixelRows {
  int width = 0;
  int height = 0;
  int bytesPerPixel = 4;               // 1: palette indices, 4: RGBA
  const std::uint8_t* data = nullptr;  // each row begins with the byte of its filter, 0 for none
  std::span<const ui::Rgba> palette;

  std::size_t stride() const {
    return 1 + static_cast<std::size_t>(width) * static_cast<std::size_t>(bytesPerPixel);
  }
};

}  // namespace quillpad::drawing
