// Any text is set in lines and drawn. The first byte chooses its size, and so how many lines it
// has.

#include "Draw.h"
#include "platform/foundation/Utf8.h"

using namespace quillpad;

void quillpad::tryInput(std::string_view input) {
  static Drawer drawer;
  const unsigned choice = takeChoice(input);
  if (isUtf8(input)) {
    drawer.draw(
        ui::Text::verbatim(std::string(input)).font({4.0 + choice % 64, ui::Weight::regular}),
        {.kind = "Card", .rightToLeft = choice > 127});
  }
}
