// Texts, images, rectangles and spacers.
#include <algorithm>
#include <utility>

#include "platform/layout/LayoutNode.h"

namespace quillpad::drawing {
namespace {

constexpr double minSpacer = 8;

// What is painted in the frame that it takes.
template <class Measure>
class PaintedNode final : public LayoutNode {
 public:
  PaintedNode(const Spacing& spacing, Painted content, Measure measure)
      : LayoutNode(spacing, false), content_(content), measure_(std::move(measure)) {}

  void place(Size /*proposed*/, const Rect& frame, Placement& placement) override {
    placement.paint(content_, frame);
  }

 private:
  Size measure(Size proposed) override { return measure_(proposed); }

  Painted content_;
  Measure measure_;
};

class SpacerNode final : public LayoutNode {
 public:
  explicit SpacerNode(ui::Axis axis) : LayoutNode(Spacing::spacer(axis), true), axis_(axis) {}

  void place(Size /*proposed*/, const Rect& /*frame*/, Placement& /*placement*/) override {}

 private:
  Size measure(Size proposed) override {
    return sizeAlong(axis_, std::max(along(axis_, proposed), minSpacer), 0);
  }

  ui::Axis axis_;
};

template <class Measure>
LayoutNodePtr painted(const Spacing& spacing, Painted content, Measure measure) {
  return std::make_unique<PaintedNode<Measure>>(spacing, content, std::move(measure));
}

}  // namespace

LayoutNodePtr nodeOf(const ui::Text& text, const Surroundings& around) {
  return painted(
      Spacing::text(text.textFont, around.metrics.scale()),
      &text,
      [&text, &metrics = around.metrics](Size proposed) {
        return metrics.textSize(text, proposed);
      });
}

LayoutNodePtr nodeOf(const ui::Image& image, const Surroundings& around) {
  return painted(Spacing::ordinary(), &image, [&image, &metrics = around.metrics](Size) {
    return metrics.imageSize(image.name);
  });
}

LayoutNodePtr nodeOf(const ui::Rectangle& rectangle, const Surroundings& /*around*/) {
  return painted(Spacing::ordinary(), rectangle.color, [](Size proposed) { return proposed; });
}

LayoutNodePtr nodeOf(const ui::Spacer& /*spacer*/, const Surroundings& around) {
  return std::make_unique<SpacerNode>(around.axis);
}

}  // namespace quillpad::drawing
