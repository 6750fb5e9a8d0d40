#include "platform/paint/DisplayList.h"

#include <cmath>

#include "platform/foundation/Hex.h"
#include "platform/text/Bitmap.h"

namespace quillpad::drawing {

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
    return "a card of more than 32 million pixels cannot be drawn: use a smaller size or scale";
  }
  return std::nullopt;
}

std::string hexName(ui::Rgba color) {
  const std::string name =
      "#" + upperHexByte(color.red) + upperHexByte(color.green) + upperHexByte(color.blue);
  return color.alpha == 255 ? name : name + upperHexByte(color.alpha);
}

}  // namespace quillpad::drawing
