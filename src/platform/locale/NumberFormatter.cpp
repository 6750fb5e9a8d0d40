#include "platform/locale/NumberFormatter.h"

#include <array>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/foundation/Locale.h"
#include "platform/locale/Icu.h"

namespace quillpad {
namespace {

// Whether the pattern asks for integer digits. ICU itself puts one in where none is asked for.
bool namesIntegerDigit(std::string_view pattern) {
  return pattern.substr(0, pattern.find_first_of(".;")).contains('0');
}

struct CloseFormat {
  void operator()(UNumberFormat* format) const { unum_close(format); }
};

// A formatter of ICU and what it was made for. Making one takes fifty times as long as using it, so
// each thread keeps its last one.
struct KeptFormat {
  std::string locale;
  std::string pattern;
  std::unique_ptr<UNumberFormat, CloseFormat> format;
};

std::u16string utf16Of(const std::string& text, UErrorCode& status) {
  const auto size = static_cast<int32_t>(text.size());
  std::u16string utf16(text.size(), u'\0');  // never longer than in UTF-8
  int32_t length = 0;
  u_strFromUTF8(utf16.data(), size, &length, text.data(), size, &status);
  utf16.resize(static_cast<std::size_t>(length));
  return utf16;
}

// Null where ICU cannot read the pattern. Good until the next call.
const UNumberFormat* formatFor(const std::string& locale, const std::string& pattern) {
  thread_local KeptFormat kept;
  if (kept.format != nullptr && kept.locale == locale && kept.pattern == pattern) {
    return kept.format.get();
  }
  UErrorCode status = U_ZERO_ERROR;
  const std::u16string utf16 = utf16Of(pattern, status);
  std::unique_ptr<UNumberFormat, CloseFormat> format(unum_open(
      UNUM_PATTERN_DECIMAL,
      utf16.data(),
      static_cast<int32_t>(utf16.size()),
      locale.c_str(),
      nullptr,
      &status));
  if (U_FAILURE(status) != 0) {
    return nullptr;
  }
  // Some locales have another sign, or direction marks around it.
  unum_setSymbol(format.get(), UNUM_MINUS_SIGN_SYMBOL, u"-", 1, &status);
  if (!namesIntegerDigit(pattern)) {
    unum_setAttribute(format.get(), UNUM_MIN_INTEGER_DIGITS, 0);
  }
  kept = {locale, pattern, std::move(format)};
  return kept.format.get();
}

}  // namespace

std::optional<std::string> NumberFormatter::string(double number) const {
  const UNumberFormat* format = formatFor(currentLocale(LocaleCategory::numbers), positiveFormat_);
  if (format == nullptr) {
    return std::nullopt;
  }
  // A double has up to 309 digits before its point; with grouping, signs and a long currency
  // pattern it stays below this.
  std::array<char16_t, 1024> utf16{};
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length =
      unum_formatDouble(format, number, utf16.data(), utf16.size(), nullptr, &status);
  std::string text(std::size_t{3} * utf16.size(), '\0');
  int32_t bytes = 0;
  u_strToUTF8(
      text.data(), static_cast<int32_t>(text.size()), &bytes, utf16.data(), length, &status);
  if (U_FAILURE(status) != 0) {
    return std::nullopt;
  }
  text.resize(static_cast<std::size_t>(bytes));
  return text;
}

}  // namespace quillpad
