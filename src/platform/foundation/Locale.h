// The locale of this process, from LC_ALL, LC_NUMERIC or LC_TIME and LANG, as the standard tools
// read them.
#pragma once

#include <string>
#include <vector>

namespace foundation {

// The identifier of the current locale, for example "en_US", "de_DE" or "zh_Hans_CN"; "en_US_POSIX"
// for C and POSIX.
std::string currentLocale();

// The languages to look resources up in for a locale identifier, best first: "zh-Hans" and "zh" for
// "zh_CN".
std::vector<std::string> languagesOf(const std::string& locale);

}  // namespace foundation
