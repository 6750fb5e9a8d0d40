#include <fstream>
#include <gtest/gtest.h>
#include <thread>

#include "fixtures/TemporaryHome.h"
#include "platform/locale/LocalizedStrings.h"

namespace quillpad {
namespace {

class LocalizedStringsTest : public testing::Test {
 protected:
  std::filesystem::path fileOf(const std::string& language) const {
    return folder_.path() / (language + ".lproj") / "Localizable.strings";
  }

  void put(const std::string& language, const std::string& content) {
    std::filesystem::create_directories(fileOf(language).parent_path());
    std::ofstream(fileOf(language)) << "<plist version=\"1.0\">" << content << "</plist>";
  }

  void putSales(const std::string& language, const std::string& text) {
    put(language, "<dict><key>Sales</key><string>" + text + "</string></dict>");
  }

  fixtures::TemporaryFolder folder_;
};

TEST_F(LocalizedStringsTest, AreThoseOfTheLocalesLanguage) {
  putSales("de", "Umsatz");
  putSales("zh-Hans", "销售");
  putSales("sr", "Продаја");
  put("sr-Latn", "<dict><key>Other</key><string>Drugo</string></dict>");
  put("fr", "<dict><key>Sales</key><string>Ventes");
  put("es", "<array/>");
  put("ja", "<dict><key>Sales</key><integer>7</integer></dict>");
  std::filesystem::create_directories(fileOf("ar").parent_path());
  const LocalizedStrings strings(folder_.path());
  const std::pair<const char*, const char*> cases[] = {
      {"de_DE", "Umsatz"},
      {"de_AT", "Umsatz"},
      {"zh_CN", "销售"},
      {"zh_TW", "Sales"},
      {"sr_Latn_RS", "Продаја"},
      {"en_US_POSIX", "Sales"},
      {"fr_FR", "Sales"},
      {"es", "Sales"},
      {"ja", "Sales"},
      {"ar", "Sales"},
      {"../de", "Sales"}};
  for (const auto& [locale, text] : cases) {
    EXPECT_EQ(strings.text("Sales", locale), text) << locale;
  }
  EXPECT_EQ(strings.text("Other", "de_DE"), "Other");
  EXPECT_EQ(strings.text("Other", "sr_Latn_RS"), "Drugo");
  EXPECT_EQ(
      strings.languages(),
      (std::vector<std::string>{"ar", "de", "es", "fr", "ja", "sr", "sr-Latn", "zh-Hans"}));

  const LocalizedStrings none(folder_.path() / "none");
  EXPECT_EQ(none.text("Sales", "de"), "Sales");
  EXPECT_TRUE(none.languages().empty());
}

TEST_F(LocalizedStringsTest, AreKeptOnceRead) {
  putSales("de", "Umsatz");
  putSales("fr", "Ventes");
  put("ja", "");
  const LocalizedStrings strings(folder_.path());
  EXPECT_EQ(strings.text("Other", "de_DE"), "Other");
  EXPECT_EQ(strings.text("Sales", "ja"), "Sales");
  putSales("de", "Erlös");
  putSales("ja", "売上");
  std::filesystem::remove(fileOf("fr"));
  EXPECT_EQ(strings.text("Sales", "de_AT"), "Umsatz");
  EXPECT_EQ(strings.text("Sales", "ja"), "Sales") << "a damaged file is not read again, either";
  EXPECT_EQ(strings.text("Sales", "fr"), "Sales") << "read at its first use only";
}

TEST_F(LocalizedStringsTest, ServeManyThreads) {
  putSales("de", "Umsatz");
  putSales("fr", "Ventes");
  const LocalizedStrings strings(folder_.path());
  const auto read = [&] {
    for (int i = 0; i < 1000; ++i) {
      ASSERT_EQ(strings.text("Sales", "de"), "Umsatz");
      ASSERT_EQ(strings.text("Sales", "fr"), "Ventes");
    }
  };
  const std::jthread first(read);
  const std::jthread second(read);
}

}  // namespace
}  // namespace quillpad
