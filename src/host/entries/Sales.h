// The sales summary of a business. A plain value.
#pragma once

#include <string>

#include "platform/foundation/Value.h"

namespace quillpad {

// Three figures as texts, as the gateway's numbers read: no symbol, no grouping, no rounding.
struct Sales {
  Value toValue() const;
  // Ends the process for a value of another shape.
  static Sales fromValue(const Value& value);

  friend bool operator==(const Sales&, const Sales&) = default;

  std::string salesMonth;
  std::string unpaidInvoices;
  std::string pendingEstimates;
};

}  // namespace quillpad
