#include "views/PendingImageView.h"

#include "views/Badge.h"
#include "views/Palette.h"

namespace quillpad {

ui::View PendingImageView::body() const {
  return Badge{.picture = "PendingSmall", .color = pendingAccent};
}

}  // namespace quillpad
