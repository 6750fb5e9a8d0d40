#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "home/ScriptedExtension.h"
#include "home/commands/ExtensionClient.h"
#include "home/extension/Confinement.h"

namespace quillpad::home {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using namespace std::chrono_literals;

class ExtensionClientTest : public testing::Test {
 protected:
  std::expected<channel::Entry, Failure> askSnapshot(
      const std::string& commands, std::chrono::milliseconds allowed = 20s) {
    extension_.play(commands);
    auto extension = ExtensionClient::start(extension_.path());
    if (!extension) {
      return std::unexpected(extension.error());
    }
    return extension->ask<channel::Entry>(channel::SnapshotRequest{"A"}, allowed);
  }

  ScriptedExtension extension_{"exit 1"};
};

TEST_F(ExtensionClientTest, GivesTheAnswerAndRelaysWhatIsPrinted) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  const auto entry = askSnapshot(
      "read r <&3; echo \"heard $r\"; echo grumble >&2; " + reply(1, anEntry) + "sleep 60");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_THAT(
      testing::internal::GetCapturedStderr(),
      AllOf(
          HasSubstr("heard {\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"snapshot\""),
          HasSubstr("grumble\n")));
  ASSERT_TRUE(entry) << entry.error().message;
}

TEST_F(ExtensionClientTest, TellsTheWaysToFailApart) {
  const std::tuple<std::string, ExitStatus, std::string> cases[] = {
      {"exit 7", ExitStatus::extensionEnded, "exit status 7) without a word"},
      {"read r <&3; echo one >&2; echo 'Unit line 8: broken' >&2; kill -ABRT $$",
       ExitStatus::extensionEnded,
       "signal 6, Aborted): Unit line 8: broken"},
      {"echo 'not a message' >&3; sleep 60", ExitStatus::notPossible, "sent invalid JSON"},
      {answers(1, R"({"dropped":true})") + "cat", ExitStatus::dropped, "dropped the request"},
      {answers(1, "[]") + "cat", ExitStatus::notPossible, "result: not an object"},
      {R"(echo '{"id":1,"error":{"code":-32602,"message":"no such kind"}}' >&3; sleep 60)",
       ExitStatus::wrongUsage,
       "no such kind"},
      {R"(echo '{"id":null,"error":{"code":-32700,"message":"what?"}}' >&3; sleep 60)",
       ExitStatus::notPossible,
       "refused the request: what?"},
  };
  for (const auto& [commands, status, message] : cases) {
    testing::internal::CaptureStderr();
    const auto entry = askSnapshot(commands);
    testing::internal::GetCapturedStderr();
    ASSERT_FALSE(entry) << commands;
    EXPECT_EQ(entry.error().status, status) << commands;
    EXPECT_THAT(entry.error().message, HasSubstr(message)) << commands;
  }
}

TEST_F(ExtensionClientTest, StopsAnExtensionThatDoesNotAnswer) {
  const auto entry = askSnapshot("trap '' TERM; sleep 60", 200ms);
  ASSERT_FALSE(entry);
  EXPECT_EQ(entry.error().status, ExitStatus::notPossible);
  EXPECT_THAT(entry.error().message, HasSubstr("not answered within 1 seconds and was stopped"));
}

TEST_F(ExtensionClientTest, AnAnswerBeforeTheEndCountsAndNothingIsAskedAfterIt) {
  extension_.play(answers(1, anEntry));
  auto extension = ExtensionClient::start(extension_.path());
  ASSERT_TRUE(extension);
  EXPECT_TRUE(extension->ask<channel::Entry>(channel::SnapshotRequest{"A"}));
  const auto second = extension->ask<channel::Entry>(channel::SnapshotRequest{"A"});
  ASSERT_FALSE(second);
  EXPECT_EQ(second.error().status, ExitStatus::extensionEnded);
}

TEST_F(ExtensionClientTest, AnExtensionMayNotUseAllMemory) {
  extension_.play("x=$(head -c 40000000 /dev/zero | tr '\\0' x); sleep 60");
  auto extension = ExtensionClient::start(extension_.path(), std::size_t{30} * 1024 * 1024);
  ASSERT_TRUE(extension);
  const auto entry = extension->ask<channel::Entry>(channel::SnapshotRequest{"A"});
  ASSERT_FALSE(entry);
  EXPECT_EQ(entry.error().status, ExitStatus::extensionEnded);
  EXPECT_THAT(entry.error().message, HasSubstr("the limit is 30 MiB"));
}

TEST_F(ExtensionClientTest, SendsARequestThatIsLargerThanTheChannelTakesAtOnce) {
  extension_.play(
      R"(head -n 1 <&3 | wc -c >&2; echo '{"id":1,"result":{"view":{"type":"spacer"}}}' >&3; )"
      "sleep 60");
  auto extension = ExtensionClient::start(extension_.path());
  ASSERT_TRUE(extension);
  testing::internal::CaptureStderr();
  channel::RenderRequest request;
  request.kind = "A";
  request.entry.data = std::string(4'000'000, 'x');
  const auto rendering = extension->ask<channel::Rendering>(request);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::StartsWith("40001"));
  EXPECT_TRUE(rendering);
}

TEST_F(ExtensionClientTest, AProgramThatCannotBeStartedIsNamed) {
  const auto plain = extension_.folder() / "plain";
  std::ofstream(plain) << "#!/bin/sh\n";
  const auto noProgram = extension_.folder() / "no program";
  std::ofstream(noProgram) << "text";
  ::chmod(noProgram.c_str(), 0755);
  for (const auto& path : {extension_.folder() / "absent", extension_.folder(), plain, noProgram}) {
    const auto extension = ExtensionClient::start(path);
    ASSERT_FALSE(extension) << path;
    EXPECT_EQ(extension.error().status, ExitStatus::notPossible);
    EXPECT_THAT(extension.error().message, HasSubstr(path.string() + ": "));
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child is left";
  }
}

TEST_F(ExtensionClientTest, TheExtensionInheritsNothingButItsOwnDescriptors) {
  const int leaked = ::fcntl(STDIN_FILENO, F_DUPFD, 200);  // no number that the shell uses itself
  testing::internal::CaptureStderr();
  const auto entry = askSnapshot(
      "test -e /proc/$$/fd/" + std::to_string(leaked) +
      " && echo leak >&2; echo \"channel $QUILLPAD_CHANNEL\" >&2; exit 1");
  ::close(leaked);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  ASSERT_FALSE(entry);
  EXPECT_THAT(entry.error().message, testing::EndsWith("): channel 3"));
}

TEST(Confinement, WhatCannotBeMadeIsNoGap) {
  rlimit before{};
  ::getrlimit(RLIMIT_NOFILE, &before);
  const rlimit none{0, before.rlim_max};
  ::setrlimit(RLIMIT_NOFILE, &none);
  const auto confinement = Confinement::of("/bin/true");
  ::setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(confinement.has_value(), LandlockRuleset::kernelVersion() == 0);
}

TEST(Confinement, NoGapIsToldOfAKernelWithoutOne) {
  EXPECT_TRUE(LandlockRuleset::kernelVersion() < 4 || confinementGap().empty());
}

}  // namespace
}  // namespace quillpad::home
