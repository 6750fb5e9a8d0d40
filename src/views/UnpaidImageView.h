// The round badge of the unpaid widget. A plain value.
#pragma once

#include "platform/ui/View.h"

namespace quillpad {

struct UnpaidImageView {
  ui::View body() const;
};

}  // namespace quillpad
