// The view of an entry of PendingSmallWidget. A plain value.
#pragma once

#include "host/entries/PendingSmallEntry.h"
#include "platform/ui/Environment.h"
#include "views/PendingSmallView.h"

namespace quillpad {

struct PendingSmallEntryView {
  PendingSmallView body() const { return {.pendingEstimates = entry.data.pendingEstimates}; }

  ui::WidgetFamily family;  // not consulted: there is one content, drawn for one family
  PendingSmallEntry entry;
};

}  // namespace quillpad
