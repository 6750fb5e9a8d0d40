#include "platform/foundation/LocalTime.h"

namespace quillpad {

std::tm localTime(Date date) {
  const std::time_t seconds =
      std::chrono::system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(date));
  std::tm fields{};
  tzset();  // localtime_r alone need not notice that TZ changed
  localtime_r(&seconds, &fields);
  return fields;
}

}  // namespace quillpad
