#include "gateway/SalesData.h"

#include "platform/foundation/Fatal.h"
#include "platform/foundation/Json.h"

namespace quillpad {

using foundation::Dictionary;
using foundation::forcedAs;
using foundation::forcedMember;

void getSalesData(FetchCallback<Sales> callback) {
  const std::optional<std::string> businessId = checkedBusinessId();
  if (!businessId) {
    return;
  }
  const Dictionary body{{"businessId", *businessId}, {"currentTime", currentTimeString()}};
  postToGateway("/invoice/invoice/getDataMap", body, parseSales, std::move(callback));
}

Sales parseSales(std::string_view answer) {
  const auto document = foundation::readJson(answer, foundation::JsonFragments::allowed);
  if (!document) {
    foundation::fatal("SalesData line 58: the gateway's answer is not JSON");
  }
  const auto& members = forcedAs<Dictionary>(*document, "the gateway's answer");
  const auto& data = forcedMember<std::string>(members, "data");
  const Dictionary figures = dictionaryFromJSONString(data);
  const auto& salesMonth = forcedMember<foundation::Number>(figures, "salesMonth");
  const auto& unpaidInvoices = forcedMember<foundation::Number>(figures, "unpaidInvoices");
  const auto& pendingEstimates = forcedMember<foundation::Number>(figures, "pendingEstimates");
  return {
      .salesMonth = salesMonth.stringValue(),
      .unpaidInvoices = unpaidInvoices.stringValue(),
      .pendingEstimates = pendingEstimates.stringValue()};
}

}  // namespace quillpad
