// The round badge of the pending widget. A plain value.
#pragma once

#include "platform/ui/View.h"

namespace quillpad {

struct PendingImageView {
  ui::View body() const;
};

}  // namespace quillpad
