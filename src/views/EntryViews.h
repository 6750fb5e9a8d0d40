// The views of the five widgets' entries: each picks the one field that its content shows. Plain
// values. The family is not consulted: each widget has one content, drawn for one family.
#pragma once

#include "host/entries/Entries.h"
#include "platform/ui/Environment.h"
#include "views/ListViews.h"
#include "views/SmallViews.h"

namespace quillpad {

struct SalesSmallEntryView {
  SalesMallView body() const {
    return {.salesMonth = entry.data.salesMonth, .linkUrl = "quillpad://Report"};
  }

  ui::WidgetFamily family;
  SalesSmallEntry entry;
};

struct UnpaidSmallEntryView {
  UnpaidSmallView body() const { return {.unpaidInvoices = entry.data.unpaidInvoices}; }

  ui::WidgetFamily family;
  UnpaidSmallEntry entry;
};

struct PendingSmallEntryView {
  PendingSmallView body() const { return {.pendingEstimates = entry.data.pendingEstimates}; }

  ui::WidgetFamily family;
  PendingSmallEntry entry;
};

struct UnpaidMediumEntryView {
  UnpaidMediumView body() const { return {.records = entry.data.records}; }

  ui::WidgetFamily family;
  UnpaidMediumEntry entry;
};

struct PendingMediumEntryView {
  PendingMediumView body() const { return {.records = entry.data.records}; }

  ui::WidgetFamily family;
  PendingMediumEntry entry;
};

}  // namespace quillpad
