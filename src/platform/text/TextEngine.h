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
#include "platform/text/LazyText.h"
#include "platform/text/Lines.h"
#include "platform/ui/View.h"

namespace quillpad::drawing {

// What the place of a text adds to it.
struct TextPlace {
  std::string language{};    // for example "en" or "zh-Hans"
  bool rightToLeft = false;  // where lines start, and the direction of texts that have none
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
  // Lines start at the left edge, or at the right one where the place reads from right to left,
  // whatever the text's own direction; baselines are whole device pixels.
  struct Setting {
    std::string text;
    std::vector<GlyphRun> runs;
  };
  Setting set(const ui::Text& text, const TextPlace& place, Rect frame);

 private:
  // Good until the next call.
  LazyText& shaped(const ui::Text& text, const TextPlace& place);
  // The lines that fit, into lines_.
  void breakLines(LazyText& text, double size, Size proposed);
  Line nextLine(LazyText& text, std::size_t begin, double limit);
  const ShapedText& suffix(Line::Suffix suffix, ui::Weight weight);
  double suffixWidth(Line::Suffix which, ui::Weight weight);

  TextTools tools_;
  std::vector<Line> lines_;

  std::array<std::array<std::unique_ptr<LazyText>, 3>, 3> suffixes_;  // by weight

  // Two generations: a text that was not asked for while the younger one filled up goes.
  struct Key {
    std::string_view text;  // the shaped text's own source
    TextStyle style;
    friend bool operator==(const Key&, const Key&) = default;
  };
  struct KeyHash {
    std::size_t operator()(const Key& key) const;
  };
  using Generation = std::unordered_map<Key, std::unique_ptr<LazyText>, KeyHash>;
  Generation young_, old_;
  std::size_t youngFootprint_ = 0;
  const LazyText* newest_ = nullptr;  // not yet part of the footprint, as it is still shaped on
};

}  // namespace quillpad::drawing
