// A text turned into glyphs, in the order of reading, as far as somebody has looked: a long text is
// shaped piece by piece, so that only what a card shows is paid for. Lengths are parts of the font
// size, so that one shaped text serves every size. Belongs to the thread of its FontBook.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/text/FontBook.h"
#include "platform/text/Itemizer.h"
#include "platform/text/Shaper.h"
#include "platform/ui/Font.h"

namespace quillpad::drawing {

struct TextTools {
  explicit TextTools(FontBook& fonts) : shaper(fonts), itemizer(fonts) {}

  Shaper shaper;
  Itemizer itemizer;
};

class ShapedText {
 public:
  // What the glyphs of some clusters in a row have in common; they stand from left to right.
  struct Run {
    FontId font = 0;
    std::uint8_t level = 0;  // of bidirectional embedding: odd is right to left
    bool paragraphRightToLeft = false;
  };

  enum class Break : std::uint8_t { none, allowed, required };

  // The smallest part of a text that a line takes or leaves.
  struct Cluster {
    std::uint32_t textBegin = 0, textEnd = 0;  // in text()
    std::uint32_t firstGlyph = 0, glyphCount = 0;
    std::uint32_t run = 0;
    float advance = 0;
    Break breakAfter = Break::none;
    bool isSpace = false;
  };

  ShapedText(std::string source, TextStyle style);

  const std::string& source() const { return source_; }
  const TextStyle& style() const { return style_; }

  // What has been shaped so far; whole UTF-8, control characters left out.
  const std::string& text() const { return text_; }
  const std::vector<Cluster>& clusters() const { return clusters_; }
  const std::vector<Run>& runs() const { return runs_; }
  const std::vector<ShapedGlyph>& glyphs() const { return glyphs_; }

  // Whether clusters() has an element at `index`, shaping on until it has.
  bool reaches(std::size_t index, TextTools& tools) {
    while (index >= clusters_.size() && read_ < source_.size()) {
      shapePiece(tools);
    }
    return index < clusters_.size();
  }

  // Finds where the shaped clusters allow a break. Required breaks are known without.
  void findBreaks(TextTools& tools);

  // Roughly the bytes that it takes in memory.
  std::size_t footprint() const;

 private:
  void shapePiece(TextTools& tools);
  // Copies the source's next piece, up to a line feed or a good place to cut; whether it needs
  // neither bidirectional ordering nor, most likely, a second font.
  struct Piece {
    std::size_t begin = 0, end = 0;  // in text_, without its line feed
    bool isSimple = true;
    bool endsLine = false;
  };
  Piece readPiece();
  bool shapeSimply(const Piece& piece, TextTools& tools);
  void shapeItems(const Piece& piece, TextTools& tools);
  void addRun(Run run, const Stretch& stretch, std::span<const ShapedGlyph> glyphs);

  std::string source_;
  TextStyle style_;
  std::size_t read_ = 0;                 // of source_
  std::optional<bool> isRightToLeft_{};  // the paragraph that is being read, if begun
  std::string text_;
  std::vector<Cluster> clusters_;
  std::vector<Run> runs_;
  std::vector<ShapedGlyph> glyphs_;
  std::size_t brokenClusters_ = 0;  // those whose breaks are known
};

}  // namespace quillpad::drawing
