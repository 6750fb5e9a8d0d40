// The three fetches. Each asks the gateway and returns at once; the callback gets what was fetched,
// or the transport's error, on the URL session's own thread.
//
// The unit and line that an answer that is not JSON ends the process with, "SalesData line 58", are
// no place in these files: crash reports are searched for this text, so it stays as it is.
#pragma once

#include <string_view>

#include "gateway/GatewayRequest.h"
#include "host/entries/Records.h"
#include "platform/foundation/Value.h"

namespace quillpad {

// The figures of the current business.
void getSalesData(FetchCallback<Sales> callback);

// The rows of this year's unpaid invoices.
void getUnpaidData(FetchCallback<Array> callback);

// The rows of this year's pending estimates.
void getPendingData(FetchCallback<Array> callback);

// The figures in the gateway's answer; an answer of another shape ends the process.
Sales parseSales(std::string_view answer);

}  // namespace quillpad
