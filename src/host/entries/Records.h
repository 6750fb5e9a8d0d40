// What the widgets show: the records that the fetches deliver and the home screen keeps. Plain
// values.
#pragma once

#include <string>

#include "platform/foundation/Value.h"

namespace quillpad {

// The sales summary of a business: three figures as texts, as the gateway's numbers read, without
// symbol, grouping or rounding.
struct Sales {
  Value toValue() const;
  // Ends the process for a value of another shape.
  static Sales fromValue(const Value& value);

  friend bool operator==(const Sales&, const Sales&) = default;

  std::string salesMonth;
  std::string unpaidInvoices;
  std::string pendingEstimates;
};

// The unpaid invoices: the rows as the gateway sent them, in its order, of any shape.
struct Unpaid {
  Value toValue() const;
  // Ends the process for a value of another shape.
  static Unpaid fromValue(const Value& value);

  friend bool operator==(const Unpaid&, const Unpaid&) = default;

  Array records;
};

// The pending estimates, in the same way.
struct Pending {
  Value toValue() const;
  // Ends the process for a value of another shape.
  static Pending fromValue(const Value& value);

  friend bool operator==(const Pending&, const Pending&) = default;

  Array records;
};

}  // namespace quillpad
