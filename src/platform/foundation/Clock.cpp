#include "platform/foundation/Clock.h"

#include <atomic>
#include <cstdint>
#include <limits>

namespace quillpad {
namespace {

using namespace std::chrono;

constexpr std::int64_t running = std::numeric_limits<std::int64_t>::min();
std::atomic<std::int64_t> heldMilliseconds{running};

}  // namespace

Date currentDate() {
  const std::int64_t held = heldMilliseconds.load();
  if (held != running) {
    return Date(milliseconds(held));
  }
  return floor<milliseconds>(system_clock::now());
}

HeldClock::HeldClock(Date moment) { heldMilliseconds = moment.time_since_epoch().count(); }
HeldClock::~HeldClock() { heldMilliseconds = running; }

}  // namespace quillpad
