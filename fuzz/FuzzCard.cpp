// Any view is laid out, and painted or refused. The first byte chooses the scale and the direction.
#include <cstddef>
#include <cstdint>

#include "Draw.h"
#include "platform/foundation/Json.h"
#include "platform/ui/ViewCodec.h"

using namespace quillpad;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Drawer drawer;
  if (size == 0) {
    return 0;
  }
  const auto value =
      readJson({reinterpret_cast<const char*>(data) + 1, size - 1}, JsonFragments::refused);
  if (!value) {
    return 0;
  }
  if (const auto view = ui::viewFromValue(*value)) {
    drawer.draw(
        *view,
        {.kind = "Card",
         .scale = 1 + data[0] % 3,
         .rightToLeft = data[0] > 127,
         .redaction =
             data[0] % 5 == 4 ? drawing::Redaction::placeholder : drawing::Redaction::none});
  }
  return 0;
}
