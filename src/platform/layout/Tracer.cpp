#include "platform/layout/Tracer.h"

#include <algorithm>
#include <ranges>
#include <utility>

namespace quillpad::drawing {

// Around a node: asks it what it is asked itself, and takes down how it is placed.
class Tracer::Watch final : public LayoutNode {
 public:
  Watch(LayoutNodePtr content, LayoutTrace& trace, std::size_t node)
      : LayoutNode(content->spacing(), content->isSpacer()),
        content_(std::move(content)),
        trace_(trace),
        node_(node) {}

  void takeTurn(int turn) override { trace_.nodes[node_].turn = turn; }

  void place(Size proposed, const Rect& frame, Placement& placement) override {
    trace_.nodes[node_].proposed = proposed;
    trace_.nodes[node_].frame = placement.mirroredIfNeeded(frame);
    const std::size_t first = placement.itemCount();
    content_->place(proposed, frame, placement);
    trace_.itemNodes.resize(placement.itemCount(), -1);
    // What is further inside has taken its own.
    std::ranges::replace(trace_.itemNodes | std::views::drop(first), -1, static_cast<int>(node_));
  }

 private:
  Size measure(Size proposed) override { return content_->size(proposed); }

  LayoutNodePtr content_;
  LayoutTrace& trace_;
  std::size_t node_;
};

LayoutNodePtr Tracer::nodeOf(const ui::View& view, const Surroundings& around) {
  auto& nodes = trace_.nodes;
  const std::size_t modifiers = view.modifiers.size();
  if (!trace_.complete || nodes.size() + modifiers + 1 > maximumTracedNodes) {
    trace_.complete = false;
    Surroundings unwatched = around;
    unwatched.tracer = nullptr;
    return drawing::nodeOf(view, unwatched);
  }
  const int parent = parent_;
  const auto take = [&](const ui::Modifier* modifier) {
    nodes.push_back({.view = &view, .modifier = modifier, .parent = parent_});
    parent_ = static_cast<int>(nodes.size()) - 1;
  };
  for (std::size_t i = modifiers; i > 0; --i) {
    take(&view.modifiers[i - 1]);
  }
  take(nullptr);
  auto at = static_cast<std::size_t>(parent_);

  LayoutNodePtr node = std::make_unique<Watch>(
      std::visit([&](const auto& one) { return drawing::nodeOf(one, around); }, view.content),
      trace_,
      at);
  for (const ui::Modifier& modifier : view.modifiers) {
    node = std::make_unique<Watch>(
        std::visit([&](const auto& one) { return nodeAround(std::move(node), one); }, modifier),
        trace_,
        --at);
  }
  parent_ = parent;
  return node;
}

}  // namespace quillpad::drawing
