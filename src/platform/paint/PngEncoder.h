// Turns rows of pixels into PNG files: filter None, one level of haste. Flat cards get larger and
// slower with the other filters. Keeps its working memory, nothing of a picture; belongs to one
// thread.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/paint/PixelRows.h"

namespace quillpad::drawing {

class PngEncoder {
 public:
  PngEncoder();
  ~PngEncoder();
  PngEncoder(const PngEncoder&) = delete;
  PngEncoder& operator=(const PngEncoder&) = delete;

  // The PNG file of the rows, with a palette where they have one.
  std::vector<std::uint8_t> encode(const PixelRows& rows);

 private:
  struct Compressor;
  std::unique_ptr<Compressor> compressor_;
};

}  // namespace quillpad::drawing
