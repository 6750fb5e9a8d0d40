// The timeline of PendingMediumWidget. A stateless value.
#pragma once

#include "gateway/PendingData.h"
#include "host/FetchingProvider.h"
#include "host/SampleRows.h"
#include "host/entries/PendingMediumEntry.h"

namespace quillpad {

struct PendingMediumProvider : FetchingProvider<PendingMediumEntry, getPendingData, sampleRows> {};

}  // namespace quillpad
