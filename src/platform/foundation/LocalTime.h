// The device's wall clock, in the time zone that TZ or the system sets. Callable from any thread,
// as long as none sets the environment.
#pragma once

#include <ctime>
#include <string>

#include "platform/foundation/Value.h"

namespace quillpad {

// The moment's fields on the wall clock, with its offset from UTC in tm_gmtoff.
std::tm localTime(Date date);

// The moment as strftime's format says, for example "%Y-%m-%d %H:%M:%S": in the Gregorian calendar
// and in ASCII digits whatever the locale, as texts for another program have to be.
std::string localTimeText(Date date, const char* format);

}  // namespace quillpad
