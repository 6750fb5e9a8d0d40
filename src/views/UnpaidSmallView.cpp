#include "views/UnpaidSmallView.h"

#include "views/InvoiceColors.h"
#include "views/Palette.h"
#include "views/UnpaidImageView.h"

namespace quillpad {

ui::View UnpaidSmallView::body() const {
  using namespace ui;
  using enum Weight;
  return VStack(
             HStack(Text("Unpaid").font({17, semibold}).foregroundColor(unpaidAccent), Spacer()),
             HStack(Text("invoices").font({12, medium}).foregroundColor(unpaidTint), Spacer()),
             Spacer(),
             HStack(
                 Text::verbatim(unpaidInvoices)
                     .font({20, semibold})
                     .foregroundColor(InvoiceColors::textColor()),
                 Spacer()),
             Spacer(),
             HStack(Spacer(), UnpaidImageView()))
      .padding(16)
      .widgetURL(URL::parse("quillpad://invoiceUnpaidList"));
}

}  // namespace quillpad
