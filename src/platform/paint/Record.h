// Turns a layout into what is painted: device pixels, glyphs. Belongs to the thread
// of the text engine.
#pragma once

#include <functional>
#include <string>

#include "platform/layout/Layout.h"
#include "platform/paint/DisplayList.h"
#include "platform/text/TextEngine.h"
#include "platform/ui/Color.h"

namespace quillpad::drawing {

// The home screen's card: what a widget stands on.
struct Ground {
  ui::Color color{ui::whiteColor, {28, 28, 30}};
  double cornerRadius = 22;
};

// Appends the ground and the layout's items to the display list, whose size and scale hold. Frames
// are moved to the nearest device pixel and are a whole number of them large, one at least. A text
// without a colour is black, white in dark appearance. What reaches beyond the ground is masked to
// it.
void record(
    const Layout& layout,
    const Ground& ground,
    const TextPlace& place,
    TextEngine& texts,
    DisplayList& list);

}  // namespace quillpad::drawing
