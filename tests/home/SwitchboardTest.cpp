#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <vector>

#include "fixtures/TemporaryHome.h"
#include "home/page/Switchboard.h"

namespace quillpad::home {
namespace {
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using Answer = std::expected<HttpsAnswer, std::string>;

class SwitchboardTest : public testing::Test {
 protected:
  SwitchboardTest() { write(R"({"address":"https://localhost:1/switch","token":"secret"})"); }

  void write(const std::string& text) const { std::ofstream(file()) << text; }
  std::filesystem::path file() const { return folder_.path() / "switchboard.json"; }

  // The page's answer where the switchboard gives this one.
  WebAnswer answerTo(const Answer& given, const WebRequest* change = nullptr) {
    given_ = given;
    const Moment now = presentMoment();
    const WebReply reply =
        change == nullptr ? board_->form(now, {}) : board_->change(now, *change, {});
    if (const auto* answer = std::get_if<WebAnswer>(&reply)) {
      return *answer;
    }
    return std::get<LaterAnswer>(reply).take().value_or(WebAnswer{.status = 0, .body = "none yet"});
  }

  fixtures::TemporaryFolder folder_;
  Answer given_;
  std::vector<HttpsQuestion> asked_;
  std::unique_ptr<Switchboard> board_;

  void SetUp() override {
    board_ = Switchboard::open(file(), [this](HttpsQuestion question, auto done) {
               asked_.push_back(std::move(question));
               done(given_);
             }).value();
  }
};

constexpr const char* state =
    R"({"fault":"status=500","delay":1500,"faults":["off","status=500","shape=<odd>","new"]})";

TEST_F(SwitchboardTest, ShowsWhatIsOnOfferAndInForceAndNeverTheToken) {
  const WebAnswer answer = answerTo(HttpsAnswer{.status = 200, .body = state});
  EXPECT_EQ(answer.status, 200);
  EXPECT_THAT(
      answer.body,
      AllOf(
          HasSubstr(R"(<option value="off">No fault)"),
          HasSubstr(R"(<option value="status=500" selected>Status 500)"),
          HasSubstr("Damaged body: &lt;odd&gt;"),
          HasSubstr(R"(value="1.5")"),
          Not(HasSubstr("secret"))));
  ASSERT_EQ(asked_.size(), 1U);
  EXPECT_EQ(asked_[0].address, "https://localhost:1/switch");
  EXPECT_EQ(asked_[0].authorization, "secret");
  EXPECT_THAT(
      answerTo(HttpsAnswer{200, R"({"fault":"drop,count=2","delay":10000,"faults":["drop"]})"})
          .body,
      AllOf(HasSubstr(R"("drop,count=2" selected)"), HasSubstr(R"(value="10")")));
}

TEST_F(SwitchboardTest, WhatIsNoAnswerIsToldInOneSentence) {
  const std::pair<Answer, const char*> cases[] = {
      {std::unexpected("Could not connect to the server."), "Could not connect"},
      {HttpsAnswer{.status = 403, .body = state}, "status 403"},
      {HttpsAnswer{.status = 200, .body = "<h1>"}, "line 1"},
      {HttpsAnswer{.status = 200, .body = R"({"fault":"off","delay":-1,"faults":[]})"}, "delay"},
      {HttpsAnswer{.status = 200, .body = R"({"fault":1,"delay":0,"faults":[]})"}, "fault"},
  };
  for (const auto& [given, words] : cases) {
    const WebAnswer answer = answerTo(given);
    EXPECT_EQ(answer.status, 502) << words;
    EXPECT_THAT(answer.body, HasSubstr(words));
  }
  write("{}");
  EXPECT_THAT(answerTo(HttpsAnswer{200, state}).body, HasSubstr("is no switchboard's file"));
  EXPECT_THAT(Switchboard::open(file(), {}).error(), HasSubstr("is no switchboard's file: no"));
  EXPECT_THAT(Switchboard::open("/nowhere", {}).error(), HasSubstr("/nowhere cannot be read"));
}

TEST_F(SwitchboardTest, AChangeIsAFaultAndADelayOfSomeMinutes) {
  const std::tuple<std::string, std::string, const char*> cases[] = {
      // empty: refused
      {"status=503", "0", "status=503,delay=0"},
      {"off", "2.5", "off,delay=2500"},
      {"off", "600", "off,delay=600000"},
      {"off", "600.1", ""},
      {"off", "-1", ""},
      {"off", "nan", ""},
      {"off", "", ""},
      {"off", "1s", ""},
      {"", "1", ""},
      {std::string(201, 'x'), "1", ""},
  };
  for (const auto& [fault, delay, asked] : cases) {
    asked_.clear();
    const WebRequest request{
        .method = "POST",
        .path = "/switchboard",
        .parameters = {{"fault", fault}, {"delay", delay}}};
    const bool isTaken = *asked != '\0';
    EXPECT_EQ(answerTo(HttpsAnswer{200, state}, &request).status, isTaken ? 200 : 400) << delay;
    ASSERT_EQ(asked_.size(), isTaken ? 1U : 0U) << delay;
    EXPECT_EQ(
        isTaken ? asked_[0].method + " " + asked_[0].body : "",
        isTaken ? std::string("POST ") + asked : "");
  }
}

TEST_F(SwitchboardTest, OneThatIsSilentIsWaitedForAndNotAskedWithoutEnd) {
  std::vector<std::move_only_function<void(Answer)>> waiting;
  const auto silent = Switchboard::open(file(), [&](const HttpsQuestion&, auto done) {
                        waiting.push_back(std::move(done));
                      }).value();
  const Moment now = presentMoment();
  const WebReply reply = silent->form(now, {});
  const LaterAnswer& later = std::get<LaterAnswer>(reply);
  EXPECT_FALSE(later.take());
  for (int i = 0; i < 20; ++i) {
    (void)silent->form(now, {});
  }
  EXPECT_EQ(waiting.size(), 8U);
  EXPECT_FALSE(silent->run());
  waiting.front()(HttpsAnswer{200, state});
  EXPECT_TRUE(silent->run());
  EXPECT_EQ(later.take().value_or(WebAnswer{}).status, 200);

  const Moment past{.date = now.date, .uptime = now.uptime - std::chrono::seconds(6)};
  const WebReply late = silent->form(past, {});
  EXPECT_THAT(
      std::get<LaterAnswer>(late).take().value_or(WebAnswer{}).body, HasSubstr("within 5 s"));
}

}  // namespace
}  // namespace quillpad::home
