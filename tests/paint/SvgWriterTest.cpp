#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "fixtures/Program.h"
#include "paint/DrawnCard.h"
#include "platform/paint/Comparison.h"
#include "platform/paint/PngReader.h"
#include "platform/paint/PngWriter.h"
#include "platform/paint/SvgWriter.h"

namespace quillpad::drawing {
namespace {

std::vector<std::string> found(const std::string& text, const std::string& pattern) {
  const std::regex expression(pattern);
  std::vector<std::string> all;
  for (std::sregex_iterator at(text.begin(), text.end(), expression); at != std::sregex_iterator();
       ++at) {
    all.push_back((*at)[1]);
  }
  return all;
}

class SvgWriterTest : public DrawingTest {
 protected:
  DisplayList textCard(const std::string& text, int scale = 2) {
    const auto view = ui::Text::verbatim(text).font({17, ui::Weight::regular});
    return composed(view, {.kind = "Card", .scale = scale});
  }

  std::string svg(const DisplayList& list, const char* prefix = "w") {
    return writeSvg(list, ui::Appearance::light, fonts_, pictures_, prefix).value();
  }

  std::filesystem::path saved(const std::string& document) {
    std::filesystem::path file = home_.path() / "card.svg";
    std::ofstream(file, std::ios::binary) << document;
    return file;
  }
};

TEST_F(SvgWriterTest, NoTextBreaksTheDocument) {
  const std::vector<std::string> texts{
      "<script>alert(1)</script>",
      "a \"b\" 'c' & ]]> --> <![CDATA[",
      std::string("nul\0nul", 7),
      "bell\x07 escape\x1b[0m",
      "\xED\xA0\x80 lone",
      "\xEF\xBF\xBF\xEF\xBF\xBE",
      "cut \xE2\x82",
      "tab\tline\nreturn\r",
      ""};
  for (const std::string& text : texts) {
    const std::string document = svg(textCard(text));
    EXPECT_EQ(document.find("<script"), std::string::npos);
    const auto checked =
        fixtures::Program("xmllint", {"--nonet", "--noout", saved(document)}).wait();
    EXPECT_EQ(checked.status, 0) << checked.err << document;
  }
}

TEST_F(SvgWriterTest, ReadersGetTheTexts) {
  const std::string document = svg(textCard("Tom & Jerry"));
  EXPECT_NE(document.find("<title>Tom &amp; Jerry</title>"), std::string::npos);
  EXPECT_NE(document.find("role=\"img\" aria-label=\"Tom &amp; Jerry\""), std::string::npos);
  EXPECT_NE(svg(card({10, 10}, 1, {})).find("<title>Card</title>"), std::string::npos);
}

TEST_F(SvgWriterTest, IdsAreThePagesOwn) {
  DisplayList list = textCard("aabba");
  list.items.push_back(fill({0, 0, 9, 9}, green, 0, {Clip{{0, 0, 5, 5}, 2}}));
  list.items.push_back(fill({0, 0, 9, 9}, black, 0, {Clip{{0, 0, 5, 5}, 2}}));
  const std::string document = svg(list, "first-");
  const std::vector<std::string> ids = found(document, " id=\"([^\"]*)\"");
  EXPECT_EQ(ids.size(), 3U) << "one for each letter, one for the clip";
  const std::set<std::string> unique(ids.begin(), ids.end());
  EXPECT_EQ(unique.size(), ids.size());
  for (const std::string& id : ids) {
    EXPECT_EQ(id.rfind("first-", 0), 0U) << id;
  }
  const std::vector<std::string> used = found(document, "#(first[^\")]*)[\")]");
  EXPECT_EQ(used.size(), 7U) << "five letters and two clipped fills";
  EXPECT_EQ(std::set(used.begin(), used.end()), unique);
}

TEST_F(SvgWriterTest, NumbersAreShort) {
  const std::string document =
      svg(card({158, 158}, 3, {fill({0.1 + 0.2, -0.0001, 1e-9, 1.0 / 3}, green)}));
  EXPECT_NE(
      document.find(R"(<rect x="0.3" y="0" width="0" height="0.333" fill="#11B826"/>)"),
      std::string::npos)
      << document;
}

TEST_F(SvgWriterTest, CornersAreAsRoundAsTheShorterSideAllows) {
  const DisplayList list = card(
      {80, 80},
      1,
      {fill({1, 1, 10, 40}, green, 30), fill({9, 9, 9, 9}, green, 0, {Clip{{1, 2, 40, 12}, 8}})});
  EXPECT_EQ(
      found(svg(list), "<rect x=\"1\" .* rx=\"([0-9]+)\""), (std::vector<std::string>{"6", "5"}));
}

// Painted over the ground, the ground would show through the antialiased corners.
TEST_F(SvgWriterTest, FillsUnderTheWholeCardAreOne) {
  const Rect all{0, 0, 80, 80};
  const Clip corners{all, 22};
  const auto fills = [&](std::vector<Item> items) {
    return found(
        svg(card({80, 80}, 1, std::move(items))), "<rect x=\"0\"[^>]* fill=\"([^\"]*)\"/>\n");
  };
  using Colors = std::vector<std::string>;
  const Item small = fill({0, 1, 2, 3}, black);
  EXPECT_EQ(fills({fill(all, green, 0, {corners})}), Colors{"#11B826"});
  EXPECT_EQ(fills({fill(all, ui::Rgba{0, 0, 0, 51}, 22)}), Colors{"#CCCCCC"});
  EXPECT_EQ(fills({small, fill(all, green)}), Colors{"#11B826"});
  EXPECT_EQ(fills({small, fill(all, ui::Color{green, {0, 0, 0, 9}})}).size(), 3U) << "seen through";
  EXPECT_EQ(fills({fill(all, green, 30)}).size(), 2U) << "rounder than the card";
  EXPECT_EQ(fills({fill(all, green, 0, {Clip{{0, 0, 80, 40}, 0}})}).size(), 2U) << "hidden in part";
}

TEST_F(SvgWriterTest, ColoursAreOfOneAppearanceOrFollowThePage) {
  constexpr ui::Rgba clear{17, 184, 38, 51};
  const std::tuple<std::optional<ui::Appearance>, ui::Color, std::string> cases[] = {
      {ui::Appearance::light, {white, black}, R"(fill="#FFFFFF")"},
      {ui::Appearance::dark, {white, black}, R"(fill="#000000")"},
      {ui::Appearance::dark, {white, clear}, R"(fill="#11B826" fill-opacity="0.2")"},
      {{}, {white, black}, R"svg(fill="light-dark(#FFFFFF,#000000)")svg"},
      {{}, {white, clear}, R"svg(fill="light-dark(#FFFFFF,#11B82633)")svg"},
      {{}, clear, R"(fill="#11B826" fill-opacity="0.2")"},
  };
  for (const auto& [appearance, color, expected] : cases) {
    const DisplayList list = card({9, 9}, 1, {fill({1, 1, 2, 2}, color)});
    const std::string document = writeSvg(list, appearance, fonts_, pictures_, "w").value();
    EXPECT_EQ(found(document, "<rect x=\"1\"[^>]* (fill=.*)/>"), std::vector{expected});
  }
}

// Another program's drawing of the document against the PNG writer's: the same but for baselines,
// which stand on whole pixels in both, and quarter-pixel places.
TEST_F(SvgWriterTest, LooksLikeThePng) {
  DisplayList list = textCard("Figures 1,234.56", 3);
  list.items.push_back(fill({110, 110, 32, 32}, green, 16));
  const std::filesystem::path drawn = home_.path() / "drawn.png";
  const auto converted =
      fixtures::Program("rsvg-convert", {"--zoom", "3", "--output", drawn, saved(svg(list))})
          .wait();
  ASSERT_EQ(converted.status, 0) << converted.err;
  const Bitmap png =
      readPng(PngWriter(fonts_, pictures_).write(list, ui::Appearance::light).value()).value();
  const Comparison comparison = compare(png, readPngFile(drawn).value(), {.channel = 64});
  EXPECT_LT(comparison.differingPixels, 40);
}

}  // namespace
}  // namespace quillpad::drawing
