// The view of an entry of SalesSmallWidget. A plain value.
#pragma once

#include "host/entries/SalesSmallEntry.h"
#include "platform/ui/Environment.h"
#include "views/SalesMallView.h"

namespace quillpad {

struct SalesSmallEntryView {
  SalesMallView body() const {
    return {.salesMonth = entry.data.salesMonth, .linkUrl = "quillpad://Report"};
  }

  ui::WidgetFamily family;  // not consulted: there is one content, drawn for one family
  SalesSmallEntry entry;
};

}  // namespace quillpad
