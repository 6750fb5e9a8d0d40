// What the widget UnpaidMediumWidget shows from a moment on. A plain value.
#pragma once

#include "gateway/Unpaid.h"
#include "platform/foundation/Value.h"

namespace quillpad {

struct UnpaidMediumEntry {
  foundation::Date date;
  Unpaid data;
};

}  // namespace quillpad
