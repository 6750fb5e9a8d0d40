#include "platform/layout/Spacing.h"

#include <algorithm>

#include "platform/text/SystemFont.h"

namespace quillpad::drawing {
namespace {

constexpr double ordinaryGap = 8;

Edge merged(const Edge& one, const Edge& other) {
  Edge result;
  std::ranges::transform(one.gaps, other.gaps, result.gaps.begin(), std::ranges::max);
  return result;
}

}  // namespace

double gapBetween(const Edge& end, const Edge& start) {
  double gap = Edge::absent;
  for (std::size_t i = 0; i < Edge::anything; ++i) {
    if (end.gaps[i] >= 0 && start.gaps[i] >= 0) {
      gap = std::max({gap, end.gaps[i], start.gaps[i]});
    }
  }
  if (gap < 0) {
    gap = std::max(end.gaps[Edge::anything], start.gaps[Edge::anything]);
  }
  return gap < 0 ? ordinaryGap : gap;
}

Spacing Spacing::ordinary() {
  Spacing spacing;
  spacing.resetVertical();
  return spacing;
}

Spacing Spacing::text(const ui::Font& font, double scale) {
  const double lineHeight = systemLineHeight(font.size);
  const double extra = roundedUpToPixel(lineHeight * 0.1, scale);
  Spacing spacing;
  spacing.top.gaps[Edge::textBesideText] = 0;
  spacing.bottom.gaps[Edge::textBesideText] = 0;
  spacing.top.gaps[Edge::aboveText] = lineHeight + extra - systemAscender * font.size;
  spacing.bottom.gaps[Edge::belowText] = lineHeight + extra - systemCapHeight * font.size;
  return spacing;
}

Spacing Spacing::spacer(ui::Axis axis) {
  Spacing spacing;
  spacing.start(axis).gaps[Edge::anything] = 0;
  spacing.end(axis).gaps[Edge::anything] = 0;
  return spacing;
}

void Spacing::resetVertical() {
  top = {};
  bottom = {};
  top.gaps[Edge::belowText] = 0;
  bottom.gaps[Edge::aboveText] = 0;
}

void Spacing::resetHorizontal() {
  leading = {};
  trailing = {};
}

void Spacing::append(ui::Axis axis, const Spacing& next) {
  const ui::Axis crossing = axis == ui::Axis::vertical ? ui::Axis::horizontal : ui::Axis::vertical;
  end(axis) = next.end(axis);
  start(crossing) = merged(start(crossing), next.start(crossing));
  end(crossing) = merged(end(crossing), next.end(crossing));
}

}  // namespace quillpad::drawing
