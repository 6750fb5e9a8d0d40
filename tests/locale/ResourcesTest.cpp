#include <fstream>
#include <gtest/gtest.h>

#include "fixtures/TemporaryHome.h"
#include "platform/foundation/Bundle.h"
#include "platform/foundation/StringsTable.h"

namespace quillpad {
namespace {

using namespace std::string_literals;

std::string utf16(std::u16string_view text, bool bigEndian) {
  std::string bytes;
  for (const char16_t unit : text) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit & 0xFF);
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  }
  return bytes;
}

TEST(StringsTable, ReadsKeysAndTexts) {
  const struct {
    std::string bytes;
    Dictionary texts;
  } cases[] = {
      {"", {}},
      {"/* nothing */ // here", {}},
      {R"("Sales" = "Umsatz";)", {{"Sales", "Umsatz"}}},
      {"\xEF\xBB\xBF\"a\"=\"b\";\"c\"=\"d\";", {{"a", "b"}, {"c", "d"}}},
      {"/* a \"b\" */ \"this month\"\n=// to the end \"\n\"dieser Monat\" ;",
       {{"this month", "dieser Monat"}}},
      {R"("a" = "say \"hi\"\n\t\\ \U00e9\u5f20";)", {{"a", "say \"hi\"\n\t\\ é张"}}},
      {"plain.key_1 = word;", {{"plain.key_1", "word"}}},
      {R"("a" = "//"; "b" = "/*"; "c" = ";=";)", {{"a", "//"}, {"b", "/*"}, {"c", ";="}}},
      {R"("a" = "1"; "a" = "2";)", {{"a", "1"}}},
      {R"("empty" = "";)", {{"empty", ""}}},
      {utf16(u"\uFEFF\"a\" = \"é张😀\";", true), {{"a", "é张😀"}}},
      {utf16(u"\uFEFF\"a\" = \"é张😀\";", false), {{"a", "é张😀"}}},
  };
  for (const auto& [bytes, texts] : cases) {
    EXPECT_EQ(readStringsTable(bytes), texts) << bytes;
  }
}

TEST(StringsTable, IsNothingWhenDamaged) {
  const std::string whole = R"("a" = "b"; /* c */ "d" = "e\n";)";
  for (std::size_t length = 1; length < whole.size(); ++length) {
    const std::optional<Dictionary> table = readStringsTable(whole.substr(0, length));
    const bool endsBetweenEntries = length >= 10 && length <= 11;
    const bool endsAfterComment = length >= 18 && length <= 19;
    EXPECT_EQ(table.has_value(), endsBetweenEntries || endsAfterComment) << length;
  }
  for (const std::string& bytes :
       {R"("a" "b";)"s,
        R"("a" = "b")"s,
        R"("a" = ;)"s,
        R"("a" = "\U12";)"s,
        R"("a" = "\Ud800";)"s,
        "\"a\" = \"\xFF\";"s,
        "\xFE\xFF\0"s,
        utf16(u"\uFEFF\"a\" = \"\xD800\";", false)}) {
    EXPECT_FALSE(readStringsTable(bytes)) << bytes;
  }
}

class BundleTest : public testing::Test {
 protected:
  void put(const std::filesystem::path& file, std::string_view text) {
    std::filesystem::create_directories((folder_.path() / file).parent_path());
    std::ofstream(folder_.path() / file) << text;
  }

  fixtures::TemporaryFolder folder_;
  const Bundle bundle_{folder_.path()};
};

TEST_F(BundleTest, LooksTextsUpInTheLanguageOfTheLocale) {
  put("de.lproj/Localizable.strings", R"("Sales" = "Umsatz";)");
  put("zh-Hans.lproj/Localizable.strings", R"("Sales" = "销售";)");
  put("fr.lproj/Localizable.strings", R"("Sales" = "Ventes)");
  EXPECT_EQ(bundle_.localizedString("Sales", "de_DE"), "Umsatz");
  EXPECT_EQ(bundle_.localizedString("Sales", "de_AT"), "Umsatz");
  EXPECT_EQ(bundle_.localizedString("Sales", "zh_CN"), "销售");
  EXPECT_EQ(bundle_.localizedString("Sales", "zh_TW"), "Sales");
  EXPECT_EQ(bundle_.localizedString("Sales", "fr_FR"), "Sales");
  EXPECT_EQ(bundle_.localizedString("Sales", "en_US_POSIX"), "Sales");
  EXPECT_EQ(bundle_.localizedString("Other", "de_DE"), "Other");
}

TEST_F(BundleTest, FindsAPictureAtItsScale) {
  put("Graph.png", "1");
  put("Graph@3x.png", "3");
  EXPECT_EQ(bundle_.picture("Graph", 1), folder_.path() / "Graph.png");
  EXPECT_EQ(bundle_.picture("Graph", 2), std::nullopt);
  EXPECT_EQ(bundle_.picture("Graph", 3), folder_.path() / "Graph@3x.png");
  EXPECT_EQ(bundle_.picture("../Graph", 1), std::nullopt);
  EXPECT_EQ(bundle_.picture("", 1), std::nullopt);
}

}  // namespace
}  // namespace quillpad
