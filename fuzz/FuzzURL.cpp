// Any text is an address or none, and what an address says of itself is that address again.
#include <cstddef>
#include <cstdint>

#include "Expect.h"
#include "platform/foundation/URL.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto url = foundation::URL::parse({reinterpret_cast<const char*>(data), size});
  if (url) expect(foundation::URL::parse(url->absoluteString()) == url);
  return 0;
}
