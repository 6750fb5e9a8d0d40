#include "platform/text/TextEngine.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

#include "platform/text/SystemFont.h"

namespace quillpad::drawing {
namespace {

constexpr std::size_t maxGenerationBytes = 8U << 20U;

constexpr double tolerance = 1e-6;

double roundedToPixel(double length, double scale) {
  return std::floor(length * scale + 0.5 + tolerance) / scale;
}

std::size_t linesThatFit(double height, double size) {
  constexpr double maxLines = 2 * maxGlyphs;  // no text has as many
  const double lines = std::floor(height / systemLineHeight(size) + tolerance);
  return static_cast<std::size_t>(std::clamp(lines, 1.0, maxLines));
}

// In the order of Line::Suffix.
constexpr std::array<const char*, 3> suffixTexts{"", "-", "…"};

}  // namespace

std::size_t TextEngine::KeyHash::operator()(const Key& key) const {
  return std::hash<std::string_view>()(key.text) * 31 + static_cast<std::size_t>(key.style.weight);
}

LazyText& TextEngine::shaped(const ui::Text& text, const TextPlace& place) {
  Key key{text.text, {text.textFont.weight, place.language, place.rightToLeft}};
  if (const auto found = young_.find(key); found != young_.end()) {
    return *found->second;
  }
  std::unique_ptr<LazyText> kept;
  if (const auto found = old_.find(key); found != old_.end()) {
    kept = std::move(found->second);
    old_.erase(found);
  } else {
    kept = std::make_unique<LazyText>(text.text, key.style);
  }

  youngFootprint_ += newest_ != nullptr ? newest_->footprint() : 0;
  if (youngFootprint_ > maxGenerationBytes) {
    old_ = std::exchange(young_, {});
    youngFootprint_ = 0;
  }
  newest_ = kept.get();
  key.text = kept->source();
  return *young_.emplace(std::move(key), std::move(kept)).first->second;
}

const ShapedText& TextEngine::suffix(Line::Suffix suffix, ui::Weight weight) {
  const auto number = static_cast<std::size_t>(suffix);
  auto& text = suffixes_.at(static_cast<std::size_t>(weight)).at(number);
  if (!text) {
    text = std::make_unique<LazyText>(suffixTexts.at(number), TextStyle{.weight = weight});
    text->reaches(0, tools_);
  }
  return text->shaped();
}

double TextEngine::suffixWidth(Line::Suffix which, ui::Weight weight) {
  return suffix(which, weight).clusters.front().advance;
}

// Shapes as much of the text as the line needs, and looks for breaks only where it overflows.
Line TextEngine::nextLine(LazyText& text, std::size_t begin, double limit) {
  const std::vector<Cluster>& clusters = text.shaped().clusters;
  Line line = breakLine(clusters, begin, limit, 0);
  while (line.next == clusters.size() && text.reaches(line.next, tools_)) {
    line = breakLine(clusters, begin, limit, 0);
  }
  if (line.next < clusters.size() && clusters[line.next - 1].breakAfter != Break::required) {
    text.findBreaks(tools_);
    line =
        breakLine(clusters, begin, limit, suffixWidth(Line::Suffix::hyphen, text.style().weight));
  }
  return line;
}

void TextEngine::breakLines(LazyText& text, double size, Size proposed) {
  lines_.clear();
  const std::size_t maxLines = linesThatFit(proposed.height, size);
  const double limit = (proposed.width + tolerance) / size;
  for (std::size_t begin = 0; text.reaches(begin, tools_) && lines_.size() < maxLines;) {
    Line line = nextLine(text, begin, limit);
    begin = line.next;
    if (lines_.size() + 1 == maxLines && text.reaches(begin, tools_)) {
      const double ellipsis = suffixWidth(Line::Suffix::ellipsis, text.style().weight);
      line = truncateLine(text.shaped().clusters, line.begin, limit, ellipsis);
    }
    lines_.push_back(line);
  }
}

Size TextEngine::measure(const ui::Text& text, const TextPlace& place, Size proposed) {
  const double size = text.textFont.size;
  // Lines may take what the frame will have; otherwise they would break differently in it.
  const double maxWidth = roundedUpToPixel(proposed.width, place.scale);
  breakLines(shaped(text, place), size, {maxWidth, proposed.height});
  double width = 0;
  for (const Line& line : lines_) {
    width = std::max(width, std::min(line.width * size, maxWidth));
  }
  const double height = static_cast<double>(lines_.size()) * systemLineHeight(size);
  return {roundedUpToPixel(width, place.scale), roundedUpToPixel(height, place.scale)};
}

TextEngine::Setting TextEngine::set(const ui::Text& text, const TextPlace& place, Rect frame) {
  const double size = text.textFont.size;
  LazyText& source = shaped(text, place);
  breakLines(source, size, {frame.width, frame.height});

  Setting setting;
  double baseline = frame.y + systemAscender * size;
  for (const Line& line : lines_) {
    const double y = roundedToPixel(baseline, place.scale);
    double x = place.rightToLeft ? frame.x + frame.width - line.width * size : frame.x;
    const ShapedText& suffix = this->suffix(line.suffix, text.textFont.weight);
    for (const LinePart& part : partsFromLeft(source.shaped(), line, suffix)) {
      if (setting.runs.empty() || setting.runs.back().font != part.font) {
        setting.runs.push_back({.font = part.font, .size = size, .glyphs = {}});
      }
      for (const ShapedGlyph& glyph : part.glyphs) {
        setting.runs.back().glyphs.push_back(
            {glyph.id, {x + glyph.xOffset * size, y - glyph.yOffset * size}});
        x += glyph.advance * size;
      }
    }
    baseline += systemLineHeight(size);
  }

  if (!lines_.empty()) {
    const std::size_t end = lines_.back().end;
    const ShapedText& shaped = source.shaped();
    setting.text = shaped.text.substr(0, end == 0 ? 0 : shaped.clusters[end - 1].textEnd);
    if (lines_.back().suffix == Line::Suffix::ellipsis) {
      setting.text += "…";
    }
  }
  return setting;
}

}  // namespace quillpad::drawing
