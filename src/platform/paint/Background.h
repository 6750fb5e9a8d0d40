// What lies under everything else on a card. A pure function.
#pragma once

#include <cstddef>

#include "platform/paint/DisplayList.h"

namespace quillpad::drawing {

// The fills under the whole card that nothing but such fills comes before, or that hide all that
// does, as one fill: painted one by one, the lower ones would show through the round corners.
struct Background {
  ui::Color color{ui::Rgba{0, 0, 0, 0}};
  double cornerRadius = 0;  // of the card
  std::size_t items = 0;    // how many of the list's first items it stands for
};

Background backgroundOf(const DisplayList& list);

// Whether a shape hides nothing of the card.
bool coversCard(const DisplayList& list, double cardRadius, const Rect& frame, double cornerRadius);

}  // namespace quillpad::drawing
