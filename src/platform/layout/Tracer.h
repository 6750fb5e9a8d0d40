// Takes down a layout: sits between each node and what is around it. Belongs to one thread.
#pragma once

#include "platform/layout/LayoutNode.h"
#include "platform/layout/LayoutTrace.h"

namespace quillpad::drawing {

class Tracer {
 public:
  // The view's node, as it is without a tracer, with the view's content and each of its modifiers
  // watched. Behind maximumTracedNodes views are left alone.
  LayoutNodePtr nodeOf(const ui::View& view, const Surroundings& around);

  // All but the layout; complete once the layout is placed.
  LayoutTrace take() { return std::move(trace_); }

 private:
  class Watch;

  LayoutTrace trace_;
  int parent_ = -1;  // of the view whose node is made next
};

}  // namespace quillpad::drawing
