// The medium widgets: a coloured header above the first three rows of a list. Plain values.
#pragma once

#include "platform/foundation/Value.h"
#include "platform/ui/View.h"

namespace quillpad {

// A shown record that is not a dictionary ends the process; those after the third are not looked
// at.
struct UnpaidMediumView {
  ui::View body() const;

  Array records;
};

struct PendingMediumView {
  ui::View body() const;

  Array records;
};

// One row: the client's name, the amount, and a hairline beneath.
struct WidgetRowView {
  ui::View body() const;

  // A row as the gateway sent it; "clientName" and "total" are shown.
  Dictionary item;
};

}  // namespace quillpad
