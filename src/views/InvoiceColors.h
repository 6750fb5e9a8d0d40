// The text colour that follows the appearance: white in dark, black in any other. Callable from any
// thread.
#pragma once

#include "platform/ui/Color.h"

namespace quillpad {

class InvoiceColors {
 public:
  // The one colour that all share, made at its first use.
  static const ui::Color& textColor();

  // A new colour, the caller's own.
  static ui::Color makeTextColor();
};

}  // namespace quillpad
