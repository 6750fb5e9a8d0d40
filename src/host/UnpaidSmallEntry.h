// What the widget UnpaidSmallWidget shows from a moment on. A plain value.
#pragma once

#include "gateway/Sales.h"
#include "platform/foundation/Value.h"

namespace quillpad {

struct UnpaidSmallEntry {
  foundation::Date date;
  Sales data;
};

}  // namespace quillpad
