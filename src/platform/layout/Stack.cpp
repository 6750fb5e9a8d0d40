#include <algorithm>
#include <utility>

#include "platform/layout/LayoutNode.h"
#include "platform/layout/Share.h"

namespace quillpad::drawing {
namespace {

// Below so many nested stacks a child's flexibility is measured once, at the first length across
// that it is asked for: measured again for each, nesting would make the time grow exponentially.
constexpr int maxExactDepth = 6;

class StackNode final : public LayoutNode {
 public:
  StackNode(ui::Axis axis, std::vector<LayoutNodePtr> children)
      : LayoutNode(spacingOf(axis, children), false), axis_(axis) {
    children_.reserve(children.size());
    for (LayoutNodePtr& node : children) {
      (node->isSpacer() ? spacers_ : others_).push_back({.child = children_.size()});
      const double gap =
          children_.empty()
              ? 0
              : gapBetween(children_.back().node->spacing().end(axis), node->spacing().start(axis));
      gaps_ += gap;
      children_.push_back({.node = std::move(node), .gapBefore = gap});
    }
  }

  void place(Size proposed, const Rect& frame, Placement& placement) override {
    measure(proposed);
    tellTurns();
    double position = 0;
    for (const Child& child : children_) {
      position += child.gapBefore;
      const double beside =
          (across(axis_, {frame.width, frame.height}) - across(axis_, child.size)) / 2;
      const Size offset = sizeAlong(axis_, position, beside);
      child.node->place(
          child.proposed,
          {frame.x + offset.width, frame.y + offset.height, child.size.width, child.size.height},
          placement);
      position += along(axis_, child.size);
    }
  }

 private:
  struct Child {
    LayoutNodePtr node;
    double gapBefore = 0;
    // As of the last proposal that was measured.
    Size proposed{}, size{};
  };

  static Spacing spacingOf(ui::Axis axis, const std::vector<LayoutNodePtr>& children) {
    Spacing spacing = children.empty() ? Spacing::ordinary() : children.front()->spacing();
    for (std::size_t i = 1; i < children.size(); ++i) {
      spacing.append(axis, children[i]->spacing());
    }
    return spacing;
  }

  // Spacers come after everything else, and what they need at least is held back for them.
  Size measure(Size proposed) override {
    const double proposedAcross = across(axis_, proposed);
    double heldBack = 0;
    for (const Flexible& spacer : spacers_) {
      const Size least = sizeAlong(axis_, 0, proposedAcross);
      heldBack += along(axis_, children_[spacer.child].node->size(least));
    }
    const double left =
        shareAmong(others_, along(axis_, proposed) - gaps_ - heldBack, proposedAcross);
    shareAmong(spacers_, left + heldBack, proposedAcross);

    double length = gaps_;
    double breadth = 0;
    for (const Child& child : children_) {
      length += along(axis_, child.size);
      breadth = std::max(breadth, across(axis_, child.size));
    }
    return sizeAlong(axis_, length, breadth);
  }

  // After measure(), which has put them into the order in which they were offered room.
  void tellTurns() {
    int turn = 0;
    for (const auto* sharers : {&others_, &spacers_}) {
      for (const Flexible& one : *sharers) {
        children_[one.child].node->takeTurn(++turn);
      }
    }
  }

  double shareAmong(std::vector<Flexible>& sharers, double room, double proposedAcross) {
    if (sharers.size() > 1) {
      for (Flexible& one : sharers) {
        one.flexibility = children_[one.child].node->flexibility(axis_, proposedAcross);
      }
    }
    return share(room, sharers, [&](std::size_t index, double offer) {
      Child& child = children_[index];
      child.proposed = sizeAlong(axis_, offer, proposedAcross);
      child.size = child.node->size(child.proposed);
      return along(axis_, child.size);
    });
  }

  ui::Axis axis_;
  std::vector<Child> children_;
  std::vector<Flexible> others_, spacers_;
  double gaps_ = 0;
};

}  // namespace

LayoutNodePtr nodeOf(const ui::Stack& stack, const Surroundings& around) {
  const Surroundings inside{around.metrics, stack.axis, around.stacks + 1, around.tracer};
  std::vector<LayoutNodePtr> children;
  children.reserve(stack.children.size());
  for (const ui::View& view : stack.children) {
    children.push_back(nodeOf(view, inside));
    if (inside.stacks > maxExactDepth) {
      children.back()->keepFlexibility();
    }
  }
  return std::make_unique<StackNode>(stack.axis, std::move(children));
}

}  // namespace quillpad::drawing
