// The view of an entry of PendingMediumWidget. A plain value.
#pragma once

#include "host/entries/PendingMediumEntry.h"
#include "platform/ui/Environment.h"
#include "views/PendingMediumView.h"

namespace quillpad {

struct PendingMediumEntryView {
  PendingMediumView body() const { return {.records = entry.data.records}; }

  ui::WidgetFamily family;  // not consulted: there is one content, drawn for one family
  PendingMediumEntry entry;
};

}  // namespace quillpad
