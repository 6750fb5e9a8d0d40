// Measures texts and sets them in lines: the layout asks for sizes, the display list for glyphs.
// Keeps the texts that it shaped lately. Belongs to the thread of its FontBook.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/text/FontBook.h"
#include "platform/text/Geometry.h"
#include "platform/text/GlyphRun.h"
#include "platform/text/ShapedText.h"
#include "platform/ui/View.h"

namespace quillpad::drawing {

// What the place where a text stands adds to it.
struct TextPlace {
  std::string language{};    // for example "en" or "zh-Hans"
  bool rightToLeft = false;  // the direction of texts that have none of their own
  double scale = 2;          // device pixels per point
};

class TextEngine {
 public:
  explicit TextEngine(FontBook& fonts) : tools_(fonts) {}

  FontBook& fonts() { return tools_.shaper.fonts(); }

  // The size that the text takes when offered one: the width of its longest line and the lines that
  // fit, at least one. Both are whole device pixels.
  Size measure(const ui::Text& text, const TextPlace& place, Size proposed);

  // What is shown of the text in a frame of the size that was measured for it, and its glyphs.
  // Lines start at the edge where reading begins; baselines are whole device pixels.
  struct Setting {
    std::string text;
    std::vector<GlyphRun> runs;
  };
  Setting set(const ui::Text& text, const TextPlace& place, Rect frame);

 private:
  // Clusters of a text, without the space that hangs over the line's end.
  struct Line {
    std::size_t begin = 0;
    std::size_t end = 0;
    double width = 0;
    bool endsInEllipsis = false;
  };

  // Good until the next call.
  ShapedText& shaped(const ui::Text& text, const TextPlace& place);
  // The lines that fit, into lines_.
  void breakLines(ShapedText& text, double size, Size proposed);
  Line cutWithEllipsis(ShapedText& text, double size, double width, std::size_t begin);
  ShapedText& ellipsis(ui::Weight weight);

  TextTools tools_;
  std::vector<Line> lines_;

  std::array<std::unique_ptr<ShapedText>, 3> ellipses_;  // by weight

  // Two generations: a text that was not asked for while the younger one filled up goes.
  struct Key {
    std::string_view text;  // the shaped text's own source
    TextStyle style;
    friend bool operator==(const Key&, const Key&) = default;
  };
  struct KeyHash {
    std::size_t operator()(const Key& key) const;
  };
  using Generation = std::unordered_map<Key, std::unique_ptr<ShapedText>, KeyHash>;
  Generation young_, old_;
  std::size_t youngFootprint_ = 0;
  const ShapedText* newest_ = nullptr;  // not yet part of the footprint, as it is still shaped on
};

}  // namespace quillpad::drawing
