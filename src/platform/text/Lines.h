// The lines of a shaped text: where they begin and end, and what is in them. Pure functions of
// plain values; all lengths are parts of the font size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/text/ShapedText.h"

namespace quillpad::drawing {

// Clusters of a text, without the spaces that hang over the line's end.
struct Line {
  // What is drawn behind the last cluster though the text does not have it.
  enum class Suffix : std::uint8_t { none, hyphen, ellipsis };

  std::size_t begin = 0;
  std::size_t end = 0;
  std::size_t next = 0;  // where the next line begins
  double width = 0;      // with the suffix
  Suffix suffix = Suffix::none;
  friend bool operator==(const Line&, const Line&) = default;
};

// The line that begins at `begin`, where there must be a cluster: up to the first required break or
// to the last allowed one within the limit. A break at a soft hyphen needs the hyphen's width too.
// A word that is longer than the limit is cut where it reaches it, behind one cluster at least.
Line breakLine(
    std::span<const Cluster> clusters, std::size_t begin, double limit, double hyphenWidth);

// The part of that line that leaves room for an ellipsis. Without any cluster where only the
// ellipsis fits, and without that where not even it does.
Line truncateLine(
    std::span<const Cluster> clusters, std::size_t begin, double limit, double ellipsisWidth);

// Glyphs of one font side by side, in a text that outlives it.
struct LinePart {
  FontId font = 0;
  std::uint8_t level = 0;  // of bidirectional embedding: odd is right to left
  std::span<const ShapedGlyph> glyphs;
};

// The line's parts in visual order. The line's suffix, if it has one, comes behind
// the last cluster in the order of reading: a hyphen belongs to the word before it, an ellipsis to
// the paragraph.
std::vector<LinePart> partsFromLeft(
    const ShapedText& text, const Line& line, const ShapedText& suffix);

}  // namespace quillpad::drawing
