// The list of pending estimates. A plain value.
#pragma once

#include "platform/foundation/Value.h"

namespace quillpad {

// The rows as the gateway sent them, in its order; nothing is known of what they hold.
struct Pending {
  Value toValue() const;
  // Ends the process for a value of another shape.
  static Pending fromValue(const Value& value);

  friend bool operator==(const Pending&, const Pending&) = default;

  Array records;
};

}  // namespace quillpad
