// Any bytes are read or refused, and what can be written again reads back the same.
#include <cstddef>
#include <cstdint>

#include "Expect.h"
#include "platform/settings/PropertyList.h"

using namespace quillpad;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto value = readPropertyList({reinterpret_cast<const char*>(data), size});
  if (!value) {
    return 0;
  }
  const auto written = writePropertyList(*value);
  if (!written) {
    return 0;  // a character that XML can name and not hold
  }
  const auto again = readPropertyList(*written);
  expect(again.has_value());
  expect(writePropertyList(*again) == *written);
  return 0;
}
