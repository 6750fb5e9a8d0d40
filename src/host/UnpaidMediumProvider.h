// The timeline of UnpaidMediumWidget. A stateless value.
#pragma once

#include "gateway/UnpaidData.h"
#include "host/FetchingProvider.h"
#include "host/SampleRows.h"
#include "host/entries/UnpaidMediumEntry.h"

namespace quillpad {

struct UnpaidMediumProvider : FetchingProvider<UnpaidMediumEntry, getUnpaidData, sampleRows> {};

}  // namespace quillpad
