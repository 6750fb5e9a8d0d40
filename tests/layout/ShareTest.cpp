#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "platform/layout/Share.h"
#include "platform/layout/Spacing.h"

namespace quillpad::drawing {
namespace {

// A child that takes what it is offered between two lengths.
struct Elastic {
  double min = 0;
  double max = 0;
};

TEST(Share, ServesTheLeastFlexibleFirstAndEqualsInTheirOrder) {
  const double infinity = std::numeric_limits<double>::infinity();
  const struct {
    double room;
    std::vector<Elastic> children;
    std::vector<double> lengths;
    double left;
  } cases[] = {
      {100, {}, {}, 100},
      {100, {{10, 10}}, {10}, 90},
      {100, {{0, infinity}, {0, infinity}}, {50, 50}, 0},
      {100, {{0, infinity}, {0, 20}, {0, infinity}}, {40, 20, 40}, 0},
      {100, {{0, infinity}, {80, 80}}, {20, 80}, 0},
      {100, {{0, 70}, {0, 30}, {0, 10}}, {60, 30, 10}, 0},
      {100, {{60, 70}, {60, 80}}, {60, 60}, -20},
      {-5, {{0, infinity}, {8, infinity}}, {0, 8}, -13},
      {infinity, {{0, 5}, {0, infinity}}, {5, infinity}, infinity},
  };
  for (const auto& [room, children, lengths, left] : cases) {
    std::vector<Flexible> flexible;
    for (const Elastic& child : children) {
      flexible.push_back({flexible.size(), child.max - child.min});
    }
    std::vector<double> taken(children.size());
    EXPECT_EQ(
        share(
            room,
            flexible,
            [&](std::size_t child, double offer) {
              return taken[child] = std::clamp(offer, children[child].min, children[child].max);
            }),
        left);
    EXPECT_EQ(taken, lengths) << room;
  }
  std::vector<Flexible> equals{{0, 1}, {1, 1}, {2, 0}, {3, 1}};
  std::vector<std::size_t> order;
  share(4, equals, [&](std::size_t child, double) {
    order.push_back(child);
    return 1;
  });
  EXPECT_EQ(order, (std::vector<std::size_t>{2, 0, 1, 3}));
}

TEST(Spacing, GapIsTheLargestThatBothAskForElseWhatEitherDoes) {
  const Spacing ordinary = Spacing::ordinary();
  const Spacing small = Spacing::text({10, ui::Weight::regular}, 2);
  const Spacing large = Spacing::text({20, ui::Weight::regular}, 2);
  const Spacing spacer = Spacing::spacer(ui::Axis::vertical);
  const struct {
    const char* what;
    const Spacing& above;
    const Spacing& below;
    double gap;
  } cases[] = {
      {"shapes", ordinary, ordinary, 8},
      {"texts", small, large, 0},
      {"a shape above a text", ordinary, large, 23.868 + 2.5 - 19.042},
      {"a text above a shape", large, ordinary, 23.868 + 2.5 - 14.092},
      {"a text above a spacer", small, spacer, 0},
      {"a spacer above a shape", spacer, ordinary, 0},
  };
  for (const auto& [what, above, below, gap] : cases) {
    EXPECT_NEAR(gapBetween(above.bottom, below.top), gap, 1e-9) << what;
    EXPECT_EQ(gapBetween(above.trailing, below.leading), 8) << what;
  }
}

}  // namespace
}  // namespace quillpad::drawing
