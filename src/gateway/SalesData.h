// Fetches the sales summary.
#pragma once

#include <string_view>

#include "gateway/GatewayRequest.h"
#include "host/entries/Sales.h"

namespace quillpad {

// Asks the gateway for the figures of the current business and returns at once.
void getSalesData(FetchCallback<Sales> callback);

// The figures in the gateway's answer; an answer of another shape ends the process.
Sales parseSales(std::string_view answer);

}  // namespace quillpad
