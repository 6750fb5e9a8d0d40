#include "platform/text/Bitmap.h"

#include <algorithm>
#include <cmath>

namespace quillpad::drawing {

namespace {

// The part of a source line that a new pixel covers: whole pixels from first to last, and the
// weights of these two.
struct PixelSpan {
  int first = 0;
  int last = 0;
  double firstWeight = 1;
  double lastWeight = 1;

  double weight(int at) const { return at == first ? firstWeight : at == last ? lastWeight : 1.0; }
};

std::vector<PixelSpan> pixelSpans(int from, int to) {
  std::vector<PixelSpan> all(static_cast<std::size_t>(to));
  for (int i = 0; i < to; ++i) {
    const double begin = static_cast<double>(i) * from / to;
    const double end = static_cast<double>(i + 1) * from / to;
    const int first = std::min(static_cast<int>(begin), from - 1);
    const int last = std::clamp(static_cast<int>(std::ceil(end)) - 1, first, from - 1);
    all[static_cast<std::size_t>(i)] = first == last
                                           ? PixelSpan{first, last, end - begin, end - begin}
                                           : PixelSpan{first, last, first + 1 - begin, end - last};
  }
  return all;
}

std::uint8_t rounded(double component) {
  return static_cast<std::uint8_t>(std::lround(std::clamp(component, 0.0, 255.0)));
}

}  // namespace

Bitmap scaled(const Bitmap& picture, int width, int height) {
  if (width == picture.width && height == picture.height) {
    return picture;
  }
  if (picture.pixels.empty() || width <= 0 || height <= 0) {
    return {};
  }
  Bitmap result{
      .width = width,
      .height = height,
      .pixels = std::vector<ui::Rgba>(
          static_cast<std::size_t>(width) * static_cast<std::size_t>(height))};
  const std::vector<PixelSpan> columns = pixelSpans(picture.width, width);
  auto pixel = result.pixels.begin();
  for (const PixelSpan& lines : pixelSpans(picture.height, height)) {
    for (const PixelSpan& column : columns) {
      double red = 0;
      double green = 0;
      double blue = 0;
      double alpha = 0;
      double area = 0;
      for (int y = lines.first; y <= lines.last; ++y) {
        const ui::Rgba* row = picture.row(y);
        for (int x = column.first; x <= column.last; ++x) {
          const double weight = lines.weight(y) * column.weight(x);
          const double ink = weight * row[x].alpha;
          red += ink * row[x].red;
          green += ink * row[x].green;
          blue += ink * row[x].blue;
          alpha += ink;
          area += weight;
        }
      }
      if (alpha > 0) {
        *pixel = {
            rounded(red / alpha),
            rounded(green / alpha),
            rounded(blue / alpha),
            rounded(alpha / area)};
      } else {
        *pixel = {0, 0, 0, 0};
      }
      ++pixel;
    }
  }
  return result;
}

}  // namespace quillpad::drawing
