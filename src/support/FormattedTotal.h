// Amounts of money as the widgets show them.
#pragma once

#include <string>

#include "platform/foundation/Value.h"

namespace quillpad {

// The amount in the current locale, grouped, with at most two decimals and no symbol: 1234.567 is
// "1,234.57", 0.5 is ".5". Callable from any thread.
std::string formattedAmount(double amount);

// The row's "total" behind the currency symbol: "$1,234.5". A total that is missing or not a number
// counts as 0. Callable from any thread.
std::string formattedTotal(const Dictionary& row);

}  // namespace quillpad
