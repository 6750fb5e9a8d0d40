#include <gmock/gmock.h>

#include "home/server/ConnectionTimers.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

TEST(ConnectionTimers, RunOutByTheirDeadlineAndGoByTheirAge) {
  const ConnectionTimers::Time start{};
  ConnectionTimers timers;
  EXPECT_EQ(timers.nextDeadline(), std::nullopt);
  timers.start(1, start + 60s);
  timers.start(2, start + 10s);
  timers.start(3, start + 20s);
  timers.start(4, start + 10s);
  EXPECT_EQ(timers.nextDeadline(), start + 10s);
  EXPECT_EQ(timers.takeOldestBeyond(4), std::nullopt);
  EXPECT_EQ(timers.takeOldestBeyond(3), 1);
  timers.stop(4);
  EXPECT_THAT(timers.takeExpired(start + 9s), ElementsAre());
  EXPECT_THAT(timers.takeExpired(start + 10s), ElementsAre(2));
  EXPECT_EQ(timers.nextDeadline(), start + 20s);
}

TEST(ConnectionTimers, AConnectionThatStartsAnewIsTheYoungest) {
  const ConnectionTimers::Time start{};
  ConnectionTimers timers;
  timers.start(1, start + 10s);
  timers.start(2, start + 10s);
  timers.start(1, start + 30s);
  EXPECT_EQ(timers.takeOldestBeyond(1), 2);
  EXPECT_THAT(timers.takeExpired(start + 29s), ElementsAre());
  EXPECT_THAT(timers.takeExpired(start + 30s), ElementsAre(1));
}

}  // namespace
}  // namespace quillpad::home
