// The device's calendar: Gregorian, in local time. A stateless value.
#pragma once

#include <optional>

#include "platform/foundation/Value.h"

namespace quillpad {

enum class CalendarComponent { year, minute };

class Calendar {
 public:
  static Calendar current() { return {}; }

  // The moment that lies `value` components after `date`, or nothing where the calendar has no such
  // moment.
  std::optional<Date> dateByAdding(CalendarComponent component, int value, Date date) const;

  // The component of the moment, for example its year.
  int component(CalendarComponent component, Date date) const;
};

}  // namespace quillpad
