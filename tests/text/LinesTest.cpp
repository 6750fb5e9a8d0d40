// Lines over made-up texts, in which each character is one cluster and one glyph.
#include <cctype>
#include <gmock/gmock.h>
#include <limits>
#include <ranges>

#include "platform/text/Lines.h"

namespace quillpad::drawing {
namespace {

using ::testing::ElementsAreArray;

constexpr double unbound = std::numeric_limits<double>::infinity();

// Characters are one wide; "~" is a soft hyphen, "|" ends a line, lines may break behind "-" too.
std::vector<Cluster> clustersOf(std::string_view text) {
  std::vector<Cluster> clusters;
  for (const char character : text) {
    const auto at = static_cast<std::uint32_t>(clusters.size());
    const bool isSign = character == '~' || character == '|';
    clusters.push_back(
        {.textBegin = at,
         .textEnd = at + 1,
         .firstGlyph = at,
         .glyphCount = 1,
         .advance = isSign ? 0.0F : 1.0F,
         .breakAfter = character == '|'                       ? Break::required
                       : character == '~'                     ? Break::hyphen
                       : character == ' ' || character == '-' ? Break::allowed
                                                              : Break::none,
         .isSpace = character == ' '});
  }
  return clusters;
}

std::string shown(std::string_view text, const Line& line) {
  std::string result(text.substr(line.begin, line.end - line.begin));
  return result + (line.suffix == Line::Suffix::hyphen     ? "="
                   : line.suffix == Line::Suffix::ellipsis ? "…"
                                                           : "");
}

TEST(Lines, BreakAtTheLastPlaceThatFits) {
  const std::tuple<const char*, double, std::vector<std::string>> cases[] = {
      {"one two three", unbound, {"one two three"}},
      {"one two three", 13, {"one two three"}},
      {"one two three", 12, {"one two", "three"}},
      {"one two three", 7, {"one two", "three"}},
      {"one two three", 6, {"one", "two", "three"}},
      {"one two three", 4, {"one", "two", "thre", "e"}},
      {"one two three", 0, {"o", "n", "e", "t", "w", "o", "t", "h", "r", "e", "e"}},
      {"one   two", 3, {"one", "two"}},  // spaces hang over the end
      {"  one two", 4, {"", "one", "two"}},
      {"   ", 1, {""}},
      {"one|two", 9, {"one", "two"}},
      {"one||two|", 9, {"one", "", "two"}},
      {"three-four", 7, {"three-", "four"}},
      {"auto~mobile", 11, {"auto~mobile"}},
      {"auto~mobile", 9, {"auto~=", "mobile"}},
      {"auto~mobile", 5, {"auto~=", "mobil", "e"}},
      {"auto~mobile", 4, {"auto~", "mobi", "le"}},  // no room for the hyphen: cut, not hyphenated
      {"a~b~c~d", 3, {"a~b~=", "c~d"}},
      {"a b~cd", 2, {"a", "b~=", "cd"}},
      {"auto~ mobile", 6, {"auto~", "mobile"}},
  };
  for (const auto& [text, limit, expected] : cases) {
    const std::vector<Cluster> clusters = clustersOf(text);
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < clusters.size();) {
      const Line line = breakLine(clusters, begin, limit, 1);
      EXPECT_LE(line.width, std::max(limit, 1.0)) << text;
      lines.push_back(shown(text, line));
      begin = line.next;
    }
    EXPECT_THAT(lines, ElementsAreArray(expected)) << text << " " << limit;
  }
}

TEST(Lines, AreTruncatedWithinTheLimit) {
  const std::tuple<const char*, double, const char*, double> cases[] = {
      {"one two three", 9, "one two…", 9},
      {"one two three", 6, "one…", 5},
      {"one two three", 3, "o…", 3},
      {"one two three", 2, "…", 2},
      {"one two three", 1, "", 0},
      {"one|two", 9, "one…", 5},
      {"|two", 9, "…", 2},
  };
  for (const auto& [text, limit, expected, width] : cases) {
    const Line line = truncateLine(clustersOf(text), 0, limit, 2);
    EXPECT_EQ(shown(text, line), expected) << limit;
    EXPECT_EQ(line.width, width) << text << limit;
  }
}

// Capital letters run from right to left, one level above the paragraph; in such a paragraph, small
// letters and figures are a level higher.
ShapedText bidirectional(std::string_view text, bool paragraphRightToLeft) {
  ShapedText shaped{
      .text = std::string(text), .clusters = clustersOf(text), .runs = {}, .glyphs = {}};
  std::vector<std::uint8_t> levels;
  for (const char character : text) {
    const bool isCapital = std::isupper(character) != 0;
    const bool isNeutral = character == ' ';
    levels.push_back(paragraphRightToLeft ? (isCapital || isNeutral ? 1 : 2) : (isCapital ? 1 : 0));
  }
  for (std::uint32_t begin = 0; begin < text.size();) {
    std::uint32_t end = begin;
    while (end < text.size() && levels[end] == levels[begin]) {
      ++end;
    }
    for (std::uint32_t i = begin; i < end; ++i) {
      const std::uint32_t source = levels[begin] % 2 == 0 ? i : begin + end - 1 - i;
      shaped.glyphs.push_back({.id = static_cast<std::uint32_t>(text[source]), .text = source});
      shaped.clusters[source].firstGlyph = i;
      shaped.clusters[i].run = static_cast<std::uint32_t>(shaped.runs.size());
    }
    shaped.runs.push_back({.level = levels[begin], .paragraphRightToLeft = paragraphRightToLeft});
    begin = end;
  }
  return shaped;
}

TEST(Lines, StandFromLeftToRight) {
  using enum Line::Suffix;
  const std::tuple<const char*, bool, std::size_t, std::size_t, Line::Suffix, const char*> cases[] =
      {
          {"ab CDE fg", false, 0, 9, none, "ab EDC fg"},
          {"ab CDE fg", false, 0, 5, none, "ab DC"},  // the run goes on in the next line
          {"ab CDE fg", false, 5, 9, none, "E fg"},
          {"ab CDE fg", false, 4, 6, none, "ED"},
          {"ab CDE fg", false, 1, 4, ellipsis, "b C."},
          {"ab CDE", false, 0, 6, ellipsis, "ab EDC."},
          {"CDE", false, 0, 3, hyphen, ".EDC"},
          {"CD ab 12 EF", true, 0, 11, none, "FE 12 ab DC"},
          {"CD ab 12 EF", true, 0, 4, none, "a DC"},
          {"CD ab 12 EF", true, 4, 10, none, "E 12 b"},
          {"CD ab", true, 0, 5, ellipsis, ".ab DC"},
          {"CD ab", true, 0, 5, hyphen, "ab. DC"},
          {"CD ab", true, 3, 3, ellipsis, "."},
          {"CD ab", true, 3, 3, none, ""},
      };
  const ShapedText suffix{
      .text = ".", .clusters = clustersOf("."), .runs = {{}}, .glyphs = {{'.'}}};
  for (const auto& [words, rightToLeft, begin, end, lineSuffix, expected] : cases) {
    const ShapedText text = bidirectional(words, rightToLeft);
    const Line line{.begin = begin, .end = end, .next = end, .suffix = lineSuffix};
    std::string fromLeft;
    for (const LinePart& part : partsFromLeft(text, line, suffix)) {
      for (const ShapedGlyph& glyph : part.glyphs) {
        fromLeft += static_cast<char>(glyph.id);
      }
    }
    EXPECT_EQ(fromLeft, expected) << words << " " << begin << " to " << end;
  }
}

}  // namespace
}  // namespace quillpad::drawing
