// What is to be painted, in the order painted: the seam between layout and the writers (PNG, SVG,
// JSON). Plain values, lengths in points. A colour is a pair that the writers resolve, so that one
// list serves both appearances.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/text/Geometry.h"
#include "platform/text/GlyphRun.h"
#include "platform/ui/Color.h"
#include "platform/ui/Font.h"

namespace quillpad::drawing {

// A mask to a rectangle with round corners.
struct Clip {
  Rect frame;
  double cornerRadius = 0;
  friend bool operator==(const Clip&, const Clip&) = default;
};

struct Fill {
  Rect frame;
  ui::Color color = ui::blackColor;
  double cornerRadius = 0;
};

struct TextItem {
  std::string text;  // as shown, an ellipsis included
  Rect frame;
  ui::Font font;
  ui::Color color = ui::blackColor;
  std::vector<GlyphRun> runs;
};

struct ImageItem {
  std::string name;
  Rect frame;
};

struct Item {
  std::variant<Fill, TextItem, ImageItem> content;
  std::vector<Clip> clips;  // all of them mask the content; a fill that fills its clip has taken
                            // its corners instead
};

struct DisplayList {
  std::string kind;
  std::string family;  // "systemSmall" or "systemMedium"
  int scale = 2;       // device pixels per point that the layout rounded for
  Size size;
  std::optional<std::string> link;
  std::vector<Item> items;  // the card's ground first
};

// What a screen reader says in place of the card: its texts in the order painted, its kind where it
// has none.
std::string accessibilityLabel(const DisplayList& list);

// One line that says why a card of this size in points cannot be drawn at the scale, or nothing:
// the size must be at least one device pixel and at most maximumPixels, the scale 1, 2 or 3.
std::optional<std::string> sizeError(Size size, int scale);

// One line that says why the list cannot be drawn: its size, or more work than any card is worth,
// by the pixels of its items, their clips and glyphs.
std::optional<std::string> drawingError(const DisplayList& list);

// "#11B826"; with the alpha behind, where the colour is not opaque.
std::string hexName(ui::Rgba color);

}  // namespace quillpad::drawing
