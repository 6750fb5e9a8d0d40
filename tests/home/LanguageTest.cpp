#include <gtest/gtest.h>
#include <string>

#include "home/language/Language.h"

namespace quillpad::home {
namespace {

TEST(Language, IsTheMostPreferredThatIsSpoken) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "en"},
      {"de", "de"},
      {"de-AT,fr;q=0.7", "de"},
      {"fr;q=0.7 , de-AT ;q=0.8", "de"},
      {"ko,pl;q=0.9,ja;q=0.1", "ja"},
      {"en-GB,de;q=0.9", "en"},
      {"ko, *;q=0.5", "en"},
      {"de;q=0,fr;q=0.1", "fr"},
      {"de;q=nan,fr;q=-1,es;q=x", "en"},
      {"zh-CN", "zh-Hans"},
      {"zh-Hans-SG", "zh-Hans"},
      {"zh-TW,es;q=0.2", "es"},
      {",ar-EG", "ar"},
      {";;,,=q;q=", "en"},
      {"../../de", "en"},
  };
  for (const auto& [preferences, tag] : cases) {
    EXPECT_EQ(Language::preferred(preferences).tag(), tag) << preferences;
  }
  EXPECT_EQ(Language::preferred(std::string(100'000, ',') + "de").tag(), "en");
  EXPECT_TRUE(Language::preferred("ar").isRightToLeft());
  EXPECT_FALSE(Language::preferred("ja").isRightToLeft());
}

TEST(Language, PutsValuesIntoItsTexts) {
  const Language german = Language::preferred("de");
  EXPECT_EQ(german.text("Reload"), "Neu laden");
  EXPECT_EQ(german.text("nobody says this {1}", {"x"}), "nobody says this x");
  EXPECT_EQ(german.text("Move {1}, {2}", {"{2}", "x"}), "{2} verschieben, x");
  EXPECT_EQ(Language().text("{1}: {2} of {3}", {"a", "1"}), "a: 1 of {3}");
}

}  // namespace
}  // namespace quillpad::home
