// The small widgets: one figure of the sales summary each. Plain values.
#pragma once

#include <string>

#include "platform/ui/View.h"

namespace quillpad {

// The established name, not "SalesSmallView".
struct SalesMallView {
  ui::View body() const;

  std::string salesMonth;  // a number's text
  std::string linkUrl;
};

struct UnpaidSmallView {
  ui::View body() const;

  std::string unpaidInvoices;  // shown as it is
};

struct PendingSmallView {
  ui::View body() const;

  std::string pendingEstimates;  // shown as it is
};

// The figure of the sales widget: the amount behind the currency symbol, "$1,234.5"; from 9999.99
// on, and for what is not less than that, the fixed text ">$9,999.99" in every locale. A text that
// is not a number ends the process. Callable from any thread.
std::string salesAmountText(const std::string& salesMonth);

}  // namespace quillpad
