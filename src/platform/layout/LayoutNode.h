// The tree that a layout is found on: a node for each content and each modifier of a view. A node
// is asked for its size as often as somebody likes, then placed once. Belongs to one thread.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "platform/layout/Layout.h"
#include "platform/layout/Spacing.h"

namespace quillpad::drawing {

// A size by axis: `along` the stack and `across` it.
constexpr double along(ui::Axis axis, Size size) {
  return axis == ui::Axis::vertical ? size.height : size.width;
}
constexpr double across(ui::Axis axis, Size size) {
  return axis == ui::Axis::vertical ? size.width : size.height;
}
constexpr Size sizeAlong(ui::Axis axis, double along, double across) {
  return axis == ui::Axis::vertical ? Size{across, along} : Size{along, across};
}

// Takes down what is to be painted, for right-to-left cards the mirror image of it.
class Placement {
 public:
  Placement(double width, LayoutDirection direction)
      : width_(width), mirrored_(direction == LayoutDirection::rightToLeft) {}

  void paint(Painted content, const Rect& frame);

  // What is painted until `leaveClip` is masked.
  void enterClip(const Rect& frame, double cornerRadius);
  void leaveClip();

  // Where the frame is on the card.
  Rect mirroredIfNeeded(const Rect& frame) const;

  std::size_t itemCount() const { return layout_.items.size(); }

  Layout take() { return std::move(layout_); }

 private:
  double width_;
  bool mirrored_;
  int clip_ = -1;
  Layout layout_;
};

class LayoutNode {
 public:
  LayoutNode(Spacing spacing, bool isSpacer) : spacing_(spacing), isSpacer_(isSpacer) {}
  virtual ~LayoutNode() = default;
  LayoutNode(const LayoutNode&) = delete;
  LayoutNode& operator=(const LayoutNode&) = delete;

  // What the node takes when offered a size; answers are kept.
  Size size(Size proposed);

  // How much longer it gets along the axis when offered everything instead of nothing.
  double flexibility(ui::Axis axis, double proposedAcross);
  // From the first answer on, flexibility is the same whatever is offered across.
  void keepFlexibility() { keepsFlexibility_ = true; }

  // Places it in a frame of the size that it took of `proposed`.
  virtual void place(Size proposed, const Rect& frame, Placement& placement) = 0;

  // Told before it is placed: when its stack offered it room, 1 for the first child that it did.
  virtual void takeTurn(int /*turn*/) {}

  Spacing& spacing() { return spacing_; }
  bool isSpacer() const { return isSpacer_; }  // a spacer, whatever its modifiers

 private:
  virtual Size measure(Size proposed) = 0;

  struct Answer {
    Size proposed, size;
  };

  Spacing spacing_;
  bool isSpacer_;
  bool keepsFlexibility_ = false;
  std::optional<double> flexibility_;
  std::vector<Answer> answers_;
};

using LayoutNodePtr = std::unique_ptr<LayoutNode>;

class Tracer;

// A node's place in the tree.
struct Surroundings {
  Metrics& metrics;
  ui::Axis axis = ui::Axis::vertical;  // of the stack around it
  int stacks = 0;                      // how many are around it
  Tracer* tracer = nullptr;            // takes down how it is laid out, where somebody asks
};

// The node of a view with all below it. Nodes point into the view, which has to outlive them.
LayoutNodePtr nodeOf(const ui::View& view, const Surroundings& around);

// Lays out as the layOut() for everybody does.
Layout layOut(
    const ui::View& view, Size size, LayoutDirection direction, const Surroundings& around);

// The nodes of contents.
LayoutNodePtr nodeOf(const ui::Text& text, const Surroundings& around);
LayoutNodePtr nodeOf(const ui::Image& image, const Surroundings& around);
LayoutNodePtr nodeOf(const ui::Rectangle& rectangle, const Surroundings& around);
LayoutNodePtr nodeOf(const ui::Spacer& spacer, const Surroundings& around);
LayoutNodePtr nodeOf(const ui::Stack& stack, const Surroundings& around);

// The nodes of modifiers, around what they modify.
LayoutNodePtr nodeAround(LayoutNodePtr content, const ui::Padding& padding);
LayoutNodePtr nodeAround(LayoutNodePtr content, const ui::Frame& frame);
LayoutNodePtr nodeAround(LayoutNodePtr content, const ui::FlexibleFrame& frame);
LayoutNodePtr nodeAround(LayoutNodePtr content, const ui::Background& background);
LayoutNodePtr nodeAround(LayoutNodePtr content, const ui::ClipShape& shape);
LayoutNodePtr nodeAround(LayoutNodePtr content, const ui::WidgetUrl& link);

}  // namespace quillpad::drawing
