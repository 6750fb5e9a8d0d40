#include "platform/text/LazyText.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/Utf8.h"
#include "platform/text/Unicode.h"

namespace quillpad::drawing {
namespace {

// A piece ends at the first space behind this many bytes, or without one at the second bound.
constexpr std::size_t pieceLength = 1024;
constexpr std::size_t maxPieceLength = 2048;

bool endsLine(char32_t character) {
  return (character >= U'\n' && character <= U'\r') || character == 0x85 || character == 0x2028 ||
         character == 0x2029;
}

// Control characters show as nothing; the tabulator as a space.
bool isControl(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

// Whether the character is drawn upon the one before it, or not at all.
bool isMark(char32_t character) {
  return character >= 0xAD && (U_MASK(u_charType(static_cast<UChar32>(character))) &
                               (U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK)) != 0;
}

bool isSpace(std::string_view characters) {
  std::size_t at = 0;
  const char32_t character = nextCharacter(characters, at);
  return character == U' ' || character == 0x1680 || (character >= 0x2000 && character <= 0x200A) ||
         character == 0x205F || character == 0x3000;
}

// Latin letters, and symbols that appear in texts of any script and have no direction of their own.
bool isSimple(char32_t character) {
  return character < 0x250 || (character >= 0x2010 && character <= 0x2027) ||
         (character >= 0x20A0 && character <= 0x20BF) || character == 0x2122;
}

bool isLatinLetter(char32_t character) {
  return (character >= U'a' && character <= U'z') || (character >= U'A' && character <= U'Z');
}

}  // namespace

LazyText::LazyText(std::string source, TextStyle style)
    : source_(std::move(source)), style_(std::move(style)) {}

std::size_t LazyText::footprint() const {
  return sizeof(*this) + source_.size() + shaped_.text.size() +
         shaped_.clusters.size() * sizeof(Cluster) + shaped_.glyphs.size() * sizeof(ShapedGlyph) +
         shaped_.runs.size() * sizeof(ShapedText::Run);
}

LazyText::Piece LazyText::readPiece() {
  std::string& text = shaped_.text;
  Piece piece{.begin = text.size()};
  bool hasLetter = false;
  int marks = 0;  // in a row
  while (read_ < source_.size()) {
    const std::size_t length = text.size() - piece.begin;
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
    marks = isMark(character) ? marks + 1 : 0;
    if (isControl(character) || marks > maxMarks) {
      continue;
    }
    appendUtf8(text, character);
    piece.isSimple = piece.isSimple && isSimple(character);
    hasLetter = hasLetter || isLatinLetter(character);
    if (length >= maxPieceLength || (length >= pieceLength && character == U' ')) {
      break;
    }
  }
  piece.end = text.size();
  piece.isSimple = piece.isSimple && !isRightToLeft_.value_or(style_.rightToLeft && !hasLetter);
  return piece;
}

LazyText::Piece LazyText::endInEllipsis() {
  const std::size_t begin = shaped_.text.size();
  shaped_.text += "…";
  read_ = source_.size();
  return {.begin = begin, .end = shaped_.text.size(), .isSimple = false};
}

void LazyText::shapePiece(TextTools& tools) {
  const bool isFull = std::max(shaped_.glyphs.size(), shaped_.clusters.size()) >= maxGlyphs;
  const Piece piece = isFull ? endInEllipsis() : readPiece();
  if (piece.end > piece.begin && !(piece.isSimple && shapeSimply(piece, tools))) {
    shapeItems(piece, tools);
  }
  unbroken_.push_back(piece);
  if (piece.endsLine) {
    shaped_.text.push_back('\n');
    shaped_.clusters.push_back(
        {.textBegin = static_cast<std::uint32_t>(piece.end),
         .textEnd = static_cast<std::uint32_t>(shaped_.text.size()),
         .firstGlyph = static_cast<std::uint32_t>(shaped_.glyphs.size()),
         .breakAfter = Break::required});
    isRightToLeft_.reset();
  }
}

bool LazyText::shapeSimply(const Piece& piece, TextTools& tools) {
  const TextRun textRun{
      .begin = piece.begin,
      .end = piece.end,
      .font = FontBook::system(style_.weight),
      .script = USCRIPT_LATIN};
  const auto glyphs = tools.shaper.shape(shaped_.text, textRun, style_.language);
  if (std::ranges::any_of(glyphs, [](const ShapedGlyph& glyph) { return glyph.id == 0; })) {
    return false;
  }
  addRun({.font = textRun.font}, textRun, glyphs);
  isRightToLeft_ = false;
  return true;
}

void LazyText::shapeItems(const Piece& piece, TextTools& tools) {
  const Itemizer::Items items =
      tools.itemizer.itemize(shaped_.text, piece.begin, piece.end, style_, isRightToLeft_);
  for (const TextRun& textRun : items.runs) {
    addRun(
        {textRun.font, textRun.level, items.rightToLeft},
        textRun,
        tools.shaper.shape(shaped_.text, textRun, style_.language));
  }
  isRightToLeft_ = items.rightToLeft;
}

void LazyText::addRun(
    ShapedText::Run run, const TextRun& textRun, std::span<const ShapedGlyph> glyphs) {
  const bool rightToLeft = run.level % 2 != 0;
  const auto runIndex = static_cast<std::uint32_t>(shaped_.runs.size());
  const auto firstGlyph = static_cast<std::uint32_t>(shaped_.glyphs.size());
  const auto count = static_cast<std::uint32_t>(glyphs.size());
  shaped_.runs.push_back(run);
  shaped_.glyphs.insert(shaped_.glyphs.end(), glyphs.begin(), glyphs.end());

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
    cluster.textEnd = taken < count ? glyphAt(taken).text : static_cast<std::uint32_t>(textRun.end);
    cluster.glyphCount = taken - from;
    cluster.firstGlyph = firstGlyph + (rightToLeft ? count - taken : from);
    cluster.isSpace = isSpace(std::string_view(shaped_.text)
                                  .substr(cluster.textBegin, cluster.textEnd - cluster.textBegin));
    shaped_.clusters.push_back(cluster);
  }
}

// Each piece is looked at by itself: what follows it may not be known yet. So its end allows a
// break behind a space only.
bool LazyText::findBreaks(TextTools& tools) {
  const bool hasNew = !unbroken_.empty();
  for (const Piece& piece : std::exchange(unbroken_, {})) {
    const auto text = std::string_view(shaped_.text).substr(0, piece.end);
    const auto breaks = tools.itemizer.lineBreaks(text.substr(piece.begin), style_.language);
    auto place = breaks.begin();
    for (; brokenClusters_ < shaped_.clusters.size() &&
           shaped_.clusters[brokenClusters_].textEnd <= piece.end;
         ++brokenClusters_) {
      Cluster& cluster = shaped_.clusters[brokenClusters_];
      while (place != breaks.end() && piece.begin + *place < cluster.textEnd) {
        ++place;
      }
      if (place != breaks.end() && piece.begin + *place == cluster.textEnd &&
          (cluster.textEnd < piece.end || cluster.isSpace)) {
        const bool isSoftHyphen = text.substr(0, cluster.textEnd).ends_with("\u00AD");
        cluster.breakAfter = isSoftHyphen ? Break::hyphen : Break::allowed;
      }
    }
    brokenClusters_ += piece.endsLine ? 1 : 0;
  }
  return hasNew;
}

}  // namespace quillpad::drawing
