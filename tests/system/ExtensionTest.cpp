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
  // The next replies of the extension; transfers are counted on the way.
  std::vector<channel::NumberedReply> replies(
      home::ExtensionSession& extension, std::size_t count) {
    std::vector<channel::NumberedReply> result;
    while (result.size() < count) {
      auto descriptors = extension.descriptors();
      ::poll(descriptors.data(), descriptors.size(), 10'000);
      const auto events = extension.poll({});
      if (events.empty()) {
        ADD_FAILURE() << "no reply";
        return result;
      }
      for (const home::SessionEvent& event : events) {
        if (const auto* reply = std::get_if<channel::NumberedReply>(&event)) {
          result.push_back(*reply);
        } else if (const auto* notice = std::get_if<channel::TransferNotice>(&event)) {
          transfers_.push_back(notice->report);
        } else if (const auto* end = std::get_if<home::SessionEnd>(&event)) {
          ADD_FAILURE() << end->detail << ": " << end->lastWords;
          return result;
        }
      }
    }
    return result;
  }

  static bool gone(pid_t process) {
    for (int i = 0; i < 500; ++i) {
      // One that nobody has waited for yet has no command line.
      if (contents("/proc/" + std::to_string(process) + "/cmdline").empty()) {
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
  const auto first = replies(*extension, 1);
  ASSERT_EQ(first.size(), 1U);
  EXPECT_EQ(first[0].id, fast);
  gateway.release();
  const auto second = replies(*extension, 1);
  ASSERT_EQ(second.size(), 1U);
  EXPECT_EQ(second[0].id, slow);

  ASSERT_EQ(transfers_.size(), 2U);
  EXPECT_EQ(transfers_[0].activity, fast);
  EXPECT_EQ(transfers_[0].path, "/invoice/invoice/listFast");
  EXPECT_EQ(transfers_[1].activity, slow);
  EXPECT_EQ(transfers_[1].statusCode, 200);
  EXPECT_FALSE(transfers_[1].error);
}

TEST_F(ExtensionTest, ADroppedTimelineLeavesTheOthersUnderWay) {
  signIn();
  fixtures::HttpsServer& gateway =
      serve([](const auto&, fixtures::HttpsServer::Exchange& exchange) {
        exchange.hold();
        exchange.respond(200, summary);
      });
  auto extension = home::ExtensionSession::start(EXTENSION_PROGRAM);
  ASSERT_TRUE(extension);
  const auto underWay = extension->ask({}, channel::TimelineRequest{"SalesSmallWidget"});
  ASSERT_TRUE(gateway.waitForRequests(1));
  ASSERT_EQ(run({"settings", "sign-out"}).status, 0);
  const auto refused = extension->ask({}, channel::TimelineRequest{"UnpaidMediumWidget"});
  const auto first = replies(*extension, 1);
  ASSERT_EQ(first.size(), 1U);
  EXPECT_EQ(first[0].id, refused);
  EXPECT_TRUE(std::holds_alternative<channel::Dropped>(first[0].reply));
  gateway.release();
  const auto second = replies(*extension, 1);
  ASSERT_EQ(second.size(), 1U);
  EXPECT_EQ(second[0].id, underWay);
  EXPECT_TRUE(std::holds_alternative<channel::Timeline>(second[0].reply));
}

TEST_F(ExtensionTest, AKilledExtensionIsTold) {
  signIn();
  const fixtures::HttpsServer& gateway =
      serve([](const auto&, fixtures::HttpsServer::Exchange& exchange) { exchange.hold(); });
  const auto home = start({"timeline", "SalesSmallWidget"});
  ASSERT_TRUE(gateway.waitForRequests(1));
  ::kill(home->extension(), SIGKILL);
  const Outcome run = home->wait();
  EXPECT_EQ(run.status, 4);
  EXPECT_THAT(run.err, HasSubstr("the extension ended (signal 9, Killed) without a word"));
}

TEST_F(ExtensionTest, TheExtensionEndsWithItsHomeScreen) {
  signIn();
  const fixtures::HttpsServer& gateway =
      serve([](const auto&, fixtures::HttpsServer::Exchange& exchange) { exchange.hold(); });
  for (const int signal : {SIGKILL, SIGTERM, SIGINT}) {
    const std::size_t before = gateway.requests().size();
    const auto home = start({"timeline", "SalesSmallWidget"});
    ASSERT_TRUE(gateway.waitForRequests(before + 1));
    const pid_t extension = home->extension();
    ASSERT_NE(extension, 0);
    ::kill(home->pid(), signal);
    EXPECT_EQ(home->wait().status, 128 + signal);
    EXPECT_TRUE(gone(extension)) << signal;
  }
}

TEST_F(ExtensionTest, AnExtensionThatCannotBeStartedIsTold) {
  const Outcome run = this->run({"--extension", file("absent"), "list"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("cannot start the extension " + file("absent").string()));
}

TEST_F(ExtensionTest, TheExtensionAloneTellsHowItIsStarted) {
  const std::string command = std::string(EXTENSION_PROGRAM) + " 2>" + file("err").string();
  const fixtures::ScopedVariable none("QUILLPAD_CHANNEL", std::nullopt);
  EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 2);
  EXPECT_THAT(contents(file("err")), HasSubstr("quillpad-home"));
  for (const char* wrong : {"", "x", "1", "99", "-1", "3 "}) {
    const fixtures::ScopedVariable channel("QUILLPAD_CHANNEL", wrong);
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 2) << wrong;
  }
}

}  // namespace

}  // namespace quillpad
