// The present moment, which tests can hold still.
#pragma once

#include <optional>
#include <string>
#include <string_view>

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

// The moment as "2026-03-07T09:05:03.250Z".
std::string iso8601(Date date);

// The moment that such a text names, or nothing if it is of another form.
std::optional<Date> dateFromIso8601(std::string_view text);

}  // namespace quillpad
