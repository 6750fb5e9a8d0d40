#include "platform/layout/LayoutTrace.h"

#include <algorithm>
#include <utility>

#include "platform/layout/Tracer.h"
#include "platform/text/SystemFont.h"

namespace quillpad::drawing {
namespace {

// What the text takes of a large offer, where not all of it is in its frame.
std::optional<Size> wholeText(const ui::Text& text, const TracedNode& node, Metrics& metrics) {
  const double size = text.textFont.size;
  const double oneMoreLine = 1.5 * systemLineHeight(size);
  const Size longer =
      metrics.textSize(text, {node.proposed.width, node.frame.height + oneMoreLine});
  return longer.height > node.frame.height
             ? std::optional(metrics.textSize(
                   text, {wholeTextOffer.width * size, wholeTextOffer.height * size}))
             : std::nullopt;
}

bool isPainted(const TracedNode& node) {
  return node.modifier == nullptr && (std::holds_alternative<ui::Text>(node.view->content) ||
                                      std::holds_alternative<ui::Image>(node.view->content) ||
                                      std::holds_alternative<ui::Rectangle>(node.view->content));
}

class Examination {
 public:
  Examination(const LayoutTrace& trace, Size size, double scale)
      : nodes_(trace.nodes), card_{0, 0, size.width, size.height}, tolerance_(0.5 / scale + 1e-6) {}

  std::vector<Finding> findings() && {
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
      examine(i);
    }
    return std::move(findings_);
  }

 private:
  void examine(std::size_t i) {
    const TracedNode& node = nodes_[i];
    if (node.whole) {
      findings_.push_back({.kind = Finding::Kind::cutOff, .node = static_cast<int>(i)});
    }
    if (node.parent < 0) {
      const std::size_t cause = causeOf(i, card_);
      if (!isPainted(nodes_[cause])) {
        report(Finding::Kind::leavesTheCard, cause, card_);
      }
    } else if (const TracedNode& parent = nodes_[static_cast<std::size_t>(node.parent)];
               !isPadding(parent)) {
      report(Finding::Kind::overflows, causeOf(i, parent.frame), parent.frame);
    }
    if (isPainted(node)) {
      report(Finding::Kind::leavesTheCard, i, card_);
    }
  }

  // Of a node that sticks out of the bounds and what it modifies the innermost that does.
  std::size_t causeOf(std::size_t i, const Rect& bounds) const {
    while (nodes_[i].modifier != nullptr && beyond(nodes_[i].frame, bounds) &&
           beyond(nodes_[i + 1].frame, bounds)) {
      ++i;
    }
    return i;
  }

  // A padding is as large as its insets want it to be, negative ones too.
  static bool isPadding(const TracedNode& node) {
    return node.modifier != nullptr && std::holds_alternative<ui::Padding>(*node.modifier);
  }

  std::optional<ui::EdgeInsets> beyond(const Rect& frame, const Rect& bounds) const {
    const auto length = [&](double points) { return points > tolerance_ ? points : 0; };
    const ui::EdgeInsets sides{
        .top = length(bounds.y - frame.y),
        .leading = length(bounds.x - frame.x),
        .bottom = length(frame.y + frame.height - bounds.y - bounds.height),
        .trailing = length(frame.x + frame.width - bounds.x - bounds.width)};
    return sides.top + sides.leading + sides.bottom + sides.trailing > 0 ? std::optional(sides)
                                                                         : std::nullopt;
  }

  void report(Finding::Kind kind, std::size_t i, const Rect& bounds) {
    if (const auto sides = beyond(nodes_[i].frame, bounds)) {
      findings_.push_back({.kind = kind, .node = static_cast<int>(i), .beyond = *sides});
    }
  }

  const std::vector<TracedNode>& nodes_;
  Rect card_;
  double tolerance_;
  std::vector<Finding> findings_;
};

}  // namespace

LayoutTrace traceLayout(
    const ui::View& view, Size size, LayoutDirection direction, Metrics& metrics) {
  Tracer tracer;
  Layout layout = layOut(view, size, direction, {.metrics = metrics, .tracer = &tracer});
  LayoutTrace trace = tracer.take();
  trace.layout = std::move(layout);
  trace.itemNodes.resize(trace.layout.items.size(), -1);
  for (TracedNode& node : trace.nodes) {
    const auto* text = std::get_if<ui::Text>(&node.view->content);
    if (text != nullptr && node.modifier == nullptr) {
      node.whole = wholeText(*text, node, metrics);
    }
  }
  return trace;
}

std::vector<Finding> findingsOf(const LayoutTrace& trace, Size size, double scale) {
  return Examination(trace, size, scale).findings();
}

}  // namespace quillpad::drawing
