// Texts cut into runs of one script, one font and one direction.
#include <gmock/gmock.h>
#include <string_view>
#include <unicode/uscript.h>

#include "platform/foundation/Utf8.h"
#include "platform/text/Itemizer.h"

namespace quillpad::drawing {
namespace {

using ::testing::ElementsAre;

// Each character is a cluster.
std::vector<std::size_t> charactersOf(std::string_view text) {
  std::vector<std::size_t> ends;
  for (std::size_t at = 0; at < text.size();) {
    nextCharacter(text, at);
    ends.push_back(at);
  }
  return ends;
}

TEST(Itemizer, GivesWhatHasNoScriptTheOneBesideIt) {
  const std::pair<const char*, std::vector<ScriptRun>> cases[] = {
      {"abc", {{3, USCRIPT_LATIN}}},
      {"12.5", {{4, USCRIPT_LATIN}}},
      {"12 ж.", {{6, USCRIPT_CYRILLIC}}},
      {"a 1 ж 2 b", {{4, USCRIPT_LATIN}, {9, USCRIPT_CYRILLIC}, {10, USCRIPT_LATIN}}},
      {"漢、か", {{6, USCRIPT_HAN}, {9, USCRIPT_HIRAGANA}}},
      {"e\u0301א\u05B0", {{3, USCRIPT_LATIN}, {7, USCRIPT_HEBREW}}},
  };
  for (const auto& [text, runs] : cases) {
    EXPECT_EQ(scriptRuns(text, charactersOf(text)), runs) << text;
  }
}

TEST(Itemizer, ChoosesOneFontForEachCluster) {
  FontBook fonts;
  const std::string text = "a\u0301 \u05D0\u0308b";  // clusters of 3, 1, 4 and 1 bytes
  const std::vector<std::size_t> ends{3, 4, 8, 9};
  const auto runs = fontRuns(text, ends, scriptRuns(text, ends), {.language = "en"}, fonts);
  ASSERT_EQ(runs.size(), 3U);
  EXPECT_EQ(runs[0], (FontRun{4, FontBook::system(ui::Weight::regular)}));
  EXPECT_EQ(runs[1].end, 8U);
  EXPECT_FALSE(FontBook::isSystem(runs[1].value));
  EXPECT_EQ(runs[2], (FontRun{9, FontBook::system(ui::Weight::regular)}));
}

TEST(Itemizer, CutsWhereAnythingChanges) {
  const auto run = [](std::size_t begin, std::size_t end, FontId font, int level, Script script) {
    return TextRun{begin, end, font, static_cast<std::uint8_t>(level), script};
  };
  const std::vector<ScriptRun> scripts{{4, 1}, {9, 2}};
  const std::vector<FontRun> fonts{{2, 5}, {9, 6}};
  const std::vector<LevelRun> levels{{4, 0}, {6, 1}, {9, 2}};
  EXPECT_THAT(
      merged(scripts, fonts, levels),
      ElementsAre(run(0, 2, 5, 0, 1), run(2, 4, 6, 0, 1), run(4, 6, 6, 1, 2), run(6, 9, 6, 2, 2)));
  EXPECT_THAT(merged({}, {}, {}), ElementsAre());
}

TEST(Itemizer, FindsDirectionsInTextBeyondTheBasicPlane) {
  FontBook fonts;
  Itemizer itemizer(fonts);
  const std::string text = "xx😀a שלום 😀b";  // directions are counted in UTF-16
  const auto items = itemizer.itemize(text, 2, text.size(), {.language = "en"}, std::nullopt);
  EXPECT_FALSE(items.rightToLeft);
  std::vector<std::string> rightToLeft;
  for (const TextRun& run : items.runs) {
    if (run.level % 2 != 0) {
      rightToLeft.push_back(text.substr(run.begin, run.end - run.begin));
    }
  }
  EXPECT_THAT(rightToLeft, ElementsAre("שלום"));
  EXPECT_EQ(items.runs.front().begin, 2U);
  EXPECT_EQ(items.runs.back().end, text.size());
}

}  // namespace
}  // namespace quillpad::drawing
