// Any text is a kept state or none, and a state is kept as it was.
#include <cstddef>
#include <cstdint>

#include "Expect.h"
#include "home/extension/StateFile.h"

using namespace quillpad;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto state = home::decodeState({reinterpret_cast<const char*>(data), size});
  if (!state) {
    return 0;
  }
  const auto kept = home::encodeState(*state);
  expect(kept.has_value());
  const auto again = home::decodeState(*kept);
  expect(again.has_value());
  expect(home::encodeState(*again) == kept);
  return 0;
}
