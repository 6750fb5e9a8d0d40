#include "views/UnpaidMediumView.h"

#include "views/DocumentListView.h"
#include "views/Palette.h"

namespace quillpad {

ui::View UnpaidMediumView::body() const {
  return DocumentListView{
      .title = "Unpaid Invoices",
      .accent = unpaidAccent,
      .linkUrl = "quillpad://invoiceUnpaidList",
      .records = records};
}

}  // namespace quillpad
