// Tax years as the bounds of a request, and the sort choices of each document list. Operations of
// the class alone, without state; callable from any thread.
//
//   SortTool::startTimeWithYear("2023")  // "2023-01-01 00:00:00"
//   SortTool::endTImeWithYear("2023")    // "2024-01-01 00:00:00", exclusive
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillpad {

class SortTool {
 public:
  using Texts = std::span<const std::string_view>;

  // "All Tax Year" and every year from 2020 to the current one.
  static std::vector<std::string> sortYears();

  // The start of the year, whose text is taken unchecked, even if it is empty. "All Tax Year" and
  // an absent year start in 2020.
  static std::string startTimeWithYear(std::optional<std::string_view> year);

  // The start of the following year; the year is the integer that the text begins with, or 0. "All
  // Tax Year", an empty and an absent year end with the current one.
  static std::string endTImeWithYear(std::optional<std::string_view> year);

  // For each document list the titles of its sort choices, the keys that the gateway sorts by, and
  // the directions ("asc", "desc"), in the same order.
  static Texts totalUnpaidSortingRules();
  static Texts totalUnpaidSort();
  static Texts totalUnpaidSortType();

  static Texts totalOverdueSortingRules();
  static Texts totalOverdueSort();
  static Texts totalOverdueSortType();

  static Texts invoiceSortingRules();
  static Texts invoiceSort();
  static Texts invoiceSortType();

  static Texts estimateSortingRules();
  static Texts estimateSort();
  static Texts estimateSortType();

  static Texts purchaseOrderSortingRules();
  static Texts purchaseOrderSort();
  static Texts purchaseOrderSortType();

  static Texts creditMemoSortingRules();
  static Texts creditMemoSort();
  static Texts creditMemoSortType();

  static Texts clientSortingRules();
  static Texts clientSort();
  static Texts clientSortType();

  static Texts itemSortingRules();
  static Texts itemSort();
  static Texts itemSortType();

  static Texts expenseSortingRules();
  static Texts expenseSort();
  static Texts expenseSortType();

  static Texts timeTrackingSortingRules();
  static Texts timeTrackingSort();
  static Texts timeTrackingSortType();

  static Texts trashSortingRules();
  static Texts trashSort();
  static Texts trashSortType();
};

}  // namespace quillpad
