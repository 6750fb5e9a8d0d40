// The timeline entries of the five widgets: what each shows from a date on. Plain values; each
// widget has a type of its own, so that its provider and its view fit no other.
#pragma once

#include "host/entries/Records.h"
#include "platform/foundation/Value.h"

namespace quillpad {

struct SalesSmallEntry {
  Date date;
  Sales data;
};

struct UnpaidSmallEntry {
  Date date;
  Sales data;
};

struct PendingSmallEntry {
  Date date;
  Sales data;
};

struct UnpaidMediumEntry {
  Date date;
  Unpaid data;
};

struct PendingMediumEntry {
  Date date;
  Pending data;
};

}  // namespace quillpad
