#include "platform/paint/Background.h"

#include <algorithm>

#include "platform/paint/Canvas.h"

namespace quillpad::drawing {

bool coversCard(
    const DisplayList& list, double cardRadius, const Rect& frame, double cornerRadius) {
  const double slack = 0.5 / list.scale;  // cards end where their last pixel does
  return cornerRadius <= cardRadius && frame.x <= slack && frame.y <= slack &&
         frame.x + frame.width >= list.size.width - slack &&
         frame.y + frame.height >= list.size.height - slack;
}

Background backgroundOf(const DisplayList& list) {
  Background background;
  for (std::size_t i = 0; i < list.items.size(); ++i) {
    const auto* fill = std::get_if<Fill>(&list.items[i].content);
    if (fill == nullptr) {
      continue;
    }
    const double cardRadius = i == 0 ? fill->cornerRadius : background.cornerRadius;
    const auto covers = [&](const auto& shape) {
      return coversCard(list, cardRadius, shape.frame, shape.cornerRadius);
    };
    const bool opaque = fill->color.light.alpha == 255 && fill->color.dark.alpha == 255;
    if ((i == background.items || opaque) && (i == 0 || background.items > 0) && covers(*fill) &&
        std::ranges::all_of(list.items[i].clips, covers)) {
      background = {
          {over(background.color.light, fill->color.light, fullCoverage),
           over(background.color.dark, fill->color.dark, fullCoverage)},
          cardRadius,
          i + 1};
    }
  }
  return background;
}

}  // namespace quillpad::drawing
