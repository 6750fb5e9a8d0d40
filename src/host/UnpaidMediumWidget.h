// The widget that lists unpaid invoices. A value.
#pragma once

#include <string>

#include "platform/widgets/StaticConfiguration.h"

namespace quillpad {

struct UnpaidMediumWidget {
  widgets::WidgetConfiguration body() const;

  // Placed widgets are stored under it: it never changes.
  std::string kind = "UnpaidMediumWidget";
};

}  // namespace quillpad
