// The locale of this process, from LC_ALL, the category's own variable (LC_MESSAGES, LC_NUMERIC)
// and LANG, as the standard tools read them; read again at each call. A thread may have another
// one, and a currency with it, for a while. From any thread, as long as none sets the environment.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillpad {

enum class LocaleCategory { messages, numbers };

// The identifier of the current locale, for example "en_US", "de" or "sr_Latn_RS"; "en_US_POSIX"
// for C and POSIX, where nothing is set and where what is set names no locale.
std::string currentLocale(LocaleCategory category = LocaleCategory::messages);

// The currency that the calling thread has for a while, for example "€"; empty where it has none.
const std::string& scopedCurrency();

// While it lives, the current locale of the calling thread is the given one in every category, and
// its currency the given one; what is empty changes nothing. Any text may be given: what names no
// locale is read as "C".
class ScopedLocale {
 public:
  explicit ScopedLocale(const std::string& locale, const std::string& currency = {});
  ~ScopedLocale();
  ScopedLocale(const ScopedLocale&) = delete;
  ScopedLocale& operator=(const ScopedLocale&) = delete;

 private:
  std::string localeBefore_;
  std::string currencyBefore_;
};

// Whether the text is a locale's identifier: "de", "de_DE", "zh-Hans", "C".
bool namesLocale(std::string_view text);

// The languages to look resources up in for a locale identifier, best first: "zh-Hans" and "zh" for
// "zh_CN", "de" for "de_DE".
std::vector<std::string> languagesOf(const std::string& locale);

// Whether the language's usual script is written from right to left.
bool isRightToLeft(const std::string& language);

}  // namespace quillpad
