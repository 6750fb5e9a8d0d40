// The small widget of the pending estimates. A plain value.
#pragma once

#include <string>

#include "platform/ui/View.h"

namespace quillpad {

struct PendingSmallView {
  ui::View body() const;

  std::string pendingEstimates;  // shown as it is
};

}  // namespace quillpad
