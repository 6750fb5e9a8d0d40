// The view of an entry of UnpaidMediumWidget. A plain value.
#pragma once

#include "host/entries/UnpaidMediumEntry.h"
#include "platform/ui/Environment.h"
#include "views/UnpaidMediumView.h"

namespace quillpad {

struct UnpaidMediumEntryView {
  UnpaidMediumView body() const { return {.records = entry.data.records}; }

  ui::WidgetFamily family;  // not consulted: there is one content, drawn for one family
  UnpaidMediumEntry entry;
};

}  // namespace quillpad
