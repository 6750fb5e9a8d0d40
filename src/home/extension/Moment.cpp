#include "home/extension/Moment.h"

#include <ctime>

#include "platform/foundation/Clock.h"

namespace quillpad::home {

Moment presentMoment() {
  timespec time{};
  ::clock_gettime(CLOCK_BOOTTIME, &time);
  return {
      .date = currentDate(),
      .uptime = std::chrono::duration_cast<Uptime>(
          std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec))};
}

}  // namespace quillpad::home
