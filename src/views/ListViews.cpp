#include "views/ListViews.h"

#include <algorithm>
#include <span>
#include <string>

#include "platform/foundation/Fatal.h"
#include "support/Amounts.h"
#include "views/Palette.h"

namespace quillpad {
namespace {

constexpr std::size_t maxRows = 3;

// What the two lists have in common.
struct DocumentListView {
  ui::View body() const;

  std::string title;  // looked up
  ui::Color accent;
  std::string linkUrl;
  const Array& records;
};

WidgetRowView row(const Value& record) {
  return {forcedAs<Dictionary>(record, "a record of the list")};
}

// Three rows are taller than the card and overflow it evenly: the inset keeps the header in sight.
// It is for exactly three records, although three rows are shown of more, too.
double headerInset(const Array& records) { return records.size() == 3 ? 20 : 0; }

ui::View DocumentListView::body() const {
  using namespace ui;
  using enum Weight;
  const auto shown = std::span(records).first(std::min(records.size(), maxRows));
  return VStack(
             HStack(Text(title).font({17, semibold}).foregroundColor(accent), Spacer())
                 .padding({.top = headerInset(records)}),
             ForEach(shown, row),
             Spacer(),
             Spacer())
      .padding(16)
      .widgetURL(URL::parse(linkUrl));
}

// Empty where the row has no name, or one that is not a text.
std::string clientName(const Dictionary& item) {
  const auto* name = item.get<std::string>("clientName");
  return name != nullptr ? *name : std::string();
}

}  // namespace

ui::View UnpaidMediumView::body() const {
  return DocumentListView{
      .title = "Unpaid Invoices",
      .accent = unpaidAccent,
      .linkUrl = "quillpad://invoiceUnpaidList",
      .records = records};
}

ui::View PendingMediumView::body() const {
  return DocumentListView{
      .title = "Pending Estimates",
      .accent = pendingAccent,
      .linkUrl = "quillpad://EstimatesPendingList",
      .records = records};
}

ui::View WidgetRowView::body() const {
  using namespace ui;
  using enum Weight;
  return VStack(
      HStack(
          Text::verbatim(clientName(item)).font({15, regular}).frame({.height = 24}),
          Spacer(),
          Text::verbatim(formattedTotal(item)).font({15, regular}).frame({.height = 24}))
          .frame({.height = 25}),
      Rectangle(separatorGrey).frame({.height = 0.5}).padding(0));
}

}  // namespace quillpad
