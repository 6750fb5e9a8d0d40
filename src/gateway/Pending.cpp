#include "gateway/Pending.h"

#include "platform/foundation/Fatal.h"

namespace quillpad {

foundation::Value Pending::toValue() const { return foundation::Dictionary{{"records", records}}; }

Pending Pending::fromValue(const foundation::Value& value) {
  const auto& members = foundation::forcedAs<foundation::Dictionary>(value, "the record");
  return {.records = foundation::forcedMember<foundation::Array>(members, "records")};
}

}  // namespace quillpad
