#include "platform/text/ShapedText.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/Utf8.h"

namespace quillpad::drawing {
namespace {

// A piece ends at the first space behind this many bytes, or without one at the second bound.
constexpr std::size_t pieceLength = 1024;
constexpr std::size_t longestPiece = 2048;

bool endsLine(char32_t character) {
  return (character >= U'\n' && character <= U'\r') || character == 0x85 || character == 0x2028 ||
         character == 0x2029;
}

// Control characters show as nothing; the tabulator as a space.
bool isControl(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

bool isSpace(std::string_view characters) {
  std::size_t at = 0;
  const char32_t character = nextCharacter(characters, at);
  return character == U' ' || character == 0x1680 || (character >= 0x2000 && character <= 0x200A) ||
         character == 0x205F || character == 0x3000;
}

// Latin letters, and signs that stand in texts of any script and have no direction of their own.
bool isSimple(char32_t character) {
  return character < 0x250 || (character >= 0x2010 && character <= 0x2027) ||
         (character >= 0x20A0 && character <= 0x20BF) || character == 0x2122;
}

bool isLatinLetter(char32_t character) {
  return (character >= U'a' && character <= U'z') || (character >= U'A' && character <= U'Z');
}

}  // namespace

ShapedText::ShapedText(std::string source, TextStyle style)
    : source_(std::move(source)), style_(std::move(style)) {}

std::size_t ShapedText::footprint() const {
  return sizeof(*this) + source_.size() + text_.size() + clusters_.size() * sizeof(Cluster) +
         glyphs_.size() * sizeof(ShapedGlyph) + runs_.size() * sizeof(Run);
}

ShapedText::Piece ShapedText::readPiece() {
  Piece piece{.begin = text_.size()};
  bool hasLetter = false;
  while (read_ < source_.size()) {
    const std::size_t length = text_.size() - piece.begin;
    char32_t character = nextCharacter(source_, read_);
    if (endsLine(character)) {
      if (character == U'\r' && read_ < source_.size() && source_[read_] == '\n') {
        ++read_;
      }
      piece.endsLine = true;
      break;
    }
    if (character == U'\t') {
      character = U' ';
    }
    if (isControl(character)) {
      continue;
    }
    appendUtf8(text_, character);
    piece.isSimple = piece.isSimple && isSimple(character);
    hasLetter = hasLetter || isLatinLetter(character);
    if (length >= longestPiece || (length >= pieceLength && character == U' ')) {
      break;
    }
  }
  piece.end = text_.size();
  piece.isSimple = piece.isSimple && !isRightToLeft_.value_or(style_.rightToLeft && !hasLetter);
  return piece;
}

void ShapedText::shapePiece(TextTools& tools) {
  const Piece piece = readPiece();
  if (piece.end > piece.begin && !(piece.isSimple && shapeSimply(piece, tools))) {
    shapeItems(piece, tools);
  }
  if (piece.endsLine) {
    text_.push_back('\n');
    clusters_.push_back(
        {.textBegin = static_cast<std::uint32_t>(piece.end),
         .textEnd = static_cast<std::uint32_t>(text_.size()),
         .firstGlyph = static_cast<std::uint32_t>(glyphs_.size()),
         .breakAfter = Break::required});
    isRightToLeft_.reset();
  }
}

bool ShapedText::shapeSimply(const Piece& piece, TextTools& tools) {
  const Stretch stretch{
      .begin = piece.begin, .end = piece.end, .font = tools.shaper.fonts().system(style_.weight)};
  const auto glyphs = tools.shaper.shape(text_, stretch, style_.language);
  if (std::ranges::any_of(glyphs, [](const ShapedGlyph& glyph) { return glyph.id == 0; })) {
    return false;
  }
  addRun({.font = stretch.font}, stretch, glyphs);
  isRightToLeft_ = false;
  return true;
}

void ShapedText::shapeItems(const Piece& piece, TextTools& tools) {
  const Itemizer::Items items =
      tools.itemizer.itemize(text_, piece.begin, piece.end, style_, isRightToLeft_);
  for (const Stretch& stretch : items.stretches) {
    const Run run{stretch.font, stretch.level, items.rightToLeft};
    addRun(run, stretch, tools.shaper.shape(text_, stretch, style_.language));
  }
  isRightToLeft_ = items.rightToLeft;
}

void ShapedText::addRun(Run run, const Stretch& stretch, std::span<const ShapedGlyph> glyphs) {
  const bool rightToLeft = run.level % 2 != 0;
  const auto runIndex = static_cast<std::uint32_t>(runs_.size());
  const auto firstGlyph = static_cast<std::uint32_t>(glyphs_.size());
  const auto count = static_cast<std::uint32_t>(glyphs.size());
  runs_.push_back(run);
  glyphs_.insert(glyphs_.end(), glyphs.begin(), glyphs.end());

  // Clusters come in the order of reading, their glyphs from left to right.
  for (std::uint32_t taken = 0; taken < count;) {
    const std::uint32_t from = taken;
    const auto glyphAt = [&](std::uint32_t place) -> const ShapedGlyph& {
      return glyphs[rightToLeft ? count - 1 - place : place];
    };
    Cluster cluster{.textBegin = glyphAt(from).text, .run = runIndex};
    while (taken < count && glyphAt(taken).text == cluster.textBegin) {
      cluster.advance += glyphAt(taken).advance;
      ++taken;
    }
    cluster.textEnd = taken < count ? glyphAt(taken).text : static_cast<std::uint32_t>(stretch.end);
    cluster.glyphCount = taken - from;
    cluster.firstGlyph = firstGlyph + (rightToLeft ? count - taken : from);
    cluster.isSpace = isSpace(
        std::string_view(text_).substr(cluster.textBegin, cluster.textEnd - cluster.textBegin));
    clusters_.push_back(cluster);
  }
}

void ShapedText::findBreaks(TextTools& tools) {
  if (brokenClusters_ == clusters_.size()) {
    return;
  }
  const std::size_t begin = clusters_[brokenClusters_].textBegin;
  const auto breaks =
      tools.itemizer.lineBreaks(std::string_view(text_).substr(begin), style_.language);
  auto place = breaks.begin();
  for (; brokenClusters_ < clusters_.size(); ++brokenClusters_) {
    Cluster& cluster = clusters_[brokenClusters_];
    while (place != breaks.end() && begin + *place < cluster.textEnd) {
      ++place;
    }
    const bool mayEnd = place != breaks.end() && begin + *place == cluster.textEnd;
    if (mayEnd && cluster.breakAfter == Break::none) {
      cluster.breakAfter = Break::allowed;
    }
  }
}

}  // namespace quillpad::drawing
