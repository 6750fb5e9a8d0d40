#include "views/SalesMallView.h"

#include "views/InvoiceColors.h"
#include "views/Palette.h"
#include "views/SalesAmountText.h"
#include "views/SalesImageView.h"

namespace quillpad {

ui::View SalesMallView::body() const {
  using namespace ui;
  using enum Weight;
  const std::string amount = salesAmountText(salesMonth);
  return VStack(
             HStack(Text("Sales").font({17, semibold}).foregroundColor(salesAccent), Spacer()),
             HStack(Text("this month").font({12, medium}).foregroundColor(salesTint), Spacer()),
             Spacer(),
             HStack(
                 Text::verbatim(amount)
                     .font({20, semibold})
                     .foregroundColor(InvoiceColors::makeTextColor()),
                 Spacer()),
             Spacer(),
             HStack(Spacer(), SalesImageView()))
      .padding(16)
      .widgetURL(URL::parse(linkUrl));
}

}  // namespace quillpad
