// The timelines of the five widgets: what each fetches, and what it shows without. Stateless
// values.
#pragma once

#include "gateway/Fetches.h"
#include "host/FetchingProvider.h"
#include "host/entries/Entries.h"

namespace quillpad {

// The figures where none were fetched.
inline Sales zeroSummary() {
  return {.salesMonth = "0", .unpaidInvoices = "0", .pendingEstimates = "0"};
}

// The rows where none were fetched, the same for invoices and estimates. The blank behind the last
// name is the product's.
inline Array sampleRows() {
  return {
      Dictionary{{"no", "32"}, {"clientName", "Preivon"}, {"total", 23.89}},
      Dictionary{{"no", "28"}, {"clientName", "Dreifles"}, {"total", 132.23}},
      Dictionary{{"no", "15"}, {"clientName", "Lucien Holmes "}, {"total", 98.13}}};
}

struct SalesSmallProvider : FetchingProvider<SalesSmallEntry, getSalesData, zeroSummary> {};
struct UnpaidSmallProvider : FetchingProvider<UnpaidSmallEntry, getSalesData, zeroSummary> {};
struct PendingSmallProvider : FetchingProvider<PendingSmallEntry, getSalesData, zeroSummary> {};
struct UnpaidMediumProvider : FetchingProvider<UnpaidMediumEntry, getUnpaidData, sampleRows> {};
struct PendingMediumProvider : FetchingProvider<PendingMediumEntry, getPendingData, sampleRows> {};

}  // namespace quillpad
