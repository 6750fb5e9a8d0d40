#include "platform/paint/DisplayList.h"

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

}  // namespace quillpad::drawing
