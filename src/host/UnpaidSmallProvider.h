// The timeline of UnpaidSmallWidget. A stateless value.
#pragma once

#include "gateway/SalesData.h"
#include "host/FetchingProvider.h"
#include "host/ZeroSummary.h"
#include "host/entries/UnpaidSmallEntry.h"

namespace quillpad {

struct UnpaidSmallProvider : FetchingProvider<UnpaidSmallEntry, getSalesData, zeroSummary> {};

}  // namespace quillpad
