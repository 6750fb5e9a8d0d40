#include "host/entries/Unpaid.h"

#include "platform/foundation/Fatal.h"

namespace quillpad {

Value Unpaid::toValue() const { return Dictionary{{"records", records}}; }

Unpaid Unpaid::fromValue(const Value& value) {
  const auto& members = forcedAs<Dictionary>(value, "the record");
  return {.records = forcedMember<Array>(members, "records")};
}

}  // namespace quillpad
