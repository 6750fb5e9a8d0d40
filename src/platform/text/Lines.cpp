#include "platform/text/Lines.h"

#include "platform/text/Unicode.h"

namespace quillpad::drawing {
namespace {

std::vector<LinePart> inOrderOfReading(
    const ShapedText& text, const Line& line, const ShapedText& suffix) {
  std::vector<LinePart> parts;
  std::uint8_t suffixLevel = 0;
  for (std::size_t begin = line.begin; begin < line.end;) {
    const Cluster& first = text.clusters[begin];
    std::size_t end = begin;
    while (end < line.end && text.clusters[end].run == first.run) {
      ++end;
    }
    const Cluster& last = text.clusters[end - 1];
    const ShapedText::Run& run = text.runs[first.run];
    const bool isLeftToRight = run.level % 2 == 0;
    const Cluster& left = isLeftToRight ? first : last;
    const Cluster& right = isLeftToRight ? last : first;
    const std::size_t count = right.firstGlyph + right.glyphCount - left.firstGlyph;
    parts.push_back({run.font, run.level, std::span(text.glyphs).subspan(left.firstGlyph, count)});
    suffixLevel = line.suffix == Line::Suffix::hyphen ? run.level
                  : run.paragraphRightToLeft          ? 1
                                                      : 0;
    begin = end;
  }
  if (line.suffix != Line::Suffix::none) {
    parts.push_back({suffix.runs.front().font, suffixLevel, suffix.glyphs});
  }
  return parts;
}

}  // namespace

Line breakLine(
    std::span<const Cluster> clusters, std::size_t begin, double limit, double hyphenWidth) {
  Line filled{.begin = begin, .end = begin, .next = begin};
  Line broken = filled;  // at the last place that may end a line
  double length = 0;
  while (filled.next < clusters.size()) {
    const Cluster& cluster = clusters[filled.next];
    if (cluster.breakAfter == Break::required) {
      ++filled.next;
      return filled;
    }
    length += cluster.advance;
    if (!cluster.isSpace) {
      if (length > limit && filled.next > begin) {
        return broken.next > begin ? broken : filled;
      }
      filled.end = filled.next + 1;
      filled.width = length;
    }
    ++filled.next;
    if (cluster.breakAfter == Break::allowed) {
      broken = filled;
    } else if (cluster.breakAfter == Break::hyphen && filled.width + hyphenWidth <= limit) {
      broken = filled;
      broken.width += hyphenWidth;
      broken.suffix = Line::Suffix::hyphen;
    }
  }
  return filled;
}

Line truncateLine(
    std::span<const Cluster> clusters, std::size_t begin, double limit, double ellipsisWidth) {
  Line line{.begin = begin, .end = begin, .next = begin};
  if (ellipsisWidth > limit) {
    return line;
  }
  line.width = ellipsisWidth;
  line.suffix = Line::Suffix::ellipsis;
  double length = ellipsisWidth;
  for (std::size_t i = begin; i < clusters.size(); ++i) {
    length += clusters[i].advance;
    if (clusters[i].breakAfter == Break::required || length > limit) {
      break;
    }
    if (!clusters[i].isSpace) {
      line.end = i + 1;
      line.width = length;
    }
  }
  return line;
}

std::vector<LinePart> partsFromLeft(
    const ShapedText& text, const Line& line, const ShapedText& suffix) {
  std::vector<LinePart> parts = inOrderOfReading(text, line, suffix);
  if (parts.size() < 2) {
    return parts;
  }
  std::vector<UBiDiLevel> levels;
  levels.reserve(parts.size());
  for (const LinePart& part : parts) {
    levels.push_back(part.level);
  }
  std::vector<int32_t> order(parts.size());
  ubidi_reorderVisual(levels.data(), static_cast<int32_t>(levels.size()), order.data());
  std::vector<LinePart> ordered;
  ordered.reserve(parts.size());
  for (const int32_t place : order) {
    ordered.push_back(parts[static_cast<std::size_t>(place)]);
  }
  return ordered;
}

}  // namespace quillpad::drawing
