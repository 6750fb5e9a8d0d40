// What the two list fetches have in common: the request for the first page of this year's documents
// of one kind, highest number first, and the parse of its answer.
#pragma once

#include <source_location>
#include <string>
#include <string_view>

#include "gateway/GatewayRequest.h"
#include "platform/foundation/Value.h"

namespace quillpad {

// The source unit that a broken answer is reported against.
struct ListSource {
  std::string_view notJson;    // for an answer that is not JSON, for example "UnpaidData line 82"
  std::source_location where;  // for every other breach
};

// The members in which the requests differ.
struct ListFilter {
  std::string statusField;
  std::string status;
  std::string type;
};

// Asks the gateway for the rows and returns at once.
void getRecords(const ListFilter& filter, ListSource source, FetchCallback<Array> callback);

// The rows in the gateway's answer, unchanged; an answer of another shape ends the process.
Array parseRecords(std::string_view answer, ListSource source);

}  // namespace quillpad
