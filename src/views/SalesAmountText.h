// The figure of the sales widget.
#pragma once

#include <string>

namespace quillpad {

// The amount behind the currency symbol, "$1,234.5"; from 9999.99 on, and for what is not less than
// that, the fixed text ">$9,999.99" in every locale. A text that is not a number ends the process.
// Callable from any thread.
std::string salesAmountText(const std::string& salesMonth);

}  // namespace quillpad
