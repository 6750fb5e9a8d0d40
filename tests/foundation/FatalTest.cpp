#include <gtest/gtest.h>
#include <sys/resource.h>

#include "platform/foundation/Fatal.h"
#include "platform/foundation/LateLibrary.h"

namespace quillpad {
namespace {

TEST(FatalDeathTest, PrintsOneLineAndAborts) {
  EXPECT_EXIT(
      fatal("SalesData line 58: the answer\nis no JSON"),
      testing::KilledBySignal(SIGABRT),
      "^SalesData line 58: the answer is no JSON\n$");
}

TEST(FatalDeathTest, NamesTheLineOfWhoForcesAnAbsentValue) {
  const std::optional<int> nothing;
  const Dictionary row{{"total", "12"}};
  const std::string line = std::to_string(__LINE__ + 1);
  EXPECT_DEATH(forced(nothing, "the token"), "^FatalTest line " + line + ": the token is absent");
  EXPECT_DEATH(forcedMember<Number>(row, "no"), "^FatalTest line [0-9]+: no is absent");
  EXPECT_DEATH(
      forcedMember<Number>(row, "total"),
      "^FatalTest line [0-9]+: total is of another kind than expected");
  EXPECT_EQ(forcedMember<std::string>(row, "total"), "12");
}

TEST(FatalDeathTest, ALibraryThatIsNotThereIsNamedAtItsFirstCall) {
  const LateFunction<int()> function("libnowhere.so.1", "answer");
  EXPECT_DEATH(function(), "^A shared library is missing, install it: libnowhere.so.1: ");
}

TEST(FatalDeathTest, AProcessThatForbidsCoreFilesDoesNotDump) {
  EXPECT_EXIT(
      {
        forbidCoreFiles();
        rlimit limit{};
        getrlimit(RLIMIT_CORE, &limit);
        // Below the size of any core file; the system takes this very limit as "no program either".
        std::exit(static_cast<int>(limit.rlim_max));
      },
      testing::ExitedWithCode(1),
      "");
}

}  // namespace
}  // namespace quillpad
