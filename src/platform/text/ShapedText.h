// A text turned into glyphs, in the order of reading. Lengths are parts of the font size, so that
// one shaped text serves every size. Plain values.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/text/GlyphRun.h"

namespace quillpad::drawing {

enum class Break : std::uint8_t { none, allowed, hyphen, required };

// The smallest part of a text that a line takes or leaves.
struct Cluster {
  std::uint32_t textBegin = 0, textEnd = 0;      // in the text, in bytes
  std::uint32_t firstGlyph = 0, glyphCount = 0;  // among the text's glyphs
  std::uint32_t run = 0;                         // among the text's runs
  float advance = 0;
  Break breakAfter = Break::none;
  bool isSpace = false;
};

struct ShapedGlyph {
  std::uint32_t id = 0;
  std::uint32_t text = 0;  // where its characters begin
  float advance = 0;
  float xOffset = 0;
  float yOffset = 0;  // upwards
};

struct ShapedText {
  // What the glyphs of some clusters in a row have in common; they run from left to right.
  struct Run {
    FontId font = 0;
    std::uint8_t level = 0;  // of bidirectional embedding: odd is right to left
    bool paragraphRightToLeft = false;
  };

  std::string text;  // whole UTF-8 without what cannot be shown
  std::vector<Cluster> clusters;
  std::vector<Run> runs;
  std::vector<ShapedGlyph> glyphs;
};

}  // namespace quillpad::drawing
