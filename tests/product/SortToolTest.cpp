#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fixtures/ScopedVariable.h"
#include "platform/foundation/Clock.h"
#include "support/SortTool.h"

namespace quillpad {
namespace {

using ::testing::Contains;
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

struct List {
  std::size_t choices;
  SortTool::Texts titles;
  SortTool::Texts keys;
  SortTool::Texts directions;
};

std::vector<List> lists() {
  using T = SortTool;
  return {
      {4, T::totalUnpaidSortingRules(), T::totalUnpaidSort(), T::totalUnpaidSortType()},
      {4, T::totalOverdueSortingRules(), T::totalOverdueSort(), T::totalOverdueSortType()},
      {4, T::invoiceSortingRules(), T::invoiceSort(), T::invoiceSortType()},
      {3, T::estimateSortingRules(), T::estimateSort(), T::estimateSortType()},
      {3, T::purchaseOrderSortingRules(), T::purchaseOrderSort(), T::purchaseOrderSortType()},
      {3, T::creditMemoSortingRules(), T::creditMemoSort(), T::creditMemoSortType()},
      {2, T::clientSortingRules(), T::clientSort(), T::clientSortType()},
      {3, T::itemSortingRules(), T::itemSort(), T::itemSortType()},
      {3, T::expenseSortingRules(), T::expenseSort(), T::expenseSortType()},
      {3, T::timeTrackingSortingRules(), T::timeTrackingSort(), T::timeTrackingSortType()},
      {2, T::trashSortingRules(), T::trashSort(), T::trashSortType()}};
}

TEST_F(SortToolTest, SortsDatesNumbersAndPricesDownAndWordsUp) {
  for (const List& list : lists()) {
    ASSERT_EQ(list.titles.size(), list.choices);
    ASSERT_EQ(list.keys.size(), list.choices);
    ASSERT_EQ(list.directions.size(), list.choices);
    for (std::size_t i = 0; i < list.choices; ++i) {
      const std::string title(list.titles[i]);
      const std::string lastWord = title.substr(title.rfind(' ') + 1);
      const bool word = lastWord == "Name" || lastWord == "name" || lastWord == "Description";
      EXPECT_EQ(list.directions[i], word ? "asc" : "desc") << title;
      EXPECT_EQ(list.keys[i] == "no", lastWord == "Number") << title;
      EXPECT_EQ(list.keys[i] == "totalPrice", lastWord == "Price") << title;
    }
    EXPECT_TRUE(list.titles[0].ends_with(" Date"));
    EXPECT_EQ(list.keys[0], "createTime");
  }
}

TEST_F(SortToolTest, KeepsTheIrregularSpellings) {
  EXPECT_THAT(SortTool::totalUnpaidSortingRules(), Contains("Invoice Due Date"));
  EXPECT_THAT(SortTool::totalUnpaidSortingRules(), Contains("Invoice Client name"));
  EXPECT_THAT(SortTool::totalOverdueSortingRules(), Contains("Invoice Client name"));
  EXPECT_THAT(SortTool::invoiceSortingRules(), Contains("Invoice Due date"));
  EXPECT_THAT(SortTool::invoiceSortingRules(), Contains("Invoice Client Name"));
  for (const std::string_view title : SortTool::purchaseOrderSortingRules()) {
    EXPECT_TRUE(title.starts_with("Purchase Orde ")) << title;
  }
  EXPECT_EQ(SortTool::clientSort()[1], "flag desc,name");
}

}  // namespace
}  // namespace quillpad
