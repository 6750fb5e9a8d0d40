#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "layout/SquareMetrics.h"
#include "platform/layout/Layout.h"

namespace quillpad::drawing {
namespace {

using namespace ui;

constexpr Rgba black = blackColor;

std::string thousandths(double length) {
  std::ostringstream text;
  text << std::round(length * 1000) / 1000 + 0.0;
  return text.str();
}

// What stands where: "text abc 0,0 30x10; fill 0,10 30x1". Colours are "fill", clips by number.
std::string describe(const Layout& layout) {
  std::string text;
  for (const PlacedItem& item : layout.items) {
    text += text.empty() ? "" : "; ";
    if (const auto* const* words = std::get_if<const Text*>(&item.content)) {
      text += "text " + (*words)->text;
    } else if (std::holds_alternative<const Image*>(item.content)) {
      text += "image";
    } else {
      text += "fill";
    }
    const Rect& at = item.frame;
    text += " " + thousandths(at.x) + "," + thousandths(at.y) + " " + thousandths(at.width) + "x" +
            thousandths(at.height);
    text += item.clip >= 0 ? " clip " + std::to_string(item.clip) : "";
  }
  return text;
}

std::string laidOut(
    const View& view, Size size, LayoutDirection direction = LayoutDirection::leftToRight) {
  SquareMetrics metrics;
  return describe(layOut(view, size, direction, metrics));
}

// A view that takes what it is offered, down to `least` and up to `most` across the row.
View flexible(double least, double most) {
  return Rectangle(black).frame({.minWidth = least, .maxWidth = most}).frame({.height = 10});
}

// A view, the room for it and what stands where.
using Case = std::tuple<View, Size, const char*>;

TEST(Layout, PlacesWhatItIsGiven) {
  const Case cases[] = {
      // a text in the middle
      {text("abc"), {100, 50}, "text abc 35,20 30x10"},
      // a shape takes all
      {Rectangle(black), {100, 50}, "fill 0,0 100x50"},
      // an image keeps its size
      {Image("Graph"), {10, 10}, "image -7,-1 24x12"},
      // a missing image has none
      {Image("missing"), {10, 10}, "image 5,5 0x0"},
      // ordinary views stand 8 apart
      {HStack(box(10, 10), box(20, 20)), {38, 20}, "fill 0,5 10x10; fill 18,0 20x20"},
      // nothing stands beside a spacer
      {HStack(text("a"), Spacer(), text("b")), {100, 10}, "text a 0,0 10x10; text b 90,0 10x10"},
      // a spacer is 8 long at least
      {HStack(box(40, 10), Spacer(), box(40, 10)), {80, 10}, "fill -4,0 40x10; fill 44,0 40x10"},
      // texts below each other touch
      {VStack(text("a"), text("b")), {10, 20}, "text a 0,0 10x10; text b 0,10 10x10"},
      // a row of texts counts as a text
      {VStack(HStack(text("a"), Spacer()), HStack(text("b"), Spacer())),
       {50, 20},
       "text a 0,0 10x10; text b 0,10 10x10"},
      // a shape above a text: 23.868 + 3 - 19.042
      {VStack(box(20, 10), text("a", 20)), {20, 37.826}, "fill 0,0 20x10; text a 0,17.826 20x20"},
      // a text above a picture: 11.934 + 2 - 7.046
      {VStack(text("a"), Image("Graph")), {24, 28.888}, "text a 7,0 10x10; image 0,16.888 24x12"},
      // a row of a shape and a text asks for what either does
      {VStack(HStack(box(10, 10), text("a")), text("b")),
       {28, 24.413},
       "fill 0,0 10x10; text a 18,0 10x10; text b 9,14.413 10x10"},
      // on both sides
      {VStack(box(28, 9), HStack(box(10, 10), text("a")), box(28, 9)),
       {28, 39.301},
       "fill 0,0 28x9; fill 0,13.413 10x10; text a 18,13.413 10x10; fill 0,30.301 28x9"},
      // a column of texts beside a text is ordinary
      {HStack(VStack(text("a"), text("b")), text("c")),
       {28, 20},
       "text a 0,0 10x10; text b 0,10 10x10; text c 18,5 10x10"},
      // a column ends as its last view does
      {VStack(VStack(text("a"), box(10, 10)), text("b")),
       {10, 41.301},
       "text a 0,0 10x10; fill 0,16.888 10x10; text b 0,31.301 10x10"},
      // a fixed height makes a text's edges ordinary
      {VStack(text("a").frame({.height = 12}), box(10, 10)),
       {10, 30},
       "text a 0,1 10x10; fill 0,20 10x10"},
      // so does a least height
      {VStack(text("a").frame({.minHeight = 12}), text("b")),
       {10, 26.413},
       "text a 0,1 10x10; text b 0,16.413 10x10"},
      // a fixed width does not
      {VStack(text("a").frame({.width = 10}), text("b")),
       {10, 20},
       "text a 0,0 10x10; text b 0,10 10x10"},
      // any padding makes edges ordinary
      {VStack(text("a").padding(0), text("b").padding(0)),
       {10, 28},
       "text a 0,0 10x10; text b 0,18 10x10"},
      // content that does not fit overflows evenly
      {VStack(box(10, 30), box(10, 30)), {10, 40}, "fill 0,-14 10x30; fill 0,24 10x30"},
      // an empty stack is nothing
      {VStack(box(4, 4), HStack()), {4, 12}, "fill 0,0 4x4"},
  };
  for (const auto& [view, size, placed] : cases) {
    EXPECT_EQ(laidOut(view, size), placed);
  }
}

TEST(Layout, SharesTheRoomByFlexibility) {
  const Case cases[] = {
      // the least flexible first, the rest shared
      {HStack(Rectangle(black), flexible(0, 20), Rectangle(black)).frame({.height = 10}),
       {116, 10},
       "fill 0,0 40x10; fill 48,0 20x10; fill 76,0 40x10"},
      // equally flexible ones in their order
      {HStack(text("aaaaaaaa"), text("bbbbbbbb"), text("cccccccc")),
       {120, 10},
       "text aaaaaaaa 2,0 30x10; text bbbbbbbb 40,0 30x10; text cccccccc 78,0 40x10"},
      // two of any length in a stack of their own
      {HStack(HStack(Rectangle(black), Rectangle(black)), text("a")).frame({.height = 10}),
       {66, 10},
       "fill 0,0 20x10; fill 28,0 20x10; text a 56,0 10x10"},
      // the shorter text is served before the longer one
      {HStack(text("aaaaaaaaaaaa"), Spacer(), text("bb")),
       {100, 10},
       "text aaaaaaaaaaaa 0,0 70x10; text bb 80,0 20x10"},
      // a spacer's least length is held back from the texts
      {HStack(text("aaaaaaaaaaaa"), Spacer()), {58, 10}, "text aaaaaaaaaaaa 0,0 50x10"},
      // texts in a column are as flexible as at its width, in six stacks still
      {VStack(HStack(VStack(HStack(HStack(VStack(text("aaaa"), text("b")), Rectangle(black)))))),
       {48, 30},
       "text aaaa 0,0 20x20; text b 5,20 10x10; fill 28,0 20x30"},
      // two spacers share what is left
      {VStack(Spacer(), box(10, 10), Spacer(), Spacer()), {10, 100}, "fill 0,30 10x10"},
      // one that takes more than its share leaves less
      {HStack(flexible(0, 20), flexible(20, 39.5)), {38, 10}, "fill 0,0 10x10; fill 18,0 20x10"},
      // one that takes more than there is leaves nothing
      {HStack(box(80, 10), Rectangle(black)), {60, 10}, "fill -14,0 80x10; fill 74,0 0x10"},
      // a stack in a frame is placed as it was last offered, not as it was last measured
      {HStack(HStack(Spacer(), text("a")).frame({.maxWidth = 40}), text("b")),
       {100, 10},
       "text a 51,0 10x10; text b 69,0 10x10"},
      // nobody is shrunk again
      {HStack(flexible(60, 70), flexible(60, 80)), {100, 10}, "fill -14,0 60x10; fill 54,0 60x10"},
  };
  for (const auto& [view, size, placed] : cases) {
    EXPECT_EQ(laidOut(view, size), placed);
  }
}

// A text whose frame is seen by its background.
View framed(FlexibleFrame frame) { return text("a").frame(frame).background(black); }

TEST(Layout, AppliesModifiersInTheirOrder) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  const Case cases[] = {
      // padding insets the offer
      {Rectangle(black).padding({.top = 1, .leading = 2, .bottom = 3, .trailing = 4}),
       {100, 50},
       "fill 2,1 94x46"},
      // padding larger than the offer
      {Rectangle(black).padding(20), {30, 10}, "fill 15,5 0x0"},
      // padding that takes more than there is
      {box(4, 4).padding(-8).background(black), {100, 50}, "fill 50,25 0x0; fill 42,17 4x4"},
      // a spacer is nothing across
      {HStack(Spacer()).background(black), {40, 9}, "fill 0,4.5 40x0"},
      // padding inside a background
      {text("ab").padding(5).background(black), {100, 50}, "fill 35,15 30x20; text ab 40,20 20x10"},
      // padding outside a background
      {text("ab").background(black).padding(5), {100, 50}, "fill 40,20 20x10; text ab 40,20 20x10"},
      // a frame centres and lets overflow
      {Image("Graph").frame({.width = 10, .height = 20}).background(black),
       {50, 50},
       "fill 20,15 10x20; image 13,19 24x12"},
      // a frame with one length takes the other from its content
      {text("ab").frame({.height = 30}).background(black),
       {50, 50},
       "fill 15,10 20x30; text ab 15,20 20x10"},
      // senseless lengths bind nothing
      {Image("Graph").frame({.width = -1, .height = nan}).background(black),
       {10, 10},
       "fill -7,-1 24x12; image -7,-1 24x12"},
      {Image("Graph").frame({.maxWidth = -1, .maxHeight = nan}).background(black),
       {10, 10},
       "fill -7,-1 24x12; image -7,-1 24x12"},
      // a flexible frame bound both ways takes the clamped offer
      {framed({.minWidth = 20, .maxWidth = 30}), {100, 50}, "fill 35,20 30x10; text a 45,20 10x10"},
      // and the clamped offer of height
      {framed({.minHeight = 20, .maxHeight = 30}),
       {100, 50},
       "fill 45,10 10x30; text a 45,20 10x10"},
      // a flexible frame with a least height only
      {framed({.minHeight = 20}), {100, 50}, "fill 45,15 10x20; text a 45,20 10x10"},
      // a flexible frame with a greatest height only
      {framed({.maxHeight = 40}), {100, 50}, "fill 45,5 10x40; text a 45,20 10x10"},
      // a flexible frame without an upper bound is as large as its content
      {framed({.minWidth = 20}), {100, 50}, "fill 40,20 20x10; text a 45,20 10x10"},
      // a flexible frame with an infinite one takes all
      {framed({.maxWidth = infinity}), {100, 50}, "fill 0,20 100x10; text a 45,20 10x10"},
      // a clip masks what is inside it and takes no part otherwise
      {HStack(Image("Graph").frame({.width = 8}).clipShape({.cornerRadius = 4}), box(4, 4)),
       {20, 12},
       "image -8,0 24x12 clip 0; fill 16,4 4x4"},
      // a framed spacer is still a spacer; one of fixed length stands 8 apart
      {HStack(Spacer().frame({.height = 4}), box(10, 10), Spacer().frame({.width = 4})),
       {100, 10},
       "fill 78,0 10x10"},
  };
  for (const auto& [view, size, placed] : cases) {
    EXPECT_EQ(laidOut(view, size), placed);
  }
}

TEST(Layout, MirrorsTheCardForRightToLeft) {
  const View view =
      HStack(text("abc"), Spacer(), box(10, 10).padding({.leading = 5})).padding({.leading = 2});
  EXPECT_EQ(
      laidOut(view, {100, 10}, LayoutDirection::rightToLeft),
      "text abc 68,0 30x10; fill 0,0 10x10");
}

TEST(Layout, FindsTheOutermostLink) {
  SquareMetrics metrics;
  const View inner = text("a").widgetURL(URL::parse("quillpad://inner"));
  const View view = VStack(inner).widgetURL(URL::parse("quillpad://outer"));
  const Layout layout = layOut(view, {10, 10}, LayoutDirection::leftToRight, metrics);
  ASSERT_NE(layout.link, nullptr);
  EXPECT_EQ(*layout.link, "quillpad://outer");
}

// Rows and columns in one another, each with a text and a shape: every level asks for its content's
// least and greatest size on the way.
View nested(int depth) {
  View view = text("innermost");
  for (int level = 0; level < depth; ++level) {
    view = level % 2 == 0 ? HStack(std::move(view), text("beside it"), Rectangle(black))
                          : VStack(std::move(view), text("below it"), Rectangle(black));
  }
  return view;
}

TEST(Layout, MeasuresDeepNestingAFewTimesALevel) {
  SquareMetrics metrics;
  layOut(nested(40), {1e5, 1e5}, LayoutDirection::leftToRight, metrics);
  EXPECT_LT(metrics.measured, 40 * 20);
}

TEST(Layout, MeasuresEachRowOfALongListAFewTimes) {
  Group rows;
  for (int i = 0; i < 3000; ++i) {
    rows.views.push_back(HStack(text("name"), Spacer(), text("12")));
  }
  SquareMetrics metrics;
  const Layout layout =
      layOut(VStack(std::move(rows)), {338, 158}, LayoutDirection::leftToRight, metrics);
  EXPECT_EQ(layout.items.size(), 6000U);
  EXPECT_LT(metrics.measured, 6000 * 12);
}

}  // namespace
}  // namespace quillpad::drawing
