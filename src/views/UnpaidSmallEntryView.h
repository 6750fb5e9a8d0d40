// The view of an entry of UnpaidSmallWidget. A plain value.
#pragma once

#include "host/entries/UnpaidSmallEntry.h"
#include "platform/ui/Environment.h"
#include "views/UnpaidSmallView.h"

namespace quillpad {

struct UnpaidSmallEntryView {
  UnpaidSmallView body() const { return {.unpaidInvoices = entry.data.unpaidInvoices}; }

  ui::WidgetFamily family;  // not consulted: there is one content, drawn for one family
  UnpaidSmallEntry entry;
};

}  // namespace quillpad
