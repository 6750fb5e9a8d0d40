#include "platform/locale/DateFormatter.h"

#include <unicode/locid.h>
#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>

#include "platform/foundation/Fatal.h"
#include "platform/foundation/LocalTime.h"
#include "platform/foundation/Locale.h"

namespace quillpad {

std::string DateFormatter::string(Date date) const {
  // The C library knows every form of TZ and needs no tables of ICU for it: its offset at this
  // moment is the whole zone that one text needs.
  const auto offset = static_cast<std::int32_t>(localTime(date).tm_gmtoff * 1000);

  UErrorCode status = U_ZERO_ERROR;
  icu::SimpleDateFormat format(
      icu::UnicodeString::fromUTF8(pattern_),
      icu::Locale(currentLocale(LocaleCategory::dates).c_str()),
      status);
  if (U_FAILURE(status)) {
    fatalAt(std::source_location::current(), u_errorName(status));
  }
  format.setTimeZone(icu::SimpleTimeZone(offset, u"local"));

  icu::UnicodeString text;
  format.format(static_cast<UDate>(date.time_since_epoch().count()), text);
  std::string result;
  return text.toUTF8String(result);
}

}  // namespace quillpad
