#include <chrono>
#include <functional>
#include <gmock/gmock.h>
#include <poll.h>

#include "home/ScriptedExtension.h"
#include "home/extension/PreviewSession.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using Source = EntrySource;

class PreviewSessionTest : public testing::Test {
 protected:
  PreviewSession::PendingResult submit(Source source, const std::string& kind = "A") {
    return previews_.submit(now_, {.kind = kind, .source = source, .entry = {}, .locale = ""});
  }

  void runUntil(const std::function<bool()>& holds) {
    for (int turn = 0; turn < 1000 && !holds(); ++turn) {
      std::vector<pollfd> descriptors;
      previews_.addDescriptors(descriptors);
      ::poll(descriptors.data(), descriptors.size(), 10);
      wasDone_ = previews_.run(now_) || wasDone_;
    }
    EXPECT_TRUE(holds()) << "waited in vain";
  }

  std::string errorOf(const PreviewSession::PendingResult& pending) {
    runUntil([&] { return pending->has_value(); });
    return !pending->has_value() || (*pending)->has_value() ? "none" : (*pending)->error();
  }

  ScriptedExtension extension_{"exit 1"};
  PreviewSession previews_{extension_.path()};
  Moment now_{.date = {}, .uptime = 1h};
  bool wasDone_ = false;
};

TEST_F(PreviewSessionTest, RendersTheEntryThatItAskedForAndLeavesWhenThereIsNothingToDo) {
  extension_.play(answers(1, anEntry) + answers(2, aView) + "sleep 60");
  const auto result = submit(Source::snapshot);
  EXPECT_EQ(errorOf(result), "none");
  EXPECT_TRUE(wasDone_);
  EXPECT_EQ(previews_.nextDeadline(), now_.uptime + 15s);
  now_.uptime += 15s;
  previews_.run(now_);
  EXPECT_EQ(previews_.nextDeadline(), std::nullopt);
}

TEST_F(PreviewSessionTest, SaysWhatWentWrong) {
  const std::tuple<std::string, Source, std::string> cases[] = {
      {"echo broken >&2; sleep 0.1; echo bye; exit 1", Source::snapshot, "last words: “broken”"},
      {R"(read r <&3; echo '{"id":1,"error":{"code":-32602,"message":"no such kind"}}' >&3; cat)",
       Source::given,
       "no such kind"},
      {answers(1, anEntry) + "sleep 60", Source::given, R"(result: no "view")"},
      {answers(1, anEntry) + answers(2, anEntry) + "cat", Source::snapshot, R"(: no "view")"},
  };
  for (const auto& [commands, source, error] : cases) {
    extension_.play(commands);
    EXPECT_THAT(errorOf(submit(source)), HasSubstr(error)) << commands;
    previews_.stop();
  }
}

TEST_F(PreviewSessionTest, OneThatDoesNotAnswerIsEnded) {
  extension_.play("sleep 60");
  const auto result = submit(Source::given);
  now_.uptime += 30s;
  EXPECT_THAT(errorOf(result), HasSubstr("30 seconds"));
}

// Nothing but the last one is ever answered.
TEST_F(PreviewSessionTest, WhatNobodyWaitsForIsNotAsked) {
  extension_.play(R"(while read r <&3; do case "$r" in *last*) )"
                  R"(echo '{"id":1,"result":{"view":{"type":"spacer"}}}' >&3;; esac; done)");
  const auto first = submit(Source::given, "first");
  for (int client = 0; client < 100; ++client) {
    submit(Source::given, "gone");
  }
  const auto last = submit(Source::given, "last");
  now_.uptime += 30s;
  EXPECT_THAT(errorOf(first), HasSubstr("30 seconds"));
  EXPECT_EQ(errorOf(last), "none");
}

}  // namespace
}  // namespace quillpad::home
