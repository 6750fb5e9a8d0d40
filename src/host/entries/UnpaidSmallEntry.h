// What the widget UnpaidSmallWidget shows from a moment on. A plain value.
#pragma once

#include "host/entries/Sales.h"
#include "platform/foundation/Value.h"

namespace quillpad {

struct UnpaidSmallEntry {
  Date date;
  Sales data;
};

}  // namespace quillpad
