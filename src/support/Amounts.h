// Amounts of money as the widgets show them. Callable from any thread.
#pragma once

#include <string>

#include "platform/foundation/Value.h"

namespace quillpad {

// The currency symbol of the business that the host application shows: the part of its "currency"
// before the first "-", without blanks ("€ - EUR" gives "€"), read from the shared settings at
// every call; "$" where no currency is set; that of the rendering where it has one. A currency that
// is not a text ends the process.
std::string currencySymbol();

// The amount in the current locale, grouped, with at most two decimals and no symbol: 1234.567 is
// "1,234.57", 0.5 is ".5".
std::string formattedAmount(double amount);

// The row's "total" behind the currency symbol: "$1,234.5". A total that is missing or not a number
// counts as 0.
std::string formattedTotal(const Dictionary& row);

}  // namespace quillpad
