// The timeline of PendingSmallWidget. A stateless value.
#pragma once

#include "gateway/SalesData.h"
#include "host/FetchingProvider.h"
#include "host/ZeroSummary.h"
#include "host/entries/PendingSmallEntry.h"

namespace quillpad {

struct PendingSmallProvider : FetchingProvider<PendingSmallEntry, getSalesData, zeroSummary> {};

}  // namespace quillpad
