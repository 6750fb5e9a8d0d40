// What the three image views have in common: a picture of 20 points on a disc of 32. A plain value.
#pragma once

#include <string>

#include "platform/ui/View.h"

namespace quillpad {

struct Badge {
  ui::View body() const;

  std::string picture;  // its name in the bundle
  ui::Color color;
};

}  // namespace quillpad
