// The widgets as the home screen sees them: catalogue, placeholders, snapshots and timelines.
#include <future>
#include <gtest/gtest.h>
#include <string>

#include "host/Providers.h"
#include "host/Widgets.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/Iso8601.h"
#include "platform/foundation/Json.h"
#include "product/GatewayOfTest.h"
#include "product/ProductSettings.h"

namespace quillpad {
namespace {
using widgets::Completion;
using widgets::WidgetConfiguration;

constexpr const char* zeros = R"({"salesMonth":"0","unpaidInvoices":"0","pendingEstimates":"0"})";
constexpr const char* sample = R"({"records":[{"no":"32","clientName":"Preivon","total":23.89},)"
                               R"({"no":"28","clientName":"Dreifles","total":132.23},)"
                               R"({"no":"15","clientName":"Lucien Holmes ","total":98.13}]})";

bool isSmall(const WidgetConfiguration& widget) {
  return widget.families == std::vector{ui::WidgetFamily::systemSmall};
}

std::string expectedFallback(const WidgetConfiguration& widget) {
  return isSmall(widget) ? zeros : sample;
}

std::string entryText(const std::string& date, const std::string& data) {
  return R"({"date":")" + date + R"(","data":)" + data + "}";
}

std::string json(const channel::Entry& entry) {
  return writeJson(channel::toValue(entry), JsonLayout::compact).value();
}

// The timeline of the widget, or nothing where the request was let go.
std::optional<channel::Timeline> timelineOf(const WidgetConfiguration& widget) {
  std::promise<std::optional<channel::Timeline>> end;
  widget.timeline({}, Completion<channel::Timeline>([&](std::optional<channel::Timeline> timeline) {
                    end.set_value(std::move(timeline));
                  }));
  return end.get_future().get();
}

class ProvidersTest : public ::testing::Test {
 protected:
  ProvidersTest() { settings.signIn("business-1", "abc"); }

  ProductSettings settings;
  GatewayOfTest gateway;
  HeldClock clock{dateFromIso8601("2026-03-07T09:05:03.250Z").value()};
  const std::string now = "2026-03-07T09:05:03.250Z";
  const std::string fiveMinutesLater = "2026-03-07T09:10:03.250Z";
  const std::vector<WidgetConfiguration> catalogue = Widgets().body();
};

TEST_F(ProvidersTest, AreListedWithTheirTextsInTheBundlesOrder) {
  using enum ui::WidgetFamily;
  using Row = std::tuple<std::string, std::string, std::string, ui::WidgetFamily>;
  const std::string track =
      "Track all monthly sales in real-time and easily monitor cash flow status.";
  const std::string pending = "You can easily keep track of your pending estimates.";
  const std::string unpaid = "Unpaid invoices from customers can be easily tracked.";
  const std::vector<Row> expected{
      {"SalesSmallWidget", "Sales of this month", track, systemSmall},
      {"PendingSmallWidget", "Pending Estimates", pending, systemSmall},
      {"UnpaidSmallWidget", "Unpaid Invocies", unpaid, systemSmall},
      {"PendingMediumWidget", "Pending Estimates", pending, systemMedium},
      {"UnpaidMediumWidget", "Unpaid Invocies", unpaid, systemMedium}};
  std::vector<Row> listed;
  for (const WidgetConfiguration& widget : catalogue) {
    ASSERT_EQ(widget.families.size(), 1U) << widget.kind;
    listed.emplace_back(
        widget.kind, widget.displayNameKey, widget.descriptionKey, widget.families.front());
  }
  EXPECT_EQ(listed, expected);
}

TEST_F(ProvidersTest, AnswerPlaceholderAndSnapshotAtOnceAndWithoutARequest) {
  for (const WidgetConfiguration& widget : catalogue) {
    const std::string expected = entryText(now, expectedFallback(widget));
    EXPECT_EQ(json(widget.placeholder({})), expected);
    int calls = 0;
    widget.snapshot(
        {.isPreview = true},
        Completion<channel::Entry>([&](const std::optional<channel::Entry>& entry) {
          ++calls;
          EXPECT_EQ(json(entry.value()), expected);
        }));
    EXPECT_EQ(calls, 1) << widget.kind;
  }
  EXPECT_TRUE(gateway.server().requests().empty());
}

TEST_F(ProvidersTest, MakeATimelineOfOneEntryFetchedOrAfterATransportErrorOfZerosOrTheSample) {
  const std::string sales =
      R"({"salesMonth":"1520.5","unpaidInvoices":"3","pendingEstimates":"0"})";
  const std::string rows = R"({"records":[{"no":"7"},{"no":"6"},{"no":"5"},{"no":"4"},true]})";
  const std::string none = R"({"records":[]})";
  const auto expectTimeline = [&](const WidgetConfiguration& widget, const std::string& data) {
    const auto timeline = timelineOf(widget);
    ASSERT_TRUE(timeline) << widget.kind;
    ASSERT_EQ(timeline->entries.size(), 1U);
    EXPECT_EQ(json(timeline->entries[0]), entryText(now, data));
    EXPECT_EQ(iso8601(timeline->policy.after), fiveMinutesLater);
  };
  for (const WidgetConfiguration& widget : catalogue) {
    gateway.answerWithDocument(
        isSmall(widget) ? R"({"salesMonth":1520.5,"unpaidInvoices":3,"pendingEstimates":0})"
                        : rows);
    expectTimeline(widget, isSmall(widget) ? sales : rows);
  }
  EXPECT_EQ(gateway.server().requests().size(), catalogue.size());
  gateway.answerWithDocument(none);
  expectTimeline(catalogue[4], none);
  gateway.fail();
  for (const WidgetConfiguration& widget : catalogue) {
    expectTimeline(widget, expectedFallback(widget));
  }
}

// The callback of a fetch that is not answered yet.
FetchCallback<Sales> unanswered;
void fetchLater(FetchCallback<Sales> callback) { unanswered = std::move(callback); }

TEST_F(ProvidersTest, DateTheEntryByTheRequestNotByTheAnswer) {
  std::optional<widgets::Timeline<SalesSmallEntry>> timeline;
  FetchingProvider<SalesSmallEntry, fetchLater, zeroSummary>().getTimeline(
      {}, Completion<widgets::Timeline<SalesSmallEntry>>([&](auto delivered) {
        timeline = std::move(delivered);
      }));
  EXPECT_FALSE(timeline);
  const HeldClock later(dateFromIso8601("2026-03-07T09:06:00.000Z").value());
  unanswered(Sales{"1", "2", "3"});
  ASSERT_TRUE(timeline);
  EXPECT_EQ(iso8601(timeline->entries.at(0).date), now);
  EXPECT_EQ(iso8601(timeline->policy.date()), fiveMinutesLater);
}

TEST_F(ProvidersTest, FetchEachTimelineByItself) {
  gateway.answerWithDocument(R"({"salesMonth":1,"unpaidInvoices":2,"pendingEstimates":3})");
  auto first = std::async(std::launch::async, [&] { return timelineOf(catalogue[0]); });
  const auto second = timelineOf(catalogue[0]);
  EXPECT_TRUE(first.get());
  EXPECT_TRUE(second);
  EXPECT_EQ(gateway.server().requests().size(), 2U);
}

}  // namespace
}  // namespace quillpad
