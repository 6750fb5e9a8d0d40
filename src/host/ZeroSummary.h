// The sales summary before any was fetched.
#pragma once

#include "host/entries/Sales.h"

namespace quillpad {

inline Sales zeroSummary() {
  return {.salesMonth = "0", .unpaidInvoices = "0", .pendingEstimates = "0"};
}

}  // namespace quillpad
