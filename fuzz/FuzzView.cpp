// Any JSON is a view or none, and a view writes itself as the JSON that reads back the same.
#include <cstddef>
#include <cstdint>

#include "Expect.h"
#include "platform/foundation/Json.h"
#include "platform/ui/ViewCodec.h"

using namespace quillpad;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto value = readJson(text, JsonFragments::allowed);
  if (!value) {
    return 0;
  }
  const auto view = ui::viewFromValue(*value);
  if (!view) {
    return 0;
  }
  const Value written = ui::toValue(*view);
  const auto again = ui::viewFromValue(written);
  expect(again.has_value());
  expect(ui::toValue(*again) == written);
  return 0;
}
