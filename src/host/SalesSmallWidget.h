// The widget of this month's sales. A value.
#pragma once

#include <string>

#include "platform/widgets/StaticConfiguration.h"

namespace quillpad {

struct SalesSmallWidget {
  widgets::WidgetConfiguration body() const;

  // Placed widgets are stored under it: it never changes.
  std::string kind = "SalesSmallWidget";
};

}  // namespace quillpad
