// The widget that lists pending estimates. A value.
#pragma once

#include <string>

#include "platform/widgets/StaticConfiguration.h"

namespace quillpad {

struct PendingMediumWidget {
  widgets::WidgetConfiguration body() const;

  // Placed widgets are stored under it: it never changes.
  std::string kind = "PendingMediumWidget";
};

}  // namespace quillpad
