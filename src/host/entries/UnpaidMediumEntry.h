// What the widget UnpaidMediumWidget shows from a moment on. A plain value.
#pragma once

#include "host/entries/Unpaid.h"
#include "platform/foundation/Value.h"

namespace quillpad {

struct UnpaidMediumEntry {
  Date date;
  Unpaid data;
};

}  // namespace quillpad
