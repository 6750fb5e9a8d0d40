// The medium widget of the pending estimates. A plain value.
#pragma once

#include "platform/foundation/Value.h"
#include "platform/ui/View.h"

namespace quillpad {

struct PendingMediumView {
  ui::View body() const;

  Array records;
};

}  // namespace quillpad
