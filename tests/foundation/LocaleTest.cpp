#include <gtest/gtest.h>
#include <thread>

#include "fixtures/ScopedVariable.h"
#include "platform/foundation/Locale.h"

namespace quillpad {
namespace {

using fixtures::ScopedVariable;

TEST(Locale, FollowsTheEnvironmentAsTheStandardToolsDo) {
  const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
      {"de_DE.UTF-8", "fr_FR", "sv_SE", "de_DE"},
      {"", "fr_FR.ISO-8859-1@euro", "sv_SE", "fr_FR"},
      {nullptr, "", "sv_SE", "sv_SE"},
      {nullptr, nullptr, "", "en_US_POSIX"},
      {"C", "fr_FR", "sv_SE", "en_US_POSIX"},
      {"C.UTF-8", nullptr, nullptr, "en_US_POSIX"},
      {"POSIX", nullptr, nullptr, "en_US_POSIX"},
      {"de", nullptr, nullptr, "de"},
      {"zh-CN", nullptr, nullptr, "zh_CN"},
      {"sr_RS.UTF-8@latin", nullptr, nullptr, "sr_Latn_RS"},
      {"../../etc/passwd", nullptr, nullptr, "en_US_POSIX"},
      {"de_DE/x", nullptr, nullptr, "en_US_POSIX"},
      {"_DE", nullptr, nullptr, "en_US_POSIX"},
  };
  const auto given = [](const char* value) {
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
  };
  for (const auto& [all, numeric, lang, locale] : cases) {
    const ScopedVariable allVariable("LC_ALL", given(all));
    const ScopedVariable numericVariable("LC_NUMERIC", given(numeric));
    const ScopedVariable langVariable("LANG", given(lang));
    EXPECT_EQ(currentLocale(LocaleCategory::numbers), locale);
  }
}

TEST(Locale, IsAnotherForAScopeOnItsThreadAlone) {
  const ScopedVariable all("LC_ALL", "de_DE.UTF-8");
  {
    const ScopedLocale outer("ar_EG.UTF-8", "€");
    EXPECT_EQ(currentLocale(LocaleCategory::messages), "ar_EG");
    EXPECT_EQ(currentLocale(LocaleCategory::numbers), "ar_EG");
    {
      const ScopedLocale inner("../x");
      EXPECT_EQ(currentLocale(), "en_US_POSIX");
      const ScopedLocale nothing("");
      EXPECT_EQ(currentLocale(), "en_US_POSIX");
    }
    EXPECT_EQ(currentLocale(), "ar_EG");
    EXPECT_EQ(scopedCurrency(), "€");
    std::jthread([] { EXPECT_EQ(currentLocale() + scopedCurrency(), "de_DE"); });
  }
  EXPECT_EQ(scopedCurrency(), "");
  EXPECT_EQ(currentLocale(), "de_DE");
}

TEST(Locale, NamesTheLanguagesThatServeIt) {
  using Languages = std::vector<std::string>;
  const std::pair<const char*, Languages> cases[] = {
      {"de_DE", {"de"}},
      {"en_US_POSIX", {"en"}},
      {"zh", {"zh-Hans", "zh"}},
      {"zh_CN", {"zh-Hans", "zh"}},
      {"zh_SG", {"zh-Hans", "zh"}},
      {"zh_TW", {"zh-Hant", "zh"}},
      {"zh_Hans_HK", {"zh-Hans", "zh"}},
      {"zh_HK", {"zh-Hant", "zh"}},
      {"sr_Latn_RS", {"sr-Latn", "sr"}},
  };
  for (const auto& [locale, languages] : cases) {
    EXPECT_EQ(languagesOf(locale), languages) << locale;
  }
}

}  // namespace
}  // namespace quillpad
