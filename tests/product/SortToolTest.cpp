#include <gmock/gmock.h>

#include "fixtures/ScopedVariable.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/Iso8601.h"
#include "support/SortTool.h"

namespace quillpad {
namespace {

using ::testing::ElementsAre;

class SortToolTest : public ::testing::Test {
 protected:
  static HeldClock clockAt(const char* moment) {
    return HeldClock(dateFromIso8601(moment).value());
  }

  fixtures::ScopedVariable zone{"TZ", "UTC"};
};

TEST_F(SortToolTest, OffersAllYearsFrom2020ToTheCurrentOne) {
  {
    const auto clock = clockAt("2023-06-01T12:00:00.000Z");
    EXPECT_THAT(SortTool::sortYears(), ElementsAre("All Tax Year", "2020", "2021", "2022", "2023"));
  }
  {
    const auto clock = clockAt("2020-01-01T00:00:00.000Z");
    EXPECT_THAT(SortTool::sortYears(), ElementsAre("All Tax Year", "2020"));
  }
  {
    const auto clock = clockAt("2019-12-31T23:59:59.999Z");
    EXPECT_THAT(SortTool::sortYears(), ElementsAre("All Tax Year"));
  }
}

TEST_F(SortToolTest, BoundsAYearAsTextBelowAndAsNumberAbove) {
  const auto clock = clockAt("2026-03-07T09:05:03.000Z");
  struct Case {
    std::optional<std::string_view> year;
    const char* start;
    const char* end;
  };
  const std::vector<Case> cases{
      {"2023", "2023-01-01 00:00:00", "2024-01-01 00:00:00"},
      {"2019", "2019-01-01 00:00:00", "2020-01-01 00:00:00"},
      {"All Tax Year", "2020-01-01 00:00:00", "2027-01-01 00:00:00"},
      {std::nullopt, "2020-01-01 00:00:00", "2027-01-01 00:00:00"},
      {"", "-01-01 00:00:00", "2027-01-01 00:00:00"},
      {"all tax year", "all tax year-01-01 00:00:00", "1-01-01 00:00:00"},
      {"abc", "abc-01-01 00:00:00", "1-01-01 00:00:00"},
      {"12abc", "12abc-01-01 00:00:00", "13-01-01 00:00:00"},
      {" -5", " -5-01-01 00:00:00", "-4-01-01 00:00:00"},
      {"9223372036854775807",
       "9223372036854775807-01-01 00:00:00",
       "-9223372036854775808-01-01 00:00:00"}};
  for (const auto& [year, start, end] : cases) {
    EXPECT_EQ(SortTool::startTimeWithYear(year), start);
    EXPECT_EQ(SortTool::endTImeWithYear(year), end);
  }
}

TEST_F(SortToolTest, TakesTheYearOfLocalTime) {
  const fixtures::ScopedVariable tokyo("TZ", "Asia/Tokyo");
  const auto clock = clockAt("2025-12-31T15:00:00.000Z");
  EXPECT_EQ(SortTool::endTImeWithYear(std::nullopt), "2027-01-01 00:00:00");
}

struct Rule {
  std::string_view title, key, direction;
  bool operator==(const Rule&) const = default;
};

// The choices of a list, as its three getters give them.
std::vector<Rule> rules(SortTool::Texts titles, SortTool::Texts keys, SortTool::Texts directions) {
  std::vector<Rule> result;
  EXPECT_EQ(keys.size(), titles.size());
  EXPECT_EQ(directions.size(), titles.size());
  for (std::size_t i = 0; i < titles.size(); ++i) {
    result.push_back({titles[i], keys[i], directions[i]});
  }
  return result;
}

// The irregular spellings are meant.
TEST_F(SortToolTest, KeepsTheChoicesOfEachList) {
  using T = SortTool;
  EXPECT_EQ(
      rules(T::totalUnpaidSortingRules(), T::totalUnpaidSort(), T::totalUnpaidSortType()),
      (std::vector<Rule>{
          {"Invoice Date", "createTime", "desc"},
          {"Invoice Due Date", "dueDate", "desc"},
          {"Invoice Number", "no", "desc"},
          {"Invoice Client name", "clientName", "asc"}}));
  EXPECT_EQ(
      rules(T::totalOverdueSortingRules(), T::totalOverdueSort(), T::totalOverdueSortType()),
      (std::vector<Rule>{
          {"Invoice Date", "createTime", "desc"},
          {"Invoice Due Date", "dueDate", "desc"},
          {"Invoice Number", "no", "desc"},
          {"Invoice Client name", "clientName", "asc"}}));
  EXPECT_EQ(
      rules(T::invoiceSortingRules(), T::invoiceSort(), T::invoiceSortType()),
      (std::vector<Rule>{
          {"Invoice Date", "createTime", "desc"},
          {"Invoice Due date", "dueDate", "desc"},
          {"Invoice Number", "no", "desc"},
          {"Invoice Client Name", "clientName", "asc"}}));
  EXPECT_EQ(
      rules(T::estimateSortingRules(), T::estimateSort(), T::estimateSortType()),
      (std::vector<Rule>{
          {"Estimate Date", "createTime", "desc"},
          {"Estimate Number", "no", "desc"},
          {"Estimate Client Name", "clientName", "asc"}}));
  EXPECT_EQ(
      rules(T::purchaseOrderSortingRules(), T::purchaseOrderSort(), T::purchaseOrderSortType()),
      (std::vector<Rule>{
          {"Purchase Orde Date", "createTime", "desc"},
          {"Purchase Orde Number", "no", "desc"},
          {"Purchase Orde Client Name", "clientName", "asc"}}));
  EXPECT_EQ(
      rules(T::creditMemoSortingRules(), T::creditMemoSort(), T::creditMemoSortType()),
      (std::vector<Rule>{
          {"Credit Memo Date", "createTime", "desc"},
          {"Credit Memo Number", "no", "desc"},
          {"Credit Memo Client Name", "clientName", "asc"}}));
  EXPECT_EQ(
      rules(T::clientSortingRules(), T::clientSort(), T::clientSortType()),
      (std::vector<Rule>{
          {"Client Date", "createTime", "desc"}, {"Client Name", "flag desc,name", "asc"}}));
  EXPECT_EQ(
      rules(T::itemSortingRules(), T::itemSort(), T::itemSortType()),
      (std::vector<Rule>{
          {"Item Date", "createTime", "desc"},
          {"Item Name", "name", "asc"},
          {"Item Price", "totalPrice", "desc"}}));
  EXPECT_EQ(
      rules(T::expenseSortingRules(), T::expenseSort(), T::expenseSortType()),
      (std::vector<Rule>{
          {"Expense Date", "createTime", "desc"},
          {"Expense Name", "name", "asc"},
          {"Expense Price", "totalPrice", "desc"}}));
  EXPECT_EQ(
      rules(T::timeTrackingSortingRules(), T::timeTrackingSort(), T::timeTrackingSortType()),
      (std::vector<Rule>{
          {"Time Tracking Date", "createTime", "desc"},
          {"Time Tracking Price", "totalPrice", "desc"},
          {"Time Tracking Description", "descStr", "asc"}}));
  EXPECT_EQ(
      rules(T::trashSortingRules(), T::trashSort(), T::trashSortType()),
      (std::vector<Rule>{
          {"Trash Date", "createTime", "desc"}, {"Trash Name", "clientName", "asc"}}));
}

}  // namespace
}  // namespace quillpad
