// The small widget of this month's sales. A plain value; its name is the established one, not
// "SalesSmallView".
#pragma once

#include <string>

#include "platform/ui/View.h"

namespace quillpad {

struct SalesMallView {
  ui::View body() const;

  std::string salesMonth;  // a number's text
  std::string linkUrl;
};

}  // namespace quillpad
