#include <gmock/gmock.h>
#include <optional>

#include "fixtures/TemporaryHome.h"
#include "home/extension/HomeLock.h"

namespace quillpad::home {
namespace {

TEST(HomeLock, IsHeldByOneHomeScreenWhoseAddressOthersAreTold) {
  const fixtures::TemporaryHome home;
  std::optional first = HomeLock::take();
  ASSERT_TRUE(*first);
  EXPECT_THAT(HomeLock::take().error(), testing::HasSubstr("has not told yet"));
  (**first).setAddress("http://127.0.0.1:8480/the/longer/one/before");
  (**first).setAddress("http://127.0.0.1:8480/?key=0a");
  EXPECT_THAT(HomeLock::take().error(), testing::HasSubstr(", at http://127.0.0.1:8480/;"));
  first.reset();
  EXPECT_TRUE(HomeLock::take());
}

TEST(HomeLock, IsNotNeededWhereNoStateIsKept) {
  const fixtures::ScopedVariable noHome("HOME", std::nullopt);
  const fixtures::ScopedVariable noState("XDG_STATE_HOME", "/proc/nowhere");
  EXPECT_TRUE(HomeLock::take());
}

}  // namespace
}  // namespace quillpad::home
