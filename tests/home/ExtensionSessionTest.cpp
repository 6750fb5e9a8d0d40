// The session with extensions that misbehave, with a clock that the test holds.
#include <cerrno>
#include <chrono>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>

#include "home/ScriptedExtension.h"
#include "home/extension/ExtensionSession.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using Cause = Problem::Cause;

class ExtensionSessionTest : public testing::Test {
 protected:
  void start(
      const std::string& commands, std::size_t memoryLimit = ExtensionSession::defaultMemoryLimit) {
    extension_.play(commands);
    auto session = ExtensionSession::start(extension_.path(), memoryLimit);
    ASSERT_TRUE(session) << session.error();
    session_.emplace(std::move(*session));
  }

  std::uint64_t ask() { return session_->ask(uptime_, channel::SnapshotRequest{"A"}); }

  // The events from now on, up to the first of the type.
  template <class Last>
  Last until() {
    for (int turn = 0; turn < 1000; ++turn) {
      auto descriptors = session_->descriptors();
      ::poll(descriptors.data(), descriptors.size(), 10);
      for (SessionEvent& event : session_->poll(uptime_)) {
        if (const auto* line = std::get_if<PrintedLine>(&event)) {
          printed_.push_back(line->text);
        }
        if (auto* last = std::get_if<Last>(&event)) {
          return std::move(*last);
        }
      }
    }
    ADD_FAILURE() << "it never came";
    return {};
  }

  ScriptedExtension extension_{"exit 1"};
  std::optional<ExtensionSession> session_;
  Uptime uptime_ = 1h;
  std::vector<std::string> printed_;
};

TEST_F(ExtensionSessionTest, TellsTheCausesOfAnEndApart) {
  using enum Problem::Cause;
  const std::tuple<std::string, Cause, std::string, std::string> cases[] = {
      {"exit 7", ended, "exit status 7", ""},
      {"echo one >&2; echo 'Unit line 8: broken' >&2; kill -ABRT $$",
       ended,
       "signal 6, Aborted",
       "Unit line 8: broken"},
      {"printf 'no line end' >&2; exit 1", ended, "exit status 1", "no line end"},
      {"echo 'last words' >&2; sleep 0.1; echo later; exit 1",
       ended,
       "exit status 1",
       "last words"},
      {"exec 3>&-; sleep 60", ended, "signal 9, Killed", ""},
      {"echo 'no message' >&3; sleep 60", protocolError, "invalid JSON at line 1", ""},
      {"head -c 8388609 /dev/zero >&3; sleep 60", protocolError, "more than 8 MiB", ""},
  };
  for (const auto& [commands, cause, detail, lastWords] : cases) {
    start("read r <&3; " + commands);
    ask();
    const auto end = until<Problem>();
    EXPECT_EQ(end.cause, cause) << commands;
    EXPECT_THAT(end.detail, HasSubstr(detail)) << commands;
    EXPECT_EQ(end.lastWords, lastWords) << commands;
    EXPECT_EQ(session_->pid(), 0);
    EXPECT_EQ(session_->nextDeadline(), std::nullopt);
  }
}

TEST_F(ExtensionSessionTest, WhatWasPrintedForAnEarlierRequestIsNoLastWord) {
  start("read r <&3; echo grumble >&2; " + reply(1, anEntry) + "read r <&3; kill -9 $$");
  ask();
  until<channel::NumberedReply>();
  ask();
  EXPECT_EQ(until<Problem>().lastWords, "");
  EXPECT_THAT(printed_, ElementsAre("grumble"));
}

TEST_F(ExtensionSessionTest, AnExtensionThatSaysNothingInTimeHangsAndIsEnded) {
  start("trap '' TERM; sleep 60");
  const Uptime asked = uptime_;
  session_->ask(uptime_, channel::TimelineRequest{"A"});
  uptime_ = asked + 90s - 1ms;
  EXPECT_THAT(session_->poll(uptime_), testing::IsEmpty());
  EXPECT_LE(session_->nextDeadline(), asked + 90s);
  uptime_ = asked + 90s;
  const auto end = until<Problem>();
  EXPECT_EQ(end.cause, Cause::late);
  EXPECT_EQ(end.detail, "90 seconds");
}

TEST_F(ExtensionSessionTest, AnAnswerIsLateWhereOnlyOthersAreAnswered) {
  start(
      "read r <&3; read r <&3; " + answers(3, R"({"dropped":true})") + answers(2, anEntry) +
      reply(4, R"({"dropped":true})") + "sleep 60");
  session_->ask(uptime_, channel::TimelineRequest{"A"});  // may take longer
  ask();
  uptime_ += 10s;
  ask();
  EXPECT_EQ(until<channel::NumberedReply>().id, 3U);
  uptime_ += 20s;
  const auto late = until<LateAnswer>();
  EXPECT_EQ(late.id, 2U);
  EXPECT_EQ(late.waited, 30s);
  ask();
  EXPECT_EQ(until<channel::NumberedReply>().id, 4U) << "the late one is not told any more";
}

TEST_F(ExtensionSessionTest, EndsWhatUsesMoreMemoryThanItMay) {
  start("x=$(head -c 2000000 /dev/zero | tr '\\0' x); echo full; sleep 60", std::size_t{1} << 20);
  until<PrintedLine>();
  uptime_ += 100ms;
  session_->poll(uptime_);
  auto descriptors = session_->descriptors();
  EXPECT_EQ(::poll(descriptors.data(), descriptors.size(), 50), 0) << "nothing is asked";
  ask();
  Problem end;
  for (int turn = 0; turn < 1000 && end.detail.empty(); ++turn) {
    uptime_ += 100ms;
    for (SessionEvent& event : session_->poll(uptime_)) {
      end = std::get<Problem>(event);
    }
    ::usleep(2000);
  }
  EXPECT_EQ(end.cause, Cause::overMemory);
  EXPECT_THAT(end.detail, testing::MatchesRegex("it used [0-9]+ MiB, the limit is 1 MiB"));
}

// A refusal without a number is that of the request under way, if it is but one.
TEST_F(ExtensionSessionTest, OnlyOpenRequestsAreAnswered) {
  for (const bool oneIsOpen : {true, false}) {
    start(
        answers(9, R"({"dropped":true})") +
        R"(echo '{"id":null,"error":{"code":-32700,"message":"what?"}}' >&3; )" +
        reply(1, anEntry) + "sleep 60");
    ask();
    if (!oneIsOpen) {
      ask();
    }
    const auto reply = until<channel::NumberedReply>();
    EXPECT_EQ(reply.id, 1U);
    EXPECT_EQ(std::holds_alternative<channel::Refused>(reply.reply), oneIsOpen);
  }
}

TEST_F(ExtensionSessionTest, WhoAnswersWhatItDidNotReadIsEnded) {
  start("read go <&3; " + reply(2, aView) + "sleep 60");
  ask();
  const channel::Entry entry{.date = {}, .data = std::string(1'000'000, 'x')};
  session_->ask(uptime_, channel::RenderRequest{"A", entry, std::nullopt});
  const auto end = until<Problem>();
  EXPECT_EQ(end.cause, Cause::protocolError);
  EXPECT_EQ(end.detail, "the answer to a request that it had not read");
}

// What is kept of all widgets is bounded, however many there are.
TEST_F(ExtensionSessionTest, ManyWidgetsShareWhatTheirMessagesMayTake) {
  std::string items;
  for (int i = 0; i < 64; ++i) {
    items += std::string(i == 0 ? "" : ",") + R"({"kind":")" + std::to_string(i) +
             R"(","displayName":"","description":"","families":["systemSmall"]})";
  }
  start(
      answers(1, "[" + items + "]") + "read r <&3; " +
      R"({ printf '{"id":2,"result":{"date":"2026-03-07T09:05:03.250Z","data":"'; )"
      R"(head -c 1048576 /dev/zero | tr '\0' x; echo '"}}'; } >&3; sleep 60)");
  session_->ask(uptime_, channel::CatalogueRequest{});
  until<channel::NumberedReply>();
  ask();
  EXPECT_EQ(until<Problem>().detail, "a message of more than 256 KiB");
}

TEST_F(ExtensionSessionTest, PrintedLinesAreShowableWhateverTheirBytes) {
  start(R"(printf 'plain \303\205se\n\377\376 bad\n\033[31mred\tblue\302\233\n' >&2; )"
        R"(head -c 70000 /dev/zero | tr '\0' x; echo; exit 1)");
  const auto end = until<Problem>();
  EXPECT_THAT(
      printed_,
      testing::UnorderedElementsAre(
          "plain Åse", "\uFFFD\uFFFD bad", " [31mred blue ", "(a line of more than 64 KiB)"));
  EXPECT_EQ(end.lastWords, " [31mred blue ");
}

// A flood is taken in bounded portions, so that the others who share the loop get their turn.
TEST_F(ExtensionSessionTest, AFloodIsTakenInPortions) {
  start("cat /dev/zero | tr '\\0' '\\n' | sed 's/$/x/'");
  std::size_t lines = 0;
  for (int turn = 0; turn < 10; ++turn) {
    auto descriptors = session_->descriptors();
    ::poll(descriptors.data(), descriptors.size(), 1000);
    const std::size_t taken = session_->poll(uptime_).size();
    EXPECT_LE(taken, std::size_t{200} * 1024);
    lines += taken;
  }
  EXPECT_GT(lines, 0U);
}

// Each prints the id of the process that is hardest to find.
TEST_F(ExtensionSessionTest, LeavesNoProcessBehind) {
  const std::pair<const char*, const char*> cases[] = {
      {"plain", "echo $$; exec sleep 60"},
      {"with a child", "sleep 60 & echo $!; wait"},
      {"outside of its group",
       "LC_ALL=C exec perl -e 'setpgrp(0, getpgrp(getppid())); $| = 1; print \"$$\\n\"; sleep 60'"},
      {"a daemon", "(setsid sh -c 'echo $$; exec sleep 60' &) ; exec sleep 60"},
      {"daemons of daemons",
       "(setsid sh -c '(setsid sh -c \"echo \\$\\$; exec sleep 60\" &); exec sleep 60' &); exec "
       "sleep 60"},
  };
  for (const auto& [what, commands] : cases) {
    start(commands);
    printed_.clear();
    until<PrintedLine>();
    const pid_t hardest = std::stoi(printed_.at(0));
    session_.reset();
    EXPECT_EQ(::kill(hardest, 0), -1) << what;
    EXPECT_EQ(errno, ESRCH) << what;
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << what;
  }
}

// Children of the program that are no extension's, and other extensions, live on.
TEST_F(ExtensionSessionTest, AnEndSparesWhatIsNotItsOwn) {
  const ScriptedExtension other("echo ready; exec sleep 60");
  const auto neighbour = ExtensionSession::start(other.path());
  ASSERT_TRUE(neighbour);
  const pid_t child = ::fork();
  if (child == 0) {
    ::pause();
  }
  start("exit 0");
  until<Problem>();
  EXPECT_EQ(::kill(neighbour->pid(), 0), 0);
  EXPECT_EQ(::waitpid(child, nullptr, WNOHANG), 0);
  ::kill(child, SIGKILL);
  EXPECT_EQ(::waitpid(child, nullptr, 0), child);
  EXPECT_EQ(::waitpid(neighbour->pid(), nullptr, WNOHANG), 0);
}

}  // namespace
}  // namespace quillpad::home
