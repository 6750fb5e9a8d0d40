// The home screen's commands with an extension that is no invoice widget at all: nothing of the
// product is known to them.
#include "system/HomeScreen.h"

namespace quillpad {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;

class ForeignExtensionTest : public HomeScreenTest {
 protected:
  static constexpr const char* kind = "clock/Uhr & <Zeit>";

  Outcome runWithClock(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"--extension", CLOCK_EXTENSION});
    return run(std::move(arguments));
  }
};

TEST_F(ForeignExtensionTest, EveryCommandWorks) {
  const std::pair<std::vector<std::string>, testing::Matcher<std::string>> cases[] = {
      {{"list"}, AllOf(HasSubstr(kind), HasSubstr("Clock \"UTC\""))},
      {{"list", "--json"}, HasSubstr(R"("families":["systemMedium","systemSmall"])")},
      {{"placeholder", kind, "--json"}, HasSubstr(R"("data":"00:00")")},
      {{"snapshot", kind, "--json"}, MatchesRegex(".*\"data\":\"[0-9]{2}:[0-9]{2}\".*")},
      {{"timeline", kind, "--json"}, MatchesRegex(".*\"data\".*\"data\".*\"policy\".*")},
      {{"tree", kind}, HasSubstr("Time of day")},
      {{"render", kind, "-o", "-", "--format", "svg"}, HasSubstr("Time of day")},
      {{"render", kind, "-o", "-", "--format", "json", "--family", "systemSmall"},
       HasSubstr("\"family\":\"systemSmall\"")},
  };
  for (const auto& [arguments, out] : cases) {
    const Outcome outcome = runWithClock(arguments);
    EXPECT_EQ(outcome.status, 0) << arguments.front() << ": " << outcome.err;
    EXPECT_EQ(outcome.err, "") << arguments.front();
    std::string line = outcome.out;
    std::erase(line, '\n');
    EXPECT_THAT(line, out) << arguments.front();
  }
}

TEST_F(ForeignExtensionTest, ADroppedTimelineIsToldInItsOwnWords) {
  const fixtures::ScopedVariable stopped("CLOCK_STOPPED", "yes");
  const Outcome outcome = runWithClock({"timeline", kind});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.err, HasSubstr("the clock has stopped\n"));
  EXPECT_THAT(outcome.err, HasSubstr("the extension dropped the request"));
}

}  // namespace
}  // namespace quillpad
