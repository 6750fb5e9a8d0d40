// Turns a layout into what is painted: device pixels and glyphs. Belongs to the thread of the text
// engine.
#pragma once

#include <vector>

#include "platform/layout/Layout.h"
#include "platform/paint/DisplayList.h"
#include "platform/text/TextEngine.h"

namespace quillpad::drawing {

// The items of a card of this size, its ground first. Frames are moved to the nearest device pixel
// and are a whole number of them large, one at least. A text without a colour is black, white in
// dark appearance. What reaches beyond the card is masked to it. In a placeholder, lines of text
// are bars and pictures are left out.
std::vector<Item> itemsOf(
    const Layout& layout, Size card, bool redacted, const TextPlace& place, TextEngine& texts);

// The same, and what of the layout each item comes from.
struct TracedItems {
  std::vector<Item> items;
  std::vector<int> placed;  // for each item its place in Layout::items, -1 for the ground
};
TracedItems tracedItemsOf(
    const Layout& layout, Size card, bool redacted, const TextPlace& place, TextEngine& texts);

}  // namespace quillpad::drawing
