// Plays display lists onto canvases. Lengths become device pixels here: glyphs stand at quarter
// pixels, round shapes and clips on whole pixels, and the edges of plain fills where they are, by
// cover. Belongs to the thread of its fonts.
#pragma once

#include "platform/paint/Canvas.h"
#include "platform/paint/DisplayList.h"
#include "platform/paint/Pictures.h"
#include "platform/paint/RoundShape.h"
#include "platform/text/FontBook.h"
#include "platform/text/GlyphMasks.h"

namespace quillpad::drawing {

// What is kept from card to card.
struct PaintCache {
  FontBook& fonts;
  Pictures& pictures;
  GlyphMasks glyphs;
  RoundShapes shapes;
};

// Starts the canvas and paints every item of the list, as long as the canvas takes their colours.
// The list's size must be one that can be drawn.
void paint(const DisplayList& list, ui::Appearance appearance, PaintCache& cache, Canvas& canvas);

}  // namespace quillpad::drawing
