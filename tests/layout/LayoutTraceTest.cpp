#include <cmath>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

#include "layout/SquareMetrics.h"
#include "platform/layout/LayoutTrace.h"

namespace quillpad::drawing {
namespace {

using namespace ui;

std::string sizeName(Size size) {
  std::ostringstream name;
  name << size.width << "x" << size.height;
  return name.str();
}

// A line for each node, as deep as it stands: what it was offered, what it takes and where; then a
// line for each finding with what is beyond, top first.
std::string traced(
    const View& view, Size size, LayoutDirection direction = LayoutDirection::leftToRight) {
  constexpr const char* contents[] = {"text", "image", "fill", "spacer", "stack"};
  constexpr const char* modifiers[] = {"padding", "frame", "flexible", "ground", "clip", "link"};
  constexpr const char* kinds[] = {"cut off", "overflows", "leaves"};
  SquareMetrics metrics;
  const LayoutTrace trace = traceLayout(view, size, direction, metrics);
  std::ostringstream lines;
  for (const TracedNode& node : trace.nodes) {
    for (int around = node.parent; around >= 0;
         around = trace.nodes[static_cast<std::size_t>(around)].parent) {
      lines << " ";
    }
    lines << (node.modifier == nullptr ? contents[node.view->content.index()]
                                       : modifiers[node.modifier->index()])
          << " " << sizeName(node.proposed) << " > "
          << sizeName({node.frame.width, node.frame.height}) << " at " << node.frame.x << ","
          << node.frame.y << (node.whole ? " of " + sizeName(*node.whole) : "") << "\n";
  }
  for (const Finding& finding : findingsOf(trace, size, metrics.scale())) {
    const EdgeInsets& beyond = finding.beyond;
    lines << kinds[static_cast<int>(finding.kind)] << " " << finding.node << ": " << beyond.top
          << " " << beyond.trailing << " " << beyond.bottom << " " << beyond.leading << "\n";
  }
  return lines.str();
}

TEST(LayoutTrace, SaysWhatEachNodeWasOfferedAndTook) {
  const struct {
    View view;
    Size size;
    const char* trace;
    LayoutDirection direction = LayoutDirection::leftToRight;
  } cases[] = {
      // the outermost modifier is around the others, a link too
      {text("ab")
           .padding({.top = 1, .leading = 2, .bottom = 3, .trailing = 4})
           .widgetURL(URL::parse("quillpad://a")),
       {100, 50},
       "link 100x50 > 26x14 at 37,18\n"
       " padding 100x50 > 26x14 at 37,18\n"
       "  text 94x46 > 20x10 at 39,19\n"},
      // the same mirrored
      {text("ab").padding({.top = 1, .leading = 2, .bottom = 3, .trailing = 4}),
       {100, 50},
       "padding 100x50 > 26x14 at 37,18\n"
       " text 94x46 > 20x10 at 41,19\n",
       LayoutDirection::rightToLeft},
      // children of a stack with what it shared out last
      {HStack(text("abcd"), Spacer(), Rectangle(blackColor)),
       {100, 20},
       "stack 100x20 > 100x20 at 0,0\n"
       " text 46x20 > 40x10 at 0,5\n"
       " spacer 8x20 > 8x0 at 40,10\n"
       " fill 52x20 > 52x20 at 48,0\n"},
      // a text that is cut off, with all of it
      {HStack(text("abcdefgh"), box(60, 10)),
       {100, 10},
       "stack 100x10 > 98x10 at 1,0\n"
       " text 32x10 > 30x10 at 1,0 of 80x10\n"
       " frame 46x10 > 60x10 at 39,0\n"
       "  fill 60x10 > 60x10 at 39,0\n"
       "cut off 1: 0 0 0 0\n"},
      // a text of two lines is not
      {text("abcdef"), {30, 20}, "text 30x20 > 30x20 at 0,0\n"},
      // the innermost that stands out is named, inside the paddings around it
      {VStack(box(10, 30), box(10, 30)).padding(5).clipShape({.cornerRadius = 4}),
       {40, 40},
       "clip 40x40 > 20x78 at 10,-19\n"
       " padding 40x40 > 20x78 at 10,-19\n"
       "  stack 30x30 > 10x68 at 15,-14\n"
       "   frame 30x11 > 10x30 at 15,-14\n"
       "    fill 10x30 > 10x30 at 15,-14\n"
       "   frame 30x0 > 10x30 at 15,24\n"
       "    fill 10x30 > 10x30 at 15,24\n"
       "leaves 2: 14 0 14 0\n"
       "leaves 4: 14 0 0 0\n"
       "leaves 6: 0 0 14 0\n"},
      // a padding that alone is too large, and a picture larger than its frame
      {Image("Graph").frame(Frame{.width = 22.875, .height = 20}).padding(20),
       {22.875, 60},
       "padding 22.875x60 > 62.875x60 at -20,0\n"
       " frame 0x20 > 22.875x20 at 0,20\n"
       "  image 22.875x20 > 24x12 at -0.5625,24\n"
       "leaves 0: 0 20 0 20\n"
       "overflows 2: 0 0.5625 0 0.5625\n"
       "leaves 2: 0 0.5625 0 0.5625\n"},
      // a negative padding lets stand out what it holds
      {box(20, 20).padding(-5).padding(5),
       {40, 40},
       "padding 40x40 > 20x20 at 10,10\n"
       " padding 30x30 > 10x10 at 15,15\n"
       "  frame 40x40 > 20x20 at 10,10\n"
       "   fill 20x20 > 20x20 at 10,10\n"},
      // half a pixel is nothing
      {box(101, 10),
       {100, 10},
       "frame 100x10 > 101x10 at -0.5,0\n"
       " fill 101x10 > 101x10 at -0.5,0\n"},
      // a negative padding makes nobody else stand out
      {HStack(box(20, 20).padding(-5)),
       {10, 10},
       "stack 10x10 > 10x10 at 0,0\n"
       " padding 10x10 > 10x10 at 0,0\n"
       "  frame 20x20 > 20x20 at -5,-5\n"
       "   fill 20x20 > 20x20 at -5,-5\n"
       "leaves 3: 5 5 5 5\n"},
      // to the left of the card, mirrored
      {box(70, 10).padding({.leading = 31.5}),
       {100, 10},
       "padding 100x10 > 101.5x10 at -0.75,0\n"
       " frame 68.5x10 > 70x10 at -0.75,0\n"
       "  fill 70x10 > 70x10 at -0.75,0\n"
       "leaves 2: 0 0 0 0.75\n",
       LayoutDirection::rightToLeft},
  };
  for (const auto& one : cases) {
    EXPECT_EQ(traced(one.view, one.size, one.direction), one.trace);
  }
}

TEST(LayoutTrace, TellsTheOrderInWhichAStackOffersRoom) {
  SquareMetrics metrics;
  const View view =
      HStack(Rectangle(blackColor), Spacer(), text("abc").padding(1), text("ab"), Image("Graph"));
  std::vector<int> turns;
  for (const TracedNode& node :
       traceLayout(view, {90, 60}, LayoutDirection::leftToRight, metrics).nodes) {
    turns.push_back(node.turn);
  }
  // stack, rectangle, spacer, padding, text, text, image
  EXPECT_EQ(turns, (std::vector{0, 4, 5, 3, 0, 2, 1}));
}

TEST(LayoutTrace, LaysOutAsWithoutATrace) {
  const View view = VStack(
                        HStack(text("abcdefgh").background(blackColor), Spacer(), text("ij")),
                        Spacer(),
                        Image("Graph").frame(Frame{.width = 9}).clipShape({.cornerRadius = 2}))
                        .padding(7);
  SquareMetrics metrics;
  const auto direction = LayoutDirection::rightToLeft;
  const Layout layout = layOut(view, {90, 60}, direction, metrics);
  const LayoutTrace trace = traceLayout(view, {90, 60}, direction, metrics);
  ASSERT_EQ(trace.layout.items.size(), layout.items.size());
  for (std::size_t i = 0; i < layout.items.size(); ++i) {
    EXPECT_EQ(trace.layout.items[i].frame, layout.items[i].frame) << i;
    EXPECT_EQ(trace.layout.items[i].clip, layout.items[i].clip) << i;
  }
  // padding, stack, row, background, text, spacer, text, spacer, clip, frame, image
  EXPECT_EQ(trace.itemNodes, (std::vector{3, 4, 6, 10}));
}

TEST(LayoutTrace, LeavesOutWhatIsBehindTheFirstThousandNodes) {
  Group rows;
  for (int i = 0; i < 600; ++i) {
    rows.views.push_back(HStack(text("a")));
  }
  SquareMetrics metrics;
  const View view = VStack(std::move(rows));
  const LayoutTrace trace = traceLayout(view, {90, 60}, LayoutDirection::leftToRight, metrics);
  EXPECT_FALSE(trace.complete);
  EXPECT_EQ(trace.nodes.size(), maximumTracedNodes);
  EXPECT_EQ(trace.layout.items.size(), 600U);
  EXPECT_EQ(trace.itemNodes[498], 998) << "the last text that was taken down";
  EXPECT_EQ(trace.itemNodes[599], 0) << "the next one around it that was";

  View padded = text("a");
  padded.modifiers.assign(maximumTracedNodes, Padding{});
  const LayoutTrace none = traceLayout(padded, {90, 60}, LayoutDirection::leftToRight, metrics);
  EXPECT_EQ(none.itemNodes, std::vector{-1});
}

// What it asks beyond what layout asks is a few lines, however long a text is.
TEST(LayoutTrace, AsksForNoMoreOfATextThanItSays) {
  class WatchedMetrics final : public SquareMetrics {
   public:
    Size textSize(const ui::Text& text, Size proposed) override {
      largest.width = std::max(largest.width, proposed.width);
      largest.height = std::max(largest.height, proposed.height);
      return SquareMetrics::textSize(text, proposed);
    }
    Size largest{};
  } metrics;
  const View view = text(std::string(100'000, 'a'));
  const LayoutTrace trace = traceLayout(view, {30, 10}, LayoutDirection::leftToRight, metrics);
  EXPECT_EQ(metrics.largest, (Size{1000, 50}));
  EXPECT_EQ(trace.nodes.front().whole, (Size{1000, 50}));
}

}  // namespace
}  // namespace quillpad::drawing
