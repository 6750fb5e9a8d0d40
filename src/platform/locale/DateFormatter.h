// Moments as text, in the current locale and the device's time zone. A value of one thread.
#pragma once

#include <string>

#include "platform/foundation/Value.h"

namespace quillpad {

class DateFormatter {
 public:
  // The Unicode date pattern to write with, for example "yyyy-MM-dd HH:mm:ss".
  void setDateFormat(std::string pattern) { pattern_ = std::move(pattern); }

  // The moment in the current locale's calendar and digits, and in local time.
  std::string string(Date date) const;

 private:
  std::string pattern_;
};

}  // namespace quillpad
