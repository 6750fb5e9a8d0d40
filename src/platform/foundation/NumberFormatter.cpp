#include "platform/foundation/NumberFormatter.h"

#include <string_view>
#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>

#include "platform/foundation/Locale.h"

namespace foundation {
namespace {

// Whether the pattern asks for integer digits. ICU itself puts one in where none is asked for.
bool namesIntegerDigit(std::string_view pattern) {
  return pattern.substr(0, pattern.find_first_of(".;")).contains('0');
}

}  // namespace

std::optional<std::string> NumberFormatter::string(double number) const {
  UErrorCode status = U_ZERO_ERROR;
  const icu::DecimalFormatSymbols symbols(
      icu::Locale(currentLocale(LocaleCategory::numbers).c_str()), status);
  icu::DecimalFormat format(icu::UnicodeString::fromUTF8(positiveFormat_), symbols, status);
  if (U_FAILURE(status)) return std::nullopt;
  if (!namesIntegerDigit(positiveFormat_)) format.setMinimumIntegerDigits(0);

  icu::UnicodeString text;
  format.format(number, text, nullptr, status);
  if (U_FAILURE(status)) return std::nullopt;
  std::string result;
  return text.toUTF8String(result);
}

}  // namespace foundation
