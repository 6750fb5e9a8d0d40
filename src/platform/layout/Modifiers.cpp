#include <algorithm>
#include <limits>
#include <utility>

#include "platform/layout/LayoutNode.h"

namespace quillpad::drawing {
namespace {

// What all modifiers have in common: unless they say otherwise, they are as large as their content.
class ModifierNode : public LayoutNode {
 public:
  explicit ModifierNode(LayoutNodePtr content)
      : LayoutNode(content->spacing(), content->isSpacer()), content_(std::move(content)) {}

 protected:
  LayoutNode& content() { return *content_; }

 private:
  Size measure(Size proposed) override { return content_->size(proposed); }

  LayoutNodePtr content_;
};

class PaddingNode final : public ModifierNode {
 public:
  PaddingNode(LayoutNodePtr content, const ui::EdgeInsets& insets)
      : ModifierNode(std::move(content)),
        insets_(insets),
        outer_{insets.leading + insets.trailing, insets.top + insets.bottom} {
    spacing() = Spacing::ordinary();
  }

  void place(Size proposed, const Rect& frame, Placement& placement) override {
    const Size inside = insideOf(proposed);
    const Size size = content().size(inside);
    content().place(
        inside,
        {frame.x + insets_.leading, frame.y + insets_.top, size.width, size.height},
        placement);
  }

 private:
  Size measure(Size proposed) override {
    const Size inner = content().size(insideOf(proposed));
    return {std::max(inner.width + outer_.width, 0.0), std::max(inner.height + outer_.height, 0.0)};
  }

  Size insideOf(Size proposed) const {
    return {
        std::max(proposed.width - outer_.width, 0.0),
        std::max(proposed.height - outer_.height, 0.0)};
  }

  ui::EdgeInsets insets_;
  Size outer_;
};

// A length of a frame, where it is one.
std::optional<double> usable(std::optional<double> length) {
  return length && *length >= 0 ? length : std::nullopt;
}

// The bounds of one dimension of a flexible frame; an absent one does not bind.
class Bounds {
 public:
  Bounds(std::optional<double> min, std::optional<double> max)
      : min_(usable(min)), max_(usable(max)) {}

  bool any() const { return min_ || max_; }
  bool both() const { return min_ && max_; }

  double clamp(double proposed) const {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    return std::max(std::min(proposed, max_.value_or(infinity)), min_.value_or(0));
  }

  // The frame's length when its content took `content` of the clamped proposal.
  double answer(double proposed, double content) const {
    const double clamped = clamp(proposed);
    if (both()) {
      return clamped;
    }
    if (min_) {
      return std::max(std::min(clamped, content), *min_);
    }
    return max_ ? std::min(std::max(clamped, content), *max_) : content;
  }

 private:
  std::optional<double> min_, max_;
};

// A frame of either kind: a fixed length is a bound both ways. Its own edges are ordinary where it
// binds a dimension.
class FrameNode final : public ModifierNode {
 public:
  FrameNode(LayoutNodePtr content, const Bounds& width, const Bounds& height)
      : ModifierNode(std::move(content)), width_(width), height_(height) {
    if (width.any()) {
      spacing().resetHorizontal();
    }
    if (height.any()) {
      spacing().resetVertical();
    }
  }

  void place(Size proposed, const Rect& frame, Placement& placement) override {
    const Size inside = insideOf(proposed);
    const Size size = content().size(inside);
    content().place(
        inside,
        {frame.x + (frame.width - size.width) / 2,
         frame.y + (frame.height - size.height) / 2,
         size.width,
         size.height},
        placement);
  }

 private:
  Size measure(Size proposed) override {
    const Size inner =
        width_.both() && height_.both() ? Size{} : content().size(insideOf(proposed));
    return {
        width_.answer(proposed.width, inner.width), height_.answer(proposed.height, inner.height)};
  }

  Size insideOf(Size proposed) const {
    return {width_.clamp(proposed.width), height_.clamp(proposed.height)};
  }

  Bounds width_, height_;
};

class BackgroundNode final : public ModifierNode {
 public:
  BackgroundNode(LayoutNodePtr content, const ui::Color& color)
      : ModifierNode(std::move(content)), color_(color) {}

  void place(Size proposed, const Rect& frame, Placement& placement) override {
    placement.paint(color_, frame);
    content().place(proposed, frame, placement);
  }

 private:
  ui::Color color_;
};

class ClipNode final : public ModifierNode {
 public:
  ClipNode(LayoutNodePtr content, double cornerRadius)
      : ModifierNode(std::move(content)), cornerRadius_(cornerRadius) {}

  void place(Size proposed, const Rect& frame, Placement& placement) override {
    placement.enterClip(frame, cornerRadius_);
    content().place(proposed, frame, placement);
    placement.leaveClip();
  }

 private:
  double cornerRadius_;
};

}  // namespace

LayoutNodePtr nodeAround(LayoutNodePtr content, const ui::Padding& padding) {
  return std::make_unique<PaddingNode>(std::move(content), padding.insets);
}

LayoutNodePtr nodeAround(LayoutNodePtr content, const ui::Frame& frame) {
  return std::make_unique<FrameNode>(
      std::move(content), Bounds(frame.width, frame.width), Bounds(frame.height, frame.height));
}

LayoutNodePtr nodeAround(LayoutNodePtr content, const ui::FlexibleFrame& frame) {
  return std::make_unique<FrameNode>(
      std::move(content),
      Bounds(frame.minWidth, frame.maxWidth),
      Bounds(frame.minHeight, frame.maxHeight));
}

LayoutNodePtr nodeAround(LayoutNodePtr content, const ui::Background& background) {
  return std::make_unique<BackgroundNode>(std::move(content), background.color);
}

LayoutNodePtr nodeAround(LayoutNodePtr content, const ui::ClipShape& shape) {
  return std::make_unique<ClipNode>(std::move(content), shape.cornerRadius);
}

// A link takes no part in layout.
LayoutNodePtr nodeAround(LayoutNodePtr content, const ui::WidgetUrl& /*link*/) { return content; }

}  // namespace quillpad::drawing
