// The currency of the business that the host application shows.
#pragma once

#include <string>

namespace quillpad {

// The part of the current business's "currency" before the first "-", without blanks ("€ - EUR"
// gives "€"), read from the shared settings at every call; "$" where no currency is set. A currency
// that is not a text ends the process. Callable from any thread.
std::string currencySymbol();

}  // namespace quillpad
