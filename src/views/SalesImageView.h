// The round badge of the sales widget. A plain value.
#pragma once

#include "platform/ui/View.h"

namespace quillpad {

struct SalesImageView {
  ui::View body() const;
};

}  // namespace quillpad
