// Any bytes are read or refused, and what was read writes into text that reads and writes the same.
#include <cstddef>
#include <cstdint>

#include "Expect.h"
#include "platform/foundation/Json.h"

using namespace quillpad;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto value = readJson(text, JsonFragments::allowed);
  if (!value) {
    return 0;
  }
  for (const JsonLayout layout : {JsonLayout::compact, JsonLayout::pretty}) {
    const auto written = writeJson(*value, layout);
    expect(written.has_value());
    const auto again = readJson(*written, JsonFragments::allowed);
    expect(again.has_value());
    if (layout == JsonLayout::compact) {
      expect(writeJson(*again, layout) == *written);
    }
  }
  return 0;
}
