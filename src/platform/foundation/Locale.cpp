#include "platform/foundation/Locale.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace quillpad {
namespace {

const char* variableOf(LocaleCategory category) {
  switch (category) {
    case LocaleCategory::messages:
      return "LC_MESSAGES";
    case LocaleCategory::numbers:
      return "LC_NUMERIC";
    case LocaleCategory::dates:
      return "LC_TIME";
  }
  return "LC_MESSAGES";
}

std::string_view environmentLocale(LocaleCategory category) {
  for (const char* name : {"LC_ALL", variableOf(category), "LANG"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') {
      return value;
    }
  }
  return "C";
}

bool isAsciiLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool namesLocale(std::string_view name) {
  constexpr std::size_t longestName = 64;
  return !name.empty() && name.size() <= longestName && isAsciiLetter(name.front()) &&
         std::ranges::all_of(
             name, [](char c) { return isAsciiLetter(c) || (c >= '0' && c <= '9') || c == '_'; });
}

std::vector<std::string_view> partsOf(std::string_view locale) {
  std::vector<std::string_view> parts;
  while (true) {
    const std::size_t end = locale.find_first_of("_-");
    parts.push_back(locale.substr(0, end));
    if (end == std::string_view::npos) {
      return parts;
    }
    locale.remove_prefix(end + 1);
  }
}

bool isScript(std::string_view part) { return part.size() == 4 && isAsciiLetter(part.front()); }

}  // namespace

std::string currentLocale(LocaleCategory category) {
  // Of the form language[_REGION][.codeset][@modifier].
  const std::string_view value = environmentLocale(category);
  std::string name(value.substr(0, value.find_first_of(".@")));
  std::ranges::replace(name, '-', '_');
  if (name == "C" || name == "POSIX" || !namesLocale(name)) {
    return "en_US_POSIX";
  }

  const std::size_t at = value.find('@');
  const std::string_view modifier =
      at == std::string_view::npos ? std::string_view() : value.substr(at + 1);
  const std::size_t languageEnd = std::min(name.find('_'), name.size());
  if (modifier == "latin") {
    name.insert(languageEnd, "_Latn");
  }
  if (modifier == "cyrillic") {
    name.insert(languageEnd, "_Cyrl");
  }
  return name;
}

std::vector<std::string> languagesOf(const std::string& locale) {
  const std::vector<std::string_view> parts = partsOf(locale);
  const std::string language(parts.front());
  std::vector<std::string> languages;
  if (parts.size() > 1 && isScript(parts[1])) {
    languages.push_back(language + "-" + std::string(parts[1]));
  } else if (language == "zh") {
    const bool traditional =
        parts.size() > 1 && (parts[1] == "TW" || parts[1] == "HK" || parts[1] == "MO");
    languages.emplace_back(traditional ? "zh-Hant" : "zh-Hans");
  }
  languages.push_back(language);
  return languages;
}

}  // namespace quillpad
