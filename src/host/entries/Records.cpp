#include "host/entries/Records.h"

#include "platform/foundation/Fatal.h"

namespace quillpad {
namespace {

const Dictionary& membersOf(const Value& record) {
  return forcedAs<Dictionary>(record, "the record");
}

Value listValue(const Array& records) { return Dictionary{{"records", records}}; }

const Array& listRecords(const Value& value) {
  return forcedMember<Array>(membersOf(value), "records");
}

}  // namespace

Value Sales::toValue() const {
  return Dictionary{
      {"salesMonth", salesMonth},
      {"unpaidInvoices", unpaidInvoices},
      {"pendingEstimates", pendingEstimates}};
}

Sales Sales::fromValue(const Value& value) {
  const Dictionary& members = membersOf(value);
  return {
      .salesMonth = forcedMember<std::string>(members, "salesMonth"),
      .unpaidInvoices = forcedMember<std::string>(members, "unpaidInvoices"),
      .pendingEstimates = forcedMember<std::string>(members, "pendingEstimates")};
}

Value Unpaid::toValue() const { return listValue(records); }
Unpaid Unpaid::fromValue(const Value& value) { return {.records = listRecords(value)}; }

Value Pending::toValue() const { return listValue(records); }
Pending Pending::fromValue(const Value& value) { return {.records = listRecords(value)}; }

}  // namespace quillpad
