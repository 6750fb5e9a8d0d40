// The layout follows the phone's, as far as the contents and modifiers of ui::View ask for it. It
// leaves out or settles:
//   - Nothing here proposes "as you like", so ideal lengths are never asked for.
//   - Every padding makes all four edges ordinary ones for the gaps beside them, one of 0 too.
//   - A frame's own edges are ordinary where it fixes or bounds a dimension.
//   - A stack does not run again for a child that is larger across than was proposed.
#include "platform/layout/Layout.h"

#include <algorithm>
#include <ranges>

#include "platform/layout/LayoutNode.h"

namespace quillpad::drawing {
namespace {

// The outermost link; of those side by side the first.
const std::string* linkOf(const ui::View& view) {
  for (const ui::Modifier& modifier : view.modifiers | std::views::reverse) {
    if (const auto* link = std::get_if<ui::WidgetUrl>(&modifier)) {
      return &link->address;
    }
  }
  if (const auto* stack = std::get_if<ui::Stack>(&view.content)) {
    for (const ui::View& child : stack->children) {
      if (const std::string* link = linkOf(child)) {
        return link;
      }
    }
  }
  return nullptr;
}

}  // namespace

Layout layOut(const ui::View& view, Size size, LayoutDirection direction, Metrics& metrics) {
  return layOut(view, size, direction, Surroundings{metrics});
}

Layout layOut(
    const ui::View& view, Size size, LayoutDirection direction, const Surroundings& around) {
  const LayoutNodePtr root = nodeOf(view, around);
  const Size taken = root->size(size);
  Placement placement(size.width, direction);
  root->place(
      size,
      {(size.width - taken.width) / 2, (size.height - taken.height) / 2, taken.width, taken.height},
      placement);
  Layout layout = placement.take();
  layout.link = linkOf(view);
  return layout;
}

}  // namespace quillpad::drawing
