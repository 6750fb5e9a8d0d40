// Fetches the list of pending estimates.
#pragma once

#include "gateway/GatewayRequest.h"
#include "platform/foundation/Value.h"

namespace quillpad {

// Asks the gateway for the rows of this year's pending estimates and returns at once.
void getPendingData(FetchCallback<Array> callback);

}  // namespace quillpad
