// Any view is laid out, and painted or refused. The first byte chooses the scale and the direction.

#include "Draw.h"
#include "platform/foundation/Json.h"
#include "platform/ui/ViewCodec.h"

using namespace quillpad;

void quillpad::tryInput(std::string_view input) {
  static Drawer drawer;
  const unsigned choice = takeChoice(input);
  const auto value = readJson(input, JsonFragments::refused);
  if (!value) {
    return;
  }
  if (const auto view = ui::viewFromValue(*value)) {
    drawer.draw(
        *view,
        {.kind = "Card",
         .scale = 1 + static_cast<int>(choice % 3),
         .rightToLeft = choice > 127,
         .redacted = choice % 5 == 4});
  }
}
