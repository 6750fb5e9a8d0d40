#include "platform/locale/NumberFormatter.h"

#include <memory>
#include <string_view>
#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <utility>

#include "platform/foundation/Locale.h"

namespace quillpad {
namespace {

// Whether the pattern asks for integer digits. ICU itself puts one in where none is asked for.
bool namesIntegerDigit(std::string_view pattern) {
  return pattern.substr(0, pattern.find_first_of(".;")).contains('0');
}

// A formatter of ICU and what it was made for. Making one takes fifty times as long as using it, so
// each thread keeps its last one.
struct KeptFormat {
  std::string locale;
  std::string pattern;
  std::unique_ptr<icu::DecimalFormat> format;
};

// Null where ICU cannot read the pattern. Good until the next call.
const icu::DecimalFormat* formatFor(const std::string& locale, const std::string& pattern) {
  thread_local KeptFormat kept;
  if (kept.format != nullptr && kept.locale == locale && kept.pattern == pattern) {
    return kept.format.get();
  }
  UErrorCode status = U_ZERO_ERROR;
  icu::DecimalFormatSymbols symbols(icu::Locale(locale.c_str()), status);
  // Some locales have another sign, or direction marks around it.
  symbols.setSymbol(icu::DecimalFormatSymbols::kMinusSignSymbol, u"-");
  auto format =
      std::make_unique<icu::DecimalFormat>(icu::UnicodeString::fromUTF8(pattern), symbols, status);
  if (U_FAILURE(status)) {
    return nullptr;
  }
  if (!namesIntegerDigit(pattern)) {
    format->setMinimumIntegerDigits(0);
  }
  kept = {locale, pattern, std::move(format)};
  return kept.format.get();
}

}  // namespace

std::optional<std::string> NumberFormatter::string(double number) const {
  const icu::DecimalFormat* format =
      formatFor(currentLocale(LocaleCategory::numbers), positiveFormat_);
  if (format == nullptr) {
    return std::nullopt;
  }
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString text;
  format->format(number, text, nullptr, status);
  if (U_FAILURE(status)) {
    return std::nullopt;
  }
  std::string result;
  return text.toUTF8String(result);
}

}  // namespace quillpad
