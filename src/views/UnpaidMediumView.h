// The medium widget of the unpaid invoices. A plain value.
#pragma once

#include "platform/foundation/Value.h"
#include "platform/ui/View.h"

namespace quillpad {

struct UnpaidMediumView {
  ui::View body() const;

  Array records;
};

}  // namespace quillpad
