#include "support/SortTool.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/foundation/Clock.h"
#include "platform/foundation/LocalTime.h"
#include "platform/foundation/NumberText.h"

namespace quillpad {
namespace {

constexpr std::string_view allTaxYear = "All Tax Year";
constexpr int firstTaxYear = 2020;
constexpr std::string_view startOfYear = "-01-01 00:00:00";

int currentYear() { return localTime(currentDate()).tm_year + 1900; }

std::string startOf(std::string_view year) { return std::string(year).append(startOfYear); }

// One sort choice of a list.
struct SortingRule {
  std::string_view title;
  std::string_view key;
  std::string_view direction;
};

// The choices of one list, column by column as the getters give them.
template <std::size_t count>
struct SortingTable {
  std::array<std::string_view, count> titles;
  std::array<std::string_view, count> keys;
  std::array<std::string_view, count> directions;
};

template <std::size_t count>
consteval SortingTable<count> table(const SortingRule (&rules)[count]) {
  SortingTable<count> columns;
  for (std::size_t i = 0; i < count; ++i) {
    columns.titles[i] = rules[i].title;
    columns.keys[i] = rules[i].key;
    columns.directions[i] = rules[i].direction;
  }
  return columns;
}

// The irregular spellings are the product's own and stay: "Purchase Orde", "Due date", "Client
// name".
constexpr auto totalUnpaid = table({
    {"Invoice Date", "createTime", "desc"},
    {"Invoice Due Date", "dueDate", "desc"},
    {"Invoice Number", "no", "desc"},
    {"Invoice Client name", "clientName", "asc"},
});

constexpr auto totalOverdue = table({
    {"Invoice Date", "createTime", "desc"},
    {"Invoice Due Date", "dueDate", "desc"},
    {"Invoice Number", "no", "desc"},
    {"Invoice Client name", "clientName", "asc"},
});

constexpr auto invoice = table({
    {"Invoice Date", "createTime", "desc"},
    {"Invoice Due date", "dueDate", "desc"},
    {"Invoice Number", "no", "desc"},
    {"Invoice Client Name", "clientName", "asc"},
});

constexpr auto estimate = table({
    {"Estimate Date", "createTime", "desc"},
    {"Estimate Number", "no", "desc"},
    {"Estimate Client Name", "clientName", "asc"},
});

constexpr auto purchaseOrder = table({
    {"Purchase Orde Date", "createTime", "desc"},
    {"Purchase Orde Number", "no", "desc"},
    {"Purchase Orde Client Name", "clientName", "asc"},
});

constexpr auto creditMemo = table({
    {"Credit Memo Date", "createTime", "desc"},
    {"Credit Memo Number", "no", "desc"},
    {"Credit Memo Client Name", "clientName", "asc"},
});

constexpr auto client = table({
    {"Client Date", "createTime", "desc"},
    {"Client Name", "flag desc,name", "asc"},
});

constexpr auto item = table({
    {"Item Date", "createTime", "desc"},
    {"Item Name", "name", "asc"},
    {"Item Price", "totalPrice", "desc"},
});

constexpr auto expense = table({
    {"Expense Date", "createTime", "desc"},
    {"Expense Name", "name", "asc"},
    {"Expense Price", "totalPrice", "desc"},
});

constexpr auto timeTracking = table({
    {"Time Tracking Date", "createTime", "desc"},
    {"Time Tracking Price", "totalPrice", "desc"},
    {"Time Tracking Description", "descStr", "asc"},
});

constexpr auto trash = table({
    {"Trash Date", "createTime", "desc"},
    {"Trash Name", "clientName", "asc"},
});

}  // namespace

std::vector<std::string> SortTool::sortYears() {
  std::vector<std::string> years{std::string(allTaxYear)};
  const int last = currentYear();
  for (int year = firstTaxYear; year <= last; ++year) {
    years.push_back(std::to_string(year));
  }
  return years;
}

std::string SortTool::startTimeWithYear(std::optional<std::string_view> year) {
  if (!year || *year == allTaxYear) {
    return startOf(std::to_string(firstTaxYear));
  }
  return startOf(*year);
}

std::string SortTool::endTImeWithYear(std::optional<std::string_view> year) {
  std::int64_t baseYear = currentYear();
  if (year && !year->empty() && *year != allTaxYear) {
    baseYear = integerValue(*year);
  }
  // Unsigned, so that the year after the maximum wraps around instead of being undefined.
  const auto nextYear = static_cast<std::int64_t>(static_cast<std::uint64_t>(baseYear) + 1);
  return startOf(std::to_string(nextYear));
}

SortTool::Texts SortTool::totalUnpaidSortingRules() { return totalUnpaid.titles; }
SortTool::Texts SortTool::totalUnpaidSort() { return totalUnpaid.keys; }
SortTool::Texts SortTool::totalUnpaidSortType() { return totalUnpaid.directions; }

SortTool::Texts SortTool::totalOverdueSortingRules() { return totalOverdue.titles; }
SortTool::Texts SortTool::totalOverdueSort() { return totalOverdue.keys; }
SortTool::Texts SortTool::totalOverdueSortType() { return totalOverdue.directions; }

SortTool::Texts SortTool::invoiceSortingRules() { return invoice.titles; }
SortTool::Texts SortTool::invoiceSort() { return invoice.keys; }
SortTool::Texts SortTool::invoiceSortType() { return invoice.directions; }

SortTool::Texts SortTool::estimateSortingRules() { return estimate.titles; }
SortTool::Texts SortTool::estimateSort() { return estimate.keys; }
SortTool::Texts SortTool::estimateSortType() { return estimate.directions; }

SortTool::Texts SortTool::purchaseOrderSortingRules() { return purchaseOrder.titles; }
SortTool::Texts SortTool::purchaseOrderSort() { return purchaseOrder.keys; }
SortTool::Texts SortTool::purchaseOrderSortType() { return purchaseOrder.directions; }

SortTool::Texts SortTool::creditMemoSortingRules() { return creditMemo.titles; }
SortTool::Texts SortTool::creditMemoSort() { return creditMemo.keys; }
SortTool::Texts SortTool::creditMemoSortType() { return creditMemo.directions; }

SortTool::Texts SortTool::clientSortingRules() { return client.titles; }
SortTool::Texts SortTool::clientSort() { return client.keys; }
SortTool::Texts SortTool::clientSortType() { return client.directions; }

SortTool::Texts SortTool::itemSortingRules() { return item.titles; }
SortTool::Texts SortTool::itemSort() { return item.keys; }
SortTool::Texts SortTool::itemSortType() { return item.directions; }

SortTool::Texts SortTool::expenseSortingRules() { return expense.titles; }
SortTool::Texts SortTool::expenseSort() { return expense.keys; }
SortTool::Texts SortTool::expenseSortType() { return expense.directions; }

SortTool::Texts SortTool::timeTrackingSortingRules() { return timeTracking.titles; }
SortTool::Texts SortTool::timeTrackingSort() { return timeTracking.keys; }
SortTool::Texts SortTool::timeTrackingSortType() { return timeTracking.directions; }

SortTool::Texts SortTool::trashSortingRules() { return trash.titles; }
SortTool::Texts SortTool::trashSort() { return trash.keys; }
SortTool::Texts SortTool::trashSortType() { return trash.directions; }

}  // namespace quillpad
