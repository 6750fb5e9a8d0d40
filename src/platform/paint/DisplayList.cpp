#include "platform/paint/DisplayList.h"

#include <cmath>

#include "platform/foundation/Hex.h"
#include "platform/text/Bitmap.h"
#include "platform/text/GlyphMasks.h"

namespace quillpad::drawing {

namespace {

constexpr std::int64_t maximumWork = 1 << 28;  // about a second
constexpr double pixelsPerItem = 1 << 14;

// What of it lies on the card.
double pixelsOf(const Fill& fill, const DisplayList& list) {
  const auto visible = [](double from, double length, double end) {
    return std::fmax(std::fmin(from + length, end) - std::fmax(from, 0), 0);
  };
  return visible(fill.frame.x, fill.frame.width, list.size.width) *
         visible(fill.frame.y, fill.frame.height, list.size.height) * list.scale * list.scale;
}

// Glyphs are made before they are put on the card.
double pixelsOf(const TextItem& text, const DisplayList& list) {
  double pixels = 0;
  for (const GlyphRun& run : text.runs) {
    const double side = std::fmin(run.size * list.scale, maximumGlyphSize);
    pixels += side * side * static_cast<double>(run.glyphs.size());
  }
  return pixels;
}

// Pictures are scaled as a whole; larger ones than any canvas are left out.
double pixelsOf(const ImageItem& image, const DisplayList& list) {
  const double pixels = image.frame.width * image.frame.height * list.scale * list.scale;
  return pixels > static_cast<double>(maximumPixels) ? 0 : std::fmax(pixels, 0);
}

}  // namespace

std::string accessibilityLabel(const DisplayList& list) {
  std::string label;
  for (const Item& item : list.items) {
    const auto* text = std::get_if<TextItem>(&item.content);
    if (text != nullptr && !text->text.empty()) {
      label += (label.empty() ? "" : ", ") + text->text;
    }
  }
  return label.empty() ? list.kind : label;
}

std::optional<std::string> sizeError(Size size, int scale) {
  if (scale < 1 || scale > 3) {
    return "the scale " + std::to_string(scale) + " cannot be drawn: use 1, 2 or 3";
  }
  const double width = std::round(size.width * scale);
  const double height = std::round(size.height * scale);
  if (std::isnan(width * height) || width < 1 || height < 1) {
    return "an empty card cannot be drawn: its width and height must be more than 0 points";
  }
  if (width * height > static_cast<double>(maximumPixels)) {
    return "a card of more than " + std::to_string(maximumPixels) +
           " pixels cannot be drawn: use a smaller size or scale";
  }
  return std::nullopt;
}

std::optional<std::string> drawingError(const DisplayList& list) {
  if (auto error = sizeError(list.size, list.scale)) {
    return error;
  }
  double pixels = 0;
  for (const Item& item : list.items) {
    const double steps = 1 + static_cast<double>(item.clips.size());
    pixels +=
        steps *
        (pixelsPerItem +
         std::visit([&](const auto& content) { return pixelsOf(content, list); }, item.content));
  }
  if (!(pixels <= static_cast<double>(maximumWork))) {
    return "the card has too much to draw: its " + std::to_string(list.items.size()) +
           " items cover " + std::to_string(maximumWork) + " pixels or more";
  }
  return std::nullopt;
}

std::string hexName(ui::Rgba color) {
  const std::string name =
      "#" + upperHexByte(color.red) + upperHexByte(color.green) + upperHexByte(color.blue);
  return color.alpha == 255 ? name : name + upperHexByte(color.alpha);
}

}  // namespace quillpad::drawing
