// The extension's widgets. A stateless value.
#pragma once

#include <vector>

#include "platform/widgets/StaticConfiguration.h"

namespace quillpad {

struct Widgets {
  // In the order in which the home screen lists them.
  std::vector<widgets::WidgetConfiguration> body() const;
};

}  // namespace quillpad
