#include "gateway/Unpaid.h"

#include "platform/foundation/Fatal.h"

namespace quillpad {

foundation::Value Unpaid::toValue() const { return foundation::Dictionary{{"records", records}}; }

Unpaid Unpaid::fromValue(const foundation::Value& value) {
  const auto& members = foundation::forcedAs<foundation::Dictionary>(value, "the record");
  return {.records = foundation::forcedMember<foundation::Array>(members, "records")};
}

}  // namespace quillpad
