// The widget of the figure of unpaid invoices. A value.
#pragma once

#include <string>

#include "platform/widgets/StaticConfiguration.h"

namespace quillpad {

struct UnpaidSmallWidget {
  widgets::WidgetConfiguration body() const;

  // Placed widgets are stored under it: it never changes.
  std::string kind = "UnpaidSmallWidget";
};

}  // namespace quillpad
