// What the widget PendingMediumWidget shows from a moment on. A plain value.
#pragma once

#include "host/entries/Pending.h"
#include "platform/foundation/Value.h"

namespace quillpad {

struct PendingMediumEntry {
  Date date;
  Pending data;
};

}  // namespace quillpad
