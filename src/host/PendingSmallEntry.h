// What the widget PendingSmallWidget shows from a moment on. A plain value.
#pragma once

#include "gateway/Sales.h"
#include "platform/foundation/Value.h"

namespace quillpad {

struct PendingSmallEntry {
  foundation::Date date;
  Sales data;
};

}  // namespace quillpad
