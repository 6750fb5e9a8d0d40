#include "host/entries/Sales.h"

#include "platform/foundation/Fatal.h"

namespace quillpad {

Value Sales::toValue() const {
  return Dictionary{
      {"salesMonth", salesMonth},
      {"unpaidInvoices", unpaidInvoices},
      {"pendingEstimates", pendingEstimates}};
}

Sales Sales::fromValue(const Value& value) {
  const auto& members = forcedAs<Dictionary>(value, "the record");
  return {
      .salesMonth = forcedMember<std::string>(members, "salesMonth"),
      .unpaidInvoices = forcedMember<std::string>(members, "unpaidInvoices"),
      .pendingEstimates = forcedMember<std::string>(members, "pendingEstimates")};
}

}  // namespace quillpad
