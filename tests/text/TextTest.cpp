// Texts with the fonts that are installed: which stand in for which script, where lines end, what
// is left out.
#include <ft2build.h>
#include <gmock/gmock.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <random>

#include "platform/text/FontBook.h"
#include "platform/text/SystemFont.h"
#include "platform/text/TextEngine.h"

namespace quillpad::drawing {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::SizeIs;

constexpr double unbound = std::numeric_limits<double>::infinity();

class TextTest : public ::testing::Test {
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
    return std::ranges::any_of(setting.runs, [](const GlyphRun& run) {
      return std::ranges::count(run.glyphs, 0U, &Glyph::id) > 0;
    });
  }

  // Where the first glyph of the run begins.
  static double start(const GlyphRun& run) { return run.glyphs.front().origin.x; }

  FontBook fonts;
  TextEngine engine{fonts};
  TextPlace place{.language = "en"};
};

TEST_F(TextTest, ShowEveryScriptInAFontMadeForIt) {
  const std::tuple<const char*, const char*, std::vector<std::string>> cases[] = {
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
  for (const auto& [characters, language, families] : cases) {
    place.language = language;
    const TextEngine::Setting setting = set(characters);
    EXPECT_EQ(setting.text, characters);
    EXPECT_EQ(familiesOf(setting), families) << characters;
    EXPECT_FALSE(hasMissingGlyph(setting)) << characters;
  }
}

TEST_F(TextTest, KeepWhatBelongsTogetherInOneGlyph) {
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

TEST_F(TextTest, LeaveOutWhatCannotBeShown) {
  const std::pair<std::string, std::string> cases[] = {
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
  for (const auto& [characters, shown] : cases) {
    const TextEngine::Setting setting = set(characters);
    EXPECT_EQ(setting.text, shown);
    EXPECT_FALSE(hasMissingGlyph(setting)) << shown;
  }
  EXPECT_EQ(measure(""), (Size{0, 0}));
  EXPECT_EQ(measure("\x01"), (Size{0, 0}));
}

TEST_F(TextTest, TakeTheLineHeightOfThePhone) {
  const std::tuple<double, double, double> cases[] = {
      {11, 13.5, 40 / 3.0}, {12, 14.5, 43 / 3.0}, {15, 18, 18}, {17, 20.5, 61 / 3.0}, {20, 24, 24}};
  for (const auto& [points, at2, at3] : cases) {
    for (const double scale : {2.0, 3.0}) {
      place.scale = scale;
      const Size size = engine.measure(text("Ag", points), place, {unbound, unbound});
      EXPECT_DOUBLE_EQ(size.height, scale == 2 ? at2 : at3) << points;
    }
  }
  place.scale = 2;
  EXPECT_EQ(measure("a\nb\nc").height, 54);  // 3 x 17.901, rounded up once
}

TEST_F(TextTest, WrapAtWordsAndEndInAnEllipsis) {
  const std::string words = "one two three-four five";
  const std::tuple<double, double, const char*, int> cases[] = {
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
  for (const auto& [width, height, shown, lines] : cases) {
    const Size proposed{width, height};
    EXPECT_EQ(set(words, proposed).text, shown) << width << "x" << height;
    EXPECT_EQ(std::round(measure(words, proposed).height / systemLineHeight(15)), lines) << shown;
  }
  EXPECT_EQ(set("first\nsecond", {200, 20}).text, "first…");
  EXPECT_EQ(set("Donaudampfschifffahrt", {60, 40}).text, "Donaudampfs…");
  EXPECT_EQ(
      set("👨‍👩‍👧‍👦👨‍👩‍👧‍👦👨‍👩‍👧‍👦", {40, 20})
          .text,
      "👨‍👩‍👧‍👦…");
}

// The layout gives a text the frame that was measured, and draws what fits that frame.
TEST_F(TextTest, ShowTheSameInTheFrameThatTheyAskedFor) {
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

TEST_F(TextTest, ReadFromTheRightWhereTheyBeginThere) {
  const TextEngine::Setting mixed = set("שלום Acme");
  ASSERT_THAT(familiesOf(mixed), ElementsAre("Inter", "Noto Sans Hebrew"));
  EXPECT_LT(start(mixed.runs[0]), start(mixed.runs[1]));

  const TextEngine::Setting cut = set("مرحبا بالعالم هذا نص طويل", {60, 20});
  EXPECT_THAT(cut.text, EndsWith("…"));
  ASSERT_THAT(familiesOf(cut), ElementsAre("Inter", "Noto Sans Arabic"));
  EXPECT_LT(start(cut.runs[0]), 1);
}

// Wrapped or not, Arabic or Latin: the card's direction decides, as it does for whole views.
TEST_F(TextTest, StartTheirLinesAtTheEdgeWhereTheCardBegins) {
  for (const std::string words : {"مرحبا بالعالم", "Hello world, and", "12"}) {
    for (const bool rightToLeft : {false, true}) {
      place.rightToLeft = rightToLeft;
      const double width = measure(words).width;
      const TextEngine::Setting setting =
          engine.set(text(words + "\n" + words), place, {0, 0, 200, 40});
      double left = 200;
      for (const GlyphRun& run : setting.runs) {
        for (const Glyph& glyph : run.glyphs) {
          left = std::min(left, glyph.origin.x);
        }
      }
      EXPECT_NEAR(left, rightToLeft ? 200 - width : 0, 1) << words << rightToLeft;
    }
  }
}

// What a reader of the letters would see: the system font draws no other character in their place.
TEST_F(TextTest, ShowEachCharacterAsReceived) {
  const auto expectAsReceived = [&](const std::string& characters) {
    const TextEngine::Setting setting = set(characters);
    ASSERT_THAT(setting.runs, SizeIs(1));
    std::string shown;
    for (const Glyph& glyph : setting.runs[0].glyphs) {
      for (char character = ' '; character < 127; ++character) {
        const auto code = static_cast<unsigned char>(character);
        if (FT_Get_Char_Index(fonts.face(setting.runs[0].font), code) == glyph.id) {
          shown += character;
        }
      }
    }
    EXPECT_EQ(shown, characters);
  };
  for (const char* name : {"A -> B <- C --> D <=> E", "3x4 10x20 0xFF", "(A) A:B 12:30 A-B A@B"}) {
    expectAsReceived(name);
  }
  for (char first = '!'; first < 127; ++first) {
    std::string pairs;
    for (char second = '!'; second < 127; ++second) {
      pairs += first;
      pairs += second;
    }
    expectAsReceived(pairs);
  }
  EXPECT_LT(measure("AVAVAV").width, measure("AAAVVV").width - 3);  // kerned
}

TEST_F(TextTest, ShowASoftHyphenWhereALineBreaksAtItOnly) {
  const FT_UInt hyphen = FT_Get_Char_Index(fonts.face(FontBook::system(ui::Weight::regular)), '-');
  const double hyphenated = measure("auto-").width;
  const std::tuple<const char*, double, std::vector<double>> cases[] = {
      {"auto\u00ADmobile", unbound, {}},
      {"auto\u00ADmobile", 70, {measure("auto").width}},
      {"auto\u00ADmobile", hyphenated, {measure("auto").width}},
      {"auto\u00ADmobile", hyphenated - 1, {}},  // no room for it: cut as any long word
      {"auto\u00AD mobile", 70, {}},
      {"\u00AD\u00ADauto mobile\u00AD", 70, {}},
  };
  for (const auto& [characters, width, expected] : cases) {
    const TextEngine::Setting setting = set(characters, {width, unbound});
    EXPECT_EQ(setting.text, characters);
    std::vector<double> hyphensAt;  // from the left
    for (const Glyph& glyph : setting.runs.at(0).glyphs) {
      if (glyph.id == hyphen) {
        hyphensAt.push_back(glyph.origin.x);
      }
    }
    EXPECT_THAT(hyphensAt, ::testing::Pointwise(::testing::DoubleNear(1), expected))
        << characters << " " << width;
  }
  EXPECT_EQ(measure("auto\u00ADmobile"), measure("automobile"));
}

// Neither the fonts that are open already nor what was measured before takes part.
TEST_F(TextTest, LookTheSameWhateverWasDrawnBefore) {
  const std::vector<std::pair<std::string, std::string>> names{
      {"★ Star Café", "en"}, {"Ⱡ ⱥ ꜳ", "en"},    {"ᴀᴄᴍᴇ ﷼ ⌘", "en"},      {"שלום ★", "he"},
      {"مرحبا ﷺ", "ar"},     {"直 ⺀ ㍿", "ja"}, {"直 ⺀ ㍿", "zh-Hans"}, {"안녕 直", "ko"},
      {"नमस्ते ₹", "hi"},      {"สวัสดี", "th"},     {"👍🏽 ☎ ☎️ ♥", "en"},    {"∮ E⋅da = Q ⇒ ∑", "en"},
      {"⠓⠑⠇⠇⠕ ▲ ◆", "en"},   {"ⲁⲃⲅ ⴰⴱ", "en"},   {"ᚠᛇᚻ ☃", "en"},         {"𝔄𝕭 𝒞", "en"},
      {"ɐɓɕ ᵺ ᶏ ꞵ", "en"},   {"Ạ̈ ệ q̃̂", "vi"},    {"א̈ ж̃ 漢̈", "en"},        {"\U000F0000 ✈", "en"}};
  // The fonts' names and the glyphs with their places.
  const auto look = [](FontBook& book, const auto& name) {
    TextEngine fresh(book);
    const ui::Text shown = ui::Text::verbatim(name.first).font({15, ui::Weight::semibold});
    const auto setting = fresh.set(shown, {.language = name.second}, {0, 0, 400, 18});
    std::string result;
    for (const GlyphRun& run : setting.runs) {
      const FT_FaceRec_* face = book.face(run.font);
      result += std::string(face->family_name) + " " + face->style_name;
      for (const Glyph& glyph : run.glyphs) {
        result += " " + std::to_string(glyph.id) + "@" + std::to_string(glyph.origin.x);
      }
      result += "\n";
    }
    return result;
  };
  std::map<std::string, std::string> alone;
  for (const auto& name : names) {
    FontBook book;
    alone[name.first + name.second] = look(book, name);
  }
  std::vector<std::size_t> order(names.size());
  std::iota(order.begin(), order.end(), 0U);
  std::mt19937 random(7);
  for (int round = 0; round < 12; ++round) {
    FontBook book;
    for (const std::size_t i : order) {
      EXPECT_EQ(look(book, names[i]), alone[names[i].first + names[i].second]) << names[i].first;
    }
    std::ranges::shuffle(order, random);
  }

  // Lines too: where a long text was looked at in part first.
  const std::string word(5000, 'x');
  const Size whole{20'000, unbound};
  const Size before = measure(word, whole);
  TextEngine other(fonts);
  other.measure(text(word), place, {100, 20});
  EXPECT_EQ(other.measure(text(word), place, whole), before);
}

TEST_F(TextTest, OfAMegabyteCostNoMoreThanWhatTheyShow) {
  const std::pair<const char*, std::vector<const char*>> cases[] = {
      {"letters",
       {"word ", "x", "漢", "مرحبا ", "\n", "e\u0301", "👍🏽", "\u202bא", "漢a", "ab\u00AD"}},
      {"marks upon one letter, format characters", {"\u0301", "\u200b", "\u00AD", "\u202b"}},
      {"a single cluster, a letter without a width or a font",
       {"👩\u200d", "\u3164", "\U000F0000"}},
  };
  std::vector<std::string> units;
  for (const auto& [what, some] : cases) {
    units.insert(units.end(), some.begin(), some.end());
  }
  for (const std::string& unit : units) {
    std::string characters = "a";
    while (characters.size() < (1U << 20U)) {
      characters += unit;
    }
    const Size size = measure(characters, {306, 126});
    EXPECT_LE(size.width, 306.5) << unit;
    const TextEngine::Setting setting = set(characters, {306, 126});
    EXPECT_LE(setting.text.size(), 16384U) << unit;
    std::size_t glyphs = 0;
    for (const GlyphRun& run : setting.runs) {
      glyphs += run.glyphs.size();
    }
    EXPECT_LE(glyphs, maxGlyphs + 1024) << unit;
    EXPECT_LE(measure(characters).width, 20.0 * (maxGlyphs + 1024)) << unit;
    EXPECT_LE(measure(characters, {306, unbound}).height, 18.0 * (maxGlyphs + 1024)) << unit;
  }
}

TEST_F(TextTest, KeepAsManyMarksAsPeopleWriteAndEndWhereTheyAreCut) {
  const auto marked = [](int count) {
    std::string characters = "a";
    for (int i = 0; i < count; ++i) {
      characters += "\u0316";
    }
    return characters + "b";
  };
  EXPECT_EQ(set(marked(maxMarks)).text, marked(maxMarks));
  EXPECT_EQ(set(marked(maxMarks + 1)).text, marked(maxMarks));
  EXPECT_EQ(set(marked(100'000)).text, marked(maxMarks));
  EXPECT_EQ(set(std::string(8000, 'x')).text, std::string(8000, 'x'));
  EXPECT_THAT(set(std::string(100'000, 'x')).text, EndsWith("x…"));
}

TEST_F(TextTest, AreTheSameFromTheCacheAndAfterIt) {
  const Size before = measure("Acme Studio");
  for (int i = 0; i < 5000; ++i) {
    measure("Client number " + std::to_string(i));
  }
  EXPECT_EQ(measure("Acme Studio"), before);
}

}  // namespace
}  // namespace quillpad::drawing
