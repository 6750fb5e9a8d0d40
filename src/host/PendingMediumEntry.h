// What the widget PendingMediumWidget shows from a moment on. A plain value.
#pragma once

#include "gateway/Pending.h"
#include "platform/foundation/Value.h"

namespace quillpad {

struct PendingMediumEntry {
  foundation::Date date;
  Pending data;
};

}  // namespace quillpad
