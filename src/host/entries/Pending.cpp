#include "host/entries/Pending.h"

#include "platform/foundation/Fatal.h"

namespace quillpad {

Value Pending::toValue() const { return Dictionary{{"records", records}}; }

Pending Pending::fromValue(const Value& value) {
  const auto& members = forcedAs<Dictionary>(value, "the record");
  return {.records = forcedMember<Array>(members, "records")};
}

}  // namespace quillpad
