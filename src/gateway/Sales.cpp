#include "gateway/Sales.h"

#include "platform/foundation/Fatal.h"

namespace quillpad {

using foundation::Dictionary;
using foundation::forcedMember;

foundation::Value Sales::toValue() const {
  return Dictionary{
      {"salesMonth", salesMonth},
      {"unpaidInvoices", unpaidInvoices},
      {"pendingEstimates", pendingEstimates}};
}

Sales Sales::fromValue(const foundation::Value& value) {
  const auto& members = foundation::forcedAs<Dictionary>(value, "the record");
  return {
      .salesMonth = forcedMember<std::string>(members, "salesMonth"),
      .unpaidInvoices = forcedMember<std::string>(members, "unpaidInvoices"),
      .pendingEstimates = forcedMember<std::string>(members, "pendingEstimates")};
}

}  // namespace quillpad
