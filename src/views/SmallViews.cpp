#include "views/SmallViews.h"

#include <optional>

#include "platform/foundation/Fatal.h"
#include "platform/foundation/NumberText.h"
#include "support/Amounts.h"
#include "views/ImageViews.h"
#include "views/Palette.h"

namespace quillpad {
namespace {

// What the three have in common: title, caption and figure at the leading edge, a badge in the
// bottom corner.
struct SummaryCard {
  ui::View body() const;

  std::string title;    // looked up
  std::string caption;  // looked up
  std::string figure;
  ui::Color accent;
  ui::Color tint;
  ui::Color figureColor;
  ui::View badge;
  std::string linkUrl;
};

ui::View SummaryCard::body() const {
  using namespace ui;
  using enum Weight;
  return VStack(
             HStack(Text(title).font({17, semibold}).foregroundColor(accent), Spacer()),
             HStack(Text(caption).font({12, medium}).foregroundColor(tint), Spacer()),
             Spacer(),
             HStack(
                 Text::verbatim(figure).font({20, semibold}).foregroundColor(figureColor),
                 Spacer()),
             Spacer(),
             HStack(Spacer(), badge))
      .padding(16)
      .widgetURL(URL::parse(linkUrl));
}

}  // namespace

ui::View SalesMallView::body() const {
  return SummaryCard{
      .title = "Sales",
      .caption = "this month",
      .figure = salesAmountText(salesMonth),
      .accent = salesAccent,
      .tint = salesTint,
      .figureColor = InvoiceColors::makeTextColor(),
      .badge = SalesImageView(),
      .linkUrl = linkUrl};
}

ui::View UnpaidSmallView::body() const {
  return SummaryCard{
      .title = "Unpaid",
      .caption = "invoices",
      .figure = unpaidInvoices,
      .accent = unpaidAccent,
      .tint = unpaidTint,
      .figureColor = InvoiceColors::textColor(),
      .badge = UnpaidImageView(),
      .linkUrl = "quillpad://invoiceUnpaidList"};
}

ui::View PendingSmallView::body() const {
  return SummaryCard{
      .title = "Pending",
      .caption = "estimates",
      .figure = pendingEstimates,
      .accent = pendingAccent,
      .tint = pendingTint,
      .figureColor = InvoiceColors::textColor(),
      .badge = PendingImageView(),
      .linkUrl = "quillpad://EstimatesPendingList"};
}

std::string salesAmountText(const std::string& salesMonth) {
  const std::optional<double> number = doubleFromText(salesMonth);
  // Before the amount is forced: a broken currency is reported first.
  const std::string symbol = currencySymbol();
  const double amount = forced(number, R"(a number in "salesMonth")");
  const std::string text = symbol + formattedAmount(amount);
  // Not "at least 9999.99": a not-a-number is capped, too.
  return amount < 9999.99 ? text : ">" + currencySymbol() + "9,999.99";
}

}  // namespace quillpad
