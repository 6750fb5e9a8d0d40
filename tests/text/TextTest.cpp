// Texts with the fonts that are installed: which stand in for which script, where lines end, what
// is left out.
#include <ft2build.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include FT_FREETYPE_H

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "platform/text/FontBook.h"
#include "platform/text/SystemFont.h"
#include "platform/text/TextEngine.h"

namespace quillpad::drawing {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::SizeIs;

constexpr double unbound = std::numeric_limits<double>::infinity();

class Texts : public ::testing::Test {
 protected:
  static ui::Text text(std::string characters, double size = 15) {
    return ui::Text::verbatim(std::move(characters)).font({size, ui::Weight::regular});
  }

  Size measure(const std::string& characters, Size proposed = {unbound, unbound}) {
    return engine.measure(text(characters), place, proposed);
  }

  TextEngine::Setting set(const std::string& characters, Size proposed = {unbound, unbound}) {
    const Size size = measure(characters, proposed);
    return engine.set(text(characters), place, {0, 0, size.width, size.height});
  }

  // The families of the runs, in the order that they come in.
  std::vector<std::string> familiesOf(const TextEngine::Setting& setting) {
    std::vector<std::string> families;
    families.reserve(setting.runs.size());
    for (const GlyphRun& run : setting.runs) {
      families.emplace_back(fonts.face(run.font)->family_name);
    }
    return families;
  }

  static bool hasMissingGlyph(const TextEngine::Setting& setting) {
    for (const GlyphRun& run : setting.runs) {
      for (const Glyph& glyph : run.glyphs) {
        if (glyph.id == 0) {
          return true;
        }
      }
    }
    return false;
  }

  // Where the first glyph of the run begins.
  static double start(const GlyphRun& run) { return run.glyphs.front().origin.x; }

  FontBook fonts;
  TextEngine engine{fonts};
  TextPlace place{.language = "en"};
};

TEST_F(Texts, ShowEveryScriptInAFontMadeForIt) {
  struct Case {
    const char* characters;
    const char* language;
    std::vector<std::string> families;
  };
  const Case cases[] = {
      {"Crème brûlée Ærø €5", "en", {"Inter"}},
      {"Привет Ελλάδα", "en", {"Inter"}},
      {"مرحبا", "ar", {"Noto Sans Arabic"}},
      {"שלום", "he", {"Noto Sans Hebrew"}},
      {"नमस्ते", "hi", {"Noto Sans Devanagari"}},
      {"สวัสดี", "th", {"Noto Sans Thai"}},
      {"안녕", "en", {"Noto Sans CJK KR"}},
      {"漢字かな", "en", {"Noto Sans CJK JP"}},
      {"直", "ja", {"Noto Sans CJK JP"}},
      {"直", "zh-Hans", {"Noto Sans CJK SC"}},
      {"直", "zh-Hant", {"Noto Sans CJK TC"}},
      {"直", "en", {"Noto Sans CJK SC"}},
      {"👍🏽", "en", {"Noto Color Emoji"}},
      {"1️⃣", "en", {"Noto Color Emoji"}},
      {"👍 日", "ja", {"Noto Color Emoji", "Inter", "Noto Sans CJK JP"}},
      {"Acme 日本 Ltd", "ja", {"Inter", "Noto Sans CJK JP", "Inter"}},
  };
  for (const Case& one : cases) {
    place.language = one.language;
    const TextEngine::Setting setting = set(one.characters);
    EXPECT_EQ(setting.text, one.characters);
    EXPECT_EQ(familiesOf(setting), one.families) << one.characters;
    EXPECT_FALSE(hasMissingGlyph(setting)) << one.characters;
  }
}

TEST_F(Texts, KeepWhatBelongsTogetherInOneGlyph) {
  for (const char* picture : {"👨‍👩‍👧‍👦", "🇩🇪", "👍🏽", "1️⃣", "❤️"}) {
    const TextEngine::Setting setting = set(picture);
    ASSERT_THAT(setting.runs, SizeIs(1)) << picture;
    EXPECT_THAT(setting.runs[0].glyphs, SizeIs(1)) << picture;
    EXPECT_TRUE(fonts.hasColorBitmaps(setting.runs[0].font)) << picture;
  }
  // A mark stands over its letter, in the letter's font.
  const TextEngine::Setting marked = set("q\u0308");
  EXPECT_THAT(familiesOf(marked), ElementsAre("Inter"));
  EXPECT_EQ(measure("q\u0308"), measure("q"));
}

TEST_F(Texts, LeaveOutWhatCannotBeShown) {
  struct Case {
    std::string characters;
    std::string shown;
  };
  const Case cases[] = {
      {std::string("a\0b", 3), "ab"},
      {"a\x01\x1b[0m\x7f", "a[0m"},
      {"a\tb", "a b"},
      {"a\xc2\x85"
       "b",
       "a\nb"},
      {"a\r\nb", "a\nb"},
      {"\xff\xfe", "\uFFFD\uFFFD"},
      {"\xed\xa0\x80", "\uFFFD\uFFFD\uFFFD"},
      {"\xf0\x9f\x98", "\uFFFD"},
      {"\xc0\xaf", "\uFFFD\uFFFD"},
      {"<b>&amp;\"", "<b>&amp;\""},
  };
  for (const Case& one : cases) {
    const TextEngine::Setting setting = set(one.characters);
    EXPECT_EQ(setting.text, one.shown);
    EXPECT_FALSE(hasMissingGlyph(setting)) << one.shown;
  }
  EXPECT_EQ(measure(""), (Size{0, 0}));
  EXPECT_EQ(measure("\x01"), (Size{0, 0}));
}

TEST_F(Texts, TakeTheLineHeightOfThePhone) {
  struct Case {
    double size;
    double at2, at3;
  };
  for (const Case& one :
       {Case{11, 13.5, 40 / 3.0},
        {12, 14.5, 43 / 3.0},
        {15, 18, 18},
        {17, 20.5, 61 / 3.0},
        {20, 24, 24}}) {
    for (const double scale : {2.0, 3.0}) {
      place.scale = scale;
      const Size size = engine.measure(text("Ag", one.size), place, {unbound, unbound});
      EXPECT_DOUBLE_EQ(size.height, scale == 2 ? one.at2 : one.at3) << one.size;
    }
  }
  place.scale = 2;
  EXPECT_EQ(measure("a\nb\nc").height, 54);  // 3 x 17.901, rounded up once
}

TEST_F(Texts, WrapAtWordsAndEndInAnEllipsis) {
  const std::string words = "one two three-four five";
  struct Case {
    double width, height;
    const char* shown;
    int lines;
  };
  const Case cases[] = {
      {unbound, unbound, "one two three-four five", 1},
      {110, unbound, "one two three-four five", 2},
      {60, unbound, "one two three-four five", 3},
      {110, 20, "one two thre…", 1},
      {110, 0, "one two thre…", 1},
      {60, 40, "one two three-…", 2},
      {30, 20, "o…", 1},
      {14, 20, "…", 1},
      {12, 20, "", 1},
      {0, 20, "", 1},
  };
  for (const Case& one : cases) {
    const Size proposed{one.width, one.height};
    EXPECT_EQ(set(words, proposed).text, one.shown) << one.width << "x" << one.height;
    EXPECT_EQ(std::round(measure(words, proposed).height / systemLineHeight(15)), one.lines)
        << one.width << "x" << one.height;
  }
  EXPECT_EQ(set("first\nsecond", {200, 20}).text, "first…");
  EXPECT_EQ(set("Donaudampfschifffahrt", {60, 40}).text, "Donaudampfs…");
}

// The layout gives a text the frame that was measured, and draws what fits that frame.
TEST_F(Texts, ShowTheSameInTheFrameThatTheyAskedFor) {
  const std::vector<std::string> samples{
      "A very long client name, that cannot fit",
      "Donaudampfschifffahrtsgesellschaft",
      "مرحبا بالعالم هذا نص طويل",
      "株式会社漢字かな交じり文",
      "👨‍👩‍👧‍👦👨‍👩‍👧‍👦🇩🇪🇫🇷 family",
      "mixed שלום text 123 مرحبا and more"};
  for (const std::string& sample : samples) {
    for (int step = 0; step < 120; ++step) {
      const double width = 1.7 * step;
      for (const double height : {0.0, 20.0, 40.0, unbound}) {
        const Size size = measure(sample, {width, height});
        EXPECT_EQ(measure(sample, size), size) << sample << " " << width << "x" << height;
        const std::string shown = set(sample, {width, height}).text;
        EXPECT_LE(size.width, width + 0.5) << sample << " " << width << "x" << height;
        if (shown != sample && width > 15) {
          EXPECT_THAT(shown, EndsWith("…"));
        }
      }
    }
  }
}

TEST_F(Texts, AreCutBetweenClustersOnly) {
  const std::string family = "👨‍👩‍👧‍👦";
  const std::string families = family + family + family;
  for (int width = 20; width < 60; ++width) {
    std::string shown = set(families, {static_cast<double>(width), 20}).text;
    if (shown != families) {
      shown.resize(shown.size() - std::string("…").size());
      EXPECT_EQ(shown.size() % family.size(), 0U) << width;
    }
  }
}

TEST_F(Texts, ReadFromTheRightWhereTheyBeginThere) {
  const TextEngine::Setting mixed = set("שלום Acme");
  ASSERT_THAT(familiesOf(mixed), ElementsAre("Inter", "Noto Sans Hebrew"));
  EXPECT_LT(start(mixed.runs[0]), start(mixed.runs[1]));

  const TextEngine::Setting cut = set("مرحبا بالعالم هذا نص طويل", {60, 20});
  EXPECT_THAT(cut.text, EndsWith("…"));
  ASSERT_THAT(familiesOf(cut), ElementsAre("Inter", "Noto Sans Arabic"));
  EXPECT_LT(start(cut.runs[0]), 1);

  // The shorter last line stands at the right edge.
  const std::string lines = "مرحبا بالعالم\nنص";
  const double width = measure(lines).width;
  const TextEngine::Setting wrapped = set(lines);
  const Glyph& last = wrapped.runs.back().glyphs.back();
  EXPECT_GT(last.origin.x, width / 2);

  // Figures alone follow the card.
  const auto firstGlyphAt = [&](bool rightToLeft) {
    place.rightToLeft = rightToLeft;
    const auto setting = engine.set(text("12"), place, {0, 0, 100, 18});
    return start(setting.runs.front());
  };
  EXPECT_LT(firstGlyphAt(false), 10);
  EXPECT_GT(firstGlyphAt(true), 70);
}

TEST_F(Texts, OfAMegabyteAreReadAsFarAsTheyShow) {
  const std::vector<std::string> units{"word ", "x", "漢", "مرحبا ", "\n", "e\u0301", "👍🏽"};
  for (const std::string& unit : units) {
    std::string characters;
    while (characters.size() < (1U << 20U)) {
      characters += unit;
    }
    EXPECT_LE(measure(characters, {306, 126}).width, 306.5) << unit;
    EXPECT_LE(set(characters, {306, 126}).text.size(), 4096U) << unit;
    EXPECT_LT(measure(characters).width, 40'000) << unit;
    EXPECT_LT(measure(characters, {306, unbound}).height, 40'000) << unit;
  }
}

TEST_F(Texts, AreTheSameFromTheCacheAndAfterIt) {
  const Size before = measure("Acme Studio");
  for (int i = 0; i < 5000; ++i) {
    measure("Client number " + std::to_string(i));
  }
  EXPECT_EQ(measure("Acme Studio"), before);
}

}  // namespace
}  // namespace quillpad::drawing
