// What extensions can do to the rest of the machine: one that is made with the platform, and any
// program.
#include <algorithm>
#include <array>
#include <fstream>

#include "fixtures/Loopback.h"
#include "home/ScriptedExtension.h"
#include "platform/foundation/Json.h"
#include "platform/os/Landlock.h"
#include "system/HomeScreen.h"

namespace quillpad {
namespace {

using testing::HasSubstr;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool hasMemoryLimits = false;
#else
constexpr bool hasMemoryLimits = true;
#endif

constexpr int newest = 1000;
#ifdef OLD_KERNEL
constexpr const char* oldKernel = OLD_KERNEL;
constexpr std::array versions{2, newest};  // that of Debian 12, and this machine's
#else
constexpr const char* oldKernel = "";
constexpr std::array versions{newest};
#endif

// As much of Landlock as the parameter says, or as this kernel has.
class ConfinementTest : public HomeScreenTest, public testing::WithParamInterface<int> {
 protected:
  ConfinementTest() {
    std::ofstream(key_) << "secret";
    if (GetParam() != newest) {
      preloaded_.emplace("LD_PRELOAD", oldKernel);
      version_.emplace("LANDLOCK_VERSION", std::to_string(GetParam()));
    }
  }

  Outcome runWith(const std::filesystem::path& extension, std::vector<std::string> words) const {
    words.insert(words.begin(), {"--extension", extension.string()});
    return run(std::move(words));
  }

  const std::filesystem::path key_ = home_.path() / "key";
  const int landlock_ = std::min(GetParam(), LandlockRuleset::kernelVersion());
  std::optional<fixtures::ScopedVariable> preloaded_;
  std::optional<fixtures::ScopedVariable> version_;
};

INSTANTIATE_TEST_SUITE_P(Landlock, ConfinementTest, testing::ValuesIn(versions));

TEST_P(ConfinementTest, AHostileExtensionHarmsNothing) {
  const FileDescriptor sockets[] = {fixtures::bound(), fixtures::bound()};
  std::string ports[2];
  for (const int i : {0, 1}) {
    ::listen(sockets[i].get(), 8);
    ports[i] = std::to_string(fixtures::portOf(sockets[i]));
  }
  const fixtures::ScopedVariable key("HOSTILE_KEY", key_.string());
  const fixtures::ScopedVariable port("HOSTILE_PORT", ports[0]);
  const fixtures::ScopedVariable origin("HOSTILE_GATEWAY", "https://localhost:" + ports[1]);
  const Outcome outcome = runWith(HOSTILE_EXTENSION, {"snapshot", "attack", "--json"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(
      outcome.out,
      HasSubstr(
          std::string("\"data\":\"") + (landlock_ < 4 ? "connect to another port; " : "") +
          (hasMemoryLimits ? "" : "map 1 GB; map 1 GB to share; ") +
          "read a zone; read beside itself; connect to its gateway; look a name up; run a thread; "
          "\""));
}

// A program that knows nothing of the platform.
TEST_P(ConfinementTest, AnyProgramIsConfined) {
  struct Case {
    int since;  // of Landlock
    const char* commands;
    const char* lastWords;
  };
  const Case cases[] = {
      {1, "cat \"$HOME/key\"", "Permission denied"},
      {1, "echo more >>\"$HOME/key\"", "Permission denied"},
      {1, ": >\"$(dirname \"$0\")/new\"", "Permission denied"},
      {6, "kill -0 $PPID", "not permitted"},
      {4,
       "perl -MSocket -e 'socket(S, PF_INET, SOCK_STREAM, 0);"
       "bind(S, sockaddr_in(0, INADDR_LOOPBACK)) or die \"$!\\n\"'",
       "Permission denied"},
      {0, "/usr/sbin/chroot / true", "not permitted"},  // also root has no more rights
      {0, "echo limits $(ulimit -c) $(ulimit -n) >&2", "limits 0 256"},
      {0,
       "perl -e 'open(F, \"<\", \"/usr/bin/perl\") and print STDERR \"well read\\n\"'",
       "well read"},
  };
  for (const auto& [since, commands, lastWords] : cases) {
    if (landlock_ < since) {
      continue;
    }
    const home::ScriptedExtension extension("exec 1>&2; " + std::string(commands) + "; exit 1");
    const Outcome outcome = runWith(extension.path(), {"list"});
    EXPECT_EQ(outcome.status, 4) << commands;
    EXPECT_THAT(outcome.err, HasSubstr(lastWords)) << commands;
  }
  EXPECT_TRUE(landlock_ == 0 || contentsOf(key_) == "secret");
}

}  // namespace
}  // namespace quillpad
