#include "platform/layout/LayoutNode.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/layout/Tracer.h"

namespace quillpad::drawing {

Rect Placement::mirroredIfNeeded(const Rect& frame) const {
  return {mirrored_ ? width_ - frame.x - frame.width : frame.x, frame.y, frame.width, frame.height};
}

void Placement::paint(Painted content, const Rect& frame) {
  layout_.items.push_back({content, mirroredIfNeeded(frame), clip_});
}

void Placement::enterClip(const Rect& frame, double cornerRadius) {
  layout_.clips.push_back({mirroredIfNeeded(frame), cornerRadius, clip_});
  clip_ = static_cast<int>(layout_.clips.size()) - 1;
}

void Placement::leaveClip() { clip_ = layout_.clips[static_cast<std::size_t>(clip_)].outer; }

Size LayoutNode::size(Size proposed) {
  const auto known = std::ranges::find(answers_, proposed, &Answer::proposed);
  if (known != answers_.end()) {
    return known->size;
  }
  const Size size = measure(proposed);
  answers_.push_back({proposed, size});
  return size;
}

double LayoutNode::flexibility(ui::Axis axis, double proposedAcross) {
  if (flexibility_) {
    return *flexibility_;
  }
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const double longest = along(axis, size(sizeAlong(axis, infinity, proposedAcross)));
  const double shortest = along(axis, size(sizeAlong(axis, 0, proposedAcross)));
  const double flexibility = longest - shortest;
  if (keepsFlexibility_) {
    flexibility_ = flexibility;
  }
  return flexibility;
}

LayoutNodePtr nodeOf(const ui::View& view, const Surroundings& around) {
  if (around.tracer != nullptr) {
    return around.tracer->nodeOf(view, around);
  }
  LayoutNodePtr node =
      std::visit([&](const auto& content) { return nodeOf(content, around); }, view.content);
  for (const ui::Modifier& modifier : view.modifiers) {
    node = std::visit([&](const auto& one) { return nodeAround(std::move(node), one); }, modifier);
  }
  return node;
}

}  // namespace quillpad::drawing
