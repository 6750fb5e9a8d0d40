#include <chrono>
#include <gtest/gtest.h>

#include "home/extension/RestartPolicy.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

TEST(RestartPolicy, PausesLongerAfterEachEndInARowUntilItGivesUp) {
  RestartPolicy policy;
  for (int row = 0; row < 2; ++row) {
    EXPECT_FALSE(policy.hasEnded());
    for (const auto pause : {0s, 1s, 5s, 25s}) {
      EXPECT_EQ(policy.pauseAfterEnd(), pause);
      EXPECT_TRUE(policy.hasEnded());
    }
    EXPECT_EQ(policy.pauseAfterEnd(), std::nullopt);
    EXPECT_EQ(policy.pauseAfterEnd(), std::nullopt);
    policy.reset();
  }
}

}  // namespace
}  // namespace quillpad::home
