#include "views/InvoiceColors.h"

namespace quillpad {

const ui::Color& InvoiceColors::textColor() {
  static const ui::Color color = makeTextColor();
  return color;
}

ui::Color InvoiceColors::makeTextColor() { return {ui::blackColor, ui::whiteColor}; }

}  // namespace quillpad
