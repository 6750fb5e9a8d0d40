// What extensions can do to the rest of the machine: one that is made with the platform, and any
// program.
#include <fstream>

#include "fixtures/Loopback.h"
#include "home/ScriptedExtension.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/Landlock.h"
#include "system/HomeScreen.h"

namespace quillpad {
namespace {

using testing::HasSubstr;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool hasMemoryLimits = false;
#else
constexpr bool hasMemoryLimits = true;
#endif

class ConfinementTest : public HomeScreenTest {
 protected:
  ConfinementTest() { std::ofstream(key_) << "secret"; }

  Outcome runWith(const std::filesystem::path& extension, std::vector<std::string> words) const {
    words.insert(words.begin(), {"--extension", extension.string()});
    return run(std::move(words));
  }

  const std::filesystem::path key_ = home_.path() / "key";
};

TEST_F(ConfinementTest, AHostileExtensionHarmsNothing) {
  if (LandlockRuleset::kernelVersion() < 6) {
    GTEST_SKIP() << "this kernel cannot confine an extension wholly";
  }
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
          std::string("\"data\":\"") + (hasMemoryLimits ? "" : "map 1 GB; map 1 GB to share; ") +
          "read a zone; read beside itself; connect to its gateway; look a name up; run a thread; "
          "\""));
}

// A program that knows nothing of the platform.
TEST_F(ConfinementTest, AnyProgramIsConfined) {
  if (LandlockRuleset::kernelVersion() < 6) {
    GTEST_SKIP() << "this kernel cannot confine a program wholly";
  }
  const std::pair<const char*, const char*> cases[] = {
      {"cat \"$HOME/key\"", "Permission denied"},
      {"echo more >>\"$HOME/key\"", "Permission denied"},
      {": >\"$(dirname \"$0\")/new\"", "Permission denied"},
      {"kill -0 $PPID", "not permitted"},
      {"perl -MSocket -e 'socket(S, PF_INET, SOCK_STREAM, 0);"
       "bind(S, sockaddr_in(0, INADDR_LOOPBACK)) or die \"$!\\n\"'",
       "Permission denied"},
      {"chroot / true", "not permitted"},  // also root has no more rights
      {"echo limits $(ulimit -c) $(ulimit -n) >&2", "limits 0 256"},
      {"perl -e 'open(F, \"<\", \"/usr/bin/perl\") and print STDERR \"well read\\n\"'",
       "well read"},
  };
  for (const auto& [commands, lastWords] : cases) {
    const home::ScriptedExtension extension("exec 1>&2; " + std::string(commands) + "; exit 1");
    const Outcome outcome = runWith(extension.path(), {"list"});
    EXPECT_EQ(outcome.status, 4) << commands;
    EXPECT_THAT(outcome.err, HasSubstr(lastWords)) << commands;
  }
  EXPECT_EQ(contentsOf(key_), "secret");
}

}  // namespace
}  // namespace quillpad
