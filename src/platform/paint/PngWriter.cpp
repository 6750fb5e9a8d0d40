#include "platform/paint/PngWriter.h"

#include <chrono>
#include <cmath>
#include <cstring>

#include "platform/paint/Canvas.h"
#include "platform/paint/Painter.h"
#include "platform/paint/PngEncoder.h"

namespace quillpad::drawing {

namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

}  // namespace

class PngWriter::Impl {
 public:
  Impl(FontBook& fonts, Pictures& pictures)
      : cache_{.fonts = fonts, .pictures = pictures, .glyphs = GlyphMasks(fonts), .shapes = {}} {}

  std::vector<std::uint8_t> draw(const DisplayList& list, ui::Appearance appearance) {
    const Clock::time_point start = Clock::now();
    RgbaCanvas manyColors;
    paint(list, appearance, cache_, fewColors_);
    if (fewColors_.full()) {
      paint(list, appearance, cache_, manyColors);
    }
    const Clock::time_point painted = Clock::now();
    std::vector<std::uint8_t> file =
        encoder_.encode(fewColors_.full() ? manyColors.rows() : fewColors_.rows());
    split = {
        .raster = std::chrono::duration<double, std::milli>(painted - start).count(),
        .encode = millisecondsSince(painted)};
    return file;
  }

  Split split;

 private:
  PaintCache cache_;
  IndexedCanvas fewColors_;
  PngEncoder encoder_;
};

PngWriter::PngWriter(FontBook& fonts, Pictures& pictures)
    : impl_(std::make_unique<Impl>(fonts, pictures)) {}

PngWriter::~PngWriter() = default;

std::expected<std::vector<std::uint8_t>, std::string> PngWriter::write(
    const DisplayList& list, ui::Appearance appearance) {
  if (auto error = drawingError(list)) {
    return std::unexpected(*std::move(error));
  }
  return impl_->draw(list, appearance);
}

PngWriter::Split PngWriter::lastSplit() const { return impl_->split; }

std::vector<std::uint8_t> writePng(const Bitmap& picture) {
  PixelRows rows;
  rows.width = picture.width;
  rows.height = picture.height;
  const std::size_t stride = rows.stride();
  std::vector<std::uint8_t> bytes(stride * static_cast<std::size_t>(picture.height));
  for (int y = 0; y < picture.height; ++y) {
    std::memcpy(
        bytes.data() + static_cast<std::size_t>(y) * stride + 1, picture.row(y), stride - 1);
  }
  rows.data = bytes.data();
  return PngEncoder().encode(rows);
}

}  // namespace quillpad::drawing
