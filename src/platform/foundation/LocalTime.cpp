#include "platform/foundation/LocalTime.h"

#include <array>

namespace quillpad {

std::tm localTime(Date date) {
  const std::time_t seconds =
      std::chrono::floor<std::chrono::seconds>(date).time_since_epoch().count();
  std::tm fields{};
  tzset();  // localtime_r alone need not notice that TZ changed
  localtime_r(&seconds, &fields);
  return fields;
}

std::string localTimeText(Date date, const char* format) {
  const std::tm fields = localTime(date);
  std::array<char, 64> text{};
  return {text.data(), std::strftime(text.data(), text.size(), format, &fields)};
}

}  // namespace quillpad
