#include "system/HomeScreen.h"

namespace quillpad {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using FramesTest = HomeScreenTest;

TEST_F(FramesTest, TheTreeTellsWhatTheLayoutMakesOfIt) {
  const std::vector<std::string> command{
      "tree", "UnpaidMediumWidget", "--sample", "rows-long-names", "--frames"};
  const Outcome tree = run(command);
  EXPECT_EQ(tree.status, 0) << tree.err;
  EXPECT_THAT(
      tree.out,
      AllOf(
          HasSubstr("\n    vstack  "),
          HasSubstr("  306 × 126    306 × 181   16, -11.5\n"),
          HasSubstr("warning: text \"The Honourable Company of Bookbinders, P…\" is cut off: "
                    "offered 237.5 × 24, all of it takes 545.5 × 18.\n")));

  auto large = command;
  large.insert(large.end(), {"--size", "700x200", "--locale", "ar"});
  EXPECT_THAT(
      run(large).out,
      AllOf(
          HasSubstr("  515.5 × 0     16, 39.75\n"),
          HasSubstr("warning: padding 16 leaves the card (↑ 6.5 ↓ 6.5): offered 700 × 200"),
          Not(HasSubstr("is cut off"))));
  large.back() = "en";
  large[6] = "7";
  EXPECT_EQ(run(large).status, 2);
}

}  // namespace
}  // namespace quillpad
