// The home screen's loop on a real extension, with a clock that the test holds: who starts, is
// asked and saves, and when.
#include <chrono>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <optional>
#include <poll.h>
#include <signal.h>

#include "fixtures/Program.h"
#include "home/ScriptedExtension.h"
#include "home/extension/ExtensionDriver.h"
#include "home/extension/StateFile.h"
#include "platform/foundation/Clock.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ExtensionDriverTest : public testing::Test {
 protected:
  void start(const std::filesystem::path& extension = CLOCK_EXTENSION) {
    driver_.emplace(
        extension, file_, account_, [this](std::string_view line) { relayed_.emplace_back(line); });
  }

  // Runs the loop, the time standing still, until the condition holds.
  void runUntil(const char* what, const std::function<bool()>& holds) {
    for (int turn = 0; turn < 2000; ++turn) {
      driver_->run(now_);
      if (holds()) {
        return;
      }
      std::vector<pollfd> descriptors;
      driver_->addDescriptors(descriptors);
      ::poll(descriptors.data(), descriptors.size(), 5);
    }
    FAIL() << "waited in vain: " << what;
  }

  WidgetState clock() const {
    const auto widgets = driver_->supervisor().widgets();
    return widgets.empty() ? WidgetState{} : widgets.front();
  }

  void runUntilLive() {
    runUntil("the clock is live", [this] {
      const WidgetState widget = clock();
      return widget.picture != nullptr && widget.picture->source == EntrySource::timeline &&
             !widget.picture->restored && !driver_->supervisor().awaitsAnswers();
    });
  }

  void pass(std::chrono::milliseconds time) {
    now_.date += time;
    now_.uptime += time;
  }

  fixtures::TemporaryFolder folder_;
  std::filesystem::path file_ = folder_.path() / "state" / "home.json";
  Account account_;
  Moment now_{.date = currentDate(), .uptime = 1h};
  std::vector<std::string> relayed_;
  std::optional<ExtensionDriver> driver_;
};

TEST_F(ExtensionDriverTest, BringsAWidgetUpSavesItASecondLaterAndWaitsForItsTime) {
  start();
  runUntilLive();
  EXPECT_EQ(driver_->nextDeadline(), now_.uptime + 1s) << "to save";
  pass(999ms);
  driver_->run(now_);
  EXPECT_FALSE(std::filesystem::exists(file_));
  pass(1ms);
  driver_->run(now_);
  EXPECT_TRUE(std::filesystem::exists(file_));
  EXPECT_GT(*driver_->nextDeadline(), now_.uptime + 50s) << "the next minute's entry";
  EXPECT_LE(*driver_->nextDeadline(), now_.uptime + 1min);

  const channel::Entry before = clock().picture->entry;
  pass(90s);  // a minute, the extension's delay behind the held clock, and no reload yet
  runUntil("the next minute shows", [&] { return clock().picture->entry != before; });
  EXPECT_THAT(relayed_, IsEmpty());
}

TEST_F(ExtensionDriverTest, TakesUpWhatTheLastRunLeft) {
  start();
  runUntilLive();
  driver_->stop(now_);
  start("/no/such/program");
  EXPECT_TRUE(clock().picture->restored);
  driver_->run(now_);
  EXPECT_EQ(driver_->supervisor().lastEnd()->cause, Problem::Cause::notStarted);
  EXPECT_EQ(driver_->nextDeadline(), now_.uptime + 1s) << "to start it for the third time";
}

// The store and its folders may be still to come, and the state of a run may be of someone else.
TEST_F(ExtensionDriverTest, ForgetsAnAccountAsSoonAsItsStoreSaysSo) {
  const std::filesystem::path store = folder_.path() / "data" / "group" / "store";
  std::string mark;
  account_ = {.mark = [&] { return mark; }, .store = store};
  const auto signIn = [&](const std::string& account) {
    std::filesystem::create_directories(store.parent_path());
    mark = account;
    std::ofstream(store) << account;
  };
  start();
  runUntilLive();
  for (const std::string account : {"one", "two", ""}) {
    std::ofstream(asideOf(file_)) << "of the former account";
    signIn(account);
    runUntil("the change is noticed", [&] { return clock().picture == nullptr; });
    EXPECT_EQ(driver_->supervisor().isSignedOut(), account.empty());
    EXPECT_FALSE(std::filesystem::exists(asideOf(file_)));
    runUntilLive();
    driver_->stop(now_);
    start();
    EXPECT_TRUE(clock().picture->restored) << "it is the same account still";
    runUntilLive();
  }
  driver_->stop(now_);
  mark = "three";
  std::filesystem::create_directories(asideOf(file_) / "in the way");
  start("/no/such/program");
  EXPECT_THAT(relayed_, testing::Contains(HasSubstr("cannot be removed")));
  EXPECT_EQ(clock().picture, nullptr);
  driver_->run(now_);
  pass(1s);
  driver_->stop(now_);
  EXPECT_THAT(fixtures::contentsOf(file_), HasSubstr(R"("pictures":{})"));
}

TEST_F(ExtensionDriverTest, StartsAnExtensionThatWasKilledAndRelaysWhatItPrints) {
  const ScriptedExtension extension("echo I am $$; exec sleep 60");
  start(extension.path());
  runUntil("it speaks", [this] { return relayed_.size() == 1; });
  ::kill(std::stoi(relayed_.front().substr(5)), SIGKILL);
  runUntil("it speaks again", [this] { return relayed_.size() == 2; });
  EXPECT_EQ(driver_->supervisor().lastEnd()->detail, "signal 9, Killed");
  ASSERT_THAT(relayed_.back(), testing::StartsWith("I am "));
  ::kill(std::stoi(relayed_.back().substr(5)), SIGKILL);
  runUntil("it is left alone for a while", [this] {
    return driver_->supervisor().life() == Supervisor::Life::backingOff;
  });
  EXPECT_EQ(driver_->privateMemory(), std::nullopt);
}

// What an extension is not shown at its start it never sees.
TEST_F(ExtensionDriverTest, AnExtensionIsStartedAgainWhereAPlaceToReadFromCameLater) {
  const fixtures::ScopedVariable variable("SSL_CERT_FILE", folder_.path() / "certificates");
  start();
  runUntilLive();
  std::ofstream(folder_.path() / "certificates") << "new";
  runUntil("it is started again", [&] { return driver_->log().runs().size() == 3; });
}

TEST_F(ExtensionDriverTest, AStateThatCannotBeSavedIsSavedLater) {
  start();
  runUntilLive();
  std::ofstream(folder_.path() / "state") << "in the way";
  pass(1s);
  driver_->run(now_);
  EXPECT_THAT(
      relayed_, ElementsAre(testing::AllOf(HasSubstr("quillpad-home: "), HasSubstr("written"))));
  std::filesystem::remove(folder_.path() / "state");
  EXPECT_EQ(driver_->nextDeadline(), now_.uptime + 30s);
  pass(30s);
  driver_->run(now_);
  EXPECT_TRUE(std::filesystem::exists(file_));
  EXPECT_EQ(relayed_.size(), 1U);
}

TEST_F(ExtensionDriverTest, AStateThatIsNotUnderstoodIsKeptAside) {
  std::filesystem::create_directories(file_.parent_path());
  std::ofstream(file_) << R"({"version":2,"precious":true})";
  start();
  EXPECT_THAT(relayed_, ElementsAre(testing::AllOf(HasSubstr("version"), HasSubstr("kept as"))));
  runUntilLive();
  EXPECT_GT(driver_->privateMemory(), 0U);
  driver_->stop(now_);
  EXPECT_EQ(driver_->privateMemory(), std::nullopt);
  EXPECT_THAT(fixtures::contentsOf(file_.string() + ".unreadable"), HasSubstr("precious"));
  EXPECT_TRUE(std::filesystem::exists(file_));
}

}  // namespace
}  // namespace quillpad::home
