// The device's time zone, as TZ or the system sets it. Callable from any thread, as long as none
// sets the environment.
#pragma once

#include <ctime>

#include "platform/foundation/Value.h"

namespace quillpad {

// The moment's fields on the device's wall clock, with its offset from UTC in tm_gmtoff.
std::tm localTime(Date date);

}  // namespace quillpad
