// The extension's widgets and their declarations. Values.
#pragma once

#include <string>
#include <vector>

#include "platform/widgets/StaticConfiguration.h"

namespace quillpad {

// Placed widgets are stored under their kind: a kind never changes.

struct SalesSmallWidget {
  widgets::WidgetConfiguration body() const;
  std::string kind = "SalesSmallWidget";
};

struct UnpaidSmallWidget {
  widgets::WidgetConfiguration body() const;
  std::string kind = "UnpaidSmallWidget";
};

struct PendingSmallWidget {
  widgets::WidgetConfiguration body() const;
  std::string kind = "PendingSmallWidget";
};

struct UnpaidMediumWidget {
  widgets::WidgetConfiguration body() const;
  std::string kind = "UnpaidMediumWidget";
};

struct PendingMediumWidget {
  widgets::WidgetConfiguration body() const;
  std::string kind = "PendingMediumWidget";
};

struct Widgets {
  // In the order in which the home screen lists them.
  std::vector<widgets::WidgetConfiguration> body() const;
};

}  // namespace quillpad
