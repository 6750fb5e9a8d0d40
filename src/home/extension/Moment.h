// A moment on both clocks: the date that people read, and the time since the machine started, which
// nobody sets. A plain value.
#pragma once

#include <chrono>

#include "platform/foundation/Value.h"

namespace quillpad::home {

// Time since the machine started, its sleep included.
using Uptime = std::chrono::milliseconds;

struct Moment {
  Date date;
  Uptime uptime{};
};

// From any thread.
Moment presentMoment();

}  // namespace quillpad::home
