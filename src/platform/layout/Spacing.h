// The gaps that views want between themselves and their neighbours in a stack. Plain values.
#pragma once

#include <array>
#include <cstddef>

#include "platform/ui/Font.h"
#include "platform/ui/View.h"

namespace quillpad::drawing {

// What one edge of a view asks for, in points, by who stands beside it.
struct Edge {
  enum Category : std::size_t { textBesideText, aboveText, belowText, anything, categoryCount };
  static constexpr double absent = -1;

  std::array<double, categoryCount> gaps{absent, absent, absent, absent};
};

// The gap between two neighbours: the largest of what both ask for in one category, else of what
// either asks for of anything, else 8 points.
double gapBetween(const Edge& end, const Edge& start);

struct Spacing {
  Edge top, bottom, leading, trailing;

  static Spacing ordinary();
  static Spacing text(const ui::Font& font, double scale);
  static Spacing spacer(ui::Axis axis);

  void resetVertical();
  void resetHorizontal();

  // Makes the spacing of views one after another along the axis that of the views and `next`.
  void append(ui::Axis axis, const Spacing& next);

  Edge& start(ui::Axis axis) { return axis == ui::Axis::vertical ? top : leading; }
  const Edge& start(ui::Axis axis) const { return axis == ui::Axis::vertical ? top : leading; }
  Edge& end(ui::Axis axis) { return axis == ui::Axis::vertical ? bottom : trailing; }
  const Edge& end(ui::Axis axis) const { return axis == ui::Axis::vertical ? bottom : trailing; }
};

}  // namespace quillpad::drawing
