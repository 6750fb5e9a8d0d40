// How a layout came about, node by node, for whoever wonders why something is where it is.
// Frames are on the card, mirrored for right-to-left ones. Pure functions.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "platform/layout/Layout.h"

namespace quillpad::drawing {

// One content or one modifier of a view. A modifier is around the next one inward.
struct TracedNode {
  const ui::View* view = nullptr;
  const ui::Modifier* modifier = nullptr;  // null: the view's content
  int parent = -1;                         // the node around it; the outermost has none
  int turn = 0;  // when its stack offered it room: 1 for the first child that it did; 0: in none
  Size proposed{};
  Rect frame{};                 // of the size that it took
  std::optional<Size> whole{};  // of a text that is cut off: what it takes of wholeTextOffer
};

struct LayoutTrace {
  Layout layout;
  std::vector<TracedNode> nodes;  // each before what is inside it
  std::vector<int> itemNodes;     // of each item of the layout: its node, -1 where it has none
  bool complete = true;           // false: views behind maximumTracedNodes are not in it
};

inline constexpr std::size_t maximumTracedNodes = 1000;
inline constexpr Size wholeTextOffer{100, 5};  // font sizes; the height of four lines

// Lays out as layOut() does, several times as slow.
LayoutTrace traceLayout(
    const ui::View& view, Size size, LayoutDirection direction, Metrics& metrics);

// What is probably not meant.
struct Finding {
  enum class Kind {
    cutOff,         // a text ends in "…"
    overflows,      // sticks out of the node around it
    leavesTheCard,  // is painted beyond the card, or makes the whole view larger than the card
  };

  Kind kind = Kind::cutOff;
  int node = 0;
  ui::EdgeInsets beyond{};  // how far it sticks out; leading is the left side here
};

// Outer causes come first. Up to half a device pixel counts as nothing.
std::vector<Finding> findingsOf(const LayoutTrace& trace, Size size, double scale);

}  // namespace quillpad::drawing
