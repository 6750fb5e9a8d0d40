// The timeline of SalesSmallWidget. A stateless value.
#pragma once

#include "gateway/SalesData.h"
#include "host/FetchingProvider.h"
#include "host/ZeroSummary.h"
#include "host/entries/SalesSmallEntry.h"

namespace quillpad {

struct SalesSmallProvider : FetchingProvider<SalesSmallEntry, getSalesData, zeroSummary> {};

}  // namespace quillpad
