#include "platform/text/TextEngine.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>

#include "platform/text/SystemFont.h"

namespace quillpad::drawing {
namespace {

constexpr std::size_t longestGeneration = 8U << 20U;  // bytes

// A text is not measured further than this, in either dimension: no card is as large.
constexpr double furthest = 32768;

constexpr double tolerance = 1e-6;

double roundedToPixel(double length, double scale) {
  return std::floor(length * scale + 0.5 + tolerance) / scale;
}

std::size_t linesThatFit(double height, double size) {
  const double lines = std::floor(std::min(height, furthest) / systemLineHeight(size) + tolerance);
  return static_cast<std::size_t>(std::max(lines, 1.0));
}

// Glyphs of a line that stay together when its parts are ordered from left to right.
struct Part {
  FontId font = 0;
  std::uint8_t level = 0;
  std::span<const ShapedGlyph> glyphs;
};

// Reverses every row of parts at each level or above, from the highest level to the lowest odd one.
void orderFromLeft(std::vector<Part>& parts) {
  std::uint8_t highest = 0;
  for (const Part& part : parts) {
    highest = std::max(highest, part.level);
  }
  for (std::uint8_t level = highest; level > 0; --level) {
    const auto isInner = [&](const Part& part) { return part.level >= level; };
    for (auto from = parts.begin(); from != parts.end();) {
      from = std::find_if(from, parts.end(), isInner);
      const auto to = std::find_if_not(from, parts.end(), isInner);
      std::reverse(from, to);
      from = to;
    }
  }
}

}  // namespace

std::size_t TextEngine::KeyHash::operator()(const Key& key) const {
  return std::hash<std::string_view>()(key.text) * 31 + static_cast<std::size_t>(key.style.weight);
}

ShapedText& TextEngine::shaped(const ui::Text& text, const TextPlace& place) {
  Key key{text.text, {text.textFont.weight, place.language, place.rightToLeft}};
  if (const auto found = young_.find(key); found != young_.end()) {
    return *found->second;
  }
  std::unique_ptr<ShapedText> kept;
  if (const auto found = old_.find(key); found != old_.end()) {
    kept = std::move(found->second);
    old_.erase(found);
  } else {
    kept = std::make_unique<ShapedText>(text.text, key.style);
  }

  youngFootprint_ += newest_ != nullptr ? newest_->footprint() : 0;
  if (youngFootprint_ > longestGeneration) {
    old_ = std::exchange(young_, {});
    youngFootprint_ = 0;
  }
  newest_ = kept.get();
  key.text = kept->source();
  return *young_.emplace(std::move(key), std::move(kept)).first->second;
}

ShapedText& TextEngine::ellipsis(ui::Weight weight) {
  auto& text = ellipses_.at(static_cast<std::size_t>(weight));
  if (!text) {
    text = std::make_unique<ShapedText>("…", TextStyle{.weight = weight});
    text->reaches(0, tools_);
  }
  return *text;
}

TextEngine::Line TextEngine::cutWithEllipsis(
    ShapedText& text, double size, double width, std::size_t begin) {
  const ui::Weight weight = text.style().weight;
  const double sign = ellipsis(weight).clusters().front().advance * size;
  if (sign > width + tolerance) {
    return {.begin = begin, .end = begin};
  }
  std::size_t end = begin;
  std::size_t kept = begin;
  double length = 0;
  double keptLength = 0;
  for (; text.reaches(end, tools_); ++end) {
    const ShapedText::Cluster& cluster = text.clusters()[end];
    length += cluster.advance * size;
    if (cluster.breakAfter == ShapedText::Break::required || length + sign > width + tolerance) {
      break;
    }
    if (!cluster.isSpace) {
      kept = end + 1;
      keptLength = length;
    }
  }
  return {.begin = begin, .end = kept, .width = keptLength + sign, .endsInEllipsis = true};
}

void TextEngine::breakLines(ShapedText& text, double size, Size proposed) {
  lines_.clear();
  const std::size_t most = linesThatFit(proposed.height, size);
  const double limit = std::min(proposed.width, furthest) + tolerance;
  for (std::size_t begin = 0; text.reaches(begin, tools_) && lines_.size() < most;) {
    std::size_t next = begin;
    bool ends = false;
    Line line{.begin = begin, .end = begin};
    double length = 0;
    for (; !ends && text.reaches(next, tools_); ++next) {
      const ShapedText::Cluster& cluster = text.clusters()[next];
      ends = cluster.breakAfter == ShapedText::Break::required;
      if (cluster.isSpace || ends) {
        length += cluster.advance * size;
        continue;
      }
      if (length + cluster.advance * size > limit && next > begin) {
        break;
      }
      length += cluster.advance * size;
      line.end = next + 1;
      line.width = length;
    }
    const bool isLast = !text.reaches(next, tools_);
    if (!isLast && !ends) {
      if (std::isinf(proposed.width)) {
        lines_.push_back(line);
        return;
      }
      // Back to the last place where the line may end; a word that has none is cut where it is.
      text.findBreaks(tools_);
      std::size_t word = next;
      while (word > begin && text.clusters()[word - 1].breakAfter == ShapedText::Break::none) {
        --word;
      }
      if (word > begin && word < next) {
        next = word;
        line = {.begin = begin, .end = begin};
        length = 0;
        for (std::size_t i = begin; i < next; ++i) {
          length += text.clusters()[i].advance * size;
          if (!text.clusters()[i].isSpace) {
            line.end = i + 1;
            line.width = length;
          }
        }
      }
    }
    if (!isLast && lines_.size() + 1 == most) {
      line = cutWithEllipsis(text, size, proposed.width, begin);
    }
    lines_.push_back(line);
    begin = next;
  }
}

Size TextEngine::measure(const ui::Text& text, const TextPlace& place, Size proposed) {
  const double size = text.textFont.size;
  // Lines may take what the frame will have; otherwise they would break differently in it.
  const double most = roundedUpToPixel(proposed.width, place.scale);
  breakLines(shaped(text, place), size, {most, proposed.height});
  double width = 0;
  for (const Line& line : lines_) {
    width = std::max(width, std::min(line.width, most));
  }
  const double height = static_cast<double>(lines_.size()) * systemLineHeight(size);
  return {roundedUpToPixel(width, place.scale), roundedUpToPixel(height, place.scale)};
}

TextEngine::Setting TextEngine::set(const ui::Text& text, const TextPlace& place, Rect frame) {
  const double size = text.textFont.size;
  ShapedText& source = shaped(text, place);
  breakLines(source, size, {frame.width, frame.height});

  Setting setting;
  std::vector<Part> parts;
  double baseline = frame.y + systemAscender * size;
  for (const Line& line : lines_) {
    parts.clear();
    bool rightToLeft = place.rightToLeft;
    for (std::size_t i = line.begin; i < line.end;) {
      const ShapedText::Cluster& first = source.clusters()[i];
      const ShapedText::Run& run = source.runs()[first.run];
      std::size_t end = i;
      while (end < line.end && source.clusters()[end].run == first.run) {
        ++end;
      }
      const ShapedText::Cluster& last = source.clusters()[end - 1];
      const ShapedText::Cluster& left = run.level % 2 == 0 ? first : last;
      const ShapedText::Cluster& right = run.level % 2 == 0 ? last : first;
      const std::size_t count = right.firstGlyph + right.glyphCount - left.firstGlyph;
      parts.push_back(
          {run.font, run.level, std::span(source.glyphs()).subspan(left.firstGlyph, count)});
      rightToLeft = run.paragraphRightToLeft;
      i = end;
    }
    if (line.endsInEllipsis) {
      const ShapedText& sign = ellipsis(source.style().weight);
      const auto level = static_cast<std::uint8_t>(rightToLeft ? 1 : 0);
      parts.push_back({sign.runs().front().font, level, sign.glyphs()});
    }
    orderFromLeft(parts);

    double x = rightToLeft ? frame.x + frame.width - line.width : frame.x;
    const double y = roundedToPixel(baseline, place.scale);
    for (const Part& part : parts) {
      if (setting.runs.empty() || setting.runs.back().font != part.font) {
        setting.runs.push_back({.font = part.font, .size = size, .glyphs = {}});
      }
      std::vector<Glyph>& glyphs = setting.runs.back().glyphs;
      glyphs.reserve(glyphs.size() + part.glyphs.size());
      for (const ShapedGlyph& glyph : part.glyphs) {
        glyphs.push_back({glyph.id, {x + glyph.xOffset * size, y - glyph.yOffset * size}});
        x += glyph.advance * size;
      }
    }
    baseline += systemLineHeight(size);
  }

  if (!lines_.empty()) {
    const std::size_t end = lines_.back().end;
    setting.text = source.text().substr(0, end == 0 ? 0 : source.clusters()[end - 1].textEnd);
    if (lines_.back().endsInEllipsis) {
      setting.text += "…";
    }
  }
  return setting;
}

}  // namespace quillpad::drawing
