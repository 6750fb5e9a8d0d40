#include <chrono>
#include <gmock/gmock.h>
#include <regex>

#include "home/page/ProcessPage.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;

const Date now{1'800'000'000s};

TEST(ProcessLog, KeepsTheLatestLinesAndCountsTheTimelinesOfADay) {
  ProcessLog log;
  for (int i = 0; i < 2010; ++i) {
    log.notePrinted(now, std::to_string(i));
    log.noteRequest(now, channel::TimelineRequest{"C"});
  }
  EXPECT_EQ(log.printed().size(), 50U);
  EXPECT_EQ(log.printed().front().event, "2009");
  log.noteRequest(now - 24h, channel::TimelineRequest{"A"});
  log.noteRequest(now - 23h, channel::TimelineRequest{"A"});
  log.noteRequest(now, channel::TimelineRequest{"A"});
  log.noteRequest(now, channel::SnapshotRequest{"B"});
  EXPECT_THAT(log.timelinesOfTheDay(now), ElementsAre(Pair("A", 2), Pair("C", 2000)));
  EXPECT_THAT(log.timelinesOfTheDay(now + 1h), ElementsAre(Pair("A", 1), Pair("C", 2000)));
}

TEST(ProcessPage, ShowsMemoryTransfersAndWhoAsksMoreThanAPhoneGrants) {
  ProcessModel model{
      .runs = true,
      .privateBytes = 3'600'000,
      .limitBytes = std::size_t{30} * 1024 * 1024,
      .underWay = {{Purpose::timeline, "<A>"}},
      .budgets = {{"A", 70}, {"B", 288}}};
  model.log.noteTransfer(
      now,
      {.path = "/list", .error = {}, .statusCode = 200, .duration = 4500us, .receivedBytes = 101});
  model.log.noteTransfer(now, {.path = "/list", .error = TransportError{-1004, "No <way>."}});
  const std::string html = processPage(model, {}).html();
  EXPECT_THAT(html, Not(HasSubstr("<way>")));
  EXPECT_THAT(html, ContainsRegex("class=\"warning\"><th scope=\"row\"><bdi>B<"));
  EXPECT_THAT(
      std::regex_replace(html, std::regex("<[^>]*>"), ""),
      AllOf(
          HasSubstr("3.4 MiB of 30.0 MiB"),
          HasSubstr("Timeline&lt;A&gt;"),
          HasSubstr("/list: Status 200, 4 ms, 0 B sent, 101 B received"),
          HasSubstr("/list: No &lt;way&gt;. (-1004)"),
          HasSubstr("A70 of the 40 to 70"),
          HasSubstr("B288, more than")));
}

}  // namespace
}  // namespace quillpad::home
