// Fetches the list of unpaid invoices.
#pragma once

#include "gateway/GatewayRequest.h"
#include "platform/foundation/Value.h"

namespace quillpad {

// Asks the gateway for the rows of this year's unpaid invoices and returns at once.
void getUnpaidData(FetchCallback<Array> callback);

}  // namespace quillpad
