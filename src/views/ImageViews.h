// The round badges of the small widgets: a picture of 20 points on a disc of 32. Plain values.
#pragma once

#include "platform/ui/View.h"

namespace quillpad {

struct SalesImageView {
  ui::View body() const;
};

struct UnpaidImageView {
  ui::View body() const;
};

struct PendingImageView {
  ui::View body() const;
};

}  // namespace quillpad
