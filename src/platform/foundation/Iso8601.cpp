#include "platform/foundation/Iso8601.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

namespace quillpad {

using namespace std::chrono;

std::string iso8601(Date date) {
  const auto day = floor<days>(date);
  const year_month_day calendarDay(day);
  const hh_mm_ss time(date - day);
  std::array<char, 64> text{};
  std::snprintf(
      text.data(),
      text.size(),
      "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ",
      int{calendarDay.year()},
      unsigned{calendarDay.month()},
      unsigned{calendarDay.day()},
      static_cast<int>(time.hours().count()),
      static_cast<int>(time.minutes().count()),
      static_cast<int>(time.seconds().count()),
      static_cast<int>(time.subseconds().count()));
  return text.data();
}

std::optional<Date> dateFromIso8601(std::string_view text) {
  constexpr std::string_view pattern = "0000-00-00T00:00:00.000Z";
  const auto fits = [](char form, char given) {
    return form == '0' ? given >= '0' && given <= '9' : form == given;
  };
  if (!std::ranges::equal(pattern, text, fits)) {
    return std::nullopt;
  }

  const auto field = [&](std::size_t start, std::size_t length) {
    int value = 0;
    std::from_chars(text.data() + start, text.data() + start + length, value);
    return value;
  };
  const year_month_day day(
      year(field(0, 4)),
      month(static_cast<unsigned>(field(5, 2))),
      std::chrono::day(static_cast<unsigned>(field(8, 2))));
  const int hour = field(11, 2);
  const int minute = field(14, 2);
  const int second = field(17, 2);
  if (!day.ok() || hour > 23 || minute > 59 || second > 59) {
    return std::nullopt;
  }
  return sys_days(day) + hours(hour) + minutes(minute) + seconds(second) +
         milliseconds(field(20, 3));
}

}  // namespace quillpad
