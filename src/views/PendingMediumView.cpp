#include "views/PendingMediumView.h"

#include "views/DocumentListView.h"
#include "views/Palette.h"

namespace quillpad {

ui::View PendingMediumView::body() const {
  return DocumentListView{
      .title = "Pending Estimates",
      .accent = pendingAccent,
      .linkUrl = "quillpad://EstimatesPendingList",
      .records = records};
}

}  // namespace quillpad
