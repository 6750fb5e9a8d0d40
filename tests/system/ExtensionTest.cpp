// The extension as a process: several requests at once, and every way to end.
#include <chrono>
#include <poll.h>
#include <signal.h>
#include <thread>

#include "home/extension/ExtensionSession.h"
#include "system/HomeScreen.h"

namespace quillpad {

namespace {

using testing::HasSubstr;

constexpr const char* summary =
    R"({"data":"{\"salesMonth\":1,\"unpaidInvoices\":2,\"pendingEstimates\":3}"})";
constexpr const char* noDocuments = R"({"data":"{\"records\":[]}"})";

class ExtensionTest : public HomeScreenTest {
 protected:
  // The id of the next reply of the extension, 0 without one; transfers are counted on the way.
  std::uint64_t nextReply(home::ExtensionSession& extension) {
    while (true) {
      auto descriptors = extension.descriptors();
      ::poll(descriptors.data(), descriptors.size(), 10'000);
      const auto events = extension.poll({});
      if (events.empty()) {
        return 0;
      }
      for (const home::SessionEvent& event : events) {
        if (const auto* reply = std::get_if<channel::NumberedReply>(&event)) {
          return reply->id.value_or(0);
        }
        if (const auto* transfer = std::get_if<TransferReport>(&event)) {
          transfers_.push_back(*transfer);
        } else if (const auto* end = std::get_if<home::Problem>(&event)) {
          ADD_FAILURE() << end->detail << ": " << end->lastWords;
          return 0;
        }
      }
    }
  }

  static bool gone(pid_t process) {
    for (int i = 0; i < 500; ++i) {
      // One that nobody has waited for yet has no command line.
      if (contentsOf("/proc/" + std::to_string(process) + "/cmdline").empty()) {
        return true;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }

  std::vector<TransferReport> transfers_;
};

TEST_F(ExtensionTest, AFastTimelineOvertakesASlowOne) {
  signIn();
  fixtures::HttpsServer& gateway =
      serve([](const fixtures::HttpsServer::Request& request, auto& exchange) {
        const bool sales = request.path.ends_with("getDataMap");
        if (sales) {
          exchange.hold();
        }
        exchange.respond(200, sales ? summary : noDocuments);
      });
  auto extension = home::ExtensionSession::start(EXTENSION_PROGRAM);
  ASSERT_TRUE(extension);
  const auto slow = extension->ask({}, channel::TimelineRequest{"SalesSmallWidget"});
  const auto fast = extension->ask({}, channel::TimelineRequest{"UnpaidMediumWidget"});
  EXPECT_EQ(nextReply(*extension), fast);
  gateway.release();
  EXPECT_EQ(nextReply(*extension), slow);

  ASSERT_EQ(transfers_.size(), 2U);
  EXPECT_EQ(transfers_[0].activity, fast);
  EXPECT_EQ(transfers_[0].path, "/invoice/invoice/listFast");
  EXPECT_EQ(transfers_[1].activity, slow);
  EXPECT_EQ(transfers_[1].statusCode, 200);
  EXPECT_FALSE(transfers_[1].error);
}

TEST_F(ExtensionTest, AKilledExtensionIsTold) {
  signIn();
  const fixtures::HttpsServer& gateway =
      serve([](const auto&, fixtures::HttpsServer::Exchange& exchange) { exchange.hold(); });
  const auto home = start({"timeline", "SalesSmallWidget"});
  ASSERT_TRUE(gateway.waitForRequests(1));
  const pid_t extension = home->child();
  ASSERT_NE(extension, 0);
  ::kill(extension, SIGKILL);
  const Outcome run = home->wait();
  EXPECT_EQ(run.status, 4);
  EXPECT_THAT(run.err, HasSubstr("the extension ended (signal 9, Killed) without a word"));
}

TEST_F(ExtensionTest, TheExtensionEndsWithItsHomeScreen) {
  signIn();
  const fixtures::HttpsServer& gateway =
      serve([](const auto&, fixtures::HttpsServer::Exchange& exchange) { exchange.hold(); });
  ::signal(SIGINT, SIG_DFL);  // jobs in a shell's background ignore it
  for (const int signal : {SIGKILL, SIGTERM, SIGINT}) {
    const std::size_t before = gateway.requests().size();
    const auto home = start({"timeline", "SalesSmallWidget"});
    ASSERT_TRUE(gateway.waitForRequests(before + 1));
    const pid_t extension = home->child();
    ASSERT_NE(extension, 0);
    ::kill(home->pid(), signal);
    EXPECT_EQ(home->wait().status, 128 + signal);
    EXPECT_TRUE(gone(extension)) << signal;
  }
}

TEST_F(ExtensionTest, TheExtensionAloneTellsHowItIsStarted) {
  for (const auto& wrong :
       std::to_array<std::optional<std::string>>({std::nullopt, "", "x", "1", "99", "-1", "3 "})) {
    const fixtures::ScopedVariable channel("QUILLPAD_CHANNEL", wrong);
    const Outcome run = fixtures::Program(EXTENSION_PROGRAM, {}).wait();
    EXPECT_EQ(run.status, 2) << wrong.value_or("none");
    EXPECT_THAT(run.err, HasSubstr("quillpad-home"));
  }
}

}  // namespace

}  // namespace quillpad
