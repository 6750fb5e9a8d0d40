#include "views/UnpaidImageView.h"

#include "views/Badge.h"
#include "views/Palette.h"

namespace quillpad {

ui::View UnpaidImageView::body() const {
  return Badge{.picture = "UnpaidSmall", .color = unpaidAccent};
}

}  // namespace quillpad
