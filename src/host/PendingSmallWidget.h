// The widget of the figure of pending estimates. A value.
#pragma once

#include <string>

#include "platform/widgets/StaticConfiguration.h"

namespace quillpad {

struct PendingSmallWidget {
  widgets::WidgetConfiguration body() const;

  // Placed widgets are stored under it: it never changes.
  std::string kind = "PendingSmallWidget";
};

}  // namespace quillpad
