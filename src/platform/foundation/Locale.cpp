#include "platform/foundation/Locale.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "platform/foundation/Icu.h"

namespace quillpad {
namespace {

// The locale of the calls of this thread; empty: the environment's.
thread_local std::string localeOfThread;
thread_local std::string currencyOfThread;  // empty: none of its own

std::string_view environmentLocale(LocaleCategory category) {
  const char* own = category == LocaleCategory::numbers ? "LC_NUMERIC" : "LC_MESSAGES";
  for (const char* name : {"LC_ALL", own, "LANG"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') {
      return value;
    }
  }
  return "C";
}

bool isAsciiLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool isIdentifier(std::string_view name) {
  constexpr std::size_t maxLength = 64;
  return !name.empty() && name.size() <= maxLength && isAsciiLetter(name.front()) &&
         std::ranges::all_of(
             name, [](char c) { return isAsciiLetter(c) || (c >= '0' && c <= '9') || c == '_'; });
}

// The identifier of what the environment names as language[_REGION][.codeset][@modifier].
std::string identifierOf(std::string_view value) {
  std::string name(value.substr(0, value.find_first_of(".@")));
  std::ranges::replace(name, '-', '_');
  if (name == "C" || name == "POSIX" || !isIdentifier(name)) {
    return "en_US_POSIX";
  }
  const std::size_t languageEnd = std::min(name.find('_'), name.size());
  if (value.ends_with("@latin")) {
    name.insert(languageEnd, "_Latn");
  } else if (value.ends_with("@cyrillic")) {
    name.insert(languageEnd, "_Cyrl");
  }
  return name;
}

using PartGetter = int32_t(const char*, char*, int32_t, UErrorCode*);

std::string partOf(const std::string& locale, PartGetter* part) {
  std::array<char, ULOC_FULLNAME_CAPACITY> text{};
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length = part(locale.c_str(), text.data(), text.size(), &status);
  return U_FAILURE(status) != 0 ? std::string()
                                : std::string(text.data(), static_cast<std::size_t>(length));
}

}  // namespace

std::string currentLocale(LocaleCategory category) {
  return localeOfThread.empty() ? identifierOf(environmentLocale(category)) : localeOfThread;
}

const std::string& scopedCurrency() { return currencyOfThread; }

ScopedLocale::ScopedLocale(const std::string& locale, const std::string& currency)
    : localeBefore_(
          std::exchange(localeOfThread, locale.empty() ? localeOfThread : identifierOf(locale))),
      currencyBefore_(
          std::exchange(currencyOfThread, currency.empty() ? currencyOfThread : currency)) {}

ScopedLocale::~ScopedLocale() {
  localeOfThread = std::move(localeBefore_);
  currencyOfThread = std::move(currencyBefore_);
}

bool namesLocale(std::string_view text) {
  return text == "C" || text == "POSIX" || identifierOf(text) != identifierOf("C");
}

std::vector<std::string> languagesOf(const std::string& locale) {
  const std::string language = partOf(locale, uloc_getLanguage);
  std::string script = partOf(locale, uloc_getScript);
  if (language == "zh" && script.empty()) {
    const std::string region = partOf(locale, uloc_getCountry);
    script = region == "TW" || region == "HK" || region == "MO" ? "Hant" : "Hans";
  }
  if (script.empty()) {
    return {language};
  }
  return {language + "-" + script, language};
}

bool isRightToLeft(const std::string& language) {
  return uloc_isRightToLeft(language.c_str()) != 0;
}

}  // namespace quillpad
