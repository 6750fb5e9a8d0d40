#include "gateway/DocumentList.h"

#include "platform/foundation/Fatal.h"
#include "platform/foundation/Json.h"
#include "support/SortTool.h"

namespace quillpad {
namespace {

std::string currentYearText() {
  const std::string time = currentTimeString();
  return time.substr(0, time.find('-'));
}

}  // namespace

void getRecords(const ListFilter& filter, ListSource source, FetchCallback<Array> callback) {
  const std::optional<std::string> businessId = checkedBusinessId();
  if (!businessId) {
    return;
  }
  // Each bound reads the clock for itself: at midnight of New Year the years may differ.
  const std::string startTime = SortTool::startTimeWithYear(currentYearText());
  const std::string endTime = SortTool::endTImeWithYear(currentYearText());
  const Dictionary body{
      {"businessId", *businessId},
      {"currentPage", "1"},
      {"endTime", endTime},
      {filter.statusField, filter.status},
      {"isValid", "1"},
      {"pageSize", "3"},
      {"searchType", "2"},
      {"sort", "no"},
      {"sortType", "desc"},
      {"startTime", startTime},
      {"type", filter.type}};
  postToGateway(
      "/invoice/invoice/listFast",
      body,
      [source](std::string_view answer) { return parseRecords(answer, source); },
      std::move(callback));
}

Array parseRecords(std::string_view answer, ListSource source) {
  const auto document = readJson(answer, JsonFragments::refused);
  if (!document) {
    fatal(std::string(source.notJson) + ": the gateway's answer is not a JSON object or array");
  }
  const auto& members = forcedAs<Dictionary>(*document, "the gateway's answer", source.where);
  const auto& data = forcedMember<std::string>(members, "data", source.where);
  const Dictionary list = dictionaryFromJSONString(data, source.where);
  return forcedMember<Array>(list, "records", source.where);
}

}  // namespace quillpad
