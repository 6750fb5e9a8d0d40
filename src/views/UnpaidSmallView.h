// The small widget of the unpaid invoices. A plain value.
#pragma once

#include <string>

#include "platform/ui/View.h"

namespace quillpad {

struct UnpaidSmallView {
  ui::View body() const;

  std::string unpaidInvoices;  // shown as it is
};

}  // namespace quillpad
