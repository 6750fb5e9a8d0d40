// What extensions can do to the rest of the machine: one that is made with the platform, and any
// program.
#include <fstream>
#include <netinet/in.h>
#include <sys/socket.h>

#include "home/ScriptedExtension.h"
#include "platform/foundation/FileDescriptor.h"
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

// A socket that listens, and its port.
std::pair<FileDescriptor, std::string> listener() {
  FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  EXPECT_EQ(::bind(socket.get(), reinterpret_cast<sockaddr*>(&address), size), 0);
  ::listen(socket.get(), 8);
  ::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&address), &size);
  return {std::move(socket), std::to_string(ntohs(address.sin_port))};
}

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
  const auto [homeSocket, homePort] = listener();
  const auto [gatewaySocket, gatewayPort] = listener();
  const fixtures::ScopedVariable key("HOSTILE_KEY", key_.string());
  const fixtures::ScopedVariable port("HOSTILE_PORT", homePort);
  const fixtures::ScopedVariable origin("HOSTILE_GATEWAY", "https://localhost:" + gatewayPort);
  const Outcome outcome = runWith(HOSTILE_EXTENSION, {"snapshot", "attack", "--json"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  std::string memory = hasMemoryLimits ? "" : R"("map 1 GB","map 1 GB to share",)";
  EXPECT_THAT(
      outcome.out,
      HasSubstr(
          "\"data\":[" + memory +
          R"("read a zone","read beside itself","connect to its gateway","look a name up","run a thread"])"));
}

// A program that knows nothing of the platform.
TEST_F(ConfinementTest, AnyProgramIsConfined) {
  if (LandlockRuleset::kernelVersion() < 6) {
    GTEST_SKIP() << "this kernel cannot confine a program wholly";
  }
  const struct {
    const char* commands;
    const char* lastWords;
  } cases[] = {
      {"cat \"$HOME/key\"", "Permission denied"},
      {"echo more >>\"$HOME/key\"", "Permission denied"},
      {": >\"$(dirname \"$0\")/new\"", "Permission denied"},
      {"kill -0 $PPID", "not permitted"},
      {"perl -MSocket -e 'socket(S, PF_INET, SOCK_STREAM, 0);"
       "bind(S, sockaddr_in(0, INADDR_LOOPBACK)) or die \"$!\\n\"'",
       "Permission denied"},
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
  EXPECT_EQ(contents(key_), "secret");
}

}  // namespace
}  // namespace quillpad
