// The present moment, which tests can hold still.
#pragma once

#include "platform/foundation/Value.h"

namespace quillpad {

// Now, to the millisecond; from any thread.
Date currentDate();

// While it lives, the clock of this process stands at the given moment. For tests; one at a time,
// and not while other threads read the clock.
class HeldClock {
 public:
  explicit HeldClock(Date moment);
  ~HeldClock();
  HeldClock(const HeldClock&) = delete;
  HeldClock& operator=(const HeldClock&) = delete;
};

}  // namespace quillpad
