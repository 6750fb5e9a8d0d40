#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "home/cards/InspectorText.h"
#include "home/page/Inspector.h"
#include "platform/paint/Card.h"
#include "platform/text/FontBook.h"
#include "platform/text/TextEngine.h"

namespace quillpad::home {
namespace {

using namespace ui;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;

class InspectorTest : public testing::Test {
 protected:
  drawing::Inspection inspected(const View& view, bool rightToLeft = false) {
    return drawing::inspect(
        view,
        {.size = {100, 40}, .rightToLeft = rightToLeft, .language = "en"},
        [](const std::string&) { return drawing::Size{20, 20}; },
        texts_);
  }

  drawing::FontBook fonts_;
  drawing::TextEngine texts_{fonts_};
};

TEST_F(InspectorTest, NamesEveryContentAndModifier) {
  const double infinity = std::numeric_limits<double>::infinity();
  const struct {
    View view;
    const char* label;  // of the outermost node
  } cases[] = {
      {Text::verbatim("a\n\x1b[b\xff"), "text \"a  [b\xef\xbf\xbd\""},
      {Text::verbatim(std::string(39, 'x') + "éé"),
       "text \"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxé…\""},
      {Image("Graph"), "image \"Graph\""},
      {Rectangle({whiteColor, {28, 28, 30, 128}}), "rectangle #FFFFFF/#1C1C1E80"},
      {Spacer(), "spacer"},
      {VStack(), "vstack"},
      {HStack(), "hstack"},
      {Spacer().padding(4.125), "padding 4.13"},
      {Spacer().padding({.top = 1, .trailing = -2}),
       "padding top 1 leading 0 bottom 0 trailing -2"},
      {Spacer().frame(Frame{.height = 3}), "frame height 3"},
      {Spacer().frame(FlexibleFrame{.minWidth = 2, .maxHeight = infinity}),
       "flexibleFrame min width 2 max height ∞"},
      {Spacer().frame(FlexibleFrame{
           .minWidth = 2, .idealWidth = 2, .maxWidth = 2, .minHeight = 3, .maxHeight = 3}),
       "flexibleFrame width 2 min height 3 max height 3"},
      {Spacer().background(blackColor), "background #000000"},
      {Spacer().clipShape({.cornerRadius = 8}), "clipShape cornerRadius 8"},
      {Spacer().widgetURL(URL::parse("quillpad://a")), "widgetURL \"quillpad://a\""},
  };
  for (const auto& one : cases) {
    EXPECT_EQ(nodeLabel(inspected(one.view).trace.nodes.front()), one.label);
  }
}

TEST_F(InspectorTest, TellsWhoOfferedAndWhatTheNeighboursTake) {
  const View view = HStack(
      Rectangle(blackColor).frame(Frame{.width = 30, .height = 10}),
      Text::verbatim("Sum").font({10, Weight::medium}).padding({.top = 3, .leading = 5}),
      Spacer());
  // hstack, frame, rectangle, padding, text, spacer
  const auto facts = factsOf(inspected(view), {});
  EXPECT_THAT(
      facts[0].rows,
      ElementsAre(
          Pair("Offered", "100 × 40 by the card"),
          Pair("Takes", "100 × 15"),
          Pair("Stands at", "0, 12.5"),
          Pair("Children and (gaps)", "hstack: 30 + (8) + 26.5 + 35.5"),
          Pair(
              "Order of offers",
              "frame width 30 height 10 → padding top 3 leading 5 bottom 0 trailing 0 → spacer")));
  EXPECT_THAT(
      facts[3].rows,
      ElementsAre(
          Pair("Offered", "54 × 40 by hstack"),
          Pair("Takes", "26.5 × 15"),
          Pair("Stands at", "38, 12.5"),
          Pair("Gap before it", "8 from frame width 30 height 10"),
          Pair("In its stack", "hstack: 30 + (8) + 26.5 + 35.5"),
          Pair("Its turn", "2 of 3"),
          Pair("Insets", "↑ 3 ← 5")));
  EXPECT_THAT(facts[4].rows.back(), Pair("Baselines", "25"));
  EXPECT_THAT(facts[4].rows[facts[4].rows.size() - 2], Pair("Font", "10 medium"));

  const auto mirrored = factsOf(inspected(view, true), Language::preferred("ar"));
  EXPECT_THAT(mirrored[3].rows.back().second, "\u2066↑ 3 → 5\u2069");
  EXPECT_THAT(mirrored[5].rows[3].second, HasSubstr("\u20660\u2069"));
  EXPECT_THAT(mirrored[0].rows[0].second, HasSubstr("\u2066100 × 40\u2069"));
}

TEST_F(InspectorTest, WarnsWithTheNumbers) {
  const auto warnings = [&](const View& view) {
    return warningsMarkup(inspected(view), {}).html();
  };
  EXPECT_EQ(warnings(Text::verbatim("short")), "");
  EXPECT_THAT(
      warnings(HStack(Text::verbatim("<b> and much more of it"), Image("Graph"))),
      AllOf(
          HasSubstr("data-node=\"1\""),
          HasSubstr("text &quot;&lt;b&gt; and much more of it&quot; is cut off: offered 72 × 40, "
                    "all of it takes ")));
  EXPECT_THAT(
      warnings(Image("Graph").frame(Frame{.width = 10, .height = 30})),
      HasSubstr("image &quot;Graph&quot; stands out of what is around it (→ 5 ← 5): offered 10 × "
                "30, it takes 20 × 20."));
  EXPECT_THAT(
      warnings(VStack(Image("a"), Image("b"), Text::verbatim("c"))),
      HasSubstr("vstack leaves the card (↑ "));
}

TEST_F(InspectorTest, ShowsAThousandRowsAtMost) {
  Group rows;
  for (int i = 0; i < 1500; ++i) {
    rows.views.push_back(Rectangle(blackColor));
  }
  const View view = VStack(std::move(rows));
  const auto card = inspected(view);
  std::string json = "{\n \"items\":[";
  for (std::size_t i = 0; i < card.list.items.size(); ++i) {
    json += "\n  {<" + std::to_string(i) + ">},";
  }
  EXPECT_THAT(
      inspectorMarkup(card, json, {}).html(),
      AllOf(
          HasSubstr("data-node=\"-1\">  {&lt;0&gt;},</span>"),
          HasSubstr("data-node=\"1\">  {&lt;1&gt;},</span>"),
          HasSubstr("{&lt;999&gt;}"),
          Not(HasSubstr("{&lt;1000&gt;}")),
          HasSubstr("data-node=\"999\""),
          Not(HasSubstr("data-node=\"1000\"")),
          HasSubstr(" + …"),
          HasSubstr("Only the first 1000 are shown.")));

  Group stacks;
  for (int i = 0; i < 600; ++i) {
    stacks.views.push_back(HStack(Spacer()));
  }
  const View nested = VStack(std::move(stacks));
  EXPECT_THAT(
      inspectorMarkup(inspected(nested), "", {}).html(),
      HasSubstr("Only the first 1000 are shown."));
}

}  // namespace
}  // namespace quillpad::home
