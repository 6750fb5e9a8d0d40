// A text that is shaped piece by piece, as far as somebody has looked, so that only what a card
// shows is paid for. What has been shaped stays as it is, and depends on the text and its style
// alone. Belongs to the thread of its FontBook.
//
// Texts come from outside, so what one can cost is bounded: of the marks and format characters in a
// row, which all stand in one place, the first maxMarks are kept; and a text ends in "…" behind
// some maxGlyphs glyphs or as many lines.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/text/FontBook.h"
#include "platform/text/Itemizer.h"
#include "platform/text/ShapedText.h"
#include "platform/text/Shaper.h"

namespace quillpad::drawing {

// As many as Unicode's stream-safe text allows on one character; what people write has 5 or so.
inline constexpr int maxMarks = 30;

// A full card of the largest phone has some 2,000.
inline constexpr std::size_t maxGlyphs = 8192;

struct TextTools {
  explicit TextTools(FontBook& fonts) : shaper(fonts), itemizer(fonts) {}

  Shaper shaper;
  Itemizer itemizer;
};

class LazyText {
 public:
  LazyText(std::string source, TextStyle style);

  const std::string& source() const { return source_; }
  const TextStyle& style() const { return style_; }

  // What has been shaped so far.
  const ShapedText& shaped() const { return shaped_; }

  // Whether there is a cluster at `index`, shaping on until there is.
  bool reaches(std::size_t index, TextTools& tools) {
    while (index >= shaped_.clusters.size() && read_ < source_.size()) {
      shapePiece(tools);
    }
    return index < shaped_.clusters.size();
  }

  // Finds where the shaped clusters allow a break; whether any was not known yet. Required breaks
  // are known without.
  bool findBreaks(TextTools& tools);

  // Roughly the bytes that it takes in memory.
  std::size_t footprint() const;

 private:
  struct Piece {
    std::size_t begin = 0, end = 0;  // in the shaped text, without its line feed
    bool isSimple = true;  // needs neither bidirectional ordering nor, most likely, a second font
    bool endsLine = false;
  };

  void shapePiece(TextTools& tools);
  // Copies the source's next piece, up to a line end or a good place to cut.
  Piece readPiece();
  Piece endInEllipsis();
  bool shapeSimply(const Piece& piece, TextTools& tools);
  void shapeItems(const Piece& piece, TextTools& tools);
  void addRun(ShapedText::Run run, const TextRun& textRun, std::span<const ShapedGlyph> glyphs);

  std::string source_;
  TextStyle style_;
  ShapedText shaped_;
  std::size_t read_ = 0;                 // of source_
  std::optional<bool> isRightToLeft_{};  // the paragraph that is being read, if begun
  std::vector<Piece> unbroken_;          // those whose breaks are not known
  std::size_t brokenClusters_ = 0;       // the clusters before them
};

}  // namespace quillpad::drawing
