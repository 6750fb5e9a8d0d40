#include "platform/locale/Calendar.h"

#include <cstdint>
#include <ctime>

#include "platform/foundation/LocalTime.h"

namespace quillpad {
namespace {

using namespace std::chrono;

std::optional<Date> addingYears(int years, Date date) {
  std::tm fields = localTime(date);
  if (__builtin_add_overflow(fields.tm_year, years, &fields.tm_year)) {
    return std::nullopt;
  }
  const year target(fields.tm_year + 1900);
  if (target < year(1) || target > year(9999)) {
    return std::nullopt;
  }
  // 29 February goes to the 28th where the year has none.
  const year_month_day_last lastDay =
      target / month(static_cast<unsigned>(fields.tm_mon + 1)) / last;
  fields.tm_mday = std::min(fields.tm_mday, static_cast<int>(unsigned{lastDay.day()}));
  fields.tm_isdst = -1;
  const milliseconds fraction = date - floor<seconds>(date);
  return Date(seconds(std::mktime(&fields)) + fraction);
}

}  // namespace

std::optional<Date> Calendar::dateByAdding(
    CalendarComponent component, int value, Date date) const {
  if (component == CalendarComponent::year) {
    return addingYears(value, date);
  }
  std::int64_t sum = 0;
  if (__builtin_add_overflow(
          std::int64_t{date.time_since_epoch().count()},
          std::int64_t{milliseconds(minutes(value)).count()},
          &sum)) {
    return std::nullopt;
  }
  return Date(milliseconds(sum));
}

int Calendar::component(CalendarComponent component, Date date) const {
  const std::tm fields = localTime(date);
  return component == CalendarComponent::year ? fields.tm_year + 1900 : fields.tm_min;
}

}  // namespace quillpad
