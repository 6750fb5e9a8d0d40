// The list of unpaid invoices. A plain value.
#pragma once

#include "platform/foundation/Value.h"

namespace quillpad {

// The rows as the gateway sent them, in its order; nothing is known of what they hold.
struct Unpaid {
  Value toValue() const;
  // Ends the process for a value of another shape.
  static Unpaid fromValue(const Value& value);

  friend bool operator==(const Unpaid&, const Unpaid&) = default;

  Array records;
};

}  // namespace quillpad
