// The timeline of PendingSmallWidget. A stateless value.
#pragma once

#include "gateway/SalesData.h"
#include "host/FetchingProvider.h"
#include "host/PendingSmallEntry.h"
#include "host/ZeroSummary.h"

namespace quillpad {

struct PendingSmallProvider : FetchingProvider<PendingSmallEntry, getSalesData, zeroSummary> {};

}  // namespace quillpad
