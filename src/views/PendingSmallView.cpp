#include "views/PendingSmallView.h"

#include "views/InvoiceColors.h"
#include "views/Palette.h"
#include "views/PendingImageView.h"

namespace quillpad {

ui::View PendingSmallView::body() const {
  using namespace ui;
  using enum Weight;
  return VStack(
             HStack(Text("Pending").font({17, semibold}).foregroundColor(pendingAccent), Spacer()),
             HStack(Text("estimates").font({12, medium}).foregroundColor(pendingTint), Spacer()),
             Spacer(),
             HStack(
                 Text::verbatim(pendingEstimates)
                     .font({20, semibold})
                     .foregroundColor(InvoiceColors::textColor()),
                 Spacer()),
             Spacer(),
             HStack(Spacer(), PendingImageView()))
      .padding(16)
      .widgetURL(URL::parse("quillpad://EstimatesPendingList"));
}

}  // namespace quillpad
