#include "gateway/Fetches.h"
#include "platform/foundation/Fatal.h"
#include "platform/foundation/Json.h"

namespace quillpad {

void getSalesData(FetchCallback<Sales> callback) {
  const std::optional<std::string> businessId = checkedBusinessId();
  if (!businessId) {
    return;
  }
  const Dictionary body{{"businessId", *businessId}, {"currentTime", currentTimeString()}};
  postToGateway("/invoice/invoice/getDataMap", body, parseSales, std::move(callback));
}

Sales parseSales(std::string_view answer) {
  const auto document = readJson(answer, JsonFragments::allowed);
  if (!document) {
    fatal("SalesData line 58: the gateway's answer is not JSON");
  }
  const auto& members = forcedAs<Dictionary>(*document, "the gateway's answer");
  const auto& data = forcedMember<std::string>(members, "data");
  const Dictionary figures = dictionaryFromJSONString(data);
  const auto& salesMonth = forcedMember<Number>(figures, "salesMonth");
  const auto& unpaidInvoices = forcedMember<Number>(figures, "unpaidInvoices");
  const auto& pendingEstimates = forcedMember<Number>(figures, "pendingEstimates");
  return {
      .salesMonth = salesMonth.stringValue(),
      .unpaidInvoices = unpaidInvoices.stringValue(),
      .pendingEstimates = pendingEstimates.stringValue()};
}

}  // namespace quillpad
