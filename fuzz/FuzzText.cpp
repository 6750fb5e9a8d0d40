// Any text is set in lines and drawn. The first byte chooses its size, and so how many lines it
// has.
#include <cstddef>
#include <cstdint>

#include "Draw.h"
#include "platform/foundation/Utf8.h"

using namespace quillpad;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Drawer drawer;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size > 0 ? size - 1 : 0);
  if (size > 0 && isUtf8(text)) {
    drawer.draw(
        ui::Text::verbatim(std::string(text)).font({4.0 + data[0] % 64, ui::Weight::regular}),
        {.kind = "Card", .rightToLeft = data[0] > 127});
  }
  return 0;
}
