#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/paint/Card.h"
#include "platform/paint/DisplayListJson.h"
#include "platform/text/FontBook.h"
#include "platform/text/TextEngine.h"

namespace quillpad::drawing {
namespace {

using testing::ElementsAre;
using namespace ui;

class InspectionTest : public testing::Test {
 protected:
  Inspection inspected(const View& view, const CardRequest& request) {
    return inspect(view, request, imageSize_, texts_);
  }

  ImageSize imageSize_ = [](const std::string&) { return Size{20, 20}; };
  FontBook fonts_;
  TextEngine texts_{fonts_};
};

TEST_F(InspectionTest, TellsTheNodeOfEachItemAlsoWhereSomeAreLeftOutOrBecomeBars) {
  const View view = VStack(
      Image("Graph"),
      Text::verbatim("one two three four").font({12, Weight::regular}).frame(Frame{.width = 60}),
      Text::verbatim("last").background(blackColor));
  // stack, image, frame, text, background, text
  for (const bool rightToLeft : {false, true}) {
    const CardRequest request{.rightToLeft = rightToLeft, .language = "en"};
    const Inspection card = inspected(view, request);
    EXPECT_THAT(card.nodes, ElementsAre(-1, 1, 3, 4, 5));
    EXPECT_EQ(
        toJson(card.list, Appearance::light),
        toJson(compose(view, request, imageSize_, texts_), Appearance::light));
  }
  const Inspection placeholder = inspected(view, {.language = "en", .redacted = true});
  EXPECT_THAT(placeholder.nodes, ElementsAre(-1, 3, 3, 4, 5)) << "two lines are two bars";
}

TEST_F(InspectionTest, TellsTheBaselineOfEachLineOnce) {
  struct Case {
    const char* text;
    std::vector<double> baselines;
  };
  for (const auto& [text, baselines] :
       {Case{"one", {83.5}},
        Case{"one two three four", {76.0, 90.0}},
        Case{"e\u0301 \u0e01\u0e35\u0e49 \U0001F600", {83.5}},
        Case{"q\u0323\u0324\u0325 \u0e1b\u0e38\u0e39 \u05d3\u05b8", {83.5}}}) {
    const View view = Text::verbatim(text).font({12, Weight::regular}).frame(Frame{.width = 60});
    const Inspection card = inspected(view, {.language = "en"});
    EXPECT_EQ(baselinesOf(std::get<TextItem>(card.list.items.at(1).content)), baselines) << text;
  }
}

}  // namespace
}  // namespace quillpad::drawing
