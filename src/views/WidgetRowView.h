// One row of a list: the client's name, the amount, and a hairline beneath. A plain value.
#pragma once

#include "platform/foundation/Value.h"
#include "platform/ui/View.h"

namespace quillpad {

struct WidgetRowView {
  ui::View body() const;

  // A row as the gateway sent it; "clientName" and "total" are shown.
  Dictionary item;
};

}  // namespace quillpad
